// Pictures as PNG files.
#ifndef RADIOGRAPH_PNG_H
#define RADIOGRAPH_PNG_H

#include <string>

#include "radiograph/Picture.h"

namespace Radiograph {

// The bytes of the file.
std::string EncodePng(Picture const& picture);

// Which libpng that is.
char const* PngVersion();

}  // namespace Radiograph

#endif
