// A row of pixels as grey levels of 8 bits.
#ifndef ZPA_PRIMITIVES_GREYROW_H
#define ZPA_PRIMITIVES_GREYROW_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// levels[x] becomes (pixels[x] - black) * scale in the current rounding mode, which is to the nearest even
// number unless the caller has changed it. What has no place in a byte, as not-a-number, becomes 0 in rows of
// doubles, and its low bits in rows of integers. The rows do not overlap.
void GreyRow(std::uint8_t const* pixels, std::ptrdiff_t count, double black, double scale,
             std::uint8_t* levels);
void GreyRow(std::uint16_t const* pixels, std::ptrdiff_t count, double black, double scale,
             std::uint8_t* levels);
void GreyRow(double const* pixels, std::ptrdiff_t count, double black, double scale, std::uint8_t* levels);

}  // namespace ZPA

#endif
