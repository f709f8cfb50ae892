// The complex transform that all exported transforms stand on.
#ifndef ZPA_SOURCE_INTERNAL_FOURIER_H
#define ZPA_SOURCE_INTERNAL_FOURIER_H

#include <cstdint>

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

}  // namespace ZPA

#endif
