// The largest or smallest of several rows, element by element.
#ifndef ZPA_PRIMITIVES_EXTREMEOFROWS_H
#define ZPA_PRIMITIVES_EXTREMEOFROWS_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// result[x] becomes the extreme of rows[0][x] to rows[rowCount - 1][x], rowCount being 1 or more. The result
// may be one of the rows, and may not overlap one otherwise. A count below 1 does nothing.
template <typename T>
using ExtremeOfRows = void (*)(T const* const* rows, std::ptrdiff_t rowCount, T* result,
                               std::ptrdiff_t count);

void MaximumOfRows(std::uint8_t const* const* rows, std::ptrdiff_t rowCount, std::uint8_t* result,
                   std::ptrdiff_t count);
void MaximumOfRows(std::uint16_t const* const* rows, std::ptrdiff_t rowCount, std::uint16_t* result,
                   std::ptrdiff_t count);
void MinimumOfRows(std::uint8_t const* const* rows, std::ptrdiff_t rowCount, std::uint8_t* result,
                   std::ptrdiff_t count);
void MinimumOfRows(std::uint16_t const* const* rows, std::ptrdiff_t rowCount, std::uint16_t* result,
                   std::ptrdiff_t count);

}  // namespace ZPA

#endif
