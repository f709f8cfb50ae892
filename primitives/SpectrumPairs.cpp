// Spectra of real sequences: most kernels work on points k and n - k at once, the mirrored ones read
// backwards.
#include "primitives/SpectrumPairs.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/SpectrumPairs.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <cstdint>

#include "primitives/RootsOfUnity.h"

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

template <class V> struct Points { V re, im; };
template <class D> using PointsOf = Points<hn::Vec<D>>;

// As many points as `d` has lanes, from point k on.
template <class D, typename T = hn::TFromD<D>> PointsOf<D> Load(D d, T const* points, std::ptrdiff_t k) {
    PointsOf<D> loaded;
    hn::LoadInterleaved2(d, points + 2 * k, loaded.re, loaded.im);
    return loaded;
}
template <class D, typename T = hn::TFromD<D>>
void Store(D d, PointsOf<D> stored, T* points, std::ptrdiff_t k) {
    hn::StoreInterleaved2(stored.re, stored.im, d, points + 2 * k);
}

// Points k, k - 1, ...
template <class D, typename T = hn::TFromD<D>> PointsOf<D> LoadBack(D d, T const* points, std::ptrdiff_t k) {
    PointsOf<D> const loaded = Load(d, points, k + 1 - static_cast<std::ptrdiff_t>(hn::Lanes(d)));
    return {hn::Reverse(d, loaded.re), hn::Reverse(d, loaded.im)};
}
template <class D, typename T = hn::TFromD<D>>
void StoreBack(D d, PointsOf<D> stored, T* points, std::ptrdiff_t k) {
    Store(d, {hn::Reverse(d, stored.re), hn::Reverse(d, stored.im)}, points,
          k + 1 - static_cast<std::ptrdiff_t>(hn::Lanes(d)));
}

// work(d, k) for k from `first` on, each time for as many points as `d` has lanes: whole vectors, then single
// ones.
template <typename T, typename Work>
HWY_INLINE void ForPoints(std::ptrdiff_t first, std::ptrdiff_t end, Work const& work) {
    hn::ScalableTag<T> const d;
    hn::CappedTag<T, 1> const one;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    std::ptrdiff_t k = first;
    for (; k + lanes <= end; k += lanes) work(d, k);
    for (; k < end; ++k) work(one, k);
}

// The even samples' and the odd samples' transforms at k are the symmetric parts of the points k and n - k.
// The odd samples lie half a step further, and so are turned by the root of order 2n.
template <typename T> void Combine(T* points, std::ptrdiff_t n, bool inverse) {
    if (n < 4) return;  // points 0 and n / 2 have no partner
    constexpr std::ptrdiff_t kLargestBlock = RootsOfUnity::kBase;
    std::ptrdiff_t const size = std::min(kLargestBlock, n / 2);
    int logOrder = 3;
    while (std::ptrdiff_t{1} << logOrder < 2 * n) ++logOrder;
    RootsOfUnity const powers(logOrder);
    double const *const fineRe = powers.FirstRe(), *const fineIm = powers.FirstIm();

    T const sign = inverse ? T{-1} : T{1};
    for (std::ptrdiff_t block = 0; block < n / 2; block += size) {
        Complex const coarse = powers.Power(static_cast<std::uint64_t>(block));
        T re[kLargestBlock], im[kLargestBlock];
        for (std::ptrdiff_t i = 0; i < size; ++i) {
            re[i] = static_cast<T>(coarse.re * fineRe[i] - coarse.im * fineIm[i]);
            im[i] = sign * static_cast<T>(coarse.re * fineIm[i] + coarse.im * fineRe[i]);
        }
        ForPoints<T>(std::max<std::ptrdiff_t>(block, 1), block + size, [&](auto d, std::ptrdiff_t k) {
            auto const a = Load(d, points, k), b = LoadBack(d, points, n - k);
            auto const turnRe = hn::LoadU(d, re + (k - block));
            auto const turnIm = hn::LoadU(d, im + (k - block));
            auto const half = hn::Set(d, T{0.5}), signedHalf = hn::Set(d, T{0.5} * sign);
            auto const evenRe = hn::Mul(half, hn::Add(a.re, b.re));
            auto const evenIm = hn::Mul(half, hn::Sub(a.im, b.im));
            auto const oddRe = hn::Mul(signedHalf, hn::Add(a.im, b.im));
            auto const oddIm = hn::Mul(signedHalf, hn::Sub(b.re, a.re));
            auto const turnedRe = hn::Sub(hn::Mul(turnRe, oddRe), hn::Mul(turnIm, oddIm));
            auto const turnedIm = hn::Add(hn::Mul(turnRe, oddIm), hn::Mul(turnIm, oddRe));
            Store(d, {hn::Add(evenRe, turnedRe), hn::Add(evenIm, turnedIm)}, points, k);
            StoreBack(d, {hn::Sub(evenRe, turnedRe), hn::Sub(turnedIm, evenIm)}, points, n - k);
        });
    }
}

template <typename T> void Join(T const* re, T const* im, T* points, std::ptrdiff_t n) {
    ForPoints<T>(0, n, [&](auto d, std::ptrdiff_t k) {
        Store(d, {hn::LoadU(d, re + k), hn::LoadU(d, im + k)}, points, k);
    });
}

template <typename T> void Split(T const* points, T* re, T* im, std::ptrdiff_t n) {
    ForPoints<T>(0, n, [&](auto d, std::ptrdiff_t k) {
        auto const point = Load(d, points, k);
        hn::StoreU(point.re, d, re + k);
        hn::StoreU(point.im, d, im + k);
    });
}

// The transforms of a and b at k, from those of a + i b at k and n - k.
template <class D> struct Two { PointsOf<D> a, b; };
template <class D, typename T = hn::TFromD<D>>
HWY_INLINE Two<D> TwoAt(D d, T const* points, std::ptrdiff_t k, std::ptrdiff_t n) {
    auto const here = Load(d, points, k), there = LoadBack(d, points, n - k);
    auto const half = hn::Set(d, T{0.5});
    return {{hn::Mul(half, hn::Add(here.re, there.re)), hn::Mul(half, hn::Sub(here.im, there.im))},
            {hn::Mul(half, hn::Add(here.im, there.im)), hn::Mul(half, hn::Sub(there.re, here.re))}};
}

template <typename T> void SeparateTwo(T* points, T* b, std::ptrdiff_t n) {
    for (std::ptrdiff_t k = 0; k < n; k += std::max<std::ptrdiff_t>(n / 2, 1)) {
        b[2 * k] = points[2 * k + 1];
        b[2 * k + 1] = 0;
        points[2 * k + 1] = 0;
    }
    ForPoints<T>(1, n / 2, [&](auto d, std::ptrdiff_t k) {
        auto const two = TwoAt(d, points, k, n);
        Store(d, two.a, points, k);
        Store(d, two.b, b, k);
        StoreBack(d, {two.a.re, hn::Neg(two.a.im)}, points, n - k);
        StoreBack(d, {two.b.re, hn::Neg(two.b.im)}, b, n - k);
    });
}

template <typename T> void MultiplyConjugates(T* a, T const* b, T scale, std::ptrdiff_t n) {
    ForPoints<T>(0, n, [&](auto d, std::ptrdiff_t k) {
        auto const x = Load(d, a, k), y = Load(d, b, k);
        auto const factor = hn::Set(d, scale);
        auto const re = hn::Add(hn::Mul(x.re, y.re), hn::Mul(x.im, y.im));
        auto const im = hn::Sub(hn::Mul(x.im, y.re), hn::Mul(x.re, y.im));
        Store(d, {hn::Mul(re, factor), hn::Mul(im, factor)}, a, k);
    });
}

template <typename T> void AddTurnedPoints(T* a, T const* b, std::ptrdiff_t n) {
    ForPoints<T>(0, n, [&](auto d, std::ptrdiff_t k) {
        auto const point = Load(d, a, k), turned = Load(d, b, k);
        Store(d, {hn::Sub(point.re, turned.im), hn::Add(point.im, turned.re)}, a, k);
    });
}

void Multiply64f(double* a, double const* b, std::ptrdiff_t n) {
    ForPoints<double>(0, n, [&](auto d, std::ptrdiff_t k) {
        auto const x = Load(d, a, k), y = Load(d, b, k);
        Store(d,
              {hn::Sub(hn::Mul(x.re, y.re), hn::Mul(x.im, y.im)),
               hn::Add(hn::Mul(x.re, y.im), hn::Mul(x.im, y.re))},
              a, k);
    });
}

#define ZPA_KERNELS(name, T)                                                                            \
    void Combine##name(T* points, std::ptrdiff_t n, bool inverse) { Combine(points, n, inverse); }      \
    void Join##name(T const* re, T const* im, T* points, std::ptrdiff_t n) { Join(re, im, points, n); } \
    void Split##name(T const* points, T* re, T* im, std::ptrdiff_t n) { Split(points, re, im, n); }     \
    void Separate##name(T* points, T* b, std::ptrdiff_t n) { SeparateTwo(points, b, n); }               \
    void AddTurned##name(T* a, T const* b, std::ptrdiff_t n) { AddTurnedPoints(a, b, n); }              \
    void Conjugates##name(T* a, T const* b, T scale, std::ptrdiff_t n) { MultiplyConjugates(a, b, scale, n); }
ZPA_KERNELS(32f, float)
ZPA_KERNELS(64f, double)
#undef ZPA_KERNELS

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

#define ZPA_EXPORTS(name, T)                                                                                 \
    HWY_EXPORT(Combine##name);                                                                               \
    HWY_EXPORT(Join##name);                                                                                  \
    HWY_EXPORT(Split##name);                                                                                 \
    HWY_EXPORT(Separate##name);                                                                              \
    HWY_EXPORT(AddTurned##name);                                                                             \
    HWY_EXPORT(Conjugates##name);                                                                            \
    void CombineHalves(T* points, std::ptrdiff_t n, bool inverse) {                                          \
        HWY_DYNAMIC_DISPATCH(Combine##name)(points, n, inverse);                                             \
    }                                                                                                        \
    void Interleave(T const* re, T const* im, T* points, std::ptrdiff_t n) {                                 \
        HWY_DYNAMIC_DISPATCH(Join##name)(re, im, points, n);                                                 \
    }                                                                                                        \
    void TakeApart(T const* points, T* re, T* im, std::ptrdiff_t n) {                                        \
        HWY_DYNAMIC_DISPATCH(Split##name)(points, re, im, n);                                                \
    }                                                                                                        \
    void Separate(T* points, T* b, std::ptrdiff_t n) { HWY_DYNAMIC_DISPATCH(Separate##name)(points, b, n); } \
    void AddTurned(T* a, T const* b, std::ptrdiff_t n) { HWY_DYNAMIC_DISPATCH(AddTurned##name)(a, b, n); }   \
    void MultiplyByConjugates(T* a, T const* b, T scale, std::ptrdiff_t n) {                                 \
        HWY_DYNAMIC_DISPATCH(Conjugates##name)(a, b, scale, n);                                              \
    }
ZPA_EXPORTS(32f, float)
ZPA_EXPORTS(64f, double)
#undef ZPA_EXPORTS

HWY_EXPORT(Multiply64f);
void MultiplyPoints(double* a, double const* b, std::ptrdiff_t n) {
    HWY_DYNAMIC_DISPATCH(Multiply64f)(a, b, n);
}

}  // namespace ZPA
#endif
