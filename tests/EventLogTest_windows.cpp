// What the library writes to the registry of Windows when it first has an event to report.
#include <Basics/Logging.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>

#include "support/CapturedLog.h"

namespace ZPA {
namespace {

constexpr auto kKey = L"SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\ZPA";

struct Value {
    DWORD type;
    std::string bytes;
};

// As it is stored: RegGetValueW would mend a text without its end.
Value Stored(wchar_t const* name) {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, KEY_READ, &key), ERROR_SUCCESS);
    Value value{REG_NONE, std::string(4096, 0)};
    auto size = static_cast<DWORD>(value.bytes.size());
    EXPECT_EQ(
        RegQueryValueExW(key, name, nullptr, &value.type, reinterpret_cast<BYTE*>(&value.bytes[0]), &size),
        ERROR_SUCCESS);
    value.bytes.resize(size);
    RegCloseKey(key);
    return value;
}

// The source is registered once a process, so one test must see it all.
TEST(WindowsEventLog, LearnsWhereTheLibraryIs) {
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, kKey);
    Testing::CapturedLog const log;  // makes the callbacks quiet again
    ZPA_Logging::SetErrorCallback(nullptr);
    EXPECT_EQ(ZPA_Logging::LogError(nullptr, 0, 4, L"text"), 4);

    wchar_t path[MAX_PATH];
    DWORD const size = GetModuleFileNameW(GetModuleHandleW(L"zpa.dll"), path, MAX_PATH);
    ASSERT_GT(size, 0U);
    Value const file = Stored(L"EventMessageFile");
    EXPECT_EQ(file.type, DWORD{REG_SZ});
    EXPECT_EQ(file.bytes, std::string(reinterpret_cast<char const*>(path), size + 1));  // half of it

    Value const types = Stored(L"TypesSupported");
    EXPECT_EQ(types.type, DWORD{REG_DWORD});
    EXPECT_EQ(types.bytes, std::string("\7\0\0\0", 4));
}

}  // namespace
}  // namespace ZPA
