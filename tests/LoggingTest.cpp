// The log as its callers see it: what reaches which callback, in which words, and what the scopes report.
#include <Basics/CoreTypes.h>
#include <Basics/Logging.h>
#include <Basics/PixelOperations.h>
#include <gtest/gtest.h>

#include <climits>
#include <regex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/CapturedLog.h"

namespace ZPA {
namespace {

using namespace Testing;

TEST(LogLocation, IsStemExtensionAndLine) {
    std::wstring const stem255(255, L's');
    std::wstring const stem300(300, L's');
    std::wstring const extension255 = L"." + std::wstring(254, L'e');
    std::wstring const extension300 = L"." + std::wstring(299, L'e');
    struct Case {
        std::wstring source;
        int line;
        std::wstring location;
    };
    Case const cases[] = {
        {L"/usr/src/zpa.d/CopyPixels.cpp", 12, L"CopyPixels.cpp(12)"},
        {L"C:\\src\\a.b.cpp", 7, L"a.b.cpp(7)"},
        {L"dir.d\\Makefile", 0, L"Makefile(0)"},
        {L"C:file.", 3, L"file.(3)"},
        {L"%s%n.cpp", -1, L"%s%n.cpp(-1)"},
        {L"", INT_MIN, L"(-2147483648)"},
        {L"folder/", 1, L"(1)"},
        // Both parts are read up to 255 characters.
        {stem300, 1, stem255 + L"(1)"},
        {L"s" + extension300, 1, L"s" + extension255 + L"(1)"},
        // Together up to 499; longer ones lose the extension and the end of the stem.
        {std::wstring(244, L's') + extension255, 5, std::wstring(244, L's') + extension255 + L"(5)"},
        {std::wstring(245, L's') + extension255, 5, std::wstring(242, L's') + L"(null)(5)"},
        {stem300 + extension300, 5, std::wstring(242, L's') + L"(null)(5)"},
    };
    CapturedLog const log;
    for (Case const& each : cases) {
        // Any number is a code, so those of the lines will do.
        EXPECT_EQ(ZPA_Logging::LogError(each.source.c_str(), each.line, each.line, L"text"), each.line);
        EXPECT_EQ(log.Code(), each.line);
        EXPECT_EQ(log.Errors().back().location, each.location);
    }
    ZPA_Logging::LogError(nullptr, 5, 4, L"text");
    EXPECT_EQ(log.Errors().back().location, L"");
}

// What an operation reports names its own source, whether by a check or by the frame around it.
TEST(LogLocation, OfAnOperationNamesItsSource) {
    auto const isIn = [](std::wstring const& location, std::wstring const& file) {
        return std::regex_match(location, std::wregex(file + L"\\(([2-9]|[1-9]\\d+)\\)"));
    };
    CapturedLog const log;
    ZPA_Logging::LogError(ZPA_LOG_HERE, 4, L"text");
    EXPECT_EQ(log.Errors().back().location, L"LoggingTest.cpp(" + std::to_wstring(__LINE__ - 1) + L")");
    ImageAttributes const none;
    EXPECT_EQ(ValidateImageBuffer(none, nullptr), SOLVANE_INVALID_ARGUMENT);
    EXPECT_TRUE(isIn(log.Errors().back().location, L"CoreTypes.cpp")) << log.Errors().back().location;
    // Too many pixels to be allocated, which the frame reports.
    unsigned char pixel = 0;
    ImageAttributes output;
    EXPECT_EQ(CopyPixels(ImageAttributes(eByte, &pixel, 60000, 60000, 60000, 8, 0), &output),
              SOLVANE_UNEXPECTED);
    EXPECT_EQ(log.Text(), L"Unexpected exception.");
    EXPECT_TRUE(isIn(log.Errors().back().location, L"CopyPixels.cpp")) << log.Errors().back().location;
    EXPECT_EQ(ZPA_Logging::EnableLog(static_cast<LogCategory>(24), true), SOLVANE_OUT_OF_RANGE);
    EXPECT_TRUE(isIn(log.Errors().back().location, L"Logging.cpp")) << log.Errors().back().location;
}

TEST(LogMessage, WithoutAFormatIsNone) {
    CapturedLog log;
    log.Debug(eLogFunction);
    ZPA_Logging::EnableLog(eLogFunction, true);
    EXPECT_EQ(ZPA_Logging::LogError(L"a.cpp", 10, 4, nullptr), 4);
    EXPECT_EQ(ZPA_Logging::LogWarning(L"a.cpp", 10, eLogFunction, nullptr), 0);
    EXPECT_EQ(ZPA_Logging::LogInfo(L"a.cpp", 10, eLogFunction, nullptr), 0);
    EXPECT_EQ(ZPA_Logging::LogDebug(L"a.cpp", 10, eLogFunction, nullptr), 0);
    EXPECT_EQ(log.Errors().size() + log.Warnings().size() + log.InfoLines().size() + log.DebugLines().size(),
              0U);
}

TEST(LogMemoryError, NamesItsContextWhichIsNoFormat) {
    struct Case {
        std::wstring context;
        std::wstring message;
    };
    Case const cases[] = {
        {L"ValidateImageBuffer", L"ValidateImageBuffer: Memory allocation failed for 12 bytes."},
        {L"", L": Memory allocation failed for 12 bytes."},
        {L"100%n %s", L"100%n %s: Memory allocation failed for 12 bytes."},
        {std::wstring(600, L'c'), std::wstring(511, L'c')},
    };
    CapturedLog const log;
    for (Case const& each : cases) {
        EXPECT_EQ(LogMemoryError(L"a/b.cpp", 9, each.context.c_str(), 12), 1);
        EXPECT_EQ(log.Code(), 1);
        EXPECT_EQ(log.Text(), each.message);
        EXPECT_EQ(log.Errors().back().location, L"b.cpp(9)");
    }
    EXPECT_EQ(LogMemoryError(nullptr, 0, nullptr, -1), 1);
    EXPECT_EQ(log.Text(), L"(null): Memory allocation failed for -1 bytes.");
}

TEST(LogDump, DescribesAnImageAndReadsItsLabelAsAFormat) {
    auto* const pixels = reinterpret_cast<void*>(std::uintptr_t{0xAB});
    std::wstring const pointer = std::wstring(2 * sizeof(void*) - 2, L'0') + L"AB";
    struct Case {
        eTypeCode type;
        wchar_t const* label;
        std::wstring message;
    };
    Case const cases[] = {
        {eByte, L"mask", L"Image,eByte," + pointer + L",3,-2,mask"},
        {eUInt16, L"scan", L"Image,eUInt16," + pointer + L",3,-2,scan"},
        {eDouble, L"", L"Image,eUInt16," + pointer + L",3,-2,"},
        {eUnknown, L"50%% %d %s %n.", L"Image,eUInt16," + pointer + L",3,-2,50% 0 (null) ."},
    };
    CapturedLog log;
    log.Debug(eLogDump);
    for (Case const& each : cases) {
        EXPECT_EQ(ZPA_Logging::LogDump(ImageAttributes(each.type, pixels, 3, -2, 4, 8, 0), each.label), 0);
        EXPECT_EQ(log.DebugLines().back().message, each.message);
        EXPECT_EQ(log.DebugLines().back().category, eLogDump);
    }
    std::wstring const longLabel(600, L'l');
    ZPA_Logging::LogDump(ImageAttributes(eByte, pixels, 3, -2, 4, 8, 0), longLabel.c_str());
    EXPECT_EQ(log.DebugLines().back().message.size(), 511U);
}

TEST(LogDump, TellsNothingWithoutLabelPixelsOrListener) {
    char pixel = 0;
    ImageAttributes const image(eByte, &pixel, 1, 1, 1, 8, 0);
    CapturedLog log;
    EXPECT_EQ(ZPA_Logging::LogDump(image, L"off"), 0);
    ZPA_Logging::EnableDebug(eLogAll, true);
    EXPECT_EQ(ZPA_Logging::LogDump(image, L"still off"), 0);
    log.Debug(eLogDump);
    EXPECT_EQ(ZPA_Logging::LogDump(image, nullptr), 0);
    EXPECT_EQ(ZPA_Logging::LogDump(ImageAttributes(), L"no pixels"), 0);
    EXPECT_TRUE(log.DebugLines().empty());
}

using Lines = std::vector<std::wstring>;

// The flag is looked at at both ends.
TEST(EntryExitLogging, ReportsBothEndsOfAScope) {
    CapturedLog log;
    {
        EntryExitLogging const silent(L"silent", eLogFunction);
        EntryExitLogging const late(L"late", eLogFactory);
        log.Debug(eLogFactory);
        EntryExitLogging const scope(L"%s", eLogFactory);
        EXPECT_EQ(Messages(log.DebugLines()), Lines{L"Entering function %s"});
    }
    EXPECT_EQ(Messages(log.DebugLines()),
              (Lines{L"Entering function %s", L"Exiting function %s", L"Exiting function late"}));
    for (LogLine const& line : log.DebugLines()) {
        EXPECT_EQ(line.location, L"");
        EXPECT_EQ(line.category, eLogFactory);
    }
}

TEST(EntryExitLogging, CutsDetailsToTheLengthOfTheirFormat) {
    CapturedLog log;
    log.Debug(eLogFunction);
    auto const firstLine = [&](auto... details) {
        log.Clear();
        { EntryExitLogging const scope(L"f", eLogFunction, details...); }
        return log.DebugLines().front().message;
    };
    EXPECT_EQ(firstLine(L"x=%d", 1234567), L"Entering function f x=12");
    EXPECT_EQ(firstLine(L"%s", L"abcdef"), L"Entering function f ab");
    EXPECT_EQ(firstLine(L"%S!", "a%n"), L"Entering function f a%n");
    EXPECT_EQ(firstLine(L"plain"), L"Entering function f plain");
    EXPECT_EQ(firstLine(L"%d", 7), L"Entering function f 7");
    EXPECT_EQ(firstLine(static_cast<wchar_t const*>(nullptr)), L"Entering function f");
}

TEST(EntryExitLogging, LetsACallbackThrowOnlyAtTheEntrance) {
    CapturedLog log;
    log.Debug(eLogFunction);
    ZPA_Logging::SetDebugCallback(ThrowFromCallback);
    EXPECT_THROW(EntryExitLogging(L"f", eLogFunction), std::runtime_error);
    ZPA_Logging::SetDebugCallback(nullptr);
    EXPECT_NO_THROW({
        EntryExitLogging const scope(L"f", eLogFunction);
        ZPA_Logging::SetDebugCallback(ThrowFromCallback);
    });
}

// The lock must be free again after a callback has thrown.
TEST(LogLock, IsReleasedByACallbackThatThrows) {
    CapturedLog const log;
    ZPA_Logging::SetErrorCallback(ThrowFromCallback);
    EXPECT_THROW(ZPA_Logging::LogError(nullptr, 0, 4, L"text"), std::runtime_error);
    std::thread([] { ZPA_Logging::LogWarning(nullptr, 0, eLogImage, L"from elsewhere"); }).join();
    EXPECT_EQ(log.Warnings().size(), 1U);
}

// Warnings need no flag.
TEST(LogLock, LetsACallbackLog) {
    CapturedLog const log;
    ZPA_Logging::SetErrorCallback([](wchar_t const*, int code, wchar_t const* message) {
        EXPECT_EQ(ZPA_Logging::LogWarning(L"x/a.cpp", 3, eLogRegions, L"%d: %s", code, message), 0);
        if (code > 0) ZPA_Logging::LogError(nullptr, 0, code - 1, L"%s again", message);
    });
    ZPA_Logging::LogError(nullptr, 0, 2, L"once");
    EXPECT_EQ(Messages(log.Warnings(), eLogRegions),
              (Lines{L"2: once", L"1: once again", L"0: once again again"}));
    for (LogLine const& line : log.Warnings()) EXPECT_EQ(line.location, L"a.cpp(3)");
}

int inside = 0;   // plain: the lock is all that guards it
int entries = 0;  // likewise
bool crowded = false;
void CountVisitors(wchar_t const*, int, wchar_t const* message) {
    if (++inside != 1) crowded = true;
    entries += static_cast<int>(std::wstring(message).size());
    --inside;
}

TEST(LogLock, AdmitsOneCallbackAtATime) {
    constexpr int kThreads = 6;
    constexpr int kLines = 200;
    CapturedLog log;
    log.Debug(eLogFunction);
    ZPA_Logging::EnableLog(eLogFunction, true);
    for (auto const set : {ZPA_Logging::SetErrorCallback, ZPA_Logging::SetWarningCallback,
                           ZPA_Logging::SetInfoCallback, ZPA_Logging::SetDebugCallback})
        set(CountVisitors);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([] {
            for (int line = 0; line < kLines; ++line) {
                ZPA_Logging::LogError(nullptr, 0, 4, L"%3d", line);
                ZPA_Logging::LogWarning(nullptr, 0, eLogFunction, L"%3d", line);
                ZPA_Logging::LogInfo(nullptr, 0, eLogFunction, L"%3d", line);
                ZPA_Logging::LogDebug(nullptr, 0, eLogFunction, L"%3d", line);
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_FALSE(crowded);
    EXPECT_EQ(entries, kThreads * kLines * 4 * 3);
}

// The seconds in "name took 0.123 seconds.", or -1.
double SecondsIn(std::wstring const& message, std::wstring const& name) {
    std::wsmatch seconds;
    std::wregex const form(name + L" took ([0-9.]+) seconds\\.");
    return std::regex_match(message, seconds, form) ? std::stod(seconds[1]) : -1;
}

TEST(CodeBlockTimer, ReportsWhereItsLevelSays) {
    CapturedLog log;
    { CodeBlockTimer const silent(eTimingDebug, L"off"); }
    { CodeBlockTimer const silent(eTimingInfo, L"off"); }
    log.Debug(eLogTiming);
    ZPA_Logging::EnableLog(eLogTiming, true);
    std::wstring const name(400, L'n');  // longer than its format
    { CodeBlockTimer const timer(eTimingDebug, L"%s %d%%", name.c_str(), 50); }
    { CodeBlockTimer const timer(eTimingInfo, L"info"); }
    { CodeBlockTimer const timer(static_cast<TIMING_LOGGING_LEVEL>(7), nullptr); }
    ASSERT_EQ(log.DebugLines().size(), 1U);
    ASSERT_EQ(log.InfoLines().size(), 2U);
    EXPECT_EQ(log.DebugLines()[0].category, eLogTiming);
    EXPECT_GE(SecondsIn(log.DebugLines()[0].message, name + L" 50%"), 0.0);
    EXPECT_GE(SecondsIn(log.InfoLines()[0].message, L"info"), 0.0);
    EXPECT_GE(SecondsIn(log.InfoLines()[1].message, L""), 0.0);
}

TEST(CodeBlockTimer, CountsProcessorTimeInSeconds) {
    CapturedLog log;
    log.Debug(eLogTiming);
    std::clock_t const ticks = CLOCKS_PER_SEC / 20;
    {
        CodeBlockTimer const first(eTimingDebug, L"busy");
        CodeBlockTimer const copy(first);
        for (std::clock_t const start = std::clock(); std::clock() - start < ticks;) {
        }
    }
    ASSERT_EQ(log.DebugLines().size(), 2U);
    for (LogLine const& line : log.DebugLines()) {
        EXPECT_GE(SecondsIn(line.message, L"busy"), 0.049);
        EXPECT_LT(SecondsIn(line.message, L"busy"), 5.0);
    }
}

}  // namespace
}  // namespace ZPA
