// Every allocation of every operation fails once: nothing leaks, no input is lost, and the code tells.
#include <Basics/Logging.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "allocation/Allocations.h"
#include "support/CapturedLog.h"
#include "support/EveryExport.h"
#include "support/EveryOperation.h"
#include "support/TemporaryFolder.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>
#define ZPA_COUNTED_HERE __lsan::ScopedDisabler const countedHere
#endif
#endif
#ifndef ZPA_COUNTED_HERE
#define ZPA_COUNTED_HERE
#endif

namespace ZPA::Testing {
namespace {

struct Attempt {
    int code;
    bool failed;  // whether there was an allocation of that number
    long leaked;  // blocks
};

// Runs a call while its allocation number `fails`, from 0, fails.
Attempt Try(OperationCall const& operation, Workplace& place, int fails) {
    // The sanitizer would tell of what the XML parser loses, too.
    ZPA_COUNTED_HERE;
    Allocations& own = ThisThreadsAllocations();
    long const before = own.blocks;
    own.untilFailure = fails;
    int code = -1;
    try {
        code = operation.call(place);
    } catch (...) {
        ADD_FAILURE() << "an exception gets out";
    }
    bool const failed = own.untilFailure == -1;
    own.untilFailure = -1;
    place.Clear();
    return {code, failed, own.blocks - before};
}

class EveryAllocation : public testing::Test {
protected:
    // How many allocations a call makes if none fails.
    template <typename Check>
    static void ForEach(OperationCall const& operation, std::string const& folder, Check const& check) {
        // What a call leaves alone that succeeds stays whatever fails.
        Workplace const fresh(folder);
        Workplace written(folder);
        (void)Try(operation, written, -1);
        std::vector<bool> const outputs = written.Differences(fresh);
        for (int fails = 0; fails < 3000; ++fails) {
            SCOPED_TRACE(operation.name + (" without allocation " + std::to_string(fails)));
            Workplace place(folder);
            Attempt const attempt = Try(operation, place, fails);
            EXPECT_TRUE(attempt.leaked == 0 || attempt.code == kLost) << attempt.leaked;
            std::vector<bool> const differences = place.Differences(fresh);
            for (std::size_t i = 0; i < outputs.size(); ++i)
                EXPECT_TRUE(outputs[i] || !differences[i]) << "input " << i << " is lost";
            if (!attempt.failed) {
                EXPECT_EQ(attempt.code, 0);
                return;
            }
            check(attempt, place);
        }
        ADD_FAILURE() << operation.name << " does not end to allocate";
    }
    void SetUp() override {
        Workplace::WriteFiles(folder.Path());
        // What the first calls of a process allocate for good.
        for (OperationCall const& each : EveryOperation()) {
            Workplace place(folder.Path());
            EXPECT_EQ(each.call(place), 0) << each.name;
        }
    }

    TemporaryFolder folder;
};

TEST(EveryOperation, IsCalled) {
    // These need no memory, and are arithmetic or log what they are told to.
    std::set<std::string> const exempt = {"LogMemoryError", "dpythag_DBL", "mvmul",
                                          "pythag",         "viprod",      "vvdiff"};
    EXPECT_EQ(ForgottenExports({"support/EveryOperation.cpp", "support/Workplace.h"}, exempt),
              std::vector<std::string>());
}

TEST_F(EveryAllocation, ThatFailsIsToldAndLeaksNothing) {
    CapturedLog const log;
    ZPA_Logging::SetErrorCallback([](wchar_t const*, int, wchar_t const*) {});
    for (OperationCall const& each : EveryOperation())
        ForEach(each, folder.Path(), [&](Attempt const& attempt, Workplace const&) {
            auto const& known = each.withoutMemory;
            EXPECT_TRUE(std::count(known.begin(), known.end(), attempt.code)) << attempt.code;
        });
}

// The log is where most of the other exceptions could come from.
TEST_F(EveryAllocation, ThatFailsWhileCallbacksThrowLetsNoExceptionOut) {
    CapturedLog const log;
    ZPA_Logging::SetErrorCallback(ThrowFromCallback);
    for (OperationCall const& each : EveryOperation())
        ForEach(each, folder.Path(), [](Attempt const&, Workplace const&) {});
}

}  // namespace
}  // namespace ZPA::Testing
