// Sums, differences, products, quotients and absolute values of rows.
#include "primitives/ArithmeticRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/ArithmeticRow.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <cmath>
#include <cstdint>
#include <type_traits>

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
// half a unit added to its size, a dividend of n gives (n + 0.5) / m, which lies at least 0.5 / m away from
// every integer; the whole part is right as long as the error stays below that. Half a unit less, the nearest
// integer is the whole part.
template <typename T> using RealFor = std::conditional_t<sizeof(T) == 4, double, float>;

// As many elements as a vector of the floating-point type has.
template <typename T> using QuotientTag = hn::Rebind<T, hn::ScalableTag<RealFor<T>>>;

template <class D> HWY_INLINE hn::Vec<hn::Rebind<RealFor<hn::TFromD<D>>, D>> ToReal(D, hn::Vec<D> value) {
    using T = hn::TFromD<D>;
    hn::Rebind<RealFor<T>, D> const real;
    if constexpr (sizeof(T) < 4) {
        return hn::ConvertTo(real, hn::PromoteTo(hn::Rebind<std::int32_t, D>(), value));
    } else if constexpr (std::is_signed_v<T>) {
        return hn::PromoteTo(real, value);
    } else {
        // The low bits of the double 2^52 are an integer's place.
        hn::Rebind<std::uint64_t, D> const bits;
        auto const shift = hn::Set(real, 4503599627370496.0);
        auto const shifted = hn::Or(hn::PromoteTo(bits, value), hn::BitCast(bits, shift));
        return hn::Sub(hn::BitCast(real, shifted), shift);
    }
}

// The low bits of the integer nearest to a value below 2^22 (floats) or 2^51 (doubles): a sum of this size
// has no bits for fractions, and ends in those of the integer, in two's complement.
template <class D> HWY_INLINE hn::Vec<D> LowBits(D d, hn::Vec<hn::Rebind<RealFor<hn::TFromD<D>>, D>> value) {
    using T = hn::TFromD<D>;
    hn::Rebind<RealFor<T>, D> const real;
    hn::RebindToUnsigned<decltype(real)> const bits;
    auto const shift = hn::Set(real, sizeof(T) == 4 ? RealFor<T>(6755399441055744.0) : RealFor<T>(12582912));
    auto const sum = hn::BitCast(bits, hn::Add(value, shift));
    if constexpr (sizeof(T) == 1) {
        hn::Rebind<std::int32_t, D> const words;
        auto const low = hn::BitCast(words, hn::And(sum, hn::Set(bits, 0xFF)));
        return hn::BitCast(d, hn::DemoteTo(hn::Rebind<std::uint8_t, D>(), low));
    } else {
        return hn::BitCast(d, hn::TruncateTo(hn::RebindToUnsigned<D>(), sum));
    }
}

// By the processor's own division, which faults where a divisor is zero. In 64 bits, so that nothing else
// does.
template <typename T>
HWY_NOINLINE void DividePlainly(T const* a, T const* b, T* quotients, std::ptrdiff_t count) {
    for (std::ptrdiff_t x = 0; x < count; ++x)
        quotients[x] = static_cast<T>(std::int64_t{a[x]} / std::int64_t{b[x]});
}

template <typename T> struct Quotients {
    T const* a;
    T const* b;
    template <class D> HWY_INLINE hn::Vec<D> operator()(D d, std::ptrdiff_t x) const {
        hn::Rebind<RealFor<T>, D> const real;
        auto const divisors = hn::LoadU(d, b + x);
        if (HWY_UNLIKELY(!hn::AllFalse(d, hn::Eq(divisors, hn::Zero(d))))) {
            T quotients[hn::MaxLanes(D())];
            DividePlainly(a + x, b + x, quotients, static_cast<std::ptrdiff_t>(hn::MaxLanes(d)));
            return hn::LoadU(d, quotients);
        }
        auto const half = hn::Set(real, RealFor<T>(0.5));
        auto const m = ToReal(d, divisors), n = ToReal(d, hn::LoadU(d, a + x));
        if constexpr (sizeof(T) == 4) {
            // Adding half a unit is exact. The quotient is wrong by less than 2^32 / m * 2^-53, and taking
            // half a unit off adds as little.
            auto const quotient = hn::Div(hn::Add(n, hn::CopySign(half, n)), m);
            return LowBits(d, hn::Sub(quotient, hn::CopySign(half, quotient)));
        } else {
            // Processors' estimates are right to 1.5 * 2^-12, and after one step of Newton's to 6 * 2^-24
            // with all roundings: quotients are wrong by less than 2^8 * 2^-11 / m of 8 bits, and
            // 2^16 * 2^-20 / m of 16.
            auto inverse = hn::ApproximateReciprocal(m);
            if constexpr (sizeof(T) == 2)
                inverse = hn::Mul(inverse, hn::NegMulAdd(m, inverse, hn::Set(real, 2.0f)));
            auto const quotient = hn::Mul(n, inverse);
            auto const less = hn::NegMulAdd(half, hn::Abs(inverse), half);
            return LowBits(d, hn::Sub(quotient, hn::CopySign(less, quotient)));
        }
    }
};

// The inverse is the nearest one, so a quotient is wrong by less than 2^16 / m * 2^-22 of 16 bits and less,
// and by 2^32 / m * 2^-51 of 32.
template <typename T> struct QuotientsByConstant {
    T const* a;
    RealFor<T> inverse;
    RealFor<T> less;  // half a unit, without what the dividend's half unit gives
    template <class D> HWY_INLINE hn::Vec<D> operator()(D d, std::ptrdiff_t x) const {
        hn::Rebind<RealFor<T>, D> const real;
        auto const quotient = hn::Mul(ToReal(d, hn::LoadU(d, a + x)), hn::Set(real, inverse));
        return LowBits(d, hn::Sub(quotient, hn::CopySign(hn::Set(real, less), quotient)));
    }
};

template <class Operation, typename T, class Operand>
void Map(T const* a, Operand b, T* result, std::ptrdiff_t count) {
    MapRow(hn::ScalableTag<T>(), result, count, Combined<Operation, T, Operand>{a, b});
}

template <typename T> void Divide(T const* a, RowOperand<T> b, T* result, std::ptrdiff_t count) {
    if constexpr (std::is_integral_v<T>)
        MapRow(QuotientTag<T>(), result, count, Quotients<T>{a, b.row});
    else
        Map<FloatQuotient>(a, b, result, count);
}
template <typename T> void Divide(T const* a, ConstantOperand<T> b, T* result, std::ptrdiff_t count) {
    if constexpr (std::is_integral_v<T>) {
        using Real = RealFor<T>;
        if (b.constant == 0) return DividePlainly(a, &b.constant, result, count > 0);
        Real const inverse = Real(1) / static_cast<Real>(b.constant);
        Real const less = Real(0.5) - Real(0.5) * std::abs(inverse);
        MapRow(QuotientTag<T>(), result, count, QuotientsByConstant<T>{a, inverse, less});
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
