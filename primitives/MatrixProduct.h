// Products of matrices.
#ifndef ZPA_PRIMITIVES_MATRIXPRODUCT_H
#define ZPA_PRIMITIVES_MATRIXPRODUCT_H

#include "primitives/Status.h"

namespace ZPA {

// product(y, x) = sum over k of first(y, k) * second(k, x). A matrix is given by its first element, the bytes
// from row to row (stride1) and from column to column (stride2), its width and its height; the product is as
// wide as the second and as high as the first, and must not overlap them.
//
// Every element is one chain of multiply-adds in the order of k, in its own type and from zero on, so it does
// not depend on threads, blocks or vectors. They are fused where the processor does that, and else rounded
// twice.
//
// kNullPointer, kBadSize for a width or height below 1 or where the first width is not the second height,
// kBadArgument for a stride that is no multiple of the element, kNoMemory without room for packed parts of
// them, which small products do without; then nothing is written.
Status ippmMul_mm_32f(float const* first, std::ptrdiff_t firstStride1, std::ptrdiff_t firstStride2,
                      int firstWidth, int firstHeight, float const* second, std::ptrdiff_t secondStride1,
                      std::ptrdiff_t secondStride2, int secondWidth, int secondHeight, float* product,
                      std::ptrdiff_t productStride1, std::ptrdiff_t productStride2) noexcept;
Status ippmMul_mm_64f(double const* first, std::ptrdiff_t firstStride1, std::ptrdiff_t firstStride2,
                      int firstWidth, int firstHeight, double const* second, std::ptrdiff_t secondStride1,
                      std::ptrdiff_t secondStride2, int secondWidth, int secondHeight, double* product,
                      std::ptrdiff_t productStride1, std::ptrdiff_t productStride2) noexcept;

}  // namespace ZPA

#endif
