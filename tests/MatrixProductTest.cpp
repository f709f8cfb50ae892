// The matrix product of images.
#include <Basics/Arithmetic.h>
#include <gtest/gtest.h>

#include <functional>

#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/NoMemory.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

// One chain in the order of k. Rows begin `stride` elements apart.
template <typename T>
void Model(T const* first, int firstStride, T const* second, int secondStride, T* product, int productStride,
           int height, int width, int length, bool fused) {
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            T sum = 0;
            for (int k = 0; k < length; ++k) {
                T const a = first[y * firstStride + k], b = second[k * secondStride + x];
                sum = fused ? Fused(a, b, sum) : a * b + sum;
            }
            product[y * productStride + x] = sum;
        }
}

struct Product {
    int height, width, length;
};
// Both sides of a tile, of a panel's depth, of a group, and of what is packed at once.
constexpr Product kProducts[] = {{1, 1, 1},     {2, 3, 4},    {5, 7, 3},    {14, 32, 256}, {15, 33, 257},
                                 {13, 31, 255}, {6, 16, 600}, {1, 300, 20}, {300, 1, 20},  {130, 140, 20},
                                 {57, 64, 513}, {4200, 3, 2}, {3, 4200, 2}};

template <typename T> class MatrixProductOf : public testing::Test {};
using Floats = testing::Types<float, double>;
TYPED_TEST_SUITE(MatrixProductOf, Floats, );

TYPED_TEST(MatrixProductOf, IsOneChainForEveryElementOnEverySimdTarget) {
    for (Product const& size : kProducts) {
        // Strides count for floats only.
        int const padding = sizeof(TypeParam) == 4 ? 3 : 0;
        auto first = RandomImage<TypeParam>({size.length, size.height, size.length + padding}, 1);
        auto second = RandomImage<TypeParam>({size.width, size.length, size.width + 2 * padding}, 2);
        ForEachSimdTarget([&] {
            SCOPED_TRACE(testing::Message() << size.height << " x " << size.width << " x " << size.length);
            TestImage<TypeParam> product({size.width, size.height, size.width + padding});
            auto expected = product;
            Model(first.Pixels(), first.shape.stride, second.Pixels(), second.shape.stride, expected.Pixels(),
                  expected.shape.stride, size.height, size.width, size.length, Fuses());
            ImageAttributes output = product.Attributes();
            ASSERT_EQ(Mul(first.Attributes(), second.Attributes(), &output), SOLVANE_OK);
            ASSERT_TRUE(product == expected);
        });
    }
}

TYPED_TEST(MatrixProductOf, GivesTheSameForAnyNumberOfThreads) {
    auto first = RandomImage<TypeParam>({310, 290, 310}, 1),
         second = RandomImage<TypeParam>({305, 310, 305}, 2);
    TestImage<TypeParam> expected({305, 290, 305});
    Model(first.Pixels(), 310, second.Pixels(), 305, expected.Pixels(), 305, 290, 305, 310, Fuses());
    ForEachThreadCount([&] {
        TestImage<TypeParam> product({305, 290, 305});
        ImageAttributes output = product.Attributes();
        ASSERT_EQ(MulP(first.Attributes(), second.Attributes(), &output), SOLVANE_OK);
        ASSERT_TRUE(product == expected);
    });
}

TYPED_TEST(MatrixProductOf, KeepsWhatIsNotANumberInItsPlace) {
    constexpr auto kNaN = std::numeric_limits<TypeParam>::quiet_NaN();
    auto first = RandomImage<TypeParam>({3, 20, 3}, 1), second = RandomImage<TypeParam>({40, 3, 40}, 2);
    first.At(1, 5) = kNaN;
    second.At(17, 2) = std::numeric_limits<TypeParam>::infinity();
    TestImage<TypeParam> product({40, 20, 40});
    ImageAttributes output = product.Attributes();
    ASSERT_EQ(Mul(first.Attributes(), second.Attributes(), &output), SOLVANE_OK);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 40; ++x)
            EXPECT_EQ(std::isfinite(product.At(x, y)), y != 5 && x != 17) << x << ", " << y;
}

TEST(MatrixProduct, CreatesTheOutputFromTheSecondImage) {
    auto first = RandomImage<float>({2, 5, 4}, 1), second = RandomImage<float>({3, 2, 7}, 2);
    ImageAttributes made;
    ASSERT_EQ(Mul(first.Attributes(9, 9), second.Attributes(12, 3), &made), SOLVANE_OK);
    EXPECT_EQ(made.type, eSingle);
    EXPECT_EQ(made.width, 3);
    EXPECT_EQ(made.height, 5);
    EXPECT_EQ(made.stride, 7);
    EXPECT_EQ(made.bitsperpixel, 12);
    EXPECT_EQ(made.pixelspacing, 3);
    auto const pixels = static_cast<float const*>(made.buffer);
    for (int y = 0; y < 5; ++y)
        for (int x = 3; x < 7; ++x) EXPECT_EQ(pixels[7 * y + x], 0.0f);
    FreePixels(made.buffer);
}

TEST(MatrixProduct, IgnoresTheStridesOfDoubles) {
    auto first = RandomImage<double>({2, 3, 4}, 1), second = RandomImage<double>({3, 2, 5}, 2);
    TestImage<double> product({3, 3, 6});
    auto expected = product;
    Model(first.Pixels(), 2, second.Pixels(), 3, expected.Pixels(), 3, 3, 3, 2, Fuses());
    ImageAttributes output = product.Attributes();
    ASSERT_EQ(Mul(first.Attributes(), second.Attributes(), &output), SOLVANE_OK);
    EXPECT_TRUE(product == expected);
}

TEST(MatrixProduct, WritesNothingWithoutMemory) {
    auto first = RandomImage<float>({4, 4, 4}, 1), second = RandomImage<float>({4, 4, 4}, 2);
    TestImage<float> product({4, 4, 4});
    auto const before = product;
    ImageAttributes output = product.Attributes();
    CapturedLog const log;
    {
        NoMemory const none;
        EXPECT_EQ(ipp_mul(first.Attributes(), second.Attributes(), &output), SOLVANE_OPERATION_FAILED);
    }
    EXPECT_EQ(log.Text(), L"ipp_mul(): ipp_mul. code -9");
    EXPECT_TRUE(product == before);
}

TEST(MatrixProduct, RefusesInItsOrder) {
    alignas(8) static unsigned char pixels[256], others[256];
    auto const of = [&](eTypeCode type, int width, int height, int stride) {
        return ImageAttributes(type, pixels, width, height, stride, 32, 0);
    };
    auto const into = [&](eTypeCode type, int width, int height, int stride) {
        return ImageAttributes(type, others, width, height, stride, 32, 0);
    };
    constexpr auto kDimensions = L"Incorrect dimensions.";
    constexpr auto kNull = L"At least one input image is NULL.";
    constexpr auto kInPlace = L"Output is NULL and in-place operation not supported";
    constexpr auto kSize = L"Source and destination image must be same size.";
    constexpr auto kType = L"ipp_mul():Unsupported image datatype.";
    constexpr auto kNarrow = L"The elements of the output image are too narrow.";
    ImageAttributes const empty, any = of(eSingle, 2, 3, 2);
    struct Case {
        char const* name;
        SOLVANE_RETURNCODE (*operation)(ImageAttributes, ImageAttributes, ImageAttributes*);
        ImageAttributes first, second, output;
        int code;
        std::wstring message;
    };
    Case const cases[] = {
        {"types", Mul, of(eByte, 1, 1, 1), any, empty, 4, L"Input images are different datatypes."},
        {"not floating point", Mul, of(eInt32, 1, 1, 1), of(eInt32, 2, 2, 2), empty, 6,
         L"Unsupported image datatype."},
        {"dimensions", ipp_mul, Described(eSingle, 2, 3, 2), of(eSingle, 2, 3, 2), empty, 4, kDimensions},
        {"first null", ipp_mul, Described(eSingle, 3, 3, 2), any, empty, 4, kNull},
        {"second null", MulP, of(eSingle, 3, 3, 3), Described(eSingle, 2, 3, 2), of(eSingle, 2, 3, 2), 4,
         kNull},
        {"output is input", ipp_mul, of(eSingle, 3, 3, 3), any, of(eSingle, 2, 3, 2), 4, kInPlace},
        {"output width", ipp_mul, of(eSingle, 3, 4, 3), any, into(eSingle, 3, 4, 3), 4, kSize},
        {"output height", ipp_mul, of(eSingle, 3, 4, 3), any, into(eSingle, 2, 3, 2), 4, kSize},
        {"type, output freed", ipp_mul, of(eByte, 3, 4, 3), of(eByte, 2, 3, 2), empty, 6, kType},
        {"no memory", ipp_mul, of(eSingle, 3, INT_MAX, 3), of(eSingle, INT_MAX, 3, INT_MAX), empty, 1,
         L"ipp_mul: Memory allocation failed for 2147483647 bytes."},
        {"negative size", ipp_mul, of(eSingle, 3, -4, 3), any, empty, 1,
         L"ipp_mul: Memory allocation failed for 2147483647 bytes."},
        {"narrow output", ipp_mul, of(eDouble, 3, 4, 3), of(eDouble, 2, 3, 2), into(eSingle, 2, 4, 2), 7,
         kNarrow},
        {"narrow second", ipp_mul, of(eSingle, 3, 4, 3), of(eInt16, 2, 3, 2), empty, 7,
         L"The elements of the second image are too narrow."},
        {"rows, output freed", ipp_mul, of(eSingle, 3, 4, 2), any, empty, 7,
         L"The first image's rows overlap."},
        {"no pixels, output freed", ipp_mul, of(eSingle, 0, 4, 0), of(eSingle, 2, 0, 2), empty, 5,
         L"ipp_mul(): ipp_mul. code -5"},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        CapturedLog const log;
        ImageAttributes output = each.output;
        EXPECT_EQ(each.operation(each.first, each.second, &output), each.code);
        EXPECT_EQ(log.Text(), each.message);
        EXPECT_EQ(output.buffer, each.output.buffer);
    }
    CapturedLog const log;
    EXPECT_EQ(Mul(any, any, nullptr), SOLVANE_UNSUPPORTED_TYPE);
    EXPECT_EQ(log.Text(), L"In place multipy not supportednow.");
    EXPECT_EQ(ipp_mul(of(eSingle, 1, 1, 1), of(eSingle, 1, 1, 1), nullptr), SOLVANE_INVALID_ARGUMENT);
    EXPECT_EQ(log.Text(), kInPlace);
}

}  // namespace
}  // namespace ZPA
