// CopyPixels: 36 pairs of types, and what is refused.
#include <Basics/PixelOperations.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>

#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;
using Types = std::tuple<std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, float, double>;

template <typename Visit> void ForEachType(Visit const& visit) {
    std::apply([&](auto... element) { (visit(element), ...); }, Types());
}

// The rule in its plainest form: halves away from zero, then the processor's cut to 32 bits, then the low
// bits.
template <typename To, typename From> To Model(From value) {
    if constexpr (std::is_floating_point_v<From> && std::is_integral_v<To>) {
        double const wide = value;
        double const shifted = wide > 0 ? wide + 0.5 : wide - 0.5;
        bool const fits = shifted > -2147483649.0 && shifted < 2147483648.0;
        return static_cast<To>(fits ? static_cast<std::int32_t>(shifted) : INT32_MIN);
    } else {
        return static_cast<To>(value);
    }
}

template <typename T> std::vector<T> Hard() {
    if constexpr (std::is_floating_point_v<T>) {
        T const inf = std::numeric_limits<T>::infinity();
        std::vector<T> values = {T(0),
                                 T(-0.0),
                                 T(0.4),
                                 T(-0.4),
                                 T(0.5),
                                 T(-0.5),
                                 T(2.5),
                                 T(-2.5),
                                 T(255.5),
                                 T(300.2),
                                 T(-1.0),
                                 T(65535.5),
                                 T(65536.5),
                                 T(8388607.5),
                                 T(16777217),
                                 T(2147483520.0),
                                 T(2147483647.0),
                                 T(2147483648.0),
                                 T(-2147483648.0),
                                 T(-2147483648.5),
                                 T(-2147483649.0),
                                 T(4294967296.0),
                                 T(1e30),
                                 T(-1e30),
                                 inf,
                                 -inf,
                                 std::numeric_limits<T>::quiet_NaN(),
                                 std::numeric_limits<T>::denorm_min(),
                                 std::numeric_limits<T>::max(),
                                 std::nextafter(T(0.5), T(0)),
                                 std::nextafter(T(-0.5), T(0)),
                                 std::nextafter(T(0.5), T(1)),
                                 std::nextafter(T(2147483648.0), T(0)),
                                 std::nextafter(T(4194303.5), T(0))};
        return values;
    } else {
        using Limits = std::numeric_limits<T>;
        return {T(0),
                T(1),
                T(44),
                T(255),
                static_cast<T>(256),
                static_cast<T>(300),
                static_cast<T>(-1),
                static_cast<T>(16777217),
                Limits::min(),
                Limits::max()};
    }
}

template <typename From> TestImage<From> Filled(Shape shape, unsigned seed) {
    auto image = RandomImage<From>(shape, seed);
    auto const hard = Hard<From>();
    for (std::size_t i = 0; i < image.Size(); i += 2) image.Pixels()[i] = hard[(i / 2 + seed) % hard.size()];
    return image;
}

TEST(CopyPixels, ConvertsEveryPairOnEverySimdTarget) {
    ForEachSimdTarget([&] {
        ForEachType([&](auto from) {
            ForEachType([&](auto to) {
                using From = decltype(from);
                using To = decltype(to);
                unsigned seed = 0;
                for (Shape const shape : kShapes) {
                    SCOPED_TRACE(testing::Message()
                                 << TypeCodeOf<From> << " to " << TypeCodeOf<To> << ", " << shape);
                    auto source = Filled<From>(shape, seed++);
                    TestImage<To> result({shape.width, shape.height, shape.width + 3});
                    auto expected = result;
                    for (int y = 0; y < shape.height; ++y)
                        for (int x = 0; x < shape.width; ++x) expected.At(x, y) = Model<To>(source.At(x, y));
                    ImageAttributes destination = result.Attributes();
                    ASSERT_EQ(CopyPixels(source.Attributes(), &destination), SOLVANE_OK);
                    ASSERT_TRUE(result == expected);
                }
            });
        });
    });
}

TEST(CopyPixels, GivesTheSameForAnyNumberOfThreads) {
    Shape const shapes[] = {{2500, 1700, 2500}, {2500, 1700, 2600}};
    for (Shape const shape : shapes) {
        auto source = RandomImage<unsigned short>(shape, 5);
        ForEachThreadCount([&] {
            TestImage<unsigned short> result(shape);
            ImageAttributes destination = result.Attributes();
            ASSERT_EQ(CopyPixels(source.Attributes(), &destination), SOLVANE_OK);
            ASSERT_EQ(compare(source.Attributes(), destination), SOLVANE_OK);
        });
    }
}

TEST(CopyPixels, CreatesAnImageForTheCaller) {
    auto source = RandomImage<unsigned short>({5, 4, 9}, 1);
    for (eTypeCode const asked : {eUnknown, eSingle, eByte}) {
        ImageAttributes made;
        made.type = asked;
        ASSERT_EQ(CopyPixels(source.Attributes(12, 3), &made), SOLVANE_OK);
        EXPECT_EQ(made.type, asked == eUnknown ? eUInt16 : asked);
        EXPECT_EQ(made.width, 5);
        EXPECT_EQ(made.height, 4);
        EXPECT_EQ(made.stride, 5);
        EXPECT_EQ(made.bitsperpixel, 8 * SizeOfTypeCode(made.type));
        EXPECT_EQ(made.pixelspacing, 3);
        FreePixels(made.buffer);
    }
}

TEST(CopyPixels, RefusesInItsOrder) {
    unsigned char pixels[64] = {}, other[64] = {};
    auto const image = [](eTypeCode type, void* buffer, int width, int height, int stride) {
        return ImageAttributes(type, buffer, width, height, stride, 16, 0);
    };
    constexpr auto kSource = L"The source image type is not supported.";
    constexpr auto kDestination = L"The destination image type is not supported.";
    constexpr auto kSize = L"The destination was not the same size as the source.";
    struct Case {
        char const* name;
        ImageAttributes source, destination;
        int code;
        std::wstring message;
    };
    Case const cases[] = {
        {"source type", image(eSByte, nullptr, 2, 2, 2), image(eSByte, nullptr, 2, 2, 2), 6, kSource},
        {"unsigned 32-bit", image(eUInt32, pixels, 2, 2, 2), image(eByte, other, 2, 2, 2), 6, kSource},
        {"destination type before pointers", image(eByte, nullptr, 2, 2, 2), image(eUInt32, nullptr, 2, 2, 2),
         6, kDestination},
        {"null source", image(eByte, nullptr, 2, 2, 2), image(eByte, nullptr, 2, 2, 2), 2,
         L"The source buffer pointer was NULL."},
        {"in place", image(eByte, pixels, 2, 2, 2), image(eByte, pixels, 3, 3, 3), 2,
         L"The destination image pointer pointed to the source."},
        {"width", image(eByte, pixels, 2, 2, 2), image(eByte, other, 3, 2, 3), 7, kSize},
        {"height", image(eByte, pixels, 2, 2, 2), image(eDouble, other, 2, 3, 2), 7, kSize},
        {"nothing to copy", image(eByte, pixels, 0, 2, 2), image(eByte, other, 0, 2, 2), 5,
         L"ippiCopy_8u_C1R() failed. The error code was -5"},
        {"negative", image(eSingle, pixels, 2, -2, 2), image(eSingle, other, 2, -2, 2), 5,
         L"ippiCopy_32f_C1R() failed. The error code was -5"},
        {"nothing to convert", image(eByte, pixels, 0, 2, 2), image(eInt16, other, 0, 2, 2), 0, L""},
        {"negative doubles", image(eDouble, pixels, -2, -2, 2), image(eDouble, other, -2, -2, 2), 0, L""},
        {"source rows overlap", image(eUInt16, pixels, 4, 2, 3), image(eByte, other, 4, 2, 4), 7,
         L"The source image's rows overlap."},
        {"negative stride", image(eUInt16, pixels + 32, 4, 2, -4), image(eByte, other, 4, 2, 4), 7,
         L"The source image's rows overlap."},
        {"destination rows overlap", image(eByte, pixels, 4, 2, 4), image(eByte, other, 4, 2, 3), 7,
         L"The destination image's rows overlap."},
        {"no memory", image(eByte, pixels, INT_MAX, INT_MAX, INT_MAX), image(eDouble, nullptr, 0, 0, 0), 999,
         L"Unexpected exception."},
        {"negative to a new image", image(eByte, pixels, -2, 2, 2), image(eByte, nullptr, 0, 0, 0), 999,
         L"Unexpected exception."},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        CapturedLog const log;
        ImageAttributes destination = each.destination;
        EXPECT_EQ(CopyPixels(each.source, &destination), each.code);
        EXPECT_EQ(log.Text(), each.message);
        EXPECT_EQ(log.Code(), each.code);
        EXPECT_EQ(destination.buffer, each.destination.buffer);
        EXPECT_EQ(destination.width, each.destination.width);
    }
    CapturedLog const log;
    EXPECT_EQ(CopyPixels(image(eByte, pixels, 2, 2, 2), nullptr), SOLVANE_NULL_POINTER);
    EXPECT_EQ(log.Text(), L"The destination image pointer was NULL.");
}

TEST(CopyPixels, ReadsRowsOfEightBitsThatShareMemory) {
    unsigned char pixels[] = {1, 2, 3, 4, 5};
    ImageAttributes made;
    ASSERT_EQ(CopyPixels(ImageAttributes(eByte, pixels, 4, 2, 1, 8, 0), &made), SOLVANE_OK);
    unsigned char const expected[] = {1, 2, 3, 4, 2, 3, 4, 5};
    EXPECT_TRUE(std::equal(expected, expected + 8, static_cast<unsigned char*>(made.buffer)));
    FreePixels(made.buffer);
}

}  // namespace
}  // namespace ZPA
