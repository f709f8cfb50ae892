// Counting and smoothing are the library's; the bins of the drawing and the threshold are found here.
#include "radiograph/Histogram.h"

#include <Basics/Histogram.h>

#include <algorithm>

#include "radiograph/Library.h"

namespace Radiograph {
namespace {

constexpr int kMostBins = 256;
constexpr float kSigma = 2;  // of the smoothing, in bins
constexpr int kMirror = 2;   // what it takes to lie beyond the ends

bool IsThere(ZPA::ULong32 count) { return count > 0; }

}  // namespace

Counts CountByValue(Image const& image) {
    Counts counts(0x10000);
    ZPA::BufferAttributes histogram(ZPA::eUInt32, counts.data(), static_cast<int>(counts.size()));
    int const low = 0;
    int const high = 0xFFFF;
    Check(ZPA::GetIntegerHistogram(image, nullptr, nullptr, nullptr, &low, &high, &histogram),
          "cannot count the pixels");
    return counts;
}

Pixel OtsuThreshold(Counts const& counts) {
    double pixels = 0;
    double sum = 0;
    for (std::size_t value = 0; value < counts.size(); ++value) {
        pixels += counts[value];
        sum += static_cast<double>(value) * counts[value];
    }
    double below = 0;
    double sumBelow = 0;
    double best = -1;
    std::size_t threshold = 0;
    for (std::size_t value = 0; value < counts.size(); ++value) {
        if (!counts[value]) continue;
        below += counts[value];
        sumBelow += static_cast<double>(value) * counts[value];
        double const above = pixels - below;
        double const apart = above > 0 ? sumBelow / below - (sum - sumBelow) / above : 0;
        double const between = below * above * apart * apart;
        if (between > best) {
            best = between;
            threshold = value;
        }
    }
    return static_cast<Pixel>(threshold);
}

Histogram MakeHistogram(Counts const& counts) {
    auto const first = std::find_if(counts.begin(), counts.end(), IsThere);
    auto const end = std::find_if(counts.rbegin(), counts.rend(), IsThere).base();
    auto const values = static_cast<int>(end - first);
    int const perBin = (values + kMostBins - 1) / kMostBins;

    Histogram histogram;
    histogram.low = static_cast<Pixel>(first - counts.begin());
    histogram.high = static_cast<Pixel>(end - counts.begin() - 1);
    histogram.valuesPerBin = perBin;
    histogram.counts.resize(static_cast<std::size_t>((values + perBin - 1) / perBin));
    for (int value = 0; value < values; ++value)
        histogram.counts[static_cast<std::size_t>(value / perBin)] += static_cast<float>(first[value]);
    histogram.smoothed = histogram.counts;
    Check(ZPA::smoothHistogram(histogram.smoothed.data(), static_cast<int>(histogram.smoothed.size()), kSigma,
                               kMirror),
          "cannot smooth the histogram");
    return histogram;
}

}  // namespace Radiograph
