// Spectra of real sequences: taken out of, and put into, transforms of complex points.
#ifndef ZPA_PRIMITIVES_SPECTRUMPAIRS_H
#define ZPA_PRIMITIVES_SPECTRUMPAIRS_H

#include <cstddef>

namespace ZPA {

// Points are pairs of real and imaginary part; `n`, their number, is a power of two. A transform is the sum
// of points times exp(+2 pi i j k / n).

// Between the transform of n points, which are 2n real values, and the spectrum of these values: points 1 to
// n - 1, without n / 2, which is the same in both. The caller sees to point 0.
void CombineHalves(float* points, std::ptrdiff_t n, bool inverse);
void CombineHalves(double* points, std::ptrdiff_t n, bool inverse);

// points[k] = (re[k], im[k]), and back. `re` may be where `points` begins when taking apart.
void Interleave(float const* re, float const* im, float* points, std::ptrdiff_t n);
void Interleave(double const* re, double const* im, double* points, std::ptrdiff_t n);
void TakeApart(float const* points, float* re, float* im, std::ptrdiff_t n);
void TakeApart(double const* points, double* re, double* im, std::ptrdiff_t n);

// From the transform of a + i b, with real a and b, to the transforms of `a` (in place) and `b`.
void Separate(float* points, float* b, std::ptrdiff_t n);
void Separate(double* points, double* b, std::ptrdiff_t n);

// a += i b
void AddTurned(float* a, float const* b, std::ptrdiff_t n);
void AddTurned(double* a, double const* b, std::ptrdiff_t n);

// a *= b
void MultiplyPoints(double* a, double const* b, std::ptrdiff_t n);

// a *= scale times the conjugates of b
void MultiplyByConjugates(float* a, float const* b, float scale, std::ptrdiff_t n);
void MultiplyByConjugates(double* a, double const* b, double scale, std::ptrdiff_t n);

}  // namespace ZPA

#endif
