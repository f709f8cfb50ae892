// The recursive lock on Windows.
#include "Source/Platform/Lock.h"

namespace ZPA {

CriticalSection::CriticalSection() { InitializeCriticalSection(&native_); }

CriticalSection::~CriticalSection() { DeleteCriticalSection(&native_); }

void CriticalSection::Enter() { EnterCriticalSection(&native_); }

void CriticalSection::Leave() { LeaveCriticalSection(&native_); }

}  // namespace ZPA
