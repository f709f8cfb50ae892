// Fourier transforms: against sums made term by term, on every instruction set and without memory.
#include <Basics/FourierTransform.h>
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstring>
#include <limits>

#include "support/CapturedLog.h"
#include "support/Matrices.h"
#include "support/NoMemory.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

using Exact = std::complex<long double>;

void Fft(float* data, int n, int sign) { FFT(data, n, sign); }
void Fft(double* data, int n, int sign) { FFT_DBL(data, n, sign); }
void Real(float* data, int n, int sign) { realFFT(data, n, sign); }
void Real(double* data, int n, int sign) { realFFT_DBL(data, n, sign); }
void Real2(float const* a, float const* b, float* x, float* y, int n) { realFFT2(a, b, x, y, n); }
void Real2(double const* a, double const* b, double* x, double* y, int n) { realFFT2_DBL(a, b, x, y, n); }
void RealInverse2(float* x, float const* y, float* a, float* b, int n) { realIFFT2(x, y, a, b, n); }
void RealInverse2(double* x, double const* y, double* a, double* b, int n) { realIFFT2_DBL(x, y, a, b, n); }

// exp(sign 2 pi i k / n)
std::vector<Exact> Roots(std::size_t n, int sign) {
    std::vector<Exact> roots;
    for (std::size_t k = 0; k < n; ++k)
        roots.push_back(std::polar(
            1.0L, sign * 2 * std::acos(-1.0L) * static_cast<long double>(k) / static_cast<long double>(n)));
    return roots;
}

template <typename T> std::vector<Exact> PointsOf(std::vector<T> const& pairs) {
    std::vector<Exact> points(pairs.size() / 2);
    for (std::size_t k = 0; k < points.size(); ++k) points[k] = Exact(pairs[2 * k], pairs[2 * k + 1]);
    return points;
}
template <typename T> std::vector<Exact> RealPoints(std::vector<T> const& values) {
    return std::vector<Exact>(values.begin(), values.end());
}

std::vector<Exact> Transformed(std::vector<Exact> const& points, int sign) {
    std::size_t const n = points.size();
    auto const roots = Roots(n, sign);
    std::vector<Exact> sums(n);
    for (std::size_t k = 0; k < n; ++k) {
        for (std::size_t j = 0; j < n; ++j) sums[k] += points[j] * roots[j * k % n];
        if (sign < 0) sums[k] /= static_cast<long double>(n);
    }
    return sums;
}

// Root mean square of the differences, relative to that of the expected points.
double Error(std::vector<Exact> const& points, std::vector<Exact> const& expected) {
    long double differences = 0, squares = 0;
    for (std::size_t k = 0; k < expected.size(); ++k) {
        differences += std::norm(points[k] - expected[k]);
        squares += std::norm(expected[k]);
    }
    return static_cast<double>(std::sqrt(squares == 0 ? differences : differences / squares));
}

template <typename T> constexpr double kTolerance = sizeof(T) == 4 ? 5e-7 : 1e-15;
template <typename T> constexpr double kLargeTolerance = sizeof(T) == 4 ? 1e-6 : 1e-13;

// The result of `transform` on a copy of `input` with guards around it, which must be the same on every
// instruction set, bit for bit.
template <typename T, typename Transform>
std::vector<T> OnEveryTarget(std::vector<T> const& input, Transform const& transform) {
    constexpr std::size_t kGuard = 16;
    std::vector<T> first;
    ForEachSimdTarget([&] {
        std::vector<T> memory(input.size() + 2 * kGuard, T{77});
        std::copy(input.begin(), input.end(), memory.begin() + kGuard);
        transform(memory.data() + kGuard);
        for (std::size_t i = 0; i < kGuard; ++i) {
            EXPECT_EQ(memory[i], T{77});
            EXPECT_EQ(memory[memory.size() - 1 - i], T{77});
        }
        std::vector<T> const result(memory.begin() + kGuard, memory.end() - kGuard);
        if (first.empty()) first = result;
        EXPECT_EQ(std::memcmp(first.data(), result.data(), result.size() * sizeof(T)), 0);
    });
    return first;
}

template <typename T> class FourierTransform : public testing::Test {};
using Elements = testing::Types<float, double>;
TYPED_TEST_SUITE(FourierTransform, Elements, );

TYPED_TEST(FourierTransform, IsTheSum) {
    using T = TypeParam;
    for (int n = 1; n <= 1024; n *= 2)
        for (int const sign : {1, -1}) {
            SCOPED_TRACE(testing::Message() << n << " points, sign " << sign);
            auto const input = Random<T>(2 * static_cast<std::size_t>(n), static_cast<unsigned>(n));
            auto const output = OnEveryTarget(input, [&](T* data) { Fft(data, n, sign); });
            EXPECT_LT(Error(PointsOf(output), Transformed(PointsOf(input), sign)), kTolerance<T>);
        }
}

// A few points that are not zero, so that the sums are short, at places that need all roots.
template <typename T> struct FewPoints {
    std::vector<T> data;
    std::vector<Exact> expected;

    FewPoints(std::size_t n, int sign) : data(2 * n), expected(n) {
        std::size_t const places[] = {1, n / 2 + 1, n - 1, n / 3, n / 7};
        for (std::size_t const j : places) data[2 * j] += 1;
        auto const roots = Roots(n, sign);
        for (std::size_t k = 0; k < n; ++k) {
            for (std::size_t const j : places) expected[k] += roots[j * k % n];
            if (sign < 0) expected[k] /= static_cast<long double>(n);
        }
    }
};

TYPED_TEST(FourierTransform, KeepsItsAccuracy) {
    using T = TypeParam;
    for (int const log : {11, 13, 16, 20}) {
        int const n = 1 << log, sign = log % 2 ? -1 : 1;
        SCOPED_TRACE(n);
        FewPoints<T> few(static_cast<std::size_t>(n), sign);
        Fft(few.data.data(), n, sign);
        EXPECT_LT(Error(PointsOf(few.data), few.expected), kLargeTolerance<T>);
    }
}

TYPED_TEST(FourierTransform, OfRealValuesIsTheSum) {
    using T = TypeParam;
    for (int n = 1; n <= 512; n *= 2) {
        SCOPED_TRACE(n);
        auto const input = Random<T>(2 * static_cast<std::size_t>(n), 5);
        auto const output = OnEveryTarget(input, [&](T* data) { Real(data, n, 1); });
        auto expected = Transformed(RealPoints(input), 1);
        expected[0].imag(expected[static_cast<std::size_t>(n)].real());
        expected.resize(static_cast<std::size_t>(n));
        EXPECT_LT(Error(PointsOf(output), expected), kTolerance<T>);
        // any sign but 1 is the inverse
        auto const back = OnEveryTarget(output, [&](T* data) { Real(data, n, n % 3 ? -1 : 2); });
        EXPECT_LT(Error(RealPoints(back), RealPoints(input)), 2 * kTolerance<T>);
    }
    std::vector<T> constant(64, T{3});
    Real(constant.data(), 32, 1);
    EXPECT_EQ(constant[0], 192);
    for (std::size_t i = 1; i < constant.size(); ++i) EXPECT_EQ(constant[i], 0) << i;
}

TYPED_TEST(FourierTransform, OfTwoSequences) {
    using T = TypeParam;
    for (int n = 1; n <= 256; n *= 2) {
        SCOPED_TRACE(n);
        auto const size = static_cast<std::size_t>(n);
        auto const a = Random<T>(size, 7), b = Random<T>(size, 8);
        std::vector<T> fft2(2 * size);
        auto fft1 = OnEveryTarget(std::vector<T>(2 * size),
                                  [&](T* data) { Real2(a.data(), b.data(), data, fft2.data(), n); });
        EXPECT_LT(Error(PointsOf(fft1), Transformed(RealPoints(a), 1)), kTolerance<T>);
        EXPECT_LT(Error(PointsOf(fft2), Transformed(RealPoints(b), 1)), kTolerance<T>);
        EXPECT_EQ(fft1[1], 0);
        EXPECT_EQ(fft2[1], 0);

        auto const kept = fft2;
        std::vector<T> second(size);
        RealInverse2(fft1.data(), fft2.data(), fft1.data(), second.data(), n);
        EXPECT_EQ(fft2, kept);
        fft1.resize(size);
        EXPECT_LT(Error(RealPoints(fft1), RealPoints(a)), 2 * kTolerance<T>);
        EXPECT_LT(Error(RealPoints(second), RealPoints(b)), 2 * kTolerance<T>);
    }
}

TEST(FourierTransformOfASquare, IsTheSumOverRowsAndColumns) {
    for (int n = 1; n <= 64; n *= 2)
        for (int const sign : {1, -1}) {
            SCOPED_TRACE(testing::Message() << n << " by " << n << ", sign " << sign);
            auto const side = static_cast<std::size_t>(n);
            auto const input = Random<double>(2 * side * side, 9);
            auto expected = PointsOf(input);
            for (std::size_t const across : {true, false})
                for (std::size_t i = 0; i < side; ++i) {
                    std::size_t const first = across ? i * side : i, step = across ? 1 : side;
                    std::vector<Exact> line(side);
                    for (std::size_t k = 0; k < side; ++k) line[k] = expected[first + k * step];
                    line = Transformed(line, sign);
                    for (std::size_t k = 0; k < side; ++k) expected[first + k * step] = line[k];
                }
            auto const output = OnEveryTarget(input, [&](double* data) { FFT2d_DBL(data, n, sign); });
            EXPECT_LT(Error(PointsOf(output), expected), kTolerance<double>);
        }
}

template <typename T> std::vector<Exact> Correlation(std::vector<T> const& a, std::vector<T> const& b) {
    std::vector<Exact> sums(a.size());
    for (std::size_t lag = 0; lag < a.size(); ++lag)
        for (std::size_t j = 0; j < a.size(); ++j) sums[lag] += Exact(a[j]) * Exact(b[(j + lag) % a.size()]);
    return sums;
}

TEST(Correlation, IsTheSumAndInFloatDividedByHalfTheLength) {
    for (int n = 1; n <= 512; n *= 2) {
        SCOPED_TRACE(n);
        auto const size = static_cast<std::size_t>(n);
        auto const a = Random<double>(size, 11), b = Random<double>(size, 12);
        auto const exact = OnEveryTarget(std::vector<double>(size),
                                         [&](double* ans) { correl_DBL(a.data(), b.data(), n, ans); });
        EXPECT_LT(Error(RealPoints(exact), Correlation(a, b)), 2 * kTolerance<double>);

        auto const a32 = Random<float>(size, 13), b32 = Random<float>(size, 14);
        std::vector<float> work(2 * size);
        auto const single = OnEveryTarget(std::vector<float>(size), [&](float* ans) {
            correl(a32.data(), b32.data(), n, ans, work.data());
        });
        auto expected = Correlation(a32, b32);
        for (Exact& sum : expected) sum /= std::max(n / 2, 1);
        EXPECT_LT(Error(RealPoints(single), expected), 2 * kTolerance<float>);

        auto inPlace = b32;
        correl(a32.data(), inPlace.data(), n, inPlace.data(), nullptr);
        EXPECT_EQ(inPlace, single);
    }
}

TEST(Convolution, IsTheCircularSum) {
    for (int n = 1; n <= 256; n *= 2) {
        SCOPED_TRACE(n);
        auto const size = static_cast<std::size_t>(n);
        auto const response = Random<double>(size, 15), input = Random<double>(size, 16);
        auto filter = response;
        realFFT_DBL(filter.data(), n / 2, 1);
        auto const kept = filter;
        auto const output = OnEveryTarget(input, [&](double* data) { convlv_DBL(filter.data(), data, n); });
        std::vector<Exact> expected(size);
        for (std::size_t i = 0; i < size; ++i)
            for (std::size_t j = 0; j < size; ++j)
                expected[(i + j) % size] += Exact(response[i]) * Exact(input[j]);
        EXPECT_LT(Error(RealPoints(output), expected), 2 * kTolerance<double>);
        EXPECT_EQ(filter, kept);
    }
}

TEST(FourierTransforms, LeaveOtherNumbersOfPointsAlone) {
    CapturedLog const log;
    for (int const n :
         {0, -1, -4, 3, 6, 1000, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        float a[2] = {1, 2}, b[2] = {3, 4}, c[2] = {5, 6};
        double d[2] = {1, 2}, e[2] = {3, 4};
        FFT(a, n, 1);
        realFFT(a, n, -1);
        realFFT2(a, b, c, c, n);
        realIFFT2(a, b, c, c, n);
        correl(a, b, n, c, nullptr);
        FFT2d_DBL(d, n, -1);
        correl_DBL(d, d, n, e);
        convlv_DBL(d, e, n);
        EXPECT_TRUE(a[0] == 1 && a[1] == 2 && c[0] == 5 && d[0] == 1 && e[0] == 3) << n;
    }
    EXPECT_TRUE(log.Errors().empty());
}

TEST(FourierTransforms, ReportNullPointers) {
    float f[4] = {};
    double d[4] = {};
    EXPECT_REFUSAL(2, L"FFT(): Null pointer.", (FFT(nullptr, 2, 1), 2));
    EXPECT_REFUSAL(2, L"FFT_DBL(): Null pointer.", (FFT_DBL(nullptr, 2, 1), 2));
    EXPECT_REFUSAL(2, L"FFT2d_DBL(): Null pointer.", (FFT2d_DBL(nullptr, 1, 1), 2));
    EXPECT_REFUSAL(2, L"realFFT(): Null pointer.", (realFFT(nullptr, 1, 1), 2));
    EXPECT_REFUSAL(2, L"realFFT2(): Null pointer.", (realFFT2(f, f, nullptr, f, 1), 2));
    EXPECT_REFUSAL(2, L"realIFFT2(): Null pointer.", (realIFFT2(f, f, f, nullptr, 1), 2));
    EXPECT_REFUSAL(2, L"correl(): Null pointer.", (correl(f, nullptr, 2, f, f), 2));
    EXPECT_REFUSAL(2, L"correl_DBL(): Null pointer.", (correl_DBL(d, d, 2, nullptr), 2));
    EXPECT_REFUSAL(2, L"convlv_DBL(): Null pointer.", (convlv_DBL(nullptr, d, 2), 2));
}

TYPED_TEST(FourierTransform, NeedsNoMemory) {
    using T = TypeParam;
    for (int const sign : {1, -1}) {
        int const n = 4096;
        FewPoints<T> few(n, sign);
        auto usual = few.data;
        Fft(usual.data(), n, sign);
        WithoutMemory([&] { Fft(few.data.data(), n, sign); });
        EXPECT_LT(Error(PointsOf(few.data), few.expected), kTolerance<T>);
        EXPECT_NE(few.data, usual) << "there was memory";
    }
}

TEST(FourierTransformOfASquare, NeedsNoMemory) {
    constexpr int n = 256;
    auto const input = Random<double>(std::size_t{2} * n * n, 17);
    auto usual = input, data = input;
    FFT2d_DBL(usual.data(), n, -1);
    WithoutMemory([&] { FFT2d_DBL(data.data(), n, -1); });
    EXPECT_LT(Error(PointsOf(data), PointsOf(usual)), 3 * kTolerance<double>);
    EXPECT_NE(data, usual) << "there was memory";
}

TEST(Correlation, WithoutMemoryReportsAndLeavesTheAnswer) {
    std::vector<float> values(16, 3.0f);
    auto const call = [&] { return correl(values.data(), values.data(), 16, values.data(), nullptr), 1; };
    ExpectRefusal([&] { return WithoutMemory(call); }, 1,
                  L"correl(): Memory allocation failed for 128 bytes.");
    EXPECT_EQ(values, std::vector<float>(16, 3.0f));
}

}  // namespace
}  // namespace ZPA
