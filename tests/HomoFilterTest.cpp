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
    for (int y = 0; y < image.shape.height; ++y)
        for (int x = 0; x < image.shape.width; ++x) wide.At(x, y) = static_cast<double>(image.At(x, y));
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
        for (int y = 0; y < shape.height; ++y)
            for (int x = 0; x < shape.width; ++x) {
                double const value = expected.At(x, y);
                padding.At(x, y) = value;
                roundedExpected.At(x, y) =
                    static_cast<unsigned short>(static_cast<int>(value + std::copysign(0.5, value)));
            }
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
            EXPECT_EQ(made.type, eDouble);
            EXPECT_EQ(made.stride, shape.width);
            EXPECT_EQ(made.bitsperpixel, 64);
            EXPECT_EQ(made.pixelspacing, 5);
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
        TestImage<double> flat({20, 10, 20});
        std::fill_n(flat.Pixels(), flat.Size(), value);
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
        return ImageAttributes(type, buffer, width, height, stride, 16, 0);
    };
    struct Refusal {
        ImageAttributes input, output;
        int code;
        wchar_t const* message;
    };
    Refusal const refusals[] = {
        {image(eInt16, nullptr, 4, 4, 4), image(eDouble, other, 4, 4, 4), 2,
         L"The input image had a NULL buffer pointer."},
        {image(eInt16, pixels, 4, 4, 4), image(eDouble, other, 3, 4, 4), 6,
         L"The input image must be of type eByte, eUInt16, or eDouble."},
        {image(eByte, pixels, 4, 4, 4), image(eInt16, other, 4, 3, 4), 7,
         L"The output image is the wrong size."},
        {image(eByte, pixels, 4, 4, 4), image(eInt16, other, 4, 4, 4), 6,
         L"The output image must be of type eByte, eUInt16, or eDouble."},
        {image(eDouble, pixels, 4, 4, 2), image(eDouble, other, 4, 4, 4), 7,
         L"The input image's rows overlap."},
        {image(eDouble, pixels, 4, 0, 4), image(eDouble, other, 4, 0, 4), 999, L"Unexpected exception."},
    };
    for (Refusal const& each : refusals) {
        CapturedLog const log;
        ImageAttributes output = each.output;
        EXPECT_EQ(HomoFilter(each.input, 1, &output), each.code);
        EXPECT_EQ(log.Text(), each.message);
    }
    CapturedLog const log;
    EXPECT_EQ(HomoFilter(image(eByte, pixels, 4, 4, 4), 1, nullptr), SOLVANE_NULL_POINTER);
    EXPECT_EQ(log.Text(), L"The output ImageAttributes pointer was NULL.");
}

}  // namespace
}  // namespace ZPA
