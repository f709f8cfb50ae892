// How numbers in names and documents are read.
#include <gtest/gtest.h>

#include "Source/Internal/Numbers.h"

namespace ZPA {
namespace {

TEST(ParseInt, ReadsAsFarAsItGoesAndStopsAtTheLimits) {
    struct Case {
        std::string_view text;
        int value;
    };
    Case const cases[] = {
        {"", 0},
        {" ", 0},
        {"x1", 0},
        {"-", 0},
        {"- 1", 0},
        {"--1", 0},
        {"0x10", 0},
        {"12ab", 12},
        {"007", 7},
        {" \t\n\v\f\r+42 ", 42},
        {"-42", -42},
        {"2147483647", INT_MAX},
        {"2147483648", INT_MAX},
        {"-2147483648", INT_MIN},
        {"-2147483649", INT_MIN},
        {"4294967296", INT_MAX},
        {"18446744073709551617", INT_MAX},
        {"-99999999999999999999999999", INT_MIN},
        {std::string_view("12345", 2), 12},  // the text ends before its digits do
    };
    for (Case const& each : cases) EXPECT_EQ(ParseInt(each.text), each.value) << each.text;
}

}  // namespace
}  // namespace ZPA
