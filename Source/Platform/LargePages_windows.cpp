// Large blocks of memory in large pages, on Windows.
#include "Source/Platform/LargePages.h"

namespace ZPA {

// The system gives large pages to privileged programs only, and by another call than the one that allocates.
void PreferLargePages(void*, std::size_t) noexcept {}

}  // namespace ZPA
