// The one parallel loop.
#ifndef ZPA_PRIMITIVES_FOREACHROW_H
#define ZPA_PRIMITIVES_FOREACHROW_H

#include <cstdint>
#include <type_traits>

#include "primitives/Status.h"

namespace ZPA {

// Below this much work, waking threads costs more than it saves. Counted in bytes moved, or in what takes as
// long; benchmarks/ForEachRow.cpp found it.
inline constexpr std::int64_t kParallelWork = std::int64_t{1} << 22;

// Calls work(y) once for every row, in any order and on any thread: rows must not depend on each other.
template <typename Work> void ForEachRow(int height, std::int64_t workPerRow, Work const& work) noexcept {
    static_assert(std::is_nothrow_invocable_v<Work const&, int>, "nothing may leave a parallel loop");
    if (workPerRow * height < kParallelWork) {
        // Not the same loop with an if clause: a region without threads still costs hundreds of nanoseconds.
        for (int y = 0; y < height; ++y) work(y);
        return;
    }
#pragma omp parallel for schedule(static)
    for (int y = 0; y < height; ++y) work(y);
}

}  // namespace ZPA

#endif
