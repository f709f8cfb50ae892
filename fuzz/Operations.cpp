// Every exported operation, with hostile arguments over memory of exactly the described size. What is
// repeatable must leave the same bits behind with another instruction set.
#include <hwy/highway.h>

#include <cstdio>
#include <map>
#include <stdexcept>

#include "operations/Operations.h"
#include "support/Limits.h"

using namespace ZPA;

namespace {

std::map<std::uint16_t, Fuzz::Operation> const& Table() {
    static auto const table = [] {
        std::map<std::uint16_t, Fuzz::Operation> byId;
        for (Fuzz::Operation const& each : Fuzz::AllOperations())
            if (!byId.emplace(each.Id(), each).second) {
                std::fprintf(stderr, "Two operations have the id of %s\n", each.name);
                std::abort();
            }
        return byId;
    }();
    return table;
}

struct Outcome {
    std::uint64_t digest;
    bool repeatable;
};

// Whether the error callback throws: no exception may get out.
bool throwing = false;
void HearError(wchar_t const*, int, wchar_t const*) {
    if (throwing) throw std::runtime_error("from the callback");
}

// Reads the input from its start, so that it can be done again.
Outcome Run(Fuzz::Operation const& operation, Fuzz::Input input, int fails, std::int64_t target) {
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(target);
    Fuzz::LimitedMemory const little(4 << 20);
    Fuzz::Scene scene(input, operation.traits);
    Testing::ThisThreadsAllocations().untilFailure = fails;
    try {
        operation.call(scene);
    } catch (std::runtime_error const&) {
        if (!throwing || !(operation.traits & Fuzz::kPassesExceptions)) throw;
    }
    return {scene.Digest(), scene.IsRepeatable()};
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::ListenToAll();
    ZPA_Logging::SetErrorCallback(HearError);
    (void)Table();
    return 0;
}

// The id of the operation, options, which allocation fails if any does, and what its arguments are made of.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    Fuzz::Input input(bytes, size);
    auto const found = Table().find(input.Bits<std::uint16_t>());
    if (found == Table().end()) return -1;
    Fuzz::Operation const& operation = found->second;
    int const options = input.Byte();
    Fuzz::SwitchLog(options % 16 == 15);
    int const fails = options / 16 == 15 ? input.Byte() % 16 : -1;
    throwing = options / 16 == 14;

    static auto const targets = hwy::SupportedAndGeneratedTargets();
    std::int64_t const target = targets[input.Byte() % targets.size()];
    Outcome const once = Run(operation, input, fails, target);
    if (options % 4 != 0 || !once.repeatable || fails >= 0 || operation.traits & Fuzz::kOneInstructionSet)
        return 0;
    std::int64_t const other = target == targets[0] ? targets.back() : targets[0];
    if (Run(operation, input, fails, other).digest != once.digest) {
        std::fprintf(stderr, "%s leaves other bits behind with %s than with %s\n", operation.name,
                     hwy::TargetName(other), hwy::TargetName(target));
        std::abort();
    }
    return 0;
}
