// Where grey values change.
#ifndef RADIOGRAPH_EDGES_H
#define RADIOGRAPH_EDGES_H

#include "radiograph/Image.h"

namespace Radiograph {

// The length of the gradient by Sobel's kernels, eight times the slope in grey values per pixel, after
// smoothing with `sigma`. The outermost pixels, where the kernels have no full support, are 0.
ImagePtr Edges(Image const& input, double sigma);

}  // namespace Radiograph

#endif
