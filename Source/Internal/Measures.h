// What the statistics of a region or buffer come to.
#ifndef ZPA_SOURCE_INTERNAL_MEASURES_H
#define ZPA_SOURCE_INTERNAL_MEASURES_H

#include <cmath>

#include "primitives/StatisticsRow.h"
#include "Source/Internal/IndexRange.h"
#include "Source/Internal/Region.h"

namespace ZPA {

// `measure(what)` runs with what is asked for, and not at all if that is nothing.
template <typename Run> void MeasureWanted(bool range, bool sums, Run const& measure) {
    if (range || sums) measure(!sums ? Measure::kRange : !range ? Measure::kSums : Measure::kRangeAndSums);
}

template <typename T>
void AddToStatistics(Region const& region, ImageAttributes const& image, Measure what,
                     Statistics<T>& statistics) {
    region.ForEachRow(ImageView<T const>(image),
                      [&](T const* row, unsigned char const* mask, std::ptrdiff_t count) {
                          AddToStatistics(row, mask, count, what, statistics);
                      });
}

template <typename T>
void AddToStatistics(IndexRange const& range, BufferAttributes const& buffer, Measure what,
                     Statistics<T>& statistics) {
    AddToStatistics(static_cast<T const*>(buffer.buffer) + range.First(), nullptr, range.Count(), what,
                    statistics);
}

struct Moments {
    double mean;
    double
        deviation;  // of the whole population; not-a-number where wrapped squares make the variance negative
};

// Zeros where nothing was counted.
template <typename T> Moments MomentsOf(Statistics<T> const& statistics) {
    if (statistics.count == 0) return {0, 0};
    auto const count = static_cast<long double>(statistics.count);
    long double const mean = statistics.sum / count;
    long double const variance = statistics.squares / count - mean * mean;
    return {static_cast<double>(mean), static_cast<double>(std::sqrt(variance))};
}

}  // namespace ZPA

#endif
