// Products and sums of several rows at once, to the bit.
#include "primitives/Vectors.h"

#include <gtest/gtest.h>

#include "support/Matrices.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using Testing::ForEachSimdTarget;
using Testing::Random;

template <typename T> T ProductByParts(T const* a, T const* b, std::ptrdiff_t count) {
    constexpr std::ptrdiff_t kParts = 128 / sizeof(T);
    T parts[kParts] = {};
    for (std::ptrdiff_t i = 0; i < count; ++i) parts[i % kParts] += a[i] * b[i];
    for (std::ptrdiff_t half = kParts / 2; half > 0; half /= 2)
        for (std::ptrdiff_t i = 0; i < half; ++i) parts[i] += parts[half + i];
    return parts[0];
}

// All memory ends with its last element.
template <typename T> void CheckRows(std::ptrdiff_t rows, std::ptrdiff_t count) {
    SCOPED_TRACE(testing::Message() << rows << " rows of " << count);
    auto const matrix = Random<T>(rows * count, 1), x = Random<T>(count, 2), factors = Random<T>(rows, 3);
    // The same rows in reverse, each after an element that is not its own.
    std::vector<std::vector<T>> apart;
    std::vector<T const*> pointers;
    std::vector<T> products, reversed, sum = x, reversedSum = x;
    for (std::ptrdiff_t y = 0; y < rows; ++y) {
        T const* const row = matrix.data() + (rows - 1 - y) * count;
        apart.emplace_back(1, T{1000}).insert(apart.back().end(), row, row + count);
        apart.back().shrink_to_fit();
        pointers.push_back(apart.back().data());
        products.push_back(ProductByParts(matrix.data() + y * count, x.data(), count));
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            auto const at = static_cast<std::size_t>(i);
            sum[at] += factors[static_cast<std::size_t>(y)] * matrix[static_cast<std::size_t>(y * count + i)];
            reversedSum[at] += factors[static_cast<std::size_t>(y)] * row[i];
        }
    }
    reversed.assign(products.rbegin(), products.rend());
    MatrixRows<T> const flat(matrix.data(), count), pointed(pointers.data(), 1);
    ForEachSimdTarget([&] {
        auto found = Random<T>(rows, 4);
        InnerProducts(flat, x.data(), found.data(), rows, count);
        EXPECT_EQ(found, products);
        InnerProducts(pointed, x.data(), found.data(), rows, count);
        EXPECT_EQ(found, reversed);
        for (std::size_t y = 0; y < products.size(); ++y)
            EXPECT_EQ(InnerProduct(pointed[static_cast<std::ptrdiff_t>(y)], x.data(), count), reversed[y]);
        auto total = x;
        AddMultiples(factors.data(), flat, total.data(), rows, count);
        EXPECT_EQ(total, sum);
        total = x;
        AddMultiples(factors.data(), pointed, total.data(), rows, count);
        EXPECT_EQ(total, reversedSum);
    });
}

TEST(VectorsPrimitive, TakesSeveralRowsAsOneAfterTheOther) {
    for (std::ptrdiff_t const rows : {0, 1, 2, 3, 7, 15, 29})
        for (std::ptrdiff_t count = 0; count < 70; ++count) {
            CheckRows<float>(rows, count);
            CheckRows<double>(rows, count);
        }
}

}  // namespace
}  // namespace ZPA
