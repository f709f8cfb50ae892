// CopyPixels: 36 pairs of types, and what is refused.
#include <Basics/PixelOperations.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/CapturedLog.h"
#include "support/Outputs.h"
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
        values.insert(values.end(), {Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()});
        // With each its sign and its neighbours.
        for (double const size :
             {0.0, 0.4, 0.5, 1.0, 2.5, 255.5, 300.2, 65535.5, 65536.5, 4194303.5, 8388607.5, 16777217.0,
              2147483520.0, 2147483647.0, 2147483648.0, 2147483648.5, 2147483649.0, 4294967296.0, 1e30})
            for (double const value : {size, -size})
                for (T const next : {static_cast<T>(value), Limits::lowest(), Limits::max()})
                    values.push_back(std::nextafter(static_cast<T>(value), next));
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
                    ExpectWrittenApart<To>(
                        shape,
                        [&](ImageAttributes* destination) {
                            return CopyPixels(source.Attributes(), destination);
                        },
                        [&](int x, int y) { return Model<To>(source.At(x, y)); });
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
    auto const from = [&](eTypeCode type, int width = 2, int height = 2, int stride = 2) {
        return Over(pixels, type, width, height, stride);
    };
    auto const to = [&](eTypeCode type, int width = 2, int height = 2, int stride = 2) {
        return Over(other, type, width, height, stride);
    };
    auto const without = [](eTypeCode type) { return Described(type, 2, 2, 2); };
    constexpr auto kSource = L"The source image type is not supported.";
    constexpr auto kDestination = L"The destination image type is not supported.";
    constexpr auto kInPlace = L"The destination image pointer pointed to the source.";
    constexpr auto kSize = L"The destination was not the same size as the source.";
    constexpr auto kSourceRows = L"The source image's rows overlap.";
    constexpr auto kUnexpected = L"Unexpected exception.";
    auto const copy = [](ImageAttributes source, ImageAttributes const& destination) {
        return LeavingOutput(CopyPixels)(destination, source);
    };
    EXPECT_REFUSAL(6, kSource, copy(without(eSByte), without(eSByte)));
    EXPECT_REFUSAL(6, kSource, copy(from(eUInt32), to(eByte)));
    EXPECT_REFUSAL(6, kDestination, copy(without(eByte), without(eUInt32)));
    EXPECT_REFUSAL(2, L"The source buffer pointer was NULL.", copy(without(eByte), without(eByte)));
    EXPECT_REFUSAL(2, kInPlace, copy(from(eByte), from(eByte, 3, 3, 3)));
    EXPECT_REFUSAL(7, kSize, copy(from(eByte), to(eByte, 3, 2, 3)));
    EXPECT_REFUSAL(7, kSize, copy(from(eByte), to(eDouble, 2, 3, 2)));
    EXPECT_REFUSAL(5, L"ippiCopy_8u_C1R() failed. The error code was -5",
                   copy(from(eByte, 0, 2, 2), to(eByte, 0, 2, 2)));
    EXPECT_REFUSAL(5, L"ippiCopy_32f_C1R() failed. The error code was -5",
                   copy(from(eSingle, 2, -2, 2), to(eSingle, 2, -2, 2)));
    EXPECT_REFUSAL(0, L"", copy(from(eByte, 0, 2, 2), to(eInt16, 0, 2, 2)));
    EXPECT_REFUSAL(0, L"", copy(from(eDouble, -2, -2, 2), to(eDouble, -2, -2, 2)));
    EXPECT_REFUSAL(7, kSourceRows, copy(from(eUInt16, 4, 2, 3), to(eByte, 4, 2, 4)));
    EXPECT_REFUSAL(7, kSourceRows, copy(Over(pixels + 32, eUInt16, 4, 2, -4), to(eByte, 4, 2, 4)));
    EXPECT_REFUSAL(7, L"The destination image's rows overlap.",
                   copy(from(eByte, 4, 2, 4), to(eByte, 4, 2, 3)));
    EXPECT_REFUSAL(999, kUnexpected, copy(from(eByte, INT_MAX, INT_MAX, INT_MAX), without(eDouble)));
    EXPECT_REFUSAL(999, kUnexpected, copy(from(eByte, -2, 2, 2), without(eByte)));
    EXPECT_REFUSAL(2, L"The destination image pointer was NULL.", CopyPixels(from(eByte), nullptr));
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
