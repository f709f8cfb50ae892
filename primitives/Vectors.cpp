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

// Less than a vector, filled up with zeros.
template <class D> hn::Vec<D> LoadRest(D d, hn::TFromD<D> const* rest, std::ptrdiff_t count) {
    // narrower vectors would load what lies behind the end
    if constexpr (sizeof(hn::Vec<D>) >= 32) {
        return hn::MaskedLoad(hn::FirstN(d, static_cast<std::size_t>(count)), d, rest);
    } else {
        HWY_ALIGN hn::TFromD<D> filled[hn::MaxLanes(D())] = {};
        std::copy_n(rest, count, filled);
        return hn::Load(d, filled);
    }
}

// Lane i with lane i of the other half, until there is one.
template <class D> hn::TFromD<D> FoldLanes([[maybe_unused]] D d, hn::Vec<D> v) {
    if constexpr (hn::MaxLanes(D()) == 1) {
        return hn::GetLane(v);
    } else {
        hn::Half<D> const half;
        // unqualified, as targets of one lane have no upper half
        return FoldLanes(half, hn::Add(hn::LowerHalf(half, v), UpperHalf(half, v)));
    }
}

// Two cache lines of parts keep the additions of the widest vectors apart.
template <typename T> struct Parts {
    static constexpr std::ptrdiff_t kNumber = 128 / static_cast<std::ptrdiff_t>(sizeof(T));
    using Tag = hn::CappedTag<T, kNumber>;
    static constexpr std::ptrdiff_t kLanes = hn::MaxLanes(Tag()), kVectors = kNumber / kLanes;
};

// Of some rows with one vector, loaded once.
template <std::ptrdiff_t kRows, typename T>
HWY_INLINE void Products(T const* const (&a)[kRows], T const* b, T* products, std::ptrdiff_t count) {
    constexpr std::ptrdiff_t kLanes = Parts<T>::kLanes, kVectors = Parts<T>::kVectors;
    typename Parts<T>::Tag const d;
    hn::Vec<decltype(d)> sums[kRows][kVectors];
    for (auto& row : sums)
        for (auto& sum : row) sum = hn::Zero(d);
    auto const addTo = [&](std::ptrdiff_t v, auto const& load) {
        auto const factors = load(b);
        for (std::ptrdiff_t row = 0; row < kRows; ++row)
            sums[row][v] = hn::Add(sums[row][v], hn::Mul(load(a[row]), factors));
    };
    std::ptrdiff_t x = 0;
    auto const whole = [&](T const* from) { return hn::LoadU(d, from + x); };
    auto const rest = [&](T const* from) { return LoadRest(d, from + x, count - x); };
    while (x + Parts<T>::kNumber <= count)
        for (std::ptrdiff_t v = 0; v < kVectors; ++v, x += kLanes) addTo(v, whole);
    for (std::ptrdiff_t v = 0; v < kVectors && x < count; ++v, x += kLanes) {
        if (x + kLanes <= count)
            addTo(v, whole);
        else
            addTo(v, rest);
    }

    for (std::ptrdiff_t row = 0; row < kRows; ++row) {
        for (std::ptrdiff_t half = kVectors / 2; half > 0; half /= 2)
            for (std::ptrdiff_t v = 0; v < half; ++v)
                sums[row][v] = hn::Add(sums[row][v], sums[row][half + v]);
        products[row] = FoldLanes(d, sums[row][0]);
    }
}

template <typename T> T Product(T const* a, T const* b, std::ptrdiff_t count) {
    T product;
    Products<1>({a}, b, &product, count);
    return product;
}

template <typename T>
void MultiplyRows(MatrixRows<T> const& a, T const* b, T* products, std::ptrdiff_t rows,
                  std::ptrdiff_t count) {
    std::ptrdiff_t row = 0;
    // as many as leave registers for what is loaded
    if constexpr (Parts<T>::kVectors <= 2)
        for (; row + 4 <= rows; row += 4)
            Products<4>({a[row], a[row + 1], a[row + 2], a[row + 3]}, b, products + row, count);
    if constexpr (Parts<T>::kVectors <= 4)
        for (; row + 2 <= rows; row += 2) Products<2>({a[row], a[row + 1]}, b, products + row, count);
    for (; row < rows; ++row) Products<1>({a[row]}, b, products + row, count);
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

// Adds the same columns of all rows; `load` and `store` move the vector v of them.
template <std::ptrdiff_t kVectors, class D, typename T, class Load, class Store>
void AddColumns(D d, T const* factors, MatrixRows<T> const& a, T* sum, std::ptrdiff_t rows, Load const& load,
                Store const& store) {
    hn::Vec<D> sums[kVectors];
    for (std::ptrdiff_t v = 0; v < kVectors; ++v) sums[v] = load(sum, v);
    for (std::ptrdiff_t row = 0; row < rows; ++row) {
        auto const factor = hn::Set(d, factors[row]);
        for (std::ptrdiff_t v = 0; v < kVectors; ++v)
            sums[v] = hn::Add(sums[v], hn::Mul(factor, load(a[row], v)));
    }
    for (std::ptrdiff_t v = 0; v < kVectors; ++v) store(sums[v], v);
}

template <typename T>
void AddRows(T const* factors, MatrixRows<T> const& a, T* sum, std::ptrdiff_t rows, std::ptrdiff_t count) {
    hn::ScalableTag<T> const d;
    using Vector = hn::Vec<decltype(d)>;
    constexpr std::ptrdiff_t kLanes = hn::MaxLanes(d), kVectors = 4;
    std::ptrdiff_t x = 0;
    auto const load = [&](T const* row, std::ptrdiff_t v) { return hn::LoadU(d, row + x + v * kLanes); };
    auto const store = [&](Vector sums, std::ptrdiff_t v) { hn::StoreU(sums, d, sum + x + v * kLanes); };
    for (; x + kVectors * kLanes <= count; x += kVectors * kLanes)
        AddColumns<kVectors>(d, factors, a, sum, rows, load, store);
    for (; x + kLanes <= count; x += kLanes) AddColumns<1>(d, factors, a, sum, rows, load, store);
    if (x < count)
        AddColumns<1>(
            d, factors, a, sum, rows,
            [&](T const* row, std::ptrdiff_t) { return LoadRest(d, row + x, count - x); },
            [&](Vector sums, std::ptrdiff_t) {
                HWY_ALIGN T filled[kLanes];
                hn::Store(sums, d, filled);
                std::copy_n(filled, count - x, sum + x);
            });
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
    void MultiplyRows##name(MatrixRows<T> const& a, T const* b, T* products, std::ptrdiff_t rows,      \
                            std::ptrdiff_t count) {                                                    \
        MultiplyRows(a, b, products, rows, count);                                                     \
    }                                                                                                  \
    void AddRows##name(T const* factors, MatrixRows<T> const& a, T* sum, std::ptrdiff_t rows,          \
                       std::ptrdiff_t count) {                                                         \
        AddRows(factors, a, sum, rows, count);                                                         \
    }                                                                                                  \
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

#define ZPA_EXPORTS(name, T)                                                                 \
    HWY_EXPORT(Product##name);                                                               \
    HWY_EXPORT(MultiplyRows##name);                                                          \
    HWY_EXPORT(Add##name);                                                                   \
    HWY_EXPORT(AddRows##name);                                                               \
    HWY_EXPORT(Turn##name);                                                                  \
    T InnerProduct(T const* a, T const* b, std::ptrdiff_t count) {                           \
        return HWY_DYNAMIC_DISPATCH(Product##name)(a, b, count);                             \
    }                                                                                        \
    void AddMultiple(T factor, T const* a, T* sum, std::ptrdiff_t count) {                   \
        HWY_DYNAMIC_DISPATCH(Add##name)(factor, a, sum, count);                              \
    }                                                                                        \
    void InnerProducts(MatrixRows<T> const& a, T const* b, T* products, std::ptrdiff_t rows, \
                       std::ptrdiff_t count) {                                               \
        HWY_DYNAMIC_DISPATCH(MultiplyRows##name)(a, b, products, rows, count);               \
    }                                                                                        \
    void AddMultiples(T const* factors, MatrixRows<T> const& a, T* sum, std::ptrdiff_t rows, \
                      std::ptrdiff_t count) {                                                \
        HWY_DYNAMIC_DISPATCH(AddRows##name)(factors, a, sum, rows, count);                   \
    }                                                                                        \
    void Rotate(T* a, T* b, T cosine, T sine, std::ptrdiff_t count) {                        \
        HWY_DYNAMIC_DISPATCH(Turn##name)(a, b, cosine, sine, count);                         \
    }
ZPA_EXPORTS(32f, float)
ZPA_EXPORTS(64f, double)
#undef ZPA_EXPORTS

}  // namespace ZPA
#endif
