// Figures that describe the pixels of an image.
#ifndef RADIOGRAPH_STATISTICS_H
#define RADIOGRAPH_STATISTICS_H

#include "radiograph/Histogram.h"

namespace Radiograph {

struct Statistics {
    Pixel minimum, maximum;
    double mean, deviation;
};

// `counts`: of the same image, here and below.
Statistics Measure(Image const& image, Counts const& counts);

// The values that `lowPart` and `highPart` of the pixels do not pass.
struct Range {
    Pixel low, high;
};
Range Percentiles(Counts const& counts, double lowPart, double highPart);

}  // namespace Radiograph

#endif
