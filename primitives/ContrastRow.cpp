// Rows of pixels beside their mean and deviation.
#include "primitives/ContrastRow.h"

#include <cmath>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/ContrastRow.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<double>;

// Whether a product and a sum can be made with one rounding.
constexpr bool kFuses = HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX2;

// Calls vector(x) for as many whole vectors as there are, and single(x) for the rest.
template <typename Vector, typename Single>
HWY_INLINE void ForEach(std::ptrdiff_t count, Vector const& vector, Single const& single) {
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(D()));
    std::ptrdiff_t x = 0;
    for (; x + lanes <= count; x += lanes) vector(x);
    for (; x < count; ++x) single(x);
}

// What comes next of an image that no cache holds: by itself it comes too late.
HWY_INLINE void SendFor(double const* pixels) { hwy::Prefetch(pixels + 256); }

void Square(double const* row, double* squares, std::ptrdiff_t count) {
    D const d;
    ForEach(
        count,
        [&](std::ptrdiff_t x) {
            auto const pixels = hn::LoadU(d, row + x);
            hn::StoreU(hn::Mul(pixels, pixels), d, squares + x);
        },
        [&](std::ptrdiff_t x) { squares[x] = row[x] * row[x]; });
}

// The sums wait for their additions; the quotients and roots of the next pixels are made meanwhile.
void Contrast(double const* row, double const* mean, double const* meanSquare, double* contrast,
              std::ptrdiff_t count, Sums& sums) {
    D const d;
    double values = sums.values;
    double squares = sums.squares;
    auto const add = [&](double value) {
        values += value;
        squares += value * value;
    };
    ForEach(
        count,
        [&](std::ptrdiff_t x) {
            SendFor(row + x);
            SendFor(mean + x);
            SendFor(meanSquare + x);
            auto const means = hn::LoadU(d, mean + x);
            auto const variance = hn::Sub(hn::LoadU(d, meanSquare + x), hn::Mul(means, means));
            auto const distance = hn::Sub(hn::LoadU(d, row + x), means);
            hn::StoreU(hn::Div(distance, hn::Sqrt(variance)), d, contrast + x);
            for (std::ptrdiff_t i = 0; i < static_cast<std::ptrdiff_t>(hn::Lanes(d)); ++i)
                add(contrast[x + i]);
        },
        [&](std::ptrdiff_t x) {
            contrast[x] = (row[x] - mean[x]) / std::sqrt(meanSquare[x] - mean[x] * mean[x]);
            add(contrast[x]);
        });
    sums = {values, squares};
}

// Divides many numbers by one, to the bit as division does, in less time where products and sums are fused. With
// the divisor's reciprocal rounded to nearest, the remainder of a quotient that is one of the two nearest is
// exact, and corrects it to the nearest (Markstein, 1990). The product with the reciprocal is not always one of
// the two, so it is corrected twice.
class Divider {
public:
    explicit Divider(double divisor)
        : divisor_(hn::Set(D(), divisor)),
          reciprocal_(hn::Set(D(), 1 / divisor)),
          divides_(!kFuses || !(divisor >= kLeast && divisor <= kMost)) {}

    HWY_INLINE hn::Vec<D> Quotients(hn::Vec<D> dividends) const {
        D const d;
        auto const sizes = hn::Abs(dividends);
        auto const serves = hn::And(hn::Ge(sizes, hn::Set(d, kLeast)), hn::Le(sizes, hn::Set(d, kMost)));
        if (divides_ || !hn::AllTrue(d, serves)) return hn::Div(dividends, divisor_);
        return Corrected(dividends, Corrected(dividends, hn::Mul(dividends, reciprocal_)));
    }

private:
    // Between these nothing overflows, and no remainder loses bits.
    static constexpr double kLeast = 1e-100, kMost = 1e100;

    HWY_INLINE hn::Vec<D> Corrected(hn::Vec<D> dividends, hn::Vec<D> quotients) const {
        return hn::MulAdd(hn::NegMulAdd(divisor_, quotients, dividends), reciprocal_, quotients);
    }

    hn::Vec<D> divisor_, reciprocal_;
    bool divides_;
};

void Standardize(double* row, std::ptrdiff_t count, double mean, double deviation) {
    D const d;
    auto const means = hn::Set(d, mean);
    Divider const divider(deviation);
    ForEach(
        count,
        [&](std::ptrdiff_t x) {
            SendFor(row + x);
            hn::StoreU(divider.Quotients(hn::Sub(hn::LoadU(d, row + x), means)), d, row + x);
        },
        [&](std::ptrdiff_t x) { row[x] = (row[x] - mean) / deviation; });
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

HWY_EXPORT(Square);
HWY_EXPORT(Contrast);
HWY_EXPORT(Standardize);

void SquareRow(double const* row, double* squares, std::ptrdiff_t count) {
    HWY_DYNAMIC_DISPATCH(Square)(row, squares, count);
}
void ContrastRow(double const* row, double const* mean, double const* meanSquare, double* contrast,
                 std::ptrdiff_t count, Sums& sums) {
    HWY_DYNAMIC_DISPATCH(Contrast)(row, mean, meanSquare, contrast, count, sums);
}
void StandardizeRow(double* row, std::ptrdiff_t count, double mean, double deviation) {
    HWY_DYNAMIC_DISPATCH(Standardize)(row, count, mean, deviation);
}

}  // namespace ZPA
#endif
