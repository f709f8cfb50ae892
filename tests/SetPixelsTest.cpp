// SetPixels: values, regions and masks, and what is refused.
#include <Basics/PixelOperations.h>
#include <gtest/gtest.h>

#include "support/CapturedLog.h"
#include "support/Regions.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

template <typename T> class SetPixelsOf : public testing::Test {};
using Served = testing::Types<unsigned char, unsigned short, float, double>;
TYPED_TEST_SUITE(SetPixelsOf, Served, );

TYPED_TEST(SetPixelsOf, WhatTheModelSetsOnEverySimdTarget) {
    for (Shape const shape : kShapes) {
        auto mask = RandomMask({shape.width, shape.height, shape.width + 5}, 2);
        mask.At(shape.width - 1, 0) = 7;
        ImageAttributes const maskAttributes = mask.Attributes();
        for (Choice const& choice : Choices(shape))
            for (int const maskValue : {-5, -1, 0, 7, 300})
                ForEachSimdTarget([&] {
                    SCOPED_TRACE(testing::Message() << shape << ", " << choice << ", " << maskValue);
                    auto image = RandomImage<TypeParam>(shape, 3);
                    auto expected = image;
                    Rectangle const area = choice.area;
                    for (int y = 0; y < area.height; ++y)
                        for (int x = 0; x < area.width; ++x) {
                            int const m =
                                choice.masked ? mask.At(choice.origin.x + x, choice.origin.y + y) : maskValue;
                            if (m == maskValue || (maskValue < 0 && m != 0))
                                expected.At(area.x + x, area.y + y) = 201;
                        }
                    EXPECT_EQ(SetPixels(choice.Roi(), choice.Mask(maskAttributes), choice.Origin(), maskValue,
                                        201.0, image.Attributes()),
                              SOLVANE_OK);
                    EXPECT_TRUE(image == expected);
                });
    }
}

template <typename T> T Set(double value) {
    TestImage<T> image({1, 1, 1});
    EXPECT_EQ(SetPixels(nullptr, nullptr, nullptr, 0, value, image.Attributes()), SOLVANE_OK);
    return image.At(0, 0);
}

TEST(SetPixels, TruncatesAndWraps) {
    EXPECT_EQ(Set<unsigned short>(3.9), 3);
    EXPECT_EQ(Set<unsigned short>(-1), 65535);
    EXPECT_EQ(Set<unsigned char>(300.7), 44);
    EXPECT_EQ(Set<unsigned char>(-0.9), 0);
    EXPECT_EQ(Set<unsigned short>(1e12), 0);
    EXPECT_EQ(Set<unsigned short>(std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(Set<float>(0.1), 0.1f);
    EXPECT_EQ(Set<double>(0.1), 0.1);
}

TEST(SetPixels, RefusesInItsOrder) {
    unsigned short pixels[24] = {};
    ImageAttributes const image = Over(pixels, eUInt16, 4, 3, 6);
    ImageAttributes const small(eByte, maskPixels, 3, 3, 3, 8, 0);
    auto const set = [](Region const& region, ImageAttributes destination) {
        return SetPixels(region.roi, region.mask, region.origin, -1, 9.0, destination);
    };
    EXPECT_REFUSAL(6, kByteMask, set({&kEmpty, &kFloatMask}, Described(eInt16, 4, 3, 6)));
    EXPECT_REFUSAL(6, L"The destination image type is not supported.",
                   set({&kEmpty, &small}, Described(eInt16, 4, 3, 6)));
    EXPECT_REFUSAL(2, L"The destination image had a NULL buffer pointer.",
                   set({&kEmpty, &small}, Described(eUInt16, 4, 3, 6)));
    EXPECT_REFUSAL(2, L"The destination image and mask were different sizes.", set({&kEmpty, &small}, image));
    ExpectRegionRefusals([&](Region const& region) { return set(region, image); },
                         L"The rectangular ROI was out of bounds in the destination image.");
    EXPECT_REFUSAL(7, kRowsOverlap, set({}, Over(pixels, eUInt16, 4, 3, 3)));
    for (unsigned short const pixel : pixels) EXPECT_EQ(pixel, 0);
}

}  // namespace
}  // namespace ZPA
