#include "support/Memory.h"

#include <omp.h>

#include <cstring>
#include <memory>

#include "primitives/ForEachRow.h"
#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

// Runs work(begin, end) for even parts of `count` pairs of bytes, one a thread where threads pay.
template <typename Work> void Split(std::size_t count, Work const& work) {
    auto const parts = static_cast<std::size_t>(omp_get_max_threads());
    ForEachRow(static_cast<int>(parts), static_cast<std::int64_t>(2 * count / parts), [&](int row) noexcept {
        auto const part = static_cast<std::size_t>(row);
        work(count * part / parts, count * (part + 1) / parts);
    });
}

}  // namespace

std::function<void()> MovingMemory(std::size_t bytesRead, std::size_t bytesWritten) {
    using Bytes = Block<unsigned char>;
    std::size_t const bytes = bytesRead + bytesWritten;
    if (bytesWritten == 0) {
        auto const block = std::make_shared<Bytes>(bytes);
        return [block] {
            Split(block->size() / 2, [&](std::size_t begin, std::size_t end) {
                // Equal to their end, so all is read, as two streams and by the machine's best instructions.
                int volatile const order =
                    std::memcmp(block->data() + 2 * begin, block->data() + begin + end, end - begin);
                static_cast<void>(order);
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
