// Conversions whose every case is settled.
#ifndef ZPA_SOURCE_INTERNAL_CONVERT_H
#define ZPA_SOURCE_INTERNAL_CONVERT_H

#include <cstdint>

namespace ZPA {

// Toward zero; 0x80000000, as the processor gives it, for what has no 32-bit integer, not-a-number included.
template <typename Real> std::int32_t TruncateToInt32(Real value) {
    return value > -2147483649.0 && value < 2147483648.0 ? static_cast<std::int32_t>(value) : INT32_MIN;
}

}  // namespace ZPA

#endif
