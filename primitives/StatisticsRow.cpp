// Measures of a row: the smallest and largest element, and sums.
#include "primitives/StatisticsRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/StatisticsRow.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <limits>
#include <type_traits>

#include "primitives/CopySelected.h"
#include "primitives/SelectedLanes-inl.h"

#ifndef ZPA_PRIMITIVES_STATISTICSROW_CPP  // once, not for every target
#define ZPA_PRIMITIVES_STATISTICSROW_CPP
namespace ZPA {
namespace {

// Of integers; exact for as many elements as a row has.
struct IntegerSums {
    std::int64_t count;
    std::int64_t sum;
    std::int64_t squares;
};

}  // namespace
}  // namespace ZPA
#endif

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// The plain loops: rows without vectors, and what is left over after the last whole one.
template <typename T>
void WidenRange(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, T& smallest, T& largest) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        if (mask && !mask[x]) continue;
        if (row[x] < smallest) smallest = row[x];
        if (row[x] > largest) largest = row[x];
    }
}

template <typename T>
void AddSums(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, IntegerSums& sums) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        if (mask && !mask[x]) continue;
        std::uint32_t const pixel = static_cast<std::uint32_t>(row[x]);
        ++sums.count;
        sums.sum += row[x];
        sums.squares += static_cast<std::int32_t>(pixel * pixel);
    }
}

#if !ZPA_PLAIN_LOOPS

// The smallest and largest lanes so far.
template <class D> class RangeLanes {
public:
    using T = hn::TFromD<D>;
    using V = hn::Vec<D>;
    RangeLanes(T smallest, T largest) : smallest_(hn::Set(D(), smallest)), largest_(hn::Set(D(), largest)) {}

    void Add(V lanes) {
        if constexpr (std::is_floating_point_v<T>) {
            // Comparing with not-a-number keeps what was.
            smallest_ = hn::IfThenElse(hn::Lt(lanes, smallest_), lanes, smallest_);
            largest_ = hn::IfThenElse(hn::Gt(lanes, largest_), lanes, largest_);
        } else {
            smallest_ = hn::Min(lanes, smallest_);
            largest_ = hn::Max(lanes, largest_);
        }
    }
    void AddSelected(V lanes, hn::Mask<D> selected) {
        smallest_ = hn::Min(hn::IfThenElse(selected, lanes, smallest_), smallest_);
        largest_ = hn::Max(hn::IfThenElse(selected, lanes, largest_), largest_);
    }
    T Smallest() const {
        if constexpr (sizeof(T) == 1)
            return static_cast<T>(LeastOf(hn::Min(Even(smallest_), Odd(smallest_))));
        else
            return LeastOf(smallest_);
    }
    T Largest() const {
        if constexpr (sizeof(T) == 1)
            return static_cast<T>(GreatestOf(hn::Max(Even(largest_), Odd(largest_))));
        else
            return GreatestOf(largest_);
    }

private:
    template <class Lanes> static auto LeastOf(Lanes lanes) {
        return hn::GetLane(hn::MinOfLanes(DOf<Lanes>(), lanes));
    }
    template <class Lanes> static auto GreatestOf(Lanes lanes) {
        return hn::GetLane(hn::MaxOfLanes(DOf<Lanes>(), lanes));
    }

    V smallest_, largest_;
};

// Vectors that are summed before the sums are taken out of their lanes: more could overflow 32 bits.
constexpr std::ptrdiff_t kVectorsPerBlock = 8192;

template <class D, std::size_t kBytes = sizeof(hn::TFromD<D>)> class SumLanes;

// Sums of bytes.
template <class D> class SumLanes<D, 1> {
public:
    using V = hn::Vec<D>;

    // Not by the members' initializers: the compiler's own constructor would belong to no target.
    SumLanes() : count_(hn::Zero(D64())), sum_(hn::Zero(D64())), squares_(hn::Zero(D32())) {}

    void Add(V lanes) {
        hn::RepartitionToWide<hn::RebindToSigned<D>> const words;
        auto const even = hn::BitCast(words, Even(lanes));
        auto const odd = hn::BitCast(words, Odd(lanes));
        sum_ = hn::Add(sum_, hn::SumsOf8(lanes));
        squares_ = hn::Add(squares_, hn::Add(PairProducts(even, even), PairProducts(odd, odd)));
    }
    void AddSelected(V lanes, hn::Mask<D> selected) {
        Add(hn::IfThenElseZero(selected, lanes));
        count_ = hn::Add(count_, hn::SumsOf8(hn::IfThenElseZero(selected, hn::Set(D(), 1))));
    }
    std::int64_t Count() const { return Total(count_); }
    IntegerSums Totals(std::int64_t count) const { return {count, Total(sum_), Total(squares_)}; }

private:
    using D32 = hn::Repartition<std::int32_t, D>;
    using D64 = hn::Repartition<std::uint64_t, D>;
    static_assert(kVectorsPerBlock * 4 * 255 * 255 <= std::numeric_limits<std::int32_t>::max());

    hn::Vec<D64> count_, sum_;
    hn::Vec<D32> squares_;
};

// Sums of 16-bit elements. Unsigned ones are centred about 0 first, since the products are signed. Squares
// are summed whole; those that would have wrapped are counted, and take 2^32 back each.
template <class D> class SumLanes<D, 2> {
public:
    using V = hn::Vec<D>;

    SumLanes()
        : count_(hn::Zero(D16())),
          wrapped_(hn::Zero(D16())),
          sum_(hn::Zero(D32())),
          squares_(hn::Zero(D64())) {}

    void Add(V lanes) { AddCentred(Centred(lanes)); }
    void AddSelected(V lanes, hn::Mask<D> selected) {
        auto const mask = hn::RebindMask(D16(), selected);
        AddCentred(hn::IfThenElseZero(mask, Centred(lanes)));
        count_ = hn::Sub(count_, hn::VecFromMask(D16(), mask));
    }
    std::int64_t Count() const { return Total(count_); }
    IntegerSums Totals(std::int64_t count) const {
        std::int64_t const sum = Total(sum_);
        std::int64_t const squares = Total(squares_) + 2 * kCentre * sum + kCentre * kCentre * count;
        return {count, sum + kCentre * count, squares - (Total(wrapped_) << 32)};
    }

private:
    using D16 = hn::RebindToSigned<D>;
    using D32 = hn::RepartitionToWide<D16>;
    using D64 = hn::RepartitionToWide<hn::RebindToUnsigned<D32>>;
    static constexpr bool kUnsigned = std::is_unsigned_v<hn::TFromD<D>>;
    static constexpr std::int64_t kCentre = kUnsigned ? 32768 : 0;
    static constexpr std::int16_t kLastRootInPlace = 46340 - 32768;  // its square is the last to fit 31 bits

    static hn::Vec<D16> Centred(V lanes) {
        if constexpr (kUnsigned)
            return hn::BitCast(D16(), hn::Xor(lanes, hn::Set(D(), kCentre)));
        else
            return lanes;
    }
    void AddCentred(hn::Vec<D16> lanes) {
        // Without a sign: two squares of -32768 need the 32nd bit.
        auto const squares = hn::BitCast(hn::RebindToUnsigned<D32>(), PairProducts(lanes, lanes));
        sum_ = hn::Add(sum_, PairProducts(lanes, hn::Set(D16(), 1)));
        squares_ = hn::Add(squares_, PairSums(squares));
        if constexpr (kUnsigned) {
            auto const wraps = hn::Gt(lanes, hn::Set(D16(), kLastRootInPlace));
            wrapped_ = hn::Sub(wrapped_, hn::VecFromMask(D16(), wraps));
        }
    }

    hn::Vec<D16> count_, wrapped_;
    hn::Vec<D32> sum_;
    hn::Vec<D64> squares_;
};

// Measures whole vectors, and returns how many elements these were.
template <Measure kWhat, bool kMasked, typename T>
std::ptrdiff_t MeasureVectors(T const* row, [[maybe_unused]] std::uint8_t const* mask, std::ptrdiff_t count,
                              T& smallest, T& largest, IntegerSums& sums) {
    hn::ScalableTag<T> const d;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    RangeLanes<decltype(d)> range(smallest, largest);
    std::ptrdiff_t x = 0;
    while (x + lanes <= count) {
        std::ptrdiff_t const start = x;
        std::ptrdiff_t const last = std::min(count, x + kVectorsPerBlock * lanes) - lanes;
        SumLanes<decltype(d)> block;
        for (; x <= last; x += lanes) {
            auto const pixels = hn::LoadU(d, row + x);
            if constexpr (kMasked) {
                auto const selected = Selected(d, mask + x);
                if constexpr (kWhat != Measure::kSums) range.AddSelected(pixels, selected);
                if constexpr (kWhat != Measure::kRange) block.AddSelected(pixels, selected);
            } else {
                if constexpr (kWhat != Measure::kSums) range.Add(pixels);
                if constexpr (kWhat != Measure::kRange) block.Add(pixels);
            }
        }
        if constexpr (kWhat != Measure::kRange) {
            IntegerSums const totals = block.Totals(kMasked ? block.Count() : x - start);
            sums.count += totals.count;
            sums.sum += totals.sum;
            sums.squares += totals.squares;
        }
    }
    if constexpr (kWhat != Measure::kSums) {
        smallest = range.Smallest();
        largest = range.Largest();
    }
    return x;
}

#endif

template <Measure kWhat, typename T>
IntegerSums MeasureIntegers(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, T& smallest,
                            T& largest) {
    IntegerSums sums{0, 0, 0};
    std::ptrdiff_t x = 0;
#if !ZPA_PLAIN_LOOPS
    x = mask ? MeasureVectors<kWhat, true>(row, mask, count, smallest, largest, sums)
             : MeasureVectors<kWhat, false>(row, mask, count, smallest, largest, sums);
#endif
    std::uint8_t const* const rest = mask ? mask + x : nullptr;
    if constexpr (kWhat != Measure::kSums) WidenRange(row + x, rest, count - x, smallest, largest);
    if constexpr (kWhat != Measure::kRange) AddSums(row + x, rest, count - x, sums);
    return sums;
}

template <typename T>
IntegerSums MeasureAny(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, Measure what,
                       T& smallest, T& largest) {
    switch (what) {
        case Measure::kRange:
            return MeasureIntegers<Measure::kRange>(row, mask, count, smallest, largest);
        case Measure::kSums:
            return MeasureIntegers<Measure::kSums>(row, mask, count, smallest, largest);
        default:
            return MeasureIntegers<Measure::kRangeAndSums>(row, mask, count, smallest, largest);
    }
}

template <typename T> void RangeOfFloats(T const* row, std::ptrdiff_t count, T& smallest, T& largest) {
    std::ptrdiff_t x = 0;
#if !ZPA_PLAIN_LOOPS
    hn::ScalableTag<T> const d;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    RangeLanes<decltype(d)> range(smallest, largest);
    for (; x + lanes <= count; x += lanes) range.Add(hn::LoadU(d, row + x));
    smallest = range.Smallest();
    largest = range.Largest();
#endif
    WidenRange(row + x, nullptr, count - x, smallest, largest);
}

#define ZPA_KERNELS(name, T)                                                                              \
    IntegerSums Measure##name(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, Measure what, \
                              T& smallest, T& largest) {                                                  \
        return MeasureAny(row, mask, count, what, smallest, largest);                                     \
    }
ZPA_KERNELS(8u, std::uint8_t)
ZPA_KERNELS(16s, std::int16_t)
ZPA_KERNELS(16u, std::uint16_t)
#undef ZPA_KERNELS

#define ZPA_KERNEL(name, T)                                                         \
    void Range##name(T const* row, std::ptrdiff_t count, T& smallest, T& largest) { \
        RangeOfFloats(row, count, smallest, largest);                               \
    }
ZPA_KERNEL(32f, float)
ZPA_KERNEL(64f, double)
#undef ZPA_KERNEL

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {
namespace {

#define ZPA_EXPORT(name, T)                                                                            \
    HWY_EXPORT(Measure##name);                                                                         \
    IntegerSums MeasureRow(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, Measure what, \
                           T& smallest, T& largest) {                                                  \
        return HWY_DYNAMIC_DISPATCH(Measure##name)(row, mask, count, what, smallest, largest);         \
    }
ZPA_EXPORT(8u, std::uint8_t)
ZPA_EXPORT(16s, std::int16_t)
ZPA_EXPORT(16u, std::uint16_t)
#undef ZPA_EXPORT

#define ZPA_EXPORT(name, T)                                                        \
    HWY_EXPORT(Range##name);                                                       \
    void RangeOfRow(T const* row, std::ptrdiff_t count, T& smallest, T& largest) { \
        HWY_DYNAMIC_DISPATCH(Range##name)(row, count, smallest, largest);          \
    }
ZPA_EXPORT(32f, float)
ZPA_EXPORT(64f, double)
#undef ZPA_EXPORT

// The first zero where a limit has become one: vectors find any, and zeros differ by their sign.
template <typename T> T WithItsSign(T limit, T before, T const* row, std::ptrdiff_t count) {
    return limit == 0 && before != 0 ? *std::find(row, row + count, T{0}) : limit;
}

template <typename T> void AddRange(T const* row, std::ptrdiff_t count, Statistics<T>& statistics) {
    T smallest = statistics.smallest, largest = statistics.largest;
    RangeOfRow(row, count, smallest, largest);
    statistics.smallest = WithItsSign(smallest, statistics.smallest, row, count);
    statistics.largest = WithItsSign(largest, statistics.largest, row, count);
}

template <typename T> void AddSums(T const* row, std::ptrdiff_t count, Statistics<T>& statistics) {
    long double sum = statistics.sum, squares = statistics.squares;
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        long double const element = row[x];
        sum += element;
        squares += element * element;
    }
    statistics.count += count;
    statistics.sum = sum;
    statistics.squares = squares;
}

// Elements that are measured one way and then the other, while the nearest cache holds them.
constexpr std::ptrdiff_t kBlock = 1024;

template <typename T>
void AddFloats(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, Measure what,
               Statistics<T>& statistics) {
    T selected[kBlock];
    for (std::ptrdiff_t x = 0; x < count; x += kBlock) {
        std::ptrdiff_t size = std::min(count - x, kBlock);
        T const* block = row + x;
        if (mask) {
            size = CopySelected(block, mask + x, size, selected);
            block = selected;
        }
        if (what != Measure::kSums) AddRange(block, size, statistics);
        if (what != Measure::kRange) AddSums(block, size, statistics);
    }
}

}  // namespace

template <typename T>
void AddToStatistics(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, Measure what,
                     Statistics<T>& statistics) {
    if constexpr (std::is_floating_point_v<T>) {
        AddFloats(row, mask, count, what, statistics);
    } else {
        IntegerSums const sums = MeasureRow(row, mask, count, what, statistics.smallest, statistics.largest);
        statistics.count += sums.count;
        statistics.sum += static_cast<long double>(sums.sum);
        statistics.squares += static_cast<long double>(sums.squares);
    }
}

#define ZPA_INSTANTIATE(T) \
    template void AddToStatistics(T const*, std::uint8_t const*, std::ptrdiff_t, Measure, Statistics<T>&);
ZPA_INSTANTIATE(std::uint8_t)
ZPA_INSTANTIATE(std::int16_t)
ZPA_INSTANTIATE(std::uint16_t)
ZPA_INSTANTIATE(float)
ZPA_INSTANTIATE(double)
#undef ZPA_INSTANTIATE

}  // namespace ZPA
#endif
