// Sums, products and rotations of vectors of numbers.
#include "primitives/Vectors.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/Vectors.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Two cache lines of parts keep the additions of the widest vectors apart.
template <typename T> T Product(T const* a, T const* b, std::ptrdiff_t count) {
    constexpr std::ptrdiff_t kParts = 128 / static_cast<std::ptrdiff_t>(sizeof(T));
    hn::CappedTag<T, kParts> const d;
    constexpr std::ptrdiff_t kLanes = hn::MaxLanes(d), kVectors = kParts / kLanes;
    hn::Vec<decltype(d)> sums[kVectors];
    for (auto& sum : sums) sum = hn::Zero(d);
    std::ptrdiff_t x = 0;
    for (; x + kParts <= count; x += kParts)
        for (std::ptrdiff_t v = 0; v < kVectors; ++v)
            sums[v] =
                hn::Add(sums[v], hn::Mul(hn::LoadU(d, a + x + v * kLanes), hn::LoadU(d, b + x + v * kLanes)));

    HWY_ALIGN T parts[kParts];
    for (std::ptrdiff_t v = 0; v < kVectors; ++v) hn::Store(sums[v], d, parts + v * kLanes);
    for (std::ptrdiff_t i = 0; x < count; ++i, ++x) parts[i] += a[x] * b[x];
    for (std::ptrdiff_t half = kParts / 2; half > 0; half /= 2)
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
