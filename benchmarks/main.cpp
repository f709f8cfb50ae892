// Runs the rows that are asked for, and reports them.
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "support/Registry.h"
#include "support/Report.h"

namespace {

using namespace ZPA::Benchmarks;

constexpr char const* kUsage =
    "Usage: zpa_benchmarks [options]\n"
    "Times operations beside their peers and prints a table.\n"
    "  --filter REGEX   only rows whose name (operation, type, size) has a match\n"
    "  --list           names the rows and ends\n"
    "  --threads N      threads of ours and of the peers, 1 by default\n"
    "  --seconds S      for each row, 0.4 by default\n"
    "  --json FILE      keeps the table, with the facts of the machine\n"
    "  --page FILE      puts them into a page in Markdown, between its two lines \"<!-- figures -->\"\n"
    "Set OMP_WAIT_POLICY=passive where others use the machine too: threads that spin disturb every figure.\n"
    "Ends with 0; with 1 if a row failed or gave another answer than its peer; with 2 if it cannot run so.\n";

struct Options {
    std::regex filter{""};
    std::string json;
    std::string page;
    double seconds = 0.4;
    int threads = 1;
    bool list = false;
    bool help = false;
};

double Positive(std::string const& option, std::string const& text) {
    char* end = nullptr;
    double const value = std::strtod(text.c_str(), &end);
    if (*end || !(value > 0) || value > 1000) throw std::invalid_argument(option + " does not take " + text);
    return value;
}

Options Parsed(int count, char** words) {
    Options options;
    for (int i = 1; i < count; ++i) {
        std::string const option = words[i];
        auto const value = [&]() -> std::string {
            if (i + 1 == count) throw std::invalid_argument(option + " needs a value");
            return words[++i];
        };
        if (option == "--filter")
            options.filter = std::regex(value());
        else if (option == "--json")
            options.json = value();
        else if (option == "--page")
            options.page = value();
        else if (option == "--seconds")
            options.seconds = Positive(option, value());
        else if (option == "--threads")
            options.threads = std::max(1, static_cast<int>(Positive(option, value())));
        else if (option == "--list")
            options.list = true;
        else if (option == "--help")
            options.help = true;
        else
            throw std::invalid_argument("unknown option " + option);
    }
    return options;
}

std::vector<Row const*> Chosen(std::regex const& filter) {
    std::vector<Row const*> rows;
    for (Row const& row : AllRows())
        if (std::regex_search(NameOf(row), filter)) rows.push_back(&row);
    if (rows.empty()) throw std::invalid_argument("no row has such a name; --list names them");
    return rows;
}

Result Run(Row const& row, double seconds) {
    try {
        return {&row, Measure(row, seconds), ""};
    } catch (std::exception const& thrown) {
        return {&row, {}, thrown.what()};
    }
}

// A page around a part that can be filled in.
class Page {
public:
    explicit Page(std::string const& path) : path_(path) {
        std::ifstream in(path);
        text_.assign(std::istreambuf_iterator<char>(in), {});
        std::string const mark = "<!-- figures -->\n";
        begin_ = text_.find(mark);
        if (begin_ != std::string::npos) begin_ += mark.size();
        end_ = text_.find(mark, begin_);
        if (end_ == std::string::npos) throw std::invalid_argument(path + " has no place for figures");
    }
    void Fill(std::string const& figures) {
        text_.replace(begin_, end_ - begin_, figures);
        std::ofstream out(path_);
        if (!(out << text_).flush()) throw std::runtime_error("cannot write " + path_);
    }

private:
    std::string path_;
    std::string text_;
    std::size_t begin_, end_;
};

int RunAll(Options const& options, std::vector<Row const*> const& rows) {
    std::ofstream json;  // opened first: a path that cannot be written must not cost a whole run
    if (!options.json.empty()) {
        json.open(options.json);
        if (!json) throw std::invalid_argument("cannot write " + options.json);
    }
    std::optional<Page> page;
    if (!options.page.empty()) page.emplace(options.page);
    Machine const machine = PrepareMachine(options.threads);
    Table table(std::cout, rows);
    table.Head(machine);
    bool const progress = isatty(STDERR_FILENO);
    std::vector<Result> results;
    bool failed = false;
    for (Row const* row : rows) {
        if (progress)
            std::cerr << "[" << results.size() + 1 << "/" << rows.size() << "] " << NameOf(*row)
                      << std::flush;
        results.push_back(Run(*row, options.seconds));
        if (progress) std::cerr << "\r\033[K" << std::flush;
        table.Line(results.back());
        failed = failed || !results.back().failure.empty();
    }
    if (json.is_open()) {
        WriteJson(json, machine, results);
        if (!json.flush()) throw std::runtime_error("cannot write " + options.json);
    }
    if (page) {
        std::ostringstream figures;
        WriteMarkdown(figures, machine, results);
        page->Fill(figures.str());
    }
    return failed ? 1 : 0;
}

}  // namespace

int main(int count, char** words) {
    try {
        Options const options = Parsed(count, words);
        if (options.help) {
            std::cout << kUsage;
            return 0;
        }
        auto const rows = Chosen(options.filter);
        if (!options.list) {
            StartWithThreads(options.threads, words);
            return RunAll(options, rows);
        }
        for (Row const* row : rows) std::cout << NameOf(*row) << "\n";
        return 0;
    } catch (std::regex_error const&) {
        std::cerr << "zpa_benchmarks: --filter takes a regular expression\n";
    } catch (std::exception const& error) {
        std::cerr << "zpa_benchmarks: " << error.what() << "\n";
    }
    return 2;
}
