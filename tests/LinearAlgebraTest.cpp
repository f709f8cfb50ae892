// Offset arrays, linear systems and singular values: against definitions, on every instruction set.
#include <Basics/LinearAlgebra.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "support/CapturedLog.h"
#include "support/NoMemory.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
// Sides of small matrices, of blocks, of cells of columns and of the room on the stack.
constexpr int kSizes[] = {1, 2, 3, 4, 7, 8, 9, 16, 17, 31, 40, 41, 64, 65, 97, 129};

std::vector<double> Random(int count, unsigned seed, double low = -1, double high = 1) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> any(low, high);
    std::vector<double> values(static_cast<std::size_t>(count));
    for (double& value : values) value = any(random);
    return values;
}

// A square matrix, its rows scaled very differently.
std::vector<double> UnevenMatrix(int n, unsigned seed) {
    auto matrix = Random(n * n, seed);
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x)
            matrix[static_cast<std::size_t>(y * n + x)] *= std::pow(10.0, y * 7 % 11 - 5);
    return matrix;
}

TEST(OffsetVectors, HaveTheirIndices) {
    for (auto const& [low, high] : {std::pair{1, 5}, {0, 0}, {1, 0}, {-7, 3}, {INT_MAX - 3, INT_MAX}}) {
        float* const v = alloc_vector(low, high);
        ASSERT_NE(v, nullptr);
        for (std::int64_t i = low; i <= high; ++i) v[i] = static_cast<float>(i);
        delete_vector(v, low);
    }
    delete_vector(nullptr, 1);
}

TEST(OffsetMatrices, HaveTheirRowsOneBehindTheOther) {
    struct Case {
        int nrl, nrh, ncl, nch;
    };
    for (Case const each : {Case{1, 3, 1, 4}, {-2, 2, 5, 9}, {0, 0, 0, 0}, {1, 0, 1, 4}, {1, 3, 1, 0}}) {
        float** const m = alloc_matrix(each.nrl, each.nrh, each.ncl, each.nch);
        ASSERT_NE(m, nullptr);
        for (int y = each.nrl; y <= each.nrh; ++y) {
            for (int x = each.ncl; x <= each.nch; ++x) m[y][x] = 1;
            if (y > each.nrl) {
                EXPECT_EQ(m[y] - m[y - 1], each.nch - each.ncl + 1);
            }
        }
        delete_matrix(m, each.nrl, each.nrh, each.ncl);
    }
    delete_matrix(nullptr, 1, 1, 1);
}

TEST(OffsetArrays, ReportWhatCannotBeAllocated) {
    std::wstring const kVector = L"alloc_vector(): Memory allocation failed for 2147483647 bytes.";
    std::wstring const kMatrix = L"alloc_matrix(): Memory allocation failed for 2147483647 bytes.";
    CapturedLog log;
    for (auto const& [low, high] : {std::pair{1, -1}, {INT_MAX, INT_MIN}}) {
        EXPECT_EQ(alloc_vector(low, high), nullptr);
        EXPECT_EQ(log.Text(), kVector);
        EXPECT_EQ(log.Code(), 1);
        log.Clear();
        EXPECT_EQ(alloc_matrix(low, high, 1, 4), nullptr);
        EXPECT_EQ(alloc_matrix(1, 4, low, high), nullptr);
        EXPECT_EQ(log.Texts(), kMatrix + L'\n' + kMatrix + L'\n');
        log.Clear();
    }
    EXPECT_EQ(alloc_matrix(INT_MIN, INT_MAX, INT_MIN, INT_MAX), nullptr);
    EXPECT_EQ(log.Text(), kMatrix);
    NoMemory const none;
    EXPECT_EQ(alloc_vector(1, 2), nullptr);
    EXPECT_EQ(log.Text(), L"alloc_vector(): Memory allocation failed for 12 bytes.");
    EXPECT_EQ(alloc_matrix(1, 1, 1, 1), nullptr);
    EXPECT_EQ(log.Errors().size(), 3U);
}

// Whole numbers, so that every order of additions gives the same.
TEST(FlatVectors, AreSubtractedAndMultiplied) {
    for (int n = 0; n < 70; ++n)
        ForEachSimdTarget([&] {
            auto const size = static_cast<std::size_t>(n);
            std::vector<double> a(size + 1, kNan), b(size + 1, kNan), matrix(3 * size + 1, kNan);
            double product = 0;
            for (int i = 0; i < n; ++i) {
                auto const at = static_cast<std::size_t>(i);
                a[at] = i + 1;
                b[at] = 2 * i - 5;
                product += a[at] * b[at];
                for (std::size_t y = 0; y < 3; ++y)
                    matrix[y * size + at] = a[at] * static_cast<double>(y + 1);
            }
            EXPECT_EQ(viprod(a.data(), b.data(), n), product);
            double y[4] = {7, 7, 7, 7};
            mvmul(matrix.data(), b.data(), y, 3, n);
            EXPECT_TRUE(y[0] == product && y[1] == 2 * product && y[2] == 3 * product && y[3] == 7);
            EXPECT_EQ(vvdiff(a.data(), b.data(), n, b.data()), b.data());
            for (int i = 0; i < n; ++i) EXPECT_EQ(b[static_cast<std::size_t>(i)], 6 - i);
        });
    double value = 9;
    EXPECT_EQ(viprod(&value, &value, -3), 0);
    mvmul(&value, &value, &value, -3, 5);
    vvdiff(&value, &value, -1, &value);
    EXPECT_EQ(value, 9);
}

TEST(Pythagoras, KeepsItsRange) {
    double const inf = std::numeric_limits<double>::infinity(),
                 tiny = std::numeric_limits<double>::denorm_min();
    struct Case {
        double a, b, c;
    };
    Case const cases[] = {
        {3, -4, 5},    {0, 0, 0},        {0, -2, 2},     {3e300, 4e300, 5e300}, {3e-300, 4e-300, 5e-300},
        {inf, 1, inf}, {-inf, inf, inf}, {tiny, 0, tiny}};
    for (Case const& each : cases) {
        EXPECT_DOUBLE_EQ(dpythag_DBL(each.a, each.b), each.c);
        EXPECT_DOUBLE_EQ(dpythag_DBL(each.b, each.a), each.c);
    }
    EXPECT_FLOAT_EQ(pythag(3e30f, -4e30f), 5e30f);
    for (double const other : {0.0, 1.0, inf})
        EXPECT_TRUE(std::isnan(dpythag_DBL(kNan, other)) && std::isnan(dpythag_DBL(other, kNan))) << other;
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
    struct Case {
        void (*decompose)(double*, int, int*, double*);
        wchar_t const* message;
    };
    for (Case const& each : {Case{ludcmp, L"ludcmp() - Singular matrix."},
                             Case{ludcmp_DBL, L"ludcmp_DBL(): singular matrix."}}) {
        std::vector<double> const matrix{1, 2, 3, 0, -0.0, 0, 4, 5, 6};
        auto a = matrix;
        int indx[3] = {7, 7, 7};
        double d = 7;
        ExpectRefusal([&] { return each.decompose(a.data(), 3, indx, &d), 999; }, 999, each.message);
        EXPECT_EQ(a, matrix);
        EXPECT_TRUE(indx[0] == 7 && d == 7);
    }
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

TEST(Systems, TellNobodyOfARowOfZerosButTheLog) {
    double a[4] = {1, 2, 0, 0}, b[2] = {1, 1}, inverse[4];
    CapturedLog const log;
    sollequ(a, 2, b);
    sollequ_DBL(a, 2, b);
    invmatrix_DBL(a, inverse, 2);
    EXPECT_EQ(
        log.Texts(),
        L"ludcmp() - Singular matrix.\nludcmp_DBL(): singular matrix.\nludcmp_DBL(): singular matrix.\n");
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

// A matrix with offset row pointers of its own.
template <typename T> struct OffsetMatrix {
    std::size_t rows, columns;
    std::vector<T> elements;
    std::vector<T*> pointers;

    OffsetMatrix(int itsRows, int itsColumns)
        : rows(static_cast<std::size_t>(itsRows)),
          columns(static_cast<std::size_t>(itsColumns)),
          elements(rows * columns + 1),
          pointers(rows + 1) {
        for (std::size_t y = 0; y < rows; ++y) pointers[y + 1] = &elements[y * columns] - 1;
    }
    double At(std::size_t y, std::size_t x) const { return static_cast<double>(elements[y * columns + x]); }
};

SOLVANE_RETURNCODE Decompose(float** a, int m, int n, float* w, float** v) { return svdcmp(a, m, n, w, v); }
SOLVANE_RETURNCODE Decompose(double** a, int m, int n, double* w, double** v) {
    return dsvdcmp_DBL(a, m, n, w, v);
}

template <typename T> class SingularValues : public testing::Test {};
using Elements = testing::Types<float, double>;
TYPED_TEST_SUITE(SingularValues, Elements, );

TYPED_TEST(SingularValues, TakeAMatrixApart) {
    using T = TypeParam;
    double const tolerance = 60 * static_cast<double>(std::numeric_limits<T>::epsilon());
    struct Case {
        int m, n, rank;
        double range;     // of the element type's, as a power of its largest number
        double rest = 0;  // of all but the first element, which then stands alone in its row and column
    };
    Case const cases[] = {{1, 1, 1, 0},        {1, 6, 1, 0},        {6, 1, 1, 0},    {5, 5, 5, 0},
                          {40, 17, 17, 0},     {17, 40, 17, 0},     {33, 33, 33, 0}, {12, 12, 4, 0},
                          {20, 9, 3, 0},       {4, 4, 0, 0},        {8, 6, 6, -0.8}, {8, 6, 6, 0.8},
                          {20, 20, 20, 0, -1}, {3, 33, 3, 0, -1.04}};
    for (Case const& each : cases) {
        SCOPED_TRACE(testing::Message() << each.m << " by " << each.n << ", rank " << each.rank);
        double const most = static_cast<double>(std::numeric_limits<T>::max()),
                     scale = std::pow(most, each.range), restScale = std::pow(most, each.rest);
        OffsetMatrix<T> matrix(each.m, each.n);
        auto const left = Random(each.m * each.rank, 30), right = Random(each.rank * each.n, 31);
        for (int y = 0; y < each.m; ++y)
            for (int x = 0; x < each.n; ++x) {
                double sum = 0;
                for (int k = 0; k < each.rank; ++k)
                    sum += left[static_cast<std::size_t>(y * each.rank + k)] *
                           right[static_cast<std::size_t>(k * each.n + x)];
                if (each.rest != 0) sum = x + y == 0 ? 1 : x * y == 0 ? 0 : sum * restScale;
                matrix.elements[static_cast<std::size_t>(y * each.n + x)] = static_cast<T>(scale * sum);
            }
        std::vector<T> first;
        ForEachSimdTarget([&] {
            OffsetMatrix<T> u(each.m, each.n), v(each.n, each.n);
            u.elements = matrix.elements;
            std::vector<T> w(static_cast<std::size_t>(each.n) + 1);
            ASSERT_EQ(Decompose(u.pointers.data(), each.m, each.n, w.data(), v.pointers.data()), 0);
            if (first.empty()) first = u.elements;
            EXPECT_EQ(first, u.elements);

            double largest = 0;
            int above = 0;
            for (T const value : w) {
                EXPECT_GE(value, 0);
                largest = std::max(largest, static_cast<double>(value));
            }
            for (T const value : w) above += static_cast<double>(value) > tolerance * largest;
            EXPECT_LE(above, each.rank);
            for (std::size_t y = 0; y < u.rows; ++y)
                for (std::size_t x = 0; x < u.columns; ++x) {
                    double sum = 0;
                    for (std::size_t k = 0; k < u.columns; ++k)
                        sum += u.At(y, k) * static_cast<double>(w[k + 1]) * v.At(x, k);
                    ASSERT_NEAR(sum, matrix.At(y, x), tolerance * largest);
                }
            for (std::size_t i = 0; i < u.columns; ++i)
                for (std::size_t j = 0; j < u.columns; ++j) {
                    double ofV = 0, ofU = 0;
                    for (std::size_t k = 0; k < v.rows; ++k) ofV += v.At(k, i) * v.At(k, j);
                    for (std::size_t k = 0; k < u.rows; ++k) ofU += u.At(k, i) * u.At(k, j);
                    ASSERT_NEAR(ofV, i == j ? 1 : 0, tolerance);
                    // with fewer rows than columns, some columns of U are nothing
                    if (i != j || static_cast<double>(w[i + 1]) > tolerance * largest) {
                        ASSERT_NEAR(ofU, i == j ? 1 : 0, tolerance);
                    }
                }
        });
    }
}

TEST(SingularValues, GiveUpAfterThirtySteps) {
    OffsetMatrix<float> a(3, 3), v(3, 3);
    OffsetMatrix<double> aOfDouble(3, 3), vOfDouble(3, 3);
    std::fill(a.elements.begin(), a.elements.end(), std::numeric_limits<float>::quiet_NaN());
    aOfDouble.elements[4] = kNan;
    std::vector<float> w(4);
    std::vector<double> wOfDouble(4);
    CapturedLog log;
    EXPECT_EQ(svdcmp(a.pointers.data(), 3, 3, w.data(), v.pointers.data()), 999);
    EXPECT_EQ(log.Text(), L"svdcmp() - No convergence in 30 svdcmp iterations.");
    EXPECT_EQ(log.Code(), 999);
    EXPECT_EQ(dsvdcmp_DBL(aOfDouble.pointers.data(), 3, 3, wOfDouble.data(), vOfDouble.pointers.data()), 999);
    EXPECT_EQ(log.Text(), L"svdcmp(): no convergence in 30 svdcmp iterations.");
    EXPECT_TRUE(std::isnan(wOfDouble[1]));
}

TYPED_TEST(SingularValues, KeepTheirDigitsAtBothEndsOfTheRange) {
    using T = TypeParam;
    using Limits = std::numeric_limits<T>;
    constexpr int kLeast = Limits::min_exponent - Limits::digits, kMost = Limits::max_exponent;
    for (auto const& [m, n] : {std::pair{3, 3}, {5, 10}, {33, 10}, {3, 33}, {1, 5}, {7, 1}})
        for (int const exponent :
             {kLeast + 1, kLeast + 9, Limits::min_exponent, kLeast / 2, kMost - 9, kMost}) {
            SCOPED_TRACE(testing::Message() << m << " by " << n << " times 2^" << exponent);
            OffsetMatrix<T> ordinary(m, n), extreme(m, n), v(n, n), vOfExtreme(n, n);
            std::vector<T> w(static_cast<std::size_t>(n) + 1), wOfExtreme(w);
            auto const random = Random(m * n, 32);
            for (std::size_t i = 0; i < random.size(); ++i) {
                extreme.elements[i] = std::scalbn(static_cast<T>(random[i]), exponent);
                ordinary.elements[i] = std::scalbn(extreme.elements[i], -exponent);
            }
            EXPECT_EQ(Decompose(ordinary.pointers.data(), m, n, w.data(), v.pointers.data()), 0);
            EXPECT_EQ(Decompose(extreme.pointers.data(), m, n, wOfExtreme.data(), vOfExtreme.pointers.data()),
                      0);
            for (T& value : w) value = std::scalbn(value, exponent);
            EXPECT_EQ(w, wOfExtreme);
            EXPECT_EQ(ordinary.elements, extreme.elements);
            EXPECT_EQ(v.elements, vOfExtreme.elements);
        }
}

TEST(SingularValues, SolveLeastSquares) {
    // A line through five points, with a third column that says nothing new.
    OffsetMatrix<float> a(5, 3), v(3, 3);
    std::vector<float> w(4), b{0, 1, 3, 5, 7, 9}, x(4);
    for (std::size_t i = 0; i < 5; ++i) {
        a.elements[3 * i] = 1;
        a.elements[3 * i + 1] = a.elements[3 * i + 2] = static_cast<float>(i);
    }
    ASSERT_EQ(svdcmp(a.pointers.data(), 5, 3, w.data(), v.pointers.data()), 0);
    int nothings = 0;
    for (float& value : w)
        if (value < 1e-5f) {
            value = 0;
            ++nothings;
        }
    EXPECT_EQ(nothings, 2) << "the first element is not a singular value";
    ASSERT_EQ(svbksb(a.pointers.data(), w.data(), v.pointers.data(), 5, 3, b.data(), x.data()), 0);
    EXPECT_NEAR(x[1], 1, 1e-5);
    EXPECT_NEAR(x[2], 1, 1e-5);
    EXPECT_NEAR(x[3], 1, 1e-5);
}

TEST(LinearAlgebra, ReportsNullPointersAndLeavesNothingsAlone) {
    static double d[1];
    static int i[1];
    static float f[2];
    struct Case {
        void (*call)();
        wchar_t const* message;
    };
    Case const cases[] = {
        {[] { vvdiff(d, nullptr, 1, d); }, L"vvdiff(): Null pointer."},
        {[] { viprod(nullptr, d, 1); }, L"viprod(): Null pointer."},
        {[] { mvmul(d, d, nullptr, 1, 1); }, L"mvmul(): Null pointer."},
        {[] { ludcmp(nullptr, 1, i, d); }, L"ludcmp(): Null pointer."},
        {[] { ludcmp_DBL(d, 1, nullptr, d); }, L"ludcmp_DBL(): Null pointer."},
        {[] { lubksb(d, 1, i, nullptr); }, L"lubksb(): Null pointer."},
        {[] { sollequ(nullptr, 1, d); }, L"sollequ(): Null pointer."},
        {[] { sollequ_DBL(d, 1, nullptr); }, L"sollequ_DBL(): Null pointer."},
        {[] { invmatrix_DBL(d, nullptr, 1); }, L"invmatrix_DBL(): Null pointer."},
        {[] { EXPECT_EQ(svdcmp(nullptr, 1, 1, f, nullptr), 2); }, L"svdcmp(): Null pointer."},
        {[] { EXPECT_EQ(dsvdcmp_DBL(nullptr, 1, 1, d, nullptr), 2); }, L"dsvdcmp_DBL(): Null pointer."},
        {[] { EXPECT_EQ(svbksb(nullptr, f, nullptr, 1, 1, f, f), 2); }, L"svbksb(): Null pointer."},
    };
    for (Case const& each : cases) {
        ExpectRefusal([&] { return each.call(), 2; }, 2, each.message);
    }
    CapturedLog const log;
    double untouched = 5;
    float* rows[2] = {};
    for (int const n : {0, -1, INT_MIN}) {
        ludcmp(&untouched, n, i, &untouched);
        sollequ(&untouched, n, &untouched);
        invmatrix_DBL(&untouched, &untouched, n);
        EXPECT_EQ(svdcmp(rows, 3, n, f, rows), 0);
        EXPECT_EQ(svdcmp(rows, n, 3, f, rows), 0);
        EXPECT_EQ(svbksb(rows, f, rows, n, 3, f, f), 0);
    }
    EXPECT_EQ(untouched, 5);
    EXPECT_TRUE(log.Errors().empty());
}

TEST(LinearAlgebra, LetsNoCallbackThrow) {
    CapturedLog const log;  // whose end takes the callback away
    ZPA_Logging::SetErrorCallback(ThrowFromCallback);
    double a[4] = {1, 2, 0, 0}, b[2] = {1, 1}, inverse[4];
    int const indx[2] = {0, 9};
    EXPECT_NO_THROW(sollequ(a, 2, b));
    EXPECT_NO_THROW(invmatrix_DBL(a, inverse, 2));
    EXPECT_NO_THROW(lubksb(a, 2, indx, b));
    EXPECT_EQ(svdcmp(nullptr, 1, 1, nullptr, nullptr), 2);
}

TEST(LinearAlgebra, ReportsThatThereIsNoMemory) {
    static std::vector<double> d(100 * 100, 1.0);
    static std::vector<int> i(100, 7);
    static OffsetMatrix<float> matrix(2, 2);
    static float f[3];
    struct Case {
        void (*call)();
        int code;
        wchar_t const* message;
    };
    Case const cases[] = {
        {[] { ludcmp(d.data(), 100, i.data(), d.data()); }, 1,
         L"ludcmp(): Memory allocation failed for 1600 bytes."},
        {[] { sollequ(d.data(), 41, d.data()); }, 1, L"sollequ(): Memory allocation failed for 164 bytes."},
        {[] { sollequ_DBL(d.data(), 41, d.data()); }, 1,
         L"sollequ_DBL(): Memory allocation failed for 164 bytes."},
        {[] { EXPECT_EQ(svdcmp(matrix.pointers.data(), 2, 2, f, matrix.pointers.data()), 5); }, 5,
         L"svdcmp():alloc_vector() for 'rv1' failed with params nl=1, nh=2"},
        {[] { EXPECT_EQ(svbksb(matrix.pointers.data(), f, matrix.pointers.data(), 2, 2, f, f), 5); }, 5,
         L"svbksb(): alloc_vector() for 'tmp' failed with params nl=1, nh=2"},
        // more than any memory: nothing of the matrix is looked at
        {[] {
             double* none[1] = {};
             EXPECT_EQ(dsvdcmp_DBL(none, INT_MAX, INT_MAX, d.data(), none), 999);
         },
         999, L"svdcmp(): no enough memory."},
    };
    for (Case const& each : cases) {
        ExpectRefusal([&] { return WithoutMemory([&] { return each.call(), each.code; }); }, each.code,
                      each.message);
        EXPECT_TRUE(d[0] == 1 && i[0] == 7);
    }
}

}  // namespace
}  // namespace ZPA
