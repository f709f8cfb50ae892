// The recursive lock on POSIX systems.
#include "Source/Platform/Lock.h"

namespace ZPA {

CriticalSection::CriticalSection() {
    pthread_mutexattr_t recursive;
    pthread_mutexattr_init(&recursive);
    pthread_mutexattr_settype(&recursive, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&native_, &recursive);
    pthread_mutexattr_destroy(&recursive);
}

CriticalSection::~CriticalSection() { pthread_mutex_destroy(&native_); }

void CriticalSection::Enter() { pthread_mutex_lock(&native_); }

void CriticalSection::Leave() { pthread_mutex_unlock(&native_); }

}  // namespace ZPA
