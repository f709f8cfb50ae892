// Labels for connected regions. The rows become bits, whose runs are numbered in raster order and connected by
// a union-find structure: each run keeps a run of its region that is not behind it. The one that keeps itself
// is the region's first, so that regions are in the order of their first pixels.
#include "primitives/LabelMarkers.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/LabelMarkers.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <climits>
#include <limits>
#include <utility>

#include "primitives/PixelBits.h"

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Makes two runs' regions one, by M. Rem's algorithm: both paths are walked to the smaller run at once, and
// shortened on the way.
HWY_INLINE void Connect(std::uint32_t* kept, std::uint32_t a, std::uint32_t b) {
    while (kept[a] != kept[b]) {
        if (kept[a] < kept[b]) std::swap(a, b);
        std::uint32_t const next = kept[a];
        kept[a] = kept[b];
        if (next == a) return;
        a = next;
    }
}

// Numbers the row's runs from `next` on, connects them with those of the row above, which are numbered from
// `nextAbove` on, and gives the number behind the last.
std::uint32_t ConnectRow(std::uint64_t const* above, std::uint64_t const* row, std::ptrdiff_t words,
                         bool eightNeighbours, std::uint32_t nextAbove, std::uint32_t next,
                         std::uint32_t* kept) {
    std::uint64_t lastAbove = 0, last = 0;  // the bits before the word
    bool isAwaited = false;                 // a run has begun and met none above
    for (std::ptrdiff_t word = 0; word < words; ++word) {
        std::uint64_t const fromAbove = above[word] << 1 | lastAbove, from = row[word] << 1 | last;
        std::uint64_t const startsAbove = above[word] & ~fromAbove, starts = row[word] & ~from;
        lastAbove = above[word] >> 63;
        last = row[word] >> 63;

        auto const begun = static_cast<std::uint32_t>(__builtin_popcountll(starts));
        for (std::uint32_t i = 0; i < begun; ++i) kept[next + i] = next + i;

        // Two runs touch where one of them begins while the other has not ended or, for eight neighbours,
        // has only just ended.
        std::uint64_t const touching =
            eightNeighbours ? (above[word] | fromAbove) & (row[word] | from) : above[word] & row[word];
        std::uint64_t const contacts = touching & (startsAbove | starts);
        auto const aboveAt = [&](std::uint64_t upTo) {
            return nextAbove + static_cast<std::uint32_t>(__builtin_popcountll(startsAbove & upTo)) - 1;
        };
        auto const at = [&](std::uint64_t upTo) {
            return next + static_cast<std::uint32_t>(__builtin_popcountll(starts & upTo)) - 1;
        };

        // What a run meets first is all that it keeps yet. Carries find it: they go upwards from where a run
        // begins, and end at the next contact.
        std::uint64_t const carries = (starts & ~contacts) + isAwaited;
        std::uint64_t const sum = ~contacts + carries;
        isAwaited = sum < carries;
        std::uint64_t const first = contacts & (sum | starts);
        for (std::uint64_t left = first; left != 0; left &= left - 1) {
            std::uint64_t const upTo = left ^ (left - 1);
            kept[at(upTo)] = kept[aboveAt(upTo)];
        }
        for (std::uint64_t left = contacts & ~first; left != 0; left &= left - 1) {
            std::uint64_t const upTo = left ^ (left - 1);
            Connect(kept, at(upTo), aboveAt(upTo));
        }
        nextAbove += static_cast<std::uint32_t>(__builtin_popcountll(startsAbove));
        next += begun;
    }
    return next;
}

// Gives the pixels of the row's runs their labels, and the pointer behind these.
template <typename T>
std::uint32_t const* LabelRow(T* row, std::ptrdiff_t width, std::uint64_t const* bits,
                              std::uint32_t const* labels) {
    hn::CappedTag<T, 32 / sizeof(T)> const d;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    ForEachRun(bits, width, [&](std::ptrdiff_t first, std::ptrdiff_t end) {
        T const label = static_cast<T>(*labels++);
        if (end + lanes > width) {
            std::fill(row + first, row + end, label);
            return;
        }
        // The last vector may pass the run's end: zeros set that right, and what begins there is still to
        // come.
        for (std::ptrdiff_t x = first; x < end; x += lanes) hn::StoreU(hn::Set(d, label), d, row + x);
        hn::StoreU(hn::Zero(d), d, row + end);
    });
    return labels;
}

std::uint32_t const* LabelRow8u(std::uint8_t* row, std::ptrdiff_t width, std::uint64_t const* bits,
                                std::uint32_t const* labels) {
    return LabelRow(row, width, bits, labels);
}
std::uint32_t const* LabelRow16u(std::uint16_t* row, std::ptrdiff_t width, std::uint64_t const* bits,
                                 std::uint32_t const* labels) {
    return LabelRow(row, width, bits, labels);
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {
namespace {

HWY_EXPORT(ConnectRow);
HWY_EXPORT(LabelRow8u);
HWY_EXPORT(LabelRow16u);

// The working buffer, cut into its parts: the rows' bits, with an empty row above them, and what the runs keep.
struct Parts {
    std::int64_t mostRuns, bits, runs, all;
    explicit Parts(Size size) {
        mostRuns = (std::int64_t{size.width} + 1) / 2 * size.height;
        bits = 0;
        runs = WordsOf(size.width) * (std::int64_t{size.height} + 1) * std::int64_t{sizeof(std::uint64_t)};
        all = runs + mostRuns * std::int64_t{sizeof(std::uint32_t)} + std::int64_t{alignof(std::uint64_t)};
    }
};

bool IsBad(Size size) {
    if (size.width < 1 || size.height < 1) return true;
    Parts const parts(size);
    return parts.mostRuns > INT_MAX || parts.all > PTRDIFF_MAX;
}

std::uint32_t const* LabelRow(std::uint8_t* row, std::ptrdiff_t width, std::uint64_t const* bits,
                              std::uint32_t const* labels) {
    return HWY_DYNAMIC_DISPATCH(LabelRow8u)(row, width, bits, labels);
}
std::uint32_t const* LabelRow(std::uint16_t* row, std::ptrdiff_t width, std::uint64_t const* bits,
                              std::uint32_t const* labels) {
    return HWY_DYNAMIC_DISPATCH(LabelRow16u)(row, width, bits, labels);
}

// Puts labels in the place of what the runs keep, and gives the number of regions.
int NumberRegions(std::uint32_t* kept, std::uint32_t count, std::uint32_t smallest, std::uint32_t largest) {
    int regions = 0;
    std::uint32_t label = smallest;
    for (std::uint32_t run = 0; run < count; ++run) {
        if (kept[run] != run) {
            kept[run] = kept[kept[run]];  // has its label already
            continue;
        }
        ++regions;
        kept[run] = label;
        label = label == largest ? smallest : label + 1;
    }
    return regions;
}

template <typename T>
Status Label(T* image, std::ptrdiff_t step, Size size, int smallest, int largest, int norm, int* regions,
             void* buffer) {
    if (!image || !regions || !buffer) return kNullPointer;
    if (IsBad(size)) return kBadSize;
    if (smallest < 1 || largest < smallest || largest > std::numeric_limits<T>::max()) return kBadArgument;
    if (norm != kInfinityNorm && norm != kL1Norm) return kBadArgument;

    Parts const parts(size);
    auto const address = reinterpret_cast<std::uintptr_t>(buffer);
    unsigned char* const start =
        static_cast<unsigned char*>(buffer) + (-address & (alignof(std::uint64_t) - 1));
    auto* const bits = reinterpret_cast<std::uint64_t*>(start + parts.bits);
    std::uint32_t* const runs = reinterpret_cast<std::uint32_t*>(start + parts.runs);
    std::ptrdiff_t const words = WordsOf(size.width);
    Rows<T> const rows{image, step};
    auto const bitsOf = [&](std::ptrdiff_t y) { return bits + (y + 1) * words; };

    std::fill(bitsOf(-1), bitsOf(0), 0);
    std::uint64_t const lastPixels = ~std::uint64_t{0} >> (words * 64 - size.width);
    std::uint32_t firstAbove = 0, first = 0;
    for (std::ptrdiff_t y = 0; y < size.height; ++y) {
        std::uint64_t* const row = bitsOf(y);
        FindEqual(rows[y], size.width, T{0}, row);
        for (std::ptrdiff_t word = 0; word < words; ++word) row[word] = ~row[word];
        row[words - 1] &= lastPixels;
        std::uint32_t const next = HWY_DYNAMIC_DISPATCH(ConnectRow)(
            bitsOf(y - 1), row, words, norm == kInfinityNorm, firstAbove, first, runs);
        firstAbove = first;
        first = next;
    }
    *regions =
        NumberRegions(runs, first, static_cast<std::uint32_t>(smallest), static_cast<std::uint32_t>(largest));
    std::uint32_t const* labels = runs;
    for (std::ptrdiff_t y = 0; y < size.height; ++y)
        labels = LabelRow(rows[y], size.width, bitsOf(y), labels);
    return kDone;
}

}  // namespace

Status ippiLabelMarkersGetBufferSize(Size size, std::size_t* bytes) noexcept {
    if (!bytes) return kNullPointer;
    if (IsBad(size)) return kBadSize;
    *bytes = static_cast<std::size_t>(Parts(size).all);
    return kDone;
}

Status ippiLabelMarkers(std::uint8_t* image, std::ptrdiff_t step, Size size, int smallest, int largest,
                        int norm, int* regions, void* buffer) noexcept {
    return Label(image, step, size, smallest, largest, norm, regions, buffer);
}
Status ippiLabelMarkers(std::uint16_t* image, std::ptrdiff_t step, Size size, int smallest, int largest,
                        int norm, int* regions, void* buffer) noexcept {
    return Label(image, step, size, smallest, largest, norm, regions, buffer);
}

}  // namespace ZPA
#endif
