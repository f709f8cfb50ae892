// Sums of pixels under a window of weights.
#ifndef ZPA_PRIMITIVES_WEIGHROWS_H
#define ZPA_PRIMITIVES_WEIGHROWS_H

#include "primitives/Status.h"

namespace ZPA {

// Weights in the order of the pixels that they belong to, without padding.
template <typename T> struct Window {
    T const* weights;
    Size size;
};

// Every sum (x, y) becomes one chain of multiply-adds from zero on, over the window's pixels from source(x, y)
// to the right and down, row by row. They are fused where the processor does that, and else rounded twice.
// The source has size.width + window.size.width - 1 columns, and rows likewise; the sums do not overlap it.
// Strides count elements.
void WeighRows(Window<float> const& window, float const* source, std::ptrdiff_t sourceStride, float* sums,
               std::ptrdiff_t sumsStride, Size size) noexcept;
void WeighRows(Window<double> const& window, double const* source, std::ptrdiff_t sourceStride, double* sums,
               std::ptrdiff_t sumsStride, Size size) noexcept;

}  // namespace ZPA

#endif
