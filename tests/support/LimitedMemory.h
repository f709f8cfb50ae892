// Makes allocations fail for a while.
#ifndef ZPA_TESTS_SUPPORT_LIMITEDMEMORY_H
#define ZPA_TESTS_SUPPORT_LIMITEDMEMORY_H

// Sanitizers need all addresses for themselves.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZPA_TESTS_SANITIZED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ZPA_TESTS_SANITIZED
#endif
#endif

#if defined(__linux__) && !defined(ZPA_TESTS_SANITIZED)
#define ZPA_TESTS_CAN_LIMIT_MEMORY

#include <sys/resource.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <fstream>

namespace ZPA::Testing {

// From its construction to its destruction the process gets no more memory from the system, and what the
// allocator holds is taken, but for blocks below 4 KB.
class LimitedMemory {
public:
    LimitedMemory() {
        std::size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        getrlimit(RLIMIT_AS, &usual_);
        rlimit limited = usual_;
        limited.rlim_cur = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        setrlimit(RLIMIT_AS, &limited);
        for (std::size_t size = std::size_t{1} << 26; size >= 4096; size /= 2)
            while (void* const block = std::malloc(size)) {
                *static_cast<void**>(block) = taken_;
                taken_ = block;
            }
    }
    ~LimitedMemory() {
        while (taken_) {
            void* const next = *static_cast<void**>(taken_);
            std::free(taken_);
            taken_ = next;
        }
        setrlimit(RLIMIT_AS, &usual_);
    }
    LimitedMemory(LimitedMemory const&) = delete;
    LimitedMemory& operator=(LimitedMemory const&) = delete;

private:
    rlimit usual_;
    void* taken_ = nullptr;  // a list through the blocks themselves
};

}  // namespace ZPA::Testing

#endif
#endif
