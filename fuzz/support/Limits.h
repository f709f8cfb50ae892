// What the library is given while hostile input runs: little memory, and a log that listens.
#ifndef ZPA_FUZZ_SUPPORT_LIMITS_H
#define ZPA_FUZZ_SUPPORT_LIMITS_H

#include <Basics/Logging.h>

#include <cstdlib>
#include <cwchar>

#include "allocation/Allocations.h"

namespace ZPA::Fuzz {

// While it lives, this thread has no blocks beyond a size, and one of its allocations may fail.
class LimitedMemory {
public:
    // `fails` is the number of the allocation that fails, counted from 0; below 0 none does.
    explicit LimitedMemory(std::size_t most, int fails = -1) {
        Testing::ThisThreadsAllocations().most = most;
        Testing::ThisThreadsAllocations().untilFailure = fails;
    }
    ~LimitedMemory() {
        Testing::ThisThreadsAllocations().most = PTRDIFF_MAX;
        Testing::ThisThreadsAllocations().untilFailure = -1;
    }
    LimitedMemory(LimitedMemory const&) = delete;
    LimitedMemory& operator=(LimitedMemory const&) = delete;
};

// Receives every line of every kind from here on, and holds it to its length.
inline void ListenToAll() {
    auto const hear = [](wchar_t const* location, int, wchar_t const* message) {
        if (std::wcslen(location) > 511 || std::wcslen(message) > 511) std::abort();
    };
    ZPA_Logging::SetErrorCallback(hear);
    ZPA_Logging::SetWarningCallback(hear);
    ZPA_Logging::SetInfoCallback(hear);
    ZPA_Logging::SetDebugCallback(hear);
}

// Switches all lines for information and debugging on or off.
inline void SwitchLog(bool on) {
    for (int category = 0; category < eLogAll; ++category) {
        ZPA_Logging::EnableLog(static_cast<LogCategory>(category), on);
        ZPA_Logging::EnableDebug(static_cast<LogCategory>(category), on);
    }
}

}  // namespace ZPA::Fuzz

#endif
