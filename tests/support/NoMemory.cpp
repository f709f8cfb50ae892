// Allocations that fail: the program's own operator stands in for that of the standard library.
#include "support/NoMemory.h"

#include <new>

#if defined(_WIN32)
#include "support/ReplaceImport.h"
#endif

namespace {
thread_local bool none = false;
}  // namespace

void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
    // A sanitizer's allocator ends the program for sizes that no machine has, where the real one throws.
    constexpr unsigned long long kMoreThanAnyMachineHas = 1ULL << 44;
    if (none || size > kMoreThanAnyMachineHas) return nullptr;
    try {
        return operator new[](size);
    } catch (...) {
        return nullptr;
    }
}

namespace ZPA::Testing {

#if defined(_WIN32)
namespace {
[[maybe_unused]] bool const inTheLibraryToo =
    ReplaceImport("zpa.dll", sizeof(void*) == 8 ? "_ZnayRKSt9nothrow_t" : "_ZnajRKSt9nothrow_t",
                  reinterpret_cast<void const*>(
                      static_cast<void* (*)(std::size_t, std::nothrow_t const&)>(&operator new[])));
}  // namespace
#endif

NoMemory::NoMemory() { none = true; }
NoMemory::~NoMemory() { none = false; }

}  // namespace ZPA::Testing
