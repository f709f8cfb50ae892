// Dilation, erosion, openings and iterations beside a model; what is refused.
#include <Basics/Morphology.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;
using Mask = TestImage<unsigned char>;
using Operation = SOLVANE_RETURNCODE (*)(ImageAttributes, ImageAttributes*, ImageAttributes, int, int);

struct Element {
    std::string name;
    Mask mask;
    APOINT anchor;
};

template <typename Set> Element MakeElement(std::string name, Shape shape, APOINT anchor, Set const& set) {
    Element element{name, Mask(shape), anchor};
    element.mask.Fill([&](int x, int y) { return set(x, y) ? 255 : 0; });
    return element;
}

Element Block(int width, int height, APOINT anchor) {
    std::string const name = std::to_string(width) + " by " + std::to_string(height);
    return MakeElement(name, {width, height, width}, anchor, [](int, int) { return true; });
}

Element Random(Shape shape, APOINT anchor, unsigned percent) {
    std::mt19937 random(percent);
    return MakeElement(std::to_string(percent) + " % random", shape, anchor,
                       [&](int x, int y) { return (x == 0 && y == 0) || random() % 100 < percent; });
}

// One of each kind that is worked on in its own way, with sizes on both sides of where the way changes.
std::vector<Element> Elements() {
    std::vector<Element> all;
    for (int const width : {1, 2, 5, 6, 17, 26, 40}) all.push_back(Block(width, 1, {width / 3, 0}));
    for (int const height : {1, 3, 7, 8, 9, 20})
        for (int const width : {1, 3, 21}) all.push_back(Block(width, height, {width - 1, height / 4}));
    all.push_back(
        MakeElement("block beside its anchor", {9, 10, 12}, {0, 9}, [](int x, int) { return x > 5; }));
    all.push_back(
        MakeElement("last pixel", {7, 5, 7}, {3, 2}, [](int x, int y) { return x == 6 && y == 4; }));
    all.push_back(MakeElement("disk", {23, 23, 23}, {11, 11},
                              [](int x, int y) { return (x - 11) * (x - 11) + (y - 11) * (y - 11) <= 127; }));
    for (unsigned const percent : {3u, 50u, 90u}) all.push_back(Random({13, 11, 20}, {4, 10}, percent));
    return all;
}

template <typename T> T Clamped(TestImage<T> const& image, int x, int y) {
    return image.At(std::clamp(x, 0, image.shape.width - 1), std::clamp(y, 0, image.shape.height - 1));
}

// Leaves the padding of `result` alone.
template <typename T>
void Model(TestImage<T> const& source, Element const& element, bool dilates, TestImage<T>& result) {
    result.Fill([&](int x, int y) {
        T extreme = dilates ? 0 : std::numeric_limits<T>::max();
        for (int j = 0; j < element.mask.shape.height; ++j)
            for (int i = 0; i < element.mask.shape.width; ++i) {
                if (element.mask.At(i, j) == 0) continue;
                T const pixel = Clamped(source, x + i - element.anchor.x, y + j - element.anchor.y);
                extreme = dilates ? std::max(extreme, pixel) : std::min(extreme, pixel);
            }
        return extreme;
    });
}

SOLVANE_RETURNCODE Apply(Operation operation, ImageAttributes source, ImageAttributes* destination,
                         Element& element) {
    return operation(source, destination, element.mask.Attributes(), element.anchor.x, element.anchor.y);
}

template <typename T> class MorphologyOf : public testing::Test {};
using Served = testing::Types<unsigned char, unsigned short>;
TYPED_TEST_SUITE(MorphologyOf, Served, );

TYPED_TEST(MorphologyOf, WhatTheModelGivesOnEverySimdTarget) {
    for (Element& element : Elements())
        for (Shape const shape : kShapes)
            for (bool const dilates : {true, false}) {
                SCOPED_TRACE(testing::Message() << element.name << " on " << shape << ", " << dilates);
                auto const source = RandomImage<TypeParam>(shape, 1);
                TestImage<TypeParam> const blank({shape.width, shape.height, shape.stride + 3});
                auto expected = blank;
                auto expectedInPlace = source;
                Model(source, element, dilates, expected);
                Model(source, element, dilates, expectedInPlace);
                ForEachSimdTarget([&] {
                    auto input = source;
                    auto output = blank;
                    Operation const operation = dilates ? Dilate : Erode;
                    ASSERT_EQ(Apply(operation, input.Attributes(), output.Into(), element), SOLVANE_OK);
                    ASSERT_TRUE(output == expected);
                    ASSERT_TRUE(input == source);
                    ASSERT_EQ(Apply(operation, input.Attributes(), nullptr, element), SOLVANE_OK);
                    ASSERT_TRUE(input == expectedInPlace);
                });
            }
}

// Large enough for threads, which in place must not read what another one has written.
TYPED_TEST(MorphologyOf, TheSameOnAnyNumberOfThreads) {
    Element elements[] = {Random({15, 17, 15}, {4, 3}, 8), Block(3, 11, {2, 10}), Block(9, 9, {0, 0})};
    for (Element& element : elements) {
        SCOPED_TRACE(element.name);
        auto const source = RandomImage<TypeParam>({1200, 1100, 1203}, 2);
        auto expected = source;
        Model(source, element, true, expected);
        ForEachThreadCount([&] {
            auto image = source;
            ImageAttributes place = image.Attributes();
            place.width = 77;  // the size of the destination does not count in place
            place.height = -1;
            EXPECT_EQ(Apply(Dilate, image.Attributes(), &place, element), SOLVANE_OK);
            EXPECT_TRUE(image == expected);
        });
    }
}

TYPED_TEST(MorphologyOf, TheSameWhereSourceAndDestinationOverlap) {
    struct Case {
        char const* name;
        int offset;
        int stride;
    };
    // The destination begins so far behind the source, whose rows are 40 apart.
    Case const cases[] = {{"a little behind", 3, 40}, {"before", -41, 40},      {"other rows", 0, 33},
                          {"farther rows", 0, 50},    {"same row ends", 7, 33}, {"apart", 40 * 20, 37}};
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        constexpr int kWidth = 33, kHeight = 20, kMargin = 64;
        auto memory = RandomImage<TypeParam>({40 * 50, 1, 40 * 50}, 3);
        TestImage<TypeParam> source({kWidth, kHeight, 40});
        std::copy_n(memory.Pixels() + kMargin, source.Size(), source.Pixels());
        Element element = Random({7, 5, 7}, {1, 3}, 50);
        TestImage<TypeParam> result({kWidth, kHeight, kWidth});
        Model(source, element, true, result);
        auto expected = memory;
        for (int y = 0; y < kHeight; ++y)
            std::copy_n(&result.At(0, y), kWidth,
                        expected.Pixels() + kMargin + each.offset + y * each.stride);

        ImageAttributes input = source.Attributes(), output = source.Attributes();
        input.buffer = memory.Pixels() + kMargin;
        output.buffer = memory.Pixels() + kMargin + each.offset;
        output.stride = each.stride;
        EXPECT_EQ(Apply(Dilate, input, &output, element), SOLVANE_OK);
        EXPECT_TRUE(memory == expected);
    }
}

TYPED_TEST(MorphologyOf, OpensClosesAndIterates) {
    Shape const shape{50, 40, 53};
    auto const source = RandomImage<TypeParam>(shape, 4);
    Element element = Random({5, 4, 6}, {3, 0}, 40);
    Element square = Block(3, 3, {1, 1});
    for (bool const opens : {true, false}) {
        auto between = source, opened = source, thrice = source;
        Model(source, element, !opens, between);
        Model(between, element, opens, opened);
        Model(source, square, opens, thrice);
        auto const once = thrice;
        Model(once, square, opens, between);
        Model(between, square, opens, thrice);

        auto input = source, output = source;
        ImageAttributes created;
        Operation const operation = opens ? ImOpen : ImClose;
        EXPECT_EQ(Apply(operation, input.Attributes(), output.Into(), element), SOLVANE_OK);
        EXPECT_TRUE(output == opened);
        ASSERT_EQ(Apply(operation, input.Attributes(12, 7), &created, element), SOLVANE_OK);
        EXPECT_EQ(Description(created), Description(input.Attributes(12, 7)));
        auto made = Uniform<TypeParam>(shape, 0);
        made.Fill([&](int x, int y) { return opened.At(x, y); });
        EXPECT_EQ(std::memcmp(created.buffer, made.Pixels(), made.Size() * sizeof(TypeParam)), 0);
        FreePixels(created.buffer);
        auto const iterate = opens ? Dilate3x3 : Erode3x3;
        EXPECT_EQ(iterate(input.Attributes(), output.Into(), 3), SOLVANE_OK);
        EXPECT_TRUE(output == thrice);
        EXPECT_EQ(iterate(input.Attributes(), output.Into(), -7), SOLVANE_OK);
        EXPECT_TRUE(output == once);
        EXPECT_TRUE(input == source);
        EXPECT_EQ(iterate(input.Attributes(), nullptr, 3), SOLVANE_OK);
        EXPECT_TRUE(input == thrice);
    }
}

struct Refusal {
    char const* name;
    ImageAttributes source, destination, se;
    APOINT anchor;
    int code;
    std::wstring messages;  // one a line
};

unsigned short pixels[64];
unsigned short others[64];
unsigned char ones[9] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
unsigned char zeros[9];

// In the order in which they are tried: a case also has what those behind it refuse, where that is possible.
TEST(Morphology, RefusesInItsOrder) {
    auto const from = [](eTypeCode type, int width = 4, int height = 3, int stride = 4) {
        return Over(pixels, type, width, height, stride);
    };
    auto const to = [](int width = 4, int height = 3, int stride = 4, eTypeCode type = eUInt16) {
        return Over(others, type, width, height, stride);
    };
    auto const element = [](int width, int height, int stride, void* buffer = ones) {
        return ImageAttributes(eByte, buffer, width, height, stride, 8, 0);
    };
    ImageAttributes const good = from(eUInt16), output = to(), se = element(3, 3, 3);
    ImageAttributes const noPixels = Over(nullptr, eUInt16, 4, 3, 4), noElements = element(3, 3, 3, nullptr);
    ImageAttributes const signedElement = Over(ones, eSByte, 3, 3, 3);
    ImageAttributes const folded = from(eUInt16, 4, 3, 3), foldedElement = element(3, 3, -3);
    APOINT const middle(1, 1), outside(3, 1), above(1, -1);
    auto const border = [](int status) {
        return L"ippiCopyReplicateBorder failed. code " + std::to_wstring(status);
    };
    auto const dilate = [](int status) { return L"ippiDilate failed. code " + std::to_wstring(status); };
    Refusal const refusals[] = {
        {"element type", from(eUnknown), to(3), signedElement, middle, 4,
         L"Structuring element must be eByte datatype."},
        {"size", from(eUnknown), to(3), se, middle, 5,
         L"Source and destination image must be same size.\nFailed to ValidateImageBuffer."},
        {"type", from(eUnknown), output, se, middle, 6, L"Unsupported image datatype."},
        {"memory", from(eInt16), output, element(INT_MAX, 3, INT_MAX), middle, 1,
         L"template_Dilate(): Memory allocation failed for 2147483647 bytes."},
        {"signed", Over(nullptr, eInt16, 4, 3, 4), output, se, middle, 5, border(-12)},
        {"float", from(eSingle), output, se, middle, 5, border(-12)},
        {"no source", noPixels, output, noElements, middle, 5, border(-8)},
        {"no source, unreadable element", noPixels, output, foldedElement, middle, 5, border(-8)},
        {"no source at all", noPixels, noPixels, se, middle, 5, border(-8)},
        {"no width", from(eUInt16, 0), to(0), noElements, middle, 5, border(-5)},
        {"negative height", from(eUInt16, 4, -9), to(4, -9), se, middle, 5, border(-5)},
        {"negative element", folded, output, element(-3, -3, 3), middle, 5, border(-5)},
        {"no element", folded, output, noElements, outside, 5, dilate(-8)},
        {"empty element", folded, output, element(3, 0, 3), outside, 5, dilate(-5)},
        {"clear element", folded, output, element(3, 3, 3, zeros), outside, 5, dilate(-33)},
        {"anchor beyond", folded, output, foldedElement, outside, 5, dilate(-34)},
        {"anchor before", folded, to(4, 3, 3), se, above, 5, dilate(-34)},
        {"source rows", folded, output, foldedElement, middle, 7, L"The source image's rows overlap."},
        {"element rows", good, to(4, 3, 3), foldedElement, middle, 7,
         L"The structuring element's rows overlap."},
        {"narrow destination", good, to(4, 3, 3, eByte), se, middle, 7,
         L"The destination image's elements are narrower than the source's."},
        {"destination rows", good, to(4, 3, 3), se, middle, 7, L"The destination image's rows overlap."},
        {"in place, far rows", good, from(eUInt16, 0, 0, 5), se, middle, 7,
         L"The destination image's rows lead out of its memory."},
        {"in place, room in the last row's padding", good, from(eUInt16, 3, 3, 6), se, middle, 7,
         L"The destination image's rows lead out of its memory."},
    };
    for (Refusal const& each : refusals) {
        SCOPED_TRACE(each.name);
        CapturedLog const log;
        ImageAttributes destination = each.destination;
        EXPECT_EQ(Dilate(each.source, &destination, each.se, each.anchor.x, each.anchor.y), each.code);
        EXPECT_EQ(log.Texts(), each.messages + L'\n');
        EXPECT_EQ(log.Code(), each.code);
    }
    EXPECT_TRUE(std::all_of(others, others + 64, [](int pixel) { return pixel == 0; }));
}

TEST(Morphology, NamesItselfInItsFailures) {
    ImageAttributes const source = Over(pixels, eUInt16, 4, 3, 4);
    ImageAttributes const clear(eByte, zeros, 3, 3, 3, 8, 0);
    ImageAttributes destination;
    CapturedLog const log;
    EXPECT_EQ(Erode(source, nullptr, clear, 1, 1), SOLVANE_OPERATION_FAILED);
    EXPECT_EQ(log.Text(), L"ippiErode failed. code -33");
    EXPECT_NE(log.Errors().back().location.find(L"Erode.cpp"), std::wstring::npos);
    for (Operation const operation : {ImOpen, ImClose}) {
        EXPECT_EQ(operation(source, nullptr, clear, 1, 1), SOLVANE_NULL_POINTER);
        EXPECT_EQ(log.Text(), L"The destination image pointer was NULL.");
    }
    destination = Over(others, eUInt16, 4, 3, 4);
    EXPECT_EQ(ImClose(source, &destination, clear, 1, 1), SOLVANE_OPERATION_FAILED);
    EXPECT_EQ(log.Text(), L"ippiDilate failed. code -33");
}

}  // namespace
}  // namespace ZPA
