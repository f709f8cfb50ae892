// The recursive Gaussian along lines that run down an image, upright or aslant.
#ifndef ZPA_PRIMITIVES_RECURSIVEGAUSSIAN_H
#define ZPA_PRIMITIVES_RECURSIVEGAUSSIAN_H

#include <cstdint>

#include "primitives/Status.h"

namespace ZPA {

// The weights for one sigma.
struct RecursiveGaussianCoefficients {
    double squaredScale;
    double scale;        // what is left of a constant after one pass is 1 / scale of it
    double a1, a2, a3;   // of the last three results
    double boundary[9];  // rows of a matrix: from the last results of one pass to the first of the other
    double endFactor;    // 1 / (1 - a1 - a2 - a3)
};

// Needs no test of sigma: what is not finite or too small gives weights that are of no use.
RecursiveGaussianCoefficients MakeRecursiveGaussian(double sigma);

// Where lines cross the rows of an image. In row y, line k is at column k + shift[y] + fraction[y], the
// fraction being from 0 to below 1, and counts while k + shift[y] is a column of the image. The shifts only
// grow or only shrink.
struct Slant {
    std::ptrdiff_t const* shift;
    double const* fraction;
};

// What is filtered: the pixels as they are, or each multiplied by itself.
enum class Of { kPixels, kSquares };

// Elements of the work memory that the functions need for an image of this size, above 0.
std::uint64_t RecursiveGaussianWork(Size size);

// Rows of source and destination are `stride` elements apart; `destination` may be `source`.

// Filters the columns.
void SmoothColumns(RecursiveGaussianCoefficients const& weights, Of of, double const* source,
                   double* destination, std::ptrdiff_t stride, Size size, double* work);

// Filters along slanting lines: pixels are interpolated on them, and the results interpolated from them.
void SmoothSlant(RecursiveGaussianCoefficients const& weights, Slant const& slant, double const* source,
                 double* destination, std::ptrdiff_t stride, Size size, double* work);

// Filters the rows.
void SmoothRows(RecursiveGaussianCoefficients const& weights, double const* source, double* destination,
                std::ptrdiff_t stride, Size size, double* work);

}  // namespace ZPA

#endif
