// What the library logs while a test runs.
#include "support/CapturedLog.h"

#include <gtest/gtest.h>

namespace ZPA::Testing {
namespace {

// Callbacks are plain functions, so what they hear stands here. The library calls one at a time.
struct Heard {
    std::vector<LogLine> errors, warnings, debug, info;
};
Heard heard;

template <std::vector<LogLine> Heard::*lines>
void Hear(wchar_t const* location, int number, wchar_t const* message) {
    (heard.*lines).push_back({location, number, message});
}
void Ignore(wchar_t const*, int, wchar_t const*) {}

void SwitchAllOff() {
    for (int category = 0; category < eLogAll; ++category) {
        ZPA_Logging::EnableDebug(static_cast<LogCategory>(category), false);
        ZPA_Logging::EnableLog(static_cast<LogCategory>(category), false);
    }
}

// Tests that look at no log must not fill the machine's own.
class QuietLog : public testing::Environment {
public:
    void SetUp() override {
        ZPA_Logging::SetErrorCallback(Ignore);
        ZPA_Logging::SetWarningCallback(Ignore);
    }
};
[[maybe_unused]] auto* const quiet = testing::AddGlobalTestEnvironment(new QuietLog);

}  // namespace

CapturedLog::CapturedLog() {
    heard = {};
    ZPA_Logging::SetErrorCallback(Hear<&Heard::errors>);
    ZPA_Logging::SetWarningCallback(Hear<&Heard::warnings>);
    ZPA_Logging::SetDebugCallback(Hear<&Heard::debug>);
    ZPA_Logging::SetInfoCallback(Hear<&Heard::info>);
}

CapturedLog::~CapturedLog() {
    SwitchAllOff();
    ZPA_Logging::SetErrorCallback(Ignore);
    ZPA_Logging::SetWarningCallback(Ignore);
    ZPA_Logging::SetDebugCallback(nullptr);
    ZPA_Logging::SetInfoCallback(nullptr);
}

void CapturedLog::Debug(LogCategory category) { ZPA_Logging::EnableDebug(category, true); }
std::vector<LogLine> const& CapturedLog::Errors() const { return heard.errors; }
std::vector<LogLine> const& CapturedLog::Warnings() const { return heard.warnings; }
std::vector<LogLine> const& CapturedLog::DebugLines() const { return heard.debug; }
std::vector<LogLine> const& CapturedLog::InfoLines() const { return heard.info; }
std::wstring CapturedLog::Text() const {
    return heard.errors.empty() ? std::wstring() : heard.errors.back().message;
}
int CapturedLog::Code() const { return heard.errors.empty() ? 0 : heard.errors.back().category; }
std::wstring CapturedLog::Texts() const {
    std::wstring texts;
    for (LogLine const& line : heard.errors) texts += line.message + L'\n';
    return texts;
}
std::wstring CapturedLog::Scopes() const {
    std::wstring const entering = L"Entering function ZPA::", leaving = L"Exiting function ZPA::";
    std::wstring scopes;
    std::vector<std::wstring> open;
    for (LogLine const& line : heard.debug) {
        if (line.message.find(entering) == 0) {
            open.push_back(line.message.substr(entering.size()));
            scopes += open.back() + L'{';
        } else if (!open.empty() && line.message == leaving + open.back()) {
            open.pop_back();
            scopes += L'}';
        } else if (line.message.find(L" function ") != line.message.npos) {
            scopes += L'?' + line.message;
        }
    }
    return scopes;
}
void CapturedLog::Clear() { heard = {}; }

}  // namespace ZPA::Testing
