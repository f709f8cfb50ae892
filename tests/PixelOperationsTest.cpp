// The smaller pixel operations: deep copies, masks, differences and limits.
#include <Basics/PixelOperations.h>
#include <Basics/Regions.h>
#include <gtest/gtest.h>

#include <cmath>

#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

TEST(CopyImage, CopiesThePaddingAndTheWholeLastRow) {
    auto pixels = RandomImage<double>({24, 1, 24}, 1);
    auto const of = [&](eTypeCode type, int width, int height, int stride) {
        return ImageAttributes(type, pixels.Pixels(), width, height, stride, 8 * SizeOfTypeCode(type), 3);
    };
    for (ImageAttributes const& source : {of(eByte, 5, 3, 8), of(eUInt16, 5, 3, 8), of(eDouble, 5, 3, 8),
                                          of(eByte, 8, 1, 0), of(eUInt16, 4, 1, 2), of(eByte, 4, 3, 2)}) {
        ImageAttributes copy;
        ASSERT_EQ(copyImage(source, &copy), SOLVANE_OK);
        EXPECT_EQ(Description(copy), Description(source));
        int const size = source.stride * (source.height - 1) + std::max(source.width, source.stride);
        // The sanitizers see what is too short.
        EXPECT_EQ(std::memcmp(copy.buffer, pixels.Pixels(),
                              static_cast<std::size_t>(size * SizeOfTypeCode(source.type))),
                  0);
        FreePixels(copy.buffer);
    }
}

TEST(CopyImage, FreesTheDestinationOnEveryFailure) {
    constexpr auto kNull = L"template_copy(): Null pointer.";
    constexpr auto kOverlap = L"template_copy(): The rows of the source overlap.";
    unsigned short pixels[16] = {};
    auto const copy = [](ImageAttributes source, bool toPixels) {
        ImageAttributes destination;
        if (toPixels) destination.buffer = new unsigned short[4];
        SOLVANE_RETURNCODE const code = copyImage(source, &destination);
        EXPECT_EQ(destination.buffer, nullptr);
        EXPECT_EQ(destination.width, 0);
        return code;
    };
    EXPECT_REFUSAL(6, L"", copy(Over(pixels, eInt16, 2, 2, 2), true));
    EXPECT_REFUSAL(2, kNull, copy(Described(eUInt16, 2, 2, 2), true));
    EXPECT_REFUSAL(2, kNull, copy(Over(pixels, eUInt16, 2, 2, 2), true));
    EXPECT_REFUSAL(1, kNull, copy(Over(pixels, eDouble, 1, INT_MAX, INT_MAX), false));
    EXPECT_REFUSAL(1, kNull, copy(Over(pixels, eUInt16, 2, -2, 2), false));
    EXPECT_REFUSAL(1, kNull, copy(Over(pixels, eUInt16, 2, 1, -2), false));
    EXPECT_REFUSAL(7, kOverlap, copy(Over(pixels, eUInt16, 4, 2, 3), false));
    EXPECT_EQ(copyImage(Over(pixels, eUInt16, 2, 2, 2), nullptr), SOLVANE_NULL_POINTER);
}

// The cores are told their elements by the caller, and the memory by the descriptor.
TEST(TypedCores, RefuseImagesOfOtherElements) {
    std::vector<unsigned char> const memory(6, 1);
    ImageAttributes const bytes(eByte, const_cast<unsigned char*>(memory.data()), 3, 2, 3, 8, 0);
    ImageAttributes const words(eUInt16, const_cast<unsigned char*>(memory.data()), 3, 1, 3, 16, 0);
    ImageAttributes copy;
    CapturedLog const log;
    EXPECT_EQ(template_copy<unsigned short>(bytes, &copy), 7);
    EXPECT_EQ(template_copy<double>(bytes, &copy), 7);
    EXPECT_EQ(template_copy<unsigned char>(words, &copy), 7);  // the copy would be described as words
    EXPECT_EQ(copy.buffer, nullptr);
    EXPECT_EQ(log.Text(), L"template_copy(): The elements of the source have another size.");
    EXPECT_EQ(template_compare<unsigned short>(bytes, bytes), 7);
    EXPECT_EQ(log.Text(), L"template_compare(): The elements of an image are too narrow.");
    EXPECT_EQ(template_FloodFill<unsigned short>(bytes, 0, 0, 5, 4), 7);
    EXPECT_EQ(template_FillHoles<unsigned short>(bytes, 4), 7);
    EXPECT_EQ(template_FloodBorderAreas<unsigned short>(bytes, 1, 5, 4), 7);
    int labels = 0;
    EXPECT_EQ(template_LabelMarkers<unsigned short>(bytes, 4, &labels), 7);
    EXPECT_EQ(log.Text(), L"The image's elements are too narrow.");
    EXPECT_EQ(memory, std::vector<unsigned char>(6, 1));
}

TEST(CopyBuffer, ServesUnsignedShortOnly) {
    unsigned short elements[] = {1, 2, 3};
    BufferAttributes copy;
    ASSERT_EQ(copyBuffer({eUInt16, elements, 3}, &copy), SOLVANE_OK);
    EXPECT_EQ(copy.type, eUInt16);
    EXPECT_EQ(copy.size, 3);
    EXPECT_EQ(std::memcmp(copy.buffer, elements, sizeof elements), 0);
    EXPECT_EQ(copyBuffer({eInt16, elements, 3}, &copy), SOLVANE_UNSUPPORTED_TYPE);
    EXPECT_EQ(copy.buffer, nullptr);
    EXPECT_EQ(copyBuffer({eUInt16, elements, -3}, &copy), SOLVANE_OUT_OF_MEMORY);
    EXPECT_EQ(copyBuffer({eUInt16, nullptr, 3}, &copy), SOLVANE_NULL_POINTER);
    EXPECT_EQ(copyBuffer({eUInt16, elements, 3}, nullptr), SOLVANE_NULL_POINTER);
}

template <typename T> class ApplyMaskTo : public testing::Test {};
using Unsigned = testing::Types<unsigned char, unsigned short>;
TYPED_TEST_SUITE(ApplyMaskTo, Unsigned, );

TYPED_TEST(ApplyMaskTo, WhatTheModelClearsOnEverySimdTarget) {
    for (Shape const shape : kShapes)
        ForEachSimdTarget([&] {
            SCOPED_TRACE(testing::Message() << shape);
            auto image = RandomImage<TypeParam>(shape, 1);
            auto mask = RandomMask(shape, 2);
            auto expected = image;
            for (std::size_t i = 0; i < image.Size(); ++i)
                if (mask.Pixels()[i] == 0) expected.Pixels()[i] = 0;
            EXPECT_EQ(ApplyMask(image.Attributes(), mask.Attributes()), SOLVANE_OK);
            EXPECT_TRUE(image == expected);
        });
}

TEST(ApplyMask, RefusesInItsOrder) {
    constexpr auto kSizes = L"ApplyMask(): Image and mask cannot be different sizes.";
    constexpr auto kMaskType = L"ApplyMask(): Mask must be unsigned char.";
    unsigned char pixels[8] = {};
    ImageAttributes const negative = Over(pixels, eByte, 2, -1, -2);
    auto const apply = [](eTypeCode type, ImageAttributes mask) {
        return ApplyMask(Described(type, 4, 3, 5), mask);
    };
    EXPECT_REFUSAL(4, kSizes, apply(eByte, Described(eByte, 3, 3, 5)));
    EXPECT_REFUSAL(4, kSizes, apply(eByte, Described(eByte, 4, 2, 5)));
    EXPECT_REFUSAL(4, kSizes, apply(eByte, Described(eByte, 4, 3, 4)));
    EXPECT_REFUSAL(4, kSizes, apply(eByte, Described(eUInt16, 3, 3, 5)));
    EXPECT_REFUSAL(4, kMaskType, apply(eSingle, Described(eUInt16, 4, 3, 5)));
    EXPECT_REFUSAL(6, L"", apply(eSingle, Described(eByte, 4, 3, 5)));
    EXPECT_REFUSAL(2, L"ApplyMask(): Null pointer.", apply(eByte, Described(eByte, 4, 3, 5)));
    EXPECT_REFUSAL(3, L"ApplyMask(): The image's size is negative.", ApplyMask(negative, negative));
}

template <typename T> void ExpectDifferences(int offset) {
    SCOPED_TRACE(testing::Message() << "type " << TypeCodeOf<T> << ", " << offset);
    constexpr int kCount = 150, kStart = 50;
    auto memory = RandomImage<T>({600, 1, 600}, 3);
    auto expected = memory;
    T* const to = expected.Pixels() + kStart + offset;
    for (int i = 0; i + 1 < kCount; ++i)
        to[i] = static_cast<T>(std::int64_t{expected.Pixels()[kStart + i + 1]} - to[i]);
    to[kCount - 1] = 0;
    BufferAttributes output(TypeCodeOf<T>, memory.Pixels() + kStart + offset, kCount);
    EXPECT_EQ(DiffBuffer({TypeCodeOf<T>, memory.Pixels() + kStart, kCount}, &output), SOLVANE_OK);
    EXPECT_TRUE(memory == expected);
}

TEST(DiffBuffer, GoesFromTheFirstElementToTheLastOnEverySimdTarget) {
    // Where the output begins in the memory that also holds the source: apart, the same, ahead of it and
    // behind.
    for (int const offset : {300, 0, -1, -3, 1, 2, 5, 40})
        ForEachSimdTarget([&] {
            ForEachType<std::uint8_t, short, int>(
                [&](auto element) { ExpectDifferences<decltype(element)>(offset); });
        });
}

TEST(DiffBuffer, RefusesInItsOrder) {
    constexpr auto kDiffer = L"The output and input images must be of the same type and type";
    constexpr auto kType = L"Buffer type 16bit unsupported";
    short elements[4] = {};
    auto const diff = [](BufferAttributes source, BufferAttributes output) {
        return DiffBuffer(source, &output);
    };
    EXPECT_REFUSAL(7, kDiffer, diff({eInt16, elements, 2}, {eInt16, elements, 3}));
    EXPECT_REFUSAL(7, kDiffer, diff({eInt16, elements, 2}, {eByte, elements, 2}));
    EXPECT_REFUSAL(7, kType, diff({eUInt16, nullptr, 2}, {eUInt16, nullptr, 2}));
    EXPECT_REFUSAL(7, kType, diff({eDouble, nullptr, 2}, {eDouble, nullptr, 2}));
    EXPECT_REFUSAL(2, L"The input or output buffer had a NULL pointer.",
                   diff({eInt16, nullptr, 2}, {eInt16, elements, 2}));
    EXPECT_REFUSAL(0, L"", diff({eInt16, elements, -2}, {eInt16, elements, -2}));
    EXPECT_EQ(DiffBuffer({eInt16, elements, 2}, nullptr), SOLVANE_NULL_POINTER);
}

TEST(ClipImage, ComparesWholeLimitsOnEverySimdTarget) {
    auto const before = RandomImage<short>({131, 1, 131}, 4);
    constexpr int kLimits[][2] = {{-100, 100},      {100, -100},        {0, 0},
                                  {-32768, 32767},  {-40000, 40000},    {40000, 50000},
                                  {-50000, -40000}, {INT_MIN, INT_MAX}, {5, 70000}};
    for (auto const& [low, high] : kLimits)
        ForEachSimdTarget([&, low = low, high = high] {
            SCOPED_TRACE(testing::Message() << low << " to " << high);
            auto image = before, expected = before;
            expected.Fill([&](int x, int y) {
                int const pixel = before.At(x, y);
                return pixel < low ? low : pixel > high ? high : pixel;
            });
            ClipImage(image.Pixels(), 131, low, high);
            EXPECT_TRUE(image == expected);
        });
    ClipImage(nullptr, 5, 0, 1);
    short one = 7;
    ClipImage(&one, -1, 0, 1);
    EXPECT_EQ(one, 7);
}

}  // namespace
}  // namespace ZPA
