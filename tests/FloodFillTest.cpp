// FloodFill and FillHoles against plain searches.
#include <Basics/Regions.h>
#include <gtest/gtest.h>

#include "support/CapturedLog.h"
#include "support/ConnectedPixels.h"
#include "support/NoMemory.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

template <typename T> void ModelFillBorder(TestImage<T>& image, T background, T value, int connectivity) {
    auto const fill = [&](int x, int y) {
        if (image.At(x, y) == background) ModelFill(image, x, y, value, connectivity);
    };
    for (int x = 0; x < image.shape.width; ++x) fill(x, 0), fill(x, image.shape.height - 1);
    for (int y = 0; y < image.shape.height; ++y) fill(0, y), fill(image.shape.width - 1, y);
}

template <typename T> void ModelFillHoles(TestImage<T>& image, int connectivity) {
    T const marker = std::numeric_limits<T>::max();
    ModelFillBorder(image, T{0}, marker, connectivity);
    T carried = 0;
    for (int y = 0; y < image.shape.height; ++y)
        for (int x = 0; x < image.shape.width; ++x) {
            T& pixel = image.At(x, y);
            if (pixel == 0)
                pixel = carried;
            else
                carried = pixel;
        }
    ModelFillBorder(image, marker, T{0}, connectivity);
}

// A share of the pixels has one value, the others one of two more.
template <typename T>
TestImage<T> Porous(Shape shape, unsigned seed, double share, T value, T other, T third) {
    std::mt19937 random(seed);
    TestImage<T> image(shape);
    for (T& pixel : image) {
        double const chance = static_cast<double>(random()) / 4294967296.0;
        pixel = chance < share ? value : random() % 8 ? other : third;
    }
    return image;
}

// One path that goes to and fro over the whole image, along rows or along columns.
template <typename T> TestImage<T> Serpentine(int side, bool alongRows) {
    TestImage<T> image({side, side, side});
    for (int across = 0; across < side; ++across)
        for (int along = 0; along < side; ++along) {
            int const turn = across % 4 == 1 ? side - 1 : 0;
            bool const open = across % 2 == 0 || along == turn;
            (alongRows ? image.At(along, across) : image.At(across, along)) = open ? T{0} : T{7};
        }
    return image;
}

// On every instruction set.
template <typename T>
void ExpectFillOfModel(TestImage<T> const& image, int seedX, int seedY, T value, int connectivity) {
    auto expected = image;
    ModelFill(expected, seedX, seedY, value, connectivity);
    ForEachSimdTarget([&] {
        SCOPED_TRACE(testing::Message() << image.shape << ", " << connectivity);
        auto filled = image;
        ASSERT_EQ(FloodFill(filled.Attributes(), seedX, seedY, value + 65536, connectivity), SOLVANE_OK);
        ASSERT_TRUE(filled == expected);
    });
}

template <typename T> void ExpectHolesOfModel(TestImage<T> const& image, int connectivity) {
    auto expected = image;
    ModelFillHoles(expected, connectivity);
    ForEachSimdTarget([&] {
        SCOPED_TRACE(testing::Message() << image.shape << ", " << connectivity);
        auto filled = image;
        ASSERT_EQ(FillHoles(filled.Attributes(), connectivity), SOLVANE_OK);
        ASSERT_TRUE(filled == expected);
    });
}

template <typename T> class Filling : public testing::Test {};
using Served = testing::Types<unsigned char, unsigned short>;
TYPED_TEST_SUITE(Filling, Served, );

TYPED_TEST(Filling, RegionsAsAPlainSearchDoes) {
    using T = TypeParam;
    for (Shape const shape : kWordShapes)
        for (double const share : {0.4, 0.5, 0.6, 0.9, 1.0})
            for (int const connectivity : {4, 8, 6})
                ExpectFillOfModel<T>(Porous<T>(shape, 3, share, 0, 200, 9), shape.width / 2, shape.height / 3,
                                     77, connectivity);
}

TYPED_TEST(Filling, LongPathsToTheirEnd) {
    for (int const side : {5, 64, 131})
        for (bool const alongRows : {false, true})
            ExpectFillOfModel<TypeParam>(Serpentine<TypeParam>(side, alongRows), 0, 0, 5, 4);
}

TYPED_TEST(Filling, HolesAsThreeStagesDo) {
    using T = TypeParam;
    for (Shape const shape : kWordShapes)
        for (double const share : {0.0, 0.3, 0.5, 0.6, 1.0})
            // Foreground of one value, of two labels, and of the marker's value.
            for (T const other : {T{1}, T{200}, std::numeric_limits<T>::max()})
                for (int const connectivity : {4, 8, 6}) {
                    auto image = Porous<T>(shape, 4, share, 0, other, 3);
                    if (connectivity == 6) ModelFillBorder(image, T{0}, other, 4);  // only holes are left
                    ExpectHolesOfModel(image, connectivity);
                }
}

// Holes of all widths beside each other, some wider than a word of 64 pixels, in stripes of labels.
TYPED_TEST(Filling, HolesOfLabelledStripes) {
    using T = TypeParam;
    std::mt19937 random(5);
    for (int const stripe : {3, 40, 500})
        for (T const largest : {T{9}, std::numeric_limits<T>::max()}) {
            TestImage<T> image({333, 40, 340});
            for (int y = 0; y < 40; ++y)
                for (int x = 0; x < 333; ++x)
                    image.At(x, y) = static_cast<T>(largest - static_cast<T>(x / stripe % 5));
            for (int hole = 0; hole < 60; ++hole) {
                int const left = static_cast<int>(random() % 333), y = static_cast<int>(random() % 40);
                int const right = std::min(333, left + 1 + static_cast<int>(random() % 70));
                for (int x = left; x < right; ++x) image.At(x, y) = 0;
            }
            for (int const connectivity : {4, 8}) ExpectHolesOfModel(image, connectivity);
        }
}

std::wstring const kMemory = L"template_FloodFill: Memory allocation failed for 2147483647 bytes.";

TEST(FloodFill, RefusesInItsOrder) {
    unsigned char pixels[64] = {};
    constexpr auto kType = L"Unsupported image datatype.";
    constexpr auto kSize = L"ippiFloodFillGetSize failed. code -5";
    auto const failed = [](int status) {
        return L"ippiFloodFill_nCon failed. code " + std::to_wstring(status);
    };
    auto const fill = [](ImageAttributes image, int x, int y) { return FloodFill(image, x, y, 1, 4); };
    EXPECT_REFUSAL(6, kType, fill({eUnknown, pixels, 0, 2, 2, 8, 0}, 0, 0));                    // no type
    EXPECT_REFUSAL(6, kType, fill({static_cast<eTypeCode>(12), pixels, 2, 2, 2, 8, 0}, 0, 0));  // type 12
    EXPECT_REFUSAL(5, kSize, fill({eByte, pixels, 0, 2, 2, 8, 0}, 0, 0));                       // no width
    EXPECT_REFUSAL(5, kSize, fill({eDouble, pixels, 2, -2, 2, 8, 0}, 0, 0));  // negative height, other type
    EXPECT_REFUSAL(5, failed(-12), fill({eDouble, pixels, 2, 2, 2, 64, 0}, 0, 0));  // other type
    EXPECT_REFUSAL(5, failed(-12), fill({eSByte, pixels, 2, 2, 2, 64, 0}, 0, 0));   // signed bytes
    EXPECT_REFUSAL(5, failed(-8), fill({eByte, nullptr, 2, 2, 1, 8, 0}, 5, 0));     // null
    EXPECT_REFUSAL(5, failed(-11), fill({eByte, pixels, 2, 2, 1, 8, 0}, -1, 0));    // seed before
    EXPECT_REFUSAL(5, failed(-11), fill({eUInt16, pixels, 2, 2, 1, 8, 0}, 0, 2));   // seed beyond
    EXPECT_REFUSAL(7, L"The image's rows overlap.",
                   fill({eByte, pixels, 4, 2, 2, 8, 0}, 0, 0));                                // rows overlap
    EXPECT_REFUSAL(1, kMemory, fill({eByte, pixels, INT_MAX, INT_MAX, INT_MAX, 8, 0}, 0, 0));  // huge
}

TEST(FillHoles, RefusesInItsOrder) {
    unsigned char pixels[64] = {};
    auto const fill = [](ImageAttributes image) { return FillHoles(image, 8); };
    EXPECT_REFUSAL(6, L"Unsupported image datatype.", fill({eInt16, pixels, 2, 2, 2, 8, 0}));
    EXPECT_REFUSAL(0, L"", fill({eByte, nullptr, 0, 2, 2, 8, 0}));   // no width
    EXPECT_REFUSAL(0, L"", fill({eUInt16, pixels, 2, 0, 2, 8, 0}));  // no height
    EXPECT_REFUSAL(2, L"The input image had a NULL buffer pointer.", fill({eByte, nullptr, 2, 2, 2, 8, 0}));
    EXPECT_REFUSAL(7, L"The image's rows overlap.", fill({eByte, pixels, 4, 2, 2, 8, 0}));
    CapturedLog const log;
    EXPECT_EQ(fill({eByte, pixels, INT_MAX, INT_MAX, INT_MAX, 8, 0}), 5);
    EXPECT_EQ(
        log.Texts(),
        kMemory + L"\nFloodFill top border background failed.\ntemplate_FloodBorderAreas to % failed.\n");
}

TEST(FillHoles, NeedsNoMemoryToSayWhereItFailed) {
    unsigned short const kTop = 1, kBottom = 2, kLeft = 3, kRight = 4;
    unsigned short pixels[3 * 4] = {9, kTop, 9, kLeft, 0, 9, 9, 9, kRight, kBottom, kBottom, kTop};
    ImageAttributes const image(eUInt16, pixels, 3, 4, 3, 16, 0);
    auto const top = L"FloodFill top border background failed.";
    auto const bottom = L"FloodFill bottom border background failed.";
    auto const before = std::vector<unsigned short>(pixels, pixels + 12);
    NoMemory const none;
    for (auto const& [background, message] :
         {std::pair{kTop, top}, {kBottom, bottom}, {kLeft, top}, {kRight, bottom}}) {
        CapturedLog const log;
        EXPECT_EQ(template_FloodBorderAreas<unsigned short>(image, background, 5, 4), 5);
        EXPECT_EQ(log.Text(), message);
        EXPECT_EQ(log.Errors().front().message.find(L"template_FloodFill: Memory"), 0u);
        EXPECT_EQ(log.Errors().front().location.find(L"FloodFill.cpp("), 0u);
        EXPECT_EQ(log.Errors().back().location.find(L"FillHoles.cpp("), 0u);
    }
    EXPECT_TRUE(std::equal(before.begin(), before.end(), pixels));
    EXPECT_EQ(template_FloodBorderAreas<unsigned short>(image, 0, 5, 4), 0);  // from no pixel
}

TEST(FillHoles, NeedsNoMemoryWhereNothingIsFilledFromTheBorder) {
    for (int const atCorner : {5, 255, 0}) {
        auto image = Uniform<unsigned char>({5, 5, 6}, 5);
        image.At(4, 4) = static_cast<unsigned char>(atCorner);
        image.At(2, 1) = image.At(3, 1) = 0;
        auto expected = image;
        if (atCorner != 0) expected.At(2, 1) = expected.At(3, 1) = 5;
        CapturedLog const log;
        EXPECT_EQ(WithoutMemory([&] { return FillHoles(image.Attributes(), 4); }), atCorner == 5 ? 0 : 5);
        EXPECT_EQ(log.Text(), atCorner == 5 ? L"" : L"template_FloodBorderAreas to % failed.");
        EXPECT_TRUE(image == expected);
    }
}

}  // namespace
}  // namespace ZPA
