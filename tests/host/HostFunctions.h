// What the host program's functions have seen.
#ifndef ZPA_TESTS_HOST_HOSTFUNCTIONS_H
#define ZPA_TESTS_HOST_HOSTFUNCTIONS_H

#include <string>

// The first function of the host that anybody called; empty if none.
std::string FirstCaptured();

#endif
