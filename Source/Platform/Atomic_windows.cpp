// Counters that several threads change, on Windows.
#include "Source/Platform/Atomic.h"

#include <windows.h>

namespace ZPA {

long InterlockedIncrease(long* counter) { return InterlockedIncrement(counter); }

long InterlockedDecrease(long* counter) { return InterlockedDecrement(counter); }

long InterlockedRead(long const* counter) { return InterlockedOr(const_cast<long*>(counter), 0); }

}  // namespace ZPA
