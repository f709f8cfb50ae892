// The recursive lock and its scope.
#include "Source/Platform/Lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace ZPA {
namespace {

// Whether another thread can enter. It is given a moment to; one that waits enters as soon as `section` is
// left by `leave`.
template <typename Leave> bool OthersAreAdmitted(CriticalSection& section, Leave const& leave) {
    std::atomic<bool> entered{false};
    std::thread other([&] {
        section.Enter();
        entered = true;
        section.Leave();
    });
    for (int i = 0; i < 50 && !entered; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    bool const admitted = entered;
    leave();
    other.join();
    EXPECT_TRUE(entered);
    return admitted;
}

TEST(Lock, IsLeftAsOftenAsItWasEntered) {
    CriticalSection section;
    section.Enter();
    section.Enter();
    section.Leave();
    EXPECT_FALSE(OthersAreAdmitted(section, [&] { section.Leave(); }));
    EXPECT_TRUE(OthersAreAdmitted(section, [] {}));
}

TEST(AutoCriticalSection, HoldsForItsScopeOrUntilReleased) {
    CriticalSection section;
    {
        AutoCriticalSection scope(&section);
        EXPECT_FALSE(OthersAreAdmitted(section, [&] { scope.Release(); }));
        EXPECT_TRUE(OthersAreAdmitted(section, [] {}));
    }
    section.Enter();
    { AutoCriticalSection const inner(&section); }
    EXPECT_FALSE(OthersAreAdmitted(section, [&] { section.Leave(); }));
}

TEST(AutoCriticalSection, LeavesTwiceWhenReleasedTwice) {
    CriticalSection section;
    section.Enter();
    {
        AutoCriticalSection scope(&section);
        scope.Release();
        EXPECT_FALSE(OthersAreAdmitted(section, [&] { scope.Release(); }));
    }
    EXPECT_TRUE(OthersAreAdmitted(section, [] {}));
}

}  // namespace
}  // namespace ZPA
