// The matrix product of images.
#include <Basics/Arithmetic.h>
#include <gtest/gtest.h>

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
constexpr Product kProducts[] = {{1, 1, 1},     {2, 3, 4},    {5, 7, 3},     {14, 32, 256}, {15, 33, 257},
                                 {13, 31, 255}, {6, 16, 600}, {4, 300, 260}, {300, 1, 20},  {130, 140, 20},
                                 {57, 64, 513}, {4200, 3, 2}, {3, 4200, 2},  {9, 24, 5},    {10, 8, 7}};

template <typename T> class MatrixProductOf : public testing::Test {};
using Floats = testing::Types<float, double>;
TYPED_TEST_SUITE(MatrixProductOf, Floats, );

TYPED_TEST(MatrixProductOf, IsOneChainForEveryElementOnEverySimdTarget) {
    for (Product const& size : kProducts) {
        int const padding = 3;
        auto first = RandomImage<TypeParam>({size.length, size.height, size.length + padding}, 1);
        auto second = RandomImage<TypeParam>({size.width, size.length, size.width + 2 * padding}, 2);
        // Strides count for floats only.
        auto const strideOf = [](TestImage<TypeParam> const& image) {
            return sizeof(TypeParam) == 4 ? image.shape.stride : image.shape.width;
        };
        ForEachSimdTarget([&] {
            SCOPED_TRACE(testing::Message() << size.height << " x " << size.width << " x " << size.length);
            TestImage<TypeParam> product({size.width, size.height, size.width + padding});
            auto expected = product;
            Model(first.Pixels(), strideOf(first), second.Pixels(), strideOf(second), expected.Pixels(),
                  strideOf(expected), size.height, size.width, size.length, Fuses());
            ImageAttributes output = product.Attributes();
            ASSERT_EQ(Mul(first.Attributes(), second.Attributes(), &output), SOLVANE_OK);
            ASSERT_TRUE(product == expected);
        });
    }
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
    EXPECT_EQ(Description(made), Description({eSingle, nullptr, 3, 5, 7, 12, 3}));
    auto const pixels = static_cast<float const*>(made.buffer);
    for (int y = 0; y < 5; ++y)
        for (int x = 3; x < 7; ++x) EXPECT_EQ(pixels[7 * y + x], 0.0f);
    FreePixels(made.buffer);
}

TEST(MatrixProduct, WritesNothingWithoutMemory) {
    // Too high to read the factors where they lie.
    auto first = RandomImage<float>({4, 70, 4}, 1), second = RandomImage<float>({4, 4, 4}, 2);
    TestImage<float> product({4, 70, 4});
    auto const before = product;
    ImageAttributes output = product.Attributes();
    auto const call = [&] { return ipp_mul(first.Attributes(), second.Attributes(), &output); };
    ExpectRefusal([&] { return WithoutMemory(call); }, 5, L"ipp_mul(): ipp_mul. code -9");
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
    auto const multiply = [](auto operation, ImageAttributes first, ImageAttributes second,
                             ImageAttributes const& product) {
        ImageAttributes given = product;
        SOLVANE_RETURNCODE const code = operation(first, second, &given);
        EXPECT_EQ(given.buffer, product.buffer);
        return code;
    };
    EXPECT_REFUSAL(4, L"Input images are different datatypes.",
                   multiply(Mul, of(eByte, 1, 1, 1), any, empty));
    EXPECT_REFUSAL(6, L"Unsupported image datatype.",
                   multiply(Mul, of(eInt32, 1, 1, 1), of(eInt32, 2, 2, 2), empty));
    EXPECT_REFUSAL(
        4, kDimensions,
        multiply(ipp_mul, Described(eSingle, 2, 3, 2), of(eSingle, 2, 3, 2), empty));      // dimensions
    EXPECT_REFUSAL(4, kNull, multiply(ipp_mul, Described(eSingle, 3, 3, 2), any, empty));  // first null
    EXPECT_REFUSAL(4, kNull,
                   multiply(MulP, of(eSingle, 3, 3, 3), Described(eSingle, 2, 3, 2), of(eSingle, 2, 3, 2)));
    EXPECT_REFUSAL(4, kInPlace, multiply(ipp_mul, of(eSingle, 3, 3, 3), any, of(eSingle, 2, 3, 2)));
    EXPECT_REFUSAL(4, kSize, multiply(ipp_mul, of(eSingle, 3, 4, 3), any, into(eSingle, 3, 4, 3)));
    EXPECT_REFUSAL(4, kSize, multiply(ipp_mul, of(eSingle, 3, 4, 3), any, into(eSingle, 2, 3, 2)));
    EXPECT_REFUSAL(6, kType,
                   multiply(ipp_mul, of(eByte, 3, 4, 3), of(eByte, 2, 3, 2), empty));  // type, output freed
    EXPECT_REFUSAL(1, L"ipp_mul: Memory allocation failed for 2147483647 bytes.",
                   multiply(ipp_mul, of(eSingle, 3, INT_MAX, 3), of(eSingle, INT_MAX, 3, INT_MAX), empty));
    EXPECT_REFUSAL(1, L"ipp_mul: Memory allocation failed for 2147483647 bytes.",
                   multiply(ipp_mul, of(eSingle, 3, -4, 3), any, empty));
    EXPECT_REFUSAL(7, kNarrow,
                   multiply(ipp_mul, of(eDouble, 3, 4, 3), of(eDouble, 2, 3, 2), into(eSingle, 2, 4, 2)));
    EXPECT_REFUSAL(7, L"The elements of the second image are too narrow.",
                   multiply(ipp_mul, of(eSingle, 3, 4, 3), of(eInt16, 2, 3, 2), empty));
    EXPECT_REFUSAL(7, L"The first image's rows overlap.",
                   multiply(ipp_mul, of(eSingle, 3, 4, 2), any, empty));
    EXPECT_REFUSAL(5, L"ipp_mul(): ipp_mul. code -5",
                   multiply(ipp_mul, of(eSingle, 0, 4, 0), of(eSingle, 2, 0, 2), empty));
    EXPECT_REFUSAL(6, L"In place multipy not supportednow.", Mul(any, any, nullptr));
    EXPECT_REFUSAL(4, kInPlace, ipp_mul(of(eSingle, 1, 1, 1), of(eSingle, 1, 1, 1), nullptr));
}

}  // namespace
}  // namespace ZPA
