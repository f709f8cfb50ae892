// Allocations that fail.
#ifndef ZPA_TESTS_SUPPORT_NOMEMORY_H
#define ZPA_TESTS_SUPPORT_NOMEMORY_H

namespace ZPA::Testing {

// While it lives, `new (std::nothrow) T[n]` gives null on this thread, in the library too.
class NoMemory {
public:
    NoMemory();
    ~NoMemory();
    NoMemory(NoMemory const&) = delete;
    NoMemory& operator=(NoMemory const&) = delete;
};

template <typename Call> auto WithoutMemory(Call const& call) {
    NoMemory const none;
    return call();
}

}  // namespace ZPA::Testing

#endif
