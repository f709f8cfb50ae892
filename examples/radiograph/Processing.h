// The work that is done on a radiograph, step by step.
#ifndef RADIOGRAPH_PROCESSING_H
#define RADIOGRAPH_PROCESSING_H

#include <string>
#include <vector>

#include "radiograph/Image.h"

namespace Radiograph {

// One step: what a person should know of it, and what it made.
struct Step {
    std::string title;
    std::string name;  // of the files
    std::string caption;
    ImagePtr result;
    double seconds = 0;
};

// Reads `file`, or makes a phantom if it is empty, and flattens its background. Tells the terminal of every
// step.
std::vector<Step> Process(std::string const& file);

}  // namespace Radiograph

#endif
