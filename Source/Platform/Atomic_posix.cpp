// Counters that several threads change, on POSIX systems.
#include "Source/Platform/Atomic.h"

namespace ZPA {

long InterlockedIncrease(long* counter) { return __atomic_add_fetch(counter, 1, __ATOMIC_ACQ_REL); }

long InterlockedDecrease(long* counter) { return __atomic_sub_fetch(counter, 1, __ATOMIC_ACQ_REL); }

long InterlockedRead(long const* counter) { return __atomic_load_n(counter, __ATOMIC_ACQUIRE); }

}  // namespace ZPA
