// Counts of a value in an image, its rows and its columns.
#include <Basics/Statistics.h>
#include <gtest/gtest.h>

#include "support/CapturedLog.h"
#include "support/Regions.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

// Few values, so that some are found; the extremes among them.
template <typename T> TestImage<T> FewValues(Shape shape, unsigned seed) {
    auto image = RandomImage<T>(shape, seed);
    T const values[] = {0, 1, std::numeric_limits<T>::max(), std::numeric_limits<T>::min()};
    for (std::size_t i = 0; i < image.Size(); ++i)
        image.Pixels()[i] = values[static_cast<unsigned>(image.Pixels()[i]) % 4];
    return image;
}

struct ModelCounts {
    int target = 0, other = 0;
    std::vector<ULong32> targetRows, otherRows, targetColumns, otherColumns;
};

template <typename T>
ModelCounts ModelOf(TestImage<T> const& image, TestImage<unsigned char> const& mask, Choice const& choice,
                    int n) {
    ModelCounts model;
    auto const width = static_cast<std::size_t>(choice.area.width);
    auto const height = static_cast<std::size_t>(choice.area.height);
    model.targetRows.resize(height), model.otherRows.resize(height);
    model.targetColumns.resize(width), model.otherColumns.resize(width);
    choice.ForEach(mask, [&](int x, int y) {
        bool const found = int{image.At(x, y)} == n;
        ++(found ? model.target : model.other);
        ++(found ? model.targetRows : model.otherRows)[static_cast<std::size_t>(y - choice.area.y)];
        ++(found ? model.targetColumns : model.otherColumns)[static_cast<std::size_t>(x - choice.area.x)];
    });
    return model;
}

template <typename T> class CountsOf : public testing::Test {};
using Served = testing::Types<unsigned char, short, unsigned short>;
TYPED_TEST_SUITE(CountsOf, Served, );

using LineCount = SOLVANE_RETURNCODE (*)(ImageAttributes, Rectangle const*, ImageAttributes const*,
                                         APOINT const*, int, BufferAttributes*, BufferAttributes*);

std::vector<ULong32> Taken(BufferAttributes const& counts) {
    auto const first = static_cast<ULong32 const*>(counts.buffer);
    std::vector<ULong32> const copy(first, first + counts.size);
    EXPECT_EQ(counts.type, eUInt32);
    FreePixels(counts.buffer);
    return copy;
}

TYPED_TEST(CountsOf, AreThoseOfTheModelOnEverySimdTarget) {
    for (Shape const shape : kShapes) {
        auto image = FewValues<TypeParam>(shape, 1);
        auto mask = RandomMask(MaskShape(shape), 2);
        ImageAttributes const maskAttributes = mask.Attributes(), attributes = image.Attributes();
        for (Choice const& choice : Choices(shape))
            for (int const n : {0, 255, 300, 65535, -32768, -1, INT_MIN}) {
                SCOPED_TRACE(testing::Message() << shape << ", " << choice << ", " << n);
                ModelCounts const model = ModelOf(image, mask, choice, n);
                ImageAttributes const* const chosen = choice.Mask(maskAttributes);
                ForEachSimdTarget([&] {
                    int target = -1, other = -1;
                    EXPECT_EQ(
                        ImageCountOfN(attributes, choice.Roi(), chosen, choice.Origin(), n, &target, &other),
                        SOLVANE_OK);
                    EXPECT_EQ(target, model.target);
                    EXPECT_EQ(other, model.other);
                    if constexpr (!std::is_signed_v<TypeParam>) {
                        struct Way {
                            LineCount count;
                            std::vector<ULong32> const &targets, &others;
                        };
                        for (Way const& way :
                             {Way{RowCountOfN, model.targetRows, model.otherRows},
                              Way{ColumnCountOfN, model.targetColumns, model.otherColumns}}) {
                            BufferAttributes targets, others;
                            EXPECT_EQ(way.count(attributes, choice.Roi(), chosen, choice.Origin(), n,
                                                &targets, &others),
                                      SOLVANE_OK);
                            EXPECT_EQ(Taken(targets), way.targets);
                            EXPECT_EQ(Taken(others), way.others);
                        }
                    }
                });
            }
    }
}

TYPED_TEST(CountsOf, DoNotOverflowWhereEveryPixelMatches) {
    // More vectors than a lane of 8 bits could count, of any instruction set.
    auto image = Uniform<TypeParam>({1000, 70, 1000}, 7);
    ForEachSimdTarget([&] {
        int target = 0;
        EXPECT_EQ(ImageCountOfN(image.Attributes(), nullptr, nullptr, nullptr, 7, &target, nullptr), 0);
        EXPECT_EQ(target, 70000);
    });
}

TEST(LineCounts, FillTheCallersBuffersNoFurtherThanNeeded) {
    auto image = FewValues<unsigned char>({5, 3, 8}, 1);
    for (LineCount const count : {RowCountOfN, ColumnCountOfN}) {
        auto const needed = count == LineCount{RowCountOfN} ? 3u : 5u;
        std::vector<ULong32> counts(7, 99);
        BufferAttributes others(eUInt32, counts.data(), 7);
        EXPECT_EQ(count(image.Attributes(), nullptr, nullptr, nullptr, 1, nullptr, &others), SOLVANE_OK);
        for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(counts[i] == 99, i >= needed) << i;
        // One descriptor for both: its new buffer serves both, and is freed once.
        BufferAttributes both;
        EXPECT_EQ(count(image.Attributes(), nullptr, nullptr, nullptr, 1, &both, &both), SOLVANE_OK);
        FreePixels(both.buffer);
    }
}

TEST(Counts, RefuseInTheirOrder) {
    unsigned char pixels[24] = {}, maskPixels[24] = {};
    ULong32 counts[8] = {5, 5, 5, 5, 5, 5, 5, 5}, more[8] = {}, wrong[8] = {};
    ImageAttributes const image(eByte, pixels, 4, 3, 6, 8, 0), noPixels(eByte, nullptr, 4, 3, 6, 8, 0);
    ImageAttributes const signedImage(eInt16, nullptr, 4, 3, 6, 16, 0),
        floats(eSingle, nullptr, 4, 3, 6, 32, 0);
    ImageAttributes const mask(eByte, maskPixels, 4, 3, 4, 8, 0), noMask(eByte, nullptr, 4, 3, 4, 8, 0);
    ImageAttributes const wrongMask(eUInt16, nullptr, 4, 3, 4, 8, 0);
    Rectangle const empty(0, 0, 2, 0), wide(3, 0, 2, 1), inside(1, 1, 3, 2);
    APOINT const beyond(2, 0);
    BufferAttributes const fresh, good(eUInt32, counts, 8), other(eUInt32, more, 8);
    BufferAttributes const wrongType(eInt32, wrong, 8), tooShort(eUInt32, more, 1);
    constexpr auto kType = L"The input image must be of type eByte or eUInt16.";
    constexpr auto kTarget = L"There is a problem with the count of target output buffer.";
    constexpr auto kNotTarget = L"There is a problem with the count of not target output buffer.";
    struct Case {
        char const* name;
        ImageAttributes image;
        Rectangle const* roi;
        ImageAttributes const* mask;
        APOINT const* origin;
        BufferAttributes const *target, *notTarget;
        int code;
        std::wstring message;
    };
    Case const cases[] = {
        {"mask type first", floats, &empty, &wrongMask, nullptr, nullptr, nullptr, 6, kByteMask},
        {"type", floats, &empty, &noMask, nullptr, nullptr, nullptr, 6, kType},
        {"no output", noPixels, &empty, &noMask, nullptr, nullptr, nullptr, 2,
         L"Both of the output pointers were NULL."},
        {"one output", noPixels, &empty, &noMask, nullptr, &good, &good, 2,
         L"Both output pointers point to same count location."},
        {"null", noPixels, &empty, &noMask, nullptr, &wrongType, &other, 2, kNullImage},
        {"empty", image, &empty, &noMask, nullptr, &wrongType, nullptr, 3, kEmptyRegion},
        {"wide", image, &wide, &noMask, nullptr, &wrongType, nullptr, 3, kOutsideImage},
        {"null mask", image, &inside, &noMask, &beyond, &wrongType, nullptr, 2, kNullMask},
        {"origin", image, &inside, &mask, &beyond, &wrongType, nullptr, 3, kOutsideMask},
        {"target's type", image, nullptr, nullptr, nullptr, &wrongType, &tooShort, 6, kTarget},
        {"target's length", image, nullptr, nullptr, nullptr, &tooShort, nullptr, 7, kTarget},
        {"the other's type", image, nullptr, nullptr, nullptr, &fresh, &wrongType, 6, kNotTarget},
        {"the other's length", image, nullptr, nullptr, nullptr, &good, &tooShort, 7, kNotTarget},
    };
    for (Case const& each : cases)
        for (LineCount const count : {RowCountOfN, ColumnCountOfN}) {
            SCOPED_TRACE(each.name);
            BufferAttributes target = each.target ? *each.target : fresh;
            BufferAttributes notTarget = each.notTarget ? *each.notTarget : fresh;
            auto const call = [&] {
                return count(each.image, each.roi, each.mask, each.origin, 0, each.target ? &target : nullptr,
                             each.notTarget ? &notTarget : nullptr);
            };
            ExpectRefusal(call, each.code, each.message);
            EXPECT_EQ(target.buffer, each.target ? each.target->buffer : nullptr);
        }
    EXPECT_EQ(counts[0], 5u);

    int one = 9;
    CapturedLog log;
    EXPECT_EQ(ImageCountOfN(image, nullptr, &wrongMask, nullptr, 0, &one, nullptr), 6);
    EXPECT_EQ(ImageCountOfN(floats, nullptr, nullptr, nullptr, 0, nullptr, nullptr), 6);
    EXPECT_EQ(log.Text(), kType);
    EXPECT_EQ(ImageCountOfN(signedImage, nullptr, nullptr, nullptr, 0, nullptr, nullptr), 2);
    EXPECT_EQ(log.Text(), L"Both of the output pointers were NULL.");
    EXPECT_EQ(ImageCountOfN(signedImage, nullptr, nullptr, nullptr, 0, &one, &one), 2);
    EXPECT_EQ(log.Text(), L"Both output pointers point to same count location.");
    EXPECT_EQ(RowCountOfN(signedImage, nullptr, nullptr, nullptr, 0, nullptr, nullptr), 6);
    EXPECT_EQ(one, 9);
}

}  // namespace
}  // namespace ZPA
