// Means of 16-bit images over a sliding window: column sums are carried down the image, and added up along
// the row a vector at a time. Integers may be added in any order.
#include "primitives/ScanMean.h"

#include <cstring>
#include <limits>
#include <type_traits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/ScanMean.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<std::int32_t>;
using V = hn::Vec<D>;
constexpr std::ptrdiff_t kLanes = hn::MaxLanes(D());

// Adds a row of pixels to the column sums, and subtracts another one. `soon` is the row that will enter next:
// the processor does not look ahead as far as that by itself.
template <bool kEntering, bool kLeaving, typename T>
void Slide(std::int32_t* sums, T const* entering, T const* leaving, T const* soon, std::ptrdiff_t width) {
    D const d;
    hn::Rebind<T, D> const narrow;
    std::ptrdiff_t x = 0;
    for (; x + kLanes <= width; x += kLanes) {
        if (kEntering) hwy::Prefetch(soon + x);
        V sum = hn::LoadU(d, sums + x);
        if (kEntering) sum = hn::Add(sum, hn::PromoteTo(d, hn::LoadU(narrow, entering + x)));
        if (kLeaving) sum = hn::Sub(sum, hn::PromoteTo(d, hn::LoadU(narrow, leaving + x)));
        hn::StoreU(sum, d, sums + x);
    }
    for (; x < width; ++x) {
        auto sum = static_cast<std::uint32_t>(sums[x]);
        if (kEntering) sum += static_cast<std::uint32_t>(entering[x]);
        if (kLeaving) sum -= static_cast<std::uint32_t>(leaving[x]);
        sums[x] = static_cast<std::int32_t>(sum);
    }
}

#if HWY_TARGET == HWY_SCALAR

void FillReciprocals(double*, std::ptrdiff_t, std::ptrdiff_t) {}

template <bool kWrapping, typename T>
void MeanRow(std::int32_t const* sums, double const*, T* output, std::ptrdiff_t width, std::ptrdiff_t half,
             std::ptrdiff_t rows) {
    std::int64_t sum = 0;
    for (std::ptrdiff_t x = 0; x < half; ++x) sum += sums[x];
    for (std::ptrdiff_t x = 0; x < width; ++x) {
        sum += std::int64_t{sums[x + half]} - sums[x - half - 1];
        if (kWrapping) sum = static_cast<std::int32_t>(static_cast<std::uint32_t>(sum));
        output[x] = static_cast<T>(sum / (CountInside(x, half, width) * rows));
    }
}

#else

// Which lane each lane takes in a step across blocks of four lanes.
struct Lanes {
    constexpr Lanes() : four(), eight(), lastPair(), last() {
        for (int lane = 0; lane < kLanes; ++lane) {
            // In the upper half of eight, or of sixteen, lanes: the last one of the lower half.
            four[lane] = lane & 4 ? (lane & ~3) - 1 : 0;
            eight[lane] = lane & 8 ? (lane & ~7) - 1 : 0;
            lastPair[lane] = static_cast<std::int32_t>(kLanes) - 2 + lane % 2;
            last[lane] = static_cast<std::int32_t>(kLanes) - 1;
        }
    }
    alignas(64) std::int32_t four[kLanes];
    alignas(64) std::int32_t eight[kLanes];
    alignas(64) std::int32_t lastPair[kLanes];
    alignas(64) std::int32_t last[kLanes];
};
constexpr Lanes kTake;

// One divided by the number of columns in the window. For each vector of columns the even ones come first, as
// the sums of even and of odd columns are divided apart.
void FillReciprocals(double* reciprocals, std::ptrdiff_t width, std::ptrdiff_t half) {
    for (std::ptrdiff_t x = 0; x < width; ++x) {
        std::ptrdiff_t const lane = x % kLanes;
        reciprocals[x - lane + lane / 2 + lane % 2 * (kLanes / 2)] =
            1.0 / static_cast<double>(CountInside(x, half, width));
    }
}

// The arithmetic is that of doubles, since they hold all sums, and two lanes make one:
//
// A 32-bit number n, with its sign bit flipped, in the low half of 2^52 is the double 2^52 + 2^31 + n.
//
// The quotient of a sum S and a count C is S times the reciprocals of C's factors. It is below 2^17, so it
// is off by less than 2^-34. Added to kBase, whose last bit is worth 2^-32, its whole part comes to stand in
// the upper half of the double. It is the right one if 2^-32 is added as well: that lifts a whole quotient
// above the error, but does not make up the 1 / C that another one is short of the next whole number, as
// long as C is at most 2^31. Only wrapping sums come with a larger C; they are at most 2^31 in size, so
// that their quotients stay short of 1 by nearly 2^-31. To a negative quotient 1 - 2^-32 is added instead,
// which truncates it toward zero.
template <bool kWrapping, typename T>
void MeanRow(std::int32_t const* columnSums, double const* reciprocals, T* output, std::ptrdiff_t width,
             std::ptrdiff_t half, std::ptrdiff_t rows) {
    constexpr bool kSigned = !kWrapping && std::is_signed<T>::value;  // wrapping sums are made positive
    D const d;
    hn::RebindToUnsigned<D> const bits;
    hn::RepartitionToWide<decltype(bits)> const pairs;
    hn::RebindToFloat<decltype(pairs)> const real;
    hn::Rebind<std::uint16_t, D> const narrow;

    // Running sums over the lanes.
    auto const four = hn::SetTableIndices(d, kTake.four);
    auto const eight = hn::SetTableIndices(d, kTake.eight);
    auto const inUpperFour = hn::Gt(hn::And(hn::Iota(d, 0), hn::Set(d, 4)), hn::Zero(d));
    auto const inUpperEight = hn::Gt(hn::And(hn::Iota(d, 0), hn::Set(d, 8)), hn::Zero(d));
    auto const scan = [&](V v) {
        v = hn::Add(v, hn::ShiftLeftLanes<1>(v));
        v = hn::Add(v, hn::ShiftLeftLanes<2>(v));
        if (kLanes > 4) v = hn::Add(v, hn::IfThenElseZero(inUpperFour, hn::TableLookupLanes(v, four)));
        if (kLanes > 8) v = hn::Add(v, hn::IfThenElseZero(inUpperEight, hn::TableLookupLanes(v, eight)));
        return v;
    };

    // Even and odd lanes as doubles, too large by kBias.
    constexpr double kBias = 4503599627370496.0 + (kWrapping ? 0.0 : 2147483648.0);
    auto const bias = hn::Set(real, kBias);
    auto const low = hn::Set(pairs, 0xFFFFFFFFU);
    auto const exponent = hn::Set(pairs, 0x4330000000000000U + (kWrapping ? 0U : 0x80000000U));
    auto const even = [&](V v) {
        return hn::BitCast(real, hn::Xor(hn::And(hn::BitCast(pairs, v), low), exponent));
    };
    auto const odd = [&](V v) {
        return hn::BitCast(real, hn::Xor(hn::ShiftRight<32>(hn::BitCast(pairs, v)), exponent));
    };

    constexpr double kBase = 1572864.0;  // 2^20 + 2^19, so that negative quotients stay in its binary order
    constexpr double kTiny = 1.0 / 4294967296.0;
    auto const unit = hn::Set(real, kBase + (kSigned ? 0.5 : kTiny));
    auto const nearHalf = hn::Set(real, 0.5 - kTiny);
    auto const quotient = [&](auto sum, auto reciprocal) {
        if constexpr (kSigned) {
            auto const q = hn::Mul(sum, reciprocal);
            return hn::BitCast(pairs, hn::Add(hn::Sub(q, hn::CopySign(nearHalf, q)), unit));
        } else {
            return hn::BitCast(pairs, hn::MulAdd(sum, reciprocal, unit));
        }
    };

    // The sum over the window that is centred before the first column: in 32 bits, or as a double less kBias.
    V wrapped = hn::Zero(d);
    auto exact = hn::Zero(real);
    for (std::ptrdiff_t x = 0; x < half;) {
        V part = hn::Zero(d);
        for (int i = 0; i < 16 && x < half; ++i, x += kLanes) {
            V const next = hn::LoadU(d, columnSums + x);
            auto const wanted = hn::FirstN(d, static_cast<std::size_t>(half - x));
            part = hn::Add(part, x + kLanes <= half ? next : hn::IfThenElseZero(wanted, next));
        }
        if (kWrapping)
            wrapped = hn::Add(wrapped, part);
        else
            exact = hn::Add(exact, hn::Add(hn::Sub(even(part), bias), hn::Sub(odd(part), bias)));
    }
    wrapped = hn::SumOfLanes(d, wrapped);
    exact = hn::Sub(hn::SumOfLanes(real, exact), bias);

    auto const last = hn::SetTableIndices(d, kWrapping ? kTake.last : kTake.lastPair);
    auto const means = [&](std::ptrdiff_t x, auto evenReciprocal, auto oddReciprocal) {
        V const change =
            scan(hn::Sub(hn::LoadU(d, columnSums + x + half), hn::LoadU(d, columnSums + x - half - 1)));
        V sums = wrapped;
        auto evens = exact, odds = exact;
        if constexpr (kWrapping) {
            sums = hn::Add(change, wrapped);
            wrapped = hn::Add(wrapped, hn::TableLookupLanes(change, last));
            V const sizes = hn::Abs(sums);
            evens = hn::Sub(even(sizes), bias);
            odds = hn::Sub(odd(sizes), bias);
        } else {
            evens = hn::Add(even(change), exact);
            odds = hn::Add(odd(change), exact);
            exact = hn::Sub(hn::BitCast(real, hn::TableLookupLanes(hn::BitCast(d, odds), last)), bias);
        }
        auto const upperOfEvens = hn::ShiftRight<32>(quotient(evens, evenReciprocal));
        auto const upperOfOdds = hn::AndNot(low, quotient(odds, oddReciprocal));
        V result = hn::BitCast(d, hn::Or(upperOfOdds, upperOfEvens));
        if constexpr (kWrapping)
            result = hn::IfThenElse(hn::Lt(sums, hn::Zero(d)), hn::Sub(hn::Zero(d), result), result);
        return hn::TruncateTo(narrow, hn::BitCast(bits, result));
    };

    auto const perRow = hn::Set(real, 1.0 / static_cast<double>(rows));
    auto const whole = hn::Mul(hn::Set(real, 1.0 / static_cast<double>(2 * half + 1)), perRow);
    auto const meansAtEdge = [&](std::ptrdiff_t x) {
        double const* const of = reciprocals + x;
        return means(x, hn::Mul(hn::LoadU(real, of), perRow),
                     hn::Mul(hn::LoadU(real, of + kLanes / 2), perRow));
    };
    auto* const out = reinterpret_cast<std::uint16_t*>(output);
    std::ptrdiff_t x = 0;
    for (; x < half && x + kLanes <= width; x += kLanes) hn::StoreU(meansAtEdge(x), narrow, out + x);
    for (; x + kLanes <= width - half; x += kLanes) hn::StoreU(means(x, whole, whole), narrow, out + x);
    for (; x + kLanes <= width; x += kLanes) hn::StoreU(meansAtEdge(x), narrow, out + x);
    if (x < width) {
        HWY_ALIGN std::uint16_t rest[kLanes];
        hn::Store(meansAtEdge(x), narrow, rest);
        std::memcpy(out + x, rest, static_cast<std::size_t>(width - x) * sizeof *rest);
    }
}

#endif

std::int64_t Largest(std::int32_t const* sums, std::ptrdiff_t width) {
    std::int32_t largest = 0;
    for (std::ptrdiff_t x = 0; x < width; ++x) largest = std::max(largest, sums[x]);
    return largest;
}

template <bool kWrapping, typename T>
void MeanImage(T const* input, T* output, Size image, Size window, double* work) {
    std::ptrdiff_t const width = image.width, height = image.height;
    std::ptrdiff_t const halfWidth = window.width / 2, halfHeight = window.height / 2;
    double* const reciprocals = work;
    std::fill_n(reciprocals, width + kVectorRoom, 0.0);
    FillReciprocals(reciprocals, width, halfWidth);
    auto* const padded = reinterpret_cast<std::int32_t*>(work + width + kVectorRoom);
    std::fill_n(padded, PaddedColumns(image, window), 0);
    std::int32_t* const sums = padded + FirstColumn(window);

    // Most images do not fill their elements: rows whose sums cannot wrap go the quicker way. A column sum
    // grows by one pixel from row to row, so the largest is looked for only where that may have brought it
    // too far.
    std::int64_t const most = ScanMeanServes(window) ? INT32_MAX / window.width : -1;
    std::int64_t bound = 0;
    for (std::ptrdiff_t y = -halfHeight; y < height; ++y) {
        std::ptrdiff_t const entering = y + halfHeight, leaving = y - halfHeight - 1;
        T const* const soon = input + std::min(entering + 1, height - 1) * width;
        if (leaving < 0)
            Slide<true, false, T>(sums, input + entering * width, nullptr, soon, width);
        else if (entering < height)
            Slide<true, true>(sums, input + entering * width, input + leaving * width, soon, width);
        else
            Slide<false, true, T>(sums, nullptr, input + leaving * width, soon, width);
        bound += std::numeric_limits<T>::max();
        if (y < 0) continue;

        std::ptrdiff_t const rows = CountInside(y, halfHeight, height);
        T* const out = output + y * width;
        if (kWrapping && bound > most) bound = Largest(sums, width);
        if (kWrapping && bound > most)
            MeanRow<true>(sums, reciprocals, out, width, halfWidth, rows);
        else
            MeanRow<false>(sums, reciprocals, out, width, halfWidth, rows);
    }
}

void ScanMean16u(std::uint16_t const* input, std::uint16_t* output, Size image, Size window, double* work) {
    MeanImage<false>(input, output, image, window, work);
}
void ScanMean16s(std::int16_t const* input, std::int16_t* output, Size image, Size window, double* work) {
    MeanImage<false>(input, output, image, window, work);
}
void WrappingScanMean16u(std::uint16_t const* input, std::uint16_t* output, Size image, Size window,
                         double* work) {
    MeanImage<true>(input, output, image, window, work);
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {
HWY_EXPORT(ScanMean16u);
HWY_EXPORT(ScanMean16s);
HWY_EXPORT(WrappingScanMean16u);

bool ScanMeanServes(Size window) {
    std::int64_t const width = window.width, height = window.height;
    // Sums of up to 16 columns pass through 32 bits, and the division serves counts of up to 2^31.
    return std::min<std::int64_t>(width, 16) * height <= 32768 && width * height <= std::int64_t{1} << 31;
}

std::uint64_t ScanMeanWork(Size image, Size window) {
    return static_cast<std::uint64_t>(image.width + kVectorRoom + (PaddedColumns(image, window) + 1) / 2);
}

void ScanMean(std::uint16_t const* input, std::uint16_t* output, Size image, Size window,
              double* work) noexcept {
    HWY_DYNAMIC_DISPATCH(ScanMean16u)(input, output, image, window, work);
}
void ScanMean(std::int16_t const* input, std::int16_t* output, Size image, Size window,
              double* work) noexcept {
    HWY_DYNAMIC_DISPATCH(ScanMean16s)(input, output, image, window, work);
}

void WrappingScanMean(std::uint16_t const* input, std::uint16_t* output, Size image, Size window,
                      double* work) noexcept {
    // Up to here full-scale values fit 31 bits.
    if (std::int64_t{window.width} * window.height <= 32768)
        HWY_DYNAMIC_DISPATCH(ScanMean16u)(input, output, image, window, work);
    else
        HWY_DYNAMIC_DISPATCH(WrappingScanMean16u)(input, output, image, window, work);
}

}  // namespace ZPA
#endif
