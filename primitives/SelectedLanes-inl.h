// Lanes that a mask selects, and sums of lanes. Included by kernels once for each SIMD target.
#if defined(ZPA_PRIMITIVES_SELECTEDLANES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ZPA_PRIMITIVES_SELECTEDLANES_INL_H
#undef ZPA_PRIMITIVES_SELECTEDLANES_INL_H
#else
#define ZPA_PRIMITIVES_SELECTEDLANES_INL_H
#endif

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

// Without vectors plain loops do it all.
#undef ZPA_PLAIN_LOOPS
#define ZPA_PLAIN_LOOPS (HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128)

#if !ZPA_PLAIN_LOOPS
HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Which elements their mask bytes select.
template <class D> hn::Mask<D> Selected(D d, std::uint8_t const* mask) {
    hn::RebindToUnsigned<D> const bits;
    if constexpr (sizeof(hn::TFromD<D>) == 1) {
        return hn::RebindMask(d, hn::Ne(hn::LoadU(bits, mask), hn::Zero(bits)));
    } else {
        hn::Rebind<std::uint8_t, D> const bytes;
        auto const wide = hn::PromoteTo(bits, hn::LoadU(bytes, mask));
        return hn::RebindMask(d, hn::Ne(wide, hn::Zero(bits)));
    }
}

template <class V> using DOf = hn::DFromV<V>;

// Every second 8-bit lane, widened.
template <class V> auto Even(V lanes) {
    hn::RepartitionToWide<DOf<V>> const wide;
    return hn::And(hn::BitCast(wide, lanes), hn::Set(wide, 255));
}
template <class V> auto Odd(V lanes) {
    hn::RepartitionToWide<DOf<V>> const wide;
    return hn::ShiftRight<8>(hn::BitCast(wide, lanes));
}

// Products of signed 16-bit lanes, those of neighbours added.
template <class V> auto PairProducts(V a, V b) {
    hn::RepartitionToWide<DOf<V>> const wide;
    auto odd = hn::Zero(wide);
    auto const even = hn::ReorderWidenMulAccumulate(wide, a, b, hn::Zero(wide), odd);
    return hn::Add(even, odd);
}

// Unsigned 32-bit lanes, neighbours added.
template <class V> auto PairSums(V lanes) {
    hn::RepartitionToWide<DOf<V>> const wide;
    auto const both = hn::BitCast(wide, lanes);
    return hn::Add(hn::And(both, hn::Set(wide, 0xFFFFFFFFu)), hn::ShiftRight<32>(both));
}

// The sum of all lanes of 64 bits, and of signed lanes of 32 and 16.
template <class V> std::int64_t Total(V lanes) {
    using D = DOf<V>;
    if constexpr (sizeof(hn::TFromD<D>) == 2) {
        return Total(PairProducts(lanes, hn::Set(D(), 1)));
    } else if constexpr (sizeof(hn::TFromD<D>) == 4) {
        hn::RepartitionToWide<D> const wide;
        auto const both = hn::BitCast(wide, lanes);
        auto const even =
            hn::BitCast(wide, hn::ShiftLeft<32>(hn::BitCast(hn::RebindToUnsigned<decltype(wide)>(), lanes)));
        return Total(hn::Add(hn::ShiftRight<32>(even), hn::ShiftRight<32>(both)));
    } else {
        return static_cast<std::int64_t>(hn::GetLane(hn::SumOfLanes(D(), lanes)));
    }
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#endif
