// The event log and registry of Windows: what is read of the filter, and what is reported.
#include <Basics/Logging.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "Source/Internal/LogState.h"
#include "Source/Platform/EventLog.h"
#include "support/CapturedLog.h"

namespace ZPA {
namespace {

constexpr auto kServices = L"SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application";
constexpr auto kFilterKey = L"SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\SOLVANE_IPL";

// The system's own, which tells what it was asked to report.
class Watched final : public EventLog {
public:
    using Text = wchar_t const*;
    EventLog& own = SystemEventLog();
    std::vector<std::wstring> reports;

    void ReadValue(Text key, Text name, std::uint32_t& value) override { own.ReadValue(key, name, value); }
    Key CreateKey(Text key, bool& existed) override { return own.CreateKey(key, existed); }
    void SetText(Key key, Text name, Text text, std::uint32_t bytes) override {
        own.SetText(key, name, text, bytes);
    }
    void SetNumber(Key key, Text name, std::uint32_t value) override { own.SetNumber(key, name, value); }
    void CloseKey(Key key) override { own.CloseKey(key); }
    std::uint32_t ModulePath(wchar_t* path, std::uint32_t limit) override {
        return own.ModulePath(path, limit);
    }
    Source RegisterSource(Text name) override { return own.RegisterSource(name); }
    void Report(Source source, EventType type, std::uint16_t category, std::uint32_t id, Text text) override {
        EXPECT_NE(source, nullptr);
        reports.push_back(std::to_wstring(static_cast<int>(type)) + L" " + std::to_wstring(category) + L" " +
                          std::to_wstring(id) + L" " + text);
        own.Report(source, type, category, id, text);
    }
    void Deregister(Source source) override { own.Deregister(source); }
};

class WindowsEventLog : public testing::Test {
protected:
    WindowsEventLog() {
        Forget();
        UseEventLog(watched);
        ZPA_Logging::SetErrorCallback(nullptr);
        ZPA_Logging::SetWarningCallback(nullptr);
    }
    ~WindowsEventLog() override {
        UseEventLog(SystemEventLog());
        Forget();
    }
    static void Forget() {
        for (std::wstring const key : {L"\\ZPA", L"\\SOLVANE_IPL"})
            RegDeleteKeyW(HKEY_LOCAL_MACHINE, (kServices + key).c_str());
    }
    // What is reported of an error and a warning.
    std::vector<std::wstring> Reports() {
        watched.reports.clear();
        ZPA_Logging::LogError(nullptr, 0, 5, L"error");
        ZPA_Logging::LogWarning(nullptr, 0, eLogRegions, L"warning");
        return watched.reports;
    }

    Testing::CapturedLog const log;  // makes the callbacks quiet again
    Watched watched;
};

void SetFilter(DWORD type, void const* bytes, DWORD size) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, kFilterKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                              nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExW(key, L"TypesSupported", 0, type, static_cast<BYTE const*>(bytes), size),
              ERROR_SUCCESS);
    RegCloseKey(key);
}

TEST_F(WindowsEventLog, FiltersByTheRegistry) {
    std::wstring const error = L"1 5 3221291010 error", warning = L"2 4 1073807361 warning";
    EXPECT_EQ(Reports(), (std::vector{error, warning}));  // without a key
    struct Case {
        DWORD types;
        std::vector<std::wstring> reports;
    };
    for (Case const& each : {Case{0, {}}, Case{1, {error}}, Case{2, {warning}}, Case{3, {error, warning}},
                             Case{4, {}}, Case{7, {error, warning}}}) {
        SetFilter(REG_DWORD, &each.types, sizeof each.types);
        EXPECT_EQ(Reports(), each.reports) << each.types;
    }
    // Whatever else fits into the number counts as one; what is larger does not.
    SetFilter(REG_SZ, L"1", 4);
    EXPECT_EQ(Reports(), (std::vector{error}));
    SetFilter(REG_BINARY, "\2", 1);
    EXPECT_EQ(Reports(), (std::vector{warning}));
    SetFilter(REG_BINARY, "\0\0\0\0", 5);
    EXPECT_EQ(Reports(), (std::vector{error, warning}));
}

TEST_F(WindowsEventLog, LeavesAnExistingKeyAsItIs) {
    bool existed = true;
    EventLog::Key const key =
        SystemEventLog().CreateKey((std::wstring(kServices) + L"\\ZPA").c_str(), existed);
    ASSERT_NE(key, nullptr);
    EXPECT_FALSE(existed);
    SystemEventLog().SetNumber(key, L"TypesSupported", 1);
    EXPECT_EQ(Reports().size(), 2U);
    std::uint32_t types = 0;
    SystemEventLog().ReadValue((std::wstring(kServices) + L"\\ZPA").c_str(), L"TypesSupported", types);
    EXPECT_EQ(types, 1U);
    EXPECT_EQ(
        RegQueryValueExW(static_cast<HKEY>(key), L"EventMessageFile", nullptr, nullptr, nullptr, nullptr),
        ERROR_FILE_NOT_FOUND);
    SystemEventLog().CloseKey(key);
}

TEST_F(WindowsEventLog, KnowsTheModuleWithinTheLimit) {
    wchar_t path[MAX_PATH + 1];
    std::uint32_t const size = SystemEventLog().ModulePath(path, MAX_PATH);
    EXPECT_GT(size, 4U);
    EXPECT_EQ(std::wstring(path).size(), size);
    wchar_t cut[] = L"????????";
    EXPECT_EQ(SystemEventLog().ModulePath(cut, 4), 4U);
    EXPECT_EQ(std::wstring(cut, 3), std::wstring(path, 3));  // newer systems make the fourth a zero
    EXPECT_EQ(cut[5], L'?');
}

}  // namespace
}  // namespace ZPA
