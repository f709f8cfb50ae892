// Square systems of linear equations: triangular factors of a matrix, and what they solve.
#ifndef ZPA_PRIMITIVES_TRIANGULARFACTORS_H
#define ZPA_PRIMITIVES_TRIANGULARFACTORS_H

#include <cstddef>

namespace ZPA {

// Matrices are n rows of n elements, one behind the other; n is at least 1. The same bits on every instruction set.

// scales[y] = 1 / the size of row y's largest element; what is not a number does not count. Returns the first
// row that is all zeros, at which it stops, or n if there is none.
std::ptrdiff_t RowScales(double const* matrix, std::ptrdiff_t n, double* scales);

// Replaces `matrix` by the factors of its rows in another order: below the diagonal the lower one, whose
// diagonal is 1, and from there on the upper one. In step j the row from j on whose element in column j is
// largest, times its `scale`, is exchanged with row j, and exchanges[j] tells which it was. A pivot of zero
// becomes `tinyPivot`. Scales are exchanged too; `sizes` is work space for n elements. Returns 1 for an even
// number of exchanges, else -1.
double Factorise(double* matrix, std::ptrdiff_t n, double tinyPivot, double* scales, double* sizes,
                 int* exchanges);

// Replaces the right-hand side by the solution. Exchanges are rows of the matrix.
void SolveFactorised(double const* factors, std::ptrdiff_t n, int const* exchanges, double* rightHandSide);

// Writes the inverse of the matrix that was factored.
void InvertFactorised(double const* factors, std::ptrdiff_t n, int const* exchanges, double* inverse);

}  // namespace ZPA

#endif
