// The drawing is 256 wide and 100 high, whatever the page makes of it.
#include "radiograph/HistogramPlot.h"

#include <algorithm>

#include "radiograph/Text.h"

namespace Radiograph {
namespace {

constexpr double kWidth = 256;
constexpr double kHeight = 100;
constexpr double kHeadroom = 1.15;  // single bins may stand above the smoothed line, and are cut there

std::string Coordinate(double value) {
    std::string text = std::to_string(value);
    return text.substr(0, text.find('.') + 3);
}

}  // namespace

std::string HistogramSvg(Histogram const& histogram, Pixel threshold) {
    std::size_t const bins = histogram.counts.size();
    double const across = kWidth / static_cast<double>(bins);
    double const top = kHeadroom * *std::max_element(histogram.smoothed.begin(), histogram.smoothed.end());
    auto const height = [top](float count) {
        return Coordinate(kHeight - std::min(1.0, top > 0 ? count / top : 0) * kHeight);
    };

    std::string area = "M0 " + Coordinate(kHeight);
    std::string line;
    for (std::size_t bin = 0; bin < bins; ++bin) {
        auto const left = static_cast<double>(bin) * across;
        area += "V" + height(histogram.counts[bin]) + "H" + Coordinate(left + across);
        line += (bin ? "L" : "M") + Coordinate(left + across / 2) + " " + height(histogram.smoothed[bin]);
    }
    area += "V" + Coordinate(kHeight) + "Z";
    // Behind the values that belong to the darker group.
    double const place = (threshold + 1.0 - histogram.low) / histogram.valuesPerBin * across;
    std::string const at = Coordinate(std::min(place, kWidth));

    return "<svg class=\"histogram\" viewBox=\"0 0 256 100\" preserveAspectRatio=\"none\" role=\"img\" "
           "aria-label=\"Histogram from " +
           Number(histogram.low) + " to " + Number(histogram.high) + ", threshold at " + Number(threshold) +
           "\"><path class=\"counts\" d=\"" + area + "\"/><path class=\"smoothed\" d=\"" + line +
           "\"/><path class=\"threshold\" d=\"M" + at + " 0V100\"/></svg>\n";
}

}  // namespace Radiograph
