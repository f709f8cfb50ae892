// Sums in extended precision on threads that Windows made, which begin with less.
#include <Basics/LinearFilters.h>
#include <Basics/Statistics.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace ZPA {
namespace {

unsigned short Control() {
    unsigned short control;
    __asm__ volatile("fnstcw %0" : "=m"(control));
    return control;
}

struct Measured {
    double mean = 0, filtered = 0, kernel[49] = {};
    unsigned short before = 0, after = 0;
};

DWORD WINAPI Measure(void* result) {
    auto& measured = *static_cast<Measured*>(result);
    // The small ones are lost one by one in 53 bits, and add up in 64.
    std::vector<double> pixels(1025, 1.0);
    pixels[0] = 9007199254740992;  // 2 to the power of 53
    ImageAttributes const image(eDouble, pixels.data(), 1025, 1, 1025, 64, 0);
    measured.before = Control();
    EXPECT_EQ(
        CalculateImageStats(image, nullptr, nullptr, nullptr, nullptr, nullptr, &measured.mean, nullptr),
        SOLVANE_OK);
    EXPECT_EQ(fspecial({eDouble, measured.kernel, 7, 7, 7, 64, 0}, "gaussian", 1.3), SOLVANE_OK);
    // The core alone, which no operation stands around.
    double rising[] = {1, 1, 9007199254740992};
    float ones[] = {1, 1, 1};
    BufferAttributes input(eDouble, rising, 3);
    EXPECT_EQ(template_FilterBufferSimple<double>(input, BufferAttributes(eSingle, ones, 3), &input),
              SOLVANE_OK);
    measured.filtered = rising[2];
    measured.after = Control();
    return 0;
}

TEST(ExtendedPrecision, HoldsOnEveryThread) {
    Measured here, there;
    Measure(&here);
    HANDLE const thread = CreateThread(nullptr, 0, Measure, &there, 0, nullptr);
    ASSERT_NE(thread, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    EXPECT_EQ(there.before, 0x27F);
    EXPECT_EQ(there.after, there.before);
    EXPECT_EQ(here.mean, 9007199254742016 / 1025.0);
    EXPECT_EQ(there.mean, here.mean);
    EXPECT_EQ(here.filtered, 9007199254740994);
    EXPECT_EQ(there.filtered, here.filtered);
    EXPECT_TRUE(std::equal(std::begin(here.kernel), std::end(here.kernel), there.kernel));
}

}  // namespace
}  // namespace ZPA
