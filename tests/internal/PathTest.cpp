// How paths fall apart.
#include <gtest/gtest.h>

#include "Source/Internal/Path.h"

namespace ZPA {
namespace {

struct Case {
    char const *path, *folder, *stem, *extension;
};

TEST(SplitPath, GivesFolderStemAndLastExtension) {
    Case const cases[] = {
        {"", "", "", ""},
        {"name", "", "name", ""},
        {"a/b/scan.100.50.raw", "a/b/", "scan.100.50", ".raw"},
        {"r.6.4", "", "r.6", ".4"},
        {"dir.d\\name", "dir.d\\", "name", ""},
        {"C:file.x", "C:", "file", ".x"},
        {"C:\\a/b\\file.", "C:\\a/b\\", "file", "."},
        {"folder/", "folder/", "", ""},
        {".hidden", "", "", ".hidden"},
    };
    for (Case const& each : cases) {
        auto const parts = SplitPath(std::string_view(each.path));
        EXPECT_EQ(parts.folder, each.folder) << each.path;
        EXPECT_EQ(parts.stem, each.stem) << each.path;
        EXPECT_EQ(parts.extension, each.extension) << each.path;
    }
}

}  // namespace
}  // namespace ZPA
