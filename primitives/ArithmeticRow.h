// Arithmetic on rows of pixels. Each works on one row, on the caller's thread.
#ifndef ZPA_PRIMITIVES_ARITHMETICROW_H
#define ZPA_PRIMITIVES_ARITHMETICROW_H

#include <cstddef>

namespace ZPA {

enum class Arithmetic { kSum, kDifference, kProduct, kQuotient };

// A count below 1 does nothing. Pointers may have any alignment that their type has, and the result may be
// written over either operand. Integers wrap around, and quotients of integers are cut toward zero: dividing
// the most negative one by -1 gives itself, and dividing by zero raises the processor's fault.
//
// Served: 8u, 16u, 32u, 32f and 64f; of 8s, 16s and 32s only the quotient, since the other results have the
// same bits as the unsigned ones.
template <typename T> void CombineRows(Arithmetic, T const* a, T const* b, T* result, std::ptrdiff_t count);
template <typename T>
void CombineWithConstant(Arithmetic, T const* a, T constant, T* result, std::ptrdiff_t count);

// Drops the sign. The most negative integer stays as it is. Served: 8s, 16s, 32s, 32f and 64f.
template <typename T> void AbsoluteRow(T const* a, T* result, std::ptrdiff_t count);

}  // namespace ZPA

#endif
