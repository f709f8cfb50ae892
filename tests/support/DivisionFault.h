// What the processor's fault at an integer division by zero makes of a process.
#ifndef ZPA_TESTS_SUPPORT_DIVISIONFAULT_H
#define ZPA_TESTS_SUPPORT_DIVISIONFAULT_H

#if !defined(_WIN32)
#include <sys/wait.h>

#include <csignal>
#endif

namespace ZPA::Testing {

// Whether this is the status that a process leaves after it. Sanitizers report it before it happens, and exit.
inline bool DivisionFaulted(int status) {
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
    return status != 0;
#endif
#endif
#if defined(_WIN32)
    return static_cast<unsigned>(status) == 0xC0000094;  // STATUS_INTEGER_DIVIDE_BY_ZERO
#else
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGFPE;
#endif
}

}  // namespace ZPA::Testing

#endif
