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

TEST(CopyImage, CopiesThePaddingToo) {
    ForEachType<std::uint8_t, std::uint16_t, double>([](auto element) {
        auto source = RandomImage<decltype(element)>({5, 3, 8}, 1);
        ImageAttributes copy;
        ASSERT_EQ(copyImage(source.Attributes(12, 3), &copy), SOLVANE_OK);
        EXPECT_EQ(std::memcmp(copy.buffer, source.Pixels(), source.Size() * sizeof element), 0);
        EXPECT_EQ(Description(copy), Description(source.Attributes(12, 3)));
        FreePixels(copy.buffer);
    });
}

TEST(CopyImage, HoldsTheWholeLastRowWhereTheStrideIsNarrow) {
    unsigned char const pixels[] = {1, 2, 3, 4, 5, 6, 7, 8};
    void* const first = const_cast<unsigned char*>(pixels);
    struct Case {
        ImageAttributes source;
        std::size_t bytes;
    };
    Case const cases[] = {{{eByte, first, 8, 1, 0, 8, 0}, 8},
                          {{eUInt16, first, 4, 1, 2, 16, 0}, 8},
                          {{eByte, first, 4, 3, 2, 8, 0}, 8}};
    for (Case const& each : cases) {
        ImageAttributes copy;
        ASSERT_EQ(copyImage(each.source, &copy), SOLVANE_OK);
        EXPECT_EQ(std::memcmp(copy.buffer, pixels, each.bytes), 0);  // the sanitizers see what is too short
        EXPECT_EQ(copy.stride, each.source.stride);
        FreePixels(copy.buffer);
    }
}

TEST(CopyImage, FreesTheDestinationOnEveryFailure) {
    constexpr auto kNull = L"template_copy(): Null pointer.";
    constexpr auto kOverlap = L"template_copy(): The rows of the source overlap.";
    unsigned short pixels[16] = {};
    struct Case {
        char const* name;
        ImageAttributes source;
        bool filled;  // whether the destination has pixels
        int code;
        std::wstring message;
    };
    Case const cases[] = {
        {"type", {eInt16, pixels, 2, 2, 2, 16, 0}, true, 6, L""},
        {"null source", {eUInt16, nullptr, 2, 2, 2, 16, 0}, true, 2, kNull},
        {"destination with pixels", {eUInt16, pixels, 2, 2, 2, 16, 0}, true, 2, kNull},
        {"no memory", {eDouble, pixels, 1, INT_MAX, INT_MAX, 64, 0}, false, 1, kNull},
        {"negative height", {eUInt16, pixels, 2, -2, 2, 16, 0}, false, 1, kNull},
        {"negative stride", {eUInt16, pixels, 2, 1, -2, 16, 0}, false, 1, kNull},
        {"rows overlap", {eUInt16, pixels, 4, 2, 3, 16, 0}, false, 7, kOverlap},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        ImageAttributes destination;
        if (each.filled) destination.buffer = new unsigned short[4];
        ExpectRefusal([&] { return copyImage(each.source, &destination); }, each.code, each.message);
        EXPECT_EQ(destination.buffer, nullptr);
        EXPECT_EQ(destination.width, 0);
    }
    EXPECT_EQ(copyImage({eUInt16, pixels, 2, 2, 2, 16, 0}, nullptr), SOLVANE_NULL_POINTER);
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
    ImageAttributes const negative(eByte, pixels, 2, -1, -2, 8, 0);
    EXPECT_REFUSAL(4, kSizes, ApplyMask(Described(eByte, 4, 3, 5), Described(eByte, 3, 3, 5)));  // width
    EXPECT_REFUSAL(4, kSizes, ApplyMask(Described(eByte, 4, 3, 5), Described(eByte, 4, 2, 5)));  // height
    EXPECT_REFUSAL(4, kSizes, ApplyMask(Described(eByte, 4, 3, 5), Described(eByte, 4, 3, 4)));  // stride
    EXPECT_REFUSAL(
        4, kSizes,
        ApplyMask(Described(eByte, 4, 3, 5), Described(eUInt16, 3, 3, 5)));  // sizes before mask type
    EXPECT_REFUSAL(
        4, kMaskType,
        ApplyMask(Described(eSingle, 4, 3, 5), Described(eUInt16, 4, 3, 5)));  // mask type before image type
    EXPECT_REFUSAL(
        6, L"", ApplyMask(Described(eSingle, 4, 3, 5), Described(eByte, 4, 3, 5)));  // image type in silence
    EXPECT_REFUSAL(2, L"ApplyMask(): Null pointer.",
                   ApplyMask(Described(eByte, 4, 3, 5), Described(eByte, 4, 3, 5)));
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
    struct Limits {
        int low, high;
    };
    Limits const all[] = {{-100, 100},      {100, -100},        {0, 0},
                          {-32768, 32767},  {-40000, 40000},    {40000, 50000},
                          {-50000, -40000}, {INT_MIN, INT_MAX}, {5, 70000}};
    for (Limits const limits : all)
        ForEachSimdTarget([&] {
            SCOPED_TRACE(testing::Message() << limits.low << " to " << limits.high);
            auto image = RandomImage<short>({131, 1, 131}, 4);
            auto expected = image;
            for (std::size_t i = 0; i < expected.Size(); ++i) {
                short& pixel = expected.Pixels()[i];
                int const value = pixel;
                if (value < limits.low)
                    pixel = static_cast<short>(limits.low);
                else if (value > limits.high)
                    pixel = static_cast<short>(limits.high);
            }
            ClipImage(image.Pixels(), 131, limits.low, limits.high);
            EXPECT_TRUE(image == expected);
        });
    ClipImage(nullptr, 5, 0, 1);
    short one = 7;
    ClipImage(&one, -1, 0, 1);
    EXPECT_EQ(one, 7);
}

}  // namespace
}  // namespace ZPA
