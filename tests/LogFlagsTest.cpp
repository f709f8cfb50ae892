// The flags of the log: which categories of information and debugging are heard.
#include <Basics/Logging.h>
#include <gtest/gtest.h>

#include <climits>

#include "support/CapturedLog.h"

namespace ZPA {
namespace {

using namespace Testing;

LogCategory Category(int number) { return static_cast<LogCategory>(number); }

// Information and debugging work alike, each with flags and a callback of its own.
struct Channel {
    char const* name;
    SOLVANE_RETURNCODE (*enable)(LogCategory, bool);
    bool (*isEnabled)(LogCategory);
    SOLVANE_RETURNCODE (*setCallback)(LogCallback);
    SOLVANE_RETURNCODE (*log)(wchar_t const*, int, LogCategory, wchar_t const*, ...);
    std::vector<LogLine> const& (CapturedLog::*lines)() const;
    std::vector<LogLine> const& (CapturedLog::*others)() const;
};
class LogFlags : public testing::TestWithParam<Channel> {
protected:
    std::vector<LogLine> const& Lines() const { return (log.*GetParam().lines)(); }
    CapturedLog log;
};

TEST_P(LogFlags, OpenOneCategoryEach) {
    for (int enabled = 0; enabled < eLogAll; ++enabled) {
        EXPECT_EQ(GetParam().enable(Category(enabled), true), 0);
        for (int category = -1; category <= 25; ++category) {
            EXPECT_EQ(GetParam().isEnabled(Category(category)), category == enabled);
            EXPECT_EQ(GetParam().log(L"f.cpp", category, Category(category), L"%d", category), 0);
        }
        ASSERT_EQ(Lines().size(), 1U) << enabled;
        EXPECT_EQ(Lines()[0].location, L"f.cpp(" + std::to_wstring(enabled) + L")");
        EXPECT_EQ(Lines()[0].category, enabled);
        EXPECT_EQ(Lines()[0].message, std::to_wstring(enabled));
        EXPECT_TRUE((log.*GetParam().others)().empty());
        EXPECT_EQ(GetParam().enable(Category(enabled), false), 0);
        log.Clear();
    }
}

TEST_P(LogFlags, SwitchedAllAtOnceLeaveThreeAlone) {
    auto const isAlone = [](int category) { return category == 1 || category == 20 || category == 22; };
    for (bool const alone : {false, true}) {
        for (int const category : {1, 20, 22}) GetParam().enable(Category(category), alone);
        for (bool const all : {true, false}) {
            EXPECT_EQ(GetParam().enable(eLogAll, all), 0);
            for (int category = 0; category < eLogAll; ++category)
                EXPECT_EQ(GetParam().isEnabled(Category(category)), isAlone(category) ? alone : all)
                    << category;
            EXPECT_FALSE(GetParam().isEnabled(eLogAll));
        }
    }
}

TEST_P(LogFlags, RefuseACategoryThatIsNone) {
    for (int const category : {24, 1000, INT_MAX, -1, INT_MIN}) {
        log.Clear();
        EXPECT_EQ(GetParam().enable(Category(category), true), 3) << category;
        EXPECT_EQ(log.Code(), 3);
        EXPECT_EQ(log.Text(), L"Invalid log category.");
    }
    for (int category = 0; category < eLogAll; ++category)
        EXPECT_FALSE(GetParam().isEnabled(Category(category))) << category;
}

TEST_P(LogFlags, CountForNothingWithoutACallback) {
    GetParam().enable(eLogFunction, true);
    EXPECT_TRUE(GetParam().isEnabled(eLogFunction));
    EXPECT_EQ(GetParam().setCallback(nullptr), 0);
    EXPECT_FALSE(GetParam().isEnabled(eLogFunction));
    EXPECT_EQ(GetParam().log(nullptr, 0, eLogFunction, L"text"), 0);
    EXPECT_TRUE(Lines().empty());
}

INSTANTIATE_TEST_SUITE_P(Channels, LogFlags,
                         testing::Values(Channel{"Info", ZPA_Logging::EnableLog, ZPA_Logging::IsLogEnabled,
                                                 ZPA_Logging::SetInfoCallback, ZPA_Logging::LogInfo,
                                                 &CapturedLog::InfoLines, &CapturedLog::DebugLines},
                                         Channel{"Debug", ZPA_Logging::EnableDebug,
                                                 ZPA_Logging::IsDebugEnabled, ZPA_Logging::SetDebugCallback,
                                                 ZPA_Logging::LogDebug, &CapturedLog::DebugLines,
                                                 &CapturedLog::InfoLines}),
                         [](auto const& channel) { return channel.param.name; });

}  // namespace
}  // namespace ZPA
