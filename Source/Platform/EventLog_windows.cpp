// The event log and registry of Windows, and the library's entry function, which learns the module's handle.
#include "Source/Platform/EventLog.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

namespace {
HMODULE theModule = nullptr;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) theModule = module;
    return TRUE;
}

namespace ZPA {
namespace {

class WindowsEventLog final : public EventLog {
public:
    void ReadValue(wchar_t const* key, wchar_t const* name, std::uint32_t& value) override {
        HKEY opened = nullptr;
        if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, key, 0, KEY_READ, &opened) != ERROR_SUCCESS) return;
        DWORD number = value;
        DWORD size = sizeof number;
        // A value of any type; the query fails for one that is larger.
        if (RegQueryValueExW(opened, name, nullptr, nullptr, reinterpret_cast<BYTE*>(&number), &size) ==
            ERROR_SUCCESS)
            value = number;
        RegCloseKey(opened);
    }

    Key CreateKey(wchar_t const* key, bool& existed) override {
        HKEY created = nullptr;
        DWORD disposition = 0;
        wchar_t noClass[] = L"";
        if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, key, 0, noClass, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                            nullptr, &created, &disposition) != ERROR_SUCCESS)
            return nullptr;
        existed = disposition == REG_OPENED_EXISTING_KEY;
        return created;
    }

    void SetText(Key key, wchar_t const* name, wchar_t const* text, std::uint32_t bytes) override {
        RegSetValueExW(static_cast<HKEY>(key), name, 0, REG_SZ, reinterpret_cast<BYTE const*>(text), bytes);
    }

    void SetNumber(Key key, wchar_t const* name, std::uint32_t value) override {
        DWORD const number = value;
        RegSetValueExW(static_cast<HKEY>(key), name, 0, REG_DWORD, reinterpret_cast<BYTE const*>(&number),
                       sizeof number);
    }

    void CloseKey(Key key) override { RegCloseKey(static_cast<HKEY>(key)); }

    std::uint32_t ModulePath(wchar_t* path, std::uint32_t limit) override {
        std::uint32_t const size = GetModuleFileNameW(theModule, path, limit);
        path[size] = 0;  // a path that is cut comes without
        return size;
    }

    Source RegisterSource(wchar_t const* name) override { return RegisterEventSourceW(nullptr, name); }

    void Report(Source source, EventType type, std::uint16_t category, std::uint32_t eventId,
                wchar_t const* text) override {
        ReportEventW(source, static_cast<WORD>(type), category, eventId, nullptr, 1, 0, &text, nullptr);
    }

    void Deregister(Source source) override { DeregisterEventSource(source); }
};

}  // namespace

EventLog& SystemEventLog() {
    static auto& log = *new WindowsEventLog;
    return log;
}

}  // namespace ZPA
