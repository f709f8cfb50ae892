// Operators new and delete and calloc for the whole program, the library included.
#include "allocation/Allocations.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

thread_local ZPA::Testing::Allocations own;

bool Fails(std::size_t size) noexcept {
    ++own.made;
    return (own.untilFailure >= 0 && own.untilFailure-- == 0) || size > own.most;
}

void* Allocate(std::size_t size) noexcept {
    if (Fails(size)) return nullptr;
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

// What malloc() gives, so that free() takes it; its blocks are not counted.
extern "C" void* calloc(std::size_t count, std::size_t size) noexcept {
    if (size > 0 && count > PTRDIFF_MAX / size) return nullptr;
    if (Fails(count * size)) return nullptr;
    static void* (*const volatile plain)(std::size_t) = std::malloc;  // or a compiler makes it calloc again
    void* const block = plain(count * size);
    return block ? std::memset(block, 0, count * size) : nullptr;
}

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
