#include "support/Registry.h"

#include <stdexcept>

namespace ZPA::Benchmarks {

std::vector<Row>& AllRows() {
    static std::vector<Row> rows;  // made by whoever comes first: rows register in any order of files
    return rows;
}

void Register(Row row) { AllRows().push_back(std::move(row)); }

std::string SizeOf(Row const& row) { return std::to_string(row.width) + "x" + std::to_string(row.height); }

std::string NameOf(Row const& row) { return row.operation + " " + row.type + " " + SizeOf(row); }

void Require(SOLVANE_RETURNCODE code) {
    if (code != SOLVANE_OK) throw std::runtime_error("refused with code " + std::to_string(code));
}

}  // namespace ZPA::Benchmarks
