// How a step's parameters are renamed and checked.
#include <Basics/IProcess.h>
#include <gtest/gtest.h>

#include <string>

#include "support/Bags.h"
#include "support/CapturedLog.h"
#include "support/Thrown.h"

namespace ZPA {
namespace {

using namespace Testing;

struct Step : IProcess {
    explicit Step(BagPtr map) : IProcess(map) {}
    using IProcess::CheckParam;
    using IProcess::MapName;
};

// "Gain" is mapped to a key, "Offset" into a bag, "Bad" to no text.
BagPtr Map() {
    return NewBag({{"Gain", "userGain"},
                   {"Offset", "sub/offset"},
                   {"Bad", 1},
                   {"Inner", NewBag({{"Name", "userGain"}})}});
}

TEST(IProcess, MapsNames) {
    Step const mapped(Map());
    EXPECT_EQ(mapped.MapName("Gain"), "userGain");
    EXPECT_EQ(mapped.MapName("Inner/Name"), "userGain");
    EXPECT_EQ(mapped.MapName("Other"), "Other");
    EXPECT_EQ(Step(BagPtr()).MapName("Gain"), "Gain");
    EXPECT_EQ(Thrown<char const*>([&] { (void)mapped.MapName("Bad"); }), "Not in string type.");
    EXPECT_THROW((void)mapped.CheckParam(BagPtr(), "Bad", typeid(int), nullptr), char const*);
}

TEST(IProcess, ChecksParameters) {
    BagPtr const bag =
        NewBag({{"userGain", 1.5}, {"sub", NewBag({{"offset", 2}})}, {"Number", 3}, {"100%s", 3}});
    struct Case {
        char const* name;
        char const* alternative;
        std::type_info const& type;
        int code;
        std::wstring message;
    };
    Case const cases[] = {
        {"Gain", nullptr, typeid(double), 0, L""},
        {"Offset", nullptr, typeid(int), 0, L""},
        {"Missing", "Number", typeid(int), 0, L""},
        {"Missing", "Offset", typeid(int), 0, L""},
        {"Number", "Bad", typeid(int), 0, L""},
        {"Gain", "Number", typeid(int), 8, L"Param 'Gain' must be of type 'int'"},
        {"Missing", "Gain", typeid(int), 8, L"Param 'Gain' must be of type 'int'"},
        {"Missing", "Gone", typeid(int), 4, L"Required param 'Missing' of type 'int' missing"},
        {"userGain/x", nullptr, typeid(int), 4, L"Required param 'userGain/x' of type 'int' missing"},
        {"Number", nullptr, typeid(ZPA_Ptr<short>), 8,
         L"Param 'Number' must be of type 'ZPA::ZPA_Ptr<short>'"},
        {"100%s", nullptr, typeid(char), 8, L"Param '100%s' must be of type 'char'"},
        {nullptr, "Number", typeid(int), 0, L""},
        {nullptr, nullptr, typeid(int), 4, L"Required param '(null)' of type 'int' missing"},
    };
    Step const step(Map());
    for (Case const& each : cases) {
        CapturedLog const log;
        EXPECT_EQ(step.CheckParam(bag, each.name, each.type, each.alternative), each.code == 0);
        EXPECT_EQ(log.Text(), each.message);
        EXPECT_EQ(log.Code(), each.code);
    }
    CapturedLog const log;
    EXPECT_FALSE(step.CheckParam(BagPtr(), "Number", typeid(int), nullptr));
    EXPECT_EQ(log.Text(), L"Required param 'Number' of type 'int' missing");
    EXPECT_EQ(bag->Key().size(), 4u);
}

}  // namespace
}  // namespace ZPA
