// CalculateImageStats: the range, mean and deviation of an image's pixels.
#include <Basics/Statistics.h>

#include <limits>

#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/Measures.h"

namespace ZPA {
namespace {

// The range of no pixels. That of signed ones has no negative maximum, which callers rely on.
template <typename T> Statistics<T> NoPixels() {
    using Limits = std::numeric_limits<T>;
    return {Limits::max(), std::is_floating_point_v<T> ? Limits::lowest() : T{0}};
}

}  // namespace

SOLVANE_RETURNCODE CalculateImageStats(ImageAttributes image, Rectangle const* roi,
                                       ImageAttributes const* mask, APOINT const* maskOrigin, double* min,
                                       double* max, double* mean, double* stdDev) {
    return Guarded(L"ZPA::CalculateImageStats", [&] {
        if (mask && mask->type != eByte)
            return Fail(SOLVANE_SIZE_MISMATCH, L"The mask must be of type eByte.");

        auto const measure = [&](auto element) {
            using T = typename decltype(element)::type;
            if (!image.buffer)
                return Fail(SOLVANE_NULL_POINTER, L"The input image had a NULL buffer pointer.");
            Region region;
            SOLVANE_RETURNCODE const code = region.Resolve(image, roi, mask, maskOrigin, kOfInput);
            if (code != SOLVANE_OK) return code;

            auto statistics = NoPixels<T>();
            MeasureWanted(min || max, mean || stdDev,
                          [&](Measure what) { AddToStatistics(region, image, what, statistics); });
            Moments const moments = MomentsOf(statistics);
            if (min) *min = statistics.smallest;
            if (max) *max = statistics.largest;
            if (mean) *mean = moments.mean;
            if (stdDev) *stdDev = moments.deviation;
            return SOLVANE_OK;
        };
        return Dispatch<std::uint8_t, std::int16_t, std::uint16_t, double>(image.type, measure, [] {
            return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The input image type is not supported");
        });
    });
}

}  // namespace ZPA
