// Rows that are standardised: to the bit what division gives.
#include "primitives/ContrastRow.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kLeast = std::numeric_limits<double>::denorm_min();
constexpr double kMost = std::numeric_limits<double>::max();

// Any significand, and exponents that mostly lie close to 0.
std::vector<double> Numbers(std::size_t count) {
    std::mt19937_64 random(1);
    std::vector<double> numbers(count);
    for (double& number : numbers) {
        double const significand = 1 + static_cast<double>(random() >> 12) / 0x1p52;
        int const range = random() % 16 == 0 ? 1000 : 8;
        number = std::ldexp(random() % 2 ? significand : -significand,
                            static_cast<int>(random() % (2 * static_cast<unsigned>(range))) - range);
    }
    // Whole vectors of what is not regular, and single ones.
    double const others[] = {0.0, -0.0, kInfinity, -kInfinity, kNoNumber, kLeast, kMost, -kMost};
    for (std::size_t i = 0; i < 200; ++i) numbers[i < 100 ? i : 61 * i] = others[i % 8];
    return numbers;
}

TEST(StandardizeRow, DividesToTheBitOnEverySimdTarget) {
    std::vector<double> const numbers = Numbers(30003);
    for (double const deviation :
         {1.0, 3.0, 0.7, 0x1.fffffffffffffp0, 0x1.0000000000001p0, 0x1.fffffffffffffp-7, 1e-99, 1e99, 1e-310,
          1e300, kLeast, kMost, 0.0, -2.0, kInfinity, kNoNumber})
        for (double const mean : {0.0, 0.3, 1e-80}) {
            SCOPED_TRACE(testing::Message() << "mean " << mean << ", deviation " << deviation);
            ForEachSimdTarget([&] {
                std::vector<double> row = numbers;
                StandardizeRow(row.data(), static_cast<std::ptrdiff_t>(row.size()), mean, deviation);
                for (std::size_t i = 0; i < row.size(); ++i) {
                    double const expected = (numbers[i] - mean) / deviation;
                    ASSERT_TRUE(std::memcmp(&row[i], &expected, sizeof expected) == 0 ||
                                (std::isnan(row[i]) && std::isnan(expected)))
                        << numbers[i] << ": " << row[i] << " for " << expected;
                }
            });
        }
}

}  // namespace
}  // namespace ZPA
