// Files whose names are not all ASCII, where narrow text is in the process's code page.
#include <Basics/PixelOperations.h>
#include <Basics/RawFile.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <fstream>
#include <string>

#include "support/CapturedLog.h"
#include "support/TemporaryFolder.h"

namespace ZPA {
namespace {

struct Narrow {
    std::string text;
    bool exact;  // else the code page cannot tell it
};
Narrow InCodePage(std::wstring const& wide) {
    char text[MAX_PATH] = {};
    BOOL inexact = FALSE;
    WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.c_str(), -1, text, MAX_PATH, nullptr, &inexact);
    return {text, !inexact};
}

TEST(Paths, AreTextOfTheCodePage) {
    Testing::TemporaryFolder const folder;
    unsigned char pixels[] = {1, 2, 3};
    for (wchar_t const* const name :
         {L"R\x00F6ntgen \x00C6.raw", L"\x03C7-rays.raw", L"\x653E\x5C04\x7DDA.raw"}) {
        std::wstring const wide = std::filesystem::path(folder.Path()).wstring() + L"\\" + name;
        Narrow const narrow = InCodePage(wide);
        Testing::CapturedLog const log;
        void* read = nullptr;
        if (narrow.exact) {
            EXPECT_EQ(dumpRaw(pixels, 3, narrow.text.c_str()), SOLVANE_OK);
            EXPECT_NE(GetFileAttributesW(wide.c_str()), INVALID_FILE_ATTRIBUTES);
            ASSERT_EQ(ReadRaw(narrow.text.c_str(), &read, eByte, 3, 1, 3, false), SOLVANE_OK);
            EXPECT_EQ(std::string(static_cast<char*>(read), 3), "\1\2\3");
            FreePixels(read);
        } else {
            std::ofstream(std::filesystem::path(wide), std::ios::binary) << "\1\2\3";
            EXPECT_EQ(ReadRaw(narrow.text.c_str(), &read, eByte, 3, 1, 3, false), SOLVANE_OPERATION_FAILED);
            EXPECT_EQ(read, nullptr);
        }
    }
}

}  // namespace
}  // namespace ZPA
