// Type codes, records and prepared outputs.
#include <Basics/CoreTypes.h>
#include <gtest/gtest.h>

#include <limits>

#include "support/CapturedLog.h"
#include "support/Images.h"

namespace ZPA {
namespace {

using namespace Testing;

TEST(SizeOfTypeCode, IsZeroForWhatIsNoType) {
    for (int type = -1; type <= 20; ++type) {
        int const expected = type == 5 || type == 6                  ? 1
                             : type == 7 || type == 8                ? 2
                             : type == 9 || type == 10 || type == 13 ? 4
                             : type == 14                            ? 8
                                                                     : 0;
        EXPECT_EQ(SizeOfTypeCode(static_cast<eTypeCode>(type)), expected) << type;
    }
}

TEST(ParseTypeCode, KnowsNamesInAnyCaseAndNothingElse) {
    struct Case {
        char const* name;
        int type;
    };
    Case const cases[] = {
        {"UNSIGNED CHAR", 6}, {"char", 5},         {"Byte", 6},           {"signed char", 5},
        {"short", 7},         {"ushort", 8},       {"unsigned short", 8}, {"int", 9},
        {"unsigned int", 10}, {"long", 9},         {"unsigned long", 10}, {"float", 13},
        {"double", 14},       {"Long Double", 14}, {"bool", 0},           {"", 0},
        {"shor", 0},          {"shorts", 0},       {" int", 0},           {nullptr, 0}};
    for (Case const& each : cases)
        EXPECT_EQ(ParseTypeCode(each.name), each.type) << (each.name ? each.name : "null");
}

TEST(Point, ComparesExactly) {
    EXPECT_TRUE(Point(1, 2) == Point(1.0, 2.0));
    double const nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(Point(nan, 0.0) == Point(nan, 0.0));
    Point point;
    point = APOINT(3, -4);
    EXPECT_TRUE(point == Point(3, -4));
}

TEST(Rectangle, DropsTheStrideOfASize) {
    Rectangle const rectangle(APOINT(1, 2), SSize(640, 480));
    EXPECT_EQ(SSize(640, 480).stride, 640);
    EXPECT_EQ(rectangle.x, 1);
    EXPECT_EQ(rectangle.y, 2);
    EXPECT_EQ(rectangle.width, 640);
    EXPECT_EQ(rectangle.height, 480);
}

TEST(ValidateImageBuffer, CreatesZeroedOutputWithTheStrideOfTheSource) {
    auto source = RandomImage<unsigned short>({5, 3, 8}, 1);
    ImageAttributes output;
    ASSERT_EQ(ValidateImageBuffer(source.Attributes(12, 7), &output), SOLVANE_OK);
    EXPECT_EQ(Description(output), Description(source.Attributes(12, 7)));
    for (int i = 0; i < 8 * 3; ++i) EXPECT_EQ(static_cast<unsigned short*>(output.buffer)[i], 0);
    FreePixels(output.buffer);
}

TEST(ValidateImageBuffer, RefusesInItsOrder) {
    unsigned char a = 0, b = 0;
    constexpr auto kInPlace = L"Output is NULL and in-place operation not supported";
    constexpr auto kMemory = L"ValidateImageBuffer: Memory allocation failed for 2147483647 bytes.";
    constexpr auto kSizes = L"Source and destination image must be same size.";
    ImageAttributes const one(eByte, &a, 1, 1, 1, 8, 0), none;
    auto const validate = [](ImageAttributes source, ImageAttributes const& destination) {
        ImageAttributes given = destination;
        SOLVANE_RETURNCODE const code = ValidateImageBuffer(source, &given);
        EXPECT_EQ(given.buffer, destination.buffer);
        return code;
    };
    EXPECT_REFUSAL(4, kInPlace, ValidateImageBuffer(one, nullptr));
    EXPECT_REFUSAL(4, kInPlace, validate(one, one));                               // same pixels
    EXPECT_REFUSAL(4, kInPlace, validate({eByte, nullptr, 1, 1, 1, 8, 0}, none));  // both null
    EXPECT_REFUSAL(4, kSizes, validate(one, {eByte, &b, 2, 1, 2, 8, 0}));          // width
    EXPECT_REFUSAL(4, kSizes, validate(one, {eByte, &b, 1, 2, 1, 8, 0}));          // height
    EXPECT_REFUSAL(0, L"", validate(one, {eDouble, &b, 1, 1, 9, 64, 0}));          // other type and stride
    EXPECT_REFUSAL(1, kMemory, validate({eDouble, &a, 1, INT_MAX, INT_MAX, 64, 0}, none));  // too large
    EXPECT_REFUSAL(1, kMemory, validate({eByte, &a, 1, -1, 1, 8, 0}, none));                // negative
}

}  // namespace
}  // namespace ZPA
