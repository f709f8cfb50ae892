// Standard scores of a row.
#ifndef ZPA_PRIMITIVES_SCOREROW_H
#define ZPA_PRIMITIVES_SCOREROW_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// to[x] becomes (from[x] - mean) / deviation where the mask byte is not zero, or everywhere without a mask; 0
// if the deviation is 0. Integers take the score toward zero to 32 bits, and of that the low bits; 0 where
// there is no such number. `to` may be `from`. Served: 8u, 16u, 32f and 64f.
template <typename T>
void ScoreRow(T const* from, std::uint8_t const* mask, std::ptrdiff_t count, double mean, double deviation,
              T* to);

}  // namespace ZPA

#endif
