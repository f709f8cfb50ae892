// Failures of routines without a frame, out of which nothing may be thrown all the same.
#ifndef ZPA_SOURCE_INTERNAL_REPORT_H
#define ZPA_SOURCE_INTERNAL_REPORT_H

#include "Source/Internal/Frame.h"
#include "Source/Internal/Memory.h"

namespace ZPA {

// Logs the message and returns the code. What a callback throws ends here.
template <typename... Values>
SOLVANE_RETURNCODE Report(SOLVANE_RETURNCODE code, Message message, Values... values) noexcept {
    try {
        return Fail(code, message, values...);
    } catch (...) {
        return code;
    }
}

// Likewise for an allocation of `count` elements that failed.
inline SOLVANE_RETURNCODE ReportMemory(Message context, std::uint64_t count,
                                       std::size_t elementSize) noexcept {
    try {
        return FailMemory(context, BlockBytes(count, elementSize));
    } catch (...) {
        return SOLVANE_OUT_OF_MEMORY;
    }
}

// Reports a null pointer with code 2; true if there is one.
template <typename... Pointers> bool AnyNull(Message message, Pointers const*... pointers) noexcept {
    if (((pointers != nullptr) && ...)) return false;
    Report(SOLVANE_NULL_POINTER, message);
    return true;
}

}  // namespace ZPA

#endif
