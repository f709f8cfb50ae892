// What the filters have in common: what they refuse, and how they share their work and go down an image.
#ifndef ZPA_PRIMITIVES_FILTERING_H
#define ZPA_PRIMITIVES_FILTERING_H

#include <omp.h>

#include <algorithm>
#include <cstdint>

#include "primitives/ForEachRow.h"

namespace ZPA {

template <typename T, typename K> struct Filtering {
    Rows<T const> source;  // from the region's first pixel on
    Rows<T> destination;
    Size size;
    K const* kernel;
    Size kernelSize;
    int anchorX;
    int anchorY;

    Status Check() const {
        if (!source.first || !destination.first || !kernel) return kNullPointer;
        if (size.width < 1 || size.height < 1 || kernelSize.width < 1 || kernelSize.height < 1)
            return kBadSize;
        bool const inside =
            anchorX >= 0 && anchorX < kernelSize.width && anchorY >= 0 && anchorY < kernelSize.height;
        return inside ? kDone : kAnchorOutside;
    }
    std::int64_t Taps() const { return std::int64_t{kernelSize.width} * kernelSize.height; }
    // Pixels of a row that the kernel reads over the whole region.
    std::ptrdiff_t ReadWidth() const { return std::ptrdiff_t{size.width} + kernelSize.width - 1; }
    // The first of them, in row y of those that it reads.
    T const* ReadRow(std::ptrdiff_t y) const { return source[y - anchorY] - anchorX; }
};

// Into how many bands ForEachBand may divide: what each works in has to be there in advance.
inline int MostBands() { return std::max(1, omp_get_max_threads()); }

// Calls work(band, first, end) for bands of rows that together are all. `workPerRow` is counted as in
// ForEachRow.
template <typename Work> void ForEachBand(int height, std::int64_t workPerRow, Work const& work) noexcept {
    bool const isWorth = std::min(workPerRow, kParallelWork) * height >= kParallelWork;
    int const bands = isWorth ? std::min(MostBands(), height) : 1;
    ForEachRow(bands, isWorth ? kParallelWork : 0, [&](int band) noexcept {
        auto const at = [&](int which) { return static_cast<int>(std::int64_t{height} * which / bands); };
        work(band, at(band), at(band + 1));
    });
}

// Work memory begins at a cache line, and has its rows there: a vector that lies across two costs twice.
inline constexpr std::uint64_t kCacheLine = 64;
template <typename T> T* FirstAligned(void* memory) {
    auto const at = reinterpret_cast<std::uintptr_t>(memory);
    return reinterpret_cast<T*>((at + kCacheLine - 1) / kCacheLine * kCacheLine);
}
template <typename T> std::uint64_t WholeLines(std::uint64_t elements) {
    constexpr std::uint64_t kElements = kCacheLine / sizeof(T);
    return (elements + kElements - 1) / kElements * kElements;
}

// What work memory that no machine has counts as.
inline constexpr std::uint64_t kNoWorkSize = UINT64_MAX;
// Bytes of what each of the bands works in, and of what they share; kNoWorkSize where they pass the address space.
template <typename T>
std::uint64_t WorkBytes(std::uint64_t bands, std::uint64_t bandElements, std::uint64_t shared) {
    constexpr std::uint64_t kMost = (PTRDIFF_MAX - kCacheLine) / sizeof(T);
    if (shared > kMost || (bands > 0 && bandElements > (kMost - shared) / bands)) return kNoWorkSize;
    return (bands * bandElements + shared) * sizeof(T) + kCacheLine;
}

// Two passes are worth it where they save half of the multiply-adds; benchmarks/LinearFilters.cpp found it.
inline bool IsWorthSeparating(Size kernel) {
    return std::int64_t{kernel.width} * kernel.height > 2 * (std::int64_t{kernel.width} + kernel.height);
}

// Rows that are used at once, and that the memory that SlideDown works in has room for.
inline constexpr int kRowsAtOnce = 16;
inline std::uint64_t SlidingRows(int kernelHeight) {
    return static_cast<std::uint64_t>(kernelHeight) + kRowsAtOnce - 1;
}

// Makes every row that a kernel reads over the rows from `first` up to `end` once: fill(y, row) makes row y of
// them in memory, where each is `stride` elements from the next, and use(rows, y, count) may then use the rows
// under the kernel from the region's row y on, for `count` rows.
template <typename T, typename Fill, typename Use>
void SlideDown(T* memory, std::ptrdiff_t stride, int kernelHeight, int first, int end, Fill const& fill,
               Use const& use) noexcept {
    std::ptrdiff_t const kept = kernelHeight - 1;
    for (std::ptrdiff_t i = 0; i < kept; ++i) fill(first + i, memory + i * stride);
    for (int y = first; y < end; y += kRowsAtOnce) {
        int const count = std::min(kRowsAtOnce, end - y);
        for (std::ptrdiff_t i = kept; i < kept + count; ++i) fill(y + i, memory + i * stride);
        use(memory, y, count);
        if (y + count < end) std::copy_n(memory + count * stride, kept * stride, memory);
    }
}

}  // namespace ZPA

#endif
