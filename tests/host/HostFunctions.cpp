// Functions of a host program that happen to have names of the library's own. They are linked ahead of it, so
// that calls which leave the library would end here.
#include "host/HostFunctions.h"

#include <cstdlib>
#include <string>

namespace {
std::string theFirst;

int Note(char const* name) {
    if (theFirst.empty()) theFirst = name;
    return -12345;
}
}  // namespace

std::string FirstCaptured() { return theFirst; }

extern "C" {
long allocation_counter = -12345;

int compare(void const*, void const*) { return Note("compare"); }
int copyImage() { return Note("copyImage"); }
int CopyPixels() { return Note("CopyPixels"); }
int dumpRaw() { return Note("dumpRaw"); }
int LogMemoryError() { return Note("LogMemoryError"); }
int ParseImageFactoryString() { return Note("ParseImageFactoryString"); }
int ReadRaw() { return Note("ReadRaw"); }
int SizeOfTypeCode() { return Note("SizeOfTypeCode"); }
int ZPA_CreateEx() { return Note("ZPA_CreateEx"); }
void FreePixels(void* pixels) {
    Note("FreePixels");
    std::free(pixels);
}
}
