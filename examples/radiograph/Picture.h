// Images as 8-bit pictures for the eye.
#ifndef RADIOGRAPH_PICTURE_H
#define RADIOGRAPH_PICTURE_H

#include <vector>

#include "radiograph/Histogram.h"
#include "radiograph/Image.h"

namespace Radiograph {

struct Picture {
    int width, height;
    std::vector<unsigned char> samples;  // packed; 0 is black
    int channels = 1;                    // of a pixel: 3 are red, green and blue
};

// The pixel values that are shown black and white, either of which may be the higher one. What lies between
// is spread evenly, what lies beyond is cut.
struct GreyScale {
    Pixel black, white;
};

// A scale that leaves out the few extreme of the counted pixels, which would take the contrast from all
// others.
GreyScale ChooseScale(Counts const& counts, bool highIsDark);

Picture Show(Image const& image, GreyScale scale);

// The picture with blocks of pixels averaged into one, so that neither side passes `longest`.
Picture ScaleDown(Picture const& picture, int longest);

}  // namespace Radiograph

#endif
