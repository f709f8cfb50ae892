// Regions in colour over a grey picture.
#ifndef RADIOGRAPH_OVERLAY_H
#define RADIOGRAPH_OVERLAY_H

#include <string>
#include <vector>

#include "radiograph/Picture.h"
#include "radiograph/Regions.h"

namespace Radiograph {

// The picture with every region tinted and outlined; those that are not listed, in grey.
Picture Overlay(Picture const& grey, Image const& labels, std::vector<Region> const& regions);

// The colour of the region that stands at this place of the list, as CSS writes it.
std::string ColourOf(std::size_t place);

}  // namespace Radiograph

#endif
