// Compares what operations write with what a model says of each pixel.
#ifndef ZPA_TESTS_SUPPORT_PIXELMODELS_H
#define ZPA_TESTS_SUPPORT_PIXELMODELS_H

#include <gtest/gtest.h>

#include "support/Images.h"

namespace ZPA::Testing {

// The call writes model(x, y) to the pixels of `image`, and nothing else to it. It takes the image as its output, of
// which it may also be an operand.
template <typename T, typename Call, typename Model>
void ExpectWritten(TestImage<T>& image, Call const& call, Model const& model) {
    auto expected = image;
    expected.Fill(model);
    ImageAttributes output = image.Attributes();
    ASSERT_EQ(call(&output), SOLVANE_OK);
    ASSERT_TRUE(image == expected);
}

// The same of an image apart, of this size and with padding of its own.
template <typename T, typename Call, typename Model>
void ExpectWrittenApart(Shape shape, Call const& call, Model const& model) {
    TestImage<T> apart({shape.width, shape.height, shape.width + 3});
    ExpectWritten(apart, call, model);
}

}  // namespace ZPA::Testing

#endif
