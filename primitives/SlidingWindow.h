// What the means over a sliding window have in common.
#ifndef ZPA_PRIMITIVES_SLIDINGWINDOW_H
#define ZPA_PRIMITIVES_SLIDINGWINDOW_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "primitives/Status.h"

namespace ZPA {

// Images are contiguous, and an output shares no memory with an input. The window has odd sizes of 3 and
// more, and is not larger than the image; at the edges it is cut off. Callers see to all of that.

// The number of columns, or rows, that lie both in the window and in the image.
inline std::ptrdiff_t CountInside(std::ptrdiff_t centre, std::ptrdiff_t half, std::ptrdiff_t size) {
    return std::min(centre + half, size - 1) - std::max<std::ptrdiff_t>(centre - half, 0) + 1;
}

// Room on either side of an array of column sums, for the whole vectors of any instruction set.
inline constexpr std::ptrdiff_t kVectorRoom = 64;

// Sums of columns stand between zeros: those of the columns outside of the image, so that a window that is
// cut off needs no loop of its own.
inline std::ptrdiff_t PaddedColumns(Size image, Size window) {
    return std::ptrdiff_t{image.width} + window.width + 2 * kVectorRoom;
}

// Where the first column of the image stands in them.
inline std::ptrdiff_t FirstColumn(Size window) { return window.width / 2 + 1 + kVectorRoom; }

}  // namespace ZPA

#endif
