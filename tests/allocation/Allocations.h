// Counts the allocations of a program, and makes those fail that it is told to.
#ifndef ZPA_TESTS_ALLOCATION_ALLOCATIONS_H
#define ZPA_TESTS_ALLOCATION_ALLOCATIONS_H

#include <cstddef>
#include <cstdint>

namespace ZPA::Testing {

// What operators new and delete did for this thread, in the whole program that Allocations.cpp is linked into.
struct Allocations {
    int made = 0;                    // those that failed included
    int untilFailure = -1;           // how many succeed before the next one that fails; below 0 none does
    long blocks = 0;                 // in use
    std::size_t most = PTRDIFF_MAX;  // bytes of a block; larger ones fail
};
Allocations& ThisThreadsAllocations();

}  // namespace ZPA::Testing

#endif
