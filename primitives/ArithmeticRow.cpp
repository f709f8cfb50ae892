// Sums, differences, products, quotients and absolute values of rows.
#include "primitives/ArithmeticRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/ArithmeticRow.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <cmath>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "primitives/MapRow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// The other operand at an element: a pixel of a second row, or the same constant everywhere.
template <typename T> struct RowOperand {
    T const* row;
    template <class D> HWY_INLINE hn::Vec<D> At(D d, std::ptrdiff_t x) const { return hn::LoadU(d, row + x); }
};
template <typename T> struct ConstantOperand {
    T constant;
    template <class D> HWY_INLINE hn::Vec<D> At(D d, std::ptrdiff_t) const { return hn::Set(d, constant); }
};

struct Sum {
    template <class D> static HWY_INLINE hn::Vec<D> Of(D, hn::Vec<D> a, hn::Vec<D> b) {
        return hn::Add(a, b);
    }
};
struct Difference {
    template <class D> static HWY_INLINE hn::Vec<D> Of(D, hn::Vec<D> a, hn::Vec<D> b) {
        return hn::Sub(a, b);
    }
};
struct Product {
    template <class D> static HWY_INLINE hn::Vec<D> Of(D d, hn::Vec<D> a, hn::Vec<D> b) {
        if constexpr (sizeof(hn::TFromD<D>) > 1) {
            return hn::Mul(a, b);
        } else if constexpr (hn::MaxLanes(D()) == 1) {
            return hn::Set(d, static_cast<std::uint8_t>(hn::GetLane(a) * hn::GetLane(b)));
        } else {
            // There is no product of bytes: those of even and of odd places are made in words of 16 bits,
            // whose low byte does not depend on what stands above it.
            hn::Repartition<std::uint16_t, D> const words;
            auto const left = hn::BitCast(words, a), right = hn::BitCast(words, b);
            auto const even = hn::And(hn::Mul(left, right), hn::Set(words, 0xFF));
            auto const odd = hn::Mul(hn::ShiftRight<8>(left), hn::ShiftRight<8>(right));
            return hn::BitCast(d, hn::Or(even, hn::ShiftLeft<8>(odd)));
        }
    }
};
struct FloatQuotient {
    template <class D> static HWY_INLINE hn::Vec<D> Of(D, hn::Vec<D> a, hn::Vec<D> b) {
        return hn::Div(a, b);
    }
};

template <class Operation, typename T, class Operand> struct Combined {
    T const* a;
    Operand b;
    template <class D> HWY_INLINE hn::Vec<D> operator()(D d, std::ptrdiff_t x) const {
        return Operation::Of(d, hn::LoadU(d, a + x), b.At(d, x));
    }
};

template <typename T> struct Absolute {
    T const* a;
    template <class D> HWY_INLINE hn::Vec<D> operator()(D d, std::ptrdiff_t x) const {
        return hn::Abs(hn::LoadU(d, a + x));
    }
};

// Quotients of integers are made in floating point: of 8 and 16 bits in floats, of 32 bits in doubles. With
// half a unit added, a dividend of n gives (n + 0.5) / m, which lies at least 0.5 / m away from every
// integer; the whole part is right as long as the error stays below that. Half a unit less, the nearest
// integer is the whole part. Signed elements are divided by their sizes, and the sign is given back.
//
// A word of the floating-point type's size holds several elements. Each is taken out, divided and put back
// where it was, so that nothing moves between lanes.
template <typename T> struct Quotient {
    using Real = std::conditional_t<sizeof(T) == 4, double, float>;
    using Word = hwy::MakeUnsigned<Real>;
    static constexpr int kBits = 8 * sizeof(T);
    static constexpr int kParts = sizeof(Word) / sizeof(T);
    static constexpr Word kPart = static_cast<Word>(~Word{0}) >> (8 * sizeof(Word) - kBits);
    // The lowest bit of a number of this size counts one, so its low bits are an integer's place.
    static constexpr Real kUnit = sizeof(T) == 4 ? Real(4503599627370496) : Real(8388608);

    template <class D> using Words = hn::Repartition<Word, D>;
    template <class D> using Reals = hn::Repartition<Real, D>;
    // Vectors without room for a word divide plainly.
    template <class D> static constexpr bool kHoldsWords = hn::MaxLanes(D()) * sizeof(T) >= sizeof(Word);

    // A part as a number, and something added to it.
    template <int kIndex, class D>
    static HWY_INLINE hn::Vec<Reals<D>> Part(D, hn::Vec<Words<D>> elements, Real added) {
        Words<D> const words;
        Reals<D> const reals;
        auto part = hn::ShiftRight<kIndex * kBits>(elements);
        if constexpr (kIndex + 1 < kParts) part = hn::And(part, hn::Set(words, kPart));
        auto const shifted = hn::Or(part, hn::BitCast(words, hn::Set(reals, kUnit)));
        return hn::Sub(hn::BitCast(reals, shifted), hn::Set(reals, kUnit - added));
    }
    // The integer nearest to a number that may be just below zero, at the part's place.
    template <int kIndex, class D> static HWY_INLINE hn::Vec<Words<D>> Placed(D, hn::Vec<Reals<D>> number) {
        Words<D> const words;
        Reals<D> const reals;
        auto part = hn::BitCast(words, hn::Add(number, hn::Set(reals, Real(1.5) * kUnit)));
        if constexpr (kIndex + 1 < kParts) part = hn::And(part, hn::Set(words, kPart));
        return hn::ShiftLeft<kIndex * kBits>(part);
    }

    // Elements as words of their sizes, and words of quotients as elements whose sign is that of `signs`.
    template <class D> static HWY_INLINE hn::Vec<Words<D>> Sizes(D, hn::Vec<D> elements) {
        if constexpr (std::is_signed_v<T>)
            return hn::BitCast(Words<D>(), hn::Abs(elements));
        else
            return hn::BitCast(Words<D>(), elements);
    }
    template <class D> static HWY_INLINE hn::Vec<D> Signed(D d, hn::Vec<Words<D>> sizes, hn::Vec<D> signs) {
        auto const quotients = hn::BitCast(d, sizes);
        if constexpr (std::is_signed_v<T>) {
            auto const negative = hn::VecFromMask(d, hn::Lt(signs, hn::Zero(d)));
            return hn::Sub(hn::Xor(quotients, negative), negative);
        } else {
            return quotients;
        }
    }
};

// By the processor's own division, which faults where a divisor is zero; volatile, since the compiler may not
// know that one is. In 64 bits, so that nothing else faults.
template <typename T>
HWY_NOINLINE void DividePlainly(T const* a, T const volatile* b, T* quotients, std::ptrdiff_t count) {
    for (std::ptrdiff_t x = 0; x < count; ++x)
        quotients[x] = static_cast<T>(std::int64_t{a[x]} / std::int64_t{b[x]});
}

template <class V> HWY_INLINE V Estimate(V m) { return hn::ApproximateReciprocal(m); }
#if HWY_TARGET <= HWY_AVX3 && HWY_ARCH_X86
// The processor's own, which Highway has for floats only.
HWY_INLINE hn::Vec512<double> Estimate(hn::Vec512<double> m) {
    return hn::Vec512<double>{_mm512_rcp14_pd(m.raw)};
}
HWY_INLINE hn::Vec256<double> Estimate(hn::Vec256<double> m) {
    return hn::Vec256<double>{_mm256_rcp14_pd(m.raw)};
}
HWY_INLINE hn::Vec128<double> Estimate(hn::Vec128<double> m) {
    return hn::Vec128<double>{_mm_rcp14_pd(m.raw)};
}
HWY_INLINE hn::Vec64<double> Estimate(hn::Vec64<double> m) { return hn::Vec64<double>{_mm_rcp14_pd(m.raw)}; }
constexpr bool kEstimatesDoubles = true;
#else
constexpr bool kEstimatesDoubles = false;
#endif

template <typename T> struct QuotientsOfRows {
    using Of = Quotient<T>;
    T const* a;
    T const* b;

    template <class D> HWY_INLINE hn::Vec<D> operator()(D d, std::ptrdiff_t x) const {
        auto const divisors = hn::LoadU(d, b + x);
        if constexpr (Of::template kHoldsWords<D>)
            if (HWY_LIKELY(hn::AllFalse(d, hn::Eq(divisors, hn::Zero(d)))))
                return Divided(d, hn::LoadU(d, a + x), divisors, std::make_index_sequence<Of::kParts>());
        T quotients[hn::MaxLanes(D())];
        DividePlainly(a + x, b + x, quotients, static_cast<std::ptrdiff_t>(hn::MaxLanes(d)));
        return hn::LoadU(d, quotients);
    }

private:
    template <class D, std::size_t... Index>
    static HWY_INLINE hn::Vec<D> Divided(D d, hn::Vec<D> dividends, hn::Vec<D> divisors,
                                         std::index_sequence<Index...>) {
        typename Of::template Reals<D> const reals;
        auto const n = Of::Sizes(d, dividends), m = Of::Sizes(d, divisors);
        auto sizes = hn::Xor(n, n);
        ((sizes = hn::Or(sizes, Of::template Placed<Index>(
                                    d, Number(reals, Of::template Part<Index>(d, n, typename Of::Real(0.5)),
                                              Of::template Part<Index>(d, m, 0))))),
         ...);
        return Of::Signed(d, sizes, hn::Xor(dividends, divisors));
    }
    template <class Reals>
    static HWY_INLINE hn::Vec<Reals> Number(Reals d, hn::Vec<Reals> n, hn::Vec<Reals> m) {
        auto const half = hn::Set(d, typename Of::Real(0.5));
        if constexpr (sizeof(T) == 4 && !kEstimatesDoubles) {
            return hn::Sub(hn::Div(n, m), half);  // wrong by less than 2^32 / m * 2^-52
        } else {
            // Estimates are right to 1.5 * 2^-12, and to 2^-14 those of doubles; after one step of Newton's
            // to 6 * 2^-24 with all roundings, and after two of doubles' to 2^-50. Quotients are wrong by
            // less than 2^8 / m * 2^-11 of 8 bits, 2^16 / m * 2^-20 of 16, and 2^32 / m * 2^-49 of 32.
            constexpr int kSteps = sizeof(T) / 2;
            auto const two = hn::Set(d, typename Of::Real(2));
            auto inverse = Estimate(m);
            for (int step = 0; step < kSteps; ++step)
                inverse = hn::Mul(inverse, hn::NegMulAdd(m, inverse, two));
            return hn::MulSub(n, inverse, half);
        }
    }
};

// The inverse is the nearest one, so a quotient is wrong by less than 2^16 / m * 2^-22 of 16 bits and less,
// and by 2^32 / m * 2^-51 of 32.
template <typename T> struct QuotientsByConstant {
    using Of = Quotient<T>;
    using Real = typename Of::Real;
    T const* a;
    T constant;
    Real inverse;

    QuotientsByConstant(T const* itsA, T itsConstant)
        : a(itsA), constant(itsConstant), inverse(Real(1) / std::abs(static_cast<Real>(itsConstant))) {}

    template <class D> HWY_INLINE hn::Vec<D> operator()(D d, std::ptrdiff_t x) const {
        if constexpr (Of::template kHoldsWords<D>) {
            return Divided(d, hn::LoadU(d, a + x), std::make_index_sequence<Of::kParts>());
        } else {
            T quotients[hn::MaxLanes(D())];
            for (std::size_t i = 0; i < hn::MaxLanes(d); ++i)
                DividePlainly(a + x + i, &constant, quotients + i, 1);
            return hn::LoadU(d, quotients);
        }
    }

private:
    template <class D, std::size_t... Index>
    HWY_INLINE hn::Vec<D> Divided(D d, hn::Vec<D> dividends, std::index_sequence<Index...>) const {
        typename Of::template Reals<D> const reals;
        auto const n = Of::Sizes(d, dividends);
        auto const by = hn::Set(reals, inverse), half = hn::Set(reals, Real(0.5));
        auto sizes = hn::Xor(n, n);
        ((sizes = hn::Or(sizes, Of::template Placed<Index>(
                                    d, hn::MulSub(Of::template Part<Index>(d, n, Real(0.5)), by, half)))),
         ...);
        return Of::Signed(d, sizes, hn::Xor(dividends, hn::Set(d, constant)));
    }
};

template <class Operation, typename T, class Operand>
void Map(T const* a, Operand b, T* result, std::ptrdiff_t count) {
    MapRow(hn::ScalableTag<T>(), result, count, Combined<Operation, T, Operand>{a, b});
}

template <typename T> void Divide(T const* a, RowOperand<T> b, T* result, std::ptrdiff_t count) {
    if constexpr (std::is_integral_v<T>)
        MapRow(hn::ScalableTag<T>(), result, count, QuotientsOfRows<T>{a, b.row});
    else
        Map<FloatQuotient>(a, b, result, count);
}
template <typename T> void Divide(T const* a, ConstantOperand<T> b, T* result, std::ptrdiff_t count) {
    if constexpr (std::is_integral_v<T>) {
        if (b.constant == 0) return DividePlainly(a, &b.constant, result, count > 0);
        MapRow(hn::ScalableTag<T>(), result, count, QuotientsByConstant<T>(a, b.constant));
    } else {
        Map<FloatQuotient>(a, b, result, count);
    }
}

template <typename T, class Operand>
void Combine(Arithmetic operation, T const* a, Operand b, T* result, std::ptrdiff_t count) {
    if constexpr (std::is_unsigned_v<T> || std::is_floating_point_v<T>) {
        switch (operation) {
            case Arithmetic::kSum:
                return Map<Sum>(a, b, result, count);
            case Arithmetic::kDifference:
                return Map<Difference>(a, b, result, count);
            case Arithmetic::kProduct:
                return Map<Product>(a, b, result, count);
            case Arithmetic::kQuotient:
                break;
        }
    }
    Divide(a, b, result, count);
}

#define ZPA_KERNELS(name, T)                                                                         \
    void Combine##name(Arithmetic operation, T const* a, T const* b, T* result, std::ptrdiff_t n) {  \
        Combine(operation, a, RowOperand<T>{b}, result, n);                                          \
    }                                                                                                \
    void Constant##name(Arithmetic operation, T const* a, T constant, T* result, std::ptrdiff_t n) { \
        Combine(operation, a, ConstantOperand<T>{constant}, result, n);                              \
    }
ZPA_KERNELS(8u, std::uint8_t)
ZPA_KERNELS(8s, std::int8_t)
ZPA_KERNELS(16u, std::uint16_t)
ZPA_KERNELS(16s, std::int16_t)
ZPA_KERNELS(32u, std::uint32_t)
ZPA_KERNELS(32s, std::int32_t)
ZPA_KERNELS(32f, float)
ZPA_KERNELS(64f, double)
#undef ZPA_KERNELS

#define ZPA_KERNEL(name, T)                                        \
    void Absolute##name(T const* a, T* result, std::ptrdiff_t n) { \
        MapRow(hn::ScalableTag<T>(), result, n, Absolute<T>{a});   \
    }
ZPA_KERNEL(8s, std::int8_t)
ZPA_KERNEL(16s, std::int16_t)
ZPA_KERNEL(32s, std::int32_t)
ZPA_KERNEL(32f, float)
ZPA_KERNEL(64f, double)
#undef ZPA_KERNEL

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

#define ZPA_EXPORTS(name, T)                                                                              \
    HWY_EXPORT(Combine##name);                                                                            \
    HWY_EXPORT(Constant##name);                                                                           \
    template <>                                                                                           \
    void CombineRows(Arithmetic operation, T const* a, T const* b, T* result, std::ptrdiff_t n) {         \
        HWY_DYNAMIC_DISPATCH(Combine##name)(operation, a, b, result, n);                                  \
    }                                                                                                     \
    template <>                                                                                           \
    void CombineWithConstant(Arithmetic operation, T const* a, T constant, T* result, std::ptrdiff_t n) { \
        HWY_DYNAMIC_DISPATCH(Constant##name)(operation, a, constant, result, n);                          \
    }
ZPA_EXPORTS(8u, std::uint8_t)
ZPA_EXPORTS(8s, std::int8_t)
ZPA_EXPORTS(16u, std::uint16_t)
ZPA_EXPORTS(16s, std::int16_t)
ZPA_EXPORTS(32u, std::uint32_t)
ZPA_EXPORTS(32s, std::int32_t)
ZPA_EXPORTS(32f, float)
ZPA_EXPORTS(64f, double)
#undef ZPA_EXPORTS

#define ZPA_EXPORT(name, T)                                                 \
    HWY_EXPORT(Absolute##name);                                             \
    template <> void AbsoluteRow(T const* a, T* result, std::ptrdiff_t n) { \
        HWY_DYNAMIC_DISPATCH(Absolute##name)(a, result, n);                 \
    }
ZPA_EXPORT(8s, std::int8_t)
ZPA_EXPORT(16s, std::int16_t)
ZPA_EXPORT(32s, std::int32_t)
ZPA_EXPORT(32f, float)
ZPA_EXPORT(64f, double)
#undef ZPA_EXPORT

}  // namespace ZPA
#endif
