// LabelMarkers and LabelMarkers2 against a plain search.
#include <Basics/Regions.h>
#include <gtest/gtest.h>

#include "support/CapturedLog.h"
#include "support/ConnectedPixels.h"
#include "support/NoMemory.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

constexpr auto kNullPixels = L"The input mask image had a NULL buffer pointer.";
constexpr auto kNullCount = L"The pnLabels pointer was NULL.";
constexpr auto kType = L"Unsupported image datatype.";
constexpr auto kNoSize = L"ippiLabelMarkersGetBufferSize<T> failed. code -5";

template <typename T> constexpr int kLargest = std::numeric_limits<T>::max() - 1;

// Replaces every non-zero pixel by its region's label, and gives the number of regions.
template <typename T> int ModelLabel(TestImage<T>& image, int connectivity) {
    TestImage<int> labels(image.shape);
    labels.Fill([&](int x, int y) { return image.At(x, y) != 0 ? -1 : 0; });
    int regions = 0;
    for (int y = 0; y < image.shape.height; ++y)
        for (int x = 0; x < image.shape.width; ++x)
            if (labels.At(x, y) == -1) ModelFill(labels, x, y, ++regions, connectivity);
    image.Fill([&](int x, int y) {
        int const region = labels.At(x, y);
        return region == 0 ? 0 : (region - 1) % kLargest<T> + 1;
    });
    return regions;
}

// Both ways of connecting, and a third value that is not 4, on every instruction set.
template <typename T> void ExpectLabelsOfModel(TestImage<T> const& image) {
    for (int const connectivity : {4, 8, 6}) {
        auto expected = image;
        int const regions = ModelLabel(expected, connectivity);
        std::vector<std::wstring> const none,
            warning = {L"WARNING: Input image has " + std::to_wstring(regions) + L" regions. Only " +
                       std::to_wstring(kLargest<T>) + L" allowed for this image data type."};
        ForEachSimdTarget([&] {
            SCOPED_TRACE(testing::Message() << image.shape << ", connectivity " << connectivity);
            CapturedLog const log;
            auto labelled = image;
            int count = -1;
            ASSERT_EQ(LabelMarkers(labelled.Attributes(), connectivity, &count), SOLVANE_OK);
            EXPECT_EQ(count, regions);
            ASSERT_TRUE(labelled == expected);
            EXPECT_TRUE(log.Errors().empty());
            EXPECT_EQ(Messages(log.Warnings()), regions > kLargest<T> ? warning : none);
            for (LogLine const& line : log.Warnings()) EXPECT_EQ(line.category, 4);
        });
    }
}

// A share of the pixels has any values but zero; the padding is filled too.
template <typename T> TestImage<T> Noise(Shape shape, double share, unsigned seed) {
    std::mt19937 random(seed);
    TestImage<T> image(shape);
    for (T& pixel : image) {
        bool const isSet = static_cast<double>(random()) < share * 4294967296.0;
        pixel = isSet ? static_cast<T>(random() % std::numeric_limits<T>::max() + 1) : T{0};
    }
    return image;
}

template <typename T, typename Inside> TestImage<T> Drawn(Shape shape, Inside const& inside) {
    TestImage<T> image(shape);
    image.Fill([&](int x, int y) { return inside(x, y) ? 9 : 0; });
    return image;
}

template <typename T> class Labelling : public testing::Test {};
using Served = testing::Types<unsigned char, unsigned short>;
TYPED_TEST_SUITE(Labelling, Served, );

TYPED_TEST(Labelling, NoiseAsAPlainSearchDoes) {
    unsigned seed = 0;
    for (Shape const shape : kWordShapes)
        for (double const share : {0.0, 0.1, 0.3, 0.4, 0.5, 0.6, 0.9, 1.0})
            ExpectLabelsOfModel(Noise<TypeParam>(shape, share, ++seed));
}

TYPED_TEST(Labelling, ShapesThatMeetLate) {
    for (int const side : {7, 64, 130}) {
        Shape const shape{side, side, side + 3};
        auto const distance = [=](int x, int y) { return std::min({x, y, side - 1 - x, side - 1 - y}); };
        auto const expect = [&](auto const& inside) { ExpectLabelsOfModel(Drawn<TypeParam>(shape, inside)); };
        // Rings that an opening joins to a spiral; combs that open upwards, and to the left; a funnel whose
        // left edge begins last; a checkerboard, which has the most runs; every other column.
        expect([=](int x, int y) {
            int const ring = distance(x, y);
            return (ring % 2 == 0) != (y == ring + 1 && x == ring && 2 * ring < side - 4);
        });
        expect([=](int x, int y) { return x % 2 == 0 || y == side - 1; });
        expect([=](int x, int y) { return y % 2 == 0 || x == side - 1; });
        expect([](int x, int y) { return (x + y) % 6 == 0 || x == y; });
        expect([](int x, int y) { return (x + y) % 2 == 0; });
        expect([](int x, int) { return x % 2 == 1; });
    }
}

TYPED_TEST(Labelling, BeginsAgainPastTheLargestLabel) {
    for (int const more : {0, 1, 2, 60}) {
        int const width = 2 * (kLargest<TypeParam> + more);
        ExpectLabelsOfModel(Drawn<TypeParam>({width, 1, width}, [](int x, int) { return x % 2 == 1; }));
    }
}

TEST(LabelMarkers, RefusesInItsOrder) {
    unsigned char pixels[64] = {1, 1, 1, 1};
    int count = -1;
    auto const label = [](ImageAttributes image, int* labels) { return LabelMarkers(image, 4, labels); };
    EXPECT_REFUSAL(6, kType, label({eInt16, nullptr, 2, 2, 2, 16, 0}, nullptr));       // type before null
    EXPECT_REFUSAL(2, kNullPixels, label({eByte, nullptr, 0, 0, 0, 8, 0}, nullptr));   // null pixels
    EXPECT_REFUSAL(2, kNullCount, label({eUInt16, pixels, 0, 2, 2, 16, 0}, nullptr));  // null count
    EXPECT_REFUSAL(5, kNoSize, label({eByte, pixels, 0, 2, 0, 8, 0}, &count));         // no width
    EXPECT_REFUSAL(5, kNoSize, label({eUInt16, pixels, 2, -2, 2, 16, 0}, &count));     // negative height
    EXPECT_REFUSAL(
        5, kNoSize,
        label({eByte, pixels, 65536, 65536, 65536, 8, 0}, &count));  // more regions than a count holds
    EXPECT_REFUSAL(5, kNoSize, label({eByte, pixels, INT_MAX, INT_MAX, INT_MAX, 8, 0}, &count));  // huge
    EXPECT_REFUSAL(7, L"The image's rows overlap.", label({eByte, pixels, 4, 2, 3, 8, 0}, &count));
    EXPECT_REFUSAL(7, L"The image's rows overlap.", label({eByte, pixels + 32, 4, 2, -4, 8, 0}, &count));
    EXPECT_REFUSAL(7, L"The image's elements are too narrow.",
                   template_LabelMarkers<unsigned short>({eByte, pixels, 4, 2, 4, 8, 0}, 4, &count));
    EXPECT_EQ(count, -1);
    EXPECT_EQ(pixels[3], 1);
}

TEST(LabelMarkers, WithoutMemoryLeavesTheImage) {
    auto image = Noise<unsigned char>({100, 20, 100}, 0.5, 1);
    auto const before = image;
    int count = -1;
    CapturedLog const log;
    EXPECT_EQ(WithoutMemory([&] { return LabelMarkers(image.Attributes(), 8, &count); }),
              SOLVANE_OUT_OF_MEMORY);
    EXPECT_EQ(log.Text().find(L"template_LabelMarkers: Memory allocation failed for "), 0u)
        << log.Text().c_str();
    EXPECT_EQ(count, -1);
    EXPECT_TRUE(image == before);
}

TEST(LabelMarkers2, LabelsIntoAnImageOfTheCallerOrOfItsOwn) {
    for (int const connectivity : {4, 8}) {
        auto mask = Noise<unsigned char>({70, 30, 77}, 0.4, 5);
        auto const before = mask;
        TestImage<unsigned short> expected({70, 30, 70});
        expected.Fill([&](int x, int y) { return mask.At(x, y); });
        int const regions = ModelLabel(expected, connectivity);

        ImageAttributes made(eByte, nullptr, 1, 2, 3, 4, 5);
        int count = 0;
        ASSERT_EQ(LabelMarkers2(mask.Attributes(8, 123), connectivity, &count, &made), SOLVANE_OK);
        EXPECT_EQ(count, regions);
        EXPECT_EQ(Description(made), Description({eUInt16, nullptr, 70, 30, 70, 16, 123}));
        ASSERT_NE(made.buffer, nullptr);
        EXPECT_EQ(std::memcmp(made.buffer, expected.Pixels(), expected.Size() * 2), 0);
        FreePixels(made.buffer);

        TestImage<unsigned short> given({70, 30, 83});
        auto padded = given;
        padded.Fill([&](int x, int y) { return expected.At(x, y); });
        count = 0;
        EXPECT_EQ(LabelMarkers2(mask.Attributes(), connectivity, &count, given.Into()), SOLVANE_OK);
        EXPECT_EQ(count, regions);
        EXPECT_TRUE(given == padded);
        EXPECT_TRUE(mask == before);
    }
}

TEST(LabelMarkers2, LabelsWhatSharesTheMasksPixelsWithoutACopy) {
    unsigned short pixels[3] = {256, 0, 7};
    ImageAttributes labeled = Over(pixels, eUInt16, 3, 1, 3);
    int count = 0;
    EXPECT_EQ(LabelMarkers2(Over(pixels, eByte, 3, 1, 3), 8, &count, &labeled), SOLVANE_OK);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(std::vector<int>(pixels, pixels + 3), (std::vector<int>{1, 0, 2}));
}

TEST(LabelMarkers2, LooksAtNoStrideOfOneRow) {
    unsigned char pixels[4] = {3, 3, 0, 1};
    unsigned short labels[4] = {};
    ImageAttributes labeled(eUInt16, labels, 4, 1, -3, 16, 0);
    int count = 0;
    EXPECT_EQ(LabelMarkers2({eByte, pixels, 4, 1, -9, 8, 0}, 4, &count, &labeled), SOLVANE_OK);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(std::vector<int>(labels, labels + 4), (std::vector<int>{1, 1, 0, 2}));
}

TEST(LabelMarkers2, RefusesInItsOrder) {
    unsigned char pixels[64] = {1, 0, 1, 1};
    unsigned short labels[64] = {};
    constexpr auto kMaskType = L"The input mask image must be of type eByte or eUInt16.";
    constexpr auto kNullOutput = L"The output labeled ImageAttributes pointer was NULL.";
    constexpr auto kSizes = L"The output labeled image was not the same size as the input.";
    constexpr auto kOutputType = L"The output labeled image must be of type eUInt16.";
    constexpr auto kShared = L"The input mask and output labeled images share memory.";
    constexpr auto kCopy = L"The call to CopyPixels() failed.";
    int count = -1;
    auto const label = [&](ImageAttributes image, ImageAttributes const& labeled) {
        ImageAttributes given = labeled;
        SOLVANE_RETURNCODE const code = LabelMarkers2(image, 8, &count, &given);
        EXPECT_EQ(given.buffer, labeled.buffer);
        return code;
    };
    ImageAttributes const bytes = Over(pixels, eByte), backwards = Over(pixels + 32, eByte, 4, 3, -4);
    EXPECT_REFUSAL(6, kType, LabelMarkers2(Described(eInt16, 4, 3, 4), 8, &count, nullptr));
    EXPECT_REFUSAL(2, kNullPixels, LabelMarkers2(Described(eUInt16, 4, 3, 4), 8, &count, nullptr));
    // The type that the text allows.
    EXPECT_REFUSAL(6, kMaskType, LabelMarkers2(Over(pixels, eUInt16), 8, &count, nullptr));
    EXPECT_REFUSAL(2, kNullOutput, LabelMarkers2(bytes, 8, &count, nullptr));
    EXPECT_REFUSAL(7, kSizes, label(bytes, Over(labels, eUInt16, 3)));
    EXPECT_REFUSAL(7, kSizes, label(bytes, Over(labels, eByte, 4, 1)));
    EXPECT_REFUSAL(6, kOutputType, label(bytes, Over(labels, eByte)));
    EXPECT_REFUSAL(6, kOutputType, label(bytes, Over(pixels, eByte)));
    EXPECT_REFUSAL(4, kShared, label(bytes, Over(pixels + 2, eUInt16)));  // from the third byte on
    EXPECT_REFUSAL(7, kCopy, label(backwards, Over(labels, eUInt16)));
    EXPECT_REFUSAL(7, kCopy, label(bytes, Over(labels, eUInt16, 4, 3, 3)));
    EXPECT_REFUSAL(7, kCopy, label(backwards, Described(eByte, 4, 3, 4)));
    EXPECT_REFUSAL(999, L"Unexpected exception.", label(Over(pixels, eByte, 0), Described(eByte, 4, 3, 4)));
    {  // Labelling itself fails, which is not told.
        CapturedLog const log;
        EXPECT_EQ(label(Over(pixels, eByte, 0), Over(labels, eUInt16, 0)), SOLVANE_OK);
        EXPECT_EQ(label(bytes, Over(pixels, eUInt16, 4, 3, 3)), SOLVANE_OK);
        EXPECT_EQ(log.Texts(), kNoSize + std::wstring(L"\nThe image's rows overlap.\n"));
    }
    EXPECT_EQ(count, -1);
    EXPECT_EQ(pixels[3], 1);
    EXPECT_EQ(labels[0], 0);
}

TEST(LabelMarkers2, ReleasesItsImageWhenLabellingFails) {
    unsigned char pixels[4] = {1, 0, 1, 1};
    ImageAttributes labeled;
    CapturedLog const log;
    EXPECT_EQ(LabelMarkers2({eByte, pixels, 2, 2, 2, 8, 0}, 8, nullptr, &labeled), SOLVANE_OK);
    EXPECT_EQ(log.Text(), kNullCount);
    EXPECT_EQ(log.Code(), 2);
    EXPECT_EQ(labeled.buffer, nullptr);
}

}  // namespace
}  // namespace ZPA
