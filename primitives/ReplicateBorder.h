// Copies of a region within a border that repeats its edge pixels.
#ifndef ZPA_PRIMITIVES_REPLICATEBORDER_H
#define ZPA_PRIMITIVES_REPLICATEBORDER_H

#include <algorithm>
#include <cstring>

#include "primitives/Status.h"

namespace ZPA {

// A row of `width` pixels, with the first one repeated `left` times before it and the last one `right` times
// behind it.
template <typename T>
void CopyWithinBorder(T const* row, std::ptrdiff_t width, std::ptrdiff_t left, std::ptrdiff_t right,
                      T* result) noexcept {
    std::fill_n(result, left, row[0]);
    std::memcpy(result + left, row, static_cast<std::size_t>(width) * sizeof(T));
    std::fill_n(result + left + width, right, row[width - 1]);
}

// Fills the destination: the source lies in it `top` rows and `left` columns from its corner, and every pixel
// outside has the value of the source's nearest one. The two must not overlap. A destination that the source
// does not fit into is a bad size.
Status ippiCopyReplicateBorder_8u_C1R(std::uint8_t const* source, std::ptrdiff_t sourceStep, Size sourceSize,
                                      std::uint8_t* destination, std::ptrdiff_t destinationStep,
                                      Size destinationSize, int top, int left) noexcept;
Status ippiCopyReplicateBorder_16u_C1R(std::uint16_t const* source, std::ptrdiff_t sourceStep,
                                       Size sourceSize, std::uint16_t* destination,
                                       std::ptrdiff_t destinationStep, Size destinationSize, int top,
                                       int left) noexcept;

}  // namespace ZPA

#endif
