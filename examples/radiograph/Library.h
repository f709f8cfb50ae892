// From the library's return codes and log to this program's failures.
#ifndef RADIOGRAPH_LIBRARY_H
#define RADIOGRAPH_LIBRARY_H

#include <Basics/CoreTypes.h>

#include <string>

namespace Radiograph {

// Keeps the errors that the library logs, for the failures that they lead to. Call it once, at the start.
void ListenToLibrary();

// Throws a Failure that says `what` was tried and what the library logged, unless `code` is 0.
void Check(ZPA::SOLVANE_RETURNCODE code, std::string const& what);

}  // namespace Radiograph

#endif
