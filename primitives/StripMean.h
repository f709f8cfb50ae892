// Means and weighted means over a sliding window, in double precision.
#ifndef ZPA_PRIMITIVES_STRIPMEAN_H
#define ZPA_PRIMITIVES_STRIPMEAN_H

#include <cstdint>

#include "primitives/SlidingWindow.h"

namespace ZPA {

// The order of additions is fixed. A column's sum is carried down the image: the entering pixel is added,
// then the leaving one subtracted. The window's sum is carried along the row: what the entering column has
// more than the leaving one is added.

// The number of doubles that the functions work in. What they hold before does not matter.
std::uint64_t StripMeanWork(Size image, Size window);
std::uint64_t WeightedStripMeanWork(Size image, Size window);

// The sum divided by the number of pixels; for integers truncated toward zero. Served: 16u, 16s, 64f.
template <typename T>
void StripMean(T const* input, T* output, Size image, Size window, double* work) noexcept;

// The sum of pixel times weight divided by that of the weights, or 0 where the weights sum to 0.01 or less.
// For integers it is truncated to 32 bits, 0x80000000 where it does not fit, and the low 16 bits are stored.
// Served: 16u, 16s, 64f.
template <typename T>
void WeightedStripMean(T const* input, std::int8_t const* weights, T* output, Size image, Size window,
                       double* work) noexcept;

}  // namespace ZPA

#endif
