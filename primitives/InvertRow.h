// Row kernels that invert pixels. Each works on one row, on the caller's thread.
#ifndef ZPA_PRIMITIVES_INVERTROW_H
#define ZPA_PRIMITIVES_INVERTROW_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// to[x] becomes from[x] ^ key where the mask byte is not zero, or everywhere without a mask. `to` may be
// `from`.
void FlipBits(std::uint8_t const* from, std::uint8_t const* mask, std::ptrdiff_t count, std::uint8_t key,
              std::uint8_t* to);
void FlipBits(std::uint16_t const* from, std::uint8_t const* mask, std::ptrdiff_t count, std::uint16_t key,
              std::uint16_t* to);

// to[x] becomes 1 where from[x] is 0, and else 0, where the mask byte is 1, or everywhere without a mask.
// `to` may be `from`.
void Negate(std::uint8_t const* from, std::uint8_t const* mask, std::ptrdiff_t count, std::uint8_t* to);
void Negate(std::uint16_t const* from, std::uint8_t const* mask, std::ptrdiff_t count, std::uint16_t* to);

}  // namespace ZPA

#endif
