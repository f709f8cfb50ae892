// All rows of the program.
#ifndef ZPA_BENCHMARKS_SUPPORT_REGISTRY_H
#define ZPA_BENCHMARKS_SUPPORT_REGISTRY_H

#include <string>
#include <vector>

#include "support/Benchmark.h"

namespace ZPA::Benchmarks {

std::vector<Row>& AllRows();

// "2048x2048"
std::string SizeOf(Row const& row);

// What --filter is matched against: "CopyPixels 16u to 64f 2048x2048".
std::string NameOf(Row const& row);

}  // namespace ZPA::Benchmarks

#endif
