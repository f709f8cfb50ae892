// InvertGray and InvertMaskImage: pixels, regions, and outputs without room.
#include <Basics/Statistics.h>
#include <gtest/gtest.h>

#include "support/CapturedLog.h"
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
                        int const selects = mask.At(choice.origin.x + x, choice.origin.y + y);
                        if (!choice.masked || selects != 0)
                            gray.At(column, row) = static_cast<TypeParam>(pixel ^ key);
                        if (!choice.masked || selects == 1) negated.At(column, row) = pixel == 0;
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
    unsigned char maskPixels[24] = {};
    ImageAttributes const image(eUInt16, pixels, 4, 3, 6, 16, 0), noPixels(eUInt16, nullptr, 4, 3, 6, 16, 0);
    ImageAttributes const shorts(eInt16, nullptr, 4, 3, 6, 16, 0), narrow(eUInt16, pixels, 6, 4, 4, 8, 0);
    ImageAttributes const oneRow(eUInt16, pixels, 20, 1, 5, 16, 0);
    ImageAttributes const mask(eByte, maskPixels, 4, 3, 4, 8, 0), noMask(eByte, nullptr, 4, 3, 4, 8, 0);
    ImageAttributes const wrongMask(eUInt16, nullptr, 4, 3, 4, 8, 0);
    ImageAttributes const same(eUInt16, to, 4, 3, 6, 16, 0), sameShorts(eInt16, to, 4, 3, 6, 16, 0);
    ImageAttributes const longer(eUInt16, to, 4, 4, 6, 16, 0), noOutput(eUInt16, nullptr, 4, 3, 6, 16, 0);
    ImageAttributes const ofRows(eUInt16, to, 4, 4, 4, 16, 0), ofNegatives(eUInt16, to, 4, -2, -9, 16, 0);
    ImageAttributes const five(eUInt16, to, 5, 1, 5, 16, 0);
    Rectangle const empty(0, 0, 0, 1), wide(0, 0, 5, 1), inside(1, 1, 3, 2);
    APOINT const beyond(0, 2);
    constexpr auto kDiffer = L"The output and input images must be of the same type and type";
    struct Case {
        char const* name;
        ImageAttributes image;
        Rectangle const* roi;
        ImageAttributes const* mask;
        APOINT const* origin;
        ImageAttributes const* output;
        int code;
        std::wstring message;
    };
    Case const cases[] = {
        {"no output", shorts, &empty, &wrongMask, nullptr, nullptr, 2, L"Ouput pointer is null"},
        {"type differs", shorts, &empty, &wrongMask, nullptr, &same, 7, kDiffer},
        {"size differs", image, &empty, &wrongMask, nullptr, &longer, 7, kDiffer},
        {"mask type", shorts, &empty, &wrongMask, nullptr, &sameShorts, 7, kByteMask},
        {"type", shorts, &empty, &noMask, nullptr, &sameShorts, 6,
         L"The input image must be of type eByte or eUInt16."},
        {"null", noPixels, &empty, &noMask, nullptr, &same, 2, kNullImage},
        {"empty", image, &empty, &noMask, nullptr, &same, 3, kEmptyRegion},
        {"wide", image, &wide, &noMask, nullptr, &same, 3, kOutsideImage},
        {"null mask", image, &inside, &noMask, &beyond, &same, 2, kNullMask},
        {"origin", image, &inside, &mask, &beyond, &same, 3, kOutsideMask},
        {"null output", image, nullptr, nullptr, nullptr, &noOutput, 2,
         L"The output image had a NULL buffer pointer."},
        {"rows overlap", narrow, nullptr, nullptr, nullptr, &ofRows, 7, kDiffer},
        {"negative output", image, nullptr, nullptr, nullptr, &ofNegatives, 7, kDiffer},
        {"row wider than the stride", oneRow, nullptr, nullptr, nullptr, &five, 7, kDiffer},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        ImageAttributes output = each.output ? *each.output : ImageAttributes();
        ImageAttributes* const given = each.output ? &output : nullptr;
        auto const call = [&](auto invert) {
            return [=, &each] { return invert(each.image, each.roi, each.mask, each.origin, given); };
        };
        ExpectRefusal(call(InvertGray), each.code, each.message);
        ExpectRefusal(call(InvertMaskImage), each.message == kByteMask ? 6 : each.code, each.message);
    }
    for (unsigned short const pixel : to) EXPECT_EQ(pixel, 0);
}

}  // namespace
}  // namespace ZPA
