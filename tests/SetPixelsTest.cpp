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
        int const insetX = shape.width / 4, insetY = shape.height / 3;
        Rectangle const inner(insetX, insetY, shape.width - insetX, shape.height - insetY);
        APOINT const origin(insetX / 2, insetY / 2);
        struct Case {
            Rectangle const* roi;
            ImageAttributes const* mask;
            APOINT const* origin;
            int maskValue;
        };
        Case const cases[] = {{nullptr, nullptr, nullptr, 0},          {&inner, nullptr, &origin, 0},
                              {nullptr, &maskAttributes, nullptr, -1}, {&inner, &maskAttributes, &origin, -5},
                              {&inner, &maskAttributes, nullptr, 0},   {nullptr, &maskAttributes, nullptr, 7},
                              {nullptr, &maskAttributes, nullptr, 300}};
        for (Case const& each : cases)
            ForEachSimdTarget([&] {
                SCOPED_TRACE(testing::Message() << shape << ", mask value " << each.maskValue);
                auto image = RandomImage<TypeParam>(shape, 3);
                auto expected = image;
                Rectangle const area = each.roi ? *each.roi : Rectangle(0, 0, shape.width, shape.height);
                APOINT const start = each.origin ? *each.origin : APOINT();
                for (int y = 0; y < area.height; ++y)
                    for (int x = 0; x < area.width; ++x) {
                        int const m = mask.At(start.x + x, start.y + y);
                        if (!each.mask || (each.maskValue < 0 ? m != 0 : m == each.maskValue))
                            expected.At(area.x + x, area.y + y) = 201;
                    }
                EXPECT_EQ(
                    SetPixels(each.roi, each.mask, each.origin, each.maskValue, 201.0, image.Attributes()),
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
    unsigned char maskPixels[24] = {};
    ImageAttributes const image(eUInt16, pixels, 4, 3, 6, 16, 0);
    ImageAttributes const noPixels(eUInt16, nullptr, 4, 3, 6, 16, 0);
    ImageAttributes const signedImage(eInt16, nullptr, 4, 3, 6, 16, 0);
    ImageAttributes const narrow(eUInt16, pixels, 4, 3, 3, 16, 0);
    ImageAttributes const mask(eByte, maskPixels, 4, 3, 4, 8, 0);
    ImageAttributes const small(eByte, maskPixels, 3, 3, 3, 8, 0);
    ImageAttributes const noMask(eByte, nullptr, 4, 3, 4, 8, 0);
    ImageAttributes const wrongMask(eSByte, nullptr, 3, 3, 3, 8, 0);
    Rectangle const empty(0, 0, 4, 0), negative(-1, 0, 2, 2), wide(1, 0, 4, 1), huge(1, 0, INT_MAX, 1),
        inside(1, 1, 3, 2);
    APOINT const beyond(2, 0), before(0, -1);
    constexpr auto kBounds = L"The rectangular ROI was out of bounds in the destination image.";
    auto const set = [](auto roi, auto mask, auto origin, ImageAttributes destination) {
        return SetPixels(roi, mask, origin, -1, 9.0, destination);
    };
    EXPECT_REFUSAL(6, kByteMask, set(&empty, &wrongMask, nullptr, signedImage));  // mask type first
    EXPECT_REFUSAL(6, L"The destination image type is not supported.",
                   set(&empty, &mask, nullptr, signedImage));
    EXPECT_REFUSAL(2, L"The destination image had a NULL buffer pointer.",
                   set(&empty, &small, nullptr, noPixels));
    EXPECT_REFUSAL(2, L"The destination image and mask were different sizes.",
                   set(&empty, &small, nullptr, image));                      // mask size
    EXPECT_REFUSAL(3, kEmptyRegion, set(&empty, &noMask, nullptr, image));    // empty
    EXPECT_REFUSAL(3, kBounds, set(&negative, &noMask, nullptr, image));      // negative
    EXPECT_REFUSAL(3, kBounds, set(&wide, &noMask, nullptr, image));          // wide
    EXPECT_REFUSAL(3, kBounds, set(&huge, nullptr, nullptr, image));          // huge
    EXPECT_REFUSAL(2, kNullMask, set(nullptr, &noMask, &before, image));      // null mask
    EXPECT_REFUSAL(3, kOutsideMask, set(&inside, &mask, &before, image));     // origin before
    EXPECT_REFUSAL(3, kOutsideMask, set(&inside, &mask, &beyond, image));     // origin beyond
    EXPECT_REFUSAL(7, kRowsOverlap, set(nullptr, nullptr, nullptr, narrow));  // rows overlap
    for (unsigned short const pixel : pixels) EXPECT_EQ(pixel, 0);
}

}  // namespace
}  // namespace ZPA
