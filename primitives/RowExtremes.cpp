// The largest or smallest of several rows: the results stay in registers while the rows pass by.
#include "primitives/RowExtremes.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/RowExtremes.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

struct Largest {
    template <class V> static HWY_INLINE V Of(V a, V b) { return hn::Max(a, b); }
};

struct Smallest {
    template <class V> static HWY_INLINE V Of(V a, V b) { return hn::Min(a, b); }
};

// Each kernel works on one vector of the rows, from element x on, or on four at once where that saves loads
// of pointers.
template <class Extreme, typename T> struct OfRows {
    T const* const* rows;
    std::ptrdiff_t rowCount;
    T* result;

    template <class D> HWY_INLINE void One(D d, std::ptrdiff_t x) const {
        auto a = hn::LoadU(d, rows[0] + x);
        for (std::ptrdiff_t row = 1; row < rowCount; ++row) a = Extreme::Of(a, hn::LoadU(d, rows[row] + x));
        hn::StoreU(a, d, result + x);
    }
    template <class D> HWY_INLINE void Four(D d, std::ptrdiff_t x) const {
        std::size_t const lanes = hn::Lanes(d);
        T const* at = rows[0] + x;
        auto a0 = hn::LoadU(d, at);
        auto a1 = hn::LoadU(d, at + lanes);
        auto a2 = hn::LoadU(d, at + 2 * lanes);
        auto a3 = hn::LoadU(d, at + 3 * lanes);
        for (std::ptrdiff_t row = 1; row < rowCount; ++row) {
            at = rows[row] + x;
            a0 = Extreme::Of(a0, hn::LoadU(d, at));
            a1 = Extreme::Of(a1, hn::LoadU(d, at + lanes));
            a2 = Extreme::Of(a2, hn::LoadU(d, at + 2 * lanes));
            a3 = Extreme::Of(a3, hn::LoadU(d, at + 3 * lanes));
        }
        hn::StoreU(a0, d, result + x);
        hn::StoreU(a1, d, result + x + lanes);
        hn::StoreU(a2, d, result + x + 2 * lanes);
        hn::StoreU(a3, d, result + x + 3 * lanes);
    }
};

template <class Extreme, typename T> struct GatherUp {
    T* last;
    std::ptrdiff_t step;
    std::ptrdiff_t rowCount;

    template <class D> HWY_INLINE void One(D d, std::ptrdiff_t x) const {
        T* at = last + x;
        auto a = hn::LoadU(d, at);
        for (std::ptrdiff_t row = 1; row < rowCount; ++row) {
            at -= step;
            a = Extreme::Of(a, hn::LoadU(d, at));
            hn::StoreU(a, d, at);
        }
    }
    template <class D> HWY_INLINE void Four(D d, std::ptrdiff_t x) const {
        std::size_t const lanes = hn::Lanes(d);
        T* at = last + x;
        auto a0 = hn::LoadU(d, at);
        auto a1 = hn::LoadU(d, at + lanes);
        auto a2 = hn::LoadU(d, at + 2 * lanes);
        auto a3 = hn::LoadU(d, at + 3 * lanes);
        for (std::ptrdiff_t row = 1; row < rowCount; ++row) {
            at -= step;
            a0 = Extreme::Of(a0, hn::LoadU(d, at));
            a1 = Extreme::Of(a1, hn::LoadU(d, at + lanes));
            a2 = Extreme::Of(a2, hn::LoadU(d, at + 2 * lanes));
            a3 = Extreme::Of(a3, hn::LoadU(d, at + 3 * lanes));
            hn::StoreU(a0, d, at);
            hn::StoreU(a1, d, at + lanes);
            hn::StoreU(a2, d, at + 2 * lanes);
            hn::StoreU(a3, d, at + 3 * lanes);
        }
    }
};

template <class Extreme, typename T> struct Carry {
    T const* row;
    T* carried;
    T const* other;
    T* result;

    template <class D> HWY_INLINE void One(D d, std::ptrdiff_t x) const {
        auto const a = Extreme::Of(hn::LoadU(d, row + x), hn::LoadU(d, carried + x));
        hn::StoreU(a, d, carried + x);
        hn::StoreU(Extreme::Of(a, hn::LoadU(d, other + x)), d, result + x);
    }
    template <class D> HWY_INLINE void Four(D d, std::ptrdiff_t x) const {
        auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
        for (std::ptrdiff_t i = 0; i < 4; ++i) One(d, x + i * lanes);
    }
};

// Whole vectors, and a last one that overlaps those before it: an extreme that is taken twice stays the same.
// False if the row is narrower than a vector.
template <class D, class Kernel> HWY_INLINE bool CoverRow(D d, Kernel const& kernel, std::ptrdiff_t count) {
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    if (count < lanes) return false;
    std::ptrdiff_t x = 0;
    for (; x + 4 * lanes <= count; x += 4 * lanes) kernel.Four(d, x);
    for (; x + lanes <= count; x += lanes) kernel.One(d, x);
    if (x < count) kernel.One(d, count - lanes);
    return true;
}

template <typename T, class Kernel> void Run(Kernel const& kernel, std::ptrdiff_t count) {
    if (CoverRow(hn::ScalableTag<T>(), kernel, count)) return;
    if (CoverRow(hn::CappedTag<T, 16 / sizeof(T)>(), kernel, count)) return;
    for (std::ptrdiff_t x = 0; x < count; ++x) kernel.One(hn::CappedTag<T, 1>(), x);
}

#define ZPA_KERNELS(Extreme, suffix, T)                                                                      \
    void Extreme##OfRows##suffix(T const* const* rows, std::ptrdiff_t rowCount, T* result,                   \
                                 std::ptrdiff_t count) {                                                     \
        Run<T>(OfRows<Extreme, T>{rows, rowCount, result}, count);                                           \
    }                                                                                                        \
    void Extreme##GatherUp##suffix(T* first, std::ptrdiff_t step, std::ptrdiff_t rowCount,                   \
                                   std::ptrdiff_t count) {                                                   \
        Run<T>(GatherUp<Extreme, T>{first + (rowCount - 1) * step, step, rowCount}, count);                  \
    }                                                                                                        \
    void Extreme##Carry##suffix(T const* row, T* carried, T const* other, T* result, std::ptrdiff_t count) { \
        Run<T>(Carry<Extreme, T>{row, carried, other, result}, count);                                       \
    }
ZPA_KERNELS(Largest, 8u, std::uint8_t)
ZPA_KERNELS(Largest, 16u, std::uint16_t)
ZPA_KERNELS(Smallest, 8u, std::uint8_t)
ZPA_KERNELS(Smallest, 16u, std::uint16_t)
#undef ZPA_KERNELS

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

#define ZPA_EXPORT(function, Extreme, suffix, T)                 \
    HWY_EXPORT(Extreme##OfRows##suffix);                         \
    HWY_EXPORT(Extreme##GatherUp##suffix);                       \
    HWY_EXPORT(Extreme##Carry##suffix);                          \
    template <> RowExtremes<T> function<T>() {                   \
        return {HWY_DYNAMIC_DISPATCH(Extreme##OfRows##suffix),   \
                HWY_DYNAMIC_DISPATCH(Extreme##GatherUp##suffix), \
                HWY_DYNAMIC_DISPATCH(Extreme##Carry##suffix)};   \
    }
ZPA_EXPORT(RowMaxima, Largest, 8u, std::uint8_t)
ZPA_EXPORT(RowMaxima, Largest, 16u, std::uint16_t)
ZPA_EXPORT(RowMinima, Smallest, 8u, std::uint8_t)
ZPA_EXPORT(RowMinima, Smallest, 16u, std::uint16_t)
#undef ZPA_EXPORT

}  // namespace ZPA
#endif
