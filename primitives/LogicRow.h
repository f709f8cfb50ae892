// Rows of pixels as truth values: a pixel is true if it is not zero. Each works on one row, on the caller's
// thread.
#ifndef ZPA_PRIMITIVES_LOGICROW_H
#define ZPA_PRIMITIVES_LOGICROW_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// A count below 1 does nothing. Pointers may have any alignment that their type has.

// result[i] becomes table[(a[i] is true) + 2 * (b[i] is true)], over the table's four bytes. The result may
// be written over either operand. Served: 8u, 16u and 32u.
template <typename T>
void CombineTruths(T const* a, T const* b, std::uint8_t const* table, T* result, std::ptrdiff_t count);

// truths[i] becomes a byte that is not zero where row[i] is true. Of floating point only -0 and 0 are false:
// a denormal and not-a-number are true. Served: 16u, 32u, 32f and 64f.
template <typename T> void TruthRow(T const* row, std::uint8_t* truths, std::ptrdiff_t count);

}  // namespace ZPA

#endif
