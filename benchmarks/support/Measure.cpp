#include "support/Measure.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <vector>

#include "support/Memory.h"

namespace ZPA::Benchmarks {
namespace {

using Call = std::function<void()>;

constexpr double kBatchSeconds = 0.0005;  // far above the clock's grain, below most bursts of other work
constexpr std::size_t kLeastRounds = 7;

double Now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double SecondsPerCall(Call const& call, long calls) {
    double const start = Now();
    for (long i = 0; i < calls; ++i) call();
    return (Now() - start) / static_cast<double>(calls);
}

long CallsPerBatch(Call const& call) {
    long calls = 1;
    while (SecondsPerCall(call, calls) * static_cast<double>(calls) < kBatchSeconds) calls *= 2;
    return calls;
}

// Seconds a call, by contender and round. Rounds alternate in their order, so that none always follows the
// same one.
std::vector<std::vector<double>> Interleaved(std::vector<Call> const& contenders, double seconds) {
    std::vector<long> calls(contenders.size());
    std::transform(contenders.begin(), contenders.end(), calls.begin(), CallsPerBatch);
    std::vector<std::vector<double>> timings(contenders.size());
    double const end = Now() + seconds;
    for (std::size_t round = 0; round < kLeastRounds || Now() < end; ++round)
        for (std::size_t turn = 0; turn < contenders.size(); ++turn) {
            std::size_t const which = round % 2 ? contenders.size() - 1 - turn : turn;
            timings[which].push_back(SecondsPerCall(contenders[which], calls[which]));
        }
    return timings;
}

}  // namespace

Measurement Measure(Row const& row, double seconds) {
    Contenders const contenders = row.make();
    bool const paired = static_cast<bool>(contenders.theirs);
    contenders.ours();
    if (paired) contenders.theirs();
    if (contenders.sameAnswer && !contenders.sameAnswer()) throw std::runtime_error("the answers differ");

    std::vector<Call> calls{contenders.ours};
    if (paired) calls.push_back(contenders.theirs);
    double const pixels = static_cast<double>(row.width) * row.height;
    auto const read = static_cast<std::size_t>(row.bytesPerPixel.read * pixels);
    auto const written = static_cast<std::size_t>(row.bytesPerPixel.written * pixels);
    if (read + written > 0) calls.push_back(MovingMemory(read, written));

    auto const timings = Interleaved(calls, seconds);
    Measurement result{contenders.peer, QuartilesOf(timings[0]).median, {}, {}, {}};
    if (paired) {
        result.peerSeconds = QuartilesOf(timings[1]).median;
        result.ratio = RatioOf(timings[1], timings[0]);
    }
    if (read + written > 0) result.share = RatioOf(timings.back(), timings[0]).median;
    return result;
}

}  // namespace ZPA::Benchmarks
