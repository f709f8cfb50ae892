// Numbers as people read them.
#ifndef RADIOGRAPH_TEXT_H
#define RADIOGRAPH_TEXT_H

#include <string>

namespace Radiograph {

// With the digits in groups of three.
std::string Number(double value, int decimals = 0);

// "2 048 × 1 024", which no line break parts.
std::string Dimensions(int width, int height);

}  // namespace Radiograph

#endif
