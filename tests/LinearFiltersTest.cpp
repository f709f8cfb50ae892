// Filter2D, FilterBufferSimple and fspecial.
#include <Basics/LinearFilters.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <memory>

#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/NoMemory.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

template <typename T> using KernelElement = std::conditional_t<std::is_integral_v<T>, int, T>;

// A pixel of the result, with the kernel's anchor over (x, y): exact for integers, one chain for real numbers.
template <typename T>
T ModelPixel(TestImage<T> const& source, TestImage<KernelElement<T>> const& kernel, int divisor, int x, int y,
             bool fused = false) {
    int const kw = kernel.shape.width, kh = kernel.shape.height;
    std::conditional_t<std::is_integral_v<T>, std::int64_t, T> sum = 0;
    for (int j = 0; j < kh; ++j)
        for (int i = 0; i < kw; ++i) {
            auto const pixel = source.At(x - kw / 2 + i, y - kh / 2 + j);
            auto const weight = kernel.At(kw - 1 - i, kh - 1 - j);
            if constexpr (std::is_integral_v<T>)
                sum += std::int64_t{weight} * pixel;
            else
                sum = fused ? Fused(weight, pixel, sum) : weight * pixel + sum;
        }
    if constexpr (std::is_integral_v<T>)
        sum = std::clamp<std::int64_t>(sum / divisor, std::numeric_limits<T>::min(),
                                       std::numeric_limits<T>::max());
    return static_cast<T>(sum);
}

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
    ImageAttributes output = destination.Attributes();
    ASSERT_EQ(Filter2D(source.Attributes(), nullptr, &output, &origin, kernel.Attributes(), &divisor),
              SOLVANE_OK);
    ASSERT_TRUE(destination == expected);
}

// Elements from -limit to limit, every one of `rarity` other than 0.
template <typename K> TestImage<K> RandomKernel(Shape shape, double limit, unsigned seed, int rarity = 1) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> any(-limit, limit);
    TestImage<K> kernel(shape);
    for (std::size_t i = 0; i < kernel.Size(); ++i)
        kernel.Pixels()[i] =
            random() % static_cast<unsigned>(rarity) == 0 ? static_cast<K>(any(random)) : K(0);
    return kernel;
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
                if (testing::Test::HasFatalFailure()) return;
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
                    auto source = RandomImage<TypeParam>(whole, 1);
                    if (content)
                        std::fill_n(source.Pixels(), source.Size(),
                                    content == 1 ? Limits::min() : Limits::max());
                    ++seed;
                    auto kernel = RandomKernel<int>(shape, limit, static_cast<unsigned>(seed), 1 + seed % 3);
                    if (seed % 4 == 0)  // all of one sign
                        for (std::size_t i = 0; i < kernel.Size(); ++i)
                            kernel.Pixels()[i] =
                                seed % 8 ? std::abs(kernel.Pixels()[i]) : -std::abs(kernel.Pixels()[i]);
                    // Each divisor comes to each limit at some point; small ones would only saturate.
                    for (int const divisor :
                         {kDivisors[seed % 9], static_cast<int>(std::min(limit * 10, 2e9))}) {
                        ExpectModel(source, kernel, divisor);
                        if (testing::Test::HasFatalFailure()) return;
                    }
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
                if (testing::Test::HasFatalFailure()) return;
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
                if (testing::Test::HasFatalFailure()) return;
                // All but separable.
                kernel.At(shape.width - 1, shape.height - 1) += 1;
                ExpectModel(source, kernel, limit * limit);
                if (testing::Test::HasFatalFailure()) return;
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
            for (std::size_t i = 0; i < kernel.Size(); ++i)
                kernel.Pixels()[i] = static_cast<TypeParam>(gaussian.Pixels()[i]);
            auto source = RandomImage<TypeParam>({140 + side, 20 + side, 140 + side}, 1);
            ImageAttributes made;
            ASSERT_EQ(Filter2D(source.Attributes(), nullptr, &made, nullptr, kernel.Attributes(), nullptr),
                      SOLVANE_OK);
            auto const* const pixels = static_cast<TypeParam*>(made.buffer);
            for (int y = 0; y < made.height; ++y)
                for (int x = 0; x < made.width; ++x) {
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
                    ASSERT_LE(std::abs(sum - pixels[y * made.stride + x]), bound) << x << ", " << y;
                }
            FreePixels(made.buffer);
        }
    });
}

// A column times a row would make something of what the kernel's zeros leave out.
TYPED_TEST(Filter2DOfReals, TakeAProductThatUnderflowsForTheZeroThatItIs) {
    using Limits = std::numeric_limits<TypeParam>;
    TestImage<TypeParam> kernel({7, 7, 7}), source({20, 20, 20});
    for (int i = 0; i < 49; ++i)
        kernel.Pixels()[i] = (i % 7 == 3 ? 1 : Limits::min()) * (i / 7 == 3 ? 1 : Limits::min());
    std::fill_n(source.Pixels(), source.Size(), TypeParam(0));
    source.At(10, 10) = Limits::max() / 4;
    ForEachSimdTarget([&] { ExpectModel(source, kernel); });
}

// Nor may a large kernel's many roundings pass for a structure of its own.
TYPED_TEST(Filter2DOfReals, TakeALargeKernelThatIsNearlySeparableAsItIs) {
    auto kernel = RandomKernel<TypeParam>({45, 41, 45}, 200, 1);
    for (std::size_t i = 0; i < kernel.Size(); ++i)
        kernel.Pixels()[i] = 1 + kernel.Pixels()[i] * std::numeric_limits<TypeParam>::epsilon();
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
        TestImage<TypeParam> result({92, 34, 92});
        ImageAttributes output = result.Attributes();
        ASSERT_EQ(Filter2D(source.Attributes(), nullptr, &output, nullptr, kernel.Attributes(), nullptr),
                  SOLVANE_OK);
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
        std::vector<TestImage<TypeParam>> results;
        ForEachThreadCount([&] {
            results.emplace_back(Shape{width, height, width});
            ImageAttributes output = results.back().Attributes();
            int const divisor = 9;
            ASSERT_EQ(Filter2D(source.Attributes(), nullptr, &output, nullptr, kernel.Attributes(), &divisor),
                      SOLVANE_OK);
            ASSERT_TRUE(results.back() == results.front());
        });
        if (separable && std::is_floating_point_v<TypeParam>) continue;
        bool const fused = Fuses();
        for (int y = 0; y < height; y += 37)
            for (int x = 0; x < width; ++x)
                ASSERT_EQ(results[0].At(x, y), ModelPixel(source, kernel, 9, x + 4, y + 4, fused))
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
            ImageAttributes toLines = lines.Attributes(), toOthers = others.Attributes();
            for (ImageAttributes* const to : {&toLines, &toOthers})
                ASSERT_EQ(Filter2D(source.Attributes(), nullptr, to, &origin, kernel.Attributes(), nullptr),
                          SOLVANE_OK);
            for (int y = 0; y < height + 2; ++y)
                ASSERT_EQ(std::memcmp(&lines.At(0, y), &others.At(0, y), 1056 * sizeof(TypeParam)), 0) << y;
        }
    });
}

TEST(Filter2D, FiltersARegionToAnyPlace) {
    auto source = RandomImage<unsigned short>({20, 15, 22}, 1);
    auto kernel = RandomKernel<int>({4, 3, 4}, 5, 2);
    int const divisor = 3;
    Rectangle const roi(2, 1, 17, 13);  // as far as the kernel lets it
    APOINT const origin(1, 4);
    TestImage<unsigned short> destination({18, 17, 19});
    auto expected = destination;
    for (int y = 0; y < 13; ++y)
        for (int x = 0; x < 17; ++x) expected.At(1 + x, 4 + y) = ModelPixel(source, kernel, 3, 2 + x, 1 + y);
    ImageAttributes output = destination.Attributes();
    ASSERT_EQ(Filter2D(source.Attributes(), &roi, &output, &origin, kernel.Attributes(), &divisor),
              SOLVANE_OK);
    EXPECT_TRUE(destination == expected);
}

TEST(Filter2D, MakesTheDestinationWithRoomForTheOrigin) {
    auto source = RandomImage<short>({10, 10, 12}, 1);
    auto kernel = RandomKernel<int>({3, 3, 3}, 5, 2);
    for (APOINT const origin : {APOINT(0, 0), APOINT(2, 1)}) {
        ImageAttributes made(eByte, nullptr, 1, 2, 3, 4, 5);
        ASSERT_EQ(Filter2D(source.Attributes(12, 7), nullptr, &made, &origin, kernel.Attributes(), nullptr),
                  SOLVANE_OK);
        EXPECT_EQ(Description(made),
                  Description({eInt16, nullptr, 8 + origin.x, 8 + origin.y, 8 + origin.x, 12, 7}));
        auto const* const pixels = static_cast<short*>(made.buffer);
        for (int y = 0; y < made.height; ++y)
            for (int x = 0; x < made.width; ++x)
                EXPECT_EQ(pixels[y * made.stride + x],
                          x < origin.x || y < origin.y
                              ? 0
                              : ModelPixel(source, kernel, 1, x - origin.x + 1, y - origin.y + 1));
        FreePixels(made.buffer);
    }
}

TEST(Filter2D, RefusesInItsOrder) {
    alignas(8) static unsigned char pixels[4096], others[4096], weights[4096];
    auto const of = [&](eTypeCode type, int width, int height, int stride) {
        return ImageAttributes(type, pixels, width, height, stride, 16, 3);
    };
    auto const into = [&](eTypeCode type, int width, int height, int stride) {
        return ImageAttributes(type, others, width, height, stride, 16, 3);
    };
    auto const kernel = [&](eTypeCode type, int width, int height, int stride) {
        return ImageAttributes(type, weights, width, height, stride, 0, 0);
    };
    constexpr auto kDestination = L"The destination image pointer was NULL or pointed to the source.";
    constexpr auto kOutOfSource = L"The ROI was out of bounds in the source image.";
    constexpr auto kOutOfDestination = L"The ROI was out of bounds in the destination image.";
    constexpr auto kEmpty = L"The supplied ROI was empty.";
    constexpr auto kNotInteger = L"The kernel was not an integer kernel.";
    constexpr auto kNotReal = L"The kernel was not a real kernel.";
    constexpr auto kNoInteger = L"ippiFilterInt() is unsupported for this data type.";
    constexpr auto kIntegerFailed = L"ippiFilterInt() failed. The error code was -5";
    constexpr auto kRealFailed = L"ippiFilterReal() failed. The error code was -5";
    ImageAttributes const empty, image = of(eUInt16, 20, 20, 20), three = kernel(eInt32, 3, 3, 3);
    ImageAttributes const four = kernel(eInt32, 4, 4, 4), noImage = Described(eUInt16, 20, 20, 20);
    ImageAttributes const noSide = kernel(eSingle, -3, INT_MIN, 0), small = into(eUInt16, 1, 1, 0);
    static int const kZero = 0;
    Rectangle const all, part(1, 1, 2, 2), left(0, 1, 2, 2), far(INT_MAX, 1, INT_MAX, 2);
    APOINT const corner;
    struct Case {
        char const* name;
        ImageAttributes source, destination, kernel;
        Rectangle roi;  // null if it is all zero
        APOINT origin;
        int code;
        std::wstring message;
        bool fillsIn = false;  // the descriptor of a destination without pixels
        int const* divisor = nullptr;
    };
    Case const cases[] = {
        {"type", Described(eUnknown, 20, 20, 20), empty, empty, all, corner, 6,
         L"Unsupported image datatype."},
        {"source", noImage, empty, empty, all, corner, 2, L"The source buffer pointer was NULL."},
        {"in place", image, of(eUInt16, 20, 20, 20), empty, all, corner, 2, kDestination},
        {"kernel", image, empty, Described(eSingle, 3, 3, 3), all, corner, 2,
         L"The kernel buffer pointer was NULL."},
        {"kernel's type", image, empty, kernel(eSingle, 30, 3, 3), all, corner, 6, kNotInteger},
        {"kernel of 32u", of(eSByte, 9, 9, 9), empty, kernel(eUInt32, 3, 3, 3), all, corner, 6, kNotInteger},
        {"wide kernel", image, empty, kernel(eInt32, 21, 3, 21), all, corner, 3, kEmpty},
        {"high kernel", image, empty, kernel(eInt32, 3, 21, 3), all, corner, 3, kEmpty},
        {"no width", image, empty, three, Rectangle(-1, 0, 0, 1), corner, 3, kEmpty},
        {"no height", image, empty, three, Rectangle(-1, 0, 1, -1), corner, 3, kEmpty},
        {"left", image, empty, four, Rectangle(1, 2, 2, 2), corner, 3, kOutOfSource},
        {"above", image, empty, four, Rectangle(2, 1, 2, 2), corner, 3, kOutOfSource},
        {"right", image, empty, four, Rectangle(2, 2, 18, 2), corner, 3, kOutOfSource},
        {"below", image, empty, four, Rectangle(2, 2, 2, 18), corner, 3, kOutOfSource},
        {"overflow", image, empty, three, far, corner, 3, kOutOfSource},
        {"source before destination", image, small, three, left, APOINT(-1, 0), 3, kOutOfSource},
        {"origin x", image, empty, three, part, APOINT(-1, 0), 3, kOutOfDestination, true},
        {"origin y", image, empty, three, part, APOINT(0, -1), 3, kOutOfDestination, true},
        {"far origin", image, empty, three, part, APOINT(INT_MAX, 0), 3, kOutOfDestination, true},
        {"narrow", image, into(eUInt16, 2, 9, 1), three, part, APOINT(1, 0), 3, kOutOfDestination},
        {"low", image, into(eUInt16, 9, 2, 1), three, part, APOINT(0, 1), 3, kOutOfDestination},
        {"stride", image, into(eByte, 2, 2, 1), three, part, corner, 3,
         L"The destination stride was less than the destination width."},
        {"source's rows", of(eUInt16, 20, 20, 19), empty, three, part, corner, 7,
         L"The source image's rows overlap.", true},
        {"destination's type", image, into(eByte, 2, 2, 2), three, part, corner, 7,
         L"The destination image's elements are narrower than the source's."},
        {"kernel's rows", image, empty, kernel(eInt32, 3, 3, 2), part, corner, 7,
         L"The kernel's rows overlap.", true},
        {"small reals", of(eSingle, 20, 20, 20), empty, kernel(eInt16, 3, 3, 3), part, corner, 6, kNotReal,
         true},
        {"smaller reals", of(eDouble, 20, 20, 20), empty, kernel(eSingle, 3, 3, 3), part, corner, 6, kNotReal,
         true},
        {"8s", of(eSByte, 20, 20, 20), empty, three, part, corner, 6, kNoInteger, true},
        {"32s", of(eInt32, 20, 20, 20), into(eInt32, 2, 2, 2), three, part, corner, 6, kNoInteger},
        {"32u", of(eUInt32, 20, 20, 20), empty, three, part, corner, 6, kNoInteger, true},
        {"divisor", image, empty, three, part, corner, 5, L"ippiFilterInt() failed. The error code was -6",
         true, &kZero},
        {"kernel of no size", image, empty, kernel(eInt32, 0, 3, 3), part, corner, 5, kIntegerFailed, true},
        {"negative kernel", of(eSingle, 20, 20, 20), into(eSingle, 2, 2, 2), noSide, part, corner, 5,
         kRealFailed},
        {"real kernel of no size", of(eDouble, 20, 20, 20), empty, kernel(eDouble, 3, 0, 3), part, corner, 5,
         kRealFailed, true},
    };
    unsigned char before[sizeof others];
    std::memcpy(before, others, sizeof others);
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        ImageAttributes output = each.destination;
        Rectangle const& roi = each.roi;
        bool const given = roi.x || roi.y || roi.width || roi.height;
        auto const call = [&] {
            return Filter2D(each.source, given ? &roi : nullptr, &output, &each.origin, each.kernel,
                            each.divisor);
        };
        ExpectRefusal(call, each.code, each.message);
        EXPECT_EQ(output.buffer, each.destination.buffer);
        EXPECT_EQ(output.type, each.fillsIn ? each.source.type : each.destination.type);
        EXPECT_EQ(output.pixelspacing, each.fillsIn ? 3 : each.destination.pixelspacing);
    }
    EXPECT_EQ(std::memcmp(before, others, sizeof others), 0);
    ExpectRefusal([&] { return Filter2D(image, nullptr, nullptr, nullptr, three, nullptr); }, 2,
                  kDestination);
}

TEST(Filter2D, WritesNothingWithoutMemory) {
    auto image = RandomImage<double>({30, 30, 30}, 1);
    auto kernel = RandomKernel<double>({3, 3, 3}, 1, 2);
    TestImage<double> destination({28, 28, 28});
    auto const before = destination;
    ImageAttributes output = destination.Attributes(), made;
    CapturedLog const log;
    NoMemory const none;
    EXPECT_EQ(Filter2D(image.Attributes(), nullptr, &output, nullptr, kernel.Attributes(), nullptr),
              SOLVANE_OUT_OF_MEMORY);
    EXPECT_EQ(log.Text().substr(0, 46),
              L"Filter2D: Memory allocation failed for " + log.Text().substr(39, 7));
    EXPECT_TRUE(destination == before);
    EXPECT_EQ(Filter2D(image.Attributes(), nullptr, &made, nullptr, kernel.Attributes(), nullptr),
              SOLVANE_UNEXPECTED);
    EXPECT_EQ(made.buffer, nullptr);
    EXPECT_EQ(made.width, 28);
}

template <typename T> class FilterBufferSimpleOf : public testing::Test {};
using AllElements =
    testing::Types<char, unsigned char, short, unsigned short, int, unsigned int, float, double>;
TYPED_TEST_SUITE(FilterBufferSimpleOf, AllElements, );

template <typename T> BufferAttributes BufferOf(std::vector<T>& elements) {
    return {TypeCodeOf<T>, elements.data(), static_cast<int>(elements.size())};
}

template <typename T> std::vector<T> Causal(std::vector<T> const& input, std::vector<float> const& weights) {
    std::vector<T> output;
    for (std::size_t i = 0; i < input.size(); ++i) {
        long double sum = 0;
        for (std::size_t k = 0; k < weights.size() && k <= i; ++k)
            sum += static_cast<long double>(input[i - k]) * static_cast<long double>(weights[k]);
        if constexpr (std::is_integral_v<T>)
            output.push_back(static_cast<T>(std::abs(sum) < 2147483648.0L ? static_cast<int>(sum)
                                                                          : std::numeric_limits<int>::min()));
        else
            output.push_back(static_cast<T>(sum));
    }
    return output;
}

TYPED_TEST(FilterBufferSimpleOf, IsTheModelInEveryWayToTakeTheOutput) {
    for (int const taps : {0, 1, 2, 5, 40}) {
        SCOPED_TRACE(taps);
        auto const random = RandomImage<TypeParam>({33, 1, 33}, 1);
        std::vector<TypeParam> const input(random.Pixels(), random.Pixels() + 33);
        auto const some = RandomKernel<float>({taps, 1, taps}, 2, 3);
        std::vector<float> weights(some.Pixels(), some.Pixels() + taps);
        if (taps == 0) weights.reserve(1);
        auto const expected = Causal(input, weights);
        BufferAttributes const filter(eSingle, weights.data(), taps);

        auto inPlace = input, own = input, other = input;
        EXPECT_EQ(FilterBufferSimple(BufferOf(inPlace), filter, nullptr), SOLVANE_OK);
        EXPECT_EQ(inPlace, expected);
        BufferAttributes itself = BufferOf(own);
        EXPECT_EQ(FilterBufferSimple(BufferOf(own), filter, &itself), SOLVANE_OK);
        EXPECT_EQ(own, expected);
        EXPECT_EQ(itself.buffer, own.data());

        std::vector<TypeParam> longer(40, TypeParam(7));
        BufferAttributes output = BufferOf(longer);
        EXPECT_EQ(template_FilterBufferSimple<TypeParam>(BufferOf(other), filter, &output), SOLVANE_OK);
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), longer.begin()));
        EXPECT_TRUE(std::all_of(longer.begin() + 33, longer.end(), [](TypeParam each) { return each == 7; }));
        EXPECT_EQ(output.size, 40);
        EXPECT_EQ(other, input);

        // None; of another type; too short. The last two are freed, which the address sanitizer watches.
        for (BufferAttributes made :
             {BufferAttributes(eByte, nullptr, 99),
              BufferAttributes(TypeCodeOf<TypeParam> == eSingle ? eDouble : eSingle, new double[40], 40),
              BufferAttributes(TypeCodeOf<TypeParam>, new TypeParam[32], 32)}) {
            ASSERT_EQ(FilterBufferSimple(BufferOf(other), filter, &made), SOLVANE_OK);
            EXPECT_EQ(made.type, TypeCodeOf<TypeParam>);
            ASSERT_EQ(made.size, 33);
            EXPECT_TRUE(std::equal(expected.begin(), expected.end(), static_cast<TypeParam*>(made.buffer)));
            FreePixels(made.buffer);
        }
    }
}

TEST(FilterBufferSimple, ReadsTheInputBeforeItIsFreedAsAnOutput) {
    auto* const shared = new unsigned short[3]{100, 200, 300};
    float weights[] = {1, 0.5f};
    BufferAttributes output(eUInt16, shared, 2);
    ASSERT_EQ(FilterBufferSimple({eUInt16, shared, 3}, {eSingle, weights, 2}, &output), SOLVANE_OK);
    auto const* const made = static_cast<unsigned short*>(output.buffer);
    EXPECT_EQ(std::vector<int>(made, made + 3), (std::vector<int>{100, 250, 400}));
    FreePixels(output.buffer);
}

TEST(FilterBufferSimple, MakesRoomForTheInputsElements) {
    double input[3] = {1, 2, 3};
    float weights[] = {1};
    BufferAttributes made(eDouble, nullptr, 0);
    ASSERT_EQ(template_FilterBufferSimple<float>({eDouble, input, 3}, {eSingle, weights, 1}, &made),
              SOLVANE_OK);
    EXPECT_EQ(made.type, eDouble);
    std::copy_n(input, made.size, static_cast<double*>(made.buffer));  // which the address sanitizer watches
    FreePixels(made.buffer);
}

TEST(FilterBufferSimple, SumsInExtendedPrecisionThenTruncatesToTheLowBits) {
    // Double precision would lose what is left here: of a sum, and of a product.
    struct Case {
        std::vector<float> weights;
        std::vector<double> input;
        double last;
    };
    Case cases[] = {{{1, 0x1p-60f, -1}, {1, 1, 1}, 0x1p-60},
                    {{1 + 0x1p-23f, -1}, {1 + 0x1p-23 + 0x1p-40, 1 + 0x1p-40}, 0x1p-63}};
    for (Case& each : cases) {
        if (std::numeric_limits<long double>::digits < 64) break;
        ASSERT_EQ(FilterBufferSimple(BufferOf(each.input), BufferOf(each.weights), nullptr), SOLVANE_OK);
        EXPECT_EQ(each.input.back(), each.last);
    }
    float weights[] = {0.75f};
    char bytes[] = {5, -5, 127, -128};
    ASSERT_EQ(FilterBufferSimple({eSByte, bytes, 4}, {eSingle, weights, 1}, nullptr), SOLVANE_OK);
    EXPECT_EQ(std::vector<int>(bytes, bytes + 4), (std::vector<int>{3, -3, 95, -96}));

    float scale[] = {1000000.0f};
    std::vector<unsigned char> wrapped{1, 3, 255};
    ASSERT_EQ(FilterBufferSimple(BufferOf(wrapped), {eSingle, scale, 1}, nullptr), SOLVANE_OK);
    EXPECT_EQ(wrapped, (std::vector<unsigned char>{1000000 % 256, 3000000 % 256, 255000000 % 256}));
    std::vector<unsigned int> words{2147, 2148};
    ASSERT_EQ(FilterBufferSimple(BufferOf(words), {eSingle, scale, 1}, nullptr), SOLVANE_OK);
    EXPECT_EQ(words, (std::vector<unsigned int>{2147000000u, 0x80000000u}));
    float none[] = {std::numeric_limits<float>::quiet_NaN()};
    std::vector<int> lost{1};
    ASSERT_EQ(FilterBufferSimple(BufferOf(lost), {eSingle, none, 1}, nullptr), SOLVANE_OK);
    EXPECT_EQ(lost[0], INT_MIN);
}

TEST(FilterBufferSimple, RefusesInItsOrder) {
    static float elements[8], weights[2];
    BufferAttributes const input(eSingle, elements, 8), filter(eSingle, weights, 2);
    constexpr auto kMemory = L"FilterBufferSimple: Memory allocation failed for 2147483647 bytes.";
    EXPECT_REFUSAL(6, L"Unsupported image datatype.",
                   FilterBufferSimple({eUnknown, nullptr, 8}, filter, nullptr));
    EXPECT_REFUSAL(4, L"The input buffer is NULL.",
                   FilterBufferSimple({eByte, nullptr, 8}, {eSingle, nullptr, 2}, nullptr));
    EXPECT_REFUSAL(4, L"The filter buffer is NULL.",
                   FilterBufferSimple(input, {eSingle, nullptr, 2}, nullptr));
    EXPECT_REFUSAL(6, L"The filter was not a float filter.",
                   FilterBufferSimple(input, {eInt16, weights, 2}, nullptr));
    EXPECT_REFUSAL(1, kMemory, FilterBufferSimple({eSingle, elements, -1}, filter, nullptr));  // length
    ExpectRefusal([&] { return template_FilterBufferSimple<double>(input, filter, nullptr); }, 7,
                  L"The elements of the input buffer are too narrow.");
}

TEST(FilterBufferSimple, FreesTheOutputWithoutMemory) {
    std::vector<float> input{1, 2, 3}, weights{1};
    auto const before = input;
    BufferAttributes output(eByte, new unsigned char[9], 9);
    CapturedLog const log;
    NoMemory const none;
    EXPECT_EQ(FilterBufferSimple(BufferOf(input), BufferOf(weights), &output), SOLVANE_OUT_OF_MEMORY);
    EXPECT_EQ(log.Text(), L"FilterBufferSimple: Memory allocation failed for 12 bytes.");
    EXPECT_EQ(output.buffer, nullptr);
    EXPECT_EQ(output.type, eSingle);
    EXPECT_EQ(output.size, 3);
    EXPECT_EQ(FilterBufferSimple(BufferOf(input), BufferOf(weights), nullptr), SOLVANE_OUT_OF_MEMORY);
    EXPECT_EQ(input, before);
}

TEST(LinearFilters, LogTheirScope) {
    EXPECT_EQ(ScopesOf([] { (void)Filter2D({}, nullptr, nullptr, nullptr, {}, nullptr); }), L"Filter2D{}");
    EXPECT_EQ(ScopesOf([] {
                  (void)FilterBufferSimple({eByte, nullptr, 0}, {eByte, nullptr, 0}, nullptr);
              }),
              L"FilterBufferSimple{}");
}

TEST(Fspecial, MakesEachKind) {
    constexpr double a = 0.2, corner = 1.0 / 6, edge = 4.0 / 6, centre = -20.0 / 6;
    struct Case {
        char const* kind;
        double parameter;
        std::vector<double> elements;
    };
    Case const cases[] = {
        {"laplacian", a, {corner, edge, corner, edge, centre, edge, corner, edge, corner}},
        {"laplacian", -3, {0, 1, 0, 1, -4, 1, 0, 1, 0}},
        {"laplacian", 1e-16, {0, 1, 0, 1, -4, 1, 0, 1, 0}},
        {"laplacian", 7, {0.5, 0, 0.5, 0, -2, 0, 0.5, 0, 0.5}},
        {"sobel", 0, {1, 2, 1, 0, 0, 0, -1, -2, -1}},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(testing::Message() << each.kind << " " << each.parameter);
        // Nine elements in a row, whatever the shape.
        TestImage<double> kernel({1, 2, 6});
        auto expected = kernel;
        std::copy(each.elements.begin(), each.elements.end(), expected.Pixels());
        ASSERT_EQ(fspecial(kernel.Attributes(), each.kind, each.parameter), SOLVANE_OK);
        for (std::size_t i = 0; i < 9; ++i) EXPECT_DOUBLE_EQ(kernel.Pixels()[i], expected.Pixels()[i]);
        std::copy_n(kernel.Pixels(), 9, expected.Pixels());
        EXPECT_TRUE(kernel == expected);

        auto withoutWidth = kernel.Attributes();
        withoutWidth.width = -1;
        kernel.Pixels()[0] = 9;
        ASSERT_EQ(fspecial(withoutWidth, each.kind, each.parameter), SOLVANE_OK);
        EXPECT_TRUE(kernel == expected);
    }
}

TEST(Fspecial, FillsRowsByTheirStride) {
    for (Shape const shape : {Shape{3, 3, 3}, {4, 5, 7}, {1, 1, 1}, {31, 2, 40}, {0, 3, 0}, {3, 0, 3}}) {
        SCOPED_TRACE(shape);
        for (double const parameter : {0.5, 2.5, -1.0, 0.01}) {
            double const sigma = parameter < 0 ? 0.5 : parameter;
            TestImage<double> average(shape), gaussian(shape), expected(shape), values(shape);
            double sum = 0, largest = 0;
            auto const at = [&](int x, int y) {
                double const dx = x - (shape.width - 1) / 2.0, dy = y - (shape.height - 1) / 2.0;
                return std::exp(-(dx * dx + dy * dy) / (2 * sigma * sigma));
            };
            expected.Fill([&](int, int) { return 1.0 / (shape.width * shape.height); });
            values.Fill([&](int x, int y) { return largest = std::max(largest, at(x, y)); });
            values.Fill([&](int x, int y) {
                double const value = at(x, y) < largest * 2.2204e-16 ? 0 : at(x, y);
                sum += value;
                return value;
            });
            values.Fill([&](int x, int y) { return sum != 0 ? values.At(x, y) / sum : 0.0; });
            ASSERT_EQ(fspecial(average.Attributes(), "average", 9), SOLVANE_OK);
            EXPECT_TRUE(average == expected);
            ASSERT_EQ(fspecial(gaussian.Attributes(), "gaussian", parameter), SOLVANE_OK);
            for (std::size_t i = 0; i < values.Size(); ++i)
                EXPECT_DOUBLE_EQ(gaussian.Pixels()[i], values.Pixels()[i]) << i;
        }
    }
}

TEST(Fspecial, RefusesInItsOrder) {
    static double elements[16];
    auto const of = [&](eTypeCode type, int width, int height, int stride) {
        return ImageAttributes(type, elements, width, height, stride, 0, 0);
    };
    EXPECT_REFUSAL(4, L"The input buffer is NULL.", fspecial(Described(eByte, 3, 3, 3), "disk", 1));
    EXPECT_REFUSAL(4, L"Input image are not double type.", fspecial(of(eSingle, 3, 3, 3), "disk", 1));
    EXPECT_REFUSAL(6, L"", fspecial(of(eDouble, 3, 3, 3), "disk", 1));
    EXPECT_REFUSAL(6, L"", fspecial(of(eDouble, 3, 3, 3), "Sobel", 1));
    EXPECT_REFUSAL(6, L"", fspecial(of(eDouble, 3, 3, 3), nullptr, 1));
    EXPECT_REFUSAL(7, L"The kernel's rows overlap.", fspecial(of(eDouble, 3, 3, 2), "average", 1));
    EXPECT_REFUSAL(7, L"The kernel's rows overlap.", fspecial(of(eDouble, 3, 3, -3), "gaussian", 1));
    EXPECT_REFUSAL(7, L"The kernel image is too small.", fspecial(of(eDouble, 3, 2, 4), "sobel", 1));
    EXPECT_REFUSAL(7, L"The kernel image is too small.", fspecial(of(eDouble, 3, -3, -3), "laplacian", 1));
    EXPECT_TRUE(std::all_of(std::begin(elements), std::end(elements), [](double each) { return each == 0; }));
    CapturedLog const log;
    ZPA_Logging::SetErrorCallback([](wchar_t const*, int, wchar_t const*) { throw 1; });
    EXPECT_EQ(fspecial({}, "sobel", 1), SOLVANE_UNEXPECTED);
}

}  // namespace
}  // namespace ZPA
