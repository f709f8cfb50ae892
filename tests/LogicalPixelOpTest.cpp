// Truth tables over images of all element types.
#include <Basics/LogicalPixelOp.h>
#include <gtest/gtest.h>

#include "support/CapturedLog.h"
#include "support/Outputs.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

template <typename Visit> void ForEachServedType(Visit const& visit) {
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

// Apart, and over the operands that have the result's elements.
template <typename T1, typename T2, typename T3>
void CheckAgainstModel(Shape shape, unsigned char (&table)[4], bool byEntry) {
    SCOPED_TRACE(testing::Message() << TypeCodeOf<T1> << " and " << TypeCodeOf<T2> << " to "
                                    << TypeCodeOf<T3> << ", " << shape);
    auto const a = NearZero<T1>(shape, 1);
    // With a gap behind its rows, or without: what has none may be taken as one row.
    int const stride = std::is_same_v<T1, T2> ? shape.width : shape.stride + 1;
    auto const b = NearZero<T2>({shape.width, shape.height, stride}, 2);
    auto first = a;
    auto second = b;
    auto const operation = byEntry ? LogicalPixelOp : template_LogicalPixelOp<T1, T2, T3>;
    auto const call = [&](ImageAttributes* output) {
        return operation(first.Attributes(), second.Attributes(), table, output);
    };
    auto const model = [&](int x, int y) { return table[(a.At(x, y) != T1(0)) + 2 * (b.At(x, y) != T2(0))]; };
    ExpectWrittenApart<T3>(shape, call, model);
    if constexpr (std::is_same_v<T1, T3>) ExpectWritten(first, call, model);
    first = a;
    if constexpr (std::is_same_v<T2, T3>) ExpectWritten(second, call, model);
}

TEST(LogicalPixelOp, IsWhatTheModelSaysForAllTypesOnEverySimdTarget) {
    ForEachSimdTarget([&] {
        unsigned seed = 0;
        ForEachServedType([&](auto second) {
            using T2 = decltype(second);
            ForEachServedType([&](auto output) {
                using T3 = decltype(output);
                // Longer than what is done at a time where widths differ.
                for (Shape const shape : {kShapes[seed % std::size(kShapes)], Shape{4100, 2, 4103}}) {
                    unsigned char table[] = {0, 255, 200, static_cast<unsigned char>(++seed)};
                    ForEachServedType(
                        [&](auto first) { CheckAgainstModel<decltype(first), T2, T3>(shape, table, true); });
                    ForEachType<signed char, float, double>(
                        [&](auto first) { CheckAgainstModel<decltype(first), T2, T3>(shape, table, false); });
                }
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
    constexpr auto kFirst = L"The first image type is not supported.";
    constexpr auto kSecond = L"The second image type is not supported.";
    constexpr auto kOutput = L"The output image type is not supported.";
    constexpr auto kNull = L"At least one of the two input image buffers is NULL.";
    constexpr auto kSizes = L"The two input images have different dimensions.";
    constexpr auto kOutputSize = L"The output image dimensions are different than the input.";
    constexpr auto kNoOutput = L"The output image pointer was NULL.";
    constexpr auto kNoTable = L"The truth table pointer was NULL.";
    auto const bytes = of(eByte), missing = Described(eByte, 4, 3, 5);
    ImageAttributes const empty;
    auto const call = [&](ImageAttributes const& output, ImageAttributes first, ImageAttributes second,
                          bool hasTable = true) {
        return LeavingOutput(LogicalPixelOp)(output, first, second, hasTable ? table : nullptr);
    };
    EXPECT_REFUSAL(2, kNoOutput, LogicalPixelOp(of(eSingle), bytes, table, nullptr));
    EXPECT_REFUSAL(6, kFirst, call(of(eSingle), of(eSByte), of(eSingle)));
    EXPECT_REFUSAL(6, kFirst, call(of(eSingle), of(eSingle), of(eSingle)));
    EXPECT_REFUSAL(6, kSecond, call(of(eSingle), missing, of(eDouble)));
    EXPECT_REFUSAL(6, kOutput, call(of(eSByte), missing, bytes));
    EXPECT_REFUSAL(4, kNull, call(empty, missing, of(eByte, 9)));
    EXPECT_REFUSAL(4, kNull, call(empty, of(eByte, 9), missing));
    EXPECT_REFUSAL(7, kSizes, call(of(eByte, 9), of(eByte, 3), bytes));
    EXPECT_REFUSAL(7, kSizes, call(of(eByte, 9), of(eByte, 4, 2), bytes));
    EXPECT_REFUSAL(7, kOutputSize, call(of(eByte, 4, 2), bytes, bytes, false));
    EXPECT_REFUSAL(2, kNoTable, call(empty, bytes, bytes, false));
    EXPECT_REFUSAL(7, L"The first image's rows overlap.", call(empty, of(eByte, 4, 3, 2), bytes));
    EXPECT_REFUSAL(7, L"The second image's rows overlap.", call(empty, bytes, of(eByte, 4, 3, -5)));
    EXPECT_REFUSAL(7, L"The output image's rows overlap.", call(of(eByte, 4, 3, 3), bytes, bytes));
    EXPECT_REFUSAL(999, L"Unexpected exception.", call(empty, of(eByte, 0, 0, 0), of(eByte, 0, 0, 0)));

    auto const core = template_LogicalPixelOp<unsigned char, short, int>;
    auto const byteCore = template_LogicalPixelOp<unsigned char, unsigned char, int>;
    EXPECT_REFUSAL(2, kNoOutput, core(of(eSingle), bytes, table, nullptr));
    EXPECT_REFUSAL(7, L"The elements of the second image are too narrow.",
                   LeavingOutput(core)(empty, bytes, bytes, table));
    EXPECT_REFUSAL(7, L"The elements of the output image are too narrow.",
                   LeavingOutput(byteCore)(of(eUInt16), bytes, bytes, table));
}

}  // namespace
}  // namespace ZPA
