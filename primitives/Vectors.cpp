// Sums, products and rotations of vectors of numbers.
#include "primitives/Vectors.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/Vectors.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <utility>

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

// Calls with each index; as constants, where what they choose from has room in registers.
template <std::size_t... Index, class Call>
HWY_INLINE void ForEach(std::index_sequence<Index...>, Call const& call) {
    if constexpr (sizeof...(Index) <= 8)
        (call(static_cast<std::ptrdiff_t>(Index)), ...);
    else
        for (std::size_t index = 0; index < sizeof...(Index); ++index)
            call(static_cast<std::ptrdiff_t>(index));
}

template <std::size_t kNumber> constexpr std::make_index_sequence<kNumber> kEach{};

// Of the rows from `first` on with one vector, loaded once. Callers are flattened: were a lambda called, the sums
// would be in memory.
template <std::size_t... Row, typename T>
HWY_INLINE void Products(std::index_sequence<Row...> rows, MatrixRows<T> const& matrix, std::ptrdiff_t first,
                         T const* b, T* products, std::ptrdiff_t count) {
    T const* const a[] = {matrix[first + static_cast<std::ptrdiff_t>(Row)]...};
    constexpr std::ptrdiff_t kLanes = Parts<T>::kLanes, kVectors = Parts<T>::kVectors;
    typename Parts<T>::Tag const d;
    hn::Vec<decltype(d)> sums[sizeof...(Row)][kVectors];
    ForEach(rows, [&](std::ptrdiff_t row) HWY_ATTR {
        ForEach(kEach<kVectors>, [&](std::ptrdiff_t v) HWY_ATTR { sums[row][v] = hn::Zero(d); });
    });
    std::ptrdiff_t x = 0;
    auto const addTo = [&](std::ptrdiff_t v, auto const& load) HWY_ATTR {
        auto const factors = load(b + x);
        ForEach(rows, [&](std::ptrdiff_t row) HWY_ATTR {
            sums[row][v] = hn::Add(sums[row][v], hn::Mul(load(a[row] + x), factors));
        });
        x += kLanes;
    };
    auto const addWhole = [&](std::ptrdiff_t v) HWY_ATTR {
        addTo(v, [&](T const* from) HWY_ATTR { return hn::LoadU(d, from); });
    };
    while (x + Parts<T>::kNumber <= count) ForEach(kEach<kVectors>, addWhole);
    ForEach(kEach<kVectors>, [&](std::ptrdiff_t v) HWY_ATTR {
        if (x + kLanes <= count)
            addWhole(v);
        else if (x < count)
            addTo(v, [&](T const* from) HWY_ATTR { return LoadRest(d, from, count - x); });
    });

    ForEach(rows, [&](std::ptrdiff_t row) HWY_ATTR {
        for (std::ptrdiff_t half = kVectors / 2; half > 0; half /= 2)
            for (std::ptrdiff_t v = 0; v < half; ++v)
                sums[row][v] = hn::Add(sums[row][v], sums[row][half + v]);
        products[first + row] = FoldLanes(d, sums[row][0]);
    });
}

template <typename T>
HWY_FLATTEN void MultiplyRows(MatrixRows<T> const& a, T const* b, T* products, std::ptrdiff_t rows,
                              std::ptrdiff_t count) {
    std::ptrdiff_t row = 0;
    // as many as leave registers for what is loaded
    if constexpr (Parts<T>::kVectors <= 2)
        for (; row + 4 <= rows; row += 4) Products(kEach<4>, a, row, b, products, count);
    if constexpr (Parts<T>::kVectors <= 4)
        for (; row + 2 <= rows; row += 2) Products(kEach<2>, a, row, b, products, count);
    for (; row < rows; ++row) Products(kEach<1>, a, row, b, products, count);
}

template <typename T> HWY_FLATTEN T Product(T const* a, T const* b, std::ptrdiff_t count) {
    T product;
    Products(kEach<1>, MatrixRows<T>(a, 0), 0, b, &product, count);
    return product;
}

// Multiples of the rows from `first` on, one after the other; their sum is loaded and stored once.
template <std::size_t... Row, typename T>
HWY_INLINE void Add(std::index_sequence<Row...> rows, T const* factors, MatrixRows<T> const& matrix,
                    std::ptrdiff_t first, T* sum, std::ptrdiff_t count) {
    T const* const a[] = {matrix[first + static_cast<std::ptrdiff_t>(Row)]...};
    T const factor[] = {factors[first + static_cast<std::ptrdiff_t>(Row)]...};
    std::ptrdiff_t x = 0;
    auto const addVectors = [&](auto d) HWY_ATTR {
        constexpr std::ptrdiff_t kLanes = hn::MaxLanes(d);
        for (; x + kLanes <= count; x += kLanes) {
            auto total = hn::LoadU(d, sum + x);
            ForEach(rows, [&](std::ptrdiff_t row) HWY_ATTR {
                total = hn::Add(total, hn::Mul(hn::Set(d, factor[row]), hn::LoadU(d, a[row] + x)));
            });
            hn::StoreU(total, d, sum + x);
        }
    };
    addVectors(hn::ScalableTag<T>());
    addVectors(hn::CappedTag<T, 16 / sizeof(T)>());
    addVectors(hn::CappedTag<T, 1>());
}

template <typename T>
HWY_FLATTEN void AddRows(T const* factors, MatrixRows<T> const& a, T* sum, std::ptrdiff_t rows,
                         std::ptrdiff_t count) {
    std::ptrdiff_t row = 0;
    for (; row + 8 <= rows; row += 8) Add(kEach<8>, factors, a, row, sum, count);
    for (; row + 4 <= rows; row += 4) Add(kEach<4>, factors, a, row, sum, count);
    for (; row < rows; ++row) Add(kEach<1>, factors, a, row, sum, count);
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

#define ZPA_KERNELS(name, T)                                                                       \
    T Product##name(T const* a, T const* b, std::ptrdiff_t count) { return Product(a, b, count); } \
    void MultiplyRows##name(MatrixRows<T> const& a, T const* b, T* products, std::ptrdiff_t rows,  \
                            std::ptrdiff_t count) {                                                \
        MultiplyRows(a, b, products, rows, count);                                                 \
    }                                                                                              \
    void AddRows##name(T const* factors, MatrixRows<T> const& a, T* sum, std::ptrdiff_t rows,      \
                       std::ptrdiff_t count) {                                                     \
        AddRows(factors, a, sum, rows, count);                                                     \
    }                                                                                              \
    void Add##name(T factor, T const* a, T* sum, std::ptrdiff_t count) {                           \
        Add(kEach<1>, &factor, MatrixRows<T>(a, 0), 0, sum, count);                                \
    }                                                                                              \
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
