// The operating system's event log and registry, as far as logging needs them.
#ifndef ZPA_SOURCE_PLATFORM_EVENTLOG_H
#define ZPA_SOURCE_PLATFORM_EVENTLOG_H

#include <cstdint>

namespace ZPA {

enum class EventType : std::uint16_t { Error = 1, Warning = 2 };

// Keys are named below the machine's root, parts separated by "\". Failures are answered, never thrown: a
// message that cannot be delivered is lost, and its sender goes on. Nothing is allocated, since the message
// may be that memory has run out.
class EventLog {
public:
    using Key = void*;     // null: no key
    using Source = void*;  // null: no source

    virtual ~EventLog() = default;

    // Opens a key, reads a 32-bit value and closes the key. What is missing, or is too large for one, leaves
    // `value` as it was.
    virtual void ReadValue(wchar_t const* key, wchar_t const* name, std::uint32_t& value) = 0;
    // Opens a key, and creates it if there is none; `existed` tells which.
    virtual Key CreateKey(wchar_t const* key, bool& existed) = 0;
    // Stores text. `bytes` counts bytes of 16-bit characters, so half as many characters are stored.
    virtual void SetText(Key key, wchar_t const* name, wchar_t const* text, std::uint32_t bytes) = 0;
    virtual void SetNumber(Key key, wchar_t const* name, std::uint32_t value) = 0;
    virtual void CloseKey(Key key) = 0;
    // Writes the path of this library, of at most `limit` characters and a closing zero; gives its length.
    virtual std::uint32_t ModulePath(wchar_t* path, std::uint32_t limit) = 0;
    virtual Source RegisterSource(wchar_t const* name) = 0;
    virtual void Report(Source source, EventType type, std::uint16_t category, std::uint32_t eventId,
                        wchar_t const* text) = 0;
    virtual void Deregister(Source source) = 0;
};

// The operating system's own; it outlives all static objects.
EventLog& SystemEventLog();

}  // namespace ZPA

#endif
