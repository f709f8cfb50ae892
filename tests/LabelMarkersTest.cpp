// LabelMarkers and LabelMarkers2 against a plain search.
#include <Basics/Regions.h>
#include <gtest/gtest.h>

#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/NoMemory.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

constexpr auto kNullPixels = L"The input mask image had a NULL buffer pointer.";
constexpr auto kNullCount = L"The pnLabels pointer was NULL.";
constexpr auto kType = L"Unsupported image datatype.";
constexpr auto kNoSize = L"ippiLabelMarkersGetBufferSize<T> failed. code -5";

// Replaces every non-zero pixel by its region's label, and gives the number of regions.
template <typename T> int ModelLabel(TestImage<T>& image, int connectivity) {
    int const largest = std::numeric_limits<T>::max() - 1;
    TestImage<unsigned char> open(image.shape);
    int regions = 0;
    std::vector<APOINT> found;
    auto const find = [&](int x, int y) {
        if (x < 0 || y < 0 || x >= image.shape.width || y >= image.shape.height || !open.At(x, y)) return;
        open.At(x, y) = 0;
        image.At(x, y) = static_cast<T>((regions - 1) % largest + 1);
        found.push_back(APOINT(x, y));
    };
    for (int y = 0; y < image.shape.height; ++y)
        for (int x = 0; x < image.shape.width; ++x) open.At(x, y) = image.At(x, y) != 0;
    for (int y = 0; y < image.shape.height; ++y)
        for (int x = 0; x < image.shape.width; ++x) {
            if (!open.At(x, y)) continue;
            ++regions;
            for (find(x, y); !found.empty();) {
                APOINT const at = found.back();
                found.pop_back();
                for (int dy = -1; dy <= 1; ++dy)
                    for (int dx = -1; dx <= 1; ++dx)
                        if (connectivity != 4 || dx == 0 || dy == 0) find(at.x + dx, at.y + dy);
            }
        }
    return regions;
}

// Both ways of connecting, and a third value that is not 4, on every instruction set.
template <typename T> void ExpectLabelsOfModel(TestImage<T> const& image) {
    for (int const connectivity : {4, 8, 6}) {
        auto expected = image;
        int const regions = ModelLabel(expected, connectivity);
        ForEachSimdTarget([&] {
            SCOPED_TRACE(testing::Message() << image.shape << ", connectivity " << connectivity);
            CapturedLog const log;
            auto labelled = image;
            int count = -1;
            ASSERT_EQ(LabelMarkers(labelled.Attributes(), connectivity, &count), SOLVANE_OK);
            EXPECT_EQ(count, regions);
            ASSERT_TRUE(labelled == expected);
            EXPECT_EQ(log.Warnings().size(), regions > std::numeric_limits<T>::max() - 1 ? 1u : 0u);
        });
    }
}

// A share of the pixels has any values but zero; the padding is filled too.
template <typename T> TestImage<T> Noise(Shape shape, double share, unsigned seed) {
    std::mt19937 random(seed);
    TestImage<T> image(shape);
    for (std::size_t i = 0; i < image.Size(); ++i) {
        bool const isSet = static_cast<double>(random()) < share * 4294967296.0;
        image.Pixels()[i] = isSet ? static_cast<T>(random() % std::numeric_limits<T>::max() + 1) : T{0};
    }
    return image;
}

template <typename T, typename Inside> TestImage<T> Drawn(Shape shape, Inside const& inside) {
    TestImage<T> image(shape);
    for (int y = 0; y < shape.height; ++y)
        for (int x = 0; x < shape.width; ++x) image.At(x, y) = inside(x, y) ? T{9} : T{0};
    return image;
}

template <typename T> class Labelling : public testing::Test {};
using Served = testing::Types<unsigned char, unsigned short>;
TYPED_TEST_SUITE(Labelling, Served, );

TYPED_TEST(Labelling, NoiseAsAPlainSearchDoes) {
    // Both sides of a word of 64 pixels, and of several.
    constexpr Shape kSizes[] = {{1, 1, 1},   {1, 9, 4},     {9, 1, 9},      {63, 7, 70},    {64, 8, 64},
                                {65, 9, 65}, {128, 5, 130}, {131, 40, 140}, {192, 33, 192}, {2100, 3, 2100}};
    unsigned seed = 0;
    for (Shape const shape : kSizes)
        for (double const share : {0.0, 0.1, 0.3, 0.4, 0.5, 0.6, 0.9, 1.0})
            ExpectLabelsOfModel(Noise<TypeParam>(shape, share, ++seed));
}

TYPED_TEST(Labelling, ShapesThatMeetLate) {
    for (int const side : {7, 64, 130}) {
        Shape const shape{side, side, side + 3};
        auto const distance = [=](int x, int y) { return std::min({x, y, side - 1 - x, side - 1 - y}); };
        // Rings that an opening joins to a spiral; combs that open upwards, and to the left; a funnel whose
        // left edge begins last; a checkerboard, which has the most runs; every other column.
        ExpectLabelsOfModel(Drawn<TypeParam>(shape, [=](int x, int y) {
            int const ring = distance(x, y);
            return (ring % 2 == 0) != (y == ring + 1 && x == ring && 2 * ring < side - 4);
        }));
        ExpectLabelsOfModel(
            Drawn<TypeParam>(shape, [=](int x, int y) { return x % 2 == 0 || y == side - 1; }));
        ExpectLabelsOfModel(
            Drawn<TypeParam>(shape, [=](int x, int y) { return y % 2 == 0 || x == side - 1; }));
        ExpectLabelsOfModel(
            Drawn<TypeParam>(shape, [=](int x, int y) { return (x + y) % 6 == 0 || x == y; }));
        ExpectLabelsOfModel(Drawn<TypeParam>(shape, [=](int x, int y) { return (x + y) % 2 == 0; }));
        ExpectLabelsOfModel(Drawn<TypeParam>(shape, [=](int x, int) { return x % 2 == 1; }));
    }
}

TEST(LabelMarkers, BeginsAgainPastTheLargestLabel) {
    // 300 regions in bytes, and as many as 16 bits have labels for, and one more.
    struct Case {
        eTypeCode type;
        int regions;
        std::wstring warning;
    };
    Case const cases[] = {
        {eByte, 254, L""},
        {eByte, 300, L"WARNING: Input image has 300 regions. Only 254 allowed for this image data type."},
        {eUInt16, 65534, L""},
        {eUInt16, 65536,
         L"WARNING: Input image has 65536 regions. Only 65534 allowed for this image data type."},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.regions);
        auto const check = [&](auto element) {
            using T = decltype(element);
            int const largest = std::numeric_limits<T>::max() - 1;
            auto image =
                Drawn<T>({each.regions * 2, 1, each.regions * 2}, [](int x, int) { return x % 2 == 1; });
            CapturedLog const log;
            int count = 0;
            EXPECT_EQ(LabelMarkers(image.Attributes(), 8, &count), SOLVANE_OK);
            EXPECT_EQ(count, each.regions);
            EXPECT_EQ(image.At(2 * largest - 1, 0), largest);
            EXPECT_EQ(image.At(2 * each.regions - 1, 0), (each.regions - 1) % largest + 1);
            EXPECT_TRUE(log.Errors().empty());
            ASSERT_EQ(log.Warnings().size(), each.warning.empty() ? 0u : 1u);
            if (each.warning.empty()) return;
            EXPECT_EQ(log.Warnings()[0].message, each.warning);
            EXPECT_EQ(log.Warnings()[0].category, 4);
        };
        each.type == eByte ? check(std::uint8_t{}) : check(std::uint16_t{});
    }
}

TEST(LabelMarkers, RefusesInItsOrder) {
    unsigned char pixels[64] = {1, 1, 1, 1};
    int count = -1;
    struct Case {
        char const* name;
        ImageAttributes image;
        int* count;
        int code;
        std::wstring message;
    };
    Case const cases[] = {
        {"type before null", {eInt16, nullptr, 2, 2, 2, 16, 0}, nullptr, 6, kType},
        {"null pixels", {eByte, nullptr, 0, 0, 0, 8, 0}, nullptr, 2, kNullPixels},
        {"null count", {eUInt16, pixels, 0, 2, 2, 16, 0}, nullptr, 2, kNullCount},
        {"no width", {eByte, pixels, 0, 2, 0, 8, 0}, &count, 5, kNoSize},
        {"negative height", {eUInt16, pixels, 2, -2, 2, 16, 0}, &count, 5, kNoSize},
        {"more regions than a count holds", {eByte, pixels, 65536, 65536, 65536, 8, 0}, &count, 5, kNoSize},
        {"huge", {eByte, pixels, INT_MAX, INT_MAX, INT_MAX, 8, 0}, &count, 5, kNoSize},
        {"rows overlap", {eByte, pixels, 4, 2, 3, 8, 0}, &count, 7, L"The image's rows overlap."},
        {"rows upwards", {eByte, pixels + 32, 4, 2, -4, 8, 0}, &count, 7, L"The image's rows overlap."},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        CapturedLog const log;
        EXPECT_EQ(LabelMarkers(each.image, 4, each.count), each.code);
        EXPECT_EQ(log.Errors().size(), 1u);
        EXPECT_EQ(log.Text(), each.message);
        EXPECT_EQ(log.Code(), each.code);
    }
    CapturedLog const log;
    EXPECT_EQ(template_LabelMarkers<unsigned short>({eByte, pixels, 4, 2, 4, 8, 0}, 4, &count), 7);
    EXPECT_EQ(log.Text(), L"The image's elements are too narrow.");
    EXPECT_EQ(count, -1);
    EXPECT_EQ(pixels[3], 1);
}

TEST(LabelMarkers, WithoutMemoryLeavesTheImage) {
    auto image = Noise<unsigned char>({100, 20, 100}, 0.5, 1);
    auto const before = image;
    int count = -1;
    CapturedLog const log;
    {
        NoMemory const none;
        EXPECT_EQ(LabelMarkers(image.Attributes(), 8, &count), SOLVANE_OUT_OF_MEMORY);
    }
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
        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < 70; ++x) expected.At(x, y) = mask.At(x, y);
        int const regions = ModelLabel(expected, connectivity);

        ImageAttributes made(eByte, nullptr, 1, 2, 3, 4, 5);
        int count = 0;
        ASSERT_EQ(LabelMarkers2(mask.Attributes(8, 123), connectivity, &count, &made), SOLVANE_OK);
        EXPECT_EQ(count, regions);
        EXPECT_EQ(made.type, eUInt16);
        EXPECT_EQ(made.width, 70);
        EXPECT_EQ(made.height, 30);
        EXPECT_EQ(made.stride, 70);
        EXPECT_EQ(made.bitsperpixel, 16);
        EXPECT_EQ(made.pixelspacing, 123);
        ASSERT_NE(made.buffer, nullptr);
        EXPECT_EQ(std::memcmp(made.buffer, expected.Pixels(), expected.Size() * 2), 0);
        FreePixels(made.buffer);

        TestImage<unsigned short> given({70, 30, 83});
        auto padded = given;
        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < 70; ++x) padded.At(x, y) = expected.At(x, y);
        auto labeled = given.Attributes();
        count = 0;
        EXPECT_EQ(LabelMarkers2(mask.Attributes(), connectivity, &count, &labeled), SOLVANE_OK);
        EXPECT_EQ(count, regions);
        EXPECT_TRUE(given == padded);
        EXPECT_TRUE(mask == before);
    }
}

TEST(LabelMarkers2, LabelsWhatSharesTheMasksPixelsWithoutACopy) {
    TestImage<unsigned short> image({3, 1, 3});
    image.At(0, 0) = 256;
    image.At(1, 0) = 0;
    image.At(2, 0) = 7;
    ImageAttributes labeled = image.Attributes();
    ImageAttributes mask = labeled;
    mask.type = eByte;
    int count = 0;
    EXPECT_EQ(LabelMarkers2(mask, 8, &count, &labeled), SOLVANE_OK);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(image.At(0, 0), 1);
    EXPECT_EQ(image.At(1, 0), 0);
    EXPECT_EQ(image.At(2, 0), 2);
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
    auto const mask = [&](eTypeCode type, void* buffer, int width = 4, int height = 2, int stride = 4) {
        return ImageAttributes(type, buffer, width, height, stride, 8, 0);
    };
    auto const output = [&](eTypeCode type, void* buffer, int width = 4, int height = 2, int stride = 4) {
        return ImageAttributes(type, buffer, width, height, stride, 16, 0);
    };
    constexpr auto kMaskType = L"The input mask image must be of type eByte or eUInt16.";
    constexpr auto kNullOutput = L"The output labeled ImageAttributes pointer was NULL.";
    constexpr auto kSizes = L"The output labeled image was not the same size as the input.";
    constexpr auto kOutputType = L"The output labeled image must be of type eUInt16.";
    constexpr auto kShared = L"The input mask and output labeled images share memory.";
    constexpr auto kCopy = L"The call to CopyPixels() failed.";
    constexpr auto kOverlap = L"The image's rows overlap.";
    constexpr auto kException = L"Unexpected exception.";
    ImageAttributes const anOutput = output(eUInt16, labels);
    struct Case {
        char const* name;
        ImageAttributes mask;
        ImageAttributes const* labeled;  // a copy is given
        int code, logged;
        std::wstring message;
    };
    ImageAttributes const narrow = output(eUInt16, labels, 3), low = output(eByte, labels, 4, 1),
                          bytes = output(eByte, labels), shared = output(eByte, pixels),
                          within = output(eUInt16, pixels + 2), folded = output(eUInt16, labels, 4, 2, 3),
                          none = output(eByte, nullptr), foldedHere = output(eUInt16, pixels, 4, 2, 3),
                          empty = output(eUInt16, labels, 0, 2);
    Case const cases[] = {
        {"signed mask before null", mask(eInt16, nullptr), nullptr, 6, 6, kType},
        {"null mask before its type", mask(eUInt16, nullptr), nullptr, 2, 2, kNullPixels},
        {"the type that the text allows", mask(eUInt16, pixels), nullptr, 6, 6, kMaskType},
        {"no output", mask(eByte, pixels), nullptr, 2, 2, kNullOutput},
        {"width", mask(eByte, pixels), &narrow, 7, 7, kSizes},
        {"height before type", mask(eByte, pixels), &low, 7, 7, kSizes},
        {"output of bytes", mask(eByte, pixels), &bytes, 6, 6, kOutputType},
        {"the mask as output", mask(eByte, pixels), &shared, 6, 6, kOutputType},
        {"memory shared from the third byte on", mask(eByte, pixels), &within, 4, 4, kShared},
        {"mask's rows go back", mask(eByte, pixels + 32, 4, 2, -4), &anOutput, 7, 7, kCopy},
        {"output's rows overlap", mask(eByte, pixels), &folded, 7, 7, kCopy},
        {"mask's rows go back, output made", mask(eByte, pixels + 32, 4, 2, -4), &none, 7, 7, kCopy},
        {"no image can be made", mask(eByte, pixels, 0), &none, 999, 999, kException},
        // Labelling itself fails.
        {"no width", mask(eByte, pixels, 0), &empty, 0, 5, kNoSize},
        {"rows overlap in the memory shared", mask(eByte, pixels), &foldedHere, 0, 7, kOverlap},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        CapturedLog const log;
        ImageAttributes labeled = each.labeled ? *each.labeled : ImageAttributes();
        int count = -1;
        EXPECT_EQ(LabelMarkers2(each.mask, 8, &count, each.labeled ? &labeled : nullptr), each.code);
        EXPECT_EQ(log.Text(), each.message);
        EXPECT_EQ(log.Code(), each.logged);
        EXPECT_EQ(count, -1);
        EXPECT_EQ(labeled.buffer, each.labeled ? each.labeled->buffer : nullptr);
    }
    EXPECT_EQ(pixels[3], 1);
    EXPECT_EQ(labels[0], 0);
}

TEST(LabelMarkers2, ReleasesItsImageWhenLabellingFails) {
    unsigned char pixels[4] = {1, 0, 1, 1};
    ImageAttributes const mask(eByte, pixels, 2, 2, 2, 8, 0);
    ImageAttributes labeled;
    CapturedLog const log;
    EXPECT_EQ(LabelMarkers2(mask, 8, nullptr, &labeled), SOLVANE_OK);
    EXPECT_EQ(log.Text(), kNullCount);
    EXPECT_EQ(log.Code(), 2);
    EXPECT_EQ(labeled.buffer, nullptr);
}

}  // namespace
}  // namespace ZPA
