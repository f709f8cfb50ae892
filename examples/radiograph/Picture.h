// Images as 8-bit pictures for the eye.
#ifndef RADIOGRAPH_PICTURE_H
#define RADIOGRAPH_PICTURE_H

#include <vector>

#include "radiograph/Image.h"

namespace Radiograph {

struct Picture {
    int width, height;
    std::vector<unsigned char> grey;  // packed; 0 is black
};

// The pixel values that are shown black and white, either of which may be the higher one. What lies between
// is spread evenly, what lies beyond is cut.
struct GreyScale {
    Pixel black, white;
};

// A scale that leaves out the few extreme pixels, which would take the contrast from all others.
GreyScale ChooseScale(Image const& image, bool highIsDark);

Picture Show(Image const& image, GreyScale scale);

// The picture with blocks of pixels averaged into one, so that neither side passes `longest`.
Picture ScaleDown(Picture const& picture, int longest);

}  // namespace Radiograph

#endif
