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

// A word of the image.
struct Place {
    std::int32_t y;
    std::int32_t word;
};

// The working buffer, cut into its parts: two rows of words for each row of the image, the stack of places
// that have pending pixels, and for each row whether its words have been made.
struct Parts {
    std::int64_t words, stack, rows, all;
    explicit Parts(Size size) {
        std::int64_t const count = std::int64_t{WordsOf(size.width)} * size.height;
        words = 0;
        stack = words + 2 * count * std::int64_t{sizeof(std::uint64_t)};
        rows = stack + count * std::int64_t{sizeof(Place)};
        all = rows + size.height + kAlignment;
    }
    static constexpr int kAlignment = alignof(std::uint64_t);
};

// A search from its starting pixels through all that are open and connected with them. find(y, bits) sets the
// bits of a row's pixels that are open, and clears the others; it is called for rows that the search reaches.
template <typename Find> class Fill {
public:
    Fill(Find const& find, Size size, bool eightNeighbours, void* buffer)
        : find_(find), size_(size), eightNeighbours_(eightNeighbours), wordsPerRow_(WordsOf(size.width)) {
        Parts const parts(size);
        auto const address = reinterpret_cast<std::uintptr_t>(buffer);
        unsigned char* const start =
            static_cast<unsigned char*>(buffer) + (-address & (Parts::kAlignment - 1));
        words_ = reinterpret_cast<std::uint64_t*>(start + parts.words);
        stack_ = reinterpret_cast<Place*>(start + parts.stack);
        made_ = start + parts.rows;
        std::memset(made_, 0, static_cast<std::size_t>(size.height));
    }

    void RunFrom(int x, int y) {
        Start(x, y);
        Run();
    }

    // Reaches all rows.
    void RunFromBorder() {
        for (int word = 0; word < wordsPerRow_; ++word) {
            Reach(0, word, ~std::uint64_t{0});
            Reach(size_.height - 1, word, ~std::uint64_t{0});
        }
        for (int y = 0; y < size_.height; ++y) {
            Start(0, y);
            Start(size_.width - 1, y);
        }
        Run();
    }

    // Calls use(y, bits) for every row that was reached, with the open pixels that were not.
    template <typename Use> void ForUnreached(Use const& use) {
        for (int y = 0; y < size_.height; ++y)
            if (made_[y]) use(y, Open(y));
    }

    // The same with the pixels that were reached. They are found again, for that is faster than to keep them.
    template <typename Use> void ForReached(Use const& use) {
        ForUnreached([&](int y, std::uint64_t const* unreached) {
            std::uint64_t* const bits = Pending(y);  // none is pending any more
            find_(y, bits);
            for (std::ptrdiff_t i = 0; i < wordsPerRow_; ++i) bits[i] &= ~unreached[i];
            use(y, bits);
        });
    }

private:
    // Pixels that were not reached yet.
    std::uint64_t* Open(std::ptrdiff_t y) { return words_ + 2 * y * wordsPerRow_; }
    // Of those, the ones from which the fill goes on.
    std::uint64_t* Pending(std::ptrdiff_t y) { return Open(y) + wordsPerRow_; }

    void Make(int y) {
        made_[y] = 1;
        find_(y, Open(y));
        std::fill_n(Pending(y), wordsPerRow_, 0);
    }

    // Pixels that are not open start nothing.
    void Start(int x, int y) { Reach(y, x / 64, std::uint64_t{1} << (x % 64)); }

    // The fill comes to these pixels, from a neighbour or from outside.
    void Reach(int y, int word, std::uint64_t bits) {
        if (!made_[y]) Make(y);
        bits &= Open(y)[word];
        if (bits == 0) return;
        std::uint64_t& pending = Pending(y)[word];
        // A word with pending pixels stands on the stack already, so the stack never outgrows the words.
        if (pending == 0) stack_[depth_++] = {y, word};
        pending |= bits;
    }

    void Run() {
        while (depth_ > 0) Spread(stack_[--depth_]);
    }

    void Spread(Place at) {
        std::uint64_t& open = Open(at.y)[at.word];
        std::uint64_t& pending = Pending(at.y)[at.word];
        std::uint64_t const reached = SpreadAlongRuns(pending, open);
        pending = 0;
        open &= ~reached;

        bool const fromFirst = (reached & 1) != 0 && at.word > 0;
        bool const fromLast = (reached & kLastBit) != 0 && at.word + 1 < wordsPerRow_;
        if (fromFirst) Reach(at.y, at.word - 1, kLastBit);
        if (fromLast) Reach(at.y, at.word + 1, 1);
        std::uint64_t const beside = eightNeighbours_ ? reached | reached << 1 | reached >> 1 : reached;
        for (int const y : {at.y - 1, at.y + 1}) {
            if (y < 0 || y >= size_.height) continue;
            Reach(y, at.word, beside);
            if (eightNeighbours_ && fromFirst) Reach(y, at.word - 1, kLastBit);
            if (eightNeighbours_ && fromLast) Reach(y, at.word + 1, 1);
        }
    }

    Find find_;
    Size size_;
    bool eightNeighbours_;
    std::ptrdiff_t wordsPerRow_;
    std::uint64_t* words_;
    Place* stack_;
    unsigned char* made_;
    std::ptrdiff_t depth_ = 0;
};

// Finds the pixels of one value.
template <typename T> auto Equals(Rows<T> const& image, Size size, T value) {
    return [=](int y, std::uint64_t* bits) { FindEqual(image[y], size.width, value, bits); };
}

// Gives pixels a value.
template <typename T> auto Sets(Rows<T> const& image, Size size, T value) {
    return [=](int y, std::uint64_t const* bits) { SetWhere(image[y], size.width, value, bits); };
}

template <typename T>
Status FillFromSeed(T* image, std::ptrdiff_t step, Size size, int seedX, int seedY, T value,
                    bool eightNeighbours, void* buffer) {
    Status const status = CheckSeed(image, size, seedX, seedY, buffer);
    if (status != kDone) return status;
    Rows<T> const rows{image, step};
    T const wanted = rows[seedY][seedX];
    if (wanted == value) return kDone;
    Fill fill(Equals(rows, size, wanted), size, eightNeighbours, buffer);
    fill.RunFrom(seedX, seedY);
    fill.ForReached(Sets(rows, size, value));
    return kDone;
}

template <typename T>
Status FillFromBorder(T* image, std::ptrdiff_t step, Size size, T background, T value, bool eightNeighbours,
                      void* buffer) {
    if (!image || !buffer) return kNullPointer;
    if (size.width < 1 || size.height < 1) return kBadSize;
    if (background == value) return kDone;
    Rows<T> const rows{image, step};
    Fill fill(Equals(rows, size, background), size, eightNeighbours, buffer);
    fill.RunFromBorder();
    fill.ForReached(Sets(rows, size, value));
    return kDone;
}

template <typename T>
Status FillHolesOf(T* image, std::ptrdiff_t step, Size size, bool eightNeighbours, void* buffer) {
    if (!image || !buffer) return kNullPointer;
    if (size.width < 1 || size.height < 1) return kBadSize;
    Rows<T> const rows{image, step};
    constexpr T kMarker = std::numeric_limits<T>::max();
    bool anyMarker = false;
    auto const findZeros = [&](int y, std::uint64_t* bits) {
        anyMarker |= FindZeros(rows[y], size.width, bits);
    };
    Fill outside(findZeros, size, eightNeighbours, buffer);
    outside.RunFromBorder();
    auto const close = [&](int y, std::uint64_t const* bits) { SetToPixelBefore(rows[y], size.width, bits); };
    outside.ForUnreached(close);
    if (!anyMarker) return kDone;

    // Foreground of the marker's value connects with the outside once that is marked.
    outside.ForReached(Sets(rows, size, kMarker));
    return FillFromBorder(image, step, size, kMarker, T{0}, eightNeighbours, buffer);
}

template <typename T> void CloseZerosOf(Rows<T> const& rows, Size size) {
    constexpr std::ptrdiff_t kAtOnce = 4096;
    std::uint64_t bits[WordsOf(kAtOnce)];
    for (int y = 0; y < size.height; ++y)
        for (std::ptrdiff_t x = 0; x < size.width; x += kAtOnce) {
            std::ptrdiff_t const count = std::min(size.width - x, kAtOnce);
            FindZeros(rows[y] + x, count, bits);
            SetToPixelBefore(rows[y] + x, count, bits);
        }
}

}  // namespace

Status ippiFloodFillGetSize(Size size, std::uint64_t* bytes) noexcept {
    if (!bytes) return kNullPointer;
    if (size.width < 1 || size.height < 1) return kBadSize;
    *bytes = static_cast<std::uint64_t>(Parts(size).all);
    return kDone;
}

Status CheckSeed(void const* image, Size size, int seedX, int seedY, void const* buffer) noexcept {
    if (!image || !buffer) return kNullPointer;
    if (size.width < 1 || size.height < 1) return kBadSize;
    if (seedX < 0 || seedY < 0 || seedX >= size.width || seedY >= size.height) return kBadIndex;
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
    }                                                                                                  \
    void CloseZeros(T* image, std::ptrdiff_t step, Size size) noexcept {                               \
        CloseZerosOf(Rows<T>{image, step}, size);                                                      \
    }
ZPA_FILL(std::uint8_t)
ZPA_FILL(std::uint16_t)
#undef ZPA_FILL

}  // namespace ZPA
