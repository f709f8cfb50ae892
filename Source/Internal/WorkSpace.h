// Memory for the length of a call: on the stack while it is small, else from the heap, or cleared.
#ifndef ZPA_SOURCE_INTERNAL_WORKSPACE_H
#define ZPA_SOURCE_INTERNAL_WORKSPACE_H

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <type_traits>

#include "Source/Internal/Memory.h"

namespace ZPA {

// `count` elements, not initialised. Up to `onStack` of them cost no allocation.
template <typename T, std::size_t onStack> class WorkSpace {
public:
    static_assert(std::is_trivial_v<T>, "elements are not constructed");

    explicit WorkSpace(std::uint64_t count)
        : heap_(count > onStack ? AllocateElements<T>(count) : nullptr),
          elements_(count > onStack ? heap_.get() : stack_) {}
    WorkSpace(WorkSpace const&) = delete;
    WorkSpace& operator=(WorkSpace const&) = delete;

    // Null if there is no memory.
    T* Get() { return elements_; }

private:
    T stack_[onStack];
    std::unique_ptr<T[]> heap_;
    T* elements_;
};

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename T> using ClearedElements = std::unique_ptr<T[], FreeMemory>;

// `count` zeros, as calloc gives them; null if there is no memory.
template <typename T> ClearedElements<T> AllocateCleared(std::uint64_t count) {
    if (BlockBytes(count, sizeof(T)) == kNoSize) return nullptr;
    return ClearedElements<T>(static_cast<T*>(std::calloc(static_cast<std::size_t>(count), sizeof(T))));
}

}  // namespace ZPA

#endif
