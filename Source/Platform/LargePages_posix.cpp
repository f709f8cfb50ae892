// Large blocks of memory in large pages, on POSIX systems.
#include "Source/Platform/LargePages.h"

#include <sys/mman.h>

#include <cerrno>
#include <cstdint>

namespace ZPA {

void PreferLargePages([[maybe_unused]] void* block, [[maybe_unused]] std::size_t bytes) noexcept {
#ifdef MADV_HUGEPAGE
    constexpr std::uintptr_t kLargePage = 2 * 1024 * 1024;
    auto const address = reinterpret_cast<std::uintptr_t>(block);
    std::uintptr_t const lead = -address % kLargePage;
    if (bytes < lead + kLargePage) return;
    int const before = errno;
    // Where the system does not know them, nothing is lost.
    static_cast<void>(
        madvise(static_cast<char*>(block) + lead, (bytes - lead) / kLargePage * kLargePage, MADV_HUGEPAGE));
    errno = before;
#endif
}

}  // namespace ZPA
