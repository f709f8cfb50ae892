// Sums, differences, products, quotients and absolute values of images.
#include <Basics/Arithmetic.h>
#include <gtest/gtest.h>

#include <functional>

#include "support/CapturedLog.h"
#include "support/DivisionFault.h"
#include "support/Outputs.h"
#include "support/SimdTargets.h"

namespace ZPA {
namespace {

using namespace Testing;

template <typename Visit> void ForEachElementType(Visit const& visit) {
    ForEachType<signed char, unsigned char, short, unsigned short, int, unsigned int, float, double>(visit);
}

using WithImage = SOLVANE_RETURNCODE (*)(ImageAttributes, ImageAttributes, ImageAttributes*);
using WithConstant = SOLVANE_RETURNCODE (*)(ImageAttributes, void*, ImageAttributes*);

struct Operation {
    char name;
    WithImage image;
    WithConstant constant;
};
Operation const kOperations[] = {{'+', Add, AddC}, {'-', Sub, SubC}, {'*', MulP, MulC}, {'/', DivP, DivC}};

// The rule in its plainest form: floating point in its own type, integers exactly and then their low bits.
template <typename T> T Model(char operation, T a, T b) {
    if constexpr (std::is_floating_point_v<T>) {
        return operation == '+' ? a + b : operation == '-' ? a - b : operation == '*' ? a * b : a / b;
    } else {
        auto const x = static_cast<std::int64_t>(a), y = static_cast<std::int64_t>(b);
        auto const left = static_cast<std::uint64_t>(x), right = static_cast<std::uint64_t>(y);
        return static_cast<T>(operation == '+'   ? left + right
                              : operation == '-' ? left - right
                              : operation == '*' ? left * right
                                                 : static_cast<std::uint64_t>(x / y));
    }
}
template <typename T> T SaturatedSum(T a, T b) {
    using Limits = std::numeric_limits<T>;
    return static_cast<T>(std::clamp<int>(a + b, Limits::min(), Limits::max()));
}
template <typename T> T ModelOfImages(char operation, T a, T b) {
    constexpr bool kSaturates = std::is_same_v<T, unsigned char> || sizeof(T) == 2;
    if constexpr (kSaturates)
        if (operation == '+') return SaturatedSum(a, b);
    return Model(operation, a, b);
}

// Random, with the limits, their neighbours, 0 and -1 among them, and infinity where there is one.
template <typename T> TestImage<T> Hard(Shape shape, unsigned seed) {
    using Limits = std::numeric_limits<T>;
    T const least = Limits::lowest(), most = Limits::max();
    T const limits[] = {least, most, static_cast<T>(least + 1), static_cast<T>(most - 1), Limits::infinity()};
    auto image = RandomImage<T>(shape, seed);
    std::mt19937 random(seed);
    for (std::size_t i = 0; i < image.Size(); ++i) {
        T const small = static_cast<T>(static_cast<int>(random() % 5) - 1);
        T const others[] = {small, limits[random() % 5]};
        if (random() % 2) image.Pixels()[i] = others[random() % 2];
    }
    return image;
}
template <typename T> TestImage<T> Divisors(Shape shape, unsigned seed) {
    auto image = Hard<T>(shape, seed);
    if constexpr (std::is_integral_v<T>)
        for (std::size_t i = 0; i < image.Size(); ++i)
            if (image.Pixels()[i] == 0) image.Pixels()[i] = 1;
    return image;
}

// The call writes the model's pixels to an output, and over its operand `image` without one.
template <typename T, typename Call, typename Model>
void ExpectWrittenApartAndInPlace(TestImage<T>& image, Call const& call, Model const& model) {
    ExpectWrittenApart<T>(image.shape, call, model);
    ExpectWritten(
        image, [&](ImageAttributes*) { return call(nullptr); }, model);
}

TEST(Arithmetic, OfTwoImagesIsWhatTheModelSaysOnEverySimdTarget) {
    ForEachSimdTarget([&] {
        ForEachElementType([&](auto element) {
            using T = decltype(element);
            unsigned seed = 0;
            for (Shape const shape : kShapes)
                for (Operation const& operation : kOperations) {
                    SCOPED_TRACE(testing::Message()
                                 << operation.name << " of type " << TypeCodeOf<T> << ", " << shape);
                    auto const a = Hard<T>(shape, ++seed);
                    auto const b = Divisors<T>({shape.width, shape.height, shape.stride + 1}, ++seed);
                    auto first = a, second = b;
                    auto const model = [&](int x, int y) {
                        return ModelOfImages(operation.name, a.At(x, y), b.At(x, y));
                    };
                    auto const call = [&](ImageAttributes* output) {
                        return operation.image(first.Attributes(), second.Attributes(), output);
                    };
                    // Of floats with an output it is a matrix product.
                    if (std::is_integral_v<T> || operation.name != '*') {
                        ExpectWrittenApart<T>(shape, call, model);
                        ASSERT_TRUE(second == b);
                        ExpectWritten(second, call, model);
                        ASSERT_TRUE(first == a);
                        second = b;
                    }
                    ExpectWritten(
                        first, [&](ImageAttributes*) { return call(nullptr); }, model);
                    ASSERT_TRUE(second == b);
                }
        });
    });
}

TEST(Arithmetic, WithAConstantIsWhatTheModelSaysOnEverySimdTarget) {
    ForEachSimdTarget([&] {
        ForEachElementType([&](auto element) {
            using T = decltype(element);
            auto constants = Divisors<T>({16, 1, 16}, 99);
            unsigned seed = 0;
            for (Shape const shape : kShapes)
                for (Operation const& operation : kOperations) {
                    T constant = constants.At(static_cast<int>(seed % 16), 0);
                    SCOPED_TRACE(testing::Message() << operation.name << " " << +constant << " of type "
                                                    << TypeCodeOf<T> << ", " << shape);
                    auto image = Hard<T>(shape, ++seed);
                    ExpectWrittenApartAndInPlace(
                        image,
                        [&](ImageAttributes* output) {
                            return operation.constant(image.Attributes(), &constant, output);
                        },
                        [&](int x, int y) { return Model(operation.name, image.At(x, y), constant); });
                }
        });
    });
}

TEST(Arithmetic, DividesWhereQuotientsAreNearestToTheNextInteger) {
    ForEachType<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t>(
        [](auto element) {
            using T = decltype(element);
            // A divisor for each row, and next to each other the neighbours of its multiples.
            Shape const shape{192, 2500, 192};
            TestImage<T> dividends(shape), divisors(shape);
            std::mt19937 random(7);
            for (int y = 0; y < shape.height; ++y) {
                T const any = static_cast<T>(sizeof(T) == 1 || y > 40 ? random()
                                                                      : 1640U * static_cast<unsigned>(y) - 7);
                T const divisor = any == 0 ? T{1} : any;
                for (int x = 0; x < shape.width; x += 3) {
                    auto const n = static_cast<std::int64_t>(static_cast<T>(random()));
                    for (int i = 0; i < 3; ++i) {
                        dividends.At(x + i, y) = static_cast<T>(n / divisor * divisor + i - 1);
                        divisors.At(x + i, y) = divisor;
                    }
                }
            }
            ForEachSimdTarget([&] {
                ExpectWrittenApart<T>(
                    shape,
                    [&](ImageAttributes* output) {
                        return DivP(dividends.Attributes(), divisors.Attributes(), output);
                    },
                    [&](int x, int y) { return Model('/', dividends.At(x, y), divisors.At(x, y)); });
                // All dividends by each of some divisors, which takes the way of constants.
                for (int row = 0; row < shape.height; row += shape.height / 23)
                    ExpectWrittenApart<T>(
                        shape,
                        [&](ImageAttributes* output) {
                            return DivC(dividends.Attributes(), &divisors.At(0, row), output);
                        },
                        [&](int x, int y) { return Model('/', dividends.At(x, y), divisors.At(0, row)); });
            });
        });
}

template <typename T> class IntegerDivisionDeathTest : public testing::Test {};
using Integers = testing::Types<signed char, unsigned char, short, unsigned short, int, unsigned int>;
TYPED_TEST_SUITE(IntegerDivisionDeathTest, Integers, );

TYPED_TEST(IntegerDivisionDeathTest, ByZeroFaults) {
    struct Place {
        Shape shape;
        int x, y;
    };
    // Alone, first, in the middle, last, in a short row.
    Place const places[] = {{{1, 1, 1}, 0, 0},
                            {{200, 1, 200}, 0, 0},
                            {{200, 3, 200}, 101, 1},
                            {{201, 2, 205}, 200, 1},
                            {{5, 4, 9}, 3, 2}};
    for (Place const& place : places) {
        SCOPED_TRACE(place.shape);
        auto first = Hard<TypeParam>(place.shape, 1);
        auto second = Divisors<TypeParam>(place.shape, 2);
        second.At(place.x, place.y) = 0;
        EXPECT_EXIT((void)DivP(first.Attributes(), second.Attributes(), nullptr), DivisionFaulted, "");
        TypeParam zero = 0;
        EXPECT_EXIT((void)DivC(first.Attributes(), &zero, nullptr), DivisionFaulted, "");
    }
    // Padding is not divided, and nothing by nothing is nothing.
    auto first = Hard<TypeParam>({100, 4, 130}, 3);
    TestImage<TypeParam> second({100, 4, 131});
    for (std::size_t i = 0; i < second.Size(); ++i) second.Pixels()[i] = i % 131 < 100;
    EXPECT_EQ(DivP(first.Attributes(), second.Attributes(), nullptr), SOLVANE_OK);
    TypeParam zero = 0;
    ImageAttributes none = first.Attributes();
    none.width = 0;
    EXPECT_EQ(DivC(none, &zero, nullptr), SOLVANE_OK);
}

TEST(Abs, DropsTheSignOnEverySimdTarget) {
    ForEachType<std::int8_t, std::int16_t, std::int32_t, float, double>([](auto element) {
        using T = decltype(element);
        ForEachSimdTarget([&] {
            for (Shape const shape : kShapes) {
                SCOPED_TRACE(testing::Message() << "type " << TypeCodeOf<T> << ", " << shape);
                auto image = Hard<T>(shape, 5);
                if constexpr (std::is_floating_point_v<T>)
                    image.At(0, 0) = -std::numeric_limits<T>::quiet_NaN();
                ExpectWrittenApartAndInPlace(
                    image, [&](ImageAttributes* output) { return Abs(image.Attributes(), output); },
                    [&](int x, int y) {
                        T const value = image.At(x, y);
                        if constexpr (std::is_floating_point_v<T>)
                            return std::copysign(value, T(1));
                        else
                            return std::abs(std::int64_t{value});
                    });
            }
        });
    });
}

TEST(Abs, CopiesUnsignedPixelsAsOneBlock) {
    ForEachType<std::uint8_t, std::uint16_t, std::uint32_t>([](auto element) {
        using T = decltype(element);
        auto image = RandomImage<T>({5, 4, 8}, 1);
        auto const before = image;
        EXPECT_EQ(Abs(image.Attributes(), nullptr), SOLVANE_OK);
        TestImage<T> copy({5, 4, 6});
        auto expected = copy;
        std::memcpy(expected.Pixels(), image.Pixels(), 20 * sizeof(T));
        ImageAttributes output = copy.Attributes();
        EXPECT_EQ(Abs(image.Attributes(), &output), SOLVANE_OK);
        EXPECT_TRUE(copy == expected);
        EXPECT_TRUE(image == before);
    });
}

TEST(Arithmetic, CreatesTheOutputFromTheFirstOperand) {
    auto first = RandomImage<unsigned short>({5, 3, 8}, 1);
    auto second = RandomImage<unsigned short>({5, 3, 6}, 2);
    unsigned short constant = 3;
    std::function<SOLVANE_RETURNCODE(ImageAttributes*)> const calls[] = {
        [&](ImageAttributes* output) { return Add(first.Attributes(12, 3), second.Attributes(), output); },
        [&](ImageAttributes* output) { return Sub(first.Attributes(12, 3), second.Attributes(), output); },
        [&](ImageAttributes* output) { return AddC(first.Attributes(12, 3), &constant, output); },
        [&](ImageAttributes* output) { return Abs(first.Attributes(12, 3), output); },
    };
    for (auto const& call : calls) {
        ImageAttributes output;
        ASSERT_EQ(call(&output), SOLVANE_OK);
        EXPECT_EQ(Description(output), Description({eUInt16, nullptr, 5, 3, 8, 12, 3}));
        FreePixels(output.buffer);
    }
}

}  // namespace
}  // namespace ZPA
