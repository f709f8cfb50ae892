// The sums of Filter2D: each pixel against a plain filter, on every instruction set and number of threads.
#include <Basics/LinearFilters.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "support/LinearFilters.h"

namespace ZPA {
namespace {

using namespace Testing;

template <typename T> class Filter2DOf : public testing::Test {};
template <typename T> class Filter2DOfIntegers : public testing::Test {};
template <typename T> class Filter2DOfReals : public testing::Test {};
using Integers = testing::Types<unsigned char, short, unsigned short>;
using Reals = testing::Types<float, double>;
using Served = testing::Types<unsigned char, short, unsigned short, float, double>;
TYPED_TEST_SUITE(Filter2DOf, Served, );
TYPED_TEST_SUITE(Filter2DOfIntegers, Integers, );
TYPED_TEST_SUITE(Filter2DOfReals, Reals, );

// Filters the largest region into a guarded image, and compares all of that.
template <typename T>
void ExpectModel(TestImage<T>& source, TestImage<KernelElement<T>>& kernel, int divisor = 1) {
    SCOPED_TRACE(testing::Message() << source.shape << "; kernel " << kernel.shape << "; divisor "
                                    << divisor);
    int const kw = kernel.shape.width, kh = kernel.shape.height;
    int const width = source.shape.width - kw + 1, height = source.shape.height - kh + 1;
    APOINT const origin(3, 2);
    TestImage<T> destination({width + 5, height + 3, width + 7});
    auto expected = destination;
    bool const fused = Fuses();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            expected.At(origin.x + x, origin.y + y) =
                ModelPixel(source, kernel, divisor, x + kw / 2, y + kh / 2, fused);
    ASSERT_EQ(
        Filter2D(source.Attributes(), nullptr, destination.Into(), &origin, kernel.Attributes(), &divisor),
        SOLVANE_OK);
    ASSERT_TRUE(destination == expected);
}

// The largest region, filtered into an image of its own.
template <typename T>
TestImage<T> Filtered(TestImage<T>& source, TestImage<KernelElement<T>>& kernel, int divisor = 1) {
    int const width = source.shape.width - kernel.shape.width + 1;
    TestImage<T> result({width, source.shape.height - kernel.shape.height + 1, width});
    EXPECT_EQ(Filter2D(source.Attributes(), nullptr, result.Into(), nullptr, kernel.Attributes(), &divisor),
              SOLVANE_OK);
    return result;
}

// A column times a row, both from 1 to `limit` and of either sign.
template <typename K> TestImage<K> SeparableKernel(Shape shape, int limit, unsigned seed) {
    std::mt19937 random(seed);
    auto const any = [&] {
        int const size = 1 + static_cast<int>(random() % static_cast<unsigned>(limit));
        return static_cast<K>(random() % 4 == 0 ? -size : size);
    };
    std::vector<K> row(static_cast<std::size_t>(shape.width));
    std::generate(row.begin(), row.end(), any);
    TestImage<K> kernel(shape);
    for (int y = 0; y < shape.height; ++y) {
        K const factor = any();
        for (int x = 0; x < shape.width; ++x) kernel.At(x, y) = factor * row[static_cast<std::size_t>(x)];
    }
    return kernel;
}

// Odd, even, flat and upright ones, padded ones, more than any tile.
constexpr Shape kKernels[] = {{1, 1, 1}, {3, 3, 3}, {2, 2, 2},  {4, 3, 6},    {5, 5, 5},    {3, 6, 3},
                              {7, 7, 9}, {9, 1, 9}, {1, 10, 1}, {15, 15, 15}, {16, 15, 17}, {40, 21, 40}};
// Results narrower than a vector, and on both sides of a few.
constexpr int kWidths[] = {1, 3, 31, 64, 129, 200};

TYPED_TEST(Filter2DOf, IsTheModelOnEverySimdTarget) {
    using K = KernelElement<TypeParam>;
    ForEachSimdTarget([] {
        for (Shape const shape : kKernels)
            for (int const width : kWidths) {
                Shape const whole{width + shape.width - 1, 7 + shape.height - 1, width + shape.width + 4};
                auto source = RandomImage<TypeParam>(whole, 1);
                auto kernel = RandomKernel<K>(shape, 20, 2);
                ExpectModel(source, kernel, 7);
            }
    });
}

// Weights whose sums need 16 bits to more than 53, and images that are all one limit of their type.
TYPED_TEST(Filter2DOfIntegers, AreExactForEveryRangeOfSums) {
    using Limits = std::numeric_limits<TypeParam>;
    constexpr double kLimits[] = {2, 127, 3000, 32767.9, 32769, 70000, 2147483647};
    constexpr int kDivisors[] = {1, -1, 2, -3, 255, 65536, 1000003, INT_MAX, INT_MIN};
    ForEachSimdTarget([&] {
        int seed = 0;
        for (Shape const shape : {Shape{3, 3, 3}, {5, 4, 5}, {15, 15, 15}})
            for (double const limit : kLimits)
                for (int const content : {0, 1, 2}) {
                    Shape const whole{70 + shape.width, 3 + shape.height, 70 + shape.width};
                    auto source = content == 0   ? RandomImage<TypeParam>(whole, 1)
                                  : content == 1 ? Uniform(whole, Limits::min())
                                                 : Uniform(whole, Limits::max());
                    ++seed;
                    auto kernel = RandomKernel<int>(shape, limit, static_cast<unsigned>(seed), 1 + seed % 3);
                    if (seed % 4 == 0)  // all of one sign
                        for (int& weight : kernel) weight = seed % 8 ? std::abs(weight) : -std::abs(weight);
                    // Each divisor comes to each limit at some point; small ones would only saturate.
                    for (int const divisor :
                         {kDivisors[seed % 9], static_cast<int>(std::min(limit * 10, 2e9))})
                        ExpectModel(source, kernel, divisor);
                }
    });
}

// Every value of a pixel, so that there are quotients that are whole numbers, and some just beside one.
TYPED_TEST(Filter2DOfIntegers, CutEveryQuotientWhereItShouldBe) {
    TestImage<TypeParam> source({256, 257, 256});
    for (int i = 0; i < 257 * 256; ++i) source.Pixels()[i] = static_cast<TypeParam>(i / 512 * 256 + i % 256);
    for (int i = 0; i < 128 * 256; ++i) source.At(i % 256, 129 + i / 256) = static_cast<TypeParam>(-1 - i);
    ForEachSimdTarget([&] {
        for (int const weight : {1, -42, 43, 16384, 32767, 32768, INT_MAX})
            for (int const divisor : {3, -7, 641, 65537, weight, 3 * (weight / 4) + 1}) {
                TestImage<int> one({1, 1, 1}), two({1, 2, 1});  // two: more than 32 bits with a sign hold
                one.Pixels()[0] = two.Pixels()[0] = two.Pixels()[1] = weight;
                ExpectModel(source, one, divisor);
                ExpectModel(source, two, divisor);
            }
    });
}

TYPED_TEST(Filter2DOfIntegers, AreExactForSeparableKernels) {
    ForEachSimdTarget([] {
        for (Shape const shape : {Shape{3, 3, 3}, {5, 7, 5}, {7, 7, 7}, {8, 9, 8}, {15, 15, 15}, {9, 31, 9}})
            for (int const limit : {2, 20, 181, 3000, 40000}) {
                auto kernel = SeparableKernel<int>(shape, limit, static_cast<unsigned>(limit));
                auto source = RandomImage<TypeParam>({150 + shape.width, 12 + shape.height, 175}, 3);
                ExpectModel(source, kernel, limit * limit);
                // All but separable.
                kernel.At(shape.width - 1, shape.height - 1) += 1;
                ExpectModel(source, kernel, limit * limit);
            }
    });
}

// Those that separate need not be the chain, but no further from the true sum than it may be.
TYPED_TEST(Filter2DOfReals, AreAsAccurateForSeparableKernels) {
    ForEachSimdTarget([] {
        for (int const side : {3, 5, 7, 15, 31}) {
            SCOPED_TRACE(side);
            TestImage<double> gaussian({side, side, side});
            ASSERT_EQ(fspecial(gaussian.Attributes(), "gaussian", side / 5.0), SOLVANE_OK);
            TestImage<TypeParam> kernel(gaussian.shape);
            kernel.Fill([&](int x, int y) { return gaussian.At(x, y); });
            auto source = RandomImage<TypeParam>({140 + side, 20 + side, 140 + side}, 1);
            auto const result = Filtered(source, kernel);
            for (int y = 0; y < result.shape.height; ++y)
                for (int x = 0; x < result.shape.width; ++x) {
                    long double sum = 0, sizes = 0;
                    for (int j = 0; j < side; ++j)
                        for (int i = 0; i < side; ++i) {
                            long double const product =
                                static_cast<long double>(kernel.At(side - 1 - i, side - 1 - j)) *
                                source.At(x + i, y + j);
                            sum += product;
                            sizes += std::abs(product);
                        }
                    long double const bound =
                        sizes * side * side * std::numeric_limits<TypeParam>::epsilon() / 2;
                    ASSERT_LE(std::abs(sum - result.At(x, y)), bound) << x << ", " << y;
                }
        }
    });
}

// A column times a row would make something of what the kernel's zeros leave out.
TYPED_TEST(Filter2DOfReals, TakeAProductThatUnderflowsForTheZeroThatItIs) {
    using Limits = std::numeric_limits<TypeParam>;
    TestImage<TypeParam> kernel({7, 7, 7});
    kernel.Fill([](int x, int y) { return (x == 3 ? 1 : Limits::min()) * (y == 3 ? 1 : Limits::min()); });
    auto source = Uniform<TypeParam>({20, 20, 20}, 0);
    source.At(10, 10) = Limits::max() / 4;
    ForEachSimdTarget([&] { ExpectModel(source, kernel); });
}

// Nor may a large kernel's many roundings pass for a structure of its own.
TYPED_TEST(Filter2DOfReals, TakeALargeKernelThatIsNearlySeparableAsItIs) {
    auto kernel = RandomKernel<TypeParam>({45, 41, 45}, 200, 1);
    for (TypeParam& weight : kernel) weight = 1 + weight * std::numeric_limits<TypeParam>::epsilon();
    auto source = RandomImage<TypeParam>({60, 45, 60}, 1);
    ForEachSimdTarget([&] { ExpectModel(source, kernel); });
}

TYPED_TEST(Filter2DOfReals, KeepsWhatIsNotANumberWithinTheKernelsReach) {
    for (bool const separable : {false, true}) {
        auto kernel = separable ? SeparableKernel<TypeParam>({9, 7, 9}, 9, 1)
                                : RandomKernel<TypeParam>({9, 7, 9}, 9, 1);
        auto source = RandomImage<TypeParam>({100, 40, 100}, 1);
        source.At(50, 20) = std::numeric_limits<TypeParam>::quiet_NaN();
        source.At(13, 30) = std::numeric_limits<TypeParam>::infinity();
        auto const result = Filtered(source, kernel);
        for (int y = 0; y < 34; ++y)
            for (int x = 0; x < 92; ++x) {
                bool const reaches = (std::abs(x + 4 - 50) <= 4 && std::abs(y + 3 - 20) <= 3) ||
                                     (std::abs(x + 4 - 13) <= 4 && std::abs(y + 3 - 30) <= 3);
                ASSERT_EQ(std::isfinite(result.At(x, y)), !reaches) << x << ", " << y;
            }
    }
}

TYPED_TEST(Filter2DOf, GivesTheSameForAnyNumberOfThreads) {
    using K = KernelElement<TypeParam>;
    for (bool const separable : {false, true}) {
        // Enough work for threads to be used.
        int const width = separable ? 1500 : 700, height = 2 * width;
        auto source = RandomImage<TypeParam>({width + 8, height + 8, width + 8}, 1);
        auto kernel = separable ? SeparableKernel<K>({9, 9, 9}, 9, 1) : RandomKernel<K>({9, 9, 9}, 9, 1);
        auto const result = Filtered(source, kernel, 9);
        ForEachThreadCount([&] { ASSERT_TRUE(Filtered(source, kernel, 9) == result); });
        if (separable && std::is_floating_point_v<TypeParam>) continue;
        for (int y = 0; y < height; y += 37)
            for (int x = 0; x < width; ++x)
                ASSERT_EQ(result.At(x, y), ModelPixel(source, kernel, 9, x + 4, y + 4, Fuses()))
                    << x << ", " << y;
    }
}

// Large results are written past the caches, in whole lines of 64 bytes, if all rows begin alike; wherever these
// begin.
TYPED_TEST(Filter2DOfReals, GiveTheSameInLargeImagesWhereverTheyBegin) {
    int const width = 1021, height = 1039;
    auto source = RandomImage<TypeParam>({width + 2, height + 2, width + 2}, 1);
    auto kernel = RandomKernel<TypeParam>({3, 3, 3}, 9, 1);
    ForEachSimdTarget([&] {
        for (int const offset : {0, 1, 21}) {
            APOINT const origin(offset, 1);
            TestImage<TypeParam> lines({1056, height + 2, 1056}), others({1056, height + 2, 1057});
            for (auto* const to : {&lines, &others})
                ASSERT_EQ(
                    Filter2D(source.Attributes(), nullptr, to->Into(), &origin, kernel.Attributes(), nullptr),
                    SOLVANE_OK);
            for (int y = 0; y < height + 2; ++y)
                ASSERT_EQ(std::memcmp(&lines.At(0, y), &others.At(0, y), 1056 * sizeof(TypeParam)), 0) << y;
        }
    });
}

}  // namespace
}  // namespace ZPA
