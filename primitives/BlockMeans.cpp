// Means over blocks of 16-bit pixels: sums of columns, added up along the row, and divided by a product with the
// reciprocal.
#include "primitives/BlockMeans.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/BlockMeans.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include "primitives/AddColumns-inl.h"

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using Sums = hn::ScalableTag<std::int32_t>;
constexpr std::ptrdiff_t kLanes = hn::MaxLanes(Sums());
using Reals = hn::ScalableTag<float>;
using LongReals = hn::ScalableTag<double>;
using LongSums = hn::Rebind<std::int32_t, LongReals>;

// Sums over 11 by 11 pixels and a half are exact in single precision, and means nearer to themselves than to
// the next whole number: there are twice the quotients in a vector.
constexpr int kLargestBlockInSingle = 11;

// As many columns are summed at once: their sums stay in the first cache.
constexpr std::ptrdiff_t kColumns = 2048;

#if HWY_TARGET != HWY_SCALAR

// A wide lane holds two neighbouring pixels; their sum.
hn::Vec<Sums> AddPairs(std::uint16_t, hn::Vec<Sums> pairs) {
    Sums const d;
    hn::RebindToUnsigned<Sums> const bits;
    auto const high = hn::BitCast(d, hn::ShiftRight<16>(hn::BitCast(bits, pairs)));
    return hn::Add(hn::And(pairs, hn::Set(d, 0xFFFF)), high);
}
hn::Vec<Sums> AddPairs(std::int16_t, hn::Vec<Sums> pairs) {
    return hn::Add(hn::ShiftRight<16>(hn::ShiftLeft<16>(pairs)), hn::ShiftRight<16>(pairs));
}

#endif

// So many columns become one sum: the lanes of a vector, and one alone. Two take half as many sums, and no
// widening.
template <int kEach, typename T> HWY_INLINE hn::Vec<Sums> Columns(T const* row, std::ptrdiff_t x) {
    Sums const d;
#if HWY_TARGET != HWY_SCALAR
    if constexpr (kEach == 2)
        return AddPairs(T(), hn::BitCast(d, hn::LoadU(hn::Repartition<T, Sums>(), row + 2 * x)));
#endif
    return hn::PromoteTo(d, hn::LoadU(hn::Rebind<T, Sums>(), row + x));
}
template <int kEach, typename T> HWY_INLINE std::int32_t Column(T const* row, std::ptrdiff_t x) {
    return kEach == 2 ? row[2 * x] + row[2 * x + 1] : row[x];
}

// Sets the sums of columns to a row, or adds one.
template <int kEach, bool kFirst, typename T>
void AddRow(T const* row, std::ptrdiff_t count, std::int32_t* sums) {
    Sums const d;
    std::ptrdiff_t x = 0;
    for (; x + kLanes <= count; x += kLanes) {
        auto const sum = Columns<kEach>(row, x);
        hn::StoreU(kFirst ? sum : hn::Add(sum, hn::LoadU(d, sums + x)), d, sums + x);
    }
    for (; x < count; ++x) sums[x] = (kFirst ? 0 : sums[x]) + Column<kEach>(row, x);
}

// The same for two rows at once: the sums move half as often.
template <int kEach, bool kFirst, typename T>
void AddRows(T const* row, std::ptrdiff_t stride, std::ptrdiff_t count, std::int32_t* sums) {
    Sums const d;
    T const* const next = row + stride;
    std::ptrdiff_t x = 0;
    for (; x + kLanes <= count; x += kLanes) {
        auto const sum = hn::Add(Columns<kEach>(row, x), Columns<kEach>(next, x));
        hn::StoreU(kFirst ? sum : hn::Add(sum, hn::LoadU(d, sums + x)), d, sums + x);
    }
    for (; x < count; ++x) sums[x] = (kFirst ? 0 : sums[x]) + Column<kEach>(row, x) + Column<kEach>(next, x);
}

// The sums of columns over `rows` rows.
template <int kEach, typename T>
void AddUp(T const* row, std::ptrdiff_t stride, std::ptrdiff_t rows, std::ptrdiff_t count,
           std::int32_t* sums) {
    if (rows == 1) return AddRow<kEach, true>(row, count, sums);
    AddRows<kEach, true>(row, stride, count, sums);
    for (std::ptrdiff_t y = 2; y + 2 <= rows; y += 2)
        AddRows<kEach, false>(row + y * stride, stride, count, sums);
    if (rows % 2 == 1) AddRow<kEach, false>(row + (rows - 1) * stride, count, sums);
}

// The pixels of a row that are not the code, and -1 for each of them.
struct Counted {
    hn::Vec<Sums> sum, minusCount;
};
template <int kEach, typename T> HWY_INLINE Counted CountedColumns(T code, T const* row, std::ptrdiff_t x) {
    Sums const d;
#if HWY_TARGET != HWY_SCALAR
    if constexpr (kEach == 2) {
        hn::Repartition<T, Sums> const elements;
        auto const pixels = hn::LoadU(elements, row + 2 * x);
        auto const counted = hn::Ne(pixels, hn::Set(elements, code));
        return {AddPairs(T(), hn::BitCast(d, hn::IfThenElseZero(counted, pixels))),
                AddPairs(std::int16_t(), hn::BitCast(d, hn::VecFromMask(elements, counted)))};
    }
#endif
    hn::Rebind<T, Sums> const narrow;
    auto const pixels = hn::LoadU(narrow, row + x);
    auto const counted = hn::Ne(pixels, hn::Set(narrow, code));
    hn::Rebind<std::int16_t, Sums> const flags;
    return {hn::PromoteTo(d, hn::IfThenElseZero(counted, pixels)),
            hn::PromoteTo(d, hn::BitCast(flags, hn::VecFromMask(narrow, counted)))};
}

// Sets the sums of columns to the row's pixels that are not the code, and the counts to their numbers, or adds
// these.
template <int kEach, bool kFirst, typename T>
void AddRowWithout(T code, T const* row, std::ptrdiff_t count, std::int32_t* sums, std::int32_t* counts) {
    Sums const d;
    std::ptrdiff_t x = 0;
    for (; x + kLanes <= count; x += kLanes) {
        auto const columns = CountedColumns<kEach>(code, row, x);
        hn::StoreU(kFirst ? columns.sum : hn::Add(hn::LoadU(d, sums + x), columns.sum), d, sums + x);
        hn::StoreU(hn::Sub(kFirst ? hn::Zero(d) : hn::LoadU(d, counts + x), columns.minusCount), d,
                   counts + x);
    }
    for (; x < count; ++x) {
        std::int32_t sum = kFirst ? 0 : sums[x], number = kFirst ? 0 : counts[x];
        for (T const* pixel = row + kEach * x; pixel < row + kEach * (x + 1); ++pixel) {
            sum += *pixel != code ? *pixel : 0;
            number += *pixel != code;
        }
        sums[x] = sum;
        counts[x] = number;
    }
}

// A quotient of whole numbers is 1 / area away from the next one at least. Half of that, added, outweighs the
// error of the product and brings no quotient to the next whole number.
template <class D> hn::Vec<D> AwayFromZero(D d, hn::Vec<D> sum) {
    return hn::Add(sum, hn::CopySign(hn::Set(d, 0.5), sum));
}

#if HWY_TARGET != HWY_SCALAR

// The means over as many blocks of two by two as whole vectors hold; gives their number. That nothing leaves
// the registers, nor is divided, makes it three times as fast.
template <typename T>
std::ptrdiff_t RunWithoutByTwo(T code, T const* pixels, std::ptrdiff_t stride, std::ptrdiff_t blocks,
                               T* means) {
    Sums const d;
    hn::Repartition<T, Sums> const elements;
    hn::Repartition<std::int16_t, Sums> const flags;
    Reals const real;
    hn::Rebind<T, Sums> const narrow;
    alignas(16) constexpr float kReciprocals[] = {1.0F, 1.0F / 2, 1.0F / 3, 1.0F / 4};
    auto const reciprocals = hn::LoadDup128(real, kReciprocals);
    auto const codes = hn::Set(elements, code);
    std::ptrdiff_t x = 0;
    for (; x + kLanes <= blocks; x += kLanes) {
        auto const upper = hn::LoadU(elements, pixels + 2 * x);
        auto const lower = hn::LoadU(elements, pixels + 2 * x + stride);
        auto const upperCounts = hn::Ne(upper, codes);
        auto const lowerCounts = hn::Ne(lower, codes);
        auto const sum = hn::ConvertTo(
            real, hn::Add(AddPairs(T(), hn::BitCast(d, hn::IfThenElseZero(upperCounts, upper))),
                          AddPairs(T(), hn::BitCast(d, hn::IfThenElseZero(lowerCounts, lower)))));
        // Both halves of a lane hold 0, -1 or -2. The low bits of their sum, turned round, are the count less 1.
        auto const halves =
            hn::BitCast(d, hn::Add(hn::BitCast(flags, hn::VecFromMask(elements, upperCounts)),
                                   hn::BitCast(flags, hn::VecFromMask(elements, lowerCounts))));
        auto const place = hn::AndNot(hn::Add(halves, hn::ShiftRight<16>(halves)), hn::Set(d, 3));
        auto const reciprocal = hn::TableLookupLanes(reciprocals, hn::IndicesFromVec(real, place));
        // Quotients are a quarter or more below the next whole number, and less than 0.01 off.
        auto const quotient = hn::MulAdd(sum, reciprocal, hn::CopySign(hn::Set(real, 0.1F), sum));
        auto const none = hn::Eq(halves, hn::Zero(d));
        auto const mean = hn::IfThenElse(none, hn::Set(d, code), hn::ConvertTo(d, quotient));
        hn::StoreU(hn::DemoteTo(narrow, mean), narrow, means + x);
    }
    return x;
}

#endif

template <typename T>
void DivideByShift(std::int32_t const* sums, std::ptrdiff_t blocks, int shift, T* means) {
    Sums const d;
    hn::Rebind<T, Sums> const narrow;
    std::int32_t const last = (1 << shift) - 1;  // makes the shift of what is negative truncate toward zero
    std::ptrdiff_t x = 0;
    for (; x + kLanes <= blocks; x += kLanes) {
        auto const sum = hn::LoadU(d, sums + x);
        auto const raised = hn::Add(sum, hn::And(hn::BroadcastSignBit(sum), hn::Set(d, last)));
        hn::StoreU(hn::DemoteTo(narrow, hn::ShiftRightSame(raised, shift)), narrow, means + x);
    }
    for (; x < blocks; ++x) means[x] = static_cast<T>(sums[x] / (1 << shift));
}

template <typename T> void Divide(std::int32_t const* sums, std::ptrdiff_t blocks, int area, T* means) {
    int shift = 0;
    while (1 << shift < area) ++shift;
    if (1 << shift == area) return DivideByShift(sums, blocks, shift, means);
    hn::ScalableTag<double> const d;
    hn::Rebind<std::int32_t, decltype(d)> const whole;
    hn::Rebind<T, decltype(d)> const narrow;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    auto const reciprocal = hn::Set(d, 1.0 / area);
    std::ptrdiff_t x = 0;
    for (; x + lanes <= blocks; x += lanes) {
        auto const sum = hn::PromoteTo(d, hn::LoadU(whole, sums + x));
        auto const mean = hn::DemoteTo(whole, hn::Mul(AwayFromZero(d, sum), reciprocal));
        hn::StoreU(hn::DemoteTo(narrow, mean), narrow, means + x);
    }
    for (; x < blocks; ++x) means[x] = static_cast<T>(sums[x] / area);
}

// From whole numbers and toward zero, in as many lanes.
hn::Vec<Reals> Real(Reals d, hn::Vec<Sums> whole) { return hn::ConvertTo(d, whole); }
hn::Vec<Sums> Whole(Reals, hn::Vec<Reals> real) { return hn::ConvertTo(Sums(), real); }
hn::Vec<LongReals> Real(LongReals d, hn::Vec<LongSums> whole) { return hn::PromoteTo(d, whole); }
hn::Vec<LongSums> Whole(LongReals, hn::Vec<LongReals> real) { return hn::DemoteTo(LongSums(), real); }

template <class D, typename T>
void DivideByCounts(D d, T code, std::int32_t const* sums, std::int32_t const* counts, std::ptrdiff_t blocks,
                    T* means) {
    hn::Rebind<std::int32_t, D> const whole;
    hn::Rebind<T, D> const narrow;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    auto const codes = hn::Set(whole, code);
    auto const one = hn::Set(whole, 1);
    std::ptrdiff_t x = 0;
    for (; x + lanes <= blocks; x += lanes) {
        auto const count = hn::LoadU(whole, counts + x);
        auto const sum = AwayFromZero(d, Real(d, hn::LoadU(whole, sums + x)));
        auto const mean = Whole(d, hn::Div(sum, Real(d, hn::Max(count, one))));
        auto const none = hn::Eq(count, hn::Zero(whole));
        hn::StoreU(hn::DemoteTo(narrow, hn::IfThenElse(none, codes, mean)), narrow, means + x);
    }
    for (; x < blocks; ++x) means[x] = counts[x] ? static_cast<T>(sums[x] / counts[x]) : code;
}

template <int kEach, typename T>
void RunBy(T const* pixels, std::ptrdiff_t stride, int side, std::ptrdiff_t blocks, T* means) {
    alignas(64) std::int32_t sums[kColumns];
    std::ptrdiff_t const most = kColumns / side;
    std::ptrdiff_t const each = side / kEach;
    for (std::ptrdiff_t done = 0; done < blocks; done += most) {
        std::ptrdiff_t const now = std::min(most, blocks - done);
        AddUp<kEach>(pixels + done * side, stride, side, now * each, sums);
        AddColumns(sums, now, each);
        Divide(sums, now, side * side, means + done);
    }
}

template <int kEach, typename T>
void RunWithoutBy(T code, T const* pixels, std::ptrdiff_t stride, int side, std::ptrdiff_t blocks, T* means) {
    alignas(64) std::int32_t sums[kColumns];
    alignas(64) std::int32_t counts[kColumns];
    std::ptrdiff_t const most = kColumns / side;
    std::ptrdiff_t const each = side / kEach;
    for (std::ptrdiff_t done = 0; done < blocks; done += most) {
        std::ptrdiff_t const now = std::min(most, blocks - done);
        T const* const row = pixels + done * side;
        AddRowWithout<kEach, true>(code, row, now * each, sums, counts);
        for (int y = 1; y < side; ++y)
            AddRowWithout<kEach, false>(code, row + y * stride, now * each, sums, counts);
        AddColumns(sums, now, each);
        AddColumns(counts, now, each);
        if (side <= kLargestBlockInSingle)
            DivideByCounts(Reals(), code, sums, counts, now, means + done);
        else
            DivideByCounts(LongReals(), code, sums, counts, now, means + done);
    }
}

template <typename T>
void Run(T const* pixels, std::ptrdiff_t stride, int side, std::ptrdiff_t blocks, T* means) {
#if HWY_TARGET != HWY_SCALAR
    if (side % 2 == 0) return RunBy<2>(pixels, stride, side, blocks, means);
#endif
    RunBy<1>(pixels, stride, side, blocks, means);
}

template <typename T>
void RunWithout(T code, T const* pixels, std::ptrdiff_t stride, int side, std::ptrdiff_t blocks, T* means) {
#if HWY_TARGET != HWY_SCALAR
    if (side == 2) {
        std::ptrdiff_t const done = RunWithoutByTwo(code, pixels, stride, blocks, means);
        return RunWithoutBy<2>(code, pixels + 2 * done, stride, side, blocks - done, means + done);
    }
    if (side % 2 == 0) return RunWithoutBy<2>(code, pixels, stride, side, blocks, means);
#endif
    RunWithoutBy<1>(code, pixels, stride, side, blocks, means);
}

#define ZPA_KERNEL(name, T)                                                                               \
    void Means##name(T const* pixels, std::ptrdiff_t stride, int side, std::ptrdiff_t blocks, T* means) { \
        Run(pixels, stride, side, blocks, means);                                                         \
    }                                                                                                     \
    void Without##name(T code, T const* pixels, std::ptrdiff_t stride, int side, std::ptrdiff_t blocks,   \
                       T* means) {                                                                        \
        RunWithout(code, pixels, stride, side, blocks, means);                                            \
    }
ZPA_KERNEL(16u, std::uint16_t)
ZPA_KERNEL(16s, std::int16_t)
#undef ZPA_KERNEL

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

#define ZPA_EXPORT(name, T)                                                                                 \
    HWY_EXPORT(Means##name);                                                                                \
    void BlockMeans(T const* pixels, std::ptrdiff_t stride, int side, std::ptrdiff_t blocks, T* means) {    \
        HWY_DYNAMIC_DISPATCH(Means##name)(pixels, stride, side, blocks, means);                             \
    }                                                                                                       \
    HWY_EXPORT(Without##name);                                                                              \
    void BlockMeansWithout(T code, T const* pixels, std::ptrdiff_t stride, int side, std::ptrdiff_t blocks, \
                           T* means) {                                                                      \
        HWY_DYNAMIC_DISPATCH(Without##name)(code, pixels, stride, side, blocks, means);                     \
    }
ZPA_EXPORT(16u, std::uint16_t)
ZPA_EXPORT(16s, std::int16_t)
#undef ZPA_EXPORT

}  // namespace ZPA
#endif
