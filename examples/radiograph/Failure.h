// Why the program gives up, as one line for the user.
#ifndef RADIOGRAPH_FAILURE_H
#define RADIOGRAPH_FAILURE_H

#include <stdexcept>

namespace Radiograph {

struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace Radiograph

#endif
