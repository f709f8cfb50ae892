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

// Small tables are many. Of large ones two are as many as the nearer caches hold, and of huge ones memory is
// the concern. benchmarks/Histogram.cpp found the limits.
int TablesFor(std::size_t bins) {
    if (bins <= 256) return 8;
    if (bins <= 8192) return 4;
    return bins <= 1u << 20 ? 2 : 1;
}

// Slots between tables, so that counters of one number do not share their place in the cache.
constexpr std::size_t kGap = 16;

// Numbers that are copied out before they are counted.
constexpr std::ptrdiff_t kBlock = 1024;

// Where all of a few 16-bit numbers are one, they are counted at once: large tables are too few for those.
constexpr int kRun = 8;
bool AreEqual(std::uint16_t const* numbers) {
    std::uint64_t first, second;
    static_assert(sizeof first + sizeof second == kRun * sizeof *numbers);
    std::memcpy(&first, numbers, sizeof first);
    std::memcpy(&second, numbers + kRun / 2, sizeof second);
    return first == second && first == numbers[0] * std::uint64_t{0x0001000100010001};
}

struct Slots {
    std::uint32_t* counts;
    std::size_t perTable;
    std::uint32_t low, bins;
};

template <int kTables, bool kAllInside, typename T>
void CountIn(Slots const& slots, T const* numbers, std::ptrdiff_t count) noexcept {
    auto const slotOf = [&](T number) -> std::size_t {
        std::uint32_t const bin = static_cast<std::uint32_t>(number) - slots.low;
        return kAllInside ? bin : std::min(bin, slots.bins);
    };
    std::ptrdiff_t x = 0;
    for (; x + kRun <= count; x += kRun) {
        if constexpr (sizeof(T) == 2) {
            if (AreEqual(reinterpret_cast<std::uint16_t const*>(numbers + x))) {
                slots.counts[slotOf(numbers[x])] += kRun;
                continue;
            }
        }
        for (std::size_t i = 0; i < kRun; ++i)
            ++slots
                  .counts[i % kTables * slots.perTable + slotOf(numbers[x + static_cast<std::ptrdiff_t>(i)])];
    }
    for (; x < count; ++x) ++slots.counts[slotOf(numbers[x])];
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
    slots_ = bins_ + kGap;
    tables_ = TablesFor(bins_);
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
    for (std::size_t table = 0; table < static_cast<std::size_t>(tables_); ++table) {
        std::uint32_t const* const from = counts_.get() + table * slots_;
        for (std::size_t bin = 0; bin < bins_; ++bin) to[bin] += from[bin];
    }
}

template class CountTables<std::uint8_t>;
template class CountTables<std::int16_t>;
template class CountTables<std::uint16_t>;
template class CountTables<std::uint32_t>;

}  // namespace ZPA
