// The event log as syslog lines, and the registry as folders with a file a value.
#ifndef ZPA_SOURCE_PLATFORM_POSIXEVENTLOG_H
#define ZPA_SOURCE_PLATFORM_POSIXEVENTLOG_H

#include <cstddef>

#include "Source/Platform/EventLog.h"

namespace ZPA {

// Text of limited size in memory of its own: the log still speaks when no more can be allocated.
template <std::size_t kCapacity> class FixedText {
public:
    void Add(char byte) {
        if (size_ + 1 < kCapacity) bytes_[size_++] = byte;
    }
    char const* Bytes() const { return bytes_; }
    char* Bytes() { return bytes_; }

private:
    char bytes_[kCapacity] = {};
    std::size_t size_ = 0;
};

// Writes the characters of UTF-8, at most `limit` and a closing zero, and gives their number. Bytes that are no
// UTF-8 become characters as they are.
std::uint32_t Widen(char const* bytes, wchar_t* text, std::uint32_t limit);

class PosixEventLog final : public EventLog {
public:
    // The folder of all keys. It need not exist; the text must outlive this object.
    explicit PosixEventLog(char const* root) : root_(root) {}

    void ReadValue(wchar_t const* key, wchar_t const* name, std::uint32_t& value) override;
    Key CreateKey(wchar_t const* key, bool& existed) override;
    void SetText(Key key, wchar_t const* name, wchar_t const* text, std::uint32_t bytes) override;
    void SetNumber(Key key, wchar_t const* name, std::uint32_t value) override;
    void CloseKey(Key key) override;
    std::uint32_t ModulePath(wchar_t* path, std::uint32_t limit) override;
    Source RegisterSource(wchar_t const* name) override;
    void Report(Source source, EventType type, std::uint16_t category, std::uint32_t eventId,
                wchar_t const* text) override;
    void Deregister(Source source) override;

private:
    char const* root_;
    FixedText<64> source_;
};

}  // namespace ZPA

#endif
