// Lines of the debug log, formed only when somebody listens.
#ifndef ZPA_SOURCE_INTERNAL_TRACE_H
#define ZPA_SOURCE_INTERNAL_TRACE_H

#include <Basics/Logging.h>

#include <cstdint>

#include "Source/Internal/Message.h"

namespace ZPA {

// A pointer for "%llx": whole, where a plain "%x" would print its low half.
inline unsigned long long Address(void const* pointer) { return reinterpret_cast<std::uintptr_t>(pointer); }

template <typename... Values> void Trace(LogCategory category, Message message, Values... values) {
    if (!ZPA_Logging::IsDebugEnabled(category)) return;
    ZPA_Logging::LogDebug(WideFileName(message.file).Text(), message.line, category, message.format,
                          values...);
}

// The same for destructors, and for the middle of a change of owner: what the callback throws is dropped.
template <typename... Values>
void TraceSafely(LogCategory category, Message message, Values... values) noexcept try {
    Trace(category, message, values...);
} catch (...) {
}

}  // namespace ZPA

#endif
