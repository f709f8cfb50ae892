// Labels for connected regions, in place.
#ifndef ZPA_PRIMITIVES_LABELMARKERS_H
#define ZPA_PRIMITIVES_LABELMARKERS_H

#include "primitives/Status.h"

namespace ZPA {

// Which pixels are neighbours: those at a distance of one in this norm.
inline constexpr int kInfinityNorm = 0;  // eight
inline constexpr int kL1Norm = 1;        // four

// Bytes of the working buffer for an image of a size: about three a pixel. An image that could have more
// regions than an int counts has a bad size.
Status ippiLabelMarkersGetBufferSize(Size size, std::size_t* bytes) noexcept;

// Gives all pixels of a connected region of non-zero pixels, whatever their values, one label. Labels follow
// the raster order of the regions' first pixels, from the smallest on; past the largest they begin again at
// the smallest, and the count goes on. The buffer may have any alignment and content. Refused are, in this
// order: null pointers, a bad size, and labels or a norm that there are not.
Status ippiLabelMarkers(std::uint8_t* image, std::ptrdiff_t step, Size size, int smallest, int largest,
                        int norm, int* regions, void* buffer) noexcept;
Status ippiLabelMarkers(std::uint16_t* image, std::ptrdiff_t step, Size size, int smallest, int largest,
                        int norm, int* regions, void* buffer) noexcept;

}  // namespace ZPA

#endif
