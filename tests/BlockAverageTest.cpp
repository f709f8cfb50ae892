// Block averages beside a model that sums every block anew, and plain samples.
#include <Basics/BlockAverage.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <type_traits>

#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/NoMemory.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

struct Case {
    int width, height, factor;
};
std::ostream& operator<<(std::ostream& out, Case const& c) {
    return out << c.width << " x " << c.height << " by " << c.factor;
}

// Left-over columns and rows, every way in which a side falls apart into twos, both sides of a vector and of
// the columns that are summed at once, and blocks whose sums pass 31 bits.
Case const kCases[] = {{1, 1, 1},       {10, 7, 3},     {33, 5, 1},    {2, 2, 2},       {67, 9, 2},
                       {131, 8, 4},     {130, 13, 6},   {99, 17, 8},   {300, 11, 5},    {777, 14, 7},
                       {8200, 5, 2},    {2100, 24, 12}, {383, 23, 11}, {400, 200, 181}, {371, 190, 182},
                       {530, 300, 256}, {5, 4, 9},      {3, 0, 2}};

template <typename T>
TestImage<T> Model(Case const& c, TestImage<T> const& input, T const* code,
                   std::function<T(std::int64_t, std::int64_t)> const& divide = nullptr) {
    using Sum = std::conditional_t<std::is_integral_v<T>, std::int64_t, long double>;
    TestImage<T> means({c.width / c.factor, c.height / c.factor, c.width / c.factor});
    means.Fill([&](int x, int y) {
        Sum sum = 0;
        std::int64_t count = 0;
        for (int j = 0; j < c.factor; ++j)
            for (int i = 0; i < c.factor; ++i) {
                T const pixel = input.At(x * c.factor + i, y * c.factor + j);
                if (code && pixel == *code) continue;
                sum += pixel;
                ++count;
            }
        if (count == 0) return *code;
        return divide ? divide(static_cast<std::int64_t>(sum), count)
                      : static_cast<T>(sum / static_cast<Sum>(count));
    });
    return means;
}

// Few values, so that whole blocks are of one; the extremes among them.
template <typename T> TestImage<T> Coarse(Case const& c, unsigned seed) {
    auto image = RandomImage<T>({c.width, c.height, c.width}, seed);
    T const values[] = {T(7), T(7), T(100), std::numeric_limits<T>::max(), std::numeric_limits<T>::lowest()};
    std::mt19937 random(seed);
    for (std::size_t i = 0; i < image.Size(); ++i)
        if (i % 64 < 32) image.Pixels()[i] = values[random() % 5 * ((i / 64) % 3 != 0)];
    return image;
}

// The function gives the means, leaves the rest alone, and may write them over the pixels.
template <typename T>
void Expect(Case const& c, TestImage<T> input, TestImage<T> const& means,
            std::function<SOLVANE_RETURNCODE(T*, T*)> const& reduce) {
    ForEachSimdTarget([&] {
        SCOPED_TRACE(testing::Message() << c << " of " << TypeCodeOf<T>);
        auto const before = input;
        TestImage<T> output(means.shape);
        ASSERT_EQ(reduce(input.Pixels(), output.Pixels()), SOLVANE_OK);
        EXPECT_TRUE(output == means);
        EXPECT_TRUE(input == before);

        auto both = input;
        ASSERT_EQ(reduce(both.Pixels(), both.Pixels()), SOLVANE_OK);
        auto expected = before;  // compared by its bits
        std::copy_n(means.Pixels(), means.Size(), expected.Pixels());
        EXPECT_TRUE(both == expected);
    });
}

// Plain, with each of the codes, and wrapping around at 32 bits.
template <typename T>
void ExpectMeans(Case const& c, TestImage<T> const& input, std::initializer_list<T> codes) {
    int const width = c.width / c.factor, height = c.height / c.factor;
    Expect<T>(c, input, Model<T>(c, input, nullptr), [&](T* in, T* out) {
        return blockAverageDownSampleTemplate(in, out, c.width, c.height, width, height, c.factor);
    });
    for (T const code : codes)
        Expect<T>(c, input, Model<T>(c, input, &code), [&](T* in, T* out) {
            return blockAverageDownSampleCodedMaskTemplate(in, out, c.width, c.height, width, height,
                                                           c.factor, code);
        });
    if constexpr (std::is_same_v<T, unsigned short>) {
        auto const means = Model<T>(c, input, nullptr, [](std::int64_t sum, std::int64_t count) {
            return static_cast<T>(static_cast<std::int32_t>(static_cast<std::uint32_t>(sum)) / count);
        });
        Expect<T>(c, input, means, [&](T* in, T* out) {
            return blockAverage(in, out, c.width, c.height, width, height, c.factor);
        });
    }
}

TEST(BlockAverage, GivesTheTruncatedMeansOnEverySimdTarget) {
    for (Case const& c : kCases)
        ForEachType<unsigned short, short, double>([&](auto element) {
            using T = decltype(element);
            ExpectMeans<T>(c, Coarse<T>(c, 1), {T(7), T(0), std::numeric_limits<T>::lowest()});
        });
}

// Sums of few digits, of more than a double has, halfway between two doubles, and of more than extended precision
// has; beside one pixel of quite another size, or that is no number.
TEST(BlockAverage, AddsDoublesInExtendedPrecision) {
    double const infinity = std::numeric_limits<double>::infinity();
    std::mt19937 random(5);
    for (Case const& c :
         {Case{601, 5, 1}, {1301, 7, 2}, {300, 7, 3}, {131, 9, 4}, {130, 13, 5}, {601, 17, 8}})
        for (int const digits : {1, 16, 49, 53})
            for (int const binades : {1, 8, 60})
                for (double const other : {3.0, -0.0, 1e-320, 1e15, -1e305, infinity, std::nan("")}) {
                    TestImage<double> image({c.width, c.height, c.width});
                    image.Fill([&](int, int) {
                        std::uint64_t const bits = std::uint64_t{random()} << 32 | random();
                        double const pixel = std::ldexp(static_cast<double>(bits >> (64 - digits)), -digits);
                        return std::ldexp(1 + pixel, -static_cast<int>(random() % unsigned(binades)));
                    });
                    for (int x = 0; x < c.width; x += 1 + c.width / 2) image.At(x, c.height / 2) = other;
                    ExpectMeans<double>(c, image, {image.At(0, 0), other});
                }
}

// Quotients next to a whole number, in vectors and behind them; 181 is the last side whose sums have 31 bits.
template <typename T> void ExpectExtremes(T extreme, T inner) {
    constexpr int kBlocks = 37;
    for (int const side : {2, 3, 11, 12, 64, 180, 181}) {
        Case const c{kBlocks * side, side, side};
        auto image = Uniform({c.width, c.height, c.width}, extreme);
        ExpectMeans<T>(c, image, {T(3)});
        for (int block = 0; block < kBlocks; ++block) image.At(block * side + side / 2, side / 2) = inner;
        ExpectMeans<T>(c, image, {T(3)});
    }
}

TEST(BlockAverage, OfLargestPixelsIsExact) {
    ExpectExtremes<unsigned short>(65535, 65534);
    ExpectExtremes<short>(-32768, -32767);
    ExpectExtremes<short>(32767, 32766);
}

TEST(BlockAverage, RefusesInItsOrder) {
    unsigned short pixels[100] = {}, out[100] = {};
    auto const all = [&](unsigned short* in, unsigned short* to, int w, int h, int ow, int oh, int factor,
                         int code, std::wstring const& message) {
        CapturedLog const log;
        EXPECT_EQ(blockAverage(in, to, w, h, ow, oh, factor), code);
        EXPECT_EQ(log.Text(), L"blockAverageDownSample() - " + message);
        EXPECT_EQ(blockAverageDownSample_ushort(in, to, w, h, ow, oh, factor), code);
        EXPECT_EQ(log.Text(), L"blockAverageDownSampleTemplate() - " + message);
        EXPECT_EQ(blockAverageDownSampleCodedMask_ushort(in, to, w, h, ow, oh, factor, 1), code);
        EXPECT_EQ(log.Text(), L"blockAverageDownSampleCodedMaskTemplate() - " + message);
        EXPECT_EQ(log.Code(), code);
    };
    all(nullptr, out, 10, 10, 1, 1, 0, 2, L"NULL pointer(s).");
    all(pixels, nullptr, 10, 10, 5, 5, 2, 2, L"NULL pointer(s).");
    all(pixels, out, 10, 10, 1, 1, 0, 3, L"subsample factor < 1.");
    all(pixels, out, 10, 10, 5, 5, -2, 3, L"subsample factor < 1.");
    all(pixels, out, 10, 10, 4, 5, 2, 999, L"Incorrect SS w x h passed in = 4 x 5.");
    all(pixels, out, 10, 10, 5, 6, 2, 999, L"Incorrect SS w x h passed in = 5 x 6.");
    EXPECT_EQ(blockAverage(pixels, out, -10, -10, -5, -5, 2), SOLVANE_OK);
    EXPECT_EQ(out[0], 0);
}

TEST(Subsample, TakesEverySampleOnEverySimdTarget) {
    struct Sampling {
        Shape shape;
        int factor, row, column;
    };
    Sampling const samplings[] = {
        {{100, 100, 100}, 4, 1, 2}, {{131, 9, 140}, 2, 1, 1},  {{64, 4, 64}, 2, 0, 0}, {{70, 7, 70}, 3, 2, 2},
        {{263, 9, 263}, 4, 3, 3},   {{50, 12, 51}, 11, 10, 0}, {{3, 2, 3}, 1, 0, 0}};
    for (Sampling const& each : samplings)
        ForEachSimdTarget([&] {
            auto source = RandomImage<unsigned short>(each.shape, 3);
            int const width = each.shape.width / each.factor, height = each.shape.height / each.factor;
            TestImage<unsigned short> result({width, height, width});
            auto expected = result;
            expected.Fill([&](int x, int y) {
                return source.At(each.column + x * each.factor, each.row + y * each.factor);
            });
            ImageAttributes const from = source.Attributes(12, 5);
            ImageAttributes to = result.Attributes();
            ASSERT_EQ(subsample(&from, &to, each.factor, each.row, each.column), SOLVANE_OK);
            EXPECT_TRUE(result == expected);

            ImageAttributes made;
            ASSERT_EQ(subsample(&from, &made, each.factor, each.row, each.column), SOLVANE_OK);
            EXPECT_TRUE(std::equal(expected.Pixels(), expected.Pixels() + expected.Size(),
                                   static_cast<unsigned short*>(made.buffer)));
            EXPECT_EQ(Description(made),
                      Description({eUInt16, nullptr, width, height, width, 12, 5 * each.factor}));
            FreePixels(made.buffer);

            ImageAttributes place = from;
            ASSERT_EQ(subsample(&from, &place, each.factor, each.row, each.column), SOLVANE_OK);
            EXPECT_TRUE(std::equal(expected.Pixels(), expected.Pixels() + expected.Size(), source.Pixels()));
        });
}

// Neither types nor strides matter, but the 16-bit units that they describe.
TEST(Subsample, AsksForRoomOnly) {
    struct Memory {
        eTypeCode type;
        int width, height, stride;
        std::size_t units;
    };
    struct Case {
        Memory source, destination;
        int factor, row, column;
        int code = 0;
        std::wstring message = L"";
    };
    std::wstring const isNo16Bit = L" image is not a 16-bit image.", overlaps = L" image's rows overlap.";
    Memory const image{eUInt16, 20, 20, 20, 400}, room{eUInt16, 5, 5, 5, 25};
    Case const cases[] = {
        {image, {eByte, 5, 10, 5, 25}, 4, 1, 2},
        {image, {eByte, 7, 7, 7, 24}, 4, 1, 2, 7, L"destination" + isNo16Bit},
        {image, {eUInt16, 6, 5, 5, 26}, 4, 1, 2},
        {image, {eUInt16, 5, 5, 4, 21}, 4, 1, 2, 7, L"destination" + overlaps},
        {image, {eUInt16, 20, 20, -20, 400}, 4, 1, 2, 7, L"destination" + overlaps},
        {image, {eUnknown, 5, 5, 0, 25}, 4, 1, 2},
        {image, {eDouble, 5, 5, 1, 36}, 4, 1, 2},
        {{eUInt16, 20, 20, 3, 77}, room, 4, 3, 3},
        {{eUInt16, 20, 20, -20, 400}, room, 4, 0, 0, 7, L"source" + overlaps},
        {{eDouble, 20, 20, 20, 1600}, room, 4, 3, 3},
        {{eUnknown, 20, 20, 0, 400}, room, 4, 3, 3},
        {{eByte, 20, 20, 20, 200}, room, 4, 0, 0, 6, L"source" + isNo16Bit},
        // The last sample is in the last unit, and behind it.
        {{eSByte, 64, 6, 62, 187}, {eUInt16, 16, 1, 16, 16}, 4, 2, 2},
        {{eSByte, 64, 6, 62, 187}, {eUInt16, 16, 1, 16, 16}, 4, 2, 3, 6, L"source" + isNo16Bit},
    };
    for (Case const& each : cases)
        ForEachSimdTarget([&] {
            SCOPED_TRACE(&each - cases);
            std::vector<unsigned short> pixels(each.source.units), samples(each.destination.units);
            for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<unsigned short>(i);
            auto const over = [](Memory const& of, std::vector<unsigned short>& units) {
                return Over(units.data(), of.type, of.width, of.height, of.stride);
            };
            ImageAttributes const source = over(each.source, pixels);
            ImageAttributes result = over(each.destination, samples);
            auto expected = samples;
            int const stride = source.stride != 0 ? source.stride : source.width;
            int const width = source.width / each.factor, height = source.height / each.factor;
            for (int i = 0; each.code == 0 && i < width * height; ++i)
                expected[static_cast<std::size_t>(i)] = static_cast<unsigned short>(
                    (each.row + i / width * each.factor) * stride + each.column + i % width * each.factor);
            ExpectRefusal([&] { return subsample(&source, &result, each.factor, each.row, each.column); },
                          each.code, each.code == 0 ? L"" : L"subsample(): The " + each.message);
            EXPECT_EQ(samples, expected);
        });
}

TEST(Subsample, RefusesInItsOrder) {
    unsigned short pixels[100] = {}, out[25] = {};
    auto const image = [](eTypeCode type, void* buffer, int width, int height, int stride) {
        return Over(buffer, type, width, height, stride);
    };
    ImageAttributes const good = image(eUInt16, pixels, 10, 10, 10), room = image(eUInt16, out, 5, 5, 5);
    auto const sample = [](ImageAttributes source, ImageAttributes const& destination, int factor, int row,
                           int column) {
        ImageAttributes given = destination;
        SOLVANE_RETURNCODE const code = subsample(&source, &given, factor, row, column);
        EXPECT_EQ(Description(given), Description(destination));
        return code;
    };
    EXPECT_REFUSAL(4, L"subsample(): Invalid source image.",
                   sample(image(eUInt16, nullptr, 10, 10, 10), room, 0, 9, 9));
    EXPECT_REFUSAL(4, L"subsample(): Invalid source image.",
                   sample(image(eUInt16, pixels, 0, 10, 10), room, 2, 0, 0));
    EXPECT_REFUSAL(3, L"subsample(): Invalid subsample factor.", sample(good, room, 0, 9, 9));
    EXPECT_REFUSAL(3, L"subsample(): Invalid subsample factor.", sample(good, room, -2, 0, 0));
    EXPECT_REFUSAL(3, L"subsample(): Invalid subsample factor.", sample(good, room, 10, 0, 0));
    EXPECT_REFUSAL(3, L"subsample(): Invalid row or col offset(s).", sample(good, room, 2, 2, 0));  // row
    EXPECT_REFUSAL(3, L"subsample(): Invalid row or col offset(s).", sample(good, room, 2, 0, -1));
    EXPECT_REFUSAL(3, L"subsample(): Destination buffer too small.",
                   sample(good, image(eUInt16, out, 4, 6, 4), 2, 0, 0));
    EXPECT_REFUSAL(3, L"subsample(): Destination buffer too small.",
                   sample(good, image(eUInt16, out, -9, -9, 9), 2, 0, 0));
    CapturedLog const log;
    ImageAttributes made;
    EXPECT_EQ(subsample(nullptr, &made, 2, 0, 0), SOLVANE_NULL_POINTER);
    EXPECT_EQ(subsample(&good, nullptr, 2, 0, 0), SOLVANE_NULL_POINTER);
    EXPECT_EQ(log.Text(), L"subsample(): Null pointer(s).");
    EXPECT_EQ(WithoutMemory([&] { return subsample(&good, &made, 2, 0, 0); }), SOLVANE_OUT_OF_MEMORY);
    EXPECT_EQ(log.Text(), L"subsample(): Memory allocation failed for 50 bytes.");
    EXPECT_EQ(made.width, 0);
}

}  // namespace
}  // namespace ZPA
