// Raw files and PGM pictures as they are written: their names, their bytes, and what is refused.
#include <Basics/RawFile.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <functional>

#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/RawFiles.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;
namespace fs = std::filesystem;

constexpr auto kFull = "/dev/full";  // opens, and takes nothing

TEST_F(RawFile, DumpsBearTheirDimensionsInTheirNames) {
    unsigned short image[6] = {1, 2, 3, 0x1234, 65535, 0};
    unsigned char mask[6] = {0, 1, 255, 0, 9, 10};
    struct Case {
        int index, width, height;
        char const *imageName, *maskName;
    };
    std::string longName;
    while (longName.size() < 1500) longName += "./";
    longName += "a";
    Case const cases[] = {
        {-1, 3, 2, "a.3.2.raw", "a.3.2.mask"},
        {3, 2, 3, "a3.2.3.raw", "a.3.2.3.mask"},
        {0, 6, 1, "a0.6.1.raw", "a.0.6.1.mask"},
        {-2, 1, 1, "a-2.1.1.raw", "a.-2.1.1.mask"},
        {INT_MIN, 2, 1, "a-2147483648.2.1.raw", "a.-2147483648.2.1.mask"},
        {7, 0, 5, "a7.0.5.raw", "a.7.0.5.mask"},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.imageName);
        CapturedLog log;
        log.Debug(eLogFunction);
        ASSERT_EQ(DumpRawImage(image, each.width, each.height, each.index, Path("a").c_str()), 0);
        EXPECT_EQ(log.Scopes(), L"DumpRawImage{dumpRaw{}}");
        EXPECT_EQ(log.DebugLines()[3].message, L"image dumped to " + Wide(Path(each.imageName)));
        log.Clear();
        ASSERT_EQ(DumpRawMask(mask, each.width, each.height, each.index, Path(longName).c_str()), 0);
        ASSERT_EQ(log.DebugLines().size(), 5u);
        EXPECT_EQ(log.DebugLines()[3].message.substr(0, 15), L"mask dumped to ");

        auto const pixels = static_cast<std::size_t>(each.width * each.height);
        EXPECT_EQ(folder.Read(each.imageName), std::string(reinterpret_cast<char*>(image), 2 * pixels));
        EXPECT_EQ(folder.Read(each.maskName), std::string(reinterpret_cast<char*>(mask), pixels));
    }
    EXPECT_EQ(folder.Names().size(), 2 * std::size(cases));
}

TEST_F(RawFile, WritersRefuse) {
    unsigned short const image[4] = {};
    unsigned char const mask[4] = {};
    std::string const path = Path("a"), missing = Path("no/a"), file = Write("kept", 10);
    constexpr auto kNull = L"dumpRaw() - NULL input pointer.";
    constexpr auto kBytes = L"dumpRaw() - Invalid number of bytes.";
    struct Case {
        char const* name;
        std::function<int()> call;
        int code;
        std::wstring error;
        std::wstring debug;  // the only line besides those of the scopes
    };
    Case const cases[] = {
        {"data", [&] { return dumpRaw(nullptr, 4, path.c_str()); }, 2, kNull, L""},
        {"path", [&] { return dumpRaw(image, 4, nullptr); }, 2, kNull, L""},
        {"negative", [&] { return dumpRaw(image, -1, file.c_str()); }, 3, kBytes, L""},
        {"missing folder", [&] { return dumpRaw(image, 4, missing.c_str()); }, 999, L"",
         L"dumpRaw() - Cannot open " + Wide(missing) + L" for writing."},
        {"image name", [&] { return DumpRawImage(image, 2, 2, 0, nullptr); }, 2,
         L"DumpRawImage() - NULL input pointer.", L""},
        {"image sizes", [&] { return DumpRawImage(image, -2, -2, 0, path.c_str()); }, 3, kBytes, L""},
        {"image folder", [&] { return DumpRawImage(image, 2, 2, -1, missing.c_str()); }, 999, L"",
         L"dumpRaw() - Cannot open " + Wide(missing) + L".2.2.raw for writing."},
        {"mask data", [&] { return DumpRawMask(nullptr, 2, 2, 0, path.c_str()); }, 2,
         L"DumpRawMask() - NULL input pointer.", L""},
        {"mask sizes", [&] { return DumpRawMask(mask, -2, -2, 0, path.c_str()); }, 3, kBytes, L""},
        {"picture data", [&] { return dumpPgm8bit(nullptr, 2, 2, path.c_str()); }, 4, L"",
         L"template_dumpPgm8bit():  Invalid input. imgPtr=NULL, w=2, h=2, filePtr=OK."},
        {"picture path", [&] { return dumpPgm8bit_uchar(mask, 0, 2, nullptr); }, 4, L"",
         L"template_dumpPgm8bit():  Invalid input. imgPtr=OK, w=0, h=2, filePtr=NULL."},
        {"picture height", [&] { return template_dumpPgm8bit(image, 2, -1, file.c_str()); }, 4, L"",
         L"template_dumpPgm8bit():  Invalid input. imgPtr=OK, w=2, h=-1, filePtr=OK."},
        {"picture folder", [&] { return dumpPgm8bit(image, 2, 2, missing.c_str()); }, 999, L"",
         L"template_dumpPgm8bit(): Error opening " + Wide(missing) + L" for writing."},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        CapturedLog log;
        log.Debug(eLogFunction);
        EXPECT_EQ(each.call(), each.code);
        EXPECT_EQ(log.Text(), each.error);
        EXPECT_EQ(log.Code(), each.error.empty() ? 0 : each.code);
        std::wstring debug;
        for (LogLine const& line : log.DebugLines())
            if (line.message.find(L"ing function ") == line.message.npos) debug += line.message;
        EXPECT_EQ(debug, each.debug);
    }
    EXPECT_EQ(folder.Names().size(), 1u);
    EXPECT_EQ(Content(file).size(), 10u);
}

TEST_F(RawFile, ShortWritesAreFailures) {
    if (!fs::exists(kFull)) GTEST_SKIP();
    std::vector<unsigned char> const data(1 << 20);
    for (int const bytes : {1, 1 << 20}) {  // fails when it is closed, fails when it is written
        CapturedLog const log;
        EXPECT_EQ(dumpRaw(data.data(), bytes, kFull), 999);
        EXPECT_EQ(log.Text(), L"dumpRaw() - Error in writing /dev/full.");
        EXPECT_EQ(dumpPgm8bit_uchar(data.data(), bytes, 1, kFull), 999);
        EXPECT_EQ(log.Text(), L"template_dumpPgm8bit(): Error in writing /dev/full.");
    }
}

template <typename T> std::string Picture(std::vector<T> const& pixels, std::string const& path) {
    EXPECT_EQ(template_dumpPgm8bit(pixels.data(), static_cast<int>(pixels.size()), 1, path.c_str()), 0);
    std::string const content = Content(path);
    std::string const header = "P5\n" + std::to_string(pixels.size()) + " 1\n255\n";
    EXPECT_EQ(content.substr(0, header.size()), header);
    return content.substr(std::min(header.size(), content.size()));
}

TEST_F(RawFile, PicturesStretchToEightBits) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    constexpr double kLargest = std::numeric_limits<double>::max();
    struct Case {
        std::vector<double> pixels;
        std::vector<int> bytes;
    };
    Case const cases[] = {
        {{7}, {0}},
        {{7, 7, 7}, {0, 0, 0}},
        {{510, 0, 1, 3, 5, 507}, {255, 0, 0, 2, 2, 254}},  // halves go to the even number
        {{0, kNan, 255, 100}, {0, 0, 255, 100}},
        {{kNan, 0, 255}, {0, 0, 0}},
        {{0, kInfinite, 5}, {0, 0, 0}},
        {{0, -kInfinite, 5}, {0, 0, 0}},
        {{-kLargest, 0, kLargest}, {0, 0, 0}},  // the range passes what a double holds
        {{0, 5e-324}, {0, 0}},                  // the scale passes what a double holds
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(Picture(cases[i].pixels, Path("a.pgm")),
                  std::string(cases[i].bytes.begin(), cases[i].bytes.end()));
    }
    EXPECT_EQ(Picture(std::vector<unsigned short>{65535, 0, 32768, 257}, Path("a.pgm")),
              std::string("\xFF\0\x80\x01", 4));
    EXPECT_EQ(Picture(std::vector<unsigned char>{9, 10, 11}, Path("a.pgm")), std::string("\0\x80\xFF", 3));
}

TEST_F(RawFile, PicturesFindTheirExtremesAnywhere) {
    constexpr std::size_t kSize = 19;
    for (std::size_t place = 0; place < kSize; ++place) {
        std::vector<double> pixels(kSize, 5.0);
        std::string expected(kSize, '\0');
        pixels[place] = 9;
        expected[place] = '\xFF';
        // The first pixel decides about the whole picture.
        if (place + 1 < kSize) pixels[place + 1] = std::numeric_limits<double>::quiet_NaN();
        ForEachSimdTarget([&] { EXPECT_EQ(Picture(pixels, Path("a.pgm")), expected) << place; });
        for (double& pixel : pixels) pixel = -pixel;
        for (std::size_t i = 0; i < kSize; ++i) expected[i] = pixels[i] == -5 ? '\xFF' : '\0';
        ForEachSimdTarget([&] { EXPECT_EQ(Picture(pixels, Path("a.pgm")), expected) << place; });
    }
}

TEST_F(RawFile, LargePicturesAreWhole) {
    auto const expectWhole = [&](auto const& pixels) {
        auto const range = std::minmax_element(pixels.begin(), pixels.end());
        double const black = *range.first, scale = 255.0 / (*range.second - black);
        std::string expected;
        for (auto const pixel : pixels) expected += static_cast<char>(std::lrint((pixel - black) * scale));
        EXPECT_TRUE(Picture(pixels, Path("a.pgm")) == expected);
    };
    auto const image = RandomImage<unsigned short>({257, 201, 257}, 3);  // some passes through any buffer
    std::vector<unsigned short> const words(image.Pixels(), image.Pixels() + image.Size());
    std::vector<unsigned char> bytes;
    for (unsigned short const word : words) bytes.push_back(static_cast<unsigned char>(7 + word % 230));
    ForEachSimdTarget([&] {
        expectWhole(words);
        expectWhole(bytes);
        expectWhole(std::vector<double>(words.begin(), words.end()));
    });
}

}  // namespace
}  // namespace ZPA
