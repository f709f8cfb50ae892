// Truth tables over rows, and the truth values of rows.
#include "primitives/LogicRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/LogicRow.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <type_traits>

#include "primitives/MapRow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

template <typename T> struct TableLookups {
    T const* a;
    T const* b;
    T none, onlyA, onlyB, both;
    template <class D> HWY_INLINE hn::Vec<D> operator()(D d, std::ptrdiff_t x) const {
        auto const zero = hn::Zero(d);
        auto const notA = hn::Eq(hn::LoadU(d, a + x), zero), notB = hn::Eq(hn::LoadU(d, b + x), zero);
        return hn::IfThenElse(notB, hn::IfThenElse(notA, hn::Set(d, none), hn::Set(d, onlyA)),
                              hn::IfThenElse(notA, hn::Set(d, onlyB), hn::Set(d, both)));
    }
};

template <typename T> struct Truths {
    T const* row;
    template <class D> HWY_INLINE hn::Vec<D> operator()(D d, std::ptrdiff_t x) const {
        hn::Rebind<T, D> const wide;
        using Bits = hwy::MakeUnsigned<T>;
        hn::Rebind<Bits, D> const bits;
        // By the bits, since a denormal may count as zero where floats are compared.
        auto value = hn::BitCast(bits, hn::LoadU(wide, row + x));
        if constexpr (std::is_floating_point_v<T>) value = hn::Add(value, value);
        auto const truths = hn::VecFromMask(bits, hn::Ne(value, hn::Zero(bits)));
        hn::Rebind<std::int8_t, D> const bytes;
        if constexpr (sizeof(T) == 8) {
            hn::Rebind<std::int32_t, D> const half;
            auto const low = hn::TruncateTo(hn::Rebind<std::uint32_t, D>(), truths);
            return hn::BitCast(d, hn::DemoteTo(bytes, hn::BitCast(half, low)));
        } else {
            hn::Rebind<hwy::MakeSigned<T>, D> const allOnes;
            return hn::BitCast(d, hn::DemoteTo(bytes, hn::BitCast(allOnes, truths)));
        }
    }
};

template <typename T>
void Combine(T const* a, T const* b, std::uint8_t const* table, T* result, std::ptrdiff_t count) {
    MapRow(hn::ScalableTag<T>(), result, count,
           TableLookups<T>{a, b, table[0], table[1], table[2], table[3]});
}

#define ZPA_KERNEL(name, T)                                                                                  \
    void Combine##name(T const* a, T const* b, std::uint8_t const* table, T* result, std::ptrdiff_t count) { \
        Combine(a, b, table, result, count);                                                                 \
    }
ZPA_KERNEL(8u, std::uint8_t)
ZPA_KERNEL(16u, std::uint16_t)
ZPA_KERNEL(32u, std::uint32_t)
#undef ZPA_KERNEL

#define ZPA_KERNEL(name, T)                                                                    \
    void Truth##name(T const* row, std::uint8_t* truths, std::ptrdiff_t count) {               \
        MapRow(hn::Rebind<std::uint8_t, hn::ScalableTag<T>>(), truths, count, Truths<T>{row}); \
    }
ZPA_KERNEL(16u, std::uint16_t)
ZPA_KERNEL(32u, std::uint32_t)
ZPA_KERNEL(32f, float)
ZPA_KERNEL(64f, double)
#undef ZPA_KERNEL

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

#define ZPA_EXPORT(name, T)                                                                                  \
    HWY_EXPORT(Combine##name);                                                                               \
    template <>                                                                                              \
    void CombineTruths(T const* a, T const* b, std::uint8_t const* table, T* result, std::ptrdiff_t count) { \
        HWY_DYNAMIC_DISPATCH(Combine##name)(a, b, table, result, count);                                     \
    }
ZPA_EXPORT(8u, std::uint8_t)
ZPA_EXPORT(16u, std::uint16_t)
ZPA_EXPORT(32u, std::uint32_t)
#undef ZPA_EXPORT

#define ZPA_EXPORT(name, T)                                                               \
    HWY_EXPORT(Truth##name);                                                              \
    template <> void TruthRow(T const* row, std::uint8_t* truths, std::ptrdiff_t count) { \
        HWY_DYNAMIC_DISPATCH(Truth##name)(row, truths, count);                            \
    }
ZPA_EXPORT(16u, std::uint16_t)
ZPA_EXPORT(32u, std::uint32_t)
ZPA_EXPORT(32f, float)
ZPA_EXPORT(64f, double)
#undef ZPA_EXPORT

}  // namespace ZPA
#endif
