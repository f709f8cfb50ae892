// Fourier transforms of 2^k complex points: the stages, in memory that the caller provides.
#ifndef ZPA_PRIMITIVES_FOURIERSTAGES_H
#define ZPA_PRIMITIVES_FOURIERSTAGES_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// Points are pairs of real and imaginary part. Transforms are in place: sums of points times exp(+2 pi i j k
// / n), or inverse, with exp(-2 pi i j k / n), divided by n. The same bits on every instruction set.

inline constexpr int kLargestLogPoints = 30;

// Bytes of work space, of any alignment, for TransformSequences and for TransformColumns.
std::uint64_t SequenceWorkBytes(int logPoints, std::size_t elementSize);
std::uint64_t ColumnsWorkBytes(int logPoints);

// Transforms `count` sequences of 2^logPoints points each, one behind the other.
void TransformSequences(float* points, int logPoints, std::ptrdiff_t count, bool inverse, void* work);
void TransformSequences(double* points, int logPoints, std::ptrdiff_t count, bool inverse, void* work);

// Transforms the columns of a square of 2^logPoints rows of as many points.
void TransformColumns(double* points, int logPoints, bool inverse, void* work);

}  // namespace ZPA

#endif
