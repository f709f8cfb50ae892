// The frame of every exported operation: its scope in the log, its failures, and the catch-all.
#ifndef ZPA_SOURCE_INTERNAL_FRAME_H
#define ZPA_SOURCE_INTERNAL_FRAME_H

#include <Basics/Logging.h>

#include <climits>
#include <cstdint>
#include <type_traits>

#include "Source/Internal/Message.h"
#include "Source/Platform/ExtendedPrecision.h"

namespace ZPA {

// Logs the message, from memory that is at hand, and returns the code.
template <typename... Values>
[[nodiscard]] SOLVANE_RETURNCODE Fail(SOLVANE_RETURNCODE code, Message message, Values... values) {
    return ZPA_Logging::LogError(WideFileName(message.file).Text(), message.line, code, message.format,
                                 values...);
}

// Logs the message as a warning, and returns success.
template <typename... Values>
SOLVANE_RETURNCODE Warn(LogCategory category, Message message, Values... values) {
    return ZPA_Logging::LogWarning(WideFileName(message.file).Text(), message.line, category, message.format,
                                   values...);
}

// A number of bytes for "%d": the largest int where it is larger.
inline int LoggedBytes(std::uint64_t bytes) { return bytes > INT_MAX ? INT_MAX : static_cast<int>(bytes); }

// Logs a failed allocation and returns its code. The context is the message's text.
[[nodiscard]] inline SOLVANE_RETURNCODE FailMemory(Message context, std::uint64_t bytes) {
    return LogMemoryError(WideFileName(context.file).Text(), context.line, context.format,
                          LoggedBytes(bytes));
}

inline constexpr auto kUnexpected = L"Unexpected exception.";

// Runs the body within a scope of the log, which `scope` are the constructor's arguments of. No exception
// leaves: not the body's, which is reported as `unexpected`, and not that of a callback that throws while the
// first one is reported.
template <typename Body, typename... Scope>
SOLVANE_RETURNCODE GuardedScope(Message unexpected, Body const& body, Scope... scope) noexcept {
    [[maybe_unused]] ExtendedPrecision const precision;
    try {
        EntryExitLogging const entered(scope...);
        try {
            return body();
        } catch (...) {
            return Fail(SOLVANE_UNEXPECTED, unexpected);
        }
    } catch (...) {
        return SOLVANE_UNEXPECTED;
    }
}

// The frame of nearly all operations: `name` is "ZPA::" and the operation's name.
template <typename Body>
SOLVANE_RETURNCODE Guarded(wchar_t const* name, Body const& body, Message unexpected = kUnexpected) noexcept {
    return GuardedScope(unexpected, body, name, eLogFunction);
}

}  // namespace ZPA

#endif
