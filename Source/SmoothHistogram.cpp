// smoothHistogram: a histogram under a sampled Gaussian.
#include <Basics/Histogram.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

#include "primitives/CorrelateRow.h"
#include "Source/Internal/Frame.h"

namespace ZPA {
namespace {

// The constant is the reciprocal of the square root of two pi to six digits; callers compare results with it.
constexpr double kPeak = 0.3989423215389252;

std::vector<float> Gaussian(float sigma, std::ptrdiff_t half) {
    std::vector<float> weights;
    weights.reserve(static_cast<std::size_t>(2 * half + 1));
    auto u = static_cast<float>(-half);
    for (std::ptrdiff_t k = 0; k < 2 * half + 1; ++k, u += 1)
        weights.push_back(static_cast<float>((kPeak / sigma) * std::exp(u * u * ((-0.5 / sigma) / sigma))));
    return weights;
}

// The element of the histogram that stands `distance` before its first one.
std::ptrdiff_t PaddingBefore(std::ptrdiff_t distance, std::ptrdiff_t count, int paddingMode) {
    if (paddingMode == 0 || count == 1) return 0;
    if (paddingMode == 1) return (count - distance % count) % count;
    std::ptrdiff_t const period = 2 * (count - 1), place = distance % period;
    return std::min(place, period - place);
}

// The histogram with `half` elements more on each side. What is behind the last element mirrors what is
// before the first: at the same distance from the other end.
std::vector<float> Padded(float const* histogram, std::ptrdiff_t count, std::ptrdiff_t half,
                          int paddingMode) {
    std::vector<float> row(static_cast<std::size_t>(count + 2 * half));
    std::copy_n(histogram, count, row.begin() + half);
    for (std::ptrdiff_t distance = 1; distance <= half; ++distance) {
        std::ptrdiff_t const at = PaddingBefore(distance, count, paddingMode);
        row[static_cast<std::size_t>(half - distance)] = histogram[at];
        row[static_cast<std::size_t>(half + count - 1 + distance)] = histogram[count - 1 - at];
    }
    return row;
}

// More weights than this are refused as memory that there is not: their number would pass what a float steps
// through.
constexpr double kMostHalfWeights = 1 << 24;

SOLVANE_RETURNCODE Smooth(float* histogram, int count, float sigma, int paddingMode) {
    return Guarded(L"smooth()", [&] {
        if (!histogram) return Fail(SOLVANE_NULL_POINTER, L"smooth() - NULL hist pointer.");
        if (!(sigma > 0) || !std::isfinite(sigma))
            return Fail(SOLVANE_INVALID_ARGUMENT, L"smooth() - sigma must be above 0 and finite.");
        if (count < 1) return SOLVANE_OK;
        double const halfWidth = std::trunc(4.0 * sigma + 0.5);
        if (halfWidth > kMostHalfWeights) throw std::bad_alloc();

        auto const half = static_cast<std::ptrdiff_t>(halfWidth);
        std::vector<float> const weights = Gaussian(sigma, half);
        std::vector<float> const row = Padded(histogram, count, half, paddingMode);
        CorrelateRow(row.data(), weights.data(), 2 * half + 1, count, histogram);
        return SOLVANE_OK;
    });
}

}  // namespace

SOLVANE_RETURNCODE smoothHistogram(float* histogram, int count, float sigma, int paddingMode) {
    return Guarded(L"smoothHistogram()", [&] { return Smooth(histogram, count, sigma, paddingMode); });
}

}  // namespace ZPA
