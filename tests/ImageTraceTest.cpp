// What images and buffers tell the log of calls and of memory.
#include <Basics/ImageBuffer.h>
#include <Basics/Logging.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cwchar>
#include <string>
#include <vector>

#include "support/CapturedLog.h"

namespace ZPA {
namespace {

using namespace Testing;

// Pointers as traces print them.
std::wstring Shown(void const* pointer) {
    wchar_t digits[2 * sizeof(void*) + 1];
    std::swprintf(digits, 2 * sizeof(void*) + 1, L"%0*llX", static_cast<int>(2 * sizeof(void*)),
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(pointer)));
    return digits;
}

std::vector<std::wstring> Messages(std::vector<LogLine> const& lines, int category) {
    std::vector<std::wstring> messages;
    for (LogLine const& line : lines)
        if (line.category == category) messages.push_back(line.message);
    return messages;
}
using Lines = std::vector<std::wstring>;

TEST(Trace, TellsCallsAndMemory) {
    CapturedLog log;
    log.Debug(eLogImage);
    log.Debug(eLogMemory);
    unsigned short foreign[4] = {};
    auto const memory = [](ISolvane_Object const& object, void const* elements, int size) {
        std::wstring const count = std::to_wstring(size);
        return Lines{L"allocating(object=" + Shown(&object) + L", pointer=" + Shown(elements) + L", size=" +
                         count + L")",
                     L"de-allocating(object=" + Shown(&object) + L",pointer=" + Shown(elements) + L",size=" +
                         count + L")"};
    };
    Lines expected;
    {
        ZPA_Image<unsigned short> traced(nullptr, 4, 2, 5, 12, 3, false, false);  // constructors are no calls
        expected = memory(traced, traced.GetBufferPtr(), 10);
        traced.SetImage(nullptr, 2, 5, 2, 8, 7, true, false);
        traced.SetImage(ImageAttributes(eByte, foreign, 1, 2, 2, 8, -1), false, true);
    }
    std::wstring const null = Shown(nullptr);
    EXPECT_EQ(Messages(log.DebugLines(), eLogImage),
              (Lines{L"SetImage called. buffer=" + null +
                         L",width=2,height=5,stride=2,bitsperpixel=8,pixelspacing=7,owner=1",
                     L"SetImage called. buffer=" + Shown(foreign) +
                         L",width=1,height=2,stride=2,bitsperpixel=8,pixelspacing=-1,owner=0"}));
    EXPECT_EQ(Messages(log.DebugLines(), eLogMemory), expected);
    log.Clear();
    {
        ZPA_Buffer<double> traced;
        traced.SetBuffer(BufferAttributes(eByte, nullptr, 3), false);
        expected = memory(traced, traced.GetBufferPtr(), 3);
    }
    EXPECT_EQ(Messages(log.DebugLines(), eLogImage),
              Lines{L"SetBuffer called. buffer=" + null + L",size=3,owner=0"});
    EXPECT_EQ(Messages(log.DebugLines(), eLogMemory), expected);
}

// Nothing leaks, and no destructor ends the process.
TEST(Trace, CannotDisturbOwnership) {
    CapturedLog log;
    log.Debug(eLogMemory);
    ZPA_Logging::SetDebugCallback(ThrowFromCallback);
    ZPA_Image<int> image(nullptr, 2, 2, 0, 32, 0, true, true);
    EXPECT_TRUE(image.IsOwner());
    image.SetImage(nullptr, 3, 2, 0, 32, 0, true, true);
    EXPECT_EQ(image.GetWidth(), 3);
}

}  // namespace
}  // namespace ZPA
