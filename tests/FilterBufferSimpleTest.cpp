// FilterBufferSimple: the causal sum in every element type, who owns its output, and refusals.
#include <Basics/LinearFilters.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "support/CapturedLog.h"
#include "support/LinearFilters.h"
#include "support/NoMemory.h"

namespace ZPA {
namespace {

using namespace Testing;

template <typename T> class FilterBufferSimpleOf : public testing::Test {};
using AllElements =
    testing::Types<char, unsigned char, short, unsigned short, int, unsigned int, float, double>;
TYPED_TEST_SUITE(FilterBufferSimpleOf, AllElements, );

template <typename T> BufferAttributes BufferOf(std::vector<T>& elements) {
    return {TypeCodeOf<T>, elements.data(), static_cast<int>(elements.size())};
}

template <typename T> std::vector<T> Causal(std::vector<T> const& input, std::vector<float> const& weights) {
    std::vector<T> output;
    for (std::size_t i = 0; i < input.size(); ++i) {
        long double sum = 0;
        for (std::size_t k = 0; k < weights.size() && k <= i; ++k)
            sum += static_cast<long double>(input[i - k]) * static_cast<long double>(weights[k]);
        if constexpr (std::is_integral_v<T>)
            output.push_back(static_cast<T>(std::abs(sum) < 2147483648.0L ? static_cast<int>(sum)
                                                                          : std::numeric_limits<int>::min()));
        else
            output.push_back(static_cast<T>(sum));
    }
    return output;
}

TYPED_TEST(FilterBufferSimpleOf, IsTheModelInEveryWayToTakeTheOutput) {
    for (int const taps : {0, 1, 2, 5, 40}) {
        SCOPED_TRACE(taps);
        auto const random = RandomImage<TypeParam>({33, 1, 33}, 1);
        std::vector<TypeParam> const input(random.Pixels(), random.Pixels() + 33);
        auto const some = RandomKernel<float>({taps, 1, taps}, 2, 3);
        std::vector<float> weights(some.Pixels(), some.Pixels() + taps);
        if (taps == 0) weights.reserve(1);
        auto const expected = Causal(input, weights);
        BufferAttributes const filter(eSingle, weights.data(), taps);

        auto inPlace = input, own = input, other = input;
        EXPECT_EQ(FilterBufferSimple(BufferOf(inPlace), filter, nullptr), SOLVANE_OK);
        EXPECT_EQ(inPlace, expected);
        BufferAttributes itself = BufferOf(own);
        EXPECT_EQ(FilterBufferSimple(BufferOf(own), filter, &itself), SOLVANE_OK);
        EXPECT_EQ(own, expected);
        EXPECT_EQ(itself.buffer, own.data());

        std::vector<TypeParam> longer(40, TypeParam(7));
        BufferAttributes output = BufferOf(longer);
        EXPECT_EQ(template_FilterBufferSimple<TypeParam>(BufferOf(other), filter, &output), SOLVANE_OK);
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), longer.begin()));
        EXPECT_TRUE(std::all_of(longer.begin() + 33, longer.end(), [](TypeParam each) { return each == 7; }));
        EXPECT_EQ(output.size, 40);
        EXPECT_EQ(other, input);

        // None; of another type; too short. The last two are freed, which the address sanitizer watches.
        for (BufferAttributes made :
             {BufferAttributes(eByte, nullptr, 99),
              BufferAttributes(TypeCodeOf<TypeParam> == eSingle ? eDouble : eSingle, new double[40], 40),
              BufferAttributes(TypeCodeOf<TypeParam>, new TypeParam[32], 32)}) {
            ASSERT_EQ(FilterBufferSimple(BufferOf(other), filter, &made), SOLVANE_OK);
            EXPECT_EQ(made.type, TypeCodeOf<TypeParam>);
            ASSERT_EQ(made.size, 33);
            EXPECT_TRUE(std::equal(expected.begin(), expected.end(), static_cast<TypeParam*>(made.buffer)));
            FreePixels(made.buffer);
        }
    }
}

TEST(FilterBufferSimple, ReadsTheInputBeforeItIsFreedAsAnOutput) {
    auto* const shared = new unsigned short[3]{100, 200, 300};
    float weights[] = {1, 0.5f};
    BufferAttributes output(eUInt16, shared, 2);
    ASSERT_EQ(FilterBufferSimple({eUInt16, shared, 3}, {eSingle, weights, 2}, &output), SOLVANE_OK);
    auto const* const made = static_cast<unsigned short*>(output.buffer);
    EXPECT_EQ(std::vector<int>(made, made + 3), (std::vector<int>{100, 250, 400}));
    FreePixels(output.buffer);
}

TEST(FilterBufferSimple, MakesRoomForTheInputsElements) {
    double input[3] = {1, 2, 3};
    float weights[] = {1};
    BufferAttributes made(eDouble, nullptr, 0);
    ASSERT_EQ(template_FilterBufferSimple<float>({eDouble, input, 3}, {eSingle, weights, 1}, &made),
              SOLVANE_OK);
    EXPECT_EQ(made.type, eDouble);
    std::copy_n(input, made.size, static_cast<double*>(made.buffer));  // which the address sanitizer watches
    FreePixels(made.buffer);
}

TEST(FilterBufferSimple, SumsInExtendedPrecision) {
    // Double precision would lose what is left here: of a sum, and of a product.
    struct Case {
        std::vector<float> weights;
        std::vector<double> input;
        double last;
    };
    Case cases[] = {{{1, 0x1p-60f, -1}, {1, 1, 1}, 0x1p-60},
                    {{1 + 0x1p-23f, -1}, {1 + 0x1p-23 + 0x1p-40, 1 + 0x1p-40}, 0x1p-63}};
    for (Case& each : cases) {
        if (std::numeric_limits<long double>::digits < 64) break;
        ASSERT_EQ(FilterBufferSimple(BufferOf(each.input), BufferOf(each.weights), nullptr), SOLVANE_OK);
        EXPECT_EQ(each.input.back(), each.last);
    }
    std::vector<int> lost{1};
    std::vector<float> none{std::numeric_limits<float>::quiet_NaN()};
    ASSERT_EQ(FilterBufferSimple(BufferOf(lost), BufferOf(none), nullptr), SOLVANE_OK);
    EXPECT_EQ(lost[0], INT_MIN);
}

TEST(FilterBufferSimple, RefusesInItsOrder) {
    static float elements[8], weights[2];
    BufferAttributes const input(eSingle, elements, 8), filter(eSingle, weights, 2);
    constexpr auto kMemory = L"FilterBufferSimple: Memory allocation failed for 2147483647 bytes.";
    EXPECT_REFUSAL(6, L"Unsupported image datatype.",
                   FilterBufferSimple({eUnknown, nullptr, 8}, filter, nullptr));
    EXPECT_REFUSAL(4, L"The input buffer is NULL.",
                   FilterBufferSimple({eByte, nullptr, 8}, {eSingle, nullptr, 2}, nullptr));
    EXPECT_REFUSAL(4, L"The filter buffer is NULL.",
                   FilterBufferSimple(input, {eSingle, nullptr, 2}, nullptr));
    EXPECT_REFUSAL(6, L"The filter was not a float filter.",
                   FilterBufferSimple(input, {eInt16, weights, 2}, nullptr));
    EXPECT_REFUSAL(1, kMemory, FilterBufferSimple({eSingle, elements, -1}, filter, nullptr));  // length
    ExpectRefusal([&] { return template_FilterBufferSimple<double>(input, filter, nullptr); }, 7,
                  L"The elements of the input buffer are too narrow.");
}

TEST(FilterBufferSimple, FreesTheOutputWithoutMemory) {
    std::vector<float> input{1, 2, 3}, weights{1};
    auto const before = input;
    BufferAttributes output(eByte, new unsigned char[9], 9);
    CapturedLog const log;
    NoMemory const none;
    EXPECT_EQ(FilterBufferSimple(BufferOf(input), BufferOf(weights), &output), SOLVANE_OUT_OF_MEMORY);
    EXPECT_EQ(log.Text(), L"FilterBufferSimple: Memory allocation failed for 12 bytes.");
    EXPECT_EQ(output.buffer, nullptr);
    EXPECT_EQ(output.type, eSingle);
    EXPECT_EQ(output.size, 3);
    EXPECT_EQ(FilterBufferSimple(BufferOf(input), BufferOf(weights), nullptr), SOLVANE_OUT_OF_MEMORY);
    EXPECT_EQ(input, before);
}

TEST(LinearFilters, LogTheirScope) {
    EXPECT_EQ(ScopesOf([] { (void)Filter2D({}, nullptr, nullptr, nullptr, {}, nullptr); }), L"Filter2D{}");
    EXPECT_EQ(ScopesOf([] {
                  (void)FilterBufferSimple({eByte, nullptr, 0}, {eByte, nullptr, 0}, nullptr);
              }),
              L"FilterBufferSimple{}");
}

}  // namespace
}  // namespace ZPA
