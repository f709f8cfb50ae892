// fspecial: the elements of each kind of kernel, and refusals.
#include <Basics/LinearFilters.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "support/CapturedLog.h"
#include "support/Images.h"

namespace ZPA {
namespace {

using namespace Testing;

TEST(Fspecial, MakesEachKind) {
    constexpr double a = 0.2, corner = 1.0 / 6, edge = 4.0 / 6, centre = -20.0 / 6;
    struct Case {
        char const* kind;
        double parameter;
        std::vector<double> elements;
    };
    Case const cases[] = {
        {"laplacian", a, {corner, edge, corner, edge, centre, edge, corner, edge, corner}},
        {"laplacian", -3, {0, 1, 0, 1, -4, 1, 0, 1, 0}},
        {"laplacian", 1e-16, {0, 1, 0, 1, -4, 1, 0, 1, 0}},
        {"laplacian", 7, {0.5, 0, 0.5, 0, -2, 0, 0.5, 0, 0.5}},
        {"sobel", 0, {1, 2, 1, 0, 0, 0, -1, -2, -1}},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(testing::Message() << each.kind << " " << each.parameter);
        // Nine elements in a row, whatever the shape.
        TestImage<double> kernel({1, 2, 6});
        auto expected = kernel;
        ASSERT_EQ(fspecial(kernel.Attributes(), each.kind, each.parameter), SOLVANE_OK);
        for (std::size_t i = 0; i < 9; ++i) EXPECT_DOUBLE_EQ(kernel.Pixels()[i], each.elements[i]);
        std::copy_n(kernel.Pixels(), 9, expected.Pixels());
        EXPECT_TRUE(kernel == expected);

        auto withoutWidth = kernel.Attributes();
        withoutWidth.width = -1;
        kernel.Pixels()[0] = 9;
        ASSERT_EQ(fspecial(withoutWidth, each.kind, each.parameter), SOLVANE_OK);
        EXPECT_TRUE(kernel == expected);
    }
}

TEST(Fspecial, FillsRowsByTheirStride) {
    for (Shape const shape : {Shape{3, 3, 3}, {4, 5, 7}, {1, 1, 1}, {31, 2, 40}, {0, 3, 0}, {3, 0, 3}}) {
        SCOPED_TRACE(shape);
        for (double const parameter : {0.5, 2.5, -1.0, 0.01}) {
            double const sigma = parameter < 0 ? 0.5 : parameter;
            TestImage<double> average(shape), gaussian(shape), expected(shape), values(shape);
            double sum = 0, largest = 0;
            auto const at = [&](int x, int y) {
                double const dx = x - (shape.width - 1) / 2.0, dy = y - (shape.height - 1) / 2.0;
                return std::exp(-(dx * dx + dy * dy) / (2 * sigma * sigma));
            };
            expected.Fill([&](int, int) { return 1.0 / (shape.width * shape.height); });
            values.Fill([&](int x, int y) { return largest = std::max(largest, at(x, y)); });
            values.Fill([&](int x, int y) {
                double const value = at(x, y) < largest * 2.2204e-16 ? 0 : at(x, y);
                sum += value;
                return value;
            });
            values.Fill([&](int x, int y) { return sum != 0 ? values.At(x, y) / sum : 0.0; });
            ASSERT_EQ(fspecial(average.Attributes(), "average", 9), SOLVANE_OK);
            EXPECT_TRUE(average == expected);
            ASSERT_EQ(fspecial(gaussian.Attributes(), "gaussian", parameter), SOLVANE_OK);
            for (std::size_t i = 0; i < values.Size(); ++i)
                EXPECT_DOUBLE_EQ(gaussian.Pixels()[i], values.Pixels()[i]) << i;
        }
    }
}

TEST(Fspecial, RefusesInItsOrder) {
    static double elements[16];
    auto const of = [&](eTypeCode type, int width, int height, int stride) {
        return ImageAttributes(type, elements, width, height, stride, 0, 0);
    };
    EXPECT_REFUSAL(4, L"The input buffer is NULL.", fspecial(Described(eByte, 3, 3, 3), "disk", 1));
    EXPECT_REFUSAL(4, L"Input image are not double type.", fspecial(of(eSingle, 3, 3, 3), "disk", 1));
    EXPECT_REFUSAL(6, L"", fspecial(of(eDouble, 3, 3, 3), "disk", 1));
    EXPECT_REFUSAL(6, L"", fspecial(of(eDouble, 3, 3, 3), "Sobel", 1));
    EXPECT_REFUSAL(6, L"", fspecial(of(eDouble, 3, 3, 3), nullptr, 1));
    EXPECT_REFUSAL(7, L"The kernel's rows overlap.", fspecial(of(eDouble, 3, 3, 2), "average", 1));
    EXPECT_REFUSAL(7, L"The kernel's rows overlap.", fspecial(of(eDouble, 3, 3, -3), "gaussian", 1));
    EXPECT_REFUSAL(7, L"The kernel image is too small.", fspecial(of(eDouble, 3, 2, 4), "sobel", 1));
    EXPECT_REFUSAL(7, L"The kernel image is too small.", fspecial(of(eDouble, 3, -3, -3), "laplacian", 1));
    EXPECT_TRUE(std::all_of(std::begin(elements), std::end(elements), [](double each) { return each == 0; }));
    CapturedLog const log;
    ZPA_Logging::SetErrorCallback([](wchar_t const*, int, wchar_t const*) { throw 1; });
    EXPECT_EQ(fspecial({}, "sobel", 1), SOLVANE_UNEXPECTED);
}

}  // namespace
}  // namespace ZPA
