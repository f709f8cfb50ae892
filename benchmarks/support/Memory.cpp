#include "support/Memory.h"

#include <omp.h>

#include <cstring>
#include <memory>

#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

// Runs work(begin, end) for even parts of `bytes`, one a thread.
template <typename Work> void Split(std::size_t bytes, Work const& work) {
#pragma omp parallel if (omp_get_max_threads() > 1)
    {
        auto const part = static_cast<std::size_t>(omp_get_thread_num());
        auto const parts = static_cast<std::size_t>(omp_get_num_threads());
        work(bytes * part / parts, bytes * (part + 1) / parts);
    }
}

}  // namespace

std::function<void()> MovingMemory(std::size_t bytesRead, std::size_t bytesWritten) {
    using Bytes = Block<unsigned char>;
    std::size_t const bytes = bytesRead + bytesWritten;
    if (bytesWritten == 0) {
        auto const block = std::make_shared<Bytes>(bytes);
        return [block] {
            Split(block->size(), [&](std::size_t begin, std::size_t end) {
                // Finds nothing, so it reads all, with the best instructions of the machine.
                void const* volatile found = std::memchr(block->data() + begin, 1, end - begin);
                static_cast<void>(found);
            });
        };
    }
    auto const from = std::make_shared<Bytes>((bytes + 1) / 2), to = std::make_shared<Bytes>((bytes + 1) / 2);
    return [from, to] {
        Split(from->size(), [&](std::size_t begin, std::size_t end) {
            std::memcpy(to->data() + begin, from->data() + begin, end - begin);
        });
    };
}

}  // namespace ZPA::Benchmarks
