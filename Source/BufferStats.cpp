// CalculateBufferStats: the range, mean and deviation of a buffer's elements.
#include <Basics/Statistics.h>

#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/Measures.h"

namespace ZPA {

SOLVANE_RETURNCODE CalculateBufferStats(BufferAttributes buffer, int const* start, int const* end,
                                        double* min, double* max, double* mean, double* stdDev) {
    return Guarded(L"ZPA::CalculateBufferStats", [&] {
        auto const measure = [&](auto element) {
            using T = typename decltype(element)::type;
            IndexRange range;
            SOLVANE_RETURNCODE const code = range.Resolve(buffer, start, end);
            if (code != SOLVANE_OK) return code;

            // Both ends begin at 0, so that 0 always lies within. The mean decides whether sums are made:
            // without it the deviation is 0.
            Statistics<T> statistics{0, 0};
            MeasureWanted(min || max, mean,
                          [&](Measure what) { AddToStatistics(range, buffer, what, statistics); });
            Moments const moments = MomentsOf(statistics);
            if (min) *min = statistics.smallest;
            if (max) *max = statistics.largest;
            if (mean) *mean = moments.mean;
            if (stdDev) *stdDev = moments.deviation;
            return SOLVANE_OK;
        };
        return Dispatch<std::uint8_t, std::uint16_t, float, double>(buffer.type, measure, [] {
            return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The input image type is not supported");
        });
    });
}

}  // namespace ZPA
