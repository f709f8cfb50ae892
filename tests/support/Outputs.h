// What operations write into their outputs, and that they leave them alone where they refuse.
#ifndef ZPA_TESTS_SUPPORT_OUTPUTS_H
#define ZPA_TESTS_SUPPORT_OUTPUTS_H

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

// An operation with its output ahead of its other arguments, for calls that leave it as it was. `described`: not only
// where its pixels are, but its description too, which stays of what was created and freed again.
template <typename Operation> auto LeavingOutput(Operation operation, bool described = true) {
    return [=](ImageAttributes const& output, auto... inputs) {
        ImageAttributes given = output;
        SOLVANE_RETURNCODE const code = operation(inputs..., &given);
        EXPECT_EQ(given.buffer, output.buffer);
        EXPECT_TRUE(!described || Description(given) == Description(output));
        return code;
    };
}

}  // namespace ZPA::Testing

#endif
