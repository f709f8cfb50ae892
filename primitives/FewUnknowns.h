// Systems with so few unknowns that starting on vectors takes longer than the work: plain loops of a known length,
// which compilers unroll. Each element takes the steps of TriangularFactors.cpp in their order, and so gets the
// same bits.
#ifndef ZPA_PRIMITIVES_FEWUNKNOWNS_H
#define ZPA_PRIMITIVES_FEWUNKNOWNS_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "primitives/DivideBy.h"

namespace ZPA {

// benchmarks/LinearAlgebra.cpp: with eight, vectors are as fast.
inline constexpr std::ptrdiff_t kFewUnknowns = 7;

// 1 / the size of a row's largest element; the smallest numbers have no reciprocal.
inline double ScaleOf(double largest) { return std::min(1 / largest, std::numeric_limits<double>::max()); }

// The functions of TriangularFactors.h, for n unknowns.
template <int n> struct FewUnknowns {
    static std::ptrdiff_t RowScales(double const* matrix, double* scales) {
        for (int y = 0; y < n; ++y) {
            double const* const row = matrix + y * n;
            double largest = 0;
            for (int x = 0; x < n; ++x) largest = std::max(largest, std::abs(row[x]));
            if (largest == 0 && std::all_of(row, row + n, [](double element) { return element == 0; }))
                return y;
            scales[y] = ScaleOf(largest);
        }
        return n;
    }

    static double Factorise(double* matrix, double tinyPivot, double* scales, int* exchanges) {
        double parity = 1;
        for (int j = 0; j < n; ++j) {
            int pivotRow = j;
            double largest = 0;
            for (int y = j; y < n; ++y) {
                double const size = scales[y] * std::abs(matrix[y * n + j]);
                pivotRow = size > largest ? y : pivotRow;
                largest = size > largest ? size : largest;
            }
            exchanges[j] = pivotRow;
            double* const row = matrix + j * n;
            if (pivotRow != j) {
                std::swap_ranges(row, row + n, matrix + pivotRow * n);
                scales[pivotRow] = scales[j];
                parity = -parity;
            }
            if (row[j] == 0) row[j] = tinyPivot;
            DivideBy const divide(row[j]);
            for (int y = j + 1; y < n; ++y) {
                double* const below = matrix + y * n;
                double const factor = divide(below[j]);
                below[j] = factor;
                for (int x = j + 1; x < n; ++x) below[x] -= factor * row[x];
            }
        }
        return parity;
    }

    static void Solve(double const* factors, int const* exchanges, double* b) {
        for (int y = 0; y < n; ++y) std::swap(b[y], b[exchanges[y]]);
        for (int y = 1; y < n; ++y)
            for (int x = 0; x < y; ++x) b[y] -= factors[y * n + x] * b[x];
        for (int y = n - 1; y >= 0; --y) {
            for (int x = n - 1; x > y; --x) b[y] -= factors[y * n + x] * b[x];
            b[y] = DivideBy(factors[y * n + y])(b[y]);
        }
    }
};

// Calls body(FewUnknowns<n>()); n is from 1 to kFewUnknowns.
template <typename Body> auto WithFewUnknowns(std::ptrdiff_t n, Body const& body) {
    switch (n) {
        case 1:
            return body(FewUnknowns<1>());
        case 2:
            return body(FewUnknowns<2>());
        case 3:
            return body(FewUnknowns<3>());
        case 4:
            return body(FewUnknowns<4>());
        case 5:
            return body(FewUnknowns<5>());
        case 6:
            return body(FewUnknowns<6>());
        default:
            return body(FewUnknowns<kFewUnknowns>());
    }
}

}  // namespace ZPA

#endif
