// Comparisons of images, of every pixel and of samples within a tolerance.
#include <Basics/PixelOperations.h>
#include <Basics/Regions.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "support/CapturedLog.h"
#include "support/Images.h"
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
    Rectangle const around(4, 3, 3, 3), odd(3, 2, 5, 5), beside(0, 0, 5, 7), partlyOutside(-2, -2, 20, 20);
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
        {"sampled on it", &odd, nullptr, nullptr, 2, 2, 1.0, false},
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

}  // namespace
}  // namespace ZPA
