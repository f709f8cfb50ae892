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
    ULong32 counts[300] = {5};
    auto const image = [&](eTypeCode type, int bits = 8, int stride = 6) {
        return ImageAttributes(type, pixels, 4, 3, stride, bits, 0);
    };
    auto const noPixels = [](eTypeCode type) { return Described(type, 4, 3, 6); };
    BufferAttributes const good(eUInt32, counts, 300), wrong(eInt32, counts, 300),
        tooShort(eUInt32, counts, 9);
    BufferAttributes const fresh;
    constexpr auto kNoHistogram = L"The histogram pointer was NULL.";
    constexpr auto kHistogramType = L"The histogram must be of type eUInt32.";
    constexpr auto kType = L"The input image must be of type eByte, eUInt16, or eInt16.";
    constexpr auto kMaskType = L"The mask image must be of type eByte, eUInt16 or eInt16.";
    constexpr auto kRealType = L"The input image must be of type eSingle or eDouble.";
    constexpr auto kLimits = L"Illegal minValue/maxValue.";
    constexpr auto kTooSmall = L"The histogram buffer is too small.";
    // What is created is gone, and what is given is untouched.
    auto const leaving = [&](BufferAttributes const* histogram, auto const& call) {
        BufferAttributes given = histogram ? *histogram : fresh;
        SOLVANE_RETURNCODE const code = call(histogram ? &given : nullptr);
        EXPECT_EQ(given.buffer, histogram ? histogram->buffer : nullptr);
        EXPECT_EQ(counts[0], 5u);
        return code;
    };
    auto const ofIntegers = [&](ImageAttributes of, Region const& region, int min, int max,
                                BufferAttributes const* histogram) {
        return leaving(histogram, [&](BufferAttributes* given) {
            return GetIntegerHistogram(of, region.roi, region.mask, region.origin, &min, &max, given);
        });
    };
    auto const ofReals = [&](ImageAttributes of, Region const& region, int bins, double min, double max,
                             BufferAttributes const* histogram) {
        return leaving(histogram, [&](BufferAttributes* given) {
            return GetRealHistogram(of, region.roi, region.mask, region.origin, bins, min, max, given);
        });
    };
    Region const noMask{&kEmpty, &kNoMask}, floatMask{&kEmpty, &kFloatMask}, empty{&kEmpty, &kMask, &kBeyond};
    Region const beyond{&kInside, &kMask, &kBeyond}, whole;

    EXPECT_REFUSAL(2, kNullMask, ofIntegers(noPixels(eSingle), noMask, 9, 1, nullptr));
    EXPECT_REFUSAL(2, kNoHistogram, ofIntegers(noPixels(eSingle), floatMask, 9, 1, nullptr));
    EXPECT_REFUSAL(6, kHistogramType, ofIntegers(noPixels(eSingle), floatMask, 9, 1, &wrong));
    EXPECT_REFUSAL(6, kType, ofIntegers(noPixels(eSingle), floatMask, 9, 1, &tooShort));
    EXPECT_REFUSAL(6, kMaskType, ofIntegers(noPixels(eByte), floatMask, 9, 1, &tooShort));
    EXPECT_REFUSAL(2, kNullImage, ofIntegers(noPixels(eByte), empty, 9, 1, &tooShort));
    EXPECT_REFUSAL(3, kEmptyRegion, ofIntegers(image(eByte), empty, 9, 1, &tooShort));
    EXPECT_REFUSAL(4, kLimits, ofIntegers(image(eByte), beyond, 9, 8, &tooShort));
    EXPECT_REFUSAL(4, kLimits, ofIntegers(image(eByte), beyond, 0, 256, &tooShort));
    EXPECT_REFUSAL(4, kLimits, ofIntegers(image(eByte, 0), beyond, 0, 0, &good));
    EXPECT_REFUSAL(4, kLimits, ofIntegers(image(eInt16, 32), beyond, 0, 0, &good));
    EXPECT_REFUSAL(7, kTooSmall, ofIntegers(image(eByte), beyond, 0, 9, &tooShort));
    EXPECT_REFUSAL(7, kTooSmall, ofIntegers(image(eInt16, 31), beyond, INT_MIN, INT_MAX, &good));
    EXPECT_REFUSAL(999, L"Unexpected exception.",
                   ofIntegers(image(eInt16, 31), whole, INT_MIN, INT_MAX, &fresh));
    EXPECT_REFUSAL(7, kRowsOverlap, ofIntegers(image(eByte, 8, -4), whole, 0, 9, &good));
    ExpectRegionRefusals([&](Region const& region) { return ofIntegers(image(eByte), region, 0, 9, &fresh); },
                         kOutsideImage, true);

    EXPECT_REFUSAL(2, kNullMask, ofReals(noPixels(eByte), noMask, 0, 9, 1, nullptr));
    EXPECT_REFUSAL(6, kByteMask, ofReals(noPixels(eByte), floatMask, 0, 9, 1, nullptr));
    EXPECT_REFUSAL(2, kNoHistogram, ofReals(noPixels(eByte), empty, 0, 9, 1, nullptr));
    EXPECT_REFUSAL(6, kHistogramType, ofReals(noPixels(eByte), empty, 0, 9, 1, &wrong));
    EXPECT_REFUSAL(6, kRealType, ofReals(noPixels(eByte), empty, 0, 9, 1, &tooShort));
    EXPECT_REFUSAL(2, kNullImage, ofReals(noPixels(eSingle), empty, 0, 9, 1, &tooShort));
    EXPECT_REFUSAL(3, kEmptyRegion, ofReals(image(eSingle), empty, 0, 9, 1, &tooShort));
    EXPECT_REFUSAL(4, L"minValue is less than maxValue.",
                   ofReals(image(eSingle), beyond, 0, 9, 8, &tooShort));
    EXPECT_REFUSAL(4, L"binCount must be >= 1.", ofReals(image(eSingle), beyond, 0, 0, 9, &tooShort));
    EXPECT_REFUSAL(7, kTooSmall, ofReals(image(eSingle), beyond, 10, 0, 9, &tooShort));
    EXPECT_REFUSAL(7, kRowsOverlap, ofReals(image(eSingle, 32, 3), whole, 10, 0, 9, &good));
    ExpectRegionRefusals(
        [&](Region const& region) { return ofReals(image(eSingle), region, 10, 0, 9, &fresh); },
        kOutsideImage, true);
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
