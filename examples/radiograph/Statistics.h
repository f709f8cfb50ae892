// Figures that describe the pixels of an image.
#ifndef RADIOGRAPH_STATISTICS_H
#define RADIOGRAPH_STATISTICS_H

#include "radiograph/Image.h"

namespace Radiograph {

struct Statistics {
    Pixel minimum, maximum;
    double mean, deviation;
};

Statistics Measure(Image const& image);

// The values that `lowPart` and `highPart` of the pixels do not pass.
struct Range {
    Pixel low, high;
};
Range Percentiles(Image const& image, double lowPart, double highPart);

}  // namespace Radiograph

#endif
