// The recursive lock of the platform, and a scope that holds it.
#ifndef ZPA_SOURCE_PLATFORM_LOCK_H
#define ZPA_SOURCE_PLATFORM_LOCK_H

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace ZPA {

// Entered as often as a thread likes, and left as often. A thread that leaves what it does not hold does no
// harm.
class CriticalSection {
public:
    CriticalSection();
    ~CriticalSection();
    CriticalSection(CriticalSection const&) = delete;
    CriticalSection& operator=(CriticalSection const&) = delete;

    void Enter();
    void Leave();

private:
#if defined(_WIN32)
    CRITICAL_SECTION native_;
#else
    pthread_mutex_t native_;
#endif
};

// Holds a lock for a scope, or until released. A second Release() leaves a second time: the caller's own
// Enter().
class AutoCriticalSection {
public:
    explicit AutoCriticalSection(CriticalSection* section) : section_(section), released_(false) {
        section_->Enter();
    }
    ~AutoCriticalSection() {
        if (!released_) Release();
    }
    AutoCriticalSection(AutoCriticalSection const&) = delete;
    AutoCriticalSection& operator=(AutoCriticalSection const&) = delete;

    void Release() {
        section_->Leave();
        released_ = true;
    }

private:
    CriticalSection* section_;
    bool released_;
};

}  // namespace ZPA

#endif
