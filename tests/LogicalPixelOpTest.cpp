// Truth tables over images of all element types.
#include <Basics/LogicalPixelOp.h>
#include <gtest/gtest.h>

#include <functional>

#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

template <typename Visit> void ForEachFirst(Visit const& visit) {
    ForEachType<signed char, unsigned char, short, unsigned short, int, unsigned int, float, double>(visit);
}
template <typename Visit> void ForEachOther(Visit const& visit) {
    ForEachType<unsigned char, short, unsigned short, int, unsigned int>(visit);
}

// Half of it zero, the rest what is hard to tell from zero.
template <typename T> TestImage<T> NearZero(Shape shape, unsigned seed) {
    TestImage<T> image(shape);
    std::mt19937 random(seed);
    std::vector<T> values;
    if constexpr (std::is_floating_point_v<T>) {
        using Limits = std::numeric_limits<T>;
        values = {
            T(-0.0), Limits::denorm_min(), -Limits::denorm_min(), Limits::quiet_NaN(), Limits::infinity(),
            T(0.1)};
    } else {
        for (std::size_t bit = 0; bit < 8 * sizeof(T); ++bit) values.push_back(static_cast<T>(T(1) << bit));
    }
    for (std::size_t i = 0; i < image.Size(); ++i)
        image.Pixels()[i] = random() % 2 ? T(0) : values[random() % values.size()];
    return image;
}

template <typename T1, typename T2, typename T3>
void CheckAgainstModel(Shape shape, unsigned char (&table)[4], bool byEntry) {
    SCOPED_TRACE(testing::Message() << TypeCodeOf<T1> << " and " << TypeCodeOf<T2> << " to "
                                    << TypeCodeOf<T3> << ", " << shape);
    auto first = NearZero<T1>(shape, 1);
    auto second = NearZero<T2>({shape.width, shape.height, shape.stride + 1}, 2);
    TestImage<T3> result({shape.width, shape.height, shape.width + 3});
    auto expected = result;
    expected.Fill(
        [&](int x, int y) { return table[(first.At(x, y) != T1(0)) + 2 * (second.At(x, y) != T2(0))]; });
    ImageAttributes output = result.Attributes();
    auto const operation = byEntry ? LogicalPixelOp : template_LogicalPixelOp<T1, T2, T3>;
    ASSERT_EQ(operation(first.Attributes(), second.Attributes(), table, &output), SOLVANE_OK);
    ASSERT_TRUE(result == expected);
}

TEST(LogicalPixelOp, IsWhatTheModelSaysForAllTypesOnEverySimdTarget) {
    ForEachSimdTarget([&] {
        unsigned seed = 0;
        ForEachFirst([&](auto first) {
            ForEachOther([&](auto second) {
                ForEachOther([&](auto output) {
                    using T1 = decltype(first);
                    unsigned char table[] = {0, 255, 200, static_cast<unsigned char>(++seed)};
                    constexpr bool kServedByEntry = TypeCodeOf<T1> >= eByte && TypeCodeOf<T1> <= eUInt32;
                    // Longer than what is done at a time where widths differ.
                    Shape const shapes[] = {kShapes[seed % std::size(kShapes)], {4100, 2, 4103}};
                    for (Shape const shape : shapes)
                        CheckAgainstModel<T1, decltype(second), decltype(output)>(shape, table,
                                                                                  kServedByEntry);
                });
            });
        });
        unsigned char table[] = {9, 8, 7, 6};
        for (Shape const shape : kShapes) {
            CheckAgainstModel<unsigned char, unsigned char, unsigned char>(shape, table, false);
            CheckAgainstModel<short, short, short>(shape, table, false);
            CheckAgainstModel<int, unsigned int, int>(shape, table, false);
            CheckAgainstModel<float, unsigned char, unsigned short>(shape, table, false);
        }
    });
}

TEST(LogicalPixelOp, WorksInPlace) {
    unsigned char table[] = {1, 0, 0, 2};
    auto const check = [&](auto element, bool overSecond) {
        using T = decltype(element);
        auto first = NearZero<T>({131, 3, 140}, 1), second = NearZero<T>({131, 3, 140}, 2);
        auto expected = overSecond ? second : first;
        expected.Fill(
            [&](int x, int y) { return table[(first.At(x, y) != 0) + 2 * (second.At(x, y) != 0)]; });
        ImageAttributes output = overSecond ? second.Attributes() : first.Attributes();
        ASSERT_EQ(LogicalPixelOp(first.Attributes(), second.Attributes(), table, &output), SOLVANE_OK);
        EXPECT_TRUE((overSecond ? second : first) == expected);
    };
    for (bool const overSecond : {false, true}) {
        ForEachType<std::uint8_t, std::uint16_t, std::int32_t>(
            [&](auto element) { check(element, overSecond); });
    }
}

TEST(LogicalPixelOp, CreatesTheOutput) {
    auto first = NearZero<unsigned short>({5, 4, 9}, 1);
    auto second = NearZero<unsigned char>({5, 4, 6}, 2);
    unsigned char table[] = {7, 7, 7, 7};
    for (eTypeCode const asked : {eUnknown, eByte, eInt32}) {
        ImageAttributes made;
        made.type = asked;
        ASSERT_EQ(LogicalPixelOp(first.Attributes(12, 3), second.Attributes(), table, &made), SOLVANE_OK);
        eTypeCode const type = asked == eUnknown ? eUInt16 : asked;
        EXPECT_EQ(Description(made), Description({type, nullptr, 5, 4, 5, 8 * SizeOfTypeCode(type), 3}));
        for (int i = 0; asked == eInt32 && i < 20; ++i) EXPECT_EQ(static_cast<int const*>(made.buffer)[i], 7);
        FreePixels(made.buffer);
    }
    // Pixels without a type are those of the first image.
    TestImage<unsigned short> result({5, 4, 5});
    ImageAttributes output = result.Attributes();
    output.type = eUnknown;
    ASSERT_EQ(LogicalPixelOp(first.Attributes(), second.Attributes(), table, &output), SOLVANE_OK);
    EXPECT_EQ(output.type, eUnknown);
    EXPECT_EQ(result.At(4, 3), 7);
}

TEST(LogicalPixelOp, RefusesInItsOrder) {
    alignas(8) static unsigned char pixels[256];
    static unsigned char table[4];
    auto const of = [&](eTypeCode type, int width = 4, int height = 3, int stride = 5) {
        return ImageAttributes(type, pixels, width, height, stride, 16, 0);
    };
    auto const byEntry = [](ImageAttributes first, ImageAttributes second, unsigned char* entries) {
        return [=](ImageAttributes* output) { return LogicalPixelOp(first, second, entries, output); };
    };
    constexpr auto kFirst = L"The first image type is not supported.";
    constexpr auto kSecond = L"The second image type is not supported.";
    constexpr auto kOutput = L"The output image type is not supported.";
    constexpr auto kNull = L"At least one of the two input image buffers is NULL.";
    constexpr auto kSizes = L"The two input images have different dimensions.";
    constexpr auto kOutputSize = L"The output image dimensions are different than the input.";
    constexpr auto kNoOutput = L"The output image pointer was NULL.";
    auto const bytes = of(eByte), missing = Described(eByte, 4, 3, 5);
    ImageAttributes const empty;
    struct Case {
        char const* name;
        std::function<SOLVANE_RETURNCODE(ImageAttributes*)> call;
        ImageAttributes output;
        int code;
        std::wstring message;
    };
    Case const cases[] = {
        {"null output", [&](ImageAttributes*) { return LogicalPixelOp(of(eSingle), bytes, table, nullptr); },
         empty, 2, kNoOutput},
        {"first type 5", byEntry(of(eSByte), of(eSingle), table), of(eSingle), 6, kFirst},
        {"first type 13", byEntry(of(eSingle), of(eSingle), table), of(eSingle), 6, kFirst},
        {"second type", byEntry(missing, of(eDouble), table), of(eSingle), 6, kSecond},
        {"output type", byEntry(missing, bytes, table), of(eSByte), 6, kOutput},
        {"first null", byEntry(missing, of(eByte, 9), table), empty, 4, kNull},
        {"second null", byEntry(of(eByte, 9), missing, table), empty, 4, kNull},
        {"width", byEntry(of(eByte, 3), bytes, table), of(eByte, 9), 7, kSizes},
        {"height", byEntry(of(eByte, 4, 2), bytes, table), of(eByte, 9), 7, kSizes},
        {"output size", byEntry(bytes, bytes, nullptr), of(eByte, 4, 2), 7, kOutputSize},
        {"table", byEntry(bytes, bytes, nullptr), empty, 2, L"The truth table pointer was NULL."},
        {"first rows", byEntry(of(eByte, 4, 3, 2), bytes, table), empty, 7,
         L"The first image's rows overlap."},
        {"second rows", byEntry(bytes, of(eByte, 4, 3, -5), table), empty, 7,
         L"The second image's rows overlap."},
        {"output rows", byEntry(bytes, bytes, table), of(eByte, 4, 3, 3), 7,
         L"The output image's rows overlap."},
        {"no pixels", byEntry(of(eByte, 0, 0, 0), of(eByte, 0, 0, 0), table), empty, 999,
         L"Unexpected exception."},
        {"null output of a template",
         [&](ImageAttributes*) {
             return template_LogicalPixelOp<float, short, int>(of(eSingle), bytes, table, nullptr);
         },
         empty, 2, kNoOutput},
        {"elements of a template",
         [&](ImageAttributes* output) {
             return template_LogicalPixelOp<unsigned char, short, int>(bytes, bytes, table, output);
         },
         empty, 7, L"The elements of the second image are too narrow."},
        {"output elements of a template",
         [&](ImageAttributes* output) {
             return template_LogicalPixelOp<unsigned char, unsigned char, int>(bytes, bytes, table, output);
         },
         of(eUInt16), 7, L"The elements of the output image are too narrow."},
    };
    for (Case const& each : cases) {
        SCOPED_TRACE(each.name);
        ImageAttributes output = each.output;
        ExpectRefusal([&] { return each.call(&output); }, each.code, each.message);
        EXPECT_EQ(std::memcmp(&output, &each.output, sizeof output), 0);
    }
}

}  // namespace
}  // namespace ZPA
