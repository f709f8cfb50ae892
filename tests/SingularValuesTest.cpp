// Singular values: against their definition, on every instruction set.
#include <Basics/LinearAlgebra.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/CapturedLog.h"
#include "support/Matrices.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

template <typename T> int Decompose(OffsetMatrix<T>& a, std::vector<T>& w, OffsetMatrix<T>& v) {
    int const m = static_cast<int>(a.rows), n = static_cast<int>(a.columns);
    if constexpr (std::is_same_v<T, float>)
        return svdcmp(a.pointers.data(), m, n, w.data(), v.pointers.data());
    else
        return dsvdcmp_DBL(a.pointers.data(), m, n, w.data(), v.pointers.data());
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
            ASSERT_EQ(Decompose(u, w, v), 0);
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

TYPED_TEST(SingularValues, GiveUpAfterThirtySteps) {
    bool const single = sizeof(TypeParam) == 4;
    OffsetMatrix<TypeParam> a(3, 3), v(3, 3);
    a.elements[4] = std::numeric_limits<TypeParam>::quiet_NaN();
    std::vector<TypeParam> w(4);
    ExpectRefusal([&] { return Decompose(a, w, v); }, 999,
                  single ? L"svdcmp() - No convergence in 30 svdcmp iterations."
                         : L"svdcmp(): no convergence in 30 svdcmp iterations.");
    EXPECT_TRUE(std::isnan(w[1]));
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
            EXPECT_EQ(Decompose(ordinary, w, v), 0);
            EXPECT_EQ(Decompose(extreme, wOfExtreme, vOfExtreme), 0);
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
    ASSERT_EQ(Decompose(a, w, v), 0);
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

}  // namespace
}  // namespace ZPA
