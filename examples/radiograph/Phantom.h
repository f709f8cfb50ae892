// A made-up chest radiograph, for those who have none at hand.
#ifndef RADIOGRAPH_PHANTOM_H
#define RADIOGRAPH_PHANTOM_H

#include "radiograph/Image.h"

namespace Radiograph {

// A square image, the same at every call. As from a detector with logarithmic amplification, pixels fall with
// the attenuation that a ray met, and use 14 bits.
ImagePtr MakePhantom(int side);

}  // namespace Radiograph

#endif
