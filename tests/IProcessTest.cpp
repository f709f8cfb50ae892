// How a step's parameters are renamed and checked.
#include <Basics/IProcess.h>
#include <gtest/gtest.h>

#include <string>

#include "support/CapturedLog.h"

namespace ZPA {
namespace {

using namespace Testing;

struct Step : IProcess {
    explicit Step(ZPA_Ptr<Bag> map) : IProcess(map) {}
    using IProcess::CheckParam;
    using IProcess::MapName;
};

// "Gain" is mapped to a key, "Offset" into a bag, "Bad" to no text.
ZPA_Ptr<Bag> Map() {
    ZPA_Ptr<Bag> const map(new Bag), inner(new Bag);
    map->Set("Gain", "userGain");
    map->Set("Offset", "sub/offset");
    map->Set("Bad", 1);
    inner->Set("Name", "userGain");
    map->Set("Inner", inner);
    return map;
}

TEST(IProcess, MapsNames) {
    Step const mapped(Map());
    EXPECT_EQ(mapped.MapName("Gain"), "userGain");
    EXPECT_EQ(mapped.MapName("Inner/Name"), "userGain");
    EXPECT_EQ(mapped.MapName("Other"), "Other");
    EXPECT_EQ(Step(ZPA_Ptr<Bag>()).MapName("Gain"), "Gain");
    try {
        (void)mapped.MapName("Bad");
        ADD_FAILURE();
    } catch (char const* message) {
        EXPECT_STREQ(message, "Not in string type.");
    }
    EXPECT_THROW((void)mapped.CheckParam(ZPA_Ptr<Bag>(), "Bad", typeid(int), nullptr), char const*);
}

TEST(IProcess, ChecksParameters) {
    ZPA_Ptr<Bag> const bag(new Bag), sub(new Bag);
    sub->Set("offset", 2);
    bag->Set("userGain", 1.5);
    bag->Set("sub", sub);
    bag->Set("Number", 3);
    bag->Set("100%s", 3);
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
    EXPECT_FALSE(step.CheckParam(ZPA_Ptr<Bag>(), "Number", typeid(int), nullptr));
    EXPECT_EQ(log.Text(), L"Required param 'Number' of type 'int' missing");
    EXPECT_EQ(bag->Key().size(), 4u);
}

}  // namespace
}  // namespace ZPA
