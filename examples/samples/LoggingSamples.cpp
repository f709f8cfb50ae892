// The samples of docs/logging.md.
#include <Basics/ZPA.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "support/CapturedLog.h"

namespace {

// [sample]
void ToStandardError(wchar_t const* location, int code, wchar_t const* message) {
    std::fprintf(stderr, "%ls: error %d: %ls\n", location, code, message);
}

void TraceToStandardError(wchar_t const* location, int, wchar_t const* message) {
    std::fprintf(stderr, "%ls: %ls\n", location, message);
}
// [sample]

TEST(LoggingSamples, CallbacksAndFlags) {
    ZPA::Testing::CapturedLog const restores;
    testing::internal::CaptureStderr();
    // [sample]
    ZPA::ZPA_Logging::SetErrorCallback(ToStandardError);
    ZPA::ZPA_Logging::SetDebugCallback(TraceToStandardError);
    ZPA::ZPA_Logging::EnableDebug(ZPA::eLogFunction, true);  // entry and exit of every operation
    // [sample]
    EXPECT_EQ(ZPA::CopyPixels({}, nullptr), ZPA::SOLVANE_NULL_POINTER);
    ZPA::ZPA_Logging::EnableDebug(ZPA::eLogFunction, false);
    std::string const printed = testing::internal::GetCapturedStderr();
    EXPECT_NE(printed.find("Entering function ZPA::CopyPixels"), std::string::npos) << printed;
    EXPECT_NE(printed.find("): error 2: The destination image pointer was NULL.\n"), std::string::npos)
        << printed;
}

// [sample]
ZPA::SOLVANE_RETURNCODE Acquire(int frames) {
    ZPA::CodeBlockTimer const timer(ZPA::eTimingInfo, L"Acquire(%d)", frames);
    if (frames < 1)
        return ZPA::ZPA_Logging::LogError(ZPA_LOG_HERE, ZPA::SOLVANE_OUT_OF_RANGE, L"Acquire(): %d frames.",
                                          frames);
    // ...
    return ZPA::SOLVANE_OK;
}
// [sample]

TEST(LoggingSamples, LinesOfOnesOwn) {
    ZPA::Testing::CapturedLog const log;
    EXPECT_EQ(Acquire(1), ZPA::SOLVANE_OK);
    EXPECT_EQ(Acquire(-1), ZPA::SOLVANE_OUT_OF_RANGE);
    EXPECT_EQ(log.Text(), L"Acquire(): -1 frames.");
}

}  // namespace
