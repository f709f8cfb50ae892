// The recursive lock on Windows.
#include "Source/Platform/Lock.h"

namespace ZPA {

CriticalSection::CriticalSection() { InitializeCriticalSection(&native_); }

CriticalSection::~CriticalSection() { DeleteCriticalSection(&native_); }

void CriticalSection::Enter() { EnterCriticalSection(&native_); }

void CriticalSection::Leave() {
    // The system asks nobody who leaves whether it holds the section, and could admit two threads, or none.
    auto const self = static_cast<ULONG_PTR>(GetCurrentThreadId());
    if (reinterpret_cast<ULONG_PTR>(native_.OwningThread) == self) LeaveCriticalSection(&native_);
}

}  // namespace ZPA
