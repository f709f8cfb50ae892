// The event log as syslog lines, and the registry as folders with a file a value.
#include "Source/Platform/EventLog.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <syslog.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace ZPA {
namespace {

// As UTF-8, whatever the locale; what is no character becomes a question mark.
std::string Narrow(std::wstring const& text) {
    std::string bytes;
    for (wchar_t const character : text) {
        auto const code = static_cast<std::uint32_t>(character);
        auto const continuation = [&](int shift) {
            bytes += static_cast<char>(0x80 | ((code >> shift) & 0x3F));
        };
        if (code < 0x80) {
            bytes += static_cast<char>(code);
        } else if (code < 0x800) {
            bytes += static_cast<char>(0xC0 | (code >> 6));
            continuation(0);
        } else if ((code >= 0xD800 && code < 0xE000) || code > 0x10FFFF) {
            bytes += '?';
        } else if (code < 0x10000) {
            bytes += static_cast<char>(0xE0 | (code >> 12));
            continuation(6);
            continuation(0);
        } else {
            bytes += static_cast<char>(0xF0 | (code >> 18));
            continuation(12);
            continuation(6);
            continuation(0);
        }
    }
    return bytes;
}

std::string FolderOf(wchar_t const* key) {
    std::string path = Narrow(key);
    for (char& character : path)
        if (character == '\\') character = '/';
    return ZPA_REGISTRY_ROOT "/" + path;
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

class PosixEventLog final : public EventLog {
public:
    void ReadValue(wchar_t const* key, wchar_t const* name, std::uint32_t& value) override {
        File const file(std::fopen((FolderOf(key) + "/" + Narrow(name)).c_str(), "re"));
        char text[16] = {};
        if (!file || !std::fgets(text, sizeof text, file.get())) return;
        char* end = text;
        unsigned long const number = std::strtoul(text, &end, 10);
        if (end != text) value = static_cast<std::uint32_t>(number);
    }

    Key CreateKey(wchar_t const* key, bool& existed) override {
        auto folder = std::make_unique<std::string>(FolderOf(key));
        struct stat status = {};
        existed = stat(folder->c_str(), &status) == 0 && S_ISDIR(status.st_mode);
        if (existed) return folder.release();
        for (std::size_t slash = folder->find('/', 1); slash != std::string::npos;
             slash = folder->find('/', slash + 1))
            mkdir(folder->substr(0, slash).c_str(), 0755);
        return mkdir(folder->c_str(), 0755) == 0 ? folder.release() : nullptr;
    }

    void SetText(Key key, wchar_t const* name, wchar_t const* text, std::uint32_t bytes) override {
        Write(key, name, Narrow(std::wstring(text).substr(0, bytes / 2)));
    }

    void SetNumber(Key key, wchar_t const* name, std::uint32_t value) override {
        Write(key, name, std::to_string(value));
    }

    void CloseKey(Key key) override { delete static_cast<std::string*>(key); }

    std::wstring ModulePath(std::uint32_t limit) override {
        Dl_info library = {};
        if (dladdr(reinterpret_cast<void const*>(&SystemEventLog), &library) == 0 || !library.dli_fname)
            return {};
        std::wstring path;
        for (char const* byte = library.dli_fname; *byte && path.size() < limit; ++byte)
            path += static_cast<wchar_t>(static_cast<unsigned char>(*byte));
        return path;
    }

    Source RegisterSource(wchar_t const* name) override { return new std::string(Narrow(name)); }

    void Report(Source source, EventType type, std::uint16_t, std::uint32_t, wchar_t const* text) override {
        // Without openlog, whose settings belong to the host program.
        syslog(type == EventType::Error ? LOG_ERR : LOG_WARNING, "%s: %s",
               static_cast<std::string*>(source)->c_str(), Narrow(text).c_str());
    }

    void Deregister(Source source) override { delete static_cast<std::string*>(source); }

private:
    static void Write(Key key, wchar_t const* name, std::string const& content) {
        File const file(std::fopen((*static_cast<std::string*>(key) + "/" + Narrow(name)).c_str(), "we"));
        if (file) std::fwrite(content.data(), 1, content.size(), file.get());
    }
};

}  // namespace

EventLog& SystemEventLog() {
    static auto& log = *new PosixEventLog;
    return log;
}

}  // namespace ZPA
