// The options and their words.
#include "radiograph/CommandLine.h"

#include "radiograph/Failure.h"

namespace Radiograph {

char const kUsage[] =
    R"(Usage: radiograph [FILE] [--out DIR] [--invert]

Flattens the background of a radiograph, finds the structures in it, and writes its pictures and a page
that shows them.

  FILE       NAME.WIDTH.HEIGHT.raw with unsigned 16-bit pixels in the byte order of this machine.
             Without it a phantom of a chest is made.
  --out DIR  The folder to write to, made if needed; radiograph-out unless given. Files of an earlier run
             are replaced, others left alone.
  --invert   Show high values bright. Otherwise they are taken to be exposure, and shown dark, as on film.
  --help     Show this.
)";

CommandLine ParseCommandLine(int count, char const* const* arguments) {
    CommandLine result;
    for (int i = 1; i < count; ++i) {
        std::string const argument = arguments[i];
        if (argument == "--help" || argument == "-h") {
            result.help = true;
        } else if (argument == "--invert") {
            result.invert = true;
        } else if (argument == "--out") {
            if (i + 1 == count || !*arguments[i + 1]) throw Failure("--out needs a folder");
            result.out = arguments[++i];
        } else if (argument.empty()) {
            throw Failure("the file's name is empty");
        } else if (argument[0] == '-') {
            throw Failure("unknown option '" + argument + "'; --help lists them");
        } else if (!result.file.empty()) {
            throw Failure("one file, please; '" + argument + "' is another");
        } else {
            result.file = argument;
        }
    }
    return result;
}

}  // namespace Radiograph
