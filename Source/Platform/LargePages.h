// Large blocks of memory in large pages.
#ifndef ZPA_SOURCE_PLATFORM_LARGEPAGES_H
#define ZPA_SOURCE_PLATFORM_LARGEPAGES_H

#include <cstddef>

namespace ZPA {

// Asks the system to back what is not yet touched of a block by large pages, where it has such: the block is
// then filled several times as fast. What the memory holds and how it is freed do not change.
void PreferLargePages(void* block, std::size_t bytes) noexcept;

}  // namespace ZPA

#endif
