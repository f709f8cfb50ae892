// CopyPixels: 36 pairs of types, and what is refused.
#include <Basics/PixelOperations.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

template <typename Visit> void ForEachServedType(Visit const& visit) {
    ForEachType<std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, float, double>(visit);
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
    using Limits = std::numeric_limits<T>;
    std::vector<T> values = {Limits::lowest(), Limits::max()};
    if constexpr (std::is_floating_point_v<T>) {
        for (double const value :
             {0.0,           -0.0,          0.4,           -0.4,         0.5,          -0.5,
              2.5,           -2.5,          255.5,         300.2,        -1.0,         65535.5,
              65536.5,       8388607.5,     16777217.0,    2147483520.0, 2147483647.0, 2147483648.0,
              -2147483648.0, -2147483648.5, -2147483649.0, 4294967296.0, 1e30,         -1e30,
              HUGE_VAL,      -HUGE_VAL})
            values.push_back(static_cast<T>(value));
        values.insert(values.end(), {Limits::quiet_NaN(), Limits::denorm_min()});
        for (T const value : {T(0.5), T(-0.5), T(2147483648.0), T(4194303.5)})
            values.push_back(std::nextafter(value, T(0)));
        values.push_back(std::nextafter(T(0.5), T(1)));
    } else {
        for (int const value : {0, 1, 44, 255, 256, 300, -1, 16777217})
            values.push_back(static_cast<T>(value));
    }
    return values;
}

template <typename From> TestImage<From> Filled(Shape shape, unsigned seed) {
    auto image = RandomImage<From>(shape, seed);
    auto const hard = Hard<From>();
    for (std::size_t i = 0; i < image.Size(); i += 2) image.Pixels()[i] = hard[(i / 2 + seed) % hard.size()];
    return image;
}

TEST(CopyPixels, ConvertsEveryPairOnEverySimdTarget) {
    ForEachSimdTarget([&] {
        ForEachServedType([&](auto from) {
            ForEachServedType([&](auto to) {
                using From = decltype(from);
                using To = decltype(to);
                unsigned seed = 0;
                for (Shape const shape : kShapes) {
                    SCOPED_TRACE(testing::Message()
                                 << TypeCodeOf<From> << " to " << TypeCodeOf<To> << ", " << shape);
                    auto source = Filled<From>(shape, seed++);
                    TestImage<To> result({shape.width, shape.height, shape.width + 3});
                    auto expected = result;
                    expected.Fill([&](int x, int y) { return Model<To>(source.At(x, y)); });
                    ImageAttributes destination = result.Attributes();
                    ASSERT_EQ(CopyPixels(source.Attributes(), &destination), SOLVANE_OK);
                    ASSERT_TRUE(result == expected);
                }
            });
        });
    });
}

TEST(CopyPixels, CreatesAnImageForTheCaller) {
    auto source = RandomImage<unsigned short>({5, 4, 9}, 1);
    for (eTypeCode const asked : {eUnknown, eSingle, eByte}) {
        ImageAttributes made;
        made.type = asked;
        ASSERT_EQ(CopyPixels(source.Attributes(12, 3), &made), SOLVANE_OK);
        eTypeCode const type = asked == eUnknown ? eUInt16 : asked;
        EXPECT_EQ(Description(made), Description({type, nullptr, 5, 4, 5, 8 * SizeOfTypeCode(type), 3}));
        FreePixels(made.buffer);
    }
}

TEST(CopyPixels, RefusesInItsOrder) {
    unsigned char pixels[64] = {}, other[64] = {};
    auto const image = [](eTypeCode type, void* buffer, int width, int height, int stride) {
        return Over(buffer, type, width, height, stride);
    };
    constexpr auto kSource = L"The source image type is not supported.";
    constexpr auto kDestination = L"The destination image type is not supported.";
    constexpr auto kSize = L"The destination was not the same size as the source.";
    auto const copy = [](ImageAttributes source, ImageAttributes const& destination) {
        ImageAttributes given = destination;
        SOLVANE_RETURNCODE const code = CopyPixels(source, &given);
        EXPECT_EQ(given.buffer, destination.buffer);
        EXPECT_EQ(given.width, destination.width);
        return code;
    };
    EXPECT_REFUSAL(6, kSource, copy(image(eSByte, nullptr, 2, 2, 2), image(eSByte, nullptr, 2, 2, 2)));
    EXPECT_REFUSAL(6, kSource, copy(image(eUInt32, pixels, 2, 2, 2), image(eByte, other, 2, 2, 2)));
    EXPECT_REFUSAL(6, kDestination,
                   copy(image(eByte, nullptr, 2, 2, 2),
                        image(eUInt32, nullptr, 2, 2, 2)));  // destination type before pointers
    EXPECT_REFUSAL(2, L"The source buffer pointer was NULL.",
                   copy(image(eByte, nullptr, 2, 2, 2), image(eByte, nullptr, 2, 2, 2)));
    EXPECT_REFUSAL(2, L"The destination image pointer pointed to the source.",
                   copy(image(eByte, pixels, 2, 2, 2), image(eByte, pixels, 3, 3, 3)));           // in place
    EXPECT_REFUSAL(7, kSize, copy(image(eByte, pixels, 2, 2, 2), image(eByte, other, 3, 2, 3)));  // width
    EXPECT_REFUSAL(7, kSize, copy(image(eByte, pixels, 2, 2, 2), image(eDouble, other, 2, 3, 2)));  // height
    EXPECT_REFUSAL(5, L"ippiCopy_8u_C1R() failed. The error code was -5",
                   copy(image(eByte, pixels, 0, 2, 2), image(eByte, other, 0, 2, 2)));
    EXPECT_REFUSAL(5, L"ippiCopy_32f_C1R() failed. The error code was -5",
                   copy(image(eSingle, pixels, 2, -2, 2), image(eSingle, other, 2, -2, 2)));
    EXPECT_REFUSAL(0, L"", copy(image(eByte, pixels, 0, 2, 2), image(eInt16, other, 0, 2, 2)));
    EXPECT_REFUSAL(0, L"", copy(image(eDouble, pixels, -2, -2, 2), image(eDouble, other, -2, -2, 2)));
    EXPECT_REFUSAL(7, L"The source image's rows overlap.",
                   copy(image(eUInt16, pixels, 4, 2, 3), image(eByte, other, 4, 2, 4)));
    EXPECT_REFUSAL(7, L"The source image's rows overlap.",
                   copy(image(eUInt16, pixels + 32, 4, 2, -4), image(eByte, other, 4, 2, 4)));
    EXPECT_REFUSAL(7, L"The destination image's rows overlap.",
                   copy(image(eByte, pixels, 4, 2, 4), image(eByte, other, 4, 2, 3)));
    EXPECT_REFUSAL(999, L"Unexpected exception.",
                   copy(image(eByte, pixels, INT_MAX, INT_MAX, INT_MAX), image(eDouble, nullptr, 0, 0, 0)));
    EXPECT_REFUSAL(999, L"Unexpected exception.",
                   copy(image(eByte, pixels, -2, 2, 2), image(eByte, nullptr, 0, 0, 0)));
    ExpectRefusal([&] { return CopyPixels(image(eByte, pixels, 2, 2, 2), nullptr); }, 2,
                  L"The destination image pointer was NULL.");
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
