// Rows become columns.
#ifndef ZPA_PRIMITIVES_TRANSPOSE_H
#define ZPA_PRIMITIVES_TRANSPOSE_H

#include <cstdint>

#include "primitives/Status.h"

namespace ZPA {

// destination[x][y] becomes source[y][x], for `size` elements of the source; rows are `sourceStride` and
// `destinationStride` elements apart. The two may not share memory.
void Transpose(std::uint8_t const* source, std::ptrdiff_t sourceStride, std::uint8_t* destination,
               std::ptrdiff_t destinationStride, Size size);
void Transpose(std::uint16_t const* source, std::ptrdiff_t sourceStride, std::uint16_t* destination,
               std::ptrdiff_t destinationStride, Size size);
void Transpose(std::uint32_t const* source, std::ptrdiff_t sourceStride, std::uint32_t* destination,
               std::ptrdiff_t destinationStride, Size size);
void Transpose(std::uint64_t const* source, std::ptrdiff_t sourceStride, std::uint64_t* destination,
               std::ptrdiff_t destinationStride, Size size);

}  // namespace ZPA

#endif
