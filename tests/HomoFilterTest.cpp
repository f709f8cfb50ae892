// HomoFilter: beside its definition, on every kind of input and output.
#include <Basics/AnisotropicGaussian.h>
#include <Basics/HomoFilter.h>
#include <gtest/gtest.h>

#include <cmath>

#include "support/DoubleFilters.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

TestImage<double> Blurred(TestImage<double> image, double sigma) {
    EXPECT_EQ(AnisotropicGaussian(image.Attributes(), image.Into(), sigma, sigma, 0, 0, 0), SOLVANE_OK);
    return image;
}

TestImage<double> Model(TestImage<double> const& input, double sigma) {
    auto squares = input;
    for (double& pixel : squares) pixel *= pixel;
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
    for (double& pixel : result) pixel = (pixel - mean) / deviation;
    return result;
}

template <typename T> void ExpectModel() {
    for (Shape const shape : {Shape{64, 33, 64}, {131, 20, 140}, {7, 50, 7}, {1300, 70, 1300}}) {
        auto const input = RandomImage<T>(shape, 1);
        auto const expected = Model(Wide(input), 4);
        ForEachSimdTarget([&] {
            ExpectEveryOutput(input, expected, [](ImageAttributes from, ImageAttributes* to) {
                return HomoFilter(from, 4, to);
            });
        });
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
        ASSERT_EQ(HomoFilter(flat.Attributes(), 0.0, flat.Into()), SOLVANE_OK);
        EXPECT_FALSE(std::isfinite(flat.At(3, 3)));
    }
}

TEST(HomoFilter, RefusesInItsOrder) {
    ExpectFilterRefusals([](ImageAttributes from, ImageAttributes* to) { return HomoFilter(from, 1, to); },
                         eInt16);
}

}  // namespace
}  // namespace ZPA
