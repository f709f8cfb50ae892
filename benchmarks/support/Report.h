// Results as a table to read, as JSON to keep, and as a part of a page.
#ifndef ZPA_BENCHMARKS_SUPPORT_REPORT_H
#define ZPA_BENCHMARKS_SUPPORT_REPORT_H

#include <ostream>
#include <string>
#include <vector>

#include "support/Benchmark.h"
#include "support/Machine.h"
#include "support/Measure.h"

namespace ZPA::Benchmarks {

struct Result {
    Row const* row;
    Measurement measurement;  // without meaning if the row failed
    std::string failure;      // empty if it did not
};

// Columns as wide as the rows need.
class Table {
public:
    Table(std::ostream& out, std::vector<Row const*> const& rows);
    void Head(Machine const& machine);
    void Line(Result const& result);

private:
    void Cells(std::string const& operation, std::string const& type, std::string const& size,
               std::string const& time, std::string const& ratio, std::string const& spread,
               std::string const& share, std::string const& peer);

    std::ostream& out_;
    int operationWidth_;
    int typeWidth_;
    int sizeWidth_;
};

// The machine and a table, in Markdown.
void WriteMarkdown(std::ostream& out, Machine const& machine, std::vector<Result> const& results);

void WriteJson(std::ostream& out, Machine const& machine, std::vector<Result> const& results);

}  // namespace ZPA::Benchmarks

#endif
