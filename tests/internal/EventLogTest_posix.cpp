// The registry as folders and files.
#include "Source/Platform/PosixEventLog.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/TemporaryFolder.h"

namespace ZPA {
namespace {

namespace fs = std::filesystem;

class PosixRegistry : public testing::Test {
protected:
    EventLog::Key Create(wchar_t const* name, bool again) {
        bool existed = !again;
        EventLog::Key const key = log.CreateKey(name, existed);
        EXPECT_NE(key, nullptr);
        EXPECT_EQ(existed, again);
        return key;
    }
    std::string Content(std::string const& path) const { return folder.Read("not/yet/" + path); }
    void Write(std::string const& path, std::string const& content) const {
        fs::create_directories(fs::path(root + "/" + path).parent_path());
        folder.Write("not/yet/" + path, content);
    }

    Testing::TemporaryFolder const folder;
    std::string const root = folder.Path("not/yet");
    PosixEventLog log{root.c_str()};
};

TEST_F(PosixRegistry, CreatesKeysWithAllFoldersAboveThem) {
    log.CloseKey(Create(L"SYSTEM\\Services\\\x3A9", false));
    EXPECT_TRUE(fs::is_directory(root + "/SYSTEM/Services/\xCE\xA9"));
    log.CloseKey(Create(L"SYSTEM\\Services\\\x3A9", true));
}

TEST_F(PosixRegistry, StoresHalfAsManyCharactersAsBytes) {
    EventLog::Key const key = Create(L"key", false);
    struct Case {
        wchar_t const* text;
        std::uint32_t bytes;
        std::string stored;
    };
    for (Case const& each :
         {Case{L"/opt/libzpa.so", 15, "/opt/li"}, Case{L"ab", 100, "ab"}, Case{L"ab", 0, ""},
          Case{L"\xE9\x20AC\x1F600\xD800!", 10, "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80?!"}}) {
        log.SetText(key, L"EventMessageFile", each.text, each.bytes);
        EXPECT_EQ(Content("key/EventMessageFile"), each.stored);
    }
    log.CloseKey(key);
}

TEST_F(PosixRegistry, ReadsTheNumbersThatItStores) {
    EventLog::Key const key = Create(L"a\\b", false);
    for (std::uint32_t const stored : {7U, 0U, 4294967295U, 10U}) {
        log.SetNumber(key, L"TypesSupported", stored);
        EXPECT_EQ(Content("a/b/TypesSupported"), std::to_string(stored));
        std::uint32_t value = 3;
        log.ReadValue(L"a\\b", L"TypesSupported", value);
        EXPECT_EQ(value, stored);
    }
    log.CloseKey(key);
}

TEST_F(PosixRegistry, LeavesTheValueAloneWhereItCannotRead) {
    Write("key/number", "1\n");
    Write("key/word", "all\n");
    Write("key/empty", "");
    Write("key/folder/file", "");
    struct Case {
        wchar_t const *key, *name;
        std::uint32_t value;
    };
    for (Case const& each : {Case{L"key", L"number", 1}, Case{L"key", L"word", 3}, Case{L"key", L"empty", 3},
                             Case{L"key", L"folder", 3}, Case{L"key", L"missing", 3},
                             Case{L"missing", L"number", 3}, Case{L"key\\number", L"number", 3}}) {
        std::uint32_t value = 3;
        log.ReadValue(each.key, each.name, value);
        EXPECT_EQ(value, each.value) << testing::PrintToString(each.name);
    }
}

TEST_F(PosixRegistry, HasNoKeysUnderAForbiddenRoot) {
    Write("file", "");
    std::string const belowAFile = root + "/file/root";
    for (char const* const forbidden : {"/proc/zpa/registry", "/dev/null", belowAFile.c_str()}) {
        PosixEventLog elsewhere(forbidden);
        bool existed = false;
        EXPECT_EQ(elsewhere.CreateKey(L"zpa\\key", existed), nullptr) << forbidden;
        std::uint32_t value = 3;
        elsewhere.ReadValue(L"zpa\\key", L"TypesSupported", value);
        EXPECT_EQ(value, 3U);
    }
}

TEST_F(PosixRegistry, LosesWhatItCannotStore) {
    Write("key/folder/file", "");
    EventLog::Key const key = Create(L"key", true);
    log.SetNumber(key, L"folder", 7);
    log.SetText(key, L"no\\such/folder", L"text", 8);
    log.CloseKey(key);
    EXPECT_TRUE(fs::is_directory(root + "/key/folder"));
}

TEST_F(PosixRegistry, WidensPathsOfUtf8) {
    struct Case {
        char const* bytes;
        std::wstring text;
    };
    for (Case const& each : {
             Case{"", L""}, Case{"/opt/R\xC3\xB6ntgen", L"/opt/R\xF6ntgen"},
             Case{"\xE2\x82\xAC\xF0\x9F\x98\x80/\x7F", L"\x20AC\x1F600/\x7F"},
             Case{"\xC2\x80\xE0\xA0\x80\xF0\x90\x80\x80", L"\x80\x800\x10000"},  // the first of their sizes
             Case{"\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF", L"\xD7FF\xE000\x10FFFF"},  // the last
             Case{"R\xF6ntgen", L"R\xF6ntgen"}, Case{"\x80\xFFz", L"\x80\xFFz"},
             Case{"\xE2\x82", L"\xE2\x82"}, Case{"\xF0\x9F\x98", L"\xF0\x9F\x98"},  // cut
             Case{"\xC1\xBF\xE0\x9F\xBF", L"\xC1\xBF\xE0\x9F\xBF"},  // longer than they need be
             Case{"\xED\xA0\x80", L"\xED\xA0\x80"},                  // half a character
             Case{"\xF4\x90\x80\x80", L"\xF4\x90\x80\x80"},          // beyond the last
         }) {
        wchar_t text[32];
        EXPECT_EQ(Widen(each.bytes, text, 31), each.text.size()) << each.bytes;
        EXPECT_EQ(std::wstring(text), each.text) << each.bytes;
    }
    wchar_t cut[] = L"????";
    EXPECT_EQ(Widen("\xC3\xB6\xC3\xA4\xC3\xBC", cut, 2), 2U);
    EXPECT_EQ(std::wstring(cut, 4), std::wstring(L"\xF6\xE4\0?", 4));
}

TEST_F(PosixRegistry, KnowsTheModuleWithinTheLimit) {
    wchar_t path[4097];
    std::uint32_t const size = log.ModulePath(path, 4096);
    EXPECT_GT(size, 0U);
    EXPECT_EQ(std::wstring(path).size(), size);
    wchar_t cut[] = L"????????";
    EXPECT_EQ(log.ModulePath(cut, 4), 4U);
    EXPECT_EQ(std::wstring(cut), std::wstring(path, 4));
    EXPECT_EQ(cut[5], L'?');
}

}  // namespace
}  // namespace ZPA
