// The length of a right triangle's longest side.
#ifndef ZPA_SOURCE_INTERNAL_HYPOTENUSE_H
#define ZPA_SOURCE_INTERNAL_HYPOTENUSE_H

#include <cmath>
#include <limits>
#include <utility>

namespace ZPA {

// Without squares of the sides, which may pass the type's range while the result does not.
template <typename T> T Hypotenuse(T a, T b) {
    a = std::abs(a);
    b = std::abs(b);
    if (a > b) std::swap(a, b);
    if (b == 0 || a == std::numeric_limits<T>::infinity()) return a + b;  // without a ratio
    T const ratio = a / b;
    return b * std::sqrt(1 + ratio * ratio);
}

}  // namespace ZPA

#endif
