// Means over the blocks of an image of 16-bit pixels or doubles.
#ifndef ZPA_PRIMITIVES_BLOCKMEANS_H
#define ZPA_PRIMITIVES_BLOCKMEANS_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// Sums of 16-bit pixels over larger blocks can pass 31 bits.
inline constexpr int kLargestBlock = 181;

// The means over `blocks` squares side by side, of `side` pixels each way. Rows are `stride` elements apart. The
// means may be written over the pixels: every block is read before its own mean is written.
//
// Means of 16-bit pixels are truncated toward zero; their side is from 1 to kLargestBlock. Doubles are added row
// by row in extended precision; their side is any from 1.
void BlockMeans(std::uint16_t const* pixels, std::ptrdiff_t stride, int side, std::ptrdiff_t blocks,
                std::uint16_t* means);
void BlockMeans(std::int16_t const* pixels, std::ptrdiff_t stride, int side, std::ptrdiff_t blocks,
                std::int16_t* means);
void BlockMeans(double const* pixels, std::ptrdiff_t stride, int side, std::ptrdiff_t blocks, double* means);

// The same over the pixels that are not `code`; `code` where there are none.
void BlockMeansWithout(std::uint16_t code, std::uint16_t const* pixels, std::ptrdiff_t stride, int side,
                       std::ptrdiff_t blocks, std::uint16_t* means);
void BlockMeansWithout(std::int16_t code, std::int16_t const* pixels, std::ptrdiff_t stride, int side,
                       std::ptrdiff_t blocks, std::int16_t* means);
void BlockMeansWithout(double code, double const* pixels, std::ptrdiff_t stride, int side,
                       std::ptrdiff_t blocks, double* means);

}  // namespace ZPA

#endif
