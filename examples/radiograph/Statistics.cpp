// Range and mean are the library's; what depends on how the values are spread comes from their counts.
#include "radiograph/Statistics.h"

#include <Basics/Statistics.h>

#include <cmath>
#include <numeric>

#include "radiograph/Library.h"

namespace Radiograph {
namespace {

// The smallest value that more than `before` pixels do not pass.
Pixel Quantile(Counts const& counts, double before) {
    std::size_t value = 0;
    for (double seen = 0; value < 0xFFFF; ++value)
        if ((seen += static_cast<double>(counts[value])) > before) break;
    return static_cast<Pixel>(value);
}

}  // namespace

Statistics Measure(Image const& image, Counts const& counts) {
    double low = 0;
    double high = 0;
    double mean = 0;
    // Not the deviation: the library squares in 32 bits, which pixels above 46 340 pass.
    Check(ZPA::CalculateImageStats(image, nullptr, nullptr, nullptr, &low, &high, &mean, nullptr),
          "cannot measure the pixels");
    double squares = 0;
    for (std::size_t value = 0; value < counts.size(); ++value) {
        double const away = static_cast<double>(value) - mean;
        squares += away * away * static_cast<double>(counts[value]);
    }
    auto const pixels = static_cast<double>(Pixels(image).size());
    return {static_cast<Pixel>(low), static_cast<Pixel>(high), mean, std::sqrt(squares / pixels)};
}

Range Percentiles(Counts const& counts, double lowPart, double highPart) {
    double const last = std::accumulate(counts.begin(), counts.end(), 0.0) - 1;
    return {Quantile(counts, lowPart * last), Quantile(counts, highPart * last)};
}

}  // namespace Radiograph
