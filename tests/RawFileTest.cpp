// Raw files and PGM pictures: what is written where, what is read back, and what is refused.
#include <Basics/RawFile.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <stdexcept>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/TemporaryFolder.h"

namespace ZPA {
namespace {

using namespace Testing;
namespace fs = std::filesystem;

constexpr auto kFull = "/dev/full";  // opens, and takes nothing

std::wstring Wide(std::string const& text) { return {text.begin(), text.end()}; }

std::string Content(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class RawFile : public testing::Test {
protected:
    std::string Path(std::string const& name) const { return folder.Path(name); }
    std::string Write(std::string const& name, std::size_t bytes) const {
        std::string content;
        for (std::size_t i = 0; i < bytes; ++i) content += static_cast<char>(i * 7);
        return folder.Write(name, content);
    }
    TemporaryFolder folder;
};

struct Free {
    void operator()(void* pixels) const { FreePixels(pixels); }
};
using Block = std::unique_ptr<void, Free>;

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
        EXPECT_EQ(Picture(pixels, Path("a.pgm")), expected) << place;
        for (double& pixel : pixels) pixel = -pixel;
        for (std::size_t i = 0; i < kSize; ++i) expected[i] = pixels[i] == -5 ? '\xFF' : '\0';
        EXPECT_EQ(Picture(pixels, Path("a.pgm")), expected) << place;
    }
}

TEST_F(RawFile, LargePicturesAreWhole) {
    auto const image = RandomImage<unsigned short>({257, 201, 257}, 3);  // some passes through any buffer
    auto const range = std::minmax_element(image.Pixels(), image.Pixels() + image.Size());
    double const scale = 255.0 / (*range.second - *range.first);
    std::string expected = "P5\n257 201\n255\n";
    for (std::size_t i = 0; i < image.Size(); ++i)
        expected += static_cast<char>(std::lrint((image.Pixels()[i] - *range.first) * scale));
    ASSERT_EQ(dumpPgm8bit(image.Pixels(), 257, 201, Path("a.pgm").c_str()), 0);
    EXPECT_EQ(folder.Read("a.pgm"), expected);

    std::vector<double> const wide(image.Pixels(), image.Pixels() + image.Size());
    ASSERT_EQ(dumpPgm8bit_double(wide.data(), 257, 201, Path("b.pgm").c_str()), 0);
    EXPECT_EQ(folder.Read("b.pgm"), expected);
}

TEST_F(RawFile, ReadsOnlyWhatMatchesTheFile) {
    constexpr auto kSize = L"size";
    constexpr auto kBytes = L"ReadRaw: Unable to read required number of bytes.";
    struct Case {
        char const* name;
        std::size_t length;
        int type, width, height, stride;
        bool countInBytes;
        int code;
        std::wstring message;  // kSize stands for the message with the path
    };
    Case const cases[] = {
        {"bytes", 6, eByte, 3, 2, 3, false, 0, L""},
        {"signed bytes", 6, eSByte, 2, 3, 2, false, 0, L""},
        {"16 bits", 12, eUInt16, 3, 2, 3, false, 0, L""},
        {"32 bits", 24, eInt32, 3, 2, 3, false, 0, L""},
        {"doubles", 48, eDouble, 3, 2, 3, false, 0, L""},
        {"counted in bytes", 6, eDouble, 3, 2, 3, true, 0, L""},
        {"longer than a buffer", 300000, eUInt16, 300, 500, 300, false, 0, L""},
        {"whole file", 17, eByte, 5, 1, 0, false, 0, L""},
        {"whole file in bytes", 17, eUInt16, -5, 1, 0, true, 0, L""},
        {"whole file twice", 17, eByte, 17, 2, 0, false, 5, kSize},
        {"whole file of wide elements", 16, eUInt16, 8, 1, 0, false, 5, kSize},
        {"whole file, most rows", 17, eByte, 17, INT_MAX, 0, false, 5, kSize},
        {"nothing", 0, eUInt16, 3, 0, 3, false, 0, L""},
        {"short", 5, eByte, 3, 2, 3, false, 5, kSize},
        {"long", 7, eByte, 3, 2, 3, false, 5, kSize},
        {"wider stride", 8, eByte, 3, 2, 4, false, 5, kBytes},
        {"wider stride of a file without padding", 6, eByte, 3, 2, 4, false, 5, kSize},
        {"narrower stride", 4, eByte, 3, 2, 2, false, 5, kBytes},
        {"negative stride", 6, eByte, 3, 2, -3, false, 5, kSize},
        {"negative stride and height", 6, eByte, 3, -2, -3, false, 5, kBytes},
        {"negative width", 6, eByte, -3, 2, 3, false, 5, kBytes},
        {"negative height", 6, eByte, 3, -2, 3, false, 5, kSize},
        {"product of 32 bits", 65536, eByte, 65537, 65536, 65537, false, 5, kSize},
        {"product of 64 bits", 16, eDouble, INT_MAX, INT_MAX, INT_MAX, false, 5, kSize},
        {"no type", 6, eUnknown, 3, 2, 3, false, 4, L"ReadRaw: Unsupported eType 0."},
        {"unsigned 32 bits", 24, eUInt32, 3, 2, 3, false, 4, L"ReadRaw: Unsupported eType 10."},
        {"floats in bytes", 6, eSingle, 3, 2, 3, true, 4, L"ReadRaw: Unsupported eType 13."},
        {"negative type", 6, -1, 3, 2, 3, false, 4, L"ReadRaw: Unsupported eType -1."},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        std::string const path = Write("a", each.length);
        void* data = this;
        auto const call = [&] {
            return ReadRaw(path.c_str(), &data, static_cast<eTypeCode>(each.type), each.width, each.height,
                           each.stride, each.countInBytes);
        };
        ExpectRefusal(call, each.code,
                      each.message != kSize ? each.message
                                            : L"ReadRaw: File " + Wide(path) +
                                                  L" does not exist, or does not match requested size.");
        Block const block(data);
        ASSERT_EQ(data != nullptr, each.code == 0);
        if (data) {
            EXPECT_EQ(Content(path), std::string(static_cast<char*>(data), each.length));
        }
    }
}

TEST_F(RawFile, ReadsRegularFilesOnly) {
    std::vector<std::string> paths = {Path("missing"), Path("."), Path("no/folder"), ""};
#if !defined(_WIN32)
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    paths.push_back(Path("pipe"));
    paths.push_back("/dev/zero");
#endif
    for (std::string const& path : paths) {
        for (int const stride : {0, 1}) {
            SCOPED_TRACE(path);
            void* data = this;
            EXPECT_REFUSAL(
                5, L"ReadRaw: File " + Wide(path) + L" does not exist, or does not match requested size.",
                ReadRaw(path.c_str(), &data, eByte, 1, 1, stride, false));
            EXPECT_EQ(data, nullptr);
        }
    }
}

TEST_F(RawFile, ReadersRefuseNullPointers) {
    std::string const file = Write("a.2.2.mask", 4);
    char const* const path = file.c_str();
    void* data = this;
    ImageAttributes image;
    BufferAttributes buffer;
    EXPECT_REFUSAL(2, L"ReadRaw: Null pointer.", ReadRaw(nullptr, &data, eUnknown, 1, 1, 1, false));
    EXPECT_EQ(data, nullptr);
    EXPECT_REFUSAL(2, L"ReadRaw: Null pointer.", ReadRaw(path, nullptr, eByte, 2, 2, 2, false));
    EXPECT_REFUSAL(2, L"ReadRawFile: Null pointer.", ReadRawFile(nullptr, &image));
    EXPECT_REFUSAL(2, L"ReadRawFile: Null pointer.", ReadRawFile(path, nullptr));
    EXPECT_REFUSAL(2, L"ReadRawBuffer: Null pointer.", ReadRawBuffer(nullptr, &buffer));
    EXPECT_REFUSAL(2, L"ReadRawBuffer: Null pointer.", ReadRawBuffer(path, nullptr));
}

TEST_F(RawFile, ImagesTakeTheirShapeFromTheName) {
    ImageAttributes const given(eInt32, this, 3, 2, 3, 12, 7);
    struct Case {
        std::string name;
        std::size_t length;
        int code, type, width, height;
    };
    // The longest name that still tells something, and one more.
    std::string const longest = "." + std::string(240, 'a') + ".2.1.raw";
    std::string const stem259 = "a.2.1." + std::string(253, '0');
    Case const cases[] = {
        {"scan.100.50.raw", 10000, 0, eUInt16, 100, 50},
        {"scan.4.3.mask", 12, 0, eByte, 4, 3},
        {"scan.4.3.RaW", 24, 0, eUInt16, 4, 3},
        {"scan.4.3.Mask", 12, 0, eByte, 4, 3},
        {"scan.4.3.i32", 48, 0, eInt32, 4, 3},       // another extension leaves the type
        {"scan.4.3.7.8.raw", 24, 0, eUInt16, 4, 3},  // more numbers are ignored
        {"scan.4x.+3y.raw", 24, 0, eUInt16, 4, 3},
        {longest, 4, 0, eUInt16, 2, 1},
        {"r.6.4", 24, 0, eInt32, 3, 2},  // its extension is ".4"
        {"scan.4.raw", 24, 0, eInt32, 3, 2},
        {"scan.0.3.raw", 24, 0, eInt32, 3, 2},
        {"scan.4.0.raw", 24, 0, eInt32, 3, 2},
        {"scan", 24, 0, eInt32, 3, 2},
        {"scan.4.3.bin", 24, 5, eInt32, 4, 3},
        {"short.4.3.raw", 23, 5, eUInt16, 4, 3},
        {"scan.-4.3.raw", 24, 5, eUInt16, -4, 3},
        {"scan.99999999999999999999.3.raw", 24, 5, eUInt16, INT_MAX, 3},
        {"scan.-99999999999999999999.3.raw", 24, 5, eUInt16, INT_MIN, 3},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        std::string const path = Write(each.name, each.length);
        ImageAttributes image = given;
        EXPECT_EQ(ReadRawFile(path.c_str(), &image), each.code);
        EXPECT_EQ(Description(image), Description({static_cast<eTypeCode>(each.type), nullptr, each.width,
                                                   each.height, each.width, 12, 7}));
        ASSERT_EQ(image.buffer == this, each.code != 0);
        if (each.code != 0) continue;
        Block const block(image.buffer);
        EXPECT_EQ(Content(path), std::string(static_cast<char*>(image.buffer), each.length));
    }

    // Names beyond what a file system holds can only be seen to parse or not.
    struct {
        std::string name;
        int width;
    } const unopened[] = {
        {stem259 + ".raw", 2},
        {stem259 + "0.raw", 3},
        {"a.2.1." + std::string(254, 'x'), 2},
        {"a.2.1." + std::string(255, 'x'), 3},
        {"a.2.1." + std::string(100000, 'x') + ".raw", 3},
    };
    for (auto const& each : unopened) {
        ImageAttributes image = given;
        EXPECT_EQ(ReadRawFile(each.name.c_str(), &image), 5);
        EXPECT_EQ(image.width, each.width) << each.name.size();
    }
}

TEST_F(RawFile, BuffersTakeTheirLengthInBytesFromTheName) {
    struct Case {
        char const* name;
        std::size_t length;
        int code, type, size;
    };
    Case const cases[] = {
        {"curve.64.raw", 64, 0, eUInt16, 64},   {"curve.64.32.RAW", 64, 0, eUInt16, 64},
        {"curve.64.mask", 64, 0, eDouble, 64},  {"curve.raw", 40, 0, eDouble, 40},
        {"curve.0.raw", 40, 0, eDouble, 40},    {"curve.32.raw", 64, 5, eUInt16, 32},
        {"curve.-64.raw", 64, 5, eUInt16, -64},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        std::string const path = Write(each.name, each.length);
        BufferAttributes buffer(eDouble, this, 40);
        EXPECT_EQ(ReadRawBuffer(path.c_str(), &buffer), each.code);
        EXPECT_EQ(buffer.type, each.type);
        EXPECT_EQ(buffer.size, each.size);
        ASSERT_EQ(buffer.buffer == this, each.code != 0);
        if (each.code != 0) continue;
        Block const block(buffer.buffer);
        EXPECT_EQ(Content(path), std::string(static_cast<char*>(buffer.buffer), each.length));
    }
}

TEST_F(RawFile, ARadiographSurvivesTheRoundTrip) {
    std::string const path = ZPA_SHARED_DATA "/chest.1841.1955.raw";
    if (!fs::exists(path)) GTEST_SKIP();
    ImageAttributes image;
    ASSERT_EQ(ReadRawFile(path.c_str(), &image), 0);
    Block const block(image.buffer);
    ASSERT_EQ(image.type, eUInt16);
    ASSERT_EQ(image.width, 1841);
    ASSERT_EQ(image.height, 1955);
    auto const* const pixels = static_cast<unsigned short const*>(image.buffer);
    auto const range = std::minmax_element(pixels, pixels + 1841 * 1955);
    EXPECT_EQ(*range.first, 803);
    EXPECT_EQ(*range.second, 26512);
    ASSERT_EQ(DumpRawImage(pixels, 1841, 1955, -1, Path("chest").c_str()), 0);
    EXPECT_TRUE(folder.Read("chest.1841.1955.raw") == Content(path));
}

// A callback that fails once makes what the operations answer to any exception visible.
std::wstring afterwards;
void ThrowAtRefusals(wchar_t const*, int, wchar_t const* message) {
    if (std::wcsstr(message, L"Null pointer.") || std::wcsstr(message, L"Invalid input."))
        throw std::runtime_error("callback");
    afterwards = message;
}

TEST_F(RawFile, NoExceptionLeaves) {
    CapturedLog log;
    log.Debug(eLogFunction);
    ZPA_Logging::SetErrorCallback(ThrowAtRefusals);
    EXPECT_EQ(ReadRaw(nullptr, nullptr, eByte, 1, 1, 1, false), 999);
    EXPECT_EQ(afterwards, L"ReadRaw: Unexpected exception.");
    EXPECT_EQ(ReadRawFile(nullptr, nullptr), 999);
    EXPECT_EQ(afterwards, L"Unexpected exception.");
    ZPA_Logging::SetDebugCallback(ThrowAtRefusals);
    ZPA_Logging::SetErrorCallback([](wchar_t const*, int, wchar_t const* message) {
        EXPECT_STREQ(message, L"template_dumpPgm8bit(): Unexpected exception.");
    });
    EXPECT_EQ(dumpPgm8bit(nullptr, 1, 1, nullptr), 999);
}

}  // namespace
}  // namespace ZPA
