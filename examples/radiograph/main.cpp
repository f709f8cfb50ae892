// Flattens the background of a radiograph, finds its structures, and makes a page that shows how.
#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "radiograph/CommandLine.h"
#include "radiograph/Library.h"
#include "radiograph/Output.h"
#include "radiograph/Processing.h"

namespace {

int Refuse(std::string why) {
    // A file's name may hold anything, and this is to be one line.
    for (char& character : why)
        if (static_cast<unsigned char>(character) < ' ') character = '?';
    std::fflush(stdout);
    std::fprintf(stderr, "radiograph: %s\n", why.c_str());
    return 2;
}

}  // namespace

int main(int count, char** arguments) {
    using namespace Radiograph;
    try {
        CommandLine const options = ParseCommandLine(count, arguments);
        if (options.help) {
            std::fputs(kUsage, stdout);
            return 0;
        }
        ListenToLibrary();
        std::string const page = WriteOutput(Process(options.file), options);
        std::printf("Report: %s\n", page.c_str());
        return 0;
    } catch (std::bad_alloc const&) {
        return Refuse("not enough memory");
    } catch (std::exception const& failure) {
        return Refuse(failure.what());
    }
}
