// The complex transform that all exported transforms stand on.
#ifndef ZPA_SOURCE_INTERNAL_FOURIER_H
#define ZPA_SOURCE_INTERNAL_FOURIER_H

#include <cstddef>

#include "Source/Internal/Frame.h"

namespace ZPA {

// The exponent of a power of two, and -1 for any other number.
inline int LogOfPowerOfTwo(std::int64_t n) {
    if (n < 1 || (n & (n - 1)) != 0) return -1;
    int log = 0;
    while (n >> log > 1) ++log;
    return log;
}

// Transforms 2^logPoints points, 2^30 at most, in place; the inverse is divided by their number. Never fails:
// without memory it is slower.
void TransformPoints(float* points, int logPoints, bool inverse);
void TransformPoints(double* points, int logPoints, bool inverse);

// Reports a null pointer among the arguments of a transform; true if there is one.
template <typename... Pointers> bool AnyNull(Message message, Pointers const*... pointers) {
    if (((pointers != nullptr) && ...)) return false;
    static_cast<void>(Fail(SOLVANE_NULL_POINTER, message));
    return true;
}

}  // namespace ZPA

#endif
