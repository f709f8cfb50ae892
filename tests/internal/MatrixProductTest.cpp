// What the product of matrices takes beyond images: columns apart, and transposed factors.
#include "primitives/MatrixProduct.h"

#include <gtest/gtest.h>

#include <vector>

namespace ZPA {
namespace {

TEST(MatrixProductPrimitive, TakesColumnsThatAreApart) {
    constexpr int kHeight = 40, kWidth = 70, kLength = 300;
    constexpr std::ptrdiff_t kSize = sizeof(double);
    // The first factor is stored by columns, the second backwards, the product with gaps. Small integers, so
    // that the sums are exact.
    std::vector<double> first(kHeight * kLength), second(kLength * kWidth),
        product(kHeight * kWidth * 3, -1.0);
    for (std::size_t i = 0; i < first.size(); ++i) first[i] = static_cast<double>(i * 7 % 11) - 5;
    for (std::size_t i = 0; i < second.size(); ++i) second[i] = static_cast<double>(i * 5 % 13) - 6;
    ASSERT_EQ(ippmMul_mm_64f(first.data(), kSize, kHeight * kSize, kLength, kHeight, &second.back(),
                             -kWidth * kSize, -kSize, kWidth, kLength, product.data(), 3 * kWidth * kSize,
                             2 * kSize),
              kDone);
    std::vector<double> expected(product.size(), -1.0);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            double sum = 0;
            for (int k = 0; k < kLength; ++k)
                sum += first[static_cast<std::size_t>(y + k * kHeight)] *
                       second[static_cast<std::size_t>(kLength * kWidth - 1 - k * kWidth - x)];
            expected[static_cast<std::size_t>(3 * kWidth * y + 2 * x)] = sum;
        }
    EXPECT_EQ(product, expected);
}

TEST(MatrixProductPrimitive, RefusesWhatItCannotMultiply) {
    float a = 2, b = 3, c = 0;
    auto const product = [&](float const* first, int firstWidth, int secondHeight, std::ptrdiff_t stride) {
        return ippmMul_mm_32f(first, 4, 4, firstWidth, 1, &b, stride, 4, 1, secondHeight, &c, 4, 4);
    };
    EXPECT_EQ(product(nullptr, 1, 1, 4), kNullPointer);
    EXPECT_EQ(product(&a, 0, 0, 4), kBadSize);
    EXPECT_EQ(product(&a, 1, 2, 4), kBadSize);
    EXPECT_EQ(product(&a, 1, 1, 6), kBadArgument);
    EXPECT_EQ(c, 0.0f);
    EXPECT_EQ(product(&a, 1, 1, 4), kDone);
    EXPECT_EQ(c, 6.0f);
}

}  // namespace
}  // namespace ZPA
