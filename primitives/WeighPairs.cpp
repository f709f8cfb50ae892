// Sums of products of short integers, two at a time: the one instruction gives the sums at even places from
// the pixels as they lie, and those at odd places too, by weights that are moved by one. So nothing has to be
// rearranged until the results are stored.
#include "primitives/WeighPairs.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/WeighPairs.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <limits>
#include <type_traits>
#include <utility>

#undef ZPA_PLAIN_LOOPS
#define ZPA_PLAIN_LOOPS (HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128)

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
#if ZPA_PLAIN_LOOPS

bool Serve() { return false; }
template <typename T> void Shorten(T const*, std::ptrdiff_t, std::int16_t*, std::ptrdiff_t) {}
template <typename T>
void Filter(PairWindow const&, Quotient const&, std::int16_t const*, std::ptrdiff_t, T*, std::ptrdiff_t) {}
template <typename Real> void Sum(PairWindow const&, std::int16_t const*, Real*, std::ptrdiff_t) {}
template <typename Real, typename T>
void Columns(Real const*, int, Quotient const&, Real const*, std::ptrdiff_t, T*, std::ptrdiff_t) {}

#else
namespace hn = hwy::HWY_NAMESPACE;

using Shorts = hn::ScalableTag<std::int16_t>;
using Words = hn::RepartitionToWide<Shorts>;
using HalfWords = hn::Half<Words>;
using Doubles = hn::Rebind<double, HalfWords>;
using Floats = hn::Rebind<float, Words>;
using ShortVector = hn::Vec<Shorts>;
using WordVector = hn::Vec<Words>;
constexpr std::ptrdiff_t kWords = hn::MaxLanes(Words()), kPixels = 2 * kWords;
static_assert(kPairBlock % kPixels == 0, "a block is a number of vectors");

bool Serve() { return true; }

template <typename T>
void Shorten(T const* pixels, std::ptrdiff_t count, std::int16_t* row, std::ptrdiff_t padded) {
    Shorts const d;
    std::ptrdiff_t x = 0;
    for (; x + kPixels <= count; x += kPixels) {
        if constexpr (sizeof(T) == 1) {
            hn::StoreU(hn::PromoteTo(d, hn::LoadU(hn::Rebind<std::uint8_t, Shorts>(), pixels + x)), d,
                       row + x);
        } else {
            auto const shorts = hn::BitCast(d, hn::LoadU(hn::Rebind<T, Shorts>(), pixels + x));
            hn::StoreU(std::is_signed_v<T> ? shorts : hn::Xor(shorts, hn::Set(d, INT16_MIN)), d, row + x);
        }
    }
    constexpr int kLess = std::is_same_v<T, std::uint16_t> ? 32768 : 0;
    for (; x < count; ++x) row[x] = static_cast<std::int16_t>(pixels[x] - kLess);
    std::fill(row + x, row + padded, std::int16_t{0});
}

// Adds to each sum the products of a pair.
HWY_INLINE WordVector AddProducts(ShortVector a, ShortVector b, WordVector sums) {
    Words const d;
    auto second = hn::Zero(d);
    auto const first = hn::ReorderWidenMulAccumulate(d, a, b, hn::Zero(d), second);
    return hn::Add(sums, hn::RearrangeToOddPlusEven(first, second));
}

// The sums of as many blocks of pixels as `Block` has numbers, those at even places and those at odd ones.
template <std::size_t... Block>
HWY_INLINE void SumBlocks(PairWindow const& window, std::int16_t const* rows, std::ptrdiff_t stride,
                          WordVector* HWY_RESTRICT evenSums, WordVector* HWY_RESTRICT oddSums,
                          std::index_sequence<Block...>) {
    Words const d;
    Shorts const shorts;
    auto const start = hn::Set(d, window.start);
    auto const starting = [&](std::size_t) HWY_ATTR { return start; };
    WordVector even[] = {starting(Block)...}, odd[] = {starting(Block)...};
    std::int32_t const* weights = window.weights;
    for (int r = 0; r < window.rowCount; ++r) {
        std::int16_t const* pixels = rows + window.rows[r] * stride;
        for (int pair = 0; pair < window.pairs; ++pair, weights += 2, pixels += 2) {
            auto const evenWeights = hn::BitCast(shorts, hn::Set(d, weights[0]));
            auto const oddWeights = hn::BitCast(shorts, hn::Set(d, weights[1]));
            auto const add = [&](std::ptrdiff_t block, WordVector& toEven, WordVector& toOdd) HWY_ATTR {
                auto const loaded = hn::LoadU(shorts, pixels + block * kPixels);
                toEven = AddProducts(loaded, evenWeights, toEven);
                toOdd = AddProducts(loaded, oddWeights, toOdd);
            };
            (add(static_cast<std::ptrdiff_t>(Block), even[Block], odd[Block]), ...);
        }
    }
    ((evenSums[Block] = even[Block], oddSums[Block] = odd[Block]), ...);
}

template <class D> HWY_INLINE hn::Vec<D> Scaled(D d, hn::Vec<D> sums, Quotient const& quotient) {
    using Real = hn::TFromD<D>;
    auto const half = hn::Set(d, static_cast<Real>(0.5 * quotient.reciprocal));
    auto const signedHalf = hn::Xor(hn::And(sums, hn::SignBit(d)), half);
    return hn::MulAdd(sums, hn::Set(d, static_cast<Real>(quotient.reciprocal)), signedHalf);
}

HWY_INLINE WordVector Joined(hn::Vec<Doubles> low, hn::Vec<Doubles> high) {
    return hn::Combine(Words(), hn::DemoteTo(HalfWords(), high), hn::DemoteTo(HalfWords(), low));
}

template <Quotient::Way way> HWY_INLINE WordVector Divided(WordVector sums, Quotient const& quotient) {
    Words const d;
    if constexpr (way == Quotient::kShift) {
        auto const rest = hn::Set(d, static_cast<std::int32_t>((std::int64_t{1} << quotient.shift) - 1));
        return hn::ShiftRightSame(hn::Add(sums, hn::And(hn::BroadcastSignBit(sums), rest)), quotient.shift);
    } else if constexpr (way == Quotient::kFloat) {
        return hn::ConvertTo(d, Scaled(Floats(), hn::ConvertTo(Floats(), sums), quotient));
    } else {
        Doubles const doubles;
        HalfWords const halves;
        auto const divide = [&](hn::Vec<HalfWords> half) HWY_ATTR {
            auto whole = hn::PromoteTo(doubles, half);
            if (way == Quotient::kMovedDouble) whole = hn::Add(whole, hn::Set(doubles, quotient.offset));
            return Scaled(doubles, whole, quotient);
        };
        return Joined(divide(hn::LowerHalf(halves, sums)), divide(hn::UpperHalf(halves, sums)));
    }
}

// The quotients of a block, saturated and in their places.
template <typename T> HWY_INLINE void StoreBlock(WordVector even, WordVector odd, T* to) {
    Words const d;
    Shorts const shorts;
    auto const lowest = hn::Set(d, std::numeric_limits<T>::min());
    auto const highest = hn::Set(d, std::numeric_limits<T>::max());
    even = hn::Min(hn::Max(even, lowest), highest);
    odd = hn::Min(hn::Max(odd, lowest), highest);
    auto const both = hn::OddEven(hn::BitCast(shorts, hn::ShiftLeft<16>(odd)), hn::BitCast(shorts, even));
    if constexpr (sizeof(T) == 1) {
        hn::Rebind<std::uint8_t, Shorts> const bytes;
        hn::StoreU(hn::DemoteTo(bytes, both), bytes, to);
    } else {
        hn::Rebind<T, Shorts> const pixels;
        hn::StoreU(hn::BitCast(pixels, both), pixels, to);
    }
}

// Calls store(pixels from x on, where to) for blocks that cover the result; the last one goes through a buffer
// if it is not whole.
template <typename T, typename Store>
HWY_INLINE void StoreRest(T* result, std::ptrdiff_t x, std::ptrdiff_t count, Store const& store) {
    for (; x + kPixels <= count; x += kPixels) store(x, result + x);
    if (x == count) return;
    T last[kPixels];
    store(x, last);
    std::copy_n(last, count - x, result + x);
}

template <Quotient::Way way, typename T>
void FilterIn(PairWindow const& window, Quotient const& quotient, std::int16_t const* rows,
              std::ptrdiff_t stride, T* result, std::ptrdiff_t count) {
    constexpr std::ptrdiff_t kBlocks = 4;
    auto const filter = [&](std::ptrdiff_t x, T* to, auto blocks) HWY_ATTR {
        constexpr std::ptrdiff_t kCount = decltype(blocks)::size();
        WordVector even[kCount], odd[kCount];
        SumBlocks(window, rows + x, stride, even, odd, blocks);
        for (std::ptrdiff_t i = 0; i < kCount; ++i)
            StoreBlock(Divided<way>(even[i], quotient), Divided<way>(odd[i], quotient), to + i * kPixels);
    };
    std::ptrdiff_t x = 0;
    for (; x + kBlocks * kPixels <= count; x += kBlocks * kPixels)
        filter(x, result + x, std::make_index_sequence<kBlocks>());
    StoreRest(result, x, count,
              [&](std::ptrdiff_t at, T* to) HWY_ATTR { filter(at, to, std::make_index_sequence<1>()); });
}

template <typename T>
void Filter(PairWindow const& window, Quotient const& quotient, std::int16_t const* rows,
            std::ptrdiff_t stride, T* result, std::ptrdiff_t count) {
    switch (quotient.way) {
        case Quotient::kShift:
            return FilterIn<Quotient::kShift>(window, quotient, rows, stride, result, count);
        case Quotient::kFloat:
            return FilterIn<Quotient::kFloat>(window, quotient, rows, stride, result, count);
        case Quotient::kDouble:
            return FilterIn<Quotient::kDouble>(window, quotient, rows, stride, result, count);
        case Quotient::kMovedDouble:
            return FilterIn<Quotient::kMovedDouble>(window, quotient, rows, stride, result, count);
    }
}

// Of each block of pixels the sums at even places, then those at odd ones.
template <typename Real>
void Sum(PairWindow const& window, std::int16_t const* row, Real* sums, std::ptrdiff_t count) {
    auto const store = [](WordVector words, Real* to) HWY_ATTR {
        if constexpr (sizeof(Real) == 4) {
            hn::StoreU(hn::ConvertTo(Floats(), words), Floats(), to);
        } else {
            Doubles const d;
            HalfWords const halves;
            hn::StoreU(hn::PromoteTo(d, hn::LowerHalf(halves, words)), d, to);
            hn::StoreU(hn::PromoteTo(d, hn::UpperHalf(halves, words)), d, to + kWords / 2);
        }
    };
    auto const sum = [&](std::ptrdiff_t x, auto blocks) HWY_ATTR {
        constexpr std::ptrdiff_t kCount = decltype(blocks)::size();
        WordVector even[kCount], odd[kCount];
        SumBlocks(window, row + x, 0, even, odd, blocks);
        for (std::ptrdiff_t i = 0; i < kCount; ++i) {
            store(even[i], sums + x + i * kPixels);
            store(odd[i], sums + x + i * kPixels + kWords);
        }
    };
    std::ptrdiff_t x = 0;
    for (; x + 4 * kPixels <= count; x += 4 * kPixels) sum(x, std::make_index_sequence<4>());
    for (; x < count; x += kPixels) sum(x, std::make_index_sequence<1>());
}

template <Quotient::Way way, typename Real, typename T>
void ColumnsIn(Real const* weights, int height, Quotient const& quotient, Real const* sums,
               std::ptrdiff_t stride, T* result, std::ptrdiff_t count) {
    using D = std::conditional_t<sizeof(Real) == 4, Floats, Doubles>;
    D const d;
    constexpr std::ptrdiff_t kStep = hn::MaxLanes(D()), kVectors = kPixels / kStep;
    auto const filter = [&](std::ptrdiff_t x, T* to) HWY_ATTR {
        hn::Vec<D> totals[kVectors];
        for (auto& total : totals) total = hn::Zero(d);
        Real const* row = sums + x;
        for (int j = 0; j < height; ++j, row += stride) {
            auto const weight = hn::Set(d, weights[j]);
            for (std::ptrdiff_t i = 0; i < kVectors; ++i)
                totals[i] = hn::MulAdd(weight, hn::LoadU(d, row + i * kStep), totals[i]);
        }
        if constexpr (sizeof(Real) == 8) {
            for (auto& total : totals) total = Scaled(d, total, quotient);
            StoreBlock(Joined(totals[0], totals[1]), Joined(totals[2], totals[3]), to);
        } else if constexpr (way == Quotient::kFloat) {
            for (auto& total : totals) total = Scaled(d, total, quotient);
            StoreBlock(hn::ConvertTo(Words(), totals[0]), hn::ConvertTo(Words(), totals[1]), to);
        } else {
            StoreBlock(Divided<way>(hn::ConvertTo(Words(), totals[0]), quotient),
                       Divided<way>(hn::ConvertTo(Words(), totals[1]), quotient), to);
        }
    };
    StoreRest(result, 0, count, filter);
}

template <typename Real, typename T>
void Columns(Real const* weights, int height, Quotient const& quotient, Real const* sums,
             std::ptrdiff_t stride, T* result, std::ptrdiff_t count) {
    if (sizeof(Real) == 8 || quotient.way == Quotient::kDouble)
        return ColumnsIn<Quotient::kDouble>(weights, height, quotient, sums, stride, result, count);
    if (quotient.way == Quotient::kShift)
        return ColumnsIn<Quotient::kShift>(weights, height, quotient, sums, stride, result, count);
    ColumnsIn<Quotient::kFloat>(weights, height, quotient, sums, stride, result, count);
}

#endif

#define ZPA_KERNEL(name, T)                                                                               \
    void Shorten##name(T const* pixels, std::ptrdiff_t count, std::int16_t* row, std::ptrdiff_t padded) { \
        Shorten(pixels, count, row, padded);                                                              \
    }                                                                                                     \
    void Filter##name(PairWindow const& window, Quotient const& quotient, std::int16_t const* rows,       \
                      std::ptrdiff_t stride, T* result, std::ptrdiff_t count) {                           \
        Filter(window, quotient, rows, stride, result, count);                                            \
    }                                                                                                     \
    void Float##name(float const* weights, int height, Quotient const& quotient, float const* sums,       \
                     std::ptrdiff_t stride, T* result, std::ptrdiff_t count) {                            \
        Columns(weights, height, quotient, sums, stride, result, count);                                  \
    }                                                                                                     \
    void Double##name(double const* weights, int height, Quotient const& quotient, double const* sums,    \
                      std::ptrdiff_t stride, T* result, std::ptrdiff_t count) {                           \
        Columns(weights, height, quotient, sums, stride, result, count);                                  \
    }
ZPA_KERNEL(8u, std::uint8_t)
ZPA_KERNEL(16s, std::int16_t)
ZPA_KERNEL(16u, std::uint16_t)
#undef ZPA_KERNEL

void Sum32f(PairWindow const& window, std::int16_t const* row, float* sums, std::ptrdiff_t count) {
    Sum(window, row, sums, count);
}
void Sum64f(PairWindow const& window, std::int16_t const* row, double* sums, std::ptrdiff_t count) {
    Sum(window, row, sums, count);
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

HWY_EXPORT(Serve);
bool PairsServe() { return HWY_DYNAMIC_DISPATCH(Serve)(); }

#define ZPA_PAIRS(name, T)                                                                              \
    HWY_EXPORT(Shorten##name);                                                                          \
    HWY_EXPORT(Filter##name);                                                                           \
    HWY_EXPORT(Float##name);                                                                            \
    HWY_EXPORT(Double##name);                                                                           \
    void ShortRow(T const* pixels, std::ptrdiff_t count, std::int16_t* row, std::ptrdiff_t padded) {    \
        HWY_DYNAMIC_DISPATCH(Shorten##name)(pixels, count, row, padded);                                \
    }                                                                                                   \
    void FilterPairs(PairWindow const& window, Quotient const& quotient, std::int16_t const* rows,      \
                     std::ptrdiff_t stride, T* result, std::ptrdiff_t count) {                          \
        HWY_DYNAMIC_DISPATCH(Filter##name)(window, quotient, rows, stride, result, count);              \
    }                                                                                                   \
    void FilterColumns(float const* weights, int height, Quotient const& quotient, float const* sums,   \
                       std::ptrdiff_t stride, T* result, std::ptrdiff_t count) {                        \
        HWY_DYNAMIC_DISPATCH(Float##name)(weights, height, quotient, sums, stride, result, count);      \
    }                                                                                                   \
    void FilterColumns(double const* weights, int height, Quotient const& quotient, double const* sums, \
                       std::ptrdiff_t stride, T* result, std::ptrdiff_t count) {                        \
        HWY_DYNAMIC_DISPATCH(Double##name)(weights, height, quotient, sums, stride, result, count);     \
    }
ZPA_PAIRS(8u, std::uint8_t)
ZPA_PAIRS(16s, std::int16_t)
ZPA_PAIRS(16u, std::uint16_t)
#undef ZPA_PAIRS

HWY_EXPORT(Sum32f);
HWY_EXPORT(Sum64f);
void SumPairs(PairWindow const& window, std::int16_t const* row, float* sums, std::ptrdiff_t count) {
    HWY_DYNAMIC_DISPATCH(Sum32f)(window, row, sums, count);
}
void SumPairs(PairWindow const& window, std::int16_t const* row, double* sums, std::ptrdiff_t count) {
    HWY_DYNAMIC_DISPATCH(Sum64f)(window, row, sums, count);
}

}  // namespace ZPA
#endif
