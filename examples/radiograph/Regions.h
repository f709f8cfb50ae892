// Structures of a radiograph: which pixels belong to them, and what can be told of each.
#ifndef RADIOGRAPH_REGIONS_H
#define RADIOGRAPH_REGIONS_H

#include <vector>

#include "radiograph/Image.h"

namespace Radiograph {

// 1 where a pixel belongs to a structure, else 0.
using Mask = ZPA::ZPA_Image<unsigned char>;
using MaskPtr = ZPA::ZPA_Ptr<Mask>;

// The pixels above the threshold.
MaskPtr Above(Image const& image, Pixel threshold);

// Takes away what a disk of `radius`, 1 to 6, does not fit into, joins what lies closer together than it is
// wide, and closes holes.
void CleanUp(Mask const& mask, int radius);

// The mask with 16 bits, to be kept and shown like the other images.
ImagePtr Widened(Mask const& mask);

struct Labels {
    ImagePtr image;  // 0 outside; the regions count from 1 in the order of their first pixels
    int count;
};
Labels LabelRegions(Mask const& mask);

struct Region {
    Pixel label;
    int area;  // in pixels
    ZPA::Rectangle bounds;
    ZPA::APOINT middle;  // of its longest run of pixels in a row, so it lies inside
    double mean, deviation;
};

// The `most` largest regions, the largest first, with their grey values in `image`.
std::vector<Region> MeasureRegions(Image const& image, Labels const& labels, std::size_t most);

}  // namespace Radiograph

#endif
