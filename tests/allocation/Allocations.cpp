// Operators new and delete for the whole program, the library included.
#include "allocation/Allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local ZPA::Testing::Allocations own;

void* Allocate(std::size_t size) noexcept {
    ++own.made;
    if (own.untilFailure >= 0 && own.untilFailure-- == 0) return nullptr;
    if (size > own.most) return nullptr;
    void* const block = std::malloc(size > 0 ? size : 1);
    if (block) ++own.blocks;
    return block;
}

void Free(void* block) noexcept {
    if (block) --own.blocks;
    std::free(block);
}

void* AllocateOrThrow(std::size_t size) {
    void* const block = Allocate(size);
    if (!block) throw std::bad_alloc();
    return block;
}

}  // namespace

namespace ZPA::Testing {
Allocations& ThisThreadsAllocations() { return own; }
}  // namespace ZPA::Testing

void* operator new(std::size_t size) { return AllocateOrThrow(size); }
void* operator new[](std::size_t size) { return AllocateOrThrow(size); }
void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept { return Allocate(size); }
void operator delete(void* block) noexcept { Free(block); }
void operator delete[](void* block) noexcept { Free(block); }
void operator delete(void* block, std::size_t) noexcept { Free(block); }
void operator delete[](void* block, std::size_t) noexcept { Free(block); }
void operator delete(void* block, std::nothrow_t const&) noexcept { Free(block); }
void operator delete[](void* block, std::nothrow_t const&) noexcept { Free(block); }
