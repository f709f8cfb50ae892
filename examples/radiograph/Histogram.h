// How often each value occurs, and where the values part into two groups.
#ifndef RADIOGRAPH_HISTOGRAM_H
#define RADIOGRAPH_HISTOGRAM_H

#include <Basics/CoreTypes.h>

#include <vector>

#include "radiograph/Image.h"

namespace Radiograph {

// counts[v] pixels have the value v, for every value there may be.
using Counts = std::vector<ZPA::ULong32>;
Counts CountByValue(Image const& image);

// The value up to which pixels belong to the darker of two groups, chosen so that the groups' means lie as
// far apart as their sizes allow: N. Otsu, "A threshold selection method from gray-level histograms", IEEE
// Transactions on Systems, Man, and Cybernetics 9 (1979) 62-66. The only value, if there is but one.
Pixel OtsuThreshold(Counts const& counts);

// The counts from the first to the last value that occurs, in bins wide enough to be drawn.
struct Histogram {
    Pixel low, high;
    int valuesPerBin;
    std::vector<float> counts;
    std::vector<float> smoothed;
};
Histogram MakeHistogram(Counts const& counts);

}  // namespace Radiograph

#endif
