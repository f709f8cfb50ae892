// HomoFilter: beside its definition, on every kind of input and output.
#include <Basics/AnisotropicGaussian.h>
#include <Basics/HomoFilter.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

TestImage<double> Blurred(TestImage<double> image, double sigma) {
    ImageAttributes place = image.Attributes();
    EXPECT_EQ(AnisotropicGaussian(place, &place, sigma, sigma, 0, 0, 0), SOLVANE_OK);
    return image;
}

TestImage<double> Model(TestImage<double> const& input, double sigma) {
    auto squares = input;
    for (std::size_t i = 0; i < squares.Size(); ++i) squares.Pixels()[i] *= input.Pixels()[i];
    auto const m = Blurred(input, sigma), s = Blurred(squares, sigma);
    TestImage<double> result(input.shape);
    auto const count = static_cast<double>(input.Size());
    double sum = 0, sumOfSquares = 0;
    for (std::size_t i = 0; i < result.Size(); ++i) {
        double const mean = m.Pixels()[i];
        double const pixel = (input.Pixels()[i] - mean) / std::sqrt(s.Pixels()[i] - mean * mean);
        result.Pixels()[i] = pixel;
        sum += pixel;
        sumOfSquares += pixel * pixel;
    }
    double const mean = sum / count, deviation = std::sqrt(sumOfSquares / count - mean * mean);
    for (std::size_t i = 0; i < result.Size(); ++i)
        result.Pixels()[i] = (result.Pixels()[i] - mean) / deviation;
    return result;
}

template <typename T> TestImage<double> Wide(TestImage<T> const& image) {
    TestImage<double> wide({image.shape.width, image.shape.height, image.shape.width});
    wide.Fill([&](int x, int y) { return image.At(x, y); });
    return wide;
}

template <typename T> void ExpectModel() {
    for (Shape const shape : {Shape{64, 33, 64}, {131, 20, 140}, {7, 50, 7}, {1300, 70, 1300}}) {
        auto input = RandomImage<T>(shape, 1);
        auto const expected = Model(Wide(input), 4);
        TestImage<double> result(expected.shape), padded({shape.width, shape.height, shape.width + 3});
        auto padding = padded;
        TestImage<unsigned short> rounded(shape);
        auto roundedExpected = rounded;
        padding.Fill([&](int x, int y) { return expected.At(x, y); });
        roundedExpected.Fill([&](int x, int y) {
            return static_cast<int>(expected.At(x, y) + std::copysign(0.5, expected.At(x, y)));
        });
        ForEachSimdTarget([&] {
            ImageAttributes to = result.Attributes(), toPadded = padded.Attributes(),
                            toRounded = rounded.Attributes(), made;
            ASSERT_EQ(HomoFilter(input.Attributes(), 4, &to), SOLVANE_OK);
            EXPECT_TRUE(result == expected);
            ASSERT_EQ(HomoFilter(input.Attributes(), 4, &toPadded), SOLVANE_OK);
            EXPECT_TRUE(padded == padding);
            ASSERT_EQ(HomoFilter(input.Attributes(), 4, &toRounded), SOLVANE_OK);
            EXPECT_TRUE(rounded == roundedExpected);
            ASSERT_EQ(HomoFilter(input.Attributes(8, 5), 4, &made), SOLVANE_OK);
            EXPECT_TRUE(std::equal(expected.Pixels(), expected.Pixels() + expected.Size(),
                                   static_cast<double*>(made.buffer)));
            EXPECT_EQ(Description(made),
                      Description({eDouble, nullptr, shape.width, shape.height, shape.width, 64, 5}));
            FreePixels(made.buffer);
        });
        ImageAttributes place = input.Attributes();
        ASSERT_EQ(HomoFilter(place, 4, &place), SOLVANE_OK);
        if constexpr (std::is_floating_point_v<T>) {
            EXPECT_TRUE(Wide(input) == expected);
        }
    }
}

TEST(HomoFilter, IsItsDefinitionForAllTypesAndOutputs) {
    ExpectModel<unsigned char>();
    ExpectModel<unsigned short>();
    ExpectModel<double>();
}

TEST(HomoFilter, LetsWhatIsNotANumberThrough) {
    for (double const value : {0.0, 7.0, std::nan(""), HUGE_VAL}) {
        auto flat = Uniform({20, 10, 20}, value);
        for (double const sigma : {3.0, 0.0, -1.0, 1e300, std::nan("")}) {
            ImageAttributes made;
            EXPECT_EQ(HomoFilter(flat.Attributes(), sigma, &made), SOLVANE_OK);
            FreePixels(made.buffer);
        }
        ImageAttributes place = flat.Attributes();
        ASSERT_EQ(HomoFilter(place, 0.0, &place), SOLVANE_OK);
        EXPECT_FALSE(std::isfinite(flat.At(3, 3)));
    }
}

TEST(HomoFilter, RefusesInItsOrder) {
    double pixels[64] = {}, other[64] = {};
    auto const image = [](eTypeCode type, void* buffer, int width, int height, int stride) {
        return Over(buffer, type, width, height, stride);
    };
    auto const filter = [](ImageAttributes input, ImageAttributes output) {
        return HomoFilter(input, 1, &output);
    };
    EXPECT_REFUSAL(2, L"The input image had a NULL buffer pointer.",
                   filter(image(eInt16, nullptr, 4, 4, 4), image(eDouble, other, 4, 4, 4)));
    EXPECT_REFUSAL(6, L"The input image must be of type eByte, eUInt16, or eDouble.",
                   filter(image(eInt16, pixels, 4, 4, 4), image(eDouble, other, 3, 4, 4)));
    EXPECT_REFUSAL(7, L"The output image is the wrong size.",
                   filter(image(eByte, pixels, 4, 4, 4), image(eInt16, other, 4, 3, 4)));
    EXPECT_REFUSAL(6, L"The output image must be of type eByte, eUInt16, or eDouble.",
                   filter(image(eByte, pixels, 4, 4, 4), image(eInt16, other, 4, 4, 4)));
    EXPECT_REFUSAL(7, L"The input image's rows overlap.",
                   filter(image(eDouble, pixels, 4, 4, 2), image(eDouble, other, 4, 4, 4)));
    EXPECT_REFUSAL(999, L"Unexpected exception.",
                   filter(image(eDouble, pixels, 4, 0, 4), image(eDouble, other, 4, 0, 4)));
    ExpectRefusal([&] { return HomoFilter(image(eByte, pixels, 4, 4, 4), 1, nullptr); }, 2,
                  L"The output ImageAttributes pointer was NULL.");
}

}  // namespace
}  // namespace ZPA
