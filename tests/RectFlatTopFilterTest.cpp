// Flat-top filters: means beside a model that sums every window anew, or adds in the promised order.
#include <Basics/FlatTopFilter.h>
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <limits>

#include "support/Images.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

struct Case {
    int width, height, kernelWidth, kernelHeight;
};
std::ostream& operator<<(std::ostream& out, Case const& c) {
    return out << c.width << " x " << c.height << " by " << c.kernelWidth << " x " << c.kernelHeight;
}

// Windows as large as the image, even ones, both sides of a vector and of a strip of rows, and no middle.
Case const kCases[] = {
    {3, 3, 3, 3},  {4, 9, 3, 3},       {5, 5, 4, 4},      {7, 20, 7, 3},     {8, 17, 3, 17},  {15, 4, 5, 3},
    {16, 8, 3, 7}, {17, 8, 16, 8 - 1}, {31, 25, 15, 9},   {33, 16, 6, 12},   {64, 12, 33, 5}, {65, 9, 65, 9},
    {70, 7, 3, 3}, {99, 40, 15, 15},   {131, 33, 60, 31}, {300, 10, 290, 9}, {513, 6, 258, 3}};

template <typename T> TestImage<T> Blank(Case const& c) { return TestImage<T>({c.width, c.height, c.width}); }
template <typename T> TestImage<T> Filled(Case const& c, T value) {
    return Uniform({c.width, c.height, c.width}, value);
}
template <typename T> TestImage<T> Noise(Case const& c, unsigned seed) {
    return RandomImage<T>({c.width, c.height, c.width}, seed);
}

// ---- Models

int Clipped(int at, int size) { return std::min(std::max(at, 0), size - 1); }

// divide(sum, count) for each pixel.
template <typename T>
TestImage<T> Means(Case const& c, TestImage<T> const& input, T (*divide)(std::int64_t, std::int64_t)) {
    auto means = Blank<T>(c);
    int const halfWidth = c.kernelWidth / 2, halfHeight = c.kernelHeight / 2;
    std::vector<std::int64_t> columns(static_cast<std::size_t>(c.width));
    for (int y = 0; y < c.height; ++y) {
        int const top = Clipped(y - halfHeight, c.height), bottom = Clipped(y + halfHeight, c.height);
        for (int x = 0; x < c.width; ++x) {
            std::int64_t& sum = columns[static_cast<std::size_t>(x)] = 0;
            for (int row = top; row <= bottom; ++row) sum += input.At(x, row);
        }
        for (int x = 0; x < c.width; ++x) {
            int const left = Clipped(x - halfWidth, c.width), right = Clipped(x + halfWidth, c.width);
            std::int64_t sum = 0;
            for (int column = left; column <= right; ++column)
                sum += columns[static_cast<std::size_t>(column)];
            means.At(x, y) = divide(sum, std::int64_t{right - left + 1} * (bottom - top + 1));
        }
    }
    return means;
}
template <typename T> T Truncated(std::int64_t sum, std::int64_t count) {
    return static_cast<T>(sum / count);
}
unsigned short Wrapped(std::int64_t sum, std::int64_t count) {
    return static_cast<unsigned short>(static_cast<std::int32_t>(static_cast<std::uint32_t>(sum)) / count);
}

// The sums over the windows, added in the promised order, of term(x, y).
template <typename Term> std::vector<double> CarriedSums(Case const& c, Term const& term) {
    int const halfWidth = c.kernelWidth / 2, halfHeight = c.kernelHeight / 2;
    std::vector<double> columns(static_cast<std::size_t>(c.width)), sums;
    auto const column = [&](int x) { return columns[static_cast<std::size_t>(x)]; };
    for (int y = -halfHeight; y < c.height; ++y) {
        for (int x = 0; x < c.width; ++x) {
            double& sum = columns[static_cast<std::size_t>(x)];
            if (y + halfHeight < c.height) sum += term(x, y + halfHeight);
            if (y - halfHeight - 1 >= 0) sum -= term(x, y - halfHeight - 1);
        }
        if (y < 0) continue;
        double sum = 0;
        for (int x = 0; x < halfWidth; ++x) sum += column(x);
        for (int x = 0; x < c.width; ++x) {
            bool const gains = x + halfWidth < c.width, loses = x - halfWidth - 1 >= 0;
            if (gains && loses)
                sum += column(x + halfWidth) - column(x - halfWidth - 1);
            else if (gains)
                sum += column(x + halfWidth);
            else if (loses)
                sum -= column(x - halfWidth - 1);
            sums.push_back(sum);
        }
    }
    return sums;
}

template <typename T> T Stored(double mean) {
    if (std::is_floating_point_v<T>) return static_cast<T>(mean);
    return static_cast<T>(mean > -2147483649.0 && mean < 2147483648.0 ? static_cast<int>(mean) : INT_MIN);
}

template <typename T>
TestImage<T> WeightedMeans(Case const& c, TestImage<T> const& input, TestImage<char> const& mask) {
    auto means = Blank<T>(c);
    auto const weight = [&](int x, int y) { return static_cast<signed char>(mask.At(x, y)); };
    auto const sums =
        CarriedSums(c, [&](int x, int y) { return static_cast<double>(input.At(x, y) * weight(x, y)); });
    auto const weights = CarriedSums(c, [&](int x, int y) { return static_cast<double>(weight(x, y)); });
    for (std::size_t i = 0; i < sums.size(); ++i)
        means.Pixels()[i] = weights[i] > 0.01 ? Stored<T>(sums[i] / weights[i]) : T();
    return means;
}

// ---- Comparisons

// One not-a-number is as good as another.
template <typename T> TestImage<T> WithOneNan(TestImage<T> image) {
    for (T& element : image.memory)
        if (element != element) element = std::numeric_limits<T>::quiet_NaN();
    return image;
}

// The filter gives the means on every instruction set, leaves the input alone, and writes nothing else.
template <typename T>
void Expect(Case const& c, TestImage<T> input, TestImage<T> const& means,
            std::function<SOLVANE_RETURNCODE(T*, T*)> const& filter) {
    auto const before = input;
    ForEachSimdTarget([&] {
        SCOPED_TRACE(testing::Message() << c);
        auto output = Blank<T>(c);
        EXPECT_EQ(filter(input.Pixels(), output.Pixels()), SOLVANE_OK);
        EXPECT_TRUE(WithOneNan(output) == WithOneNan(means));
        EXPECT_TRUE(input == before);
    });
}

template <typename T> void ExpectTyped(Case const& c, TestImage<T> const& input, TestImage<T> const& means) {
    Expect<T>(c, input, means, [&](T* in, T* out) {
        return rectFlatTopFilteringTemplate(in, out, c.width, c.height, c.kernelWidth, c.kernelHeight);
    });
}
void ExpectWrapping(Case const& c, TestImage<unsigned short> const& input) {
    Expect<unsigned short>(c, input, Means(c, input, Wrapped), [&](unsigned short* in, unsigned short* out) {
        return rectFlatTopFilter(in, out, c.width, c.height, c.kernelWidth, c.kernelHeight);
    });
}

// ---- Means of integers

TEST(RectFlatTopFilter, GivesTheMeanOfTheClippedWindow) {
    for (Case const& c : kCases) {
        auto const noise = Noise<unsigned short>(c, 1);
        ExpectWrapping(c, noise);
        ExpectTyped(c, noise, Means(c, noise, Truncated<unsigned short>));
        auto const signedNoise = Noise<short>(c, 2);
        ExpectTyped(c, signedNoise, Means(c, signedNoise, Truncated<short>));
    }
}

TEST(RectFlatTopFilter, IsExactWhereTheQuotientIsWholeOrJustBelow) {
    for (Case const& c : {Case{40, 40, 3, 3}, {99, 40, 15, 15}, {350, 310, 301, 301}})
        for (int const value : {0, 1, 32767, 65535}) {
            auto image = Filled(c, static_cast<unsigned short>(value));
            ExpectTyped(c, image, image);
            auto negative = Filled(c, static_cast<short>(-value));
            ExpectTyped(c, negative, negative);
            // One pixel nearer to zero: the means of all windows that see it are cut to the next number.
            image.At(c.width / 2, c.height / 2) = static_cast<unsigned short>(std::max(value - 1, 0));
            ExpectTyped(c, image, Means(c, image, Truncated<unsigned short>));
            negative.At(c.width / 2, c.height / 2) = static_cast<short>(-std::max(value - 1, 0));
            ExpectTyped(c, negative, Means(c, negative, Truncated<short>));
        }
}

// The last one is too high for the sums of several columns in 32 bits.
Case const kLargeWindows[] = {{200, 190, 183, 181}, {360, 200, 301, 199}, {21, 2100, 17, 2051}};

TEST(RectFlatTopFilter, WrapsAroundOnlyInTheIntegerForm) {
    for (Case const& c : kLargeWindows) {
        // Sums that stay within 31 bits, that leave them in part of the image, and in all of its middle.
        for (int const brightest : {32767, 65000, 65535}) {
            auto image = Noise<unsigned short>(c, 3);
            for (unsigned short& pixel : image) pixel = static_cast<unsigned short>(brightest - pixel % 1000);
            ExpectWrapping(c, image);
            ExpectTyped(c, image, Means(c, image, Truncated<unsigned short>));
        }
        auto const dark = Filled(c, std::numeric_limits<short>::min());
        ExpectTyped(c, dark, dark);
    }
}

// ---- Means of doubles

TEST(RectFlatTopFilter, AddsDoublesInThePromisedOrder) {
    double const inf = std::numeric_limits<double>::infinity();
    std::vector<std::vector<double>> const strange = {
        {},
        {1e300, -1e300, 1e-300, 3.0},
        {std::numeric_limits<double>::max(), 1.0},
        {std::numeric_limits<double>::denorm_min(), -std::numeric_limits<double>::denorm_min(), -0.0},
        {inf},
        {-inf, inf},
        {std::numeric_limits<double>::quiet_NaN()}};
    for (Case const& c : kCases)
        for (auto const& values : strange) {
            auto image = Noise<double>(c, 4);
            for (std::size_t i = 0; i < values.size(); ++i)
                for (std::size_t at = i * 13 + 5; at < image.Size(); at += 97) image.Pixels()[at] = values[i];
            ExpectTyped(c, image, WeightedMeans(c, image, Filled(c, char{1})));
        }
}

// ---- Weighted means

template <typename T> class WeightedFlatTop : public testing::Test {};
using Elements = testing::Types<unsigned short, short, double>;
TYPED_TEST_SUITE(WeightedFlatTop, Elements, );

TYPED_TEST(WeightedFlatTop, DividesBySumsOfWeights) {
    std::pair<char const*, int (*)(int random)> const kinds[] = {
        {"set and clear", [](int random) { return random & 1; }},
        {"few", [](int random) { return random % 50 == 0 ? 1 : 0; }},
        {"none", [](int) { return 0; }},
        {"of both signs", [](int random) { return random % 256 - 128; }},
        {"nearly none left", [](int random) { return random % 3 - 1; }},
        {"the most negative", [](int random) { return random & 1 ? -128 : 127; }},
    };
    for (Case const& c : kCases)
        for (auto const& [name, weight] : kinds) {
            SCOPED_TRACE(name);
            auto const image = Noise<TypeParam>(c, 5);
            auto mask = Noise<char>(c, 6);
            std::mt19937 random(7);
            for (char& each : mask) each = static_cast<char>(weight(static_cast<int>(random() >> 8)));
            auto const before = mask;
            Expect<TypeParam>(c, image, WeightedMeans(c, image, mask), [&](TypeParam* in, TypeParam* out) {
                return rectFlatTopFilteringWithMaskTemplate(in, out, mask.Pixels(), c.width, c.height,
                                                            c.kernelWidth, c.kernelHeight);
            });
            EXPECT_TRUE(mask == before);
        }
}

}  // namespace
}  // namespace ZPA
