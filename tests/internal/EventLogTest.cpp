// What errors and warnings do to the operating system's event log when no callback takes them.
#include <Basics/Logging.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "Source/Internal/LogState.h"
#include "Source/Platform/EventLog.h"

namespace ZPA {
namespace {

using Steps = std::vector<std::wstring>;

// Writes down what is asked of it, and answers as it is told.
class Recorder final : public EventLog {
public:
    std::uint32_t types = 3;
    bool typesAreMissing = false;
    bool keyExisted = false;
    bool keyFails = false;
    bool sourceFails = false;
    bool watchesLock = false;
    std::wstring path = L"/opt/zpa/libzpa.so.1";
    Steps steps;

    void ReadValue(wchar_t const* key, wchar_t const* name, std::uint32_t& value) override {
        Note(L"read", key, name, value);
        if (!typesAreMissing) value = types;
    }
    Key CreateKey(wchar_t const* key, bool& existed) override {
        Note(L"create", key);
        existed = keyExisted;
        return keyFails ? nullptr : &keyExisted;
    }
    void SetText(Key key, wchar_t const* name, wchar_t const* text, std::uint32_t bytes) override {
        EXPECT_EQ(key, &keyExisted);
        Note(L"text", name, text, bytes);
    }
    void SetNumber(Key key, wchar_t const* name, std::uint32_t value) override {
        EXPECT_EQ(key, &keyExisted);
        Note(L"number", name, value);
    }
    void CloseKey(Key key) override {
        EXPECT_EQ(key, &keyExisted);
        Note(L"close");
    }
    std::uint32_t ModulePath(wchar_t* text, std::uint32_t limit) override {
        Note(L"path", limit);
        auto const size = path.copy(text, limit);
        text[size] = 0;
        return static_cast<std::uint32_t>(size);
    }
    Source RegisterSource(wchar_t const* name) override {
        Note(L"register", name);
        return sourceFails ? nullptr : &types;
    }
    void Report(Source source, EventType type, std::uint16_t category, std::uint32_t eventId,
                wchar_t const* text) override {
        EXPECT_EQ(source, &types);
        std::wostringstream id;
        id << std::hex << std::uppercase << eventId;
        Note(L"report", static_cast<int>(type), category, id.str(), text);
    }
    void Deregister(Source source) override {
        EXPECT_EQ(source, &types);
        Note(L"deregister");
    }

private:
    template <typename... Words> void Note(Words const&... words) {
        std::wostringstream line;
        ((line << words << L' '), ...);
        std::wstring step = line.str();
        step.pop_back();
        if (watchesLock) step += LockIsFree() ? L" free" : L" locked";
        steps.push_back(step);
    }

    // Delivery to a callback on another thread waits while the lock is held. It should be free at the first step only,
    // where a busy machine is given time.
    bool LockIsFree() {
        std::chrono::milliseconds const patience(steps.empty() ? 10000 : 100);
        visitors_.push_back(std::async(
            std::launch::async, [] { ZPA_Logging::LogInfo(nullptr, 0, eLogImage, L"is the lock free?"); }));
        return visitors_.back().wait_for(patience) == std::future_status::ready;
    }

    // Kept, since a future waits for its thread when it dies, and the thread for the lock that our caller
    // has.
    std::vector<std::future<void>> visitors_;
};

Steps const kRead = {
    L"read SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\SOLVANE_IPL TypesSupported 3"};
std::wstring const kCreate = L"create SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\ZPA";

Steps operator+(Steps first, Steps const& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

class EventLogSteps : public testing::Test {
protected:
    EventLogSteps() {
        UseEventLog(recorder);
        ZPA_Logging::SetErrorCallback(nullptr);
        ZPA_Logging::SetWarningCallback(nullptr);
    }
    ~EventLogSteps() override {
        auto const ignore = [](wchar_t const*, int, wchar_t const*) {};
        ZPA_Logging::SetErrorCallback(ignore);
        ZPA_Logging::SetWarningCallback(ignore);
        ZPA_Logging::SetInfoCallback(nullptr);
        UseEventLog(SystemEventLog());
    }
    // The steps since the last call.
    Steps Taken() { return std::exchange(recorder.steps, {}); }
    static void Fail(wchar_t const* text = L"text") {
        EXPECT_EQ(ZPA_Logging::LogError(L"folder/Where.cpp", 12, 4, text), 4);
    }
    static void Warn() { EXPECT_EQ(ZPA_Logging::LogWarning(L"Where.cpp", 12, eLogRegions, L"%d", 5), 0); }

    Recorder recorder;
};

TEST_F(EventLogSteps, RegisterTheSourceOnce) {
    Fail();
    EXPECT_EQ(Taken(),
              kRead + Steps({kCreate, L"path 8191",
                             // 20 characters and the zero, where bytes are meant
                             L"text EventMessageFile /opt/zpa/libzpa.so.1 21", L"number TypesSupported 7",
                             L"register ZPA", L"close", L"report 1 4 C0010002 text"}));
    Fail(L"second");
    EXPECT_EQ(Taken(), kRead + Steps({L"report 1 4 C0010002 second"}));
    Fail(std::wstring(600, L'm').c_str());
    EXPECT_EQ(Taken(), kRead + Steps({L"report 1 4 C0010002 " + std::wstring(511, L'm')}));
    Warn();
    EXPECT_EQ(Taken(), kRead + Steps({L"report 2 4 40010001 5"}));
    UseEventLog(SystemEventLog());
    EXPECT_EQ(Taken(), Steps({L"deregister"}));
}

TEST_F(EventLogSteps, GoOnWithoutTheKey) {
    recorder.keyFails = true;
    Fail();
    EXPECT_EQ(Taken(), kRead + Steps({kCreate, L"register ZPA", L"report 1 4 C0010002 text"}));
}

TEST_F(EventLogSteps, TryAgainToRegisterASourceThatFailed) {
    recorder.sourceFails = true;
    recorder.keyExisted = true;  // and stays as it is
    Fail();
    Fail();
    Steps const failed = kRead + Steps({kCreate, L"register ZPA", L"close"});
    EXPECT_EQ(Taken(), failed + failed);
    recorder.sourceFails = false;
    Fail();
    EXPECT_EQ(Taken(), failed + Steps({L"report 1 4 C0010002 text"}));
}

TEST_F(EventLogSteps, ObeyTheFilter) {
    struct Case {
        std::uint32_t types;
        bool missing, error, warning;
    };
    recorder.types = 0;
    recorder.keyExisted = true;
    Fail();  // is filtered, but registers
    EXPECT_EQ(Taken(), kRead + Steps({kCreate, L"register ZPA", L"close"}));
    Case const cases[] = {{0, false, false, false}, {1, false, true, false},  {2, false, false, true},
                          {3, false, true, true},   {4, false, false, false}, {0, true, true, true}};
    for (Case const& each : cases) {
        recorder.types = each.types;
        recorder.typesAreMissing = each.missing;
        Taken();
        Fail();
        EXPECT_EQ(Taken().size(), each.error ? 2U : 1U) << each.types;
        Warn();
        EXPECT_EQ(Taken().size(), each.warning ? 2U : 1U) << each.types;
    }
}

TEST_F(EventLogSteps, AreNoneForInformationDebuggingAndNoFormat) {
    ZPA_Logging::EnableLog(eLogImage, true);
    ZPA_Logging::EnableDebug(eLogImage, true);
    ZPA_Logging::LogInfo(nullptr, 0, eLogImage, L"text");
    ZPA_Logging::LogDebug(nullptr, 0, eLogImage, L"text");
    Fail(nullptr);
    ZPA_Logging::EnableLog(eLogImage, false);
    ZPA_Logging::EnableDebug(eLogImage, false);
    // Nor of what a callback takes.
    auto const take = [](wchar_t const*, int, wchar_t const*) {};
    ZPA_Logging::SetErrorCallback(take);
    Fail();
    ZPA_Logging::SetErrorCallback(nullptr);
    ZPA_Logging::SetWarningCallback(take);
    Warn();
    EXPECT_EQ(Taken(), Steps());
}

TEST_F(EventLogSteps, HoldTheLockFromRegistrationOn) {
    recorder.watchesLock = true;
    recorder.keyExisted = true;
    ZPA_Logging::SetInfoCallback([](wchar_t const*, int, wchar_t const*) {});
    ZPA_Logging::EnableLog(eLogImage, true);
    Fail();
    EXPECT_EQ(Taken(), Steps({kRead[0] + L" free", kCreate + L" locked", L"register ZPA locked",
                              L"close locked", L"report 1 4 C0010002 text locked"}));
    ZPA_Logging::EnableLog(eLogImage, false);
}

}  // namespace
}  // namespace ZPA
