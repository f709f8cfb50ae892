// What the machine's memory allows: copying and reading at the best rate of plain code.
#ifndef ZPA_BENCHMARKS_SUPPORT_MEMORY_H
#define ZPA_BENCHMARKS_SUPPORT_MEMORY_H

#include <cstddef>
#include <functional>

namespace ZPA::Benchmarks {

// A call that moves as many bytes in all, on as many threads as OpenMP is set to: copies half of them to the
// other half, or only reads if nothing is written. The memory goes with the call.
std::function<void()> MovingMemory(std::size_t bytesRead, std::size_t bytesWritten);

}  // namespace ZPA::Benchmarks

#endif
