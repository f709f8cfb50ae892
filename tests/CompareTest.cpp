// Comparisons of images, of every pixel and of samples within a tolerance.
#include <Basics/PixelOperations.h>
#include <Basics/Regions.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "support/Regions.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

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
    ImageAttributes const good = Over(pixels, eUInt16, 2, 2, 2), shorts = Over(pixels, eInt16, 2, 2, 2);
    ImageAttributes const negative = Over(pixels, eUInt16, -2, -2, -2);
    EXPECT_REFUSAL(6, L"", compare(good, shorts));
    EXPECT_REFUSAL(6, L"", compare(shorts, good));
    EXPECT_REFUSAL(4, L"", compare(good, Over(pixels, eUInt16, 1, 2, 2)));
    EXPECT_REFUSAL(2, L"template_compare(): Null pointer.", compare(Described(eUInt16, 1, 2, 2), good));
    EXPECT_EQ(compare(good, Over(pixels + 8, eUInt16, 2, 2, -2)), SOLVANE_SIZE_MISMATCH);
    EXPECT_EQ(compare(negative, negative), SOLVANE_OK);
}

template <typename T> class DecimateAndCompareOf : public testing::Test {};
using Comparable = testing::Types<unsigned char, short, unsigned short, float, double>;
TYPED_TEST_SUITE(DecimateAndCompareOf, Comparable, );

bool Equivalent(ImageAttributes first, ImageAttributes second, Region const& region, int xStep, int yStep,
                double tolerance) {
    // Set by the call, whatever it was.
    bool equivalent = false, same = true;
    for (bool* const answer : {&equivalent, &same})
        EXPECT_EQ(DecimateAndCompare(first, second, region.roi, region.mask, region.origin, xStep, yStep,
                                     tolerance, answer),
                  SOLVANE_OK);
    EXPECT_EQ(equivalent, same);
    return equivalent;
}

TYPED_TEST(DecimateAndCompareOf, CountsSamplesOfRectangleAndMask) {
    using T = TypeParam;
    TestImage<T> first({9, 7, 11}), second({9, 7, 10});
    for (TestImage<T>* const image : {&first, &second}) image->Fill([](int x, int y) { return x + 10 * y; });
    second.At(5, 4) = static_cast<T>(second.At(5, 4) + 3);  // the one that differs

    auto mask = Uniform<unsigned char>({4, 4, 6}, 1), hole = mask;
    hole.At(1, 2) = 0;
    ImageAttributes const maskImage = mask.Attributes();
    ImageAttributes const holeImage = hole.Attributes();
    Rectangle const around(4, 3, 3, 3), odd(3, 2, 5, 5), beside(0, 0, 5, 7), partlyOutside(-2, -2, 20, 20);
    APOINT const over(4, 2), apart(0, 0);
    struct Case {
        char const* name;
        Region region;
        int xStep, yStep;
        double tolerance;
        bool expected;
    };
    Case const cases[] = {
        {"whole", {}, 1, 1, 1.0, false},
        {"larger tolerance", {}, 1, 1, 4.0, true},
        {"equal to the tolerance", {}, 1, 1, 3.0, false},
        {"rectangle around", {&around}, 1, 1, 1.0, false},
        {"rectangle beside", {&beside}, 1, 1, 1.0, true},
        {"sampled past its column", {}, 2, 1, 1.0, true},
        {"sampled past its row", {}, 1, 3, 1.0, true},
        {"sampled on it", {&odd}, 2, 2, 1.0, false},
        {"steps beyond the image", {}, INT_MAX, INT_MAX, 1.0, true},
        {"mask over", {nullptr, &maskImage, &over}, 1, 1, 1.0, false},
        {"mask with a hole", {nullptr, &holeImage, &over}, 1, 1, 1.0, true},
        {"mask apart", {nullptr, &maskImage, &apart}, 1, 1, 1.0, true},
        {"mask cuts a large rectangle", {&partlyOutside, &maskImage, &over}, 1, 1, 1.0, false},
        {"no tolerance", {}, 1, 1, 0.0, false},
        {"negative tolerance", {&beside}, 1, 1, -1.0, false},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        EXPECT_EQ(Equivalent(first.Attributes(), second.Attributes(), each.region, each.xStep, each.yStep,
                             each.tolerance),
                  each.expected);
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
                for (double const tolerance : {7.0, 8.0})
                    ASSERT_EQ(Equivalent(first.Attributes(), second.Attributes(), {}, 1, 1, tolerance),
                              tolerance > 7)
                        << x;
            }
    });
}

TEST(DecimateAndCompare, TruncatesTolerancesOfIntegersAndPassesNotANumber) {
    auto const agree = [](auto a, auto b, double tolerance) {
        constexpr eTypeCode kType = TypeCodeOf<decltype(a)>;
        return Equivalent(Over(&a, kType, 1, 1, 1), Over(&b, kType, 1, 1, 1), {}, 1, 1, tolerance);
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
    ImageAttributes const image = Over(pixels, eByte, 4, 4, 4), word = Over(pixels, eInt32, 4, 4, 4);
    ImageAttributes const null = Described(eByte, 4, 4, 4), narrow = Over(pixels, eByte, 4, 4, 3);
    ImageAttributes const mask = image, emptyMask = Over(pixels, eByte, 0, 4, 4),
                          wrongMask = Described(eSByte, 4, 4, 4);
    Rectangle const empty(2, 2, 0, 1), outside(2, 2, 3, 1), huge(2, 2, INT_MAX, 1);
    APOINT const far(4, 0), before(-2, 0);
    constexpr auto kOutside = L"The ROI was out of bounds in the image.";
    bool answer = true;
    auto const compared = [](ImageAttributes const& first, ImageAttributes const& second,
                             Region const& region, int step, bool* equivalent, double tolerance = 1) {
        return DecimateAndCompare(first, second, region.roi, region.mask, region.origin, step, 1, tolerance,
                                  equivalent);
    };
    auto const withItself = [&](Region const& region, double tolerance = 1) {
        return compared(image, image, region, 1, &answer, tolerance);
    };
    EXPECT_REFUSAL(2, L"The first image had a NULL buffer pointer.", compared(null, null, {}, 0, nullptr));
    EXPECT_REFUSAL(2, L"The second image had a NULL buffer pointer.", compared(image, null, {}, 0, nullptr));
    EXPECT_REFUSAL(7, L"The two input images have different sizes.",
                   compared(image, Over(pixels, eInt16, 3, 4, 4), {}, 0, nullptr));
    EXPECT_REFUSAL(8, L"The two input images must be of the same type.",
                   compared(image, Over(pixels, eInt16, 4, 4, 4), {nullptr, &wrongMask}, 0, nullptr));
    EXPECT_REFUSAL(6, kByteMask, compared(image, image, {nullptr, &wrongMask}, 0, nullptr));
    EXPECT_REFUSAL(2, L"The pbIsEquivalent pointer was NULL.", compared(image, image, {}, 0, nullptr));
    EXPECT_REFUSAL(4, L"The x and y decimation values must be >= 1.",
                   compared(word, word, {}, 0, &answer, 0));
    // No tolerance answers ahead of the type, and one above all differences ahead of the region.
    EXPECT_REFUSAL(0, L"", compared(word, word, {&empty}, 1, &answer, 0));
    EXPECT_REFUSAL(6, L"The image type is not supported.", compared(word, word, {&empty}, 1, &answer));
    EXPECT_REFUSAL(0, L"", withItself({&empty, &kNoMask}, 256));
    EXPECT_REFUSAL(3, kEmptyRegion, withItself({&empty, &emptyMask}, 255));
    EXPECT_REFUSAL(3, L"The mask ROI was empty.", withItself({nullptr, &emptyMask}));
    EXPECT_REFUSAL(3, L"The combined ROI was empty.", withItself({nullptr, &kNoMask, &far}));
    EXPECT_REFUSAL(3, kOutside, withItself({&outside}));
    EXPECT_REFUSAL(3, kOutside, withItself({&huge}));
    EXPECT_REFUSAL(0, L"", withItself({nullptr, &mask, &before}));
    EXPECT_REFUSAL(2, kNullMask, withItself({nullptr, &kNoMask}));
    EXPECT_REFUSAL(7, L"The rows of an input image overlap.", compared(narrow, image, {}, 1, &answer));
}

}  // namespace
}  // namespace ZPA
