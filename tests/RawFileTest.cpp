// Raw files read back: which file matches which shape, and what is refused.
#include <Basics/RawFile.h>
#include <gtest/gtest.h>

#include <climits>
#include <cwchar>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/RawFiles.h"

namespace ZPA {
namespace {

using namespace Testing;

// What was read is what the file holds; frees it.
void ExpectRead(std::string const& path, void* data) {
    std::string const content = Content(path);
    EXPECT_EQ(std::string(static_cast<char*>(data), content.size()), content);
    FreePixels(data);
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
        ASSERT_EQ(data != nullptr, each.code == 0);
        if (data) ExpectRead(path, data);
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
        if (each.code == 0) ExpectRead(path, image.buffer);
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
        if (each.code == 0) ExpectRead(path, buffer.buffer);
    }
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
