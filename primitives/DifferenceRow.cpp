// Differences of two rows: whether they pass a limit, and what they are.
#include "primitives/Rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/DifferenceRow.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <type_traits>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// The size of a difference of integers fits their unsigned type.
template <class D> hn::Vec<hn::RebindToUnsigned<D>> Distance(D, hn::Vec<D> a, hn::Vec<D> b) {
    hn::RebindToUnsigned<D> const bits;
    return hn::Sub(hn::BitCast(bits, hn::Max(a, b)), hn::BitCast(bits, hn::Min(a, b)));
}

template <typename T> bool IntegersDiffer(T const* a, T const* b, std::ptrdiff_t count, int tolerance) {
    hn::ScalableTag<T> const d;
    hn::RebindToUnsigned<decltype(d)> const bits;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    auto largest = hn::Zero(bits);
    std::ptrdiff_t x = 0;
    for (; x + lanes <= count; x += lanes)
        largest = hn::Max(largest, Distance(d, hn::LoadU(d, a + x), hn::LoadU(d, b + x)));
    int tail = 0;
    for (; x < count; ++x) tail = std::max(tail, std::abs(int{b[x]} - int{a[x]}));
    if (tail >= tolerance) return true;
    if (tolerance > std::numeric_limits<std::make_unsigned_t<T>>::max()) return false;
    auto const limit = hn::Set(bits, static_cast<std::make_unsigned_t<T>>(tolerance));
    return !hn::AllFalse(bits, hn::Eq(hn::Max(largest, limit), largest));
}

template <typename T> bool FloatsDiffer(T const* a, T const* b, std::ptrdiff_t count, T tolerance) {
    hn::ScalableTag<T> const d;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    auto const limit = hn::Set(d, tolerance);
    auto any = hn::Zero(d);
    std::ptrdiff_t x = 0;
    for (; x + lanes <= count; x += lanes) {
        auto const size = hn::Abs(hn::Sub(hn::LoadU(d, b + x), hn::LoadU(d, a + x)));
        any = hn::Or(any, hn::VecFromMask(d, hn::Ge(size, limit)));
    }
    bool tail = false;
    for (; x < count; ++x) tail |= b[x] - a[x] >= tolerance || b[x] - a[x] <= -tolerance;
    return tail || !hn::AllFalse(d, hn::MaskFromVec(any));
}

template <typename T> void Subtract(T const* next, T* row, std::ptrdiff_t count) {
    hn::ScalableTag<T> const d;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    std::ptrdiff_t x = 0;
    for (; x + lanes <= count; x += lanes)
        hn::StoreU(hn::Sub(hn::LoadU(d, next + x), hn::LoadU(d, row + x)), d, row + x);
    for (; x < count; ++x) row[x] = static_cast<T>(next[x] - row[x]);
}

#define ZPA_KERNEL(name, T, Tolerance, core)                                               \
    bool Differ##name(T const* a, T const* b, std::ptrdiff_t count, Tolerance tolerance) { \
        return core(a, b, count, tolerance);                                               \
    }
ZPA_KERNEL(8u, std::uint8_t, int, IntegersDiffer)
ZPA_KERNEL(16s, std::int16_t, int, IntegersDiffer)
ZPA_KERNEL(16u, std::uint16_t, int, IntegersDiffer)
ZPA_KERNEL(32f, float, float, FloatsDiffer)
ZPA_KERNEL(64f, double, double, FloatsDiffer)
#undef ZPA_KERNEL

#define ZPA_KERNEL(name, T) \
    void Subtract##name(T const* next, T* row, std::ptrdiff_t count) { Subtract(next, row, count); }
ZPA_KERNEL(8u, std::uint8_t)
ZPA_KERNEL(16u, std::uint16_t)
ZPA_KERNEL(32u, std::uint32_t)
#undef ZPA_KERNEL

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

#define ZPA_EXPORT(name, T, Tolerance)                                                  \
    HWY_EXPORT(Differ##name);                                                           \
    bool AnyDiffer(T const* a, T const* b, std::ptrdiff_t count, Tolerance tolerance) { \
        return HWY_DYNAMIC_DISPATCH(Differ##name)(a, b, count, tolerance);              \
    }
ZPA_EXPORT(8u, std::uint8_t, int)
ZPA_EXPORT(16s, std::int16_t, int)
ZPA_EXPORT(16u, std::uint16_t, int)
ZPA_EXPORT(32f, float, float)
ZPA_EXPORT(64f, double, double)
#undef ZPA_EXPORT

#define ZPA_EXPORT(name, T)                                          \
    HWY_EXPORT(Subtract##name);                                      \
    void SubtractFrom(T const* next, T* row, std::ptrdiff_t count) { \
        HWY_DYNAMIC_DISPATCH(Subtract##name)(next, row, count);      \
    }
ZPA_EXPORT(8u, std::uint8_t)
ZPA_EXPORT(16u, std::uint16_t)
ZPA_EXPORT(32u, std::uint32_t)
#undef ZPA_EXPORT

}  // namespace ZPA
#endif
