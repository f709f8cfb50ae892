// A row of floats, weighted.
#ifndef ZPA_PRIMITIVES_CORRELATEROW_H
#define ZPA_PRIMITIVES_CORRELATEROW_H

#include <cstddef>

namespace ZPA {

// sums[i] becomes row[i] * weights[0] + row[i + 1] * weights[1] + ..., added in this order and rounded to
// float at each step. `row` has count + taps - 1 elements, and does not overlap `sums`.
void CorrelateRow(float const* row, float const* weights, std::ptrdiff_t taps, std::ptrdiff_t count,
                  float* sums);

}  // namespace ZPA

#endif
