// Counters that several threads change.
#ifndef ZPA_SOURCE_PLATFORM_ATOMIC_H
#define ZPA_SOURCE_PLATFORM_ATOMIC_H

namespace ZPA {

// Both give the new value, to exactly one thread each.
long InterlockedIncrease(long* counter);
long InterlockedDecrease(long* counter);

// The present value.
long InterlockedRead(long const* counter);

}  // namespace ZPA

#endif
