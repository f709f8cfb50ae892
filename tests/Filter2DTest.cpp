// Filter2D: regions, destinations and refusals.
#include <Basics/LinearFilters.h>
#include <gtest/gtest.h>

#include <climits>

#include "support/CapturedLog.h"
#include "support/LinearFilters.h"
#include "support/NoMemory.h"

namespace ZPA {
namespace {

using namespace Testing;

TEST(Filter2D, FiltersARegionToAnyPlace) {
    auto source = RandomImage<unsigned short>({20, 15, 22}, 1);
    auto kernel = RandomKernel<int>({4, 3, 4}, 5, 2);
    int const divisor = 3;
    Rectangle const roi(2, 1, 17, 13);  // as far as the kernel lets it
    APOINT const origin(1, 4);
    TestImage<unsigned short> destination({18, 17, 19});
    auto expected = destination;
    for (int y = 0; y < 13; ++y)
        for (int x = 0; x < 17; ++x) expected.At(1 + x, 4 + y) = ModelPixel(source, kernel, 3, 2 + x, 1 + y);
    ASSERT_EQ(Filter2D(source.Attributes(), &roi, destination.Into(), &origin, kernel.Attributes(), &divisor),
              SOLVANE_OK);
    EXPECT_TRUE(destination == expected);
}

TEST(Filter2D, MakesTheDestinationWithRoomForTheOrigin) {
    auto source = RandomImage<short>({10, 10, 12}, 1);
    auto kernel = RandomKernel<int>({3, 3, 3}, 5, 2);
    for (APOINT const origin : {APOINT(0, 0), APOINT(2, 1)}) {
        ImageAttributes made(eByte, nullptr, 1, 2, 3, 4, 5);
        ASSERT_EQ(Filter2D(source.Attributes(12, 7), nullptr, &made, &origin, kernel.Attributes(), nullptr),
                  SOLVANE_OK);
        EXPECT_EQ(Description(made),
                  Description({eInt16, nullptr, 8 + origin.x, 8 + origin.y, 8 + origin.x, 12, 7}));
        auto const* const pixels = static_cast<short*>(made.buffer);
        for (int y = 0; y < made.height; ++y)
            for (int x = 0; x < made.width; ++x)
                EXPECT_EQ(pixels[y * made.stride + x],
                          x < origin.x || y < origin.y
                              ? 0
                              : ModelPixel(source, kernel, 1, x - origin.x + 1, y - origin.y + 1));
        FreePixels(made.buffer);
    }
}

TEST(Filter2D, RefusesInItsOrder) {
    alignas(8) static unsigned char pixels[4096], others[4096], weights[4096];
    auto const over = [](unsigned char* elements) {
        return [=](eTypeCode type, int width, int height, int stride) {
            return ImageAttributes(type, elements, width, height, stride, 16, 3);
        };
    };
    auto const of = over(pixels), into = over(others), kernel = over(weights);
    constexpr auto kDestination = L"The destination image pointer was NULL or pointed to the source.";
    constexpr auto kOutOfSource = L"The ROI was out of bounds in the source image.";
    constexpr auto kOutOfDestination = L"The ROI was out of bounds in the destination image.";
    constexpr auto kEmpty = L"The supplied ROI was empty.";
    constexpr auto kNotInteger = L"The kernel was not an integer kernel.";
    constexpr auto kNotReal = L"The kernel was not a real kernel.";
    constexpr auto kNoInteger = L"ippiFilterInt() is unsupported for this data type.";
    constexpr auto kIntegerFailed = L"ippiFilterInt() failed. The error code was -5";
    constexpr auto kRealFailed = L"ippiFilterReal() failed. The error code was -5";
    ImageAttributes const empty, image = of(eUInt16, 20, 20, 20), three = kernel(eInt32, 3, 3, 3);
    ImageAttributes const four = kernel(eInt32, 4, 4, 4), noImage = Described(eUInt16, 20, 20, 20);
    ImageAttributes const noSide = kernel(eSingle, -3, INT_MIN, 0), small = into(eUInt16, 1, 1, 0);
    static int const kZero = 0;
    Rectangle const all, part(1, 1, 2, 2), left(0, 1, 2, 2), far(INT_MAX, 1, INT_MAX, 2);
    APOINT const corner;
    struct Case {
        char const* name;
        ImageAttributes source, destination, kernel;
        Rectangle roi;  // null if it is all zero
        APOINT origin;
        int code;
        std::wstring message;
        bool fillsIn = false;  // the descriptor of a destination without pixels
        int const* divisor = nullptr;
    };
    Case const cases[] = {
        {"type", Described(eUnknown, 20, 20, 20), empty, empty, all, corner, 6,
         L"Unsupported image datatype."},
        {"source", noImage, empty, empty, all, corner, 2, L"The source buffer pointer was NULL."},
        {"in place", image, of(eUInt16, 20, 20, 20), empty, all, corner, 2, kDestination},
        {"kernel", image, empty, Described(eSingle, 3, 3, 3), all, corner, 2,
         L"The kernel buffer pointer was NULL."},
        {"kernel's type", image, empty, kernel(eSingle, 30, 3, 3), all, corner, 6, kNotInteger},
        {"kernel of 32u", of(eSByte, 9, 9, 9), empty, kernel(eUInt32, 3, 3, 3), all, corner, 6, kNotInteger},
        {"wide kernel", image, empty, kernel(eInt32, 21, 3, 21), all, corner, 3, kEmpty},
        {"high kernel", image, empty, kernel(eInt32, 3, 21, 3), all, corner, 3, kEmpty},
        {"no width", image, empty, three, Rectangle(-1, 0, 0, 1), corner, 3, kEmpty},
        {"no height", image, empty, three, Rectangle(-1, 0, 1, -1), corner, 3, kEmpty},
        {"left", image, empty, four, Rectangle(1, 2, 2, 2), corner, 3, kOutOfSource},
        {"above", image, empty, four, Rectangle(2, 1, 2, 2), corner, 3, kOutOfSource},
        {"right", image, empty, four, Rectangle(2, 2, 18, 2), corner, 3, kOutOfSource},
        {"below", image, empty, four, Rectangle(2, 2, 2, 18), corner, 3, kOutOfSource},
        {"overflow", image, empty, three, far, corner, 3, kOutOfSource},
        {"source before destination", image, small, three, left, APOINT(-1, 0), 3, kOutOfSource},
        {"origin x", image, empty, three, part, APOINT(-1, 0), 3, kOutOfDestination, true},
        {"origin y", image, empty, three, part, APOINT(0, -1), 3, kOutOfDestination, true},
        {"far origin", image, empty, three, part, APOINT(INT_MAX, 0), 3, kOutOfDestination, true},
        {"narrow", image, into(eUInt16, 2, 9, 1), three, part, APOINT(1, 0), 3, kOutOfDestination},
        {"low", image, into(eUInt16, 9, 2, 1), three, part, APOINT(0, 1), 3, kOutOfDestination},
        {"stride", image, into(eByte, 2, 2, 1), three, part, corner, 3,
         L"The destination stride was less than the destination width."},
        {"source's rows", of(eUInt16, 20, 20, 19), empty, three, part, corner, 7,
         L"The source image's rows overlap.", true},
        {"destination's type", image, into(eByte, 2, 2, 2), three, part, corner, 7,
         L"The destination image's elements are narrower than the source's."},
        {"kernel's rows", image, empty, kernel(eInt32, 3, 3, 2), part, corner, 7,
         L"The kernel's rows overlap.", true},
        {"small reals", of(eSingle, 20, 20, 20), empty, kernel(eInt16, 3, 3, 3), part, corner, 6, kNotReal,
         true},
        {"smaller reals", of(eDouble, 20, 20, 20), empty, kernel(eSingle, 3, 3, 3), part, corner, 6, kNotReal,
         true},
        {"8s", of(eSByte, 20, 20, 20), empty, three, part, corner, 6, kNoInteger, true},
        {"32s", of(eInt32, 20, 20, 20), into(eInt32, 2, 2, 2), three, part, corner, 6, kNoInteger},
        {"32u", of(eUInt32, 20, 20, 20), empty, three, part, corner, 6, kNoInteger, true},
        {"divisor", image, empty, three, part, corner, 5, L"ippiFilterInt() failed. The error code was -6",
         true, &kZero},
        {"kernel of no size", image, empty, kernel(eInt32, 0, 3, 3), part, corner, 5, kIntegerFailed, true},
        {"negative kernel", of(eSingle, 20, 20, 20), into(eSingle, 2, 2, 2), noSide, part, corner, 5,
         kRealFailed},
        {"real kernel of no size", of(eDouble, 20, 20, 20), empty, kernel(eDouble, 3, 0, 3), part, corner, 5,
         kRealFailed, true},
    };
    unsigned char before[sizeof others];
    std::memcpy(before, others, sizeof others);
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        ImageAttributes output = each.destination;
        Rectangle const& roi = each.roi;
        bool const given = roi.x || roi.y || roi.width || roi.height;
        auto const call = [&] {
            return Filter2D(each.source, given ? &roi : nullptr, &output, &each.origin, each.kernel,
                            each.divisor);
        };
        ExpectRefusal(call, each.code, each.message);
        EXPECT_EQ(output.buffer, each.destination.buffer);
        EXPECT_EQ(output.type, each.fillsIn ? each.source.type : each.destination.type);
        EXPECT_EQ(output.pixelspacing, each.fillsIn ? 3 : each.destination.pixelspacing);
    }
    EXPECT_EQ(std::memcmp(before, others, sizeof others), 0);
    ExpectRefusal([&] { return Filter2D(image, nullptr, nullptr, nullptr, three, nullptr); }, 2,
                  kDestination);
}

TEST(Filter2D, WritesNothingWithoutMemory) {
    auto image = RandomImage<double>({30, 30, 30}, 1);
    auto kernel = RandomKernel<double>({3, 3, 3}, 1, 2);
    TestImage<double> destination({28, 28, 28});
    auto const before = destination;
    ImageAttributes made;
    CapturedLog const log;
    NoMemory const none;
    EXPECT_EQ(
        Filter2D(image.Attributes(), nullptr, destination.Into(), nullptr, kernel.Attributes(), nullptr),
        SOLVANE_OUT_OF_MEMORY);
    EXPECT_EQ(log.Text().substr(0, 46),
              L"Filter2D: Memory allocation failed for " + log.Text().substr(39, 7));
    EXPECT_TRUE(destination == before);
    EXPECT_EQ(Filter2D(image.Attributes(), nullptr, &made, nullptr, kernel.Attributes(), nullptr),
              SOLVANE_UNEXPECTED);
    EXPECT_EQ(made.buffer, nullptr);
    EXPECT_EQ(made.width, 28);
}

}  // namespace
}  // namespace ZPA
