// Every block of code that a page or a header shows is the marked part of a file that is built and run.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

struct Block {
    std::string place;  // file and line, for whoever has to mend it
    Lines lines;
};

// Without the white space that all of them begin with.
Lines Dedented(Lines lines) {
    std::size_t indent = std::string::npos;
    for (std::string const& line : lines) indent = std::min(indent, line.find_first_not_of(' '));
    for (std::string& line : lines) line.erase(0, std::min(indent, line.size()));
    return lines;
}

// What stands between lines that `begins` and `ends` find; `prefix` goes ahead of each line.
template <typename Begins, typename Ends>
void Collect(std::vector<Block>& blocks, fs::path const& file, std::string const& prefix,
             Begins const& begins, Ends const& ends) {
    std::ifstream in(file);
    EXPECT_TRUE(in) << file;
    bool inside = false;
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (inside ? ends(line) : begins(line)) {
            inside = !inside;
            if (inside)
                blocks.push_back({file.filename().string() + ":" + std::to_string(number), {}});
            else
                blocks.back().lines = Dedented(blocks.back().lines);
        } else if (inside) {
            blocks.back().lines.push_back(line.substr(std::min(prefix.size(), line.size())));
        }
    }
    EXPECT_FALSE(inside) << file << ": the last block has no end";
}

std::vector<fs::path> Files(char const* folder, std::initializer_list<char const*> extensions) {
    std::vector<fs::path> files;
    for (auto const& entry : fs::recursive_directory_iterator(fs::path(ZPA_SOURCES) / folder))
        for (char const* extension : extensions)
            if (entry.path().extension() == extension) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

// Fences, but for those of no language and of languages that nothing compiles, and code in headers' comments.
std::vector<Block> Shown() {
    std::vector<Block> blocks;
    auto pages = Files("docs", {".md"});
    pages.push_back(fs::path(ZPA_SOURCES) / "README.md");
    for (fs::path const& page : pages)
        Collect(
            blocks, page, "",
            [](std::string const& line) {
                return line.compare(0, 3, "```") == 0 && line != "```" && line != "```sh" && line != "```xml";
            },
            [](std::string const& line) { return line == "```"; });
    for (fs::path const& header : Files("header", {".h"}))
        Collect(
            blocks, header, "/// ", [](std::string const& line) { return line == "/// @code{.cpp}"; },
            [](std::string const& line) { return line == "/// @endcode"; });
    return blocks;
}

std::vector<Block> Compiled() {
    std::vector<Block> blocks;
    for (char const* folder : {"examples", "tests/consumer"})
        for (fs::path const& file : Files(folder, {".h", ".cpp", ".c", ".txt"})) {
            auto const isMark = [](std::string const& line) {
                auto const text = line.find_first_not_of(' ');
                return text != std::string::npos &&
                       (line.compare(text, std::string::npos, "// [sample]") == 0 || line == "# [sample]");
            };
            Collect(blocks, file, "", isMark, isMark);
        }
    return blocks;
}

// Each of `blocks` has to be one of `others`.
void ExpectAmong(std::vector<Block> const& blocks, std::vector<Block> const& others, char const* complaint) {
    EXPECT_FALSE(blocks.empty());
    for (Block const& block : blocks) {
        auto const isSame = [&](Block const& other) { return other.lines == block.lines; };
        EXPECT_TRUE(std::any_of(others.begin(), others.end(), isSame)) << block.place << complaint;
    }
}

TEST(Documents, ShowCodeThatIsCompiled) {
    ExpectAmong(Shown(), Compiled(), ": what is shown here is not compiled");
}

TEST(Documents, ShowAllThatIsMarked) {
    ExpectAmong(Compiled(), Shown(), ": what is marked here is not shown");
}

}  // namespace
