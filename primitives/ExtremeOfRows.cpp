// The largest or smallest of several rows: one pass with the results in registers.
#include "primitives/ExtremeOfRows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/ExtremeOfRows.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

struct Largest {
    template <typename T> T operator()(T a, T b) const { return std::max(a, b); }
    template <class D, class V> V operator()(D, V a, V b) const { return hn::Max(a, b); }
};

struct Smallest {
    template <typename T> T operator()(T a, T b) const { return std::min(a, b); }
    template <class D, class V> V operator()(D, V a, V b) const { return hn::Min(a, b); }
};

// Whole vectors, and a last one that overlaps those before it: an extreme taken twice is the same, even where
// the result is one of the rows. The count must be a vector's at least.
template <class D, class Extreme, typename T = hn::TFromD<D>>
HWY_INLINE void VectorsOfRows(D d, Extreme extreme, T const* const* rows, std::ptrdiff_t rowCount, T* result,
                              std::ptrdiff_t count) {
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    std::ptrdiff_t x = 0;
    for (; x + 4 * lanes <= count; x += 4 * lanes) {
        T const* at = rows[0] + x;
        auto a = hn::LoadU(d, at);
        auto b = hn::LoadU(d, at + lanes);
        auto c = hn::LoadU(d, at + 2 * lanes);
        auto e = hn::LoadU(d, at + 3 * lanes);
        for (std::ptrdiff_t row = 1; row < rowCount; ++row) {
            at = rows[row] + x;
            a = extreme(d, a, hn::LoadU(d, at));
            b = extreme(d, b, hn::LoadU(d, at + lanes));
            c = extreme(d, c, hn::LoadU(d, at + 2 * lanes));
            e = extreme(d, e, hn::LoadU(d, at + 3 * lanes));
        }
        hn::StoreU(a, d, result + x);
        hn::StoreU(b, d, result + x + lanes);
        hn::StoreU(c, d, result + x + 2 * lanes);
        hn::StoreU(e, d, result + x + 3 * lanes);
    }
    while (x < count) {
        x = std::min(x, count - lanes);
        auto a = hn::LoadU(d, rows[0] + x);
        for (std::ptrdiff_t row = 1; row < rowCount; ++row) a = extreme(d, a, hn::LoadU(d, rows[row] + x));
        hn::StoreU(a, d, result + x);
        x += lanes;
    }
}

template <class Extreme, typename T>
void OfRows(Extreme extreme, T const* const* rows, std::ptrdiff_t rowCount, T* result, std::ptrdiff_t count) {
    hn::ScalableTag<T> const whole;
    hn::CappedTag<T, 16 / sizeof(T)> const small;  // for rows narrower than a long vector
    if (count >= static_cast<std::ptrdiff_t>(hn::Lanes(whole)))
        return VectorsOfRows(whole, extreme, rows, rowCount, result, count);
    if (count >= static_cast<std::ptrdiff_t>(hn::Lanes(small)))
        return VectorsOfRows(small, extreme, rows, rowCount, result, count);
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        T value = rows[0][x];
        for (std::ptrdiff_t row = 1; row < rowCount; ++row) value = extreme(value, rows[row][x]);
        result[x] = value;
    }
}

#define ZPA_KERNEL(name, T)                                                                               \
    void Largest##name(T const* const* rows, std::ptrdiff_t rowCount, T* result, std::ptrdiff_t count) {  \
        OfRows(Largest(), rows, rowCount, result, count);                                                 \
    }                                                                                                     \
    void Smallest##name(T const* const* rows, std::ptrdiff_t rowCount, T* result, std::ptrdiff_t count) { \
        OfRows(Smallest(), rows, rowCount, result, count);                                                \
    }
ZPA_KERNEL(8u, std::uint8_t)
ZPA_KERNEL(16u, std::uint16_t)
#undef ZPA_KERNEL

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

#define ZPA_EXPORT(name, T)                                                                              \
    HWY_EXPORT(Largest##name);                                                                           \
    void MaximumOfRows(T const* const* rows, std::ptrdiff_t rowCount, T* result, std::ptrdiff_t count) { \
        HWY_DYNAMIC_DISPATCH(Largest##name)(rows, rowCount, result, count);                              \
    }                                                                                                    \
    HWY_EXPORT(Smallest##name);                                                                          \
    void MinimumOfRows(T const* const* rows, std::ptrdiff_t rowCount, T* result, std::ptrdiff_t count) { \
        HWY_DYNAMIC_DISPATCH(Smallest##name)(rows, rowCount, result, count);                             \
    }
ZPA_EXPORT(8u, std::uint8_t)
ZPA_EXPORT(16u, std::uint16_t)
#undef ZPA_EXPORT

}  // namespace ZPA
#endif
