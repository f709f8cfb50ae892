// Counts of whole numbers, one for each number of a range.
#include "primitives/CountTables.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>

#include "primitives/CopySelected.h"

namespace ZPA {
namespace {

// Small tables are many. Of large ones there are as many as the processor holds near, pages and all, and one
// of the largest: runs of equal numbers, its worst case, are counted apart. benchmarks/Histogram.cpp found
// the limits.
constexpr std::size_t kBinsOfEightTables = 256;
int TablesFor(std::size_t bins) {
    if (bins <= kBinsOfEightTables) return 8;
    if (bins <= 8192) return 4;
    return bins <= 32768 ? 2 : 1;
}

// Slots between tables, so that counters of one number do not share their place in the cache.
constexpr std::size_t kGap = 16;

// Of a table. Small ones have the same size, which the compiler then knows: it is short of registers for the
// places of eight tables.
constexpr std::size_t SlotsFor(std::size_t bins, int tables) {
    return (tables == 8 ? kBinsOfEightTables : bins) + kGap;
}

// Numbers that are copied out before they are counted.
constexpr std::ptrdiff_t kBlock = 1024;

// Numbers that are read at once.
constexpr std::ptrdiff_t kGroup = 8;

// Of 16-bit numbers.
bool AreEqual(void const* numbers) {
    std::uint64_t words[2];
    static_assert(sizeof words == kGroup * sizeof(std::uint16_t));
    std::memcpy(words, numbers, sizeof words);
    return words[0] == words[1] && words[0] == (words[0] & 0xFFFF) * std::uint64_t{0x0001000100010001};
}

struct Slots {
    std::uint32_t* counts;
    std::size_t perTable;
    std::uint32_t low, bins;
};

// By value: a counter could be one of the fields, as far as the compiler knows of a reference.
template <int kTables, bool kAllInside, typename T>
void CountIn(Slots slots, T const* numbers, std::ptrdiff_t count) noexcept {
    constexpr auto kLowest = static_cast<std::uint32_t>(std::numeric_limits<T>::min());
    auto const slotOf = [low = slots.low, bins = slots.bins](T number) -> std::size_t {
        std::uint32_t const wide = static_cast<std::uint32_t>(number);
        return kAllInside ? wide - kLowest : std::min(wide - low, bins);
    };
    std::size_t const perTable = kTables == 8 ? SlotsFor(0, kTables) : slots.perTable;
    auto const counts = [=](std::size_t table) { return slots.counts + table * perTable; };
    std::ptrdiff_t x = 0;
    for (; x + kGroup <= count; x += kGroup) {
        if (sizeof(T) == 2 && AreEqual(numbers + x)) {
            counts(0)[slotOf(numbers[x])] += kGroup;
            continue;
        }
        for (std::size_t i = 0; i < kGroup; ++i)
            ++counts(i % kTables)[slotOf(numbers[x + static_cast<std::ptrdiff_t>(i)])];
    }
    for (; x < count; ++x) ++counts(0)[slotOf(numbers[x])];
}

template <typename T, typename Mask>
void CountWhere(CountTables<T>& tables, T const* numbers, Mask const* mask, std::ptrdiff_t count) noexcept {
    T selected[kBlock];
    for (std::ptrdiff_t x = 0; x < count; x += kBlock)
        tables.Count(selected, CopySelected(numbers + x, mask + x, std::min(count - x, kBlock), selected));
}

}  // namespace

template <typename T> bool CountTables<T>::Prepare(std::int64_t low, std::int64_t bins) noexcept {
    using Limits = std::numeric_limits<T>;
    low_ = low;
    first_ = std::max<std::int64_t>(low, Limits::min());
    std::int64_t const end = std::min<std::int64_t>(low + bins, std::int64_t{Limits::max()} + 1);
    bins_ = static_cast<std::size_t>(std::max<std::int64_t>(end - first_, 0));
    tables_ = TablesFor(bins_);
    slots_ = SlotsFor(bins_, tables_);
    if (bins_ > std::numeric_limits<std::int32_t>::max()) return false;
    counts_.reset(new (std::nothrow) std::uint32_t[slots_ * static_cast<std::size_t>(tables_)]());
    return counts_ != nullptr;
}

template <typename T> void CountTables<T>::Count(T const* numbers, std::ptrdiff_t count) noexcept {
    Slots const slots{counts_.get(), slots_, static_cast<std::uint32_t>(first_),
                      static_cast<std::uint32_t>(bins_)};
    constexpr std::uint64_t kAll = std::uint64_t{std::numeric_limits<std::make_unsigned_t<T>>::max()} + 1;
    auto const countIn = [&](auto all) {
        switch (tables_) {
            case 8:
                return CountIn<8, all.value>(slots, numbers, count);
            case 4:
                return CountIn<4, all.value>(slots, numbers, count);
            case 2:
                return CountIn<2, all.value>(slots, numbers, count);
            default:
                return CountIn<1, all.value>(slots, numbers, count);
        }
    };
    if (bins_ == kAll)
        countIn(std::true_type());
    else
        countIn(std::false_type());
}

template <typename T>
void CountTables<T>::CountSelected(T const* numbers, std::uint8_t const* mask,
                                   std::ptrdiff_t count) noexcept {
    CountWhere(*this, numbers, mask, count);
}

template <typename T>
void CountTables<T>::CountSelected(T const* numbers, std::uint16_t const* mask,
                                   std::ptrdiff_t count) noexcept {
    CountWhere(*this, numbers, mask, count);
}

template <typename T> void CountTables<T>::AddTo(std::uint32_t* counts) const noexcept {
    std::uint32_t* const to = counts + (first_ - low_);
    // In blocks, so that the sums stay in the nearest cache from table to table.
    for (std::size_t start = 0; start < bins_; start += kBlock) {
        std::size_t const end = std::min<std::size_t>(start + kBlock, bins_);
        for (std::size_t table = 0; table < static_cast<std::size_t>(tables_); ++table) {
            std::uint32_t const* const from = counts_.get() + table * slots_;
            for (std::size_t bin = start; bin < end; ++bin) to[bin] += from[bin];
        }
    }
}

template class CountTables<std::uint8_t>;
template class CountTables<std::int16_t>;
template class CountTables<std::uint16_t>;
template class CountTables<std::uint32_t>;

}  // namespace ZPA
