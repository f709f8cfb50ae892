// A radiograph from a raw file.
#ifndef RADIOGRAPH_INPUT_H
#define RADIOGRAPH_INPUT_H

#include <string>

#include "radiograph/Image.h"

namespace Radiograph {

// Reads NAME.WIDTH.HEIGHT.raw. Throws a Failure that says what is wrong with the file.
ImagePtr ReadRadiograph(std::string const& path);

}  // namespace Radiograph

#endif
