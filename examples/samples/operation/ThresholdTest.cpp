// [sample]
// Threshold against the comparison that it is.
#include "examples/samples/operation/Threshold.h"

#include <gtest/gtest.h>

#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

template <typename T> class ThresholdOf : public testing::Test {};
using Served = testing::Types<unsigned char, unsigned short>;
TYPED_TEST_SUITE(ThresholdOf, Served, );

TYPED_TEST(ThresholdOf, MarksWhatIsBrightEnough) {
    constexpr int kLargest = std::numeric_limits<TypeParam>::max();
    for (Shape const shape : kShapes)
        for (int const limit : {-1, 0, 1, kLargest / 2, kLargest, kLargest + 1})
            ForEachSimdTarget([&] {
                SCOPED_TRACE(testing::Message() << shape << ", limit " << limit);
                auto image = RandomImage<TypeParam>(shape, 1);
                image.At(0, 0) = static_cast<TypeParam>(limit);
                TestImage<unsigned char> output({shape.width, shape.height, shape.width + 3});
                auto expected = output;  // with its padding and guards
                for (int y = 0; y < shape.height; ++y)
                    for (int x = 0; x < shape.width; ++x) expected.At(x, y) = image.At(x, y) >= limit;
                auto attributes = output.Attributes();
                EXPECT_EQ(Threshold(image.Attributes(), limit, &attributes), SOLVANE_OK);
                EXPECT_EQ(output, expected);
            });
}

TEST(Threshold, RefusesInItsOrder) {
    unsigned short pixels[4] = {};
    ImageAttributes const image(eUInt16, pixels, 2, 2, 2, 16, 0), none(eUInt16, nullptr, 2, 2, 2, 16, 0),
        other(eInt32, pixels, 1, 1, 1, 32, 0), overlapping(eUInt16, pixels, 2, 2, 1, 16, 0);
    unsigned char marks[4] = {9, 9, 9, 9};
    struct {
        char const* name;
        ImageAttributes image, output;
        int code;
        wchar_t const* message;
    } const refusals[] = {
        {"null", none, {eByte, marks, 3, 2, 3, 8, 0}, 2, L"Threshold(): Null pointer."},
        {"type", other, {eByte, marks, 3, 2, 3, 8, 0}, 6, L"Threshold(): The image type is not supported."},
        {"size",
         image,
         {eByte, marks, 1, 2, 1, 8, 0},
         7,
         L"Threshold(): The output image has another type or size."},
        {"rows", overlapping, {eByte, marks, 2, 2, 2, 8, 0}, 7, L"Threshold(): Rows overlap."},
    };
    for (auto refusal : refusals) {
        SCOPED_TRACE(refusal.name);
        CapturedLog const log;
        EXPECT_EQ(Threshold(refusal.image, 0, &refusal.output), refusal.code);
        EXPECT_EQ(log.Text(), refusal.message);
        EXPECT_EQ(marks[0], 9);
    }
}

}  // namespace
}  // namespace ZPA
// [sample]
