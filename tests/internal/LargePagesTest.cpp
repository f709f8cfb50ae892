// Large blocks of memory: which part of them the system is asked to back by large pages.
#include "Source/Platform/LargePages.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>

#include "Source/Internal/Memory.h"

namespace ZPA {
namespace {

// Whether the system has been asked for large pages at this address. Blank where it does not tell.
std::string Advice(void const* at) {
    std::ifstream maps("/proc/self/smaps");
    bool inside = false;
    for (std::string line; std::getline(maps, line);) {
        unsigned long long begin = 0, end = 0;
        if (std::sscanf(line.c_str(), "%llx-%llx ", &begin, &end) == 2)
            inside =
                begin <= reinterpret_cast<std::uintptr_t>(at) && reinterpret_cast<std::uintptr_t>(at) < end;
        if (inside && line.rfind("VmFlags:", 0) == 0)
            return line.find(" hg") == std::string::npos ? "none" : "large";
    }
    return "";
}

TEST(LargePages, AreAskedForInsideOfLargeBlocksOnly) {
    constexpr std::size_t kPage = 2 << 20;
    constexpr auto kLarge = static_cast<std::size_t>(kLargeBlock);
    for (std::size_t const bytes : {std::size_t{1}, kPage - 1, 2 * kPage, kLarge, kLarge + 12345}) {
        std::unique_ptr<unsigned char[]> const block(AllocateElements<unsigned char>(bytes));
        ASSERT_TRUE(block);
        std::string const advice = Advice(block.get() + bytes / 2);
        std::memset(block.get(), 7, bytes);
        EXPECT_EQ(block[bytes - 1], 7);
        if (advice.empty() || !std::ifstream("/sys/kernel/mm/transparent_hugepage/enabled")) continue;
        EXPECT_EQ(advice, bytes >= kLargeBlock ? "large" : "none") << bytes;
    }
}

TEST(LargePages, LeaveWhatLiesBesideTheBlockAlone) {
    std::unique_ptr<unsigned char[]> const block(AllocateElements<unsigned char>(kLargeBlock / 2));
    unsigned char* const inside = block.get() + 4097;
    for (std::size_t const bytes : {std::size_t{0}, std::size_t{1}, std::size_t{2 << 20}}) {
        PreferLargePages(inside, bytes);
        EXPECT_NE(Advice(inside), "large") << bytes;
    }
}

}  // namespace
}  // namespace ZPA
