// Sizes that cannot overflow, and blocks of elements that callers release with delete[].
#ifndef ZPA_SOURCE_INTERNAL_MEMORY_H
#define ZPA_SOURCE_INTERNAL_MEMORY_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>

#include "Source/Platform/LargePages.h"

namespace ZPA {

// What a negative size or stride counts as: more than any memory holds.
inline constexpr std::uint64_t kNoSize = UINT64_MAX;

// Elements from the first one to the end of the last row. Where the stride is narrower than the width this is
// more than stride * height.
inline std::uint64_t ElementsSpanned(std::int64_t width, std::int64_t height, std::int64_t stride) {
    if (height < 0 || stride < 0) return kNoSize;
    if (height == 0) return 0;
    std::int64_t const lastRow = std::max<std::int64_t>(width, 0);
    return static_cast<std::uint64_t>(std::max(height * stride, (height - 1) * stride + lastRow));
}

// Bytes of a block, or kNoSize where they pass the address space.
inline std::uint64_t BlockBytes(std::uint64_t elements, std::size_t elementSize) {
    if (elementSize == 0) return 0;
    return elements > PTRDIFF_MAX / elementSize ? kNoSize : elements * elementSize;
}

// Blocks of this size and more come from the system anew every time, page by page.
inline constexpr std::uint64_t kLargeBlock = std::uint64_t{32} << 20;

// A block as `new T[elements]` gives it, not initialised; null if there is no memory for it.
template <typename T> T* AllocateElements(std::uint64_t elements) {
    std::uint64_t const bytes = BlockBytes(elements, sizeof(T));
    if (bytes == kNoSize) return nullptr;
    T* const block = new (std::nothrow) T[static_cast<std::size_t>(elements)];
    if (block && bytes >= kLargeBlock) PreferLargePages(block, static_cast<std::size_t>(bytes));
    return block;
}

}  // namespace ZPA

#endif
