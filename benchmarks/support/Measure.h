// Times a row: all contenders in turn, in short batches, within the same moments.
#ifndef ZPA_BENCHMARKS_SUPPORT_MEASURE_H
#define ZPA_BENCHMARKS_SUPPORT_MEASURE_H

#include <optional>
#include <string>

#include "support/Benchmark.h"
#include "support/Quantile.h"

namespace ZPA::Benchmarks {

struct Measurement {
    std::string peer;                   // empty without one
    double seconds;                     // a call of ours, the median
    std::optional<double> peerSeconds;  // a call of theirs, the median
    std::optional<Quartiles> ratio;     // theirs divided by ours
    std::optional<double> share;        // the time of moving as many bytes, divided by ours
};

// Takes about `seconds`, longer if a call does. Throws what the row throws, and where the answers differ.
Measurement Measure(Row const& row, double seconds);

}  // namespace ZPA::Benchmarks

#endif
