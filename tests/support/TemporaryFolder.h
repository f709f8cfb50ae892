// Tests that write files do it in a folder of their own.
#ifndef ZPA_TESTS_SUPPORT_TEMPORARYFOLDER_H
#define ZPA_TESTS_SUPPORT_TEMPORARYFOLDER_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace ZPA::Testing {

inline std::string Content(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Goes with all that is in it. Its name would not survive being taken for a format.
class TemporaryFolder {
public:
    TemporaryFolder()
        : path_(std::filesystem::temp_directory_path() /
                ("zpa%s%n-" + std::to_string(reinterpret_cast<std::uintptr_t>(this)) + "-" + NameOfTest())) {
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~TemporaryFolder() { std::filesystem::remove_all(path_); }
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;

    std::string Path(std::string const& name = "") const { return (path_ / name).string(); }
    std::string Write(std::string const& name, std::string const& content) const {
        std::ofstream(Path(name), std::ios::binary) << content;
        return Path(name);
    }
    std::string Read(std::string const& name) const { return Content(Path(name)); }
    std::set<std::string> Names() const {
        std::set<std::string> names;
        for (auto const& each : std::filesystem::directory_iterator(path_))
            names.insert(each.path().filename().string());
        return names;
    }

private:
    static std::string NameOfTest() {
        std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
        std::replace(name.begin(), name.end(), '/', '-');  // before the number of a case
        return name;
    }

    std::filesystem::path path_;
};

}  // namespace ZPA::Testing

#endif
