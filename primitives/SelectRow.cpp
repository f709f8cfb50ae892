// Rows changed where a mask or a limit says so.
#include "primitives/Rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/SelectRow.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR

// Bytes that are all ones or all zeros, as a mask over elements of another size.
template <class D> hn::Mask<D> MaskOf(D d, hn::Vec<hn::Rebind<std::int8_t, D>> ones) {
    using T = hn::TFromD<D>;
    hn::Rebind<hwy::MakeSigned<T>, D> const wide;
    if constexpr (sizeof(T) == 1) {
        return hn::RebindMask(d, hn::MaskFromVec(ones));
    } else if constexpr (sizeof(T) == 8) {
        hn::Rebind<std::int32_t, D> const half;
        return hn::RebindMask(d, hn::MaskFromVec(hn::PromoteTo(wide, hn::PromoteTo(half, ones))));
    } else {
        return hn::RebindMask(d, hn::MaskFromVec(hn::PromoteTo(wide, ones)));
    }
}

#endif

template <typename T>
void Fill(T* row, std::uint8_t const* mask, std::ptrdiff_t count, T value, std::uint8_t key, bool equal) {
    std::ptrdiff_t x = 0;
#if HWY_TARGET != HWY_SCALAR
    hn::ScalableTag<T> const d;
    hn::Rebind<std::uint8_t, decltype(d)> const bytes;
    hn::Rebind<std::int8_t, decltype(d)> const ones;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    auto const values = hn::Set(d, value);
    auto const keys = hn::Set(bytes, key);
    auto const flip = hn::Set(ones, static_cast<std::int8_t>(equal ? 0 : -1));
    for (; x + lanes <= count; x += lanes) {
        auto const matches = hn::VecFromMask(bytes, hn::Eq(hn::LoadU(bytes, mask + x), keys));
        hn::BlendedStore(values, MaskOf(d, hn::Xor(hn::BitCast(ones, matches), flip)), d, row + x);
    }
#endif
    for (; x < count; ++x)
        if ((mask[x] == key) == equal) row[x] = value;
}

template <typename T> void Clear(T* row, std::uint8_t const* mask, std::ptrdiff_t count) {
    std::ptrdiff_t x = 0;
#if HWY_TARGET != HWY_SCALAR
    hn::ScalableTag<T> const d;
    hn::Rebind<std::uint8_t, decltype(d)> const bytes;
    hn::Rebind<std::int8_t, decltype(d)> const ones;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    for (; x + lanes <= count; x += lanes) {
        auto const zeros = hn::VecFromMask(bytes, hn::Eq(hn::LoadU(bytes, mask + x), hn::Zero(bytes)));
        auto const cleared = MaskOf(d, hn::BitCast(ones, zeros));
        hn::BlendedStore(hn::Zero(d), cleared, d, row + x);
    }
#endif
    for (; x < count; ++x)
        if (mask[x] == 0) row[x] = 0;
}

#define ZPA_KERNEL(name, T)                                                                            \
    void Fill##name(T* row, std::uint8_t const* mask, std::ptrdiff_t count, T value, std::uint8_t key, \
                    bool equal) {                                                                      \
        Fill(row, mask, count, value, key, equal);                                                     \
    }
ZPA_KERNEL(8u, std::uint8_t)
ZPA_KERNEL(16u, std::uint16_t)
ZPA_KERNEL(32f, float)
ZPA_KERNEL(64f, double)
#undef ZPA_KERNEL

void Clear8u(std::uint8_t* row, std::uint8_t const* mask, std::ptrdiff_t count) { Clear(row, mask, count); }
void Clear16u(std::uint16_t* row, std::uint8_t const* mask, std::ptrdiff_t count) { Clear(row, mask, count); }

void Clip16s(std::int16_t* row, std::ptrdiff_t count, std::int16_t low, std::int16_t high) {
    hn::ScalableTag<std::int16_t> const d;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    auto const lows = hn::Set(d, low);
    auto const highs = hn::Set(d, high);
    std::ptrdiff_t x = 0;
    for (; x + lanes <= count; x += lanes) {
        auto const pixels = hn::LoadU(d, row + x);
        auto const notHigh = hn::IfThenElse(hn::Gt(pixels, highs), highs, pixels);
        hn::StoreU(hn::IfThenElse(hn::Lt(pixels, lows), lows, notHigh), d, row + x);
    }
    for (; x < count; ++x) row[x] = row[x] < low ? low : row[x] > high ? high : row[x];
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

#define ZPA_FILL(name, T)                                                                            \
    HWY_EXPORT(Fill##name);                                                                          \
    void FillSelected(T* row, std::uint8_t const* mask, std::ptrdiff_t count, T value, int wanted) { \
        if (wanted > UINT8_MAX) return;                                                              \
        bool const equal = wanted >= 0;                                                              \
        HWY_DYNAMIC_DISPATCH(Fill##name)                                                             \
        (row, mask, count, value, static_cast<std::uint8_t>(equal ? wanted : 0), equal);             \
    }
ZPA_FILL(8u, std::uint8_t)
ZPA_FILL(16u, std::uint16_t)
ZPA_FILL(32f, float)
ZPA_FILL(64f, double)
#undef ZPA_FILL

HWY_EXPORT(Clear8u);
void ClearUnmasked(std::uint8_t* row, std::uint8_t const* mask, std::ptrdiff_t count) {
    HWY_DYNAMIC_DISPATCH(Clear8u)(row, mask, count);
}

HWY_EXPORT(Clear16u);
void ClearUnmasked(std::uint16_t* row, std::uint8_t const* mask, std::ptrdiff_t count) {
    HWY_DYNAMIC_DISPATCH(Clear16u)(row, mask, count);
}

HWY_EXPORT(Clip16s);
void ClipRow(std::int16_t* row, std::ptrdiff_t count, std::int16_t low, std::int16_t high) {
    HWY_DYNAMIC_DISPATCH(Clip16s)(row, count, low, high);
}

}  // namespace ZPA
#endif
