// The histograms that images make of their own pixels.
#include <Basics/ImageBuffer.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "support/CapturedLog.h"

namespace ZPA {
namespace {

using namespace Testing;

template <typename T> std::vector<ULong32> HistogramOf(std::vector<T> pixels, int bitsperpixel) {
    ZPA_Image<T> const image(pixels.data(), static_cast<int>(pixels.size()), 1, 0, bitsperpixel, 0, false,
                             false);
    auto const histogram = image.GetHistogram();
    return {histogram->GetBufferPtr(), histogram->GetBufferPtr() + histogram->GetSize()};
}
using Counts = std::vector<ULong32>;

TEST(Histogram, CountsAbsoluteValuesThatHaveABin) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(HistogramOf<unsigned char>({0, 1, 1, 3, 4, 255}, 2), Counts({1, 2, 0, 1}));
    EXPECT_EQ(HistogramOf<signed char>({-1, 1, -3, -4, 0, -128}, 2), Counts({1, 2, 0, 1}));
    EXPECT_EQ(HistogramOf<short>({-2, 2, 3, -32768, 32767}, 2), Counts({0, 0, 2, 1}));
    EXPECT_EQ(HistogramOf<int>({INT_MIN, INT_MAX, -1}, 1), Counts({0, 1}));
    EXPECT_EQ(HistogramOf<unsigned int>({UINT_MAX, 1U << 31, 1}, 1), Counts({0, 1}));
    EXPECT_EQ(HistogramOf<long>({LONG_MIN, LONG_MAX, -1}, 1), Counts({0, 1}));
    EXPECT_EQ(HistogramOf<unsigned long>({ULONG_MAX, 0}, 1), Counts({1, 0}));
    EXPECT_EQ(HistogramOf<float>({-0.5F, 1.99F, -1.0F, 2.0F, 1e30F, -HUGE_VALF}, 1), Counts({1, 2}));
    EXPECT_EQ(HistogramOf<double>({-0.0, 0.999, 1.5, nan, -nan, HUGE_VAL, 1e300}, 1), Counts({2, 1}));
}

// The most negative pixels of the narrow types have a bin like any other.
TEST(Histogram, CountsEveryPixelOfItsDepth) {
    std::vector<signed char> all;
    for (int value = -128; value <= 127; ++value) all.push_back(static_cast<signed char>(value));
    Counts const counts = HistogramOf(all, 8);
    ASSERT_EQ(counts.size(), 256U);
    for (std::size_t bin = 0; bin < 256; ++bin)
        EXPECT_EQ(counts[bin], bin == 0 || bin == 128 ? 1U : bin < 128 ? 2U : 0U) << bin;
    EXPECT_EQ(HistogramOf<short>({-32768}, 16)[32768], 1U);
}

TEST(Histogram, LeavesThePaddingOut) {
    unsigned char pixels[] = {1, 1, 9, 9, 1, 1, 9};  // the last row ends before its padding
    ZPA_Image<unsigned char> const image(pixels, 2, 2, 4, 8, 0, false, false);
    auto const histogram = image.GetHistogram();
    EXPECT_EQ(histogram->GetSize(), 256);
    EXPECT_TRUE(histogram->IsOwner());
    EXPECT_EQ(histogram->GetBufferPtr()[1], 4U);
    EXPECT_EQ(histogram->GetBufferPtr()[9], 0U);
}

TEST(Histogram, TakesTheLowFiveBitsOfTheDepth) {
    EXPECT_EQ(HistogramOf<unsigned char>({0, 1}, 32), Counts({1}));
    EXPECT_EQ(HistogramOf<unsigned char>({0, 1}, -31), Counts({1, 1}));
    EXPECT_EQ(ZPA_Image<short>().GetHistogram()->GetSize(), 1);
    CapturedLog const log;
    ZPA_Image<unsigned char> const image(nullptr, 1, 1, 0, 31, 0, true, true);
    auto const histogram = image.GetHistogram();
    EXPECT_EQ(log.Code(), 999);
    EXPECT_EQ(log.Text(), L"GetHistogram(); Unexpected exception.");
    ASSERT_NE(histogram.GetPointer(), nullptr);
    EXPECT_EQ(histogram->GetBufferPtr(), nullptr);
    EXPECT_EQ(histogram->GetSize(), 0);
}

}  // namespace
}  // namespace ZPA
