// Decompositions and linear systems: against a plain elimination, on every instruction set.
#include <Basics/LinearAlgebra.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "support/CapturedLog.h"
#include "support/Matrices.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
// Sides of small matrices, of blocks, of cells of columns and of the room on the stack.
constexpr int kSizes[] = {1, 2, 3, 4, 7, 8, 9, 16, 17, 31, 40, 41, 64, 65, 97, 129};

// A square matrix, its rows scaled very differently.
std::vector<double> UnevenMatrix(int n, unsigned seed) {
    auto matrix = Random(n * n, seed);
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x)
            matrix[static_cast<std::size_t>(y * n + x)] *= std::pow(10.0, y * 7 % 11 - 5);
    return matrix;
}

// Factors one step after the other, all of the matrix at each.
struct Model {
    std::vector<double> a;
    std::vector<int> indx;
    double d = 1;

    Model(std::vector<double> matrix, int n) : a(std::move(matrix)), indx(static_cast<std::size_t>(n)) {
        auto const at = [&](int y, int x) -> double& { return a[static_cast<std::size_t>(y * n + x)]; };
        std::vector<double> scale(indx.size());
        for (int y = 0; y < n; ++y) {
            double largest = 0;
            for (int x = 0; x < n; ++x) largest = std::max(largest, std::abs(at(y, x)));
            scale[static_cast<std::size_t>(y)] = 1 / largest;
        }
        for (int j = 0; j < n; ++j) {
            int pivot = j;
            auto const size = [&](int y) { return scale[static_cast<std::size_t>(y)] * std::abs(at(y, j)); };
            for (int y = j; y < n; ++y)
                if (size(y) > size(pivot)) pivot = y;
            indx[static_cast<std::size_t>(j)] = pivot;
            if (pivot != j) {
                for (int x = 0; x < n; ++x) std::swap(at(j, x), at(pivot, x));
                std::swap(scale[static_cast<std::size_t>(j)], scale[static_cast<std::size_t>(pivot)]);
                d = -d;
            }
            for (int y = j + 1; y < n; ++y) {
                at(y, j) /= at(j, j);
                for (int x = j + 1; x < n; ++x) at(y, x) -= at(y, j) * at(j, x);
            }
        }
    }
};

TEST(Decomposition, IsTheModelsOnEverySimdTarget) {
    for (int const n : kSizes) {
        SCOPED_TRACE(n);
        auto const matrix = UnevenMatrix(n, static_cast<unsigned>(n));
        Model const model(matrix, n);
        std::vector<double> first;
        ForEachSimdTarget([&] {
            for (auto const decompose : {ludcmp, ludcmp_DBL}) {
                auto a = matrix;
                a.push_back(77);
                std::vector<int> indx(static_cast<std::size_t>(n) + 1, 77);
                double d = 0;
                decompose(a.data(), n, indx.data(), &d);
                EXPECT_EQ(a.back(), 77);
                EXPECT_EQ(indx.back(), 77);
                indx.pop_back();
                EXPECT_EQ(indx, model.indx);
                EXPECT_EQ(d, model.d);
                for (std::size_t i = 0; i < matrix.size(); ++i)
                    ASSERT_NEAR(a[i], model.a[i], 1e-9 * (1 + std::abs(model.a[i]))) << i;
                if (first.empty()) first = a;
                EXPECT_EQ(first, a);
            }
        });
    }
}

TEST(Decomposition, OfARowOfZerosIsReportedAndLeavesAll) {
    std::vector<double> const matrix{1, 2, 3, 0, -0.0, 0, 4, 5, 6};
    auto a = matrix;
    int indx[3] = {7, 7, 7};
    double d = 7, b[3] = {1, 1, 1}, inverse[9];
    CapturedLog const log;
    ludcmp(a.data(), 3, indx, &d);
    ludcmp_DBL(a.data(), 3, indx, &d);
    sollequ(a.data(), 3, b);
    sollequ_DBL(a.data(), 3, b);
    invmatrix_DBL(a.data(), inverse, 3);
    std::wstring const one = L"ludcmp() - Singular matrix.", twin = L"ludcmp_DBL(): singular matrix.";
    EXPECT_EQ(Messages(log.Errors(), 999), (std::vector<std::wstring>{one, twin, one, twin, twin}));
    EXPECT_EQ(a, matrix);
    EXPECT_TRUE(indx[0] == 7 && d == 7);
}

TEST(Decomposition, ReplacesAPivotOfZeroInSilence) {
    CapturedLog const log;
    double a[] = {1, 2, 2, 4}, zeroFirst[] = {0, 1, 0, 2}, d = 0;
    int indx[2];
    ludcmp(a, 2, indx, &d);
    EXPECT_EQ(a[3], 1e-20);
    ludcmp_DBL(zeroFirst, 2, indx, &d);
    EXPECT_EQ(zeroFirst[0], 1e-20);
    EXPECT_TRUE(log.Errors().empty());
}

TEST(Decomposition, EndsWithoutNumbers) {
    for (int const n : {1, 5, 70}) {
        auto a = Random(n * n, 1);
        a[a.size() / 2] = kNan;
        a[a.size() / 3] = std::numeric_limits<double>::infinity();
        std::vector<double> b(static_cast<std::size_t>(n), kNan);
        sollequ(a.data(), n, b.data());
        EXPECT_TRUE(std::isnan(b[0]));
    }
    // rows as small as can be still have a scale
    double const tiny = std::numeric_limits<double>::denorm_min();
    double a[] = {0, tiny, tiny, 0}, b[] = {tiny, 3 * tiny};
    sollequ(a, 2, b);
    EXPECT_TRUE(b[0] == 3 && b[1] == 1);
}

TEST(Decomposition, KeepsWhatStandsBesideAnInfiniteFactor) {
    for (int const n : {3, 9}) {
        auto const size = static_cast<std::size_t>(n);
        std::vector<double> a(size * size);
        for (std::size_t i = 0; i < size; ++i) a[i * size + i] = 1;
        a[size + 1] = 1e-300;
        double* const row = &a[2 * size];
        row[0] = 0.5;
        row[1] = 1e9;
        row[2] = 1e10;
        std::vector<int> indx(size);
        double d = 0;
        ludcmp(a.data(), n, indx.data(), &d);
        EXPECT_TRUE(row[0] == 0.5 && std::isinf(row[1])) << n;
    }
}

// a x - b, relative to the sizes in it.
double Residual(std::vector<double> const& a, std::vector<double> const& x, std::vector<double> const& b) {
    std::size_t const n = x.size();
    double worst = 0;
    for (std::size_t i = 0; i < n; ++i) {
        long double sum = -b[i], sizes = std::abs(b[i]);
        for (std::size_t j = 0; j < n; ++j) {
            sum += static_cast<long double>(a[i * n + j]) * x[j];
            sizes += std::abs(static_cast<long double>(a[i * n + j]) * x[j]);
        }
        worst = std::max(worst, static_cast<double>(std::abs(sum) / sizes));
    }
    return worst;
}

TEST(Systems, AreSolvedAlikeOnEverySimdTarget) {
    for (int const n : kSizes) {
        SCOPED_TRACE(n);
        auto const matrix = UnevenMatrix(n, 20), rightHandSide = Random(n, 21);
        std::vector<double> first;
        ForEachSimdTarget([&] {
            for (auto const solve : {sollequ, sollequ_DBL}) {
                auto a = matrix, x = rightHandSide;
                solve(a.data(), n, x.data());
                EXPECT_LT(Residual(matrix, x, rightHandSide), 1e-13);
                if (first.empty()) first = x;
                EXPECT_EQ(first, x);
                // what solved it is left in the matrix
                std::vector<int> indx(static_cast<std::size_t>(n));
                double d;
                auto factors = matrix, again = rightHandSide;
                ludcmp(factors.data(), n, indx.data(), &d);
                EXPECT_EQ(factors, a);
                lubksb_DBL(factors.data(), n, indx.data(), again.data());
                EXPECT_EQ(again, x);
            }
        });
    }
}

TEST(Systems, AreInvertedAlikeOnEverySimdTarget) {
    for (int const n : kSizes) {
        SCOPED_TRACE(n);
        auto const size = static_cast<std::size_t>(n);
        auto const matrix = UnevenMatrix(n, 22);
        std::vector<double> first;
        ForEachSimdTarget([&] {
            auto a = matrix;
            std::vector<double> inverse(size * size + 1, 77);
            invmatrix_DBL(a.data(), inverse.data(), n);
            EXPECT_EQ(inverse.back(), 77);
            if (first.empty()) first = inverse;
            EXPECT_EQ(first, inverse);
            for (std::size_t column = 0; column < size; column += size / 3 + 1) {
                std::vector<double> x(size), unit(size);
                unit[column] = 1;
                for (std::size_t y = 0; y < size; ++y) x[y] = inverse[y * size + column];
                EXPECT_LT(Residual(matrix, x, unit), 1e-12);
            }
        });
    }
}

TEST(Systems, RefuseExchangesOutsideOfTheMatrix) {
    for (int const row : {-1, 2, INT_MAX, INT_MIN}) {
        double const a[4] = {1, 0, 0, 1};
        double b[2] = {3, 4};
        int const indx[2] = {0, row};
        ExpectRefusal([&] { return lubksb(a, 2, indx, b), 3; }, 3, L"lubksb(): Row index out of range.");
        EXPECT_EQ(b[1], 4);
    }
}

TEST(Systems, OfFewUnknownsAreWorkedAsTheFirstOfMany) {
    constexpr std::size_t kMany = 16;
    for (std::size_t few = 1; few <= 9; ++few)
        ForEachSimdTarget([&] {
            auto a = UnevenMatrix(static_cast<int>(few), 23), x = Random(static_cast<int>(few), 24);
            std::vector<double> many(kMany * kMany), rightHandSide(kMany);
            for (std::size_t i = 0; i < kMany; ++i) many[i * kMany + i] = 1;
            for (std::size_t y = 0; y < few; ++y) std::copy_n(&a[y * few], few, &many[y * kMany]);
            std::copy(x.begin(), x.end(), rightHandSide.begin());
            sollequ(many.data(), kMany, rightHandSide.data());
            sollequ(a.data(), static_cast<int>(few), x.data());
            for (std::size_t y = 0; y < few; ++y) {
                EXPECT_EQ(x[y], rightHandSide[y]);
                for (std::size_t i = 0; i < few; ++i) EXPECT_EQ(a[y * few + i], many[y * kMany + i]);
            }
        });
}

}  // namespace
}  // namespace ZPA
