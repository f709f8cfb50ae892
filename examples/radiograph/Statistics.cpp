// All figures come from one count of the pixels by value.
#include "radiograph/Statistics.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace Radiograph {
namespace {

std::vector<std::uint64_t> CountByValue(Image const& image) {
    std::vector<std::uint64_t> counts(0x10000);
    for (Pixel pixel : Pixels(image)) ++counts[pixel];
    return counts;
}

// The smallest value that more than `before` pixels do not pass.
Pixel Quantile(std::vector<std::uint64_t> const& counts, double before) {
    std::size_t value = 0;
    for (double seen = 0; value < 0xFFFF; ++value)
        if ((seen += static_cast<double>(counts[value])) > before) break;
    return static_cast<Pixel>(value);
}

}  // namespace

Statistics Measure(Image const& image) {
    auto const counts = CountByValue(image);
    auto const pixels = static_cast<double>(Pixels(image).size());
    double sum = 0;
    for (std::size_t value = 0; value < counts.size(); ++value)
        sum += static_cast<double>(value) * static_cast<double>(counts[value]);
    double const mean = sum / pixels;
    double squares = 0;
    for (std::size_t value = 0; value < counts.size(); ++value) {
        double const away = static_cast<double>(value) - mean;
        squares += away * away * static_cast<double>(counts[value]);
    }
    return {Quantile(counts, 0), Quantile(counts, pixels - 1), mean, std::sqrt(squares / pixels)};
}

Range Percentiles(Image const& image, double lowPart, double highPart) {
    auto const counts = CountByValue(image);
    auto const last = static_cast<double>(Pixels(image).size()) - 1;
    return {Quantile(counts, lowPart * last), Quantile(counts, highPart * last)};
}

}  // namespace Radiograph
