// What the filters have in common: what they refuse, and how their work is shared among threads.
#ifndef ZPA_PRIMITIVES_FILTERCHECK_H
#define ZPA_PRIMITIVES_FILTERCHECK_H

#include <omp.h>

#include <algorithm>

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
    // The first pixel of a row that the kernel over the region's row 0 reads, counted from its top row.
    T const* ReadRow(std::ptrdiff_t y) const { return source[y - anchorY] - anchorX; }
};

// Runs work(first, end) on bands of rows that together are all. `workPerRow` is counted as in ForEachRow.
template <typename Work> void ForEachBand(int height, std::int64_t workPerRow, Work const& work) noexcept {
    std::int64_t const all = workPerRow * height;
    int const bands = all < kParallelWork ? 1 : std::min(omp_get_max_threads(), height);
    ForEachRow(bands, all / bands, [&](int band) noexcept {
        auto const at = [&](int which) { return static_cast<int>(std::int64_t{height} * which / bands); };
        work(band, at(band), at(band + 1));
    });
}

}  // namespace ZPA

#endif
