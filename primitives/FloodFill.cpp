// Fills of connected pixels. The pixels of the wanted value are found row by row as bits, and the fill
// spreads through words of 64 of them: a run inside a word is filled by a few instructions, however long or
// broken it is.
#include "primitives/FloodFill.h"

#include <algorithm>
#include <cstring>
#include <limits>

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

// A row's pixels are looked at in parts of so many words.
constexpr std::ptrdiff_t kPartWords = 64;

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

// A search from its starting pixels through all that are open and connected with them. find(y, x, width, bits)
// sets the bits of the pixels that are open in a part of a row; it is called for rows that the search reaches.
template <typename Find> class Fill {
public:
    Fill(Find const& find, Size size, bool eightNeighbours, void* buffer)
        : find_(find), size_(size), eightNeighbours_(eightNeighbours), wordsPerRow_(WordsOf(size.width)) {
        Parts const parts(size);
        auto const address = reinterpret_cast<std::uintptr_t>(buffer);
        unsigned char* const start = static_cast<unsigned char*>(buffer) + (-address & (alignof(Word) - 1));
        words_ = reinterpret_cast<Word*>(start + parts.words);
        stack_ = reinterpret_cast<std::ptrdiff_t*>(start + parts.stack);
        made_ = start + parts.rows;
        std::memset(made_, 0, static_cast<std::size_t>(size.height));
    }

    void RunFrom(std::ptrdiff_t x, std::ptrdiff_t y) {
        Start(x, y);
        Run();
    }

    // Reaches all rows.
    void RunFromBorder() {
        for (std::ptrdiff_t word = 0; word < wordsPerRow_; ++word) {
            Reach(0, word, ~std::uint64_t{0});
            Reach(size_.height - 1, word, ~std::uint64_t{0});
        }
        for (std::ptrdiff_t y = 0; y < size_.height; ++y) {
            Start(0, y);
            Start(size_.width - 1, y);
        }
        Run();
    }

    // Calls use(y, x, width, bits) for all parts of the rows that were reached.
    template <typename Use> void ForEachPart(std::uint64_t Word::*kept, Use const& use) {
        for (std::ptrdiff_t y = 0; y < size_.height; ++y)
            if (made_[y])
                ForPartsOf(y, [&](std::ptrdiff_t x, std::ptrdiff_t width, Word const* words) {
                    std::uint64_t bits[kPartWords];
                    for (std::ptrdiff_t i = 0; i < WordsOf(width); ++i) bits[i] = words[i].*kept;
                    use(y, x, width, bits);
                });
    }

private:
    // Calls work(x, width, words) for the parts of a row.
    template <typename Work> void ForPartsOf(std::ptrdiff_t y, Work const& work) {
        Word* words = words_ + y * wordsPerRow_;
        for (std::ptrdiff_t x = 0; x < size_.width; x += kPartWords * 64, words += kPartWords)
            work(x, std::min<std::ptrdiff_t>(size_.width - x, kPartWords * 64), words);
    }

    void Make(std::ptrdiff_t y) {
        made_[y] = 1;
        ForPartsOf(y, [&](std::ptrdiff_t x, std::ptrdiff_t width, Word* words) {
            std::uint64_t bits[kPartWords];
            find_(y, x, width, bits);
            for (std::ptrdiff_t i = 0; i < WordsOf(width); ++i) words[i] = {bits[i], 0, 0};
        });
    }

    // Pixels that are not open start nothing.
    void Start(std::ptrdiff_t x, std::ptrdiff_t y) { Reach(y, x / 64, std::uint64_t{1} << (x % 64)); }

    // The fill comes to these pixels, from a neighbour or from outside.
    void Reach(std::ptrdiff_t y, std::ptrdiff_t word, std::uint64_t bits) {
        if (!made_[y]) Make(y);
        Word& here = words_[y * wordsPerRow_ + word];
        bits &= here.open;
        if (bits == 0) return;
        // A word with pending pixels stands on the stack already, so the stack never outgrows the words.
        if (here.pending == 0) stack_[depth_++] = y * wordsPerRow_ + word;
        here.pending |= bits;
    }

    void Run() {
        while (depth_ > 0) {
            std::ptrdiff_t const index = stack_[--depth_];
            Spread(index / wordsPerRow_, index % wordsPerRow_);
        }
    }

    void Spread(std::ptrdiff_t y, std::ptrdiff_t word) {
        Word& here = words_[y * wordsPerRow_ + word];
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

    Find find_;
    Size size_;
    bool eightNeighbours_;
    std::ptrdiff_t wordsPerRow_;
    Word* words_;
    std::ptrdiff_t* stack_;
    unsigned char* made_;
    std::ptrdiff_t depth_ = 0;
};

// Finds the pixels of one value.
template <typename T> auto Equals(Rows<T> const& image, T value) {
    return [=](std::ptrdiff_t y, std::ptrdiff_t x, std::ptrdiff_t width, std::uint64_t* bits) {
        FindEqual(image[y] + x, width, value, bits);
    };
}

// Gives pixels a value.
template <typename T> auto Sets(Rows<T> const& image, T value) {
    return [=](std::ptrdiff_t y, std::ptrdiff_t x, std::ptrdiff_t width, std::uint64_t const* bits) {
        SetWhere(image[y] + x, width, value, bits);
    };
}

template <typename T>
Status FillFromSeed(T* image, std::ptrdiff_t step, Size size, int seedX, int seedY, T value,
                    bool eightNeighbours, void* buffer) {
    if (!image || !buffer) return kNullPointer;
    if (size.width < 1 || size.height < 1) return kBadSize;
    if (seedX < 0 || seedY < 0 || seedX >= size.width || seedY >= size.height) return kBadIndex;
    Rows<T> const rows{image, step};
    T const wanted = rows[seedY][seedX];
    if (wanted == value) return kDone;
    Fill fill(Equals(rows, wanted), size, eightNeighbours, buffer);
    fill.RunFrom(seedX, seedY);
    fill.ForEachPart(&Word::filled, Sets(rows, value));
    return kDone;
}

template <typename T>
Status FillFromBorder(T* image, std::ptrdiff_t step, Size size, T background, T value, bool eightNeighbours,
                      void* buffer) {
    if (!image || !buffer) return kNullPointer;
    if (size.width < 1 || size.height < 1) return kBadSize;
    if (background == value) return kDone;
    Rows<T> const rows{image, step};
    Fill fill(Equals(rows, background), size, eightNeighbours, buffer);
    fill.RunFromBorder();
    fill.ForEachPart(&Word::filled, Sets(rows, value));
    return kDone;
}

template <typename T>
Status FillHolesOf(T* image, std::ptrdiff_t step, Size size, bool eightNeighbours, void* buffer) {
    if (!image || !buffer) return kNullPointer;
    if (size.width < 1 || size.height < 1) return kBadSize;
    Rows<T> const rows{image, step};
    auto const isZero = Equals(rows, T{0});
    auto const isMarker = Equals(rows, std::numeric_limits<T>::max());
    bool anyMarker = false;
    auto const findZeros = [&](std::ptrdiff_t y, std::ptrdiff_t x, std::ptrdiff_t width,
                               std::uint64_t* bits) {
        isMarker(y, x, width, bits);
        anyMarker =
            anyMarker || std::any_of(bits, bits + WordsOf(width), [](auto word) { return word != 0; });
        isZero(y, x, width, bits);
    };
    Fill outside(findZeros, size, eightNeighbours, buffer);
    outside.RunFromBorder();
    auto const close = [&](std::ptrdiff_t y, std::ptrdiff_t x, std::ptrdiff_t width,
                           std::uint64_t const* bits) { SetToPixelBefore(rows[y] + x, width, bits); };
    outside.ForEachPart(&Word::open, close);
    if (!anyMarker) return kDone;

    // The zeros that are left are the outside, which the marker stands for.
    auto const findMarked = [&](std::ptrdiff_t y, std::ptrdiff_t x, std::ptrdiff_t width,
                                std::uint64_t* bits) {
        std::uint64_t zeros[kPartWords];
        isZero(y, x, width, zeros);
        isMarker(y, x, width, bits);
        for (std::ptrdiff_t i = 0; i < WordsOf(width); ++i) bits[i] |= zeros[i];
    };
    Fill marked(findMarked, size, eightNeighbours, buffer);
    marked.RunFromBorder();
    marked.ForEachPart(&Word::filled, Sets(rows, T{0}));
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
    }                                                                                                  \
    Status FloodHoles(T* image, std::ptrdiff_t step, Size size, bool eightNeighbours,                  \
                      void* buffer) noexcept {                                                         \
        return FillHolesOf(image, step, size, eightNeighbours, buffer);                                \
    }
ZPA_FILL(std::uint8_t)
ZPA_FILL(std::uint16_t)
#undef ZPA_FILL

}  // namespace ZPA
