// The smaller pixel operations: deep copies, masks, comparisons, differences and limits.
#include <Basics/PixelOperations.h>
#include <Basics/Regions.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

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

TEST(Compare, SeesEveryPixelAndNoPadding) {
    for (Shape const shape : kShapes) {
        SCOPED_TRACE(testing::Message() << shape);
        auto a = RandomImage<unsigned short>(shape, 1);
        TestImage<unsigned short> b({shape.width, shape.height, shape.width + 2});
        b.Fill([&](int x, int y) { return a.At(x, y); });
        EXPECT_EQ(compare(a.Attributes(), b.Attributes()), SOLVANE_OK);
        EXPECT_EQ(compare(a.Attributes(), a.Attributes()), SOLVANE_OK);
        b.At(shape.width - 1, shape.height - 1) ^= 1;
        CapturedLog const log;
        EXPECT_EQ(compare(a.Attributes(), b.Attributes()), SOLVANE_OPERATION_FAILED);
        EXPECT_TRUE(log.Errors().empty());
    }
}

TEST(Compare, AnswersWithCodes) {
    unsigned short pixels[16] = {};
    ImageAttributes const good(eUInt16, pixels, 2, 2, 2, 16, 0);
    ImageAttributes bad = good;
    bad.type = eInt16;
    CapturedLog log;
    EXPECT_EQ(compare(good, bad), SOLVANE_UNSUPPORTED_TYPE);
    EXPECT_EQ(compare(bad, good), SOLVANE_UNSUPPORTED_TYPE);
    bad = good;
    bad.width = 1;
    EXPECT_EQ(compare(good, bad), SOLVANE_INVALID_ARGUMENT);
    EXPECT_TRUE(log.Errors().empty());
    bad.buffer = nullptr;
    EXPECT_EQ(compare(bad, good), SOLVANE_NULL_POINTER);
    EXPECT_EQ(log.Text(), L"template_compare(): Null pointer.");
    ImageAttributes const backwards(eUInt16, pixels + 8, 2, 2, -2, 16, 0);
    EXPECT_EQ(compare(good, backwards), SOLVANE_SIZE_MISMATCH);
    ImageAttributes const negative(eUInt16, pixels, -2, -2, -2, 16, 0);
    EXPECT_EQ(compare(negative, negative), SOLVANE_OK);
}

template <typename T> class DecimateAndCompareOf : public testing::Test {};
using Comparable = testing::Types<unsigned char, short, unsigned short, float, double>;
TYPED_TEST_SUITE(DecimateAndCompareOf, Comparable, );

TYPED_TEST(DecimateAndCompareOf, CountsSamplesOfRectangleAndMask) {
    using T = TypeParam;
    TestImage<T> first({9, 7, 11}), second({9, 7, 10});
    for (TestImage<T>* const image : {&first, &second}) image->Fill([](int x, int y) { return x + 10 * y; });
    second.At(5, 4) = static_cast<T>(second.At(5, 4) + 3);  // the one that differs

    auto mask = Uniform<unsigned char>({4, 4, 6}, 1), hole = mask;
    hole.At(1, 2) = 0;
    ImageAttributes const maskImage = mask.Attributes();
    ImageAttributes const holeImage = hole.Attributes();
    Rectangle const around(4, 3, 3, 3), beside(0, 0, 5, 7), partlyOutside(-2, -2, 20, 20);
    APOINT const over(4, 2), apart(0, 0);
    struct Case {
        char const* name;
        Rectangle const* roi;
        ImageAttributes const* mask;
        APOINT const* origin;
        int xStep, yStep;
        double tolerance;
        bool expected;
    };
    Case const cases[] = {
        {"whole", nullptr, nullptr, nullptr, 1, 1, 1.0, false},
        {"larger tolerance", nullptr, nullptr, nullptr, 1, 1, 4.0, true},
        {"equal to the tolerance", nullptr, nullptr, nullptr, 1, 1, 3.0, false},
        {"rectangle around", &around, nullptr, nullptr, 1, 1, 1.0, false},
        {"rectangle beside", &beside, nullptr, nullptr, 1, 1, 1.0, true},
        {"sampled past it", nullptr, nullptr, nullptr, 2, 2, 1.0, true},
        {"sampled on it", &around, nullptr, nullptr, 1, 1, 1.0, false},
        {"steps beyond the image", nullptr, nullptr, nullptr, INT_MAX, INT_MAX, 1.0, true},
        {"mask over", nullptr, &maskImage, &over, 1, 1, 1.0, false},
        {"mask with a hole", nullptr, &holeImage, &over, 1, 1, 1.0, true},
        {"mask apart", nullptr, &maskImage, &apart, 1, 1, 1.0, true},
        {"mask cuts a rectangle that leaves the image", &partlyOutside, &maskImage, &over, 1, 1, 1.0, false},
        {"no tolerance", nullptr, nullptr, nullptr, 1, 1, 0.0, false},
        {"negative tolerance", &beside, nullptr, nullptr, 1, 1, -1.0, false},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        bool equivalent = !each.expected;
        EXPECT_EQ(DecimateAndCompare(first.Attributes(), second.Attributes(), each.roi, each.mask,
                                     each.origin, each.xStep, each.yStep, each.tolerance, &equivalent),
                  SOLVANE_OK);
        EXPECT_EQ(equivalent, each.expected);
    }
}

TYPED_TEST(DecimateAndCompareOf, FindsOneDifferenceAnywhereOnEverySimdTarget) {
    using T = TypeParam;
    constexpr int kWidth = 150;
    auto first = RandomImage<T>({kWidth, 1, kWidth}, 1);
    ForEachSimdTarget([&] {
        for (int x = 0; x < kWidth; ++x)
            for (int const sign : {-1, 1}) {
                auto second = first;
                first.At(x, 0) = 100;
                second.At(x, 0) = static_cast<T>(100 + sign * 7);
                for (double const tolerance : {7.0, 8.0}) {
                    bool same = false;
                    ASSERT_EQ(DecimateAndCompare(first.Attributes(), second.Attributes(), nullptr, nullptr,
                                                 nullptr, 1, 1, tolerance, &same),
                              SOLVANE_OK);
                    ASSERT_EQ(same, tolerance > 7) << x;
                }
            }
    });
}

TEST(DecimateAndCompare, TruncatesTolerancesOfIntegersAndPassesNotANumber) {
    auto const agree = [](auto a, auto b, double tolerance) {
        bool equivalent = false;
        ImageAttributes const first(TypeCodeOf<decltype(a)>, &a, 1, 1, 1, 0, 0);
        ImageAttributes const second(TypeCodeOf<decltype(a)>, &b, 1, 1, 1, 0, 0);
        EXPECT_EQ(DecimateAndCompare(first, second, nullptr, nullptr, nullptr, 1, 1, tolerance, &equivalent),
                  SOLVANE_OK);
        return equivalent;
    };
    EXPECT_FALSE(agree(short{5}, short{5}, 0.9));
    EXPECT_TRUE(agree(short{5}, short{5}, 1.5));
    EXPECT_FALSE(agree(short{5}, short{6}, 1.5));
    EXPECT_FALSE(agree(short{-32768}, short{32767}, 65535.0));
    EXPECT_TRUE(agree(short{-32768}, short{32767}, 65535.5));
    EXPECT_TRUE(agree(0.0f, std::nanf(""), 1.0));
    EXPECT_FALSE(agree(1.0, 1.0 + 1e-9, 1e-9));
    EXPECT_FALSE(agree(short{5}, short{5}, std::nan("")));
}

TEST(DecimateAndCompare, RefusesInItsOrder) {
    unsigned char pixels[64] = {};
    ImageAttributes const image(eByte, pixels, 4, 4, 4, 16, 0);
    ImageAttributes const null(eByte, nullptr, 4, 4, 4, 16, 0);
    ImageAttributes const smaller(eInt16, pixels, 3, 4, 4, 16, 0);
    ImageAttributes const other(eInt16, pixels, 4, 4, 4, 16, 0);
    ImageAttributes const word(eInt32, pixels, 4, 4, 4, 32, 0);
    ImageAttributes const narrow(eByte, pixels, 4, 4, 3, 16, 0);
    ImageAttributes const mask(eByte, pixels, 4, 4, 4, 8, 0);
    ImageAttributes const nullMask(eByte, nullptr, 4, 4, 4, 8, 0);
    ImageAttributes const emptyMask(eByte, pixels, 0, 4, 4, 8, 0);
    ImageAttributes const wrongMask(eSByte, pixels, 4, 4, 4, 8, 0);
    Rectangle const empty(2, 2, 0, 1), outside(2, 2, 3, 1), huge(2, 2, INT_MAX, 1);
    APOINT const far(4, 0), before(-2, 0);
    bool answer = true;
    constexpr auto kOutside = L"The ROI was out of bounds in the image.";
    auto const differ = [](ImageAttributes const& first, ImageAttributes const& second, Rectangle const* roi,
                           ImageAttributes const* mask, APOINT const* origin, int step, bool* equivalent,
                           double tolerance) {
        return DecimateAndCompare(first, second, roi, mask, origin, step, 1, tolerance, equivalent);
    };
    EXPECT_REFUSAL(2, L"The first image had a NULL buffer pointer.",
                   differ(null, null, nullptr, nullptr, nullptr, 0, nullptr, 1));
    EXPECT_REFUSAL(2, L"The second image had a NULL buffer pointer.",
                   differ(image, null, nullptr, nullptr, nullptr, 0, nullptr, 1));
    EXPECT_REFUSAL(7, L"The two input images have different sizes.",
                   differ(image, smaller, nullptr, nullptr, nullptr, 0, nullptr, 1));
    EXPECT_REFUSAL(8, L"The two input images must be of the same type.",
                   differ(image, other, nullptr, &wrongMask, nullptr, 0, nullptr, 1));
    EXPECT_REFUSAL(6, L"The mask must be of type eByte.",
                   differ(image, image, nullptr, &wrongMask, nullptr, 0, nullptr, 1));
    EXPECT_REFUSAL(2, L"The pbIsEquivalent pointer was NULL.",
                   differ(image, image, nullptr, nullptr, nullptr, 0, nullptr, 1));
    EXPECT_REFUSAL(4, L"The x and y decimation values must be >= 1.",
                   differ(word, word, nullptr, nullptr, nullptr, 0, &answer, 0));
    EXPECT_REFUSAL(0, L"",
                   differ(word, word, &empty, nullptr, nullptr, 1, &answer, 0));  // unsupported, no tolerance
    EXPECT_REFUSAL(6, L"The image type is not supported.",
                   differ(word, word, &empty, nullptr, nullptr, 1, &answer, 1));
    EXPECT_REFUSAL(
        0, L"",
        differ(image, image, &empty, &nullMask, nullptr, 1, &answer, 256));  // bad region, large tolerance
    EXPECT_REFUSAL(3, L"The rectangular ROI was empty.",
                   differ(image, image, &empty, &emptyMask, nullptr, 1, &answer, 255));
    EXPECT_REFUSAL(3, L"The mask ROI was empty.",
                   differ(image, image, nullptr, &emptyMask, nullptr, 1, &answer, 1));
    EXPECT_REFUSAL(3, L"The combined ROI was empty.",
                   differ(image, image, nullptr, &nullMask, &far, 1, &answer, 1));                 // apart
    EXPECT_REFUSAL(3, kOutside, differ(image, image, &outside, nullptr, nullptr, 1, &answer, 1));  // outside
    EXPECT_REFUSAL(3, kOutside, differ(image, image, &huge, nullptr, nullptr, 1, &answer, 1));     // huge
    EXPECT_REFUSAL(0, L"", differ(image, image, nullptr, &mask, &before, 1, &answer, 1));
    EXPECT_REFUSAL(2, L"The mask had a NULL buffer pointer.",
                   differ(image, image, nullptr, &nullMask, nullptr, 1, &answer, 1));
    EXPECT_REFUSAL(7, L"The rows of an input image overlap.",
                   differ(narrow, image, nullptr, nullptr, nullptr, 1, &answer, 1));
}

TEST(DiffBuffer, SubtractsWhatTheOutputHeld) {
    unsigned char const bytes[] = {10, 250, 3, 3};
    unsigned char output[] = {10, 250, 3, 3, 99};
    BufferAttributes result(eByte, output, 4);
    ASSERT_EQ(DiffBuffer({eByte, const_cast<unsigned char*>(bytes), 4}, &result), SOLVANE_OK);
    unsigned char const expected[] = {240, 9, 0, 0, 99};
    EXPECT_TRUE(std::equal(expected, expected + 5, output));

    int inPlace[] = {INT_MIN, INT_MAX, 5};
    BufferAttributes same(eInt32, inPlace, 3);
    ASSERT_EQ(DiffBuffer(same, &same), SOLVANE_OK);
    EXPECT_EQ(inPlace[0], -1);
    EXPECT_EQ(inPlace[1], INT_MIN + 6);
    EXPECT_EQ(inPlace[2], 0);
}

TEST(DiffBuffer, GoesFromTheFirstElementToTheLastOnEverySimdTarget) {
    // Where the output begins in the memory that also holds the source: apart, the same, ahead of it and
    // behind.
    for (int const offset : {300, 0, -1, -3, 1, 2, 5, 40}) {
        ForEachSimdTarget([&] {
            SCOPED_TRACE(offset);
            constexpr int kCount = 150, kStart = 50;
            auto memory = RandomImage<short>({600, 1, 600}, 3);
            auto expected = memory;
            short* const to = expected.Pixels() + kStart + offset;
            for (int i = 0; i + 1 < kCount; ++i)
                to[i] = static_cast<short>(expected.Pixels()[kStart + i + 1] - to[i]);
            to[kCount - 1] = 0;
            BufferAttributes output(eInt16, memory.Pixels() + kStart + offset, kCount);
            EXPECT_EQ(DiffBuffer({eInt16, memory.Pixels() + kStart, kCount}, &output), SOLVANE_OK);
            EXPECT_TRUE(memory == expected);
        });
    }
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

TEST(Operations, OpenTheirScopeInTheLog) {
    unsigned short pixels[4] = {};
    unsigned short others[4] = {};
    ImageAttributes image(eUInt16, pixels, 2, 2, 2, 16, 0);
    ImageAttributes other(eUInt16, others, 2, 2, 2, 16, 0);
    BufferAttributes buffer(eInt16, pixels, 2), words(eUInt16, pixels, 4);
    bool answer = false;
    ImageAttributes made;
    BufferAttributes madeBuffer;
    struct Case {
        std::wstring scopes;
        std::function<void()> call;
    };
    Case const cases[] = {
        {L"CopyPixels{}", [&] { CopyPixels(image, &other); }},
        {L"SetPixels{}", [&] { SetPixels(nullptr, nullptr, nullptr, 0, 1, image); }},
        {L"copyImage{}", [&] { copyImage(image, &made); }},
        {L"copyBuffer{}", [&] { copyBuffer(words, &madeBuffer); }},
        {L"ApplyMask{}", [&] { ApplyMask(image, image); }},
        {L"compare{}", [&] { compare(image, other); }},
        {L"DecimateAndCompare{}",
         [&] { DecimateAndCompare(image, other, nullptr, nullptr, nullptr, 1, 1, 1, &answer); }},
        {L"DiffBuffer{}", [&] { DiffBuffer(buffer, &buffer); }},
        {L"ClipImage{}", [&] { ClipImage(reinterpret_cast<short*>(pixels), 4, 0, 1); }},
    };
    for (Case const& each : cases) EXPECT_EQ(ScopesOf(each.call), each.scopes);
    FreePixels(made.buffer);
    FreePixels(madeBuffer.buffer);
}

}  // namespace
}  // namespace ZPA
