// The functions that every operation tells the log it enters and leaves.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "support/CapturedLog.h"
#include "support/EveryOperation.h"
#include "support/TemporaryFolder.h"

namespace ZPA::Testing {
namespace {

// With ZPA_RENEW_SCOPES set the list is written anew, to be looked at and kept if it is to change.
TEST(EveryOperation, OpensItsScopesInTheLog) {
    TemporaryFolder const folder;
    Workplace::WriteFiles(folder.Path());
    std::string scopes;
    for (OperationCall const& each : EveryOperation()) {
        Workplace place(folder.Path());
        std::wstring const own = ScopesOf([&] { (void)each.call(place); });
        if (!own.empty()) scopes += each.name + ": " + std::string(own.begin(), own.end()) + '\n';
    }
    char const* const list = ZPA_SOURCES "/tests/scopes.txt";
    if (std::getenv("ZPA_RENEW_SCOPES")) std::ofstream(list) << scopes;
    std::ifstream expected(list);
    EXPECT_EQ(scopes, std::string(std::istreambuf_iterator<char>(expected), {}));
}

}  // namespace
}  // namespace ZPA::Testing
