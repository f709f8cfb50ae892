// A histogram as a drawing for the page.
#ifndef RADIOGRAPH_HISTOGRAMPLOT_H
#define RADIOGRAPH_HISTOGRAMPLOT_H

#include <string>

#include "radiograph/Histogram.h"

namespace Radiograph {

// An SVG element: the counts as an area, smoothed as a line, and the threshold as a line across. Colours are
// the page's.
std::string HistogramSvg(Histogram const& histogram, Pixel threshold);

}  // namespace Radiograph

#endif
