// The kernel of Threshold.
#ifndef ZPA_PRIMITIVES_THRESHOLDROW_H
#define ZPA_PRIMITIVES_THRESHOLDROW_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// marks[i] becomes 1 if pixels[i] is `limit` or more, and else 0. The two must not overlap.
void ThresholdRow(std::uint8_t const* pixels, std::uint8_t* marks, std::ptrdiff_t count, int limit);
void ThresholdRow(std::uint16_t const* pixels, std::uint8_t* marks, std::ptrdiff_t count, int limit);

}  // namespace ZPA

#endif
