// What becomes of callers and their memory when an allocation fails.
#include <Basics/ImageBuffer.h>
#include <Basics/LinearAlgebra.h>
#include <Basics/Logging.h>
#include <gtest/gtest.h>

#include <cwchar>
#include <new>
#include <stdexcept>
#include <string>

#include "allocation/Allocations.h"
#include "support/CapturedLog.h"

namespace ZPA {
namespace {

using Testing::Allocations;
using Testing::CapturedLog;
using Testing::ThisThreadsAllocations;

// The log without memory of its own.
struct Heard {
    int errors = 0;
    int code = 0;
    wchar_t text[512] = {};
};
Heard heard;
void Hear(wchar_t const*, int code, wchar_t const* text) {
    ++heard.errors;
    heard.code = code;
    std::wcscpy(heard.text, text);
}

class Allocation : public testing::Test {
protected:
    Allocation() {
        heard = {};
        ZPA_Logging::SetErrorCallback(Hear);
    }
    // Runs the body while its allocation number `fails`, from 0, fails, and nothing may leak.
    template <typename Body> static void Failing(int fails, Body const& body) {
        heard = {};
        Allocations& own = ThisThreadsAllocations();
        long const before = own.blocks;
        own.untilFailure = fails;
        body();
        EXPECT_EQ(own.untilFailure, -1) << "there is no allocation " << fails;
        own.untilFailure = -1;
        EXPECT_EQ(own.blocks, before) << "leak when allocation " << fails << " fails";
    }
    CapturedLog log;
};

TEST_F(Allocation, OfACounterThatFailsDeletesTheObject) {
    Failing(1, [] { EXPECT_THROW(ZPA_Ptr<double>(new double[3]), std::bad_alloc); });
    Failing(1, [] { EXPECT_THROW(ZPA_Ptr<ISolvane_Object>(new ISolvane_Object), std::bad_alloc); });
}

// The exception's own text is the second allocation.
TEST_F(Allocation, OfPixelsOrElementsThatFailsThrows) {
    ZPA_Image<unsigned short> image;
    ZPA_Buffer<double> buffer;
    Failing(0,
            [&] { EXPECT_THROW(image.SetImage(nullptr, 3, 2, 5, 12, 0, true, true), std::runtime_error); });
    EXPECT_STREQ(heard.text, L"Memory allocation failed for 20 bytes.");
    EXPECT_EQ(heard.code, 1);
    EXPECT_EQ(image.GetBufferPtr(), nullptr);
    EXPECT_EQ(image.GetStride(), 5);
    EXPECT_FALSE(image.IsOwner());
    Failing(0, [&] { EXPECT_THROW(buffer.SetBuffer(nullptr, 3, true), std::runtime_error); });
    EXPECT_STREQ(heard.text, L"Memory allocation failed for 24 bytes.");
    EXPECT_EQ(buffer.GetBufferPtr(), nullptr);
    EXPECT_EQ(buffer.GetSize(), 3);
    EXPECT_FALSE(buffer.IsOwner());
}

TEST_F(Allocation, InAHistogramThatFailsLeavesItEmpty) {
    unsigned char pixel = 0;
    ZPA_Image<unsigned char> const image(&pixel, 1, 1, 1, 8, 0, false, false);
    // The buffer, its counter, its elements.
    for (int const fails : {0, 1, 2}) {
        Failing(fails, [&] {
            auto const histogram = image.GetHistogram();
            EXPECT_EQ(histogram.GetPointer() != nullptr, fails == 2);
            EXPECT_TRUE(fails != 2 || histogram->GetBufferPtr() == nullptr);
        });
        EXPECT_STREQ(heard.text, L"GetHistogram(); Unexpected exception.");
        EXPECT_EQ(heard.code, 999);
        EXPECT_EQ(heard.errors, fails == 2 ? 2 : 1);
    }
}

TEST_F(Allocation, OfAScopeThatFailsIsToldAndForgiven) {
    auto const ignore = [](wchar_t const*, int, wchar_t const*) {};
    log.Debug(eLogFunction);
    log.Debug(eLogTiming);
    ZPA_Logging::SetDebugCallback(ignore);
    Failing(0, [] { EntryExitLogging const scope(L"f", eLogFunction, L"%d", 5); });
    EXPECT_EQ(heard.text, L"EntryExitLogging constructor: Memory allocation failed for " +
                              std::to_wstring(3 * sizeof(wchar_t)) + L" bytes.");
    ZPA_Logging::SetErrorCallback(ignore);
    ZPA_Logging::SetDebugCallback(Hear);
    Failing(0, [] {
        EntryExitLogging const scope(L"f", eLogFunction, L"%d", 5);
        EXPECT_STREQ(heard.text, L"Entering function f");
    });
    Failing(0, [] { CodeBlockTimer const timer(eTimingDebug, L"%d", 5); });
    EXPECT_EQ(std::wstring(heard.text).find(L" took "), 0U);
}

TEST_F(Allocation, IsNotNeededForFortyUnknowns) {
    double matrix[41 * 41] = {}, x[41] = {};
    for (int const n : {40, 41}) {
        for (int i = 0; i < n; ++i) matrix[i * n + i] = 2;
        int const before = ThisThreadsAllocations().made;
        sollequ(matrix, n, x);
        EXPECT_EQ(ThisThreadsAllocations().made > before, n > 40);
    }
}

TEST_F(Allocation, IsNotNeededToLog) {
    log.Debug(eLogFunction);
    ZPA_Logging::SetDebugCallback(Hear);
    int const before = ThisThreadsAllocations().made;
    ZPA_Logging::LogError(L"folder/file.cpp", 1, 4, L"%s %S %d %p %5.3f", L"wide", "narrow", 1, &heard, 1.5);
    ZPA_Logging::LogDebug(L"folder/file.cpp", 1, eLogFunction, L"%600s", L"");
    { EntryExitLogging const scope(L"f", eLogFunction); }
    EXPECT_EQ(ThisThreadsAllocations().made, before);
    EXPECT_EQ(heard.errors, 4);
}

}  // namespace
}  // namespace ZPA
