// Offset arrays and flat vectors, and what all of linear algebra refuses.
#include <Basics/LinearAlgebra.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "support/CapturedLog.h"
#include "support/Matrices.h"
#include "support/NoMemory.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

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
    for (auto const& ends : {std::pair{1, -1}, {INT_MAX, INT_MIN}}) {
        EXPECT_REFUSAL(1, kVector, alloc_vector(ends.first, ends.second) ? 0 : 1);
        EXPECT_REFUSAL(1, kMatrix, alloc_matrix(ends.first, ends.second, 1, 4) ? 0 : 1);
        EXPECT_REFUSAL(1, kMatrix, alloc_matrix(1, 4, ends.first, ends.second) ? 0 : 1);
    }
    EXPECT_REFUSAL(1, kMatrix, alloc_matrix(INT_MIN, INT_MAX, INT_MIN, INT_MAX) ? 0 : 1);
    NoMemory const none;
    EXPECT_REFUSAL(1, L"alloc_vector(): Memory allocation failed for 12 bytes.", alloc_vector(1, 2) ? 0 : 1);
    CapturedLog const log;
    EXPECT_EQ(alloc_matrix(1, 1, 1, 1), nullptr);
    EXPECT_EQ(log.Code(), 1);
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

TEST(LinearAlgebra, ReportsNullPointersAndLeavesNothingsAlone) {
    double d[1] = {};
    int i[1] = {};
    float f[2] = {};
    EXPECT_REFUSAL(2, L"vvdiff(): Null pointer.", (vvdiff(d, nullptr, 1, d), 2));
    EXPECT_REFUSAL(2, L"viprod(): Null pointer.", (viprod(nullptr, d, 1), 2));
    EXPECT_REFUSAL(2, L"mvmul(): Null pointer.", (mvmul(d, d, nullptr, 1, 1), 2));
    EXPECT_REFUSAL(2, L"ludcmp(): Null pointer.", (ludcmp(nullptr, 1, i, d), 2));
    EXPECT_REFUSAL(2, L"ludcmp_DBL(): Null pointer.", (ludcmp_DBL(d, 1, nullptr, d), 2));
    EXPECT_REFUSAL(2, L"lubksb(): Null pointer.", (lubksb(d, 1, i, nullptr), 2));
    EXPECT_REFUSAL(2, L"sollequ(): Null pointer.", (sollequ(nullptr, 1, d), 2));
    EXPECT_REFUSAL(2, L"sollequ_DBL(): Null pointer.", (sollequ_DBL(d, 1, nullptr), 2));
    EXPECT_REFUSAL(2, L"invmatrix_DBL(): Null pointer.", (invmatrix_DBL(d, nullptr, 1), 2));
    EXPECT_REFUSAL(2, L"svdcmp(): Null pointer.", svdcmp(nullptr, 1, 1, f, nullptr));
    EXPECT_REFUSAL(2, L"dsvdcmp_DBL(): Null pointer.", dsvdcmp_DBL(nullptr, 1, 1, d, nullptr));
    EXPECT_REFUSAL(2, L"svbksb(): Null pointer.", svbksb(nullptr, f, nullptr, 1, 1, f, f));
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
    std::vector<double> const ones(100 * 100, 1.0);
    std::vector<int> const sevens(100, 7);
    auto d = ones;
    auto i = sevens;
    OffsetMatrix<float> matrix(2, 2);
    float f[3];
    float** const m = matrix.pointers.data();
    double* none[1] = {};
    auto const expect = [&](int code, std::wstring const& text, auto const& call) {
        ExpectRefusal([&] { return WithoutMemory(call); }, code, text);
        EXPECT_EQ(d, ones);
        EXPECT_EQ(i, sevens);
    };
    std::wstring const failed = L"(): Memory allocation failed for ";
    expect(1, L"ludcmp" + failed + L"1600 bytes.",
           [&] { return ludcmp(d.data(), 100, i.data(), d.data()), 1; });
    expect(1, L"sollequ" + failed + L"164 bytes.", [&] { return sollequ(d.data(), 41, d.data()), 1; });
    expect(1, L"sollequ_DBL" + failed + L"164 bytes.",
           [&] { return sollequ_DBL(d.data(), 41, d.data()), 1; });
    expect(5, L"svdcmp():alloc_vector() for 'rv1' failed with params nl=1, nh=2",
           [&] { return svdcmp(m, 2, 2, f, m); });
    expect(5, L"svbksb(): alloc_vector() for 'tmp' failed with params nl=1, nh=2",
           [&] { return svbksb(m, f, m, 2, 2, f, f); });
    // more than any memory: nothing of the matrix is looked at
    expect(999, L"svdcmp(): no enough memory.",
           [&] { return dsvdcmp_DBL(none, INT_MAX, INT_MAX, d.data(), none); });
}

}  // namespace
}  // namespace ZPA
