// Sums, products and rotations of vectors of numbers.
#ifndef ZPA_PRIMITIVES_VECTORS_H
#define ZPA_PRIMITIVES_VECTORS_H

#include <cstddef>

namespace ZPA {

// The same bits on every instruction set. A count below 1 does nothing, and its sum is 0.

// Sums are made in 32 (float) or 16 (double) parts, element i in part i modulo their number.
float InnerProduct(float const* a, float const* b, std::ptrdiff_t count);
double InnerProduct(double const* a, double const* b, std::ptrdiff_t count);

// sum += factor * a
void AddMultiple(float factor, float const* a, float* sum, std::ptrdiff_t count);
void AddMultiple(double factor, double const* a, double* sum, std::ptrdiff_t count);

// a and b become a * cosine + b * sine and b * cosine - a * sine.
void Rotate(float* a, float* b, float cosine, float sine, std::ptrdiff_t count);
void Rotate(double* a, double* b, double cosine, double sine, std::ptrdiff_t count);

}  // namespace ZPA

#endif
