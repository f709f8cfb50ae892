// The lock of Windows under threads that leave what they do not hold, which the system itself does not bear.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "Source/Platform/Lock.h"

namespace ZPA {
namespace {

TEST(WindowsLock, IsLeftByItsHolderOnly) {
    CriticalSection section;
    section.Leave();
    section.Enter();
    std::atomic<bool> entered{false};
    std::thread other([&] {
        section.Leave();
        section.Enter();
        entered = true;
        section.Leave();
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(entered);
    section.Leave();
    other.join();
    section.Enter();  // not for ever
    section.Leave();
}

}  // namespace
}  // namespace ZPA
