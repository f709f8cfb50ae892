// The work that is done on a radiograph, step by step.
#ifndef RADIOGRAPH_PROCESSING_H
#define RADIOGRAPH_PROCESSING_H

#include <string>
#include <vector>

#include "radiograph/Image.h"
#include "radiograph/Regions.h"

namespace Radiograph {

// A number that a step worked with.
struct Parameter {
    std::string name;
    int value;
};

// How a result is shown.
enum class Look { kGrey, kMask, kRegions };

// One step: what a person should know of it, and what it made.
struct Step {
    std::string title;
    std::string name;  // of the files
    std::string caption;
    ImagePtr result;
    double seconds = 0;
    std::vector<Parameter> parameters = {};
    Look look = Look::kGrey;
};

// Everything that was found.
struct Findings {
    std::vector<Step> steps;
    ImagePtr input;
    ImagePtr flattened;  // what was parted by the threshold
    Pixel threshold;
    int regionCount;
    std::vector<Region> regions;  // the largest, the largest first, measured in the input
};

// Reads `file`, or makes a phantom if it is empty; flattens its background, and finds its structures. Tells
// the terminal of every step.
Findings Process(std::string const& file);

}  // namespace Radiograph

#endif
