// Everything that the program leaves behind.
#ifndef RADIOGRAPH_OUTPUT_H
#define RADIOGRAPH_OUTPUT_H

#include <string>

#include "radiograph/CommandLine.h"
#include "radiograph/Processing.h"

namespace Radiograph {

// Writes the images of all steps and the page that shows them, or nothing if any of it fails.
// Returns the path of the page.
std::string WriteOutput(Findings const& found, CommandLine const& options);

}  // namespace Radiograph

#endif
