// Pixels beside the mean and the variance of their surroundings, or of all.
#ifndef ZPA_PRIMITIVES_CONTRASTROW_H
#define ZPA_PRIMITIVES_CONTRASTROW_H

#include <cstddef>

namespace ZPA {

// squares[i] becomes row[i] squared.
void SquareRow(double const* row, double* squares, std::ptrdiff_t count);

struct Sums {
    double values, squares;
};

// contrast[i] becomes (row[i] - mean[i]) / sqrt(meanSquare[i] - mean[i] squared), and is added to the sums,
// one after the other. It may be any of the others.
void ContrastRow(double const* row, double const* mean, double const* meanSquare, double* contrast,
                 std::ptrdiff_t count, Sums& sums);

// row[i] becomes (row[i] - mean) / deviation.
void StandardizeRow(double* row, std::ptrdiff_t count, double mean, double deviation);

}  // namespace ZPA

#endif
