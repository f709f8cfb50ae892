// What the user asked for.
#ifndef RADIOGRAPH_COMMANDLINE_H
#define RADIOGRAPH_COMMANDLINE_H

#include <string>

namespace Radiograph {

struct CommandLine {
    std::string file;  // empty: the phantom
    std::string out = "radiograph-out";
    bool invert = false;
    bool help = false;
};

extern char const kUsage[];

// Throws a Failure on anything that cannot be meant.
CommandLine ParseCommandLine(int count, char const* const* arguments);

}  // namespace Radiograph

#endif
