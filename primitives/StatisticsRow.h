// Row kernels that measure: the smallest and largest element, and sums. Each works on one row, on the caller's
// thread.
#ifndef ZPA_PRIMITIVES_STATISTICSROW_H
#define ZPA_PRIMITIVES_STATISTICSROW_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// What the elements measured so far come to. Whoever starts says what is smallest and largest of none.
template <typename T> struct Statistics {
    T smallest;
    T largest;
    std::int64_t count = 0;
    long double sum = 0;
    long double squares = 0;
};

// What is measured; the rest of the statistics stays as it is.
enum class Measure { kRange, kSums, kRangeAndSums };

// Adds the elements whose mask byte is not zero, or all if there is no mask. A count below 1 does nothing;
// one of more than 2^31 is too many.
//
// The square of an integer is made in 32 bits and read as a signed number, so that it wraps from 46341 on.
// Sums of integers are exact. Those of floating-point elements, and their squares, are rounded to `long
// double` element by element, in order. Not-a-number is neither smallest nor largest, and of zeros with
// different signs the first one counts. Served: 8u, 16s, 16u, 32f and 64f.
template <typename T>
void AddToStatistics(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, Measure what,
                     Statistics<T>& statistics);

}  // namespace ZPA

#endif
