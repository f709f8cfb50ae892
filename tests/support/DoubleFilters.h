// What filters that work in doubles have in common: outputs of every kind, and what they refuse.
#ifndef ZPA_TESTS_SUPPORT_DOUBLEFILTERS_H
#define ZPA_TESTS_SUPPORT_DOUBLEFILTERS_H

#include <climits>

#include "support/CapturedLog.h"
#include "support/Images.h"

namespace ZPA::Testing {

// The pixels as doubles, without padding.
template <typename T> TestImage<double> Wide(TestImage<T> const& image) {
    TestImage<double> wide({image.shape.width, image.shape.height, image.shape.width});
    wide.Fill([&](int x, int y) { return image.At(x, y); });
    return wide;
}

// The image once it holds the values, rounded to whole numbers if its elements are such.
template <typename T> TestImage<T> Holding(TestImage<double> const& values, TestImage<T> image) {
    image.Fill([&](int x, int y) {
        double const value = values.At(x, y);
        if constexpr (std::is_integral_v<T>)
            return static_cast<int>(value + std::copysign(0.5, value));
        else
            return value;
    });
    return image;
}

// Filters into doubles with and without padding, into whole numbers, into an image that is made, and in place.
template <typename T, typename Filter>
void ExpectEveryOutput(TestImage<T> input, TestImage<double> const& expected, Filter const& filter) {
    auto const [width, height, stride] = input.shape;
    auto const from = input.Attributes(16, 7);
    auto const expectIn = [&](auto& output) {
        auto const after = Holding(expected, output);
        ASSERT_EQ(filter(from, output.Into()), SOLVANE_OK);
        EXPECT_TRUE(output == after);
    };
    TestImage<double> packed({width, height, width}), padded({width, height, width + 4});
    TestImage<unsigned short> rounded({width, height, stride});
    expectIn(packed);
    expectIn(padded);
    expectIn(rounded);

    ImageAttributes made;
    ASSERT_EQ(filter(from, &made), SOLVANE_OK);
    EXPECT_EQ(Description(made), Description({eDouble, nullptr, width, height, width, 64, 7}));
    EXPECT_EQ(std::memcmp(made.buffer, expected.Pixels(), expected.Size() * sizeof(double)), 0);
    FreePixels(made.buffer);
    expectIn(input);
}

// `unserved` is a type that the filter does not take.
template <typename Filter> void ExpectFilterRefusals(Filter const& filterInto, eTypeCode unserved) {
    double pixels[64] = {}, other[64] = {};
    auto const input = [&](eTypeCode type, int width = 4, int height = 4, int stride = 4) {
        return Over(pixels, type, width, height, stride);
    };
    auto const output = [&](eTypeCode type, int width = 4, int height = 4, int stride = 4) {
        return Over(other, type, width, height, stride);
    };
    auto const filter = [&](ImageAttributes from, ImageAttributes const& destination) {
        ImageAttributes to = destination;
        SOLVANE_RETURNCODE const code = filterInto(from, &to);
        EXPECT_EQ(to.buffer, destination.buffer);
        return code;
    };
    constexpr auto kInputType = L"The input image must be of type eByte, eUInt16, or eDouble.";
    constexpr auto kOutputType = L"The output image must be of type eByte, eUInt16, or eDouble.";
    constexpr auto kSize = L"The output image is the wrong size.";
    constexpr auto kException = L"Unexpected exception.";
    ImageAttributes const none, huge = input(eByte, INT_MAX, INT_MAX, INT_MAX);
    ImageAttributes const hugeInput = input(eDouble, INT_MAX, INT_MAX, INT_MAX);
    EXPECT_REFUSAL(2, L"The input image had a NULL buffer pointer.",
                   filter(Described(unserved, 4, 4, 4), output(eDouble)));
    EXPECT_REFUSAL(6, kInputType, filter(input(unserved), output(eDouble, 3)));
    EXPECT_REFUSAL(6, kInputType, filterInto(input(eSingle), nullptr));
    EXPECT_REFUSAL(2, L"The output ImageAttributes pointer was NULL.", filterInto(input(eByte), nullptr));
    EXPECT_REFUSAL(7, kSize, filter(input(eByte), output(unserved, 4, 3)));
    EXPECT_REFUSAL(6, kOutputType, filter(input(eByte), output(unserved)));
    EXPECT_REFUSAL(6, kOutputType, filter(input(eUInt16, 4, 4, 3), output(eSingle)));
    EXPECT_REFUSAL(7, L"The input image's rows overlap.", filter(input(eUInt16, 4, 4, 3), output(eDouble)));
    EXPECT_REFUSAL(7, L"The output image's rows overlap.", filter(input(eUInt16), output(eDouble, 4, 4, 3)));
    EXPECT_REFUSAL(999, kException, filter(input(eDouble, 0, 4, 0), output(eDouble, 0, 4, 0)));  // empty
    EXPECT_REFUSAL(999, kException, filter(input(eDouble, 4, -4), none));                        // negative
    EXPECT_REFUSAL(999, kException, filter(huge, none));                                         // no memory
    EXPECT_REFUSAL(999, kException, filter(hugeInput, output(eDouble, INT_MAX, INT_MAX, INT_MAX)));
}

}  // namespace ZPA::Testing

#endif
