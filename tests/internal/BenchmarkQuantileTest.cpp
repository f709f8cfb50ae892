// The figures that benchmarks report are those of the middle, pair by pair.
#include <gtest/gtest.h>

#include "benchmarks/support/Quantile.h"

namespace ZPA::Benchmarks {
namespace {

TEST(QuartilesOf, FallBetweenValuesWhereTheyMust) {
    struct Case {
        std::vector<double> values;
        Quartiles expected;
    };
    for (Case const& each : {Case{{7}, {7, 7, 7}},
                             {{4, 2}, {2.5, 3, 3.5}},
                             {{9, 1, 5}, {3, 5, 7}},
                             {{4, 1, 3, 2}, {1.75, 2.5, 3.25}}}) {
        Quartiles const quartiles = QuartilesOf(each.values);
        EXPECT_EQ(quartiles.low, each.expected.low);
        EXPECT_EQ(quartiles.median, each.expected.median);
        EXPECT_EQ(quartiles.high, each.expected.high);
    }
}

TEST(RatioOf, IsBlindToNoiseThatBothMeet) {
    // Always twice as slow, in rounds of very different speed. A ratio of medians would say so too; what it
    // would not bear is one disturbed batch of one side, here the last.
    std::vector<double> const theirs{2, 20, 200, 6, 60, 8};
    std::vector<double> const ours{1, 10, 100, 3, 30, 4000};
    EXPECT_EQ(RatioOf(theirs, ours).median, 2);
    EXPECT_EQ(RatioOf(theirs, ours).high, 2);
}

}  // namespace
}  // namespace ZPA::Benchmarks
