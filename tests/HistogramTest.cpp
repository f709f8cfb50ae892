// Histograms of images, and how they are smoothed.
#include <Basics/Histogram.h>
#include <gtest/gtest.h>

#include <map>

#include "support/CapturedLog.h"
#include "support/Regions.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

using Counts = std::vector<ULong32>;

// The histogram that the library creates.
struct Created {
    BufferAttributes histogram;
    ~Created() { FreePixels(histogram.buffer); }
    Counts Values() const {
        auto const first = static_cast<ULong32 const*>(histogram.buffer);
        return histogram.buffer ? Counts(first, first + histogram.size) : Counts();
    }
};

struct Limits {
    int min, max, bits;
};

template <typename T> class IntegerHistogramOf : public testing::Test {};
using Served = testing::Types<unsigned char, short, unsigned short>;
TYPED_TEST_SUITE(IntegerHistogramOf, Served, );

template <typename Mask, typename T>
void CompareWithModel(TestImage<T>& image, TestImage<Mask>& mask, Choice const& choice, Limits limits) {
    SCOPED_TRACE(testing::Message() << image.shape << ", " << choice << ", " << limits.min << " to "
                                    << limits.max);
    Counts expected(static_cast<std::size_t>(limits.max - limits.min + 1));
    choice.ForEach(mask, [&](int x, int y) {
        int const pixel = image.At(x, y);
        if (pixel >= limits.min && pixel <= limits.max)
            ++expected[static_cast<std::size_t>(pixel - limits.min)];
    });
    ImageAttributes const maskAttributes = mask.Attributes();
    ForEachThreadCount([&] {
        Created created;
        EXPECT_EQ(
            GetIntegerHistogram(image.Attributes(limits.bits), choice.Roi(), choice.Mask(maskAttributes),
                                choice.Origin(), &limits.min, &limits.max, &created.histogram),
            SOLVANE_OK);
        EXPECT_EQ(created.histogram.type, eUInt32);
        EXPECT_TRUE(created.Values() == expected);
    });
}

// Of each number of tables, inside the type's values, across their ends, and outside of them.
constexpr Limits kLimits[] = {{0, 255, 8},        {3, 200, 16},    {10, 10, 16},        {-5, 4000, 16},
                              {100, 20000, 16},   {0, 65535, 16},  {-32768, 32767, 16}, {-40000, 70000, 20},
                              {70000, 70100, 17}, {-300, -200, 16}};

TYPED_TEST(IntegerHistogramOf, IsThatOfTheModel) {
    for (Shape const shape : kShapes) {
        auto image = RandomImage<TypeParam>(shape, 1);
        std::fill_n(image.Pixels(), image.Size() / 2, TypeParam{10});  // runs of equal pixels
        auto mask = RandomMask(MaskShape(shape), 2);
        auto wideMask = RandomImage<unsigned short>(MaskShape(shape), 3);
        auto signedMask = RandomImage<short>(MaskShape(shape), 3);
        for (std::size_t i = 0; i < wideMask.Size(); i += 2) {
            wideMask.Pixels()[i] = signedMask.Pixels()[i] = 0;
            if (i + 1 < wideMask.Size()) wideMask.Pixels()[i + 1] = 256;  // selects, though its low byte is 0
        }
        for (Choice const& choice : Choices(shape))
            for (Limits const limits : kLimits) {
                CompareWithModel(image, mask, choice, limits);
                if (!choice.masked) continue;
                CompareWithModel(image, wideMask, choice, limits);
                CompareWithModel(image, signedMask, choice, limits);
            }
    }
}

TYPED_TEST(IntegerHistogramOf, IsTheSameWithThreads) {
    // Enough pixels to be shared, with and without gaps.
    for (Shape const shape : {Shape{1024, 700, 1024}, {1021, 700, 1030}}) {
        auto image = RandomImage<TypeParam>(shape, 1);
        TestImage<unsigned char> noMask({1, 1, 1});
        CompareWithModel(image, noMask, Choices(shape)[0], {-100, 40000, 16});
    }
}

// The bins that are not empty, and the number of all.
using Bins = std::map<int, ULong32>;
template <typename T> std::pair<Bins, int> DefaultHistogram(std::vector<T> pixels, int bits) {
    Created created;
    auto const size = static_cast<int>(pixels.size());
    ImageAttributes const image(TypeCodeOf<T>, pixels.data(), size, 1, size, bits, 0);
    EXPECT_EQ(GetIntegerHistogram(image, nullptr, nullptr, nullptr, nullptr, nullptr, &created.histogram), 0);
    Bins counted;
    Counts const values = created.Values();
    for (std::size_t bin = 0; bin < values.size(); ++bin)
        if (values[bin]) counted[static_cast<int>(bin)] = values[bin];
    return {counted, created.histogram.size};
}

TEST(IntegerHistogram, HasDefaultLimits) {
    auto const histogram = [](Bins const& bins, int size) { return std::pair(bins, size); };
    EXPECT_EQ(DefaultHistogram<unsigned char>({0, 255, 255}, 8), histogram({{0, 1}, {255, 2}}, 256));
    EXPECT_EQ(DefaultHistogram<unsigned char>({0, 255}, 12), histogram({{0, 1}, {255, 1}}, 256));
    EXPECT_EQ(DefaultHistogram<unsigned short>({5000, 4095}, 12), histogram({{4095, 1}}, 4096));
    EXPECT_EQ(DefaultHistogram<unsigned short>({65535}, 31), histogram({{65535, 1}}, 65536));
    EXPECT_EQ(DefaultHistogram<short>({-32768, -32767, 32767}, 16), histogram({{0, 1}, {65534, 1}}, 65535));
    EXPECT_EQ(DefaultHistogram<short>({0, 1, -1}, 1), histogram({{0, 1}}, 1));
}

template <typename T> class RealHistogramOf : public testing::Test {};
using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(RealHistogramOf, Reals, );

TYPED_TEST(RealHistogramOf, IsThatOfTheModelOnEverySimdTarget) {
    for (Shape const shape : kShapes) {
        auto image = RandomImage<TypeParam>(shape, 1);
        for (std::size_t i = 0; i < image.Size(); i += 5) image.Pixels()[i] = static_cast<TypeParam>(i);
        auto mask = RandomMask(MaskShape(shape), 2);
        ImageAttributes const maskAttributes = mask.Attributes();
        int const binCounts[] = {1, 2, 100, 9001};
        for (Choice const& choice : Choices(shape))
            for (int const binCount : binCounts) {
                SCOPED_TRACE(testing::Message() << shape << ", " << choice << ", " << binCount << " bins");
                double const min = 3, max = 60000;
                double const width = (max - min) / (binCount - 1), start = min - width * 0.5;
                Counts expected(static_cast<std::size_t>(binCount));
                choice.ForEach(mask, [&](int x, int y) {
                    double const place = (image.At(x, y) - start) / width;
                    if (place > -1 && place < binCount)
                        ++expected[static_cast<std::size_t>(std::max(place, 0.0))];
                });
                ForEachSimdTarget([&] {
                    Created created;
                    EXPECT_EQ(GetRealHistogram(image.Attributes(), choice.Roi(), choice.Mask(maskAttributes),
                                               choice.Origin(), binCount, min, max, &created.histogram),
                              SOLVANE_OK);
                    EXPECT_TRUE(created.Values() == expected);
                });
            }
    }
}

TYPED_TEST(RealHistogramOf, CentresItsBinsAndDropsWhatHasNone) {
    using Numbers = std::numeric_limits<TypeParam>;
    constexpr TypeParam kInfinity = Numbers::infinity();
    TypeParam pixels[] = {TypeParam(0.4),  TypeParam(0.6),       TypeParam(-0.5), TypeParam(-1.4),
                          TypeParam(-1.5), TypeParam(10.4),      TypeParam(10.5), kInfinity,
                          -kInfinity,      Numbers::quiet_NaN(), Numbers::max(),  Numbers::lowest()};
    ImageAttributes const image(TypeCodeOf<TypeParam>, pixels, 12, 1, 12, 8 * sizeof(TypeParam), 0);
    Counts counts(12, 77);
    BufferAttributes histogram(eUInt32, counts.data(), 12);
    EXPECT_EQ(GetRealHistogram(image, nullptr, nullptr, nullptr, 11, 0, 10, &histogram), SOLVANE_OK);
    EXPECT_EQ(counts, (Counts{3, 1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 77}));
    // Bins without a width, and limits that are no numbers.
    for (double const limit : {4.0, double{kInfinity}, double{Numbers::quiet_NaN()}}) {
        EXPECT_EQ(GetRealHistogram(image, nullptr, nullptr, nullptr, 11, limit, limit, &histogram),
                  SOLVANE_OK);
        EXPECT_EQ(counts, (Counts{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 77}));
    }
}

TEST(Histogram, RefusesInItsOrder) {
    float pixels[24] = {};
    unsigned char maskPixels[24] = {};
    ULong32 counts[300] = {5};
    auto const image = [&](eTypeCode type, int bits = 8) {
        return ImageAttributes(type, pixels, 4, 3, 6, bits, 0);
    };
    auto const noPixels = [&](eTypeCode type) { return ImageAttributes(type, nullptr, 4, 3, 6, 8, 0); };
    ImageAttributes const mask(eByte, maskPixels, 4, 3, 4, 8, 0), noMask(eByte, nullptr, 4, 3, 4, 8, 0);
    ImageAttributes const floatMask(eSingle, maskPixels, 4, 3, 4, 8, 0);
    ImageAttributes const narrow(eByte, pixels, 4, 3, -4, 8, 0),
        narrowFloats(eSingle, pixels, 4, 3, 3, 32, 0);
    Rectangle const empty(0, 0, 0, 1), wide(0, 0, 5, 1), inside(1, 1, 3, 2);
    APOINT const beyond(0, 2);
    BufferAttributes const good(eUInt32, counts, 300), wrong(eInt32, counts, 300),
        tooShort(eUInt32, counts, 9), fresh;
    constexpr auto kNoHistogram = L"The histogram pointer was NULL.";
    constexpr auto kHistogramType = L"The histogram must be of type eUInt32.";
    constexpr auto kLimits = L"Illegal minValue/maxValue.";
    constexpr auto kSwapped = L"minValue is less than maxValue.";
    constexpr auto kTooSmall = L"The histogram buffer is too small.";
    struct Case {
        char const* name;
        ImageAttributes image;
        Rectangle const* roi;
        ImageAttributes const* mask;
        APOINT const* origin;
        int min, max;  // and for reals `bins` from min to max
        int bins;
        BufferAttributes const* histogram;
        int code;
        std::wstring message;
    };
    Case const integers[] = {
        {"null mask first", noPixels(eSingle), &empty, &noMask, nullptr, 9, 1, 0, nullptr, 2, kNullMask},
        {"no histogram", noPixels(eSingle), &empty, &floatMask, nullptr, 9, 1, 0, nullptr, 2, kNoHistogram},
        {"histogram's type", noPixels(eSingle), &empty, &floatMask, nullptr, 9, 1, 0, &wrong, 6,
         kHistogramType},
        {"type", noPixels(eSingle), &empty, &floatMask, nullptr, 9, 1, 0, &tooShort, 6,
         L"The input image must be of type eByte, eUInt16, or eInt16."},
        {"mask's type", noPixels(eByte), &empty, &floatMask, nullptr, 9, 1, 0, &tooShort, 6,
         L"The mask image must be of type eByte, eUInt16 or eInt16."},
        {"null", noPixels(eByte), &empty, &mask, &beyond, 9, 1, 0, &tooShort, 2, kNullImage},
        {"empty", image(eByte), &empty, &mask, &beyond, 9, 1, 0, &tooShort, 3, kEmptyRegion},
        {"wide", image(eByte), &wide, &mask, &beyond, 9, 1, 0, &tooShort, 3, kOutsideImage},
        {"swapped", image(eByte), &inside, &mask, &beyond, 9, 8, 0, &tooShort, 4, kLimits},
        {"beyond the bits", image(eByte), &inside, &mask, &beyond, 0, 256, 0, &tooShort, 4, kLimits},
        {"no bits", image(eByte, 0), &inside, &mask, &beyond, 0, 0, 0, &good, 4, kLimits},
        {"32 bits", image(eInt16, 32), &inside, &mask, &beyond, 0, 0, 0, &good, 4, kLimits},
        {"too short", image(eByte), &inside, &mask, &beyond, 0, 9, 0, &tooShort, 7, kTooSmall},
        {"too many for any", image(eInt16, 31), &inside, &mask, &beyond, INT_MIN, INT_MAX, 0, &good, 7,
         kTooSmall},
        {"too many to create", image(eInt16, 31), nullptr, nullptr, nullptr, INT_MIN, INT_MAX, 0, &fresh, 999,
         L"Unexpected exception."},
        {"origin", image(eByte), &inside, &mask, &beyond, 0, 9, 0, &fresh, 3, kOutsideMask},
        {"rows overlap", narrow, nullptr, nullptr, nullptr, 0, 9, 0, &good, 7, kRowsOverlap},
    };
    Case const reals[] = {
        {"null mask first", noPixels(eByte), &empty, &noMask, nullptr, 9, 1, 0, nullptr, 2, kNullMask},
        {"mask's type", noPixels(eByte), &empty, &floatMask, nullptr, 9, 1, 0, nullptr, 6, kByteMask},
        {"no histogram", noPixels(eByte), &empty, &mask, nullptr, 9, 1, 0, nullptr, 2, kNoHistogram},
        {"histogram's type", noPixels(eByte), &empty, &mask, nullptr, 9, 1, 0, &wrong, 6, kHistogramType},
        {"type", noPixels(eByte), &empty, &mask, nullptr, 9, 1, 0, &tooShort, 6,
         L"The input image must be of type eSingle or eDouble."},
        {"null", noPixels(eSingle), &empty, &mask, &beyond, 9, 1, 0, &tooShort, 2, kNullImage},
        {"empty", image(eSingle), &empty, &mask, &beyond, 9, 1, 0, &tooShort, 3, kEmptyRegion},
        {"wide", image(eSingle), &wide, &mask, &beyond, 9, 1, 0, &tooShort, 3, kOutsideImage},
        {"swapped", image(eSingle), &inside, &mask, &beyond, 9, 8, 0, &tooShort, 4, kSwapped},
        {"no bins", image(eSingle), &inside, &mask, &beyond, 0, 9, 0, &tooShort, 4,
         L"binCount must be >= 1."},
        {"too short", image(eSingle), &inside, &mask, &beyond, 0, 9, 10, &tooShort, 7, kTooSmall},
        {"origin", image(eSingle), &inside, &mask, &beyond, 0, 9, 10, &fresh, 3, kOutsideMask},
        {"rows overlap", narrowFloats, nullptr, nullptr, nullptr, 0, 9, 10, &good, 7, kRowsOverlap},
    };
    auto const check = [&](Case const& each, bool real) {
        SCOPED_TRACE(testing::Message() << (real ? "real, " : "integer, ") << each.name);
        BufferAttributes histogram = each.histogram ? *each.histogram : fresh;
        BufferAttributes* const given = each.histogram ? &histogram : nullptr;
        auto const call = [&] {
            return real ? GetRealHistogram(each.image, each.roi, each.mask, each.origin, each.bins, each.min,
                                           each.max, given)
                        : GetIntegerHistogram(each.image, each.roi, each.mask, each.origin, &each.min,
                                              &each.max, given);
        };
        ExpectRefusal(call, each.code, each.message);
        // What was created is gone, and what was given is untouched.
        EXPECT_EQ(histogram.buffer, each.histogram ? each.histogram->buffer : nullptr);
        EXPECT_EQ(counts[0], 5u);
    };
    for (Case const& each : integers) check(each, false);
    for (Case const& each : reals) check(each, true);
}

// Element by element, from the formulas.
std::vector<float> SmoothedModel(std::vector<float> const& histogram, float sigma, int mode) {
    int const count = static_cast<int>(histogram.size()), half = static_cast<int>(4.0 * sigma + 0.5);
    std::vector<float> result(histogram.size());
    for (int i = 0; i < count; ++i) {
        float sum = 0;
        for (int k = -half; k <= half; ++k) {
            int at = i + k;
            while (at < 0 || at >= count) {
                if (mode == 0 || count == 1)
                    at = at < 0 ? 0 : count - 1;
                else if (mode == 1)
                    at += at < 0 ? count : -count;
                else
                    at = at < 0 ? -at : 2 * (count - 1) - at;
            }
            float const u = static_cast<float>(k);
            auto const weight =
                static_cast<float>((0.3989423215389252 / sigma) * std::exp(u * u * ((-0.5 / sigma) / sigma)));
            sum += histogram[static_cast<std::size_t>(at)] * weight;
        }
        result[static_cast<std::size_t>(i)] = sum;
    }
    return result;
}

TEST(SmoothHistogram, IsThatOfTheModelOnEverySimdTarget) {
    for (int const count : {1, 2, 3, 17, 64, 300})
        for (float const sigma : {0.05f, 0.2f, 1.0f, 2.6f, 20.0f})
            for (int const mode : {0, 1, 2, -1}) {
                SCOPED_TRACE(testing::Message()
                             << count << " elements, sigma " << sigma << ", mode " << mode);
                auto const image = RandomImage<float>({count, 1, count}, 1);
                std::vector<float> const histogram(image.Pixels(), image.Pixels() + count);
                std::vector<float> const expected = SmoothedModel(histogram, sigma, mode);
                ForEachSimdTarget([&] {
                    std::vector<float> smoothed = histogram;
                    EXPECT_EQ(smoothHistogram(smoothed.data(), count, sigma, mode), SOLVANE_OK);
                    EXPECT_EQ(smoothed, expected);
                });
            }
}

TEST(SmoothHistogram, HasItsPeakAndRefusesWhatIsNoWidth) {
    float spike[11] = {0, 0, 0, 0, 0, 1};
    EXPECT_EQ(smoothHistogram(spike, 11, 1, 0), SOLVANE_OK);
    EXPECT_FLOAT_EQ(spike[5], 0.3989423f);
    EXPECT_EQ(spike[0], 0);
    EXPECT_GT(spike[1], 0);

    float kept[3] = {1, 2, 3};
    CapturedLog const log;
    EXPECT_EQ(smoothHistogram(nullptr, 3, 0, 0), 2);
    EXPECT_EQ(log.Text(), L"smooth() - NULL hist pointer.");
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (float const sigma : {0.0f, -1.0f, kInfinity, std::numeric_limits<float>::quiet_NaN()})
        EXPECT_EQ(smoothHistogram(kept, 3, sigma, 0), 4) << sigma;
    EXPECT_EQ(smoothHistogram(kept, 3, 1e30f, 0), 999);
    EXPECT_EQ(smoothHistogram(kept, 0, 1, 0), 0);
    EXPECT_EQ(smoothHistogram(kept, -1, 1, 1), 0);
    EXPECT_EQ(kept[0] + kept[1] * 10 + kept[2] * 100, 321);
}

}  // namespace
}  // namespace ZPA
