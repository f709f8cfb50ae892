// The histogram primitive where operations do not take it: bins wider and narrower than a value, and
// statuses.
#include "primitives/HistogramEven.h"

#include <gtest/gtest.h>

#include <vector>

namespace ZPA {
namespace {

TEST(HistogramEven, SharesValuesOutToEvenBins) {
    std::int16_t const pixels[] = {-10, -9, -1, 0, 1, 4, 5, 9, 10, 0, 32767, -32768};
    struct Case {
        std::int64_t levels, lower, upper;
    };
    for (Case const each :
         {Case{2, -10, 10}, {5, -10, 10}, {21, -10, 10}, {8, -3, 7}, {41, -10, 10}, {4, -40000, 50000}}) {
        SCOPED_TRACE(testing::Message()
                     << each.levels << " levels from " << each.lower << " to " << each.upper);
        auto const bins = static_cast<std::size_t>(each.levels - 1);
        std::vector<std::uint32_t> counts(bins + 1, 9), expected(bins + 1, 0);
        std::vector<std::int64_t> levels(bins + 1);
        expected.back() = 9;
        // Three pixels a row, of which two count.
        EXPECT_EQ(ippiHistogramEven_16s_C1R(pixels, 3 * sizeof *pixels, {2, 4}, counts.data(), levels.data(),
                                            each.levels, each.lower, each.upper),
                  kDone);
        for (std::size_t k = 0; k <= bins; ++k)
            EXPECT_EQ(levels[k], each.lower + static_cast<std::int64_t>(k) * (each.upper - each.lower) /
                                                  static_cast<std::int64_t>(bins));
        for (int i = 0; i < 12; ++i)
            for (std::size_t k = 0; i % 3 < 2 && k < bins; ++k)
                expected[k] += pixels[i] >= levels[k] && pixels[i] < levels[k + 1];
        EXPECT_EQ(counts, expected);
    }
}

TEST(HistogramEven, AnswersWhatItCannotDo) {
    std::uint8_t const pixel = 7;
    std::uint32_t count = 9;
    struct Case {
        std::uint8_t const* source;
        Size size;
        std::uint32_t* counts;
        std::int64_t levels, lower, upper;
        Status status;
    };
    Case const cases[] = {{nullptr, {1, 1}, &count, 2, 0, 9, kNullPointer},
                          {&pixel, {1, 1}, nullptr, 2, 0, 9, kNullPointer},
                          {&pixel, {0, 1}, &count, 2, 0, 9, kBadSize},
                          {&pixel, {1, -1}, &count, 2, 0, 9, kBadSize},
                          {&pixel, {1, 1}, &count, 1, 0, 9, kBadArgument},
                          {&pixel, {1, 1}, &count, INT64_MAX, 0, 9, kBadArgument},
                          {&pixel, {1, 1}, &count, 2, 9, 9, kBadArgument}};
    for (Case const& each : cases)
        EXPECT_EQ(ippiHistogramEven_8u_C1R(each.source, 1, each.size, each.counts, nullptr, each.levels,
                                           each.lower, each.upper),
                  each.status);
    EXPECT_EQ(count, 9u);
}

}  // namespace
}  // namespace ZPA
