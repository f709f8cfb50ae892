// Sums, products and rotations of vectors of numbers.
#include "primitives/Vectors.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/Vectors.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Two vectors, less than one of each, filled up with zeros.
template <class D> struct Rest {
    using T = hn::TFromD<D>;
    hn::Vec<D> a, b;

    Rest(D d, T const* restOfA, T const* restOfB, std::ptrdiff_t count) {
        // narrower vectors would load what lies behind the end
        if constexpr (sizeof(hn::Vec<D>) >= 32) {
            auto const first = hn::FirstN(d, static_cast<std::size_t>(count));
            a = hn::MaskedLoad(first, d, restOfA);
            b = hn::MaskedLoad(first, d, restOfB);
        } else {
            HWY_ALIGN T filledA[hn::MaxLanes(D())] = {}, filledB[hn::MaxLanes(D())] = {};
            std::copy_n(restOfA, count, filledA);
            std::copy_n(restOfB, count, filledB);
            a = hn::Load(d, filledA);
            b = hn::Load(d, filledB);
        }
    }
};

// Two cache lines of parts keep the additions of the widest vectors apart.
template <typename T> T Product(T const* a, T const* b, std::ptrdiff_t count) {
    constexpr std::ptrdiff_t kParts = 128 / static_cast<std::ptrdiff_t>(sizeof(T));
    hn::CappedTag<T, kParts> const d;
    constexpr std::ptrdiff_t kLanes = hn::MaxLanes(d), kVectors = kParts / kLanes;
    hn::Vec<decltype(d)> sums[kVectors];
    for (auto& sum : sums) sum = hn::Zero(d);
    auto const addTo = [&](std::ptrdiff_t v, std::ptrdiff_t x) {
        sums[v] = hn::Add(sums[v], hn::Mul(hn::LoadU(d, a + x), hn::LoadU(d, b + x)));
    };
    std::ptrdiff_t x = 0;
    for (; x + kParts <= count; x += kParts)
        for (std::ptrdiff_t v = 0; v < kVectors; ++v) addTo(v, x + v * kLanes);
    for (std::ptrdiff_t v = 0; v < kVectors && x < count; ++v, x += kLanes) {
        if (x + kLanes <= count) {
            addTo(v, x);
        } else {
            Rest<decltype(hn::CappedTag<T, kParts>())> const rest(d, a + x, b + x, count - x);
            sums[v] = hn::Add(sums[v], hn::Mul(rest.a, rest.b));
        }
    }

    for (std::ptrdiff_t half = kVectors / 2; half > 0; half /= 2)
        for (std::ptrdiff_t v = 0; v < half; ++v) sums[v] = hn::Add(sums[v], sums[half + v]);
    HWY_ALIGN T parts[kLanes];
    hn::Store(sums[0], d, parts);
    for (std::ptrdiff_t half = kLanes / 2; half > 0; half /= 2)
        for (std::ptrdiff_t i = 0; i < half; ++i) parts[i] += parts[half + i];
    return parts[0];
}

template <typename T> void Add(T factor, T const* a, T* sum, std::ptrdiff_t count) {
    hn::ScalableTag<T> const d;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    auto const factors = hn::Set(d, factor);
    std::ptrdiff_t x = 0;
    for (; x + lanes <= count; x += lanes)
        hn::StoreU(hn::Add(hn::LoadU(d, sum + x), hn::Mul(factors, hn::LoadU(d, a + x))), d, sum + x);
    for (; x < count; ++x) sum[x] += factor * a[x];
}

template <typename T> void Turn(T* a, T* b, T cosine, T sine, std::ptrdiff_t count) {
    hn::ScalableTag<T> const d;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    auto const c = hn::Set(d, cosine), s = hn::Set(d, sine);
    std::ptrdiff_t x = 0;
    for (; x + lanes <= count; x += lanes) {
        auto const one = hn::LoadU(d, a + x), other = hn::LoadU(d, b + x);
        hn::StoreU(hn::Add(hn::Mul(one, c), hn::Mul(other, s)), d, a + x);
        hn::StoreU(hn::Sub(hn::Mul(other, c), hn::Mul(one, s)), d, b + x);
    }
    for (; x < count; ++x) {
        T const one = a[x], other = b[x];
        a[x] = one * cosine + other * sine;
        b[x] = other * cosine - one * sine;
    }
}

#define ZPA_KERNELS(name, T)                                                                           \
    T Product##name(T const* a, T const* b, std::ptrdiff_t count) { return Product(a, b, count); }     \
    void Add##name(T factor, T const* a, T* sum, std::ptrdiff_t count) { Add(factor, a, sum, count); } \
    void Turn##name(T* a, T* b, T cosine, T sine, std::ptrdiff_t count) { Turn(a, b, cosine, sine, count); }
ZPA_KERNELS(32f, float)
ZPA_KERNELS(64f, double)
#undef ZPA_KERNELS

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

#define ZPA_EXPORTS(name, T)                                               \
    HWY_EXPORT(Product##name);                                             \
    HWY_EXPORT(Add##name);                                                 \
    HWY_EXPORT(Turn##name);                                                \
    T InnerProduct(T const* a, T const* b, std::ptrdiff_t count) {         \
        return HWY_DYNAMIC_DISPATCH(Product##name)(a, b, count);           \
    }                                                                      \
    void AddMultiple(T factor, T const* a, T* sum, std::ptrdiff_t count) { \
        HWY_DYNAMIC_DISPATCH(Add##name)(factor, a, sum, count);            \
    }                                                                      \
    void Rotate(T* a, T* b, T cosine, T sine, std::ptrdiff_t count) {      \
        HWY_DYNAMIC_DISPATCH(Turn##name)(a, b, cosine, sine, count);       \
    }
ZPA_EXPORTS(32f, float)
ZPA_EXPORTS(64f, double)
#undef ZPA_EXPORTS

}  // namespace ZPA
#endif
