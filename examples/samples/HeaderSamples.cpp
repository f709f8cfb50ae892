// The samples of the public headers.
#include <Basics/ZPA.h>
#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(HeaderSamples, FilteringAColumn) {
    constexpr double kPi = 3.14159265358979324;
    auto const slow = [](int y) { return 100 + 10 * std::cos(2 * kPi * 3 * y / 2048); };
    double column[2048];
    for (int y = 0; y < 2048; ++y)
        column[y] = slow(y) + std::cos(kPi * y) + std::sin(2 * kPi * 200 * y / 2048);
    // [sample]
    ZPA::realFFT_DBL(column, 1024, 1);  // column[2k], column[2k + 1]: frequency k
    for (int k = 16; k < 1024; ++k) column[2 * k] = column[2 * k + 1] = 0;
    column[1] = 0;                       // the highest frequency, in the place of 0's imaginary part
    ZPA::realFFT_DBL(column, 1024, -1);  // filtered, in the scale it had
    // [sample]
    for (int y = 0; y < 2048; ++y) ASSERT_NEAR(column[y], slow(y), 1e-9);
}

}  // namespace
