// Statistics of images and buffers, and standard scores: values, regions, and what is refused.
#include <Basics/Statistics.h>
#include <gtest/gtest.h>

#include "support/Regions.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

struct Measures {
    double min, max, mean, stdDev;
};

bool SameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0 || (a != a && b != b); }
testing::AssertionResult operator==(Measures const& a, Measures const& b) {
    if (SameBits(a.min, b.min) && SameBits(a.max, b.max) && SameBits(a.mean, b.mean) &&
        SameBits(a.stdDev, b.stdDev))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << a.min << " " << a.max << " " << a.mean << " " << a.stdDev << ", but expected " << b.min << " "
           << b.max << " " << b.mean << " " << b.stdDev;
}

// The running sums in extended precision, pixel by pixel.
struct Model {
    double min, max;
    long double sum = 0, squares = 0, count = 0;

    template <typename T> void Add(T pixel) {
        if (pixel < min) min = pixel;
        if (pixel > max) max = pixel;
        sum += pixel;
        if constexpr (std::is_integral_v<T>)
            squares += static_cast<int>(static_cast<unsigned>(pixel) * static_cast<unsigned>(pixel));
        else
            squares += static_cast<long double>(pixel) * pixel;
        count += 1;
    }
    Measures Result() const {
        if (count == 0) return {min, max, 0, 0};
        long double const mean = sum / count;
        return {min, max, static_cast<double>(mean),
                static_cast<double>(std::sqrt(squares / count - mean * mean))};
    }
};

template <typename T> Model Start() {
    return {static_cast<double>(std::numeric_limits<T>::max()),
            std::is_integral_v<T> ? 0.0 : std::numeric_limits<double>::lowest()};
}

template <typename T>
Measures ModelOf(TestImage<T> const& image, TestImage<unsigned char> const& mask, Choice const& choice) {
    Model model = Start<T>();
    choice.ForEach(mask, [&](int x, int y) { model.Add(image.At(x, y)); });
    return model.Result();
}

template <typename T> class StatisticsOf : public testing::Test {};
using Served = testing::Types<unsigned char, short, unsigned short, double>;
TYPED_TEST_SUITE(StatisticsOf, Served, );

TYPED_TEST(StatisticsOf, AreThoseOfTheModelOnEverySimdTarget) {
    for (Shape const shape : kShapes) {
        auto image = RandomImage<TypeParam>(shape, 1);
        auto mask = RandomMask(MaskShape(shape), 2);
        ImageAttributes const maskAttributes = mask.Attributes();
        for (Choice const& choice : Choices(shape)) {
            SCOPED_TRACE(testing::Message() << shape << ", " << choice);
            Measures const expected = ModelOf(image, mask, choice);
            ForEachSimdTarget([&] {
                // Every choice of outputs; the others stay as they were.
                for (int wanted = 0; wanted < 16; ++wanted) {
                    Measures found{1, 2, 3, 4};
                    bool const min = wanted & 1, max = wanted & 2, mean = wanted & 4, stdDev = wanted & 8;
                    EXPECT_EQ(CalculateImageStats(
                                  image.Attributes(), choice.Roi(), choice.Mask(maskAttributes),
                                  choice.Origin(), min ? &found.min : nullptr, max ? &found.max : nullptr,
                                  mean ? &found.mean : nullptr, stdDev ? &found.stdDev : nullptr),
                              SOLVANE_OK);
                    EXPECT_TRUE(found == (Measures{min ? expected.min : 1, max ? expected.max : 2,
                                                   mean ? expected.mean : 3, stdDev ? expected.stdDev : 4}));
                }
            });
        }
    }
}

template <typename T> Measures Measured(TestImage<T>& image, ImageAttributes const* mask = nullptr) {
    Measures found{};
    EXPECT_EQ(CalculateImageStats(image.Attributes(), nullptr, mask, nullptr, &found.min, &found.max,
                                  &found.mean, &found.stdDev),
              SOLVANE_OK);
    return found;
}

TYPED_TEST(StatisticsOf, DoNotOverflowWithExtremePixels) {
    using Limits = std::numeric_limits<TypeParam>;
    // More vectors than are summed in 32 bits, of any instruction set.
    Shape const shape{1024, 1100, 1024};
    TestImage<TypeParam> image(shape);
    auto mask = Uniform<unsigned char>(MaskShape(shape), 255);
    ImageAttributes const maskAttributes = mask.Attributes();
    for (TypeParam const pixel : {Limits::max(), Limits::lowest(), static_cast<TypeParam>(46341)}) {
        std::fill_n(image.Pixels(), image.Size(), pixel);
        Measures const expected = ModelOf(image, mask, Choices(shape)[0]);
        ForEachSimdTarget([&] {
            EXPECT_TRUE(Measured(image) == expected) << pixel;
            EXPECT_TRUE(Measured(image, &maskAttributes) == expected) << pixel;
        });
    }
}

TEST(Statistics, OfManyDoublesRoundInOrder) {
    // Sums that lose bits, so that another order or precision would show.
    Shape const shape{301, 211, 310};
    TestImage<double> image(shape);
    std::mt19937_64 random(5);
    for (std::size_t i = 0; i < image.Size(); ++i)
        image.Pixels()[i] =
            std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 40) - 60);
    auto mask = RandomMask(shape, 6);
    ImageAttributes const maskAttributes = mask.Attributes();
    EXPECT_TRUE(Measured(image) == ModelOf(image, mask, Choices(shape)[0]));
    EXPECT_TRUE(Measured(image, &maskAttributes) == ModelOf(image, mask, Choices(shape)[2]));
}

TEST(Statistics, KeepTheFirstZeroAndPassOverWhatIsNoNumber) {
    double const kNone = std::numeric_limits<double>::quiet_NaN();
    ForEachSimdTarget([&] {
        TestImage<double> image({40, 1, 40});
        for (bool const negativeFirst : {false, true}) {
            for (int x = 0; x < 40; ++x) image.At(x, 0) = x % 3 ? 5.0 + x : kNone;
            image.At(2, 0) = negativeFirst ? -0.0 : 0.0;
            image.At(8, 0) = negativeFirst ? 0.0 : -0.0;
            Measures const found = Measured(image);
            EXPECT_EQ(std::signbit(found.min), negativeFirst);
            EXPECT_EQ(found.max, 5.0 + 38);
            EXPECT_TRUE(std::isnan(found.mean));
        }
    });
}

TEST(Statistics, OfNoPixelAreWhereTheSearchStarts) {
    auto nothing = Uniform<unsigned char>({4, 3, 4}, 0);
    ImageAttributes const mask = nothing.Attributes();
    auto const search = [&](auto element, double min, double max) {
        auto image = RandomImage<decltype(element)>({4, 3, 4}, 1);
        EXPECT_TRUE(Measured(image, &mask) == (Measures{min, max, 0, 0}));
    };
    constexpr double kMost = std::numeric_limits<double>::max();
    search(std::uint8_t(), 255, 0);
    search(std::uint16_t(), 65535, 0);
    search(std::int16_t(), 32767, 0);
    search(double(), kMost, -kMost);
}

template <typename T> class BufferStatisticsOf : public testing::Test {};
using ServedInBuffers = testing::Types<unsigned char, unsigned short, float, double>;
TYPED_TEST_SUITE(BufferStatisticsOf, ServedInBuffers, );

TYPED_TEST(BufferStatisticsOf, AreThoseOfTheModel) {
    auto image = RandomImage<TypeParam>({2500, 1, 2500}, 3);
    if constexpr (std::is_floating_point_v<TypeParam>)
        for (int x = 10; x < 400; ++x) image.At(x, 0) = static_cast<TypeParam>(-1.5 - x);
    BufferAttributes const buffer(TypeCodeOf<TypeParam>, image.Pixels(), 2500);
    struct Range {
        int start, end;
    };
    for (Range const range : {Range{0, 2500}, {10, 400}, {2499, 2500}, {7, 7}, {9, 3}, {3000, 2600}}) {
        SCOPED_TRACE(testing::Message() << range.start << " to " << range.end);
        Model model{0, 0};
        for (int i = range.start; i < range.end; ++i) model.Add(image.At(i, 0));
        Measures const expected = model.Result();
        bool const whole = range.end - range.start == 2500;
        int const* const start = whole ? nullptr : &range.start;
        int const* const end = whole ? nullptr : &range.end;
        Measures found{1, 2, 3, 4}, withoutMean{1, 2, 3, 4};
        EXPECT_EQ(
            CalculateBufferStats(buffer, start, end, &found.min, &found.max, &found.mean, &found.stdDev),
            SOLVANE_OK);
        EXPECT_TRUE(found == expected);
        EXPECT_EQ(CalculateBufferStats(buffer, start, end, nullptr, nullptr, nullptr, &withoutMean.stdDev),
                  SOLVANE_OK);
        EXPECT_TRUE(withoutMean == (Measures{1, 2, 3, 0}));
    }
}

template <typename T> T Score(T element, Measures const& measures) {
    if (measures.stdDev == 0) return 0;
    double const score = (element - measures.mean) / measures.stdDev;
    if constexpr (std::is_integral_v<T>)
        return std::isnan(score) ? T{0} : static_cast<T>(static_cast<int>(score));
    else
        return static_cast<T>(score);
}

template <typename T> class Scores : public testing::Test {};
using Scored = testing::Types<unsigned char, unsigned short, double>;
TYPED_TEST_SUITE(Scores, Scored, );

TYPED_TEST(Scores, ReplaceWhatIsSelectedAndNothingElse) {
    for (Shape const shape : kShapes) {
        // Of integers both bright and dark, for deviations that are numbers and such that are not.
        for (int const shift : {0, 3}) {
            auto image = RandomImage<TypeParam>(shape, 1);
            if constexpr (std::is_integral_v<TypeParam>)
                for (std::size_t i = 0; i < image.Size(); ++i)
                    image.Pixels()[i] = static_cast<TypeParam>(image.Pixels()[i] >> shift);
            auto mask = RandomMask(MaskShape(shape), 2);
            ImageAttributes const maskAttributes = mask.Attributes();
            for (Choice const& choice : Choices(shape)) {
                SCOPED_TRACE(testing::Message() << shape << ", " << choice);
                Measures const measures = ModelOf(image, mask, choice);
                auto const before = RandomImage<TypeParam>(shape, 4);
                auto expected = before, expectedInPlace = image;
                choice.ForEach(mask, [&](int x, int y) {
                    expected.At(x, y) = expectedInPlace.At(x, y) = Score(image.At(x, y), measures);
                });
                ImageAttributes const* const chosen = choice.Mask(maskAttributes);
                ForEachSimdTarget([&] {
                    auto output = before, inPlace = image;
                    ImageAttributes to = output.Attributes(), same = inPlace.Attributes();
                    EXPECT_EQ(NormalizeImage(image.Attributes(), choice.Roi(), chosen, choice.Origin(), &to),
                              SOLVANE_OK);
                    EXPECT_TRUE(output == expected);
                    EXPECT_EQ(NormalizeImage(same, choice.Roi(), chosen, choice.Origin(), &same), SOLVANE_OK);
                    EXPECT_TRUE(inPlace == expectedInPlace);
                });
            }
        }
    }
}

TEST(ScoresOfBuffers, ReplaceTheRange) {
    float elements[] = {9, 1, 2, 3, 9}, scores[] = {7, 7, 7, 7, 7};
    BufferAttributes output(eSingle, scores, 5);
    int const start = 1, end = 4;
    EXPECT_EQ(NormalizeBuffer({eSingle, elements, 5}, &start, &end, &output), SOLVANE_OK);
    auto const one = static_cast<float>(1 / std::sqrt(2.0 / 3));
    float const expected[] = {7, -one, 0, one, 7};
    for (int i = 0; i < 5; ++i) EXPECT_FLOAT_EQ(scores[i], expected[i]) << i;

    unsigned short words[] = {10, 20, 30, 40, 90}, wordScores[5] = {};
    BufferAttributes wordOutput(eUInt16, wordScores, 5);
    EXPECT_EQ(NormalizeBuffer({eUInt16, words, 5}, nullptr, nullptr, &wordOutput), SOLVANE_OK);
    unsigned short const cut[] = {0, 0, 0, 0, 1};  // -1.0, -0.6, -0.3, 0.07, 1.9
    for (int i = 1; i < 5; ++i) EXPECT_EQ(wordScores[i], cut[i]) << i;
    EXPECT_EQ(wordScores[0], 65535);
}

// What both operations on images refuse, each by a call of its own.
constexpr auto kType = L"The input image type is not supported";

TEST(Statistics, RefuseInTheirOrder) {
    unsigned short pixels[24] = {};
    ImageAttributes const image = Over(pixels, eUInt16, 4, 3, 6), floats = Described(eSingle, 4, 3, 6);
    auto const measure = [](ImageAttributes of, Region const& region) {
        Measures found{1, 2, 3, 4};
        SOLVANE_RETURNCODE const code = CalculateImageStats(
            of, region.roi, region.mask, region.origin, &found.min, &found.max, &found.mean, &found.stdDev);
        EXPECT_TRUE(found == (Measures{1, 2, 3, 4}));
        return code;
    };
    auto const score = [](ImageAttributes of, Region const& region) {
        return NormalizeImage(of, region.roi, region.mask, region.origin, nullptr);
    };
    auto const expectRefusals = [&](auto const& call) {
        EXPECT_REFUSAL(7, kByteMask, call(floats, {&kEmpty, &kFloatMask}));
        EXPECT_REFUSAL(6, kType, call(floats, {&kEmpty, &kNoMask}));
        EXPECT_REFUSAL(2, kNullImage, call(Described(eUInt16, 4, 3, 6), {&kEmpty, &kNoMask}));
        ExpectRegionRefusals([&](Region const& region) { return call(image, region); });
        EXPECT_REFUSAL(7, kRowsOverlap, call(Over(pixels, eUInt16, 4, 3, 3), {}));
    };
    expectRefusals(measure);
    expectRefusals(score);
    EXPECT_EQ(CalculateImageStats(image, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
              SOLVANE_OK);
}

TEST(ScoresOfImages, RefuseOutputsWithoutRoom) {
    unsigned short pixels[24] = {}, scores[24] = {};
    auto const score = [&](ImageAttributes output, Rectangle const* roi = nullptr) {
        return int{NormalizeImage(Over(pixels, eUInt16, 4, 3, 6), roi, nullptr, nullptr, &output)};
    };
    Rectangle const top(0, 0, 4, 2);
    EXPECT_EQ(score(Described(eUInt16, 4, 3, 6)), 2);
    EXPECT_EQ(score(Over(scores, eByte, 8, 6, 8)), 7);    // narrower elements
    EXPECT_EQ(score(Over(scores, eUInt16, 4, 2, 6)), 7);  // too few rows
    EXPECT_EQ(score(Over(scores, eUInt16, 4, 3, 5)), 7);  // too short a stride
    EXPECT_EQ(score(Over(scores, eUInt16, 4, -3, -6)), 7);
    EXPECT_EQ(score(Over(scores, eUInt16, 16, 1, 16)), 0);  // another shape with room
    EXPECT_EQ(score(Over(scores, eUInt16, 3, 3, 6)), 7);    // room in the last row's padding
    EXPECT_EQ(score(Over(scores, eUInt16, 4, 2, 6), &top), 0);
}

TEST(BufferStatistics, RefuseInTheirOrder) {
    float elements[4] = {};
    BufferAttributes const buffer(eSingle, elements, 4), shorts(eInt16, nullptr, 4),
        none(eSingle, nullptr, 4);
    BufferAttributes const longer(eSingle, elements, 5), narrow(eUInt16, elements, 4);
    int const before = -1, beyond = 5;
    constexpr auto kRange = L"The range of indices was out of bounds in the input buffer.";
    constexpr auto kSizes = L"Input and Output buffers must be of the same size";
    constexpr auto kNoOutput = L"The output buffer had a NULL buffer pointer.";
    constexpr auto kNarrow = L"The output buffer's elements are too small.";
    auto const measure = [](BufferAttributes of, int const* start, int const* end) {
        double mean = 1;
        SOLVANE_RETURNCODE const code =
            CalculateBufferStats(of, start, end, nullptr, nullptr, &mean, nullptr);
        EXPECT_EQ(mean, 1);
        return code;
    };
    auto const score = [](BufferAttributes of, int const* start, int const* end, BufferAttributes output) {
        return NormalizeBuffer(of, start, end, &output);
    };
    auto const expectRefusals = [&](auto const& call) {
        EXPECT_REFUSAL(6, kType, call(shorts, &before, nullptr));
        EXPECT_REFUSAL(2, kNullImage, call(none, &before, nullptr));
        EXPECT_REFUSAL(3, kRange, call(buffer, &before, nullptr));
        EXPECT_REFUSAL(3, kRange, call(buffer, nullptr, &beyond));
    };
    expectRefusals(measure);
    expectRefusals([&](auto... arguments) { return score(arguments..., none); });
    EXPECT_REFUSAL(2, kNoOutput, NormalizeBuffer(buffer, nullptr, nullptr, nullptr));
    EXPECT_REFUSAL(7, kSizes, score(shorts, nullptr, nullptr, longer));
    EXPECT_REFUSAL(2, kNoOutput, score(buffer, nullptr, nullptr, none));
    EXPECT_REFUSAL(7, kNarrow, score(buffer, nullptr, nullptr, narrow));
}

}  // namespace
}  // namespace ZPA
