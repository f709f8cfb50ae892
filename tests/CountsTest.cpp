// Counts of a value in an image, its rows and its columns.
#include <Basics/Statistics.h>
#include <gtest/gtest.h>

#include <numeric>

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

// Of each row and column, how many pixels are another value, and how many are the value.
struct ModelCounts {
    std::vector<ULong32> rows[2], columns[2];
};

template <typename T>
ModelCounts ModelOf(TestImage<T> const& image, TestImage<unsigned char> const& mask, Choice const& choice,
                    int n) {
    ModelCounts model;
    for (auto& rows : model.rows) rows.resize(static_cast<std::size_t>(choice.area.height));
    for (auto& columns : model.columns) columns.resize(static_cast<std::size_t>(choice.area.width));
    choice.ForEach(mask, [&](int x, int y) {
        bool const found = int{image.At(x, y)} == n;
        ++model.rows[found][static_cast<std::size_t>(y - choice.area.y)];
        ++model.columns[found][static_cast<std::size_t>(x - choice.area.x)];
    });
    return model;
}
int Total(std::vector<ULong32> const& counts) {
    return static_cast<int>(std::accumulate(counts.begin(), counts.end(), 0U));
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
                    EXPECT_EQ(target, Total(model.rows[1]));
                    EXPECT_EQ(other, Total(model.rows[0]));
                    if (std::is_signed_v<TypeParam>) return;
                    for (auto const& [count, expected] :
                         {std::pair{&RowCountOfN, model.rows}, {&ColumnCountOfN, model.columns}}) {
                        BufferAttributes targets, others;
                        EXPECT_EQ(
                            count(attributes, choice.Roi(), chosen, choice.Origin(), n, &targets, &others),
                            SOLVANE_OK);
                        EXPECT_EQ(Taken(targets), expected[1]);
                        EXPECT_EQ(Taken(others), expected[0]);
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
    unsigned char pixels[24] = {};
    ULong32 counts[8] = {5, 5, 5, 5, 5, 5, 5, 5}, more[8] = {};
    ImageAttributes const image(eByte, pixels, 4, 3, 6, 8, 0), noPixels = Described(eByte, 4, 3, 6);
    ImageAttributes const signedImage = Described(eInt16, 4, 3, 6), floats = Described(eSingle, 4, 3, 6);
    BufferAttributes const fresh, good(eUInt32, counts, 8), other(eUInt32, more, 8);
    BufferAttributes const wrongType(eInt32, counts, 8), tooShort(eUInt32, more, 1);
    constexpr auto kType = L"The input image must be of type eByte or eUInt16.";
    constexpr auto kNoOutput = L"Both of the output pointers were NULL.";
    constexpr auto kOneOutput = L"Both output pointers point to same count location.";
    constexpr auto kTarget = L"There is a problem with the count of target output buffer.";
    constexpr auto kNotTarget = L"There is a problem with the count of not target output buffer.";
    struct Case {
        char const* name;
        ImageAttributes image;
        Region region;
        BufferAttributes const *target, *notTarget;
        int code;
        std::wstring message;
    };
    Case const cases[] = {
        {"mask type first", floats, {&kEmpty, &kFloatMask}, nullptr, nullptr, 6, kByteMask},
        {"type", floats, {&kEmpty, &kNoMask}, nullptr, nullptr, 6, kType},
        {"signed", signedImage, {&kEmpty, &kNoMask}, nullptr, nullptr, 6, kType},
        {"no output", noPixels, {&kEmpty, &kNoMask}, nullptr, nullptr, 2, kNoOutput},
        {"one output", noPixels, {&kEmpty, &kNoMask}, &good, &good, 2, kOneOutput},
        {"null", noPixels, {&kEmpty, &kNoMask}, &wrongType, &other, 2, kNullImage},
        {"target's type", image, {}, &wrongType, &tooShort, 6, kTarget},
        {"target's length", image, {}, &tooShort, nullptr, 7, kTarget},
        {"the other's type", image, {}, &fresh, &wrongType, 6, kNotTarget},
        {"the other's length", image, {}, &good, &tooShort, 7, kNotTarget},
    };
    for (LineCount const count : {RowCountOfN, ColumnCountOfN}) {
        for (Case const& each : cases) {
            SCOPED_TRACE(each.name);
            BufferAttributes target = each.target ? *each.target : fresh;
            BufferAttributes notTarget = each.notTarget ? *each.notTarget : fresh;
            auto const call = [&] {
                return count(each.image, each.region.roi, each.region.mask, each.region.origin, 0,
                             each.target ? &target : nullptr, each.notTarget ? &notTarget : nullptr);
            };
            ExpectRefusal(call, each.code, each.message);
            EXPECT_EQ(target.buffer, each.target ? each.target->buffer : nullptr);
        }
        ExpectRegionRefusals([&](Region const& region) {
            BufferAttributes target = wrongType;
            return count(image, region.roi, region.mask, region.origin, 0, &target, nullptr);
        });
    }
    EXPECT_EQ(counts[0], 5u);

    int one = 9;
    auto const count = [&](ImageAttributes const& of, Region const& region, int* target, int* notTarget) {
        return ImageCountOfN(of, region.roi, region.mask, region.origin, 0, target, notTarget);
    };
    EXPECT_REFUSAL(6, kByteMask, count(image, {nullptr, &kFloatMask}, &one, nullptr));
    EXPECT_REFUSAL(6, kType, count(floats, {}, nullptr, nullptr));
    EXPECT_REFUSAL(2, kNoOutput, count(signedImage, {}, nullptr, nullptr));
    EXPECT_REFUSAL(2, kOneOutput, count(signedImage, {}, &one, &one));
    ExpectRegionRefusals([&](Region const& region) { return count(image, region, &one, nullptr); });
    EXPECT_EQ(one, 9);
}

}  // namespace
}  // namespace ZPA
