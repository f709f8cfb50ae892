// Means over the blocks of a 16-bit image.
#ifndef ZPA_PRIMITIVES_BLOCKMEANS_H
#define ZPA_PRIMITIVES_BLOCKMEANS_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// Sums over larger blocks can pass 31 bits.
inline constexpr int kLargestBlock = 181;

// The means over `blocks` squares side by side, of `side` pixels each way, truncated toward zero. Rows are
// `stride` elements apart. A side is from 1 to kLargestBlock. The means may be written over the pixels: every
// block is read before its own mean is written.
void BlockMeans(std::uint16_t const* pixels, std::ptrdiff_t stride, int side, std::ptrdiff_t blocks,
                std::uint16_t* means);
void BlockMeans(std::int16_t const* pixels, std::ptrdiff_t stride, int side, std::ptrdiff_t blocks,
                std::int16_t* means);

// The same over the pixels that are not `code`; `code` where there are none.
void BlockMeansWithout(std::uint16_t code, std::uint16_t const* pixels, std::ptrdiff_t stride, int side,
                       std::ptrdiff_t blocks, std::uint16_t* means);
void BlockMeansWithout(std::int16_t code, std::int16_t const* pixels, std::ptrdiff_t stride, int side,
                       std::ptrdiff_t blocks, std::int16_t* means);

}  // namespace ZPA

#endif
