// strel: sizes, pictures and centres of the shapes; what is refused, and what the log sees.
#include <Basics/StructuringElement.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <limits>
#include <string>

#include "support/CapturedLog.h"
#include "support/Images.h"

namespace ZPA {
namespace {

using namespace Testing;

double const kFlat = 0, kUpright = 90, kSlanted = 45, kLow = 30, kSteep = -60;
double const kSteps[] = {1.5, -2.0};
double const kNoSteps[] = {0, 0};

struct Shaped {
    char const* shape;
    int param1;
    StrelParam param2;
    int param3;
    int height, width;
    double column, row;   // of the centre; -1: left alone
    std::string picture;  // rows with a blank between them
};

constexpr double kKept = -1;
Shaped const kShaped[] = {
    {"square", 3, 0, 0, 3, 3, 2, 2, "111 111 111"},
    {"square", 4, 0, 9, 4, 4, 2, 2, "1111 1111 1111 1111"},
    {"rectangle", 2, 5, 0, 2, 5, 3, 1, "11111 11111"},
    {"line", 5, &kFlat, 0, 1, 7, 3, 0, "0000001"},
    {"line", 5, &kUpright, 0, 7, 1, 0, 3, "0 0 0 0 0 0 1"},
    {"line", 6, &kUpright, 0, 7, 1, 0, 3, "0 0 0 0 0 0 1"},
    {"line", 1, &kSlanted, 0, 1, 1, 0, 0, "1"},
    {"line", 9, &kLow, 0, 5, 9, 4, 2, "000000000 000000000 000000000 000000000 000000001"},
    {"line", 9, &kSteep, 0, 7, 7, 3, 3, "0000000 0000000 0000000 0000000 0000000 0000000 0000001"},
    {"periodicline", 2, kSteps, 0, 7, 9, 4, 3,
     "000000001 000000000 000000100 000010000 001000000 000000000 100000000"},
    {"periodicline", 0, kSteps, 0, 1, 1, 0, 0, "1"},
    {"periodicline", 3, kNoSteps, 0, 1, 1, 0, 0, "1"},
    {"disk", 1, 0, 1, 3, 3, kKept, kKept, "010 111 010"},
    {"disk", 6, 0, 0, 11, 11, kKept, kKept,
     "00111111100 01111111110 11111111111 11111111111 11111111111 11111111111 11111111111 11111111111 "
     "11111111111 01111111110 00111111100"},
};

std::string PictureOf(TestImage<unsigned char> const& mask) {
    std::string picture;
    for (int y = 0; y < mask.shape.height; ++y) {
        if (y > 0) picture += ' ';
        for (int x = 0; x < mask.shape.width; ++x) picture += static_cast<char>('0' + mask.At(x, y));
    }
    return picture;
}

TEST(StructuringElement, HasItsSizePictureAndCentre) {
    for (Shaped const& each : kShaped) {
        SCOPED_TRACE(testing::Message() << each.shape << " " << each.param1 << ", " << each.param3);
        int height = 0, width = 0;
        EXPECT_EQ(strel_GetBufferSize(each.shape, each.param1, each.param2, each.param3, &height, &width),
                  SOLVANE_OK);
        EXPECT_EQ(height, each.height);
        EXPECT_EQ(width, each.width);
        for (int const padding : {0, 4}) {
            TestImage<unsigned char> mask({width, height, width + padding});
            auto const before = mask;
            double center[] = {kKept, kKept};
            EXPECT_EQ(strel(mask.Attributes(), center, each.shape, each.param1, each.param2, each.param3),
                      SOLVANE_OK);
            EXPECT_EQ(PictureOf(mask), each.picture);
            EXPECT_EQ(center[0], each.column);
            EXPECT_EQ(center[1], each.row);
            // Padding: the line clears the whole block, all others leave it.
            for (int x = width; x < width + padding; ++x)
                EXPECT_EQ(mask.At(x, height - 1), each.shape == std::string("line") ? 0 : before.At(x, 0));
            mask.shape.width += padding;
            EXPECT_TRUE(std::equal(mask.memory.end() - 64, mask.memory.end(), before.memory.end() - 64));
        }
    }
}

TEST(StructuringElement, BlocksAreOfTheMasksOwnIntegers) {
    TestImage<int> wide({2, 3, 3});
    TestImage<short> narrow({2, 2, 2});
    double center[2];
    EXPECT_EQ(strel(wide.Attributes(), center, "rectangle", 3, 2, 0), SOLVANE_OK);
    EXPECT_EQ(strel(narrow.Attributes(), center, "square", 2, 0, 0), SOLVANE_OK);
    for (int y = 0; y < 3; ++y) EXPECT_TRUE(wide.At(0, y) == 1 && wide.At(1, y) == 1 && wide.At(2, y) != 1);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(narrow.Pixels()[i], 1);
}

TEST(StructuringElement, WideDiskIsOneBlockOfRadiusSix) {
    TestImage<unsigned short> mask({3, 3, 60});
    auto const before = mask;
    EXPECT_EQ(strel(mask.Attributes(), nullptr, "disk", 1, 0, 1), SOLVANE_OK);
    std::string picture = std::end(kShaped)[-1].picture;
    picture.erase(std::remove(picture.begin(), picture.end(), ' '), picture.end());
    for (std::size_t i = 0; i < picture.size(); ++i) EXPECT_EQ(mask.Pixels()[i], picture[i] - '0');
    EXPECT_EQ(mask.Pixels()[picture.size()], before.Pixels()[picture.size()]);
    TestImage<float> other({3, 3, 3});
    auto const untouched = other;
    EXPECT_EQ(strel(other.Attributes(), nullptr, "disk", 1, 0, 1), SOLVANE_OK);
    EXPECT_TRUE(other == untouched);
}

TEST(StructuringElement, SizesThatNoMaskCanHave) {
    int height = 7, width = 7;
    EXPECT_EQ(strel_GetBufferSize("line", 5, &kSlanted, 0, &height, &width), SOLVANE_OK);
    EXPECT_EQ(height, -1);
    EXPECT_EQ(width, 5);
    EXPECT_EQ(strel_GetBufferSize("diamond", -3, 8, 0, &height, &width), SOLVANE_OK);
    EXPECT_EQ(height, -3);
    EXPECT_EQ(width, 8);
    EXPECT_EQ(strel_GetBufferSize("disk", 2, 0, 0, &height, &width), SOLVANE_OK);
    EXPECT_EQ(height, 5);
    CapturedLog const log;
    for (char const* shape : {"arbitrary", "octagon", "pair", "ball", "Square", ""})
        EXPECT_EQ(strel_GetBufferSize(shape, 3, 3, 0, nullptr, nullptr), SOLVANE_UNSUPPORTED_TYPE);
    EXPECT_TRUE(log.Errors().empty());
    EXPECT_EQ(strel_GetBufferSize("disk", 7, 0, 0, &height, &width), SOLVANE_OK);
    EXPECT_EQ(height, 5);
    EXPECT_EQ(log.Code(), SOLVANE_UNSUPPORTED_TYPE);
    EXPECT_EQ(log.Text(), L"DiskStrel_GetBufferSize::radius = 7 is not supported.");
    EXPECT_EQ(strel_GetBufferSize("line", 3, nullptr, 0, &height, &width), SOLVANE_NULL_POINTER);
    EXPECT_EQ(log.Text(), L"strel_GetBufferSize: Null pointer.");
    for (LogLine const& error : log.Errors()) EXPECT_EQ(error.location.find(L"strel.cpp("), 0u);
}

struct Refusal {
    char const* shape;
    int param1;
    StrelParam param2;
    int param3;
    ImageAttributes se;
    int code;
    std::wstring message;
};

TEST(StructuringElement, RefusesAndLeavesTheMaskAlone) {
    unsigned char pixels[256] = {};
    double const nan = std::numeric_limits<double>::quiet_NaN(), far[] = {1e18, 0};
    auto const mask = [&](int width, int height, int stride = 16, eTypeCode type = eByte) {
        return ImageAttributes(type, pixels, width, height, stride, 8, 0);
    };
    auto const low = [](double const* angle) {
        wchar_t text[9];
        std::swprintf(text, 9, L"%x", static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(angle)));
        return std::wstring(text);
    };
    auto const line = [&](int length, double const* angle, wchar_t const* what) {
        return L"MakeLineStrel(int len = " + std::to_wstring(length) + L", double theta_d = " + low(angle) +
               L") " + what;
    };
    std::wstring const null = L"strel: Null pointer.", rows = L"The mask's rows overlap.",
                       disk = L"MakeDiskStrel::se invalid", periodic = L"MakePeriodicLineStrel::se invalid";
    Refusal const refusals[] = {
        {"square", 0, 0, 0, mask(0, 0), 4, L"MakeSquareStrel::param1 = 0 is not supported."},
        {"square", 3, 0, 0, mask(3, 4), 4, L"MakeSquareStrel::param1 = 3 is not supported."},
        {"square", 3, 0, 0, {eSingle, nullptr, 3, 3, 2, 8, 0}, 2, null},
        {"square", 3, 0, 0, mask(3, 3, 2, eSingle), 7, rows},
        {"square", 3, 0, 0, mask(3, 3, 3, eSingle), 6, L"strel: The mask's type is not supported."},
        {"rectangle", 3, 4, 0, mask(3, 4), 4, L"MakeSquareStrel::param1,param2 = 3,4 is not supported."},
        {"rectangle", 3, -4, 0, mask(-4, 3), 4, L"MakeSquareStrel::param1,param2 = 3,-4 is not supported."},
        {"line", 0, &kFlat, 0, mask(1, 1), 4, line(0, &kFlat, L"error")},
        {"line", 5, nullptr, 0, mask(7, 1), 2, null},
        {"line", 5, &kFlat, 0, mask(5, 1), 4, line(5, &kFlat, L"buffer invalid")},
        {"line", 5, &kSlanted, 0, mask(5, -1), 4, line(5, &kSlanted, L"buffer invalid")},
        {"line", 5, &nan, 0, mask(3, 1), 4, line(5, &nan, L"buffer invalid")},
        {"line", 9, &kSteep, 0, mask(7, 7, -7), 7, rows},
        {"periodicline", 2, kSteps, 0, mask(9, 6), 4, periodic},
        {"periodicline", 2, far, 0, mask(9, 1), 4, periodic},
        {"periodicline", 2, kSteps, 0, mask(9, 7, 8), 7, rows},
        {"periodicline", -1, kSteps, 0, mask(0, 0), 4, periodic},
        {"disk", 2, 0, 0, mask(5, 5), 4, disk},
        {"disk", 2, 0, 0, mask(3, 3), 4, disk},  // as large as the parameters ask for, not as the pattern
        {"disk", 1, 0, 1, {eByte, nullptr, 3, 3, 3, 8, 0}, 4, disk},
        {"disk", INT_MAX, 0, INT_MAX, mask(3, 3), 4, disk},
        {"disk", 7, 0, 0, mask(13, 13), 6, L""},
        {"disk", 4, 0, 0, mask(7, 7, 6), 7, rows},
        {"diamond", 3, 3, 0, mask(3, 3), 6, L""},
        {"LINE", 5, &kFlat, 0, mask(7, 1), 6, L""},
    };
    for (Refusal const& each : refusals) {
        SCOPED_TRACE(testing::Message() << each.shape << " " << each.param1 << " in " << each.se.width
                                        << " x " << each.se.height);
        double center[] = {kKept, kKept};
        auto const call = [&] {
            return strel(each.se, center, each.shape, each.param1, each.param2, each.param3);
        };
        ExpectRefusal(call, each.code, each.message);
        EXPECT_EQ(center[0], kKept);
        EXPECT_EQ(center[1], kKept);
    }
    for (unsigned char const pixel : pixels) EXPECT_EQ(pixel, 0);
    EXPECT_EQ(strel(mask(3, 3), nullptr, "square", 3, 0, 0), SOLVANE_NULL_POINTER);
    EXPECT_EQ(strel(mask(3, 3), nullptr, nullptr, 3, 0, 0), SOLVANE_NULL_POINTER);
}

TEST(StructuringElement, ShowsItsStepsInTheLog) {
    TestImage<unsigned char> mask({1, 7, 1});
    double center[2];
    EXPECT_EQ(ScopesOf([&] { (void)strel(mask.Attributes(), center, "line", 5, &kUpright, 0); }),
              L"strel{MakeLineStrel{intline{flipud{}flipud{}}}}");
    EXPECT_EQ(ScopesOf([&] { (void)strel(mask.Attributes(), center, "pair", 5, 0, 0); }),
              L"strel{MakePairStrel{}}");
}

}  // namespace
}  // namespace ZPA
