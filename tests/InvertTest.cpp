// InvertGray and InvertMaskImage: pixels, regions, and outputs without room.
#include <Basics/Statistics.h>
#include <gtest/gtest.h>

#include "support/Regions.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

template <typename T> class InversionOf : public testing::Test {};
using Served = testing::Types<unsigned char, unsigned short>;
TYPED_TEST_SUITE(InversionOf, Served, );

TYPED_TEST(InversionOf, IsThatOfTheModelOnEverySimdTarget) {
    for (Shape const shape : kShapes) {
        auto image = RandomImage<TypeParam>(shape, 1);
        // Half of them zero for the negation; the mask has zeros, ones and others.
        for (std::size_t i = 0; i < image.Size(); i += 2) image.Pixels()[i] = 0;
        auto mask = RandomMask(MaskShape(shape), 2);
        for (std::size_t i = 0; i < mask.Size(); i += 3) mask.Pixels()[i] = 1;
        ImageAttributes const maskAttributes = mask.Attributes();
        for (Choice const& choice : Choices(shape))
            for (int const bits : {1, 8, 12, 16, 31, 32, 44, -1}) {
                SCOPED_TRACE(testing::Message() << shape << ", " << choice << ", bits " << bits);
                auto const key = static_cast<TypeParam>((1ull << (bits & 31)) - 1);
                auto const before = RandomImage<TypeParam>(shape, 4);
                auto gray = before, negated = before;
                for (int y = 0; y < choice.area.height; ++y)
                    for (int x = 0; x < choice.area.width; ++x) {
                        int const column = choice.area.x + x, row = choice.area.y + y;
                        TypeParam const pixel = image.At(column, row);
                        int const selects =
                            choice.masked ? mask.At(choice.origin.x + x, choice.origin.y + y) : 1;
                        if (selects != 0) gray.At(column, row) = static_cast<TypeParam>(pixel ^ key);
                        if (selects == 1) negated.At(column, row) = pixel == 0;
                    }
                ImageAttributes const* const chosen = choice.Mask(maskAttributes);
                ForEachSimdTarget([&] {
                    for (auto const& [invert, expected] :
                         {std::pair{&InvertGray, &gray}, {&InvertMaskImage, &negated}}) {
                        auto output = before;
                        ImageAttributes to = output.Attributes();
                        EXPECT_EQ(invert(image.Attributes(bits), choice.Roi(), chosen, choice.Origin(), &to),
                                  0);
                        EXPECT_TRUE(output == *expected);
                        if (choice.givesRectangle || choice.masked) continue;
                        auto inPlace = image;
                        to = inPlace.Attributes(bits);
                        EXPECT_EQ(invert(to, nullptr, nullptr, nullptr, &to), 0);
                        output = image;
                        output.Fill([model = expected](int x, int y) { return model->At(x, y); });
                        EXPECT_TRUE(inPlace == output);
                    }
                });
            }
    }
}

TEST(Inversion, RefusesInItsOrder) {
    unsigned short pixels[24] = {}, to[24] = {};
    ImageAttributes const image = Over(pixels, eUInt16, 4, 3, 6), noPixels = Described(eUInt16, 4, 3, 6);
    ImageAttributes const shorts = Described(eInt16, 4, 3, 6), narrow(eUInt16, pixels, 6, 4, 4, 8, 0);
    ImageAttributes const same = Over(to, eUInt16, 4, 3, 6), oneRow = Over(pixels, eUInt16, 20, 1, 5);
    constexpr auto kDiffer = L"The output and input images must be of the same type and type";
    constexpr auto kType = L"The input image must be of type eByte or eUInt16.";
    constexpr auto kNoOutput = L"The output image had a NULL buffer pointer.";
    Region const typeOfMask{&kEmpty, &kFloatMask}, empty{&kEmpty, &kNoMask}, whole;
    for (auto const operation : {InvertGray, InvertMaskImage}) {
        auto const invert = [&](ImageAttributes of, Region const& region, ImageAttributes output) {
            return operation(of, region.roi, region.mask, region.origin, &output);
        };
        EXPECT_REFUSAL(2, L"Ouput pointer is null",
                       operation(shorts, &kEmpty, &kFloatMask, nullptr, nullptr));
        EXPECT_REFUSAL(7, kDiffer, invert(shorts, typeOfMask, same));
        EXPECT_REFUSAL(7, kDiffer, invert(image, typeOfMask, Over(to, eUInt16, 4, 4, 6)));
        EXPECT_REFUSAL(operation == InvertGray ? 7 : 6, kByteMask,
                       invert(shorts, typeOfMask, Over(to, eInt16, 4, 3, 6)));
        EXPECT_REFUSAL(6, kType, invert(shorts, empty, Over(to, eInt16, 4, 3, 6)));
        EXPECT_REFUSAL(2, kNullImage, invert(noPixels, empty, same));
        ExpectRegionRefusals([&](Region const& region) { return invert(image, region, noPixels); });
        EXPECT_REFUSAL(2, kNoOutput, invert(image, whole, noPixels));
        // Rows that overlap, backwards, and wider than the stride.
        EXPECT_REFUSAL(7, kDiffer, invert(narrow, whole, Over(to, eUInt16, 4, 4, 4)));
        EXPECT_REFUSAL(7, kDiffer, invert(image, whole, Over(to, eUInt16, 4, -2, -9)));
        EXPECT_REFUSAL(7, kDiffer, invert(oneRow, whole, Over(to, eUInt16, 5, 1, 5)));
    }
    for (unsigned short const pixel : to) EXPECT_EQ(pixel, 0);
}

}  // namespace
}  // namespace ZPA
