// The event log as syslog lines, and the registry as folders with a file a value.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "Source/Platform/PosixEventLog.h"

namespace ZPA {
namespace {

// Whether UTF-8 has it.
bool IsCharacter(std::uint32_t code) { return code < 0xD800 || (code >= 0xE000 && code <= 0x10FFFF); }

// As UTF-8, whatever the locale; what is no character becomes a question mark.
template <typename Text> void AddWide(Text& bytes, wchar_t const* text, std::size_t limit = SIZE_MAX) {
    for (; limit > 0 && *text; --limit, ++text) {
        auto const code = static_cast<std::uint32_t>(*text);
        auto const continuation = [&](int shift) {
            bytes.Add(static_cast<char>(0x80 | ((code >> shift) & 0x3F)));
        };
        if (code < 0x80) {
            bytes.Add(static_cast<char>(code));
        } else if (code < 0x800) {
            bytes.Add(static_cast<char>(0xC0 | (code >> 6)));
            continuation(0);
        } else if (!IsCharacter(code)) {
            bytes.Add('?');
        } else if (code < 0x10000) {
            bytes.Add(static_cast<char>(0xE0 | (code >> 12)));
            continuation(6);
            continuation(0);
        } else {
            bytes.Add(static_cast<char>(0xF0 | (code >> 18)));
            continuation(12);
            continuation(6);
            continuation(0);
        }
    }
}

struct Character {
    std::uint32_t code;
    std::uint32_t bytes;
};

// The one that `bytes`, which have not ended, begin with.
Character FirstCharacter(char const* bytes) {
    constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};  // of so many bytes
    std::uint32_t const lead = static_cast<unsigned char>(bytes[0]);
    std::uint32_t const size = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF8 ? 4 : 1;
    Character const byte{lead, 1};
    if (size == 1) return byte;
    std::uint32_t code = lead & (0x7FU >> size);
    for (std::uint32_t i = 1; i < size; ++i) {
        std::uint32_t const next = static_cast<unsigned char>(bytes[i]);
        if ((next & 0xC0) != 0x80) return byte;
        code = code << 6 | (next & 0x3F);
    }
    return code < kSmallest[size] || !IsCharacter(code) ? byte : Character{code, size};
}

using Path = FixedText<PATH_MAX>;

Path FolderOf(char const* root, wchar_t const* key) {
    Path path;
    for (; *root; ++root) path.Add(*root);
    path.Add('/');
    AddWide(path, key);
    for (char* byte = path.Bytes(); *byte; ++byte)
        if (*byte == '\\') *byte = '/';
    return path;
}

void MakeFolders(char* path) {
    for (char* at = std::strchr(path + 1, '/'); at; at = std::strchr(at + 1, '/')) {
        *at = 0;
        mkdir(path, 0755);
        *at = '/';
    }
}

// A file of the registry, open or not.
class Descriptor {
public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    int Number() const { return descriptor_; }

private:
    int descriptor_;
};

// A key is its folder's descriptor plus one: no folder, no key.
EventLog::Key KeyOf(int folder) { return reinterpret_cast<void*>(static_cast<std::intptr_t>(folder) + 1); }
int FolderOf(EventLog::Key key) { return static_cast<int>(reinterpret_cast<std::intptr_t>(key) - 1); }

void Write(EventLog::Key key, wchar_t const* name, char const* content) {
    FixedText<NAME_MAX> file;
    AddWide(file, name);
    Descriptor const value(
        openat(FolderOf(key), file.Bytes(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
    [[maybe_unused]] auto const written = write(value.Number(), content, std::strlen(content));
}

}  // namespace

std::uint32_t Widen(char const* bytes, wchar_t* text, std::uint32_t limit) {
    std::uint32_t size = 0;
    for (; size < limit && *bytes; ++size) {
        Character const character = FirstCharacter(bytes);
        text[size] = static_cast<wchar_t>(character.code);
        bytes += character.bytes;
    }
    text[size] = 0;
    return size;
}

void PosixEventLog::ReadValue(wchar_t const* key, wchar_t const* name, std::uint32_t& value) {
    Path path = FolderOf(root_, key);
    path.Add('/');
    AddWide(path, name);
    Descriptor const file(open(path.Bytes(), O_RDONLY | O_CLOEXEC));
    char text[16] = {};
    if (file.Number() < 0 || read(file.Number(), text, sizeof text - 1) <= 0) return;
    char* end = text;
    unsigned long const number = std::strtoul(text, &end, 10);
    if (end != text) value = static_cast<std::uint32_t>(number);
}

EventLog::Key PosixEventLog::CreateKey(wchar_t const* key, bool& existed) {
    Path path = FolderOf(root_, key);
    MakeFolders(path.Bytes());
    existed = mkdir(path.Bytes(), 0755) != 0 && errno == EEXIST;
    return KeyOf(open(path.Bytes(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

void PosixEventLog::SetText(Key key, wchar_t const* name, wchar_t const* text, std::uint32_t bytes) {
    Path content;
    AddWide(content, text, bytes / 2);
    Write(key, name, content.Bytes());
}

void PosixEventLog::SetNumber(Key key, wchar_t const* name, std::uint32_t value) {
    char digits[] = "4294967295";
    char* first = digits + sizeof digits - 1;
    do *--first = static_cast<char>('0' + value % 10);
    while (value /= 10);
    Write(key, name, first);
}

void PosixEventLog::CloseKey(Key key) { close(FolderOf(key)); }

std::uint32_t PosixEventLog::ModulePath(wchar_t* path, std::uint32_t limit) {
    Dl_info library = {};
    bool const known = dladdr(reinterpret_cast<void const*>(&SystemEventLog), &library) != 0;
    return Widen(known && library.dli_fname ? library.dli_fname : "", path, limit);
}

EventLog::Source PosixEventLog::RegisterSource(wchar_t const* name) {
    source_ = {};
    AddWide(source_, name);
    return &source_;
}

void PosixEventLog::Report(Source source, EventType type, std::uint16_t, std::uint32_t, wchar_t const* text) {
    constexpr std::size_t kLongestLine = 4 * 512;
    FixedText<kLongestLine> line;
    AddWide(line, text);
    // Without openlog, whose settings belong to the host program.
    syslog(type == EventType::Error ? LOG_ERR : LOG_WARNING, "%s: %s",
           static_cast<FixedText<64> const*>(source)->Bytes(), line.Bytes());
}

void PosixEventLog::Deregister(Source) {}

EventLog& SystemEventLog() {
    static auto& log = *new PosixEventLog(ZPA_REGISTRY_ROOT);
    return log;
}

}  // namespace ZPA
