// Fills of connected pixels. The pixels of the wanted value are found row by row as bits, and the fill
// spreads through words of 64 of them: a run inside a word is filled by a few instructions, however long or
// broken it is.
#include "primitives/FloodFill.h"

#include <algorithm>
#include <cstring>

#include "primitives/PixelBits.h"

namespace ZPA {
namespace {

// All bits of `open` that runs of set bits connect with those of `start`, which are among them.
std::uint64_t SpreadAlongRuns(std::uint64_t start, std::uint64_t open) {
    // A carry runs from each starting bit to the upper end of its run, and flips what it passes.
    std::uint64_t reached = (((open + start) ^ open) & open) | start;
    // Downwards in doubling steps.
    reached |= open & (reached >> 1);
    open &= open >> 1;
    reached |= open & (reached >> 2);
    open &= open >> 2;
    reached |= open & (reached >> 4);
    open &= open >> 4;
    reached |= open & (reached >> 8);
    open &= open >> 8;
    reached |= open & (reached >> 16);
    open &= open >> 16;
    return reached | (open & (reached >> 32));
}

constexpr std::uint64_t kLastBit = std::uint64_t{1} << 63;

// What a fill keeps of each 64 pixels.
struct Word {
    std::uint64_t open;     // of the wanted value, and not reached yet
    std::uint64_t filled;   // reached
    std::uint64_t pending;  // of `open`, those from which the fill goes on
};

// The working buffer, cut into its parts: words, the stack of words that have pending pixels, and for each
// row whether its words have been made.
struct Parts {
    std::ptrdiff_t words, stack, rows, all;
    explicit Parts(Size size) {
        std::ptrdiff_t const count = WordsOf(size.width) * size.height;
        words = 0;
        stack = words + count * static_cast<std::ptrdiff_t>(sizeof(Word));
        rows = stack + count * static_cast<std::ptrdiff_t>(sizeof(std::ptrdiff_t));
        all = rows + size.height + static_cast<std::ptrdiff_t>(alignof(Word));
    }
};

template <typename T> class Fill {
public:
    Fill(Rows<T> image, Size size, T wanted, bool eightNeighbours, void* buffer)
        : image_(image),
          size_(size),
          wanted_(wanted),
          eightNeighbours_(eightNeighbours),
          wordsPerRow_(WordsOf(size.width)) {
        Parts const parts(size);
        auto const address = reinterpret_cast<std::uintptr_t>(buffer);
        unsigned char* const start = static_cast<unsigned char*>(buffer) + (-address & (alignof(Word) - 1));
        words_ = reinterpret_cast<Word*>(start + parts.words);
        stack_ = reinterpret_cast<std::ptrdiff_t*>(start + parts.stack);
        made_ = start + parts.rows;
        std::memset(made_, 0, static_cast<std::size_t>(size.height));
    }

    // Pixels of another value start nothing.
    void Start(std::ptrdiff_t x, std::ptrdiff_t y) { Reach(y, x / 64, std::uint64_t{1} << (x % 64)); }
    void StartRow(std::ptrdiff_t y) {
        for (std::ptrdiff_t word = 0; word < wordsPerRow_; ++word) Reach(y, word, ~std::uint64_t{0});
    }

    void Run() {
        while (depth_ > 0) {
            std::ptrdiff_t const index = stack_[--depth_];
            Spread(index / wordsPerRow_, index % wordsPerRow_);
        }
    }

    void Write(T value) {
        std::uint64_t bits[kChunk];
        for (std::ptrdiff_t y = 0; y < size_.height; ++y) {
            if (!made_[y]) continue;
            for (std::ptrdiff_t first = 0; first < wordsPerRow_; first += kChunk) {
                std::ptrdiff_t const count = std::min(wordsPerRow_ - first, kChunk);
                for (std::ptrdiff_t i = 0; i < count; ++i) bits[i] = At(y, first + i).filled;
                std::ptrdiff_t const width = std::min<std::ptrdiff_t>(size_.width - first * 64, count * 64);
                SetWhere(image_[y] + first * 64, width, value, bits);
            }
        }
    }

private:
    static constexpr std::ptrdiff_t kChunk = 64;

    Word& At(std::ptrdiff_t y, std::ptrdiff_t word) { return words_[y * wordsPerRow_ + word]; }

    void Make(std::ptrdiff_t y) {
        made_[y] = 1;
        std::uint64_t bits[kChunk];
        for (std::ptrdiff_t first = 0; first < wordsPerRow_; first += kChunk) {
            std::ptrdiff_t const count = std::min(wordsPerRow_ - first, kChunk);
            std::ptrdiff_t const width = std::min<std::ptrdiff_t>(size_.width - first * 64, count * 64);
            FindEqual(image_[y] + first * 64, width, wanted_, bits);
            for (std::ptrdiff_t i = 0; i < count; ++i) At(y, first + i) = {bits[i], 0, 0};
        }
    }

    // The fill comes to these pixels, from a neighbour or from outside.
    void Reach(std::ptrdiff_t y, std::ptrdiff_t word, std::uint64_t bits) {
        if (!made_[y]) Make(y);
        Word& here = At(y, word);
        bits &= here.open;
        if (bits == 0) return;
        // A word with pending pixels stands on the stack already, so the stack never outgrows the words.
        if (here.pending == 0) stack_[depth_++] = y * wordsPerRow_ + word;
        here.pending |= bits;
    }

    void Spread(std::ptrdiff_t y, std::ptrdiff_t word) {
        Word& here = At(y, word);
        std::uint64_t const reached = SpreadAlongRuns(here.pending, here.open);
        here.pending = 0;
        here.open &= ~reached;
        here.filled |= reached;

        bool const fromFirst = (reached & 1) != 0 && word > 0;
        bool const fromLast = (reached & kLastBit) != 0 && word + 1 < wordsPerRow_;
        if (fromFirst) Reach(y, word - 1, kLastBit);
        if (fromLast) Reach(y, word + 1, 1);
        std::uint64_t const beside = eightNeighbours_ ? reached | reached << 1 | reached >> 1 : reached;
        for (std::ptrdiff_t const row : {y - 1, y + 1}) {
            if (row < 0 || row >= size_.height) continue;
            Reach(row, word, beside);
            if (eightNeighbours_ && fromFirst) Reach(row, word - 1, kLastBit);
            if (eightNeighbours_ && fromLast) Reach(row, word + 1, 1);
        }
    }

    Rows<T> image_;
    Size size_;
    T wanted_;
    bool eightNeighbours_;
    std::ptrdiff_t wordsPerRow_;
    Word* words_;
    std::ptrdiff_t* stack_;
    unsigned char* made_;
    std::ptrdiff_t depth_ = 0;
};

template <typename T>
Status FillFromSeed(T* image, std::ptrdiff_t step, Size size, int seedX, int seedY, T value,
                    bool eightNeighbours, void* buffer) {
    if (!image || !buffer) return kNullPointer;
    if (size.width < 1 || size.height < 1) return kBadSize;
    if (seedX < 0 || seedY < 0 || seedX >= size.width || seedY >= size.height) return kBadIndex;
    Rows<T> const rows{image, step};
    T const wanted = rows[seedY][seedX];
    if (wanted == value) return kDone;
    Fill<T> fill(rows, size, wanted, eightNeighbours, buffer);
    fill.Start(seedX, seedY);
    fill.Run();
    fill.Write(value);
    return kDone;
}

template <typename T>
Status FillFromBorder(T* image, std::ptrdiff_t step, Size size, T background, T value, bool eightNeighbours,
                      void* buffer) {
    if (!image || !buffer) return kNullPointer;
    if (size.width < 1 || size.height < 1) return kBadSize;
    if (background == value) return kDone;
    Fill<T> fill({image, step}, size, background, eightNeighbours, buffer);
    fill.StartRow(0);
    fill.StartRow(size.height - 1);
    for (std::ptrdiff_t y = 0; y < size.height; ++y) {
        fill.Start(0, y);
        fill.Start(size.width - 1, y);
    }
    fill.Run();
    fill.Write(value);
    return kDone;
}

}  // namespace

Status ippiFloodFillGetSize(Size size, std::size_t* bytes) noexcept {
    if (!bytes) return kNullPointer;
    if (size.width < 1 || size.height < 1) return kBadSize;
    // A word of 64 pixels takes at least 64 bytes of image, so this cannot overflow where the image exists.
    if (WordsOf(size.width) > PTRDIFF_MAX / 64 / size.height) return kBadSize;
    *bytes = static_cast<std::size_t>(Parts(size).all);
    return kDone;
}

#define ZPA_FILL(T)                                                                                    \
    Status ippiFloodFill_4Con(T* image, std::ptrdiff_t step, Size size, int seedX, int seedY, T value, \
                              void* buffer) noexcept {                                                 \
        return FillFromSeed(image, step, size, seedX, seedY, value, false, buffer);                    \
    }                                                                                                  \
    Status ippiFloodFill_8Con(T* image, std::ptrdiff_t step, Size size, int seedX, int seedY, T value, \
                              void* buffer) noexcept {                                                 \
        return FillFromSeed(image, step, size, seedX, seedY, value, true, buffer);                     \
    }                                                                                                  \
    Status FloodFillFromBorder(T* image, std::ptrdiff_t step, Size size, T background, T value,        \
                               bool eightNeighbours, void* buffer) noexcept {                          \
        return FillFromBorder(image, step, size, background, value, eightNeighbours, buffer);          \
    }
ZPA_FILL(std::uint8_t)
ZPA_FILL(std::uint16_t)
#undef ZPA_FILL

}  // namespace ZPA
