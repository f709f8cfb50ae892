// How often a value stands in a row.
#include "primitives/MatchRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/MatchRow.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <limits>

#include "primitives/SelectedLanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// The plain loop: rows without vectors, and what is left over after the last whole one.
template <typename T>
void AddMatches(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, T value, Matches& matches) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        if (mask && !mask[x]) continue;
        ++matches.selected;
        matches.equal += row[x] == value;
    }
}

#if !ZPA_PLAIN_LOOPS

template <typename T>
std::ptrdiff_t MatchVectors(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, T value,
                            Matches& matches) {
    hn::ScalableTag<T> const d;
    hn::Repartition<std::uint8_t, decltype(d)> const bytes;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    auto const values = hn::Set(d, value);
    auto const ones = [&](auto matching) { return hn::BitCast(bytes, hn::VecFromMask(d, matching)); };
    std::ptrdiff_t x = 0;
    while (x + lanes <= count) {
        // Each byte of a lane counts: no more than a byte holds.
        std::ptrdiff_t const last = std::min(count, x + 255 * lanes) - lanes;
        std::ptrdiff_t const start = x;
        auto equal = hn::Zero(bytes), chosen = hn::Zero(bytes);
        if (mask) {
            for (; x <= last; x += lanes) {
                auto const selected = Selected(d, mask + x);
                auto const matching = hn::And(selected, hn::Eq(hn::LoadU(d, row + x), values));
                equal = hn::Sub(equal, ones(matching));
                chosen = hn::Sub(chosen, ones(selected));
            }
            matches.selected += Total(hn::SumsOf8(chosen)) / std::int64_t{sizeof(T)};
        } else {
            for (; x <= last; x += lanes) equal = hn::Sub(equal, ones(hn::Eq(hn::LoadU(d, row + x), values)));
            matches.selected += x - start;
        }
        matches.equal += Total(hn::SumsOf8(equal)) / std::int64_t{sizeof(T)};
    }
    return x;
}

#endif

template <typename T>
Matches MatchesOf(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, T value) {
    Matches matches{0, 0};
    std::ptrdiff_t x = 0;
#if !ZPA_PLAIN_LOOPS
    x = MatchVectors(row, mask, count, value, matches);
#endif
    AddMatches(row + x, mask ? mask + x : nullptr, count - x, value, matches);
    return matches;
}

// Compiled for each target, this becomes vectors by itself.
template <typename T>
void MatchColumns(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, int value,
                  std::uint32_t* equal, std::uint32_t* other) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        bool const selected = !mask || mask[x] != 0;
        bool const matching = row[x] == value;
        equal[x] += selected && matching;
        other[x] += selected && !matching;
    }
}

#define ZPA_KERNEL(name, T)                                                                      \
    Matches Match##name(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, T value) { \
        return MatchesOf(row, mask, count, value);                                               \
    }
ZPA_KERNEL(8u, std::uint8_t)
ZPA_KERNEL(16s, std::int16_t)
ZPA_KERNEL(16u, std::uint16_t)
#undef ZPA_KERNEL

#define ZPA_KERNEL(name, T)                                                                          \
    void MatchColumns##name(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, int value, \
                            std::uint32_t* equal, std::uint32_t* other) {                            \
        MatchColumns(row, mask, count, value, equal, other);                                         \
    }
ZPA_KERNEL(8u, std::uint8_t)
ZPA_KERNEL(16u, std::uint16_t)
#undef ZPA_KERNEL

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

#define ZPA_EXPORT(name, T)                                                                                 \
    HWY_EXPORT(Match##name);                                                                                \
    Matches CountMatches(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, int value) {         \
        bool const possible =                                                                               \
            value >= std::numeric_limits<T>::min() && value <= std::numeric_limits<T>::max();               \
        Matches const matches = HWY_DYNAMIC_DISPATCH(Match##name)(row, mask, count, static_cast<T>(value)); \
        return {possible ? matches.equal : 0, matches.selected};                                            \
    }
ZPA_EXPORT(8u, std::uint8_t)
ZPA_EXPORT(16s, std::int16_t)
ZPA_EXPORT(16u, std::uint16_t)
#undef ZPA_EXPORT

#define ZPA_EXPORT(name, T)                                                                            \
    HWY_EXPORT(MatchColumns##name);                                                                    \
    void CountMatchesByColumn(T const* row, std::uint8_t const* mask, std::ptrdiff_t count, int value, \
                              std::uint32_t* equal, std::uint32_t* other) {                            \
        HWY_DYNAMIC_DISPATCH(MatchColumns##name)(row, mask, count, value, equal, other);               \
    }
ZPA_EXPORT(8u, std::uint8_t)
ZPA_EXPORT(16u, std::uint16_t)
#undef ZPA_EXPORT

}  // namespace ZPA
#endif
