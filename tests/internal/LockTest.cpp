// The recursive lock and its scope.
#include "Source/Platform/Lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace ZPA {
namespace {

using std::chrono::milliseconds;

// Whether another thread enters in time; one that does not enters as soon as `section` is left by `leave`.
template <typename Leave>
bool AnotherEnters(CriticalSection& section, milliseconds patience, Leave const& leave) {
    std::atomic<bool> entered{false};
    std::thread other([&] {
        section.Enter();
        entered = true;
        section.Leave();
    });
    for (milliseconds waited(0); waited < patience && !entered; ++waited)
        std::this_thread::sleep_for(milliseconds(1));
    bool const inTime = entered;
    leave();
    other.join();
    EXPECT_TRUE(entered);
    return inTime;
}

// A busy machine may keep a thread from what it could do, so only the wait for those who cannot enter is short.
bool OthersAreAdmitted(CriticalSection& section) {
    return AnotherEnters(section, milliseconds(10000), [] {});
}
template <typename Leave> bool OthersWaitFor(CriticalSection& section, Leave const& leave) {
    return !AnotherEnters(section, milliseconds(50), leave);
}

TEST(Lock, IsLeftAsOftenAsItWasEntered) {
    CriticalSection section;
    section.Enter();
    section.Enter();
    section.Leave();
    EXPECT_TRUE(OthersWaitFor(section, [&] { section.Leave(); }));
    EXPECT_TRUE(OthersAreAdmitted(section));
}

TEST(AutoCriticalSection, HoldsForItsScopeOrUntilReleased) {
    CriticalSection section;
    {
        AutoCriticalSection scope(&section);
        EXPECT_TRUE(OthersWaitFor(section, [&] { scope.Release(); }));
        EXPECT_TRUE(OthersAreAdmitted(section));
    }
    section.Enter();
    { AutoCriticalSection const inner(&section); }
    EXPECT_TRUE(OthersWaitFor(section, [&] { section.Leave(); }));
}

TEST(AutoCriticalSection, LeavesTwiceWhenReleasedTwice) {
    CriticalSection section;
    section.Enter();
    {
        AutoCriticalSection scope(&section);
        scope.Release();
        EXPECT_TRUE(OthersWaitFor(section, [&] { scope.Release(); }));
    }
    EXPECT_TRUE(OthersAreAdmitted(section));
}

}  // namespace
}  // namespace ZPA
