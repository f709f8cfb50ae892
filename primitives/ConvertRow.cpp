// Conversions of a row from one element type to another.
#include "primitives/Rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/ConvertRow.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <cmath>
#include <cstring>
#include <type_traits>

// Without vectors the plain loop does it all: emulated conversions saturate where real ones give infinity.
#define ZPA_PLAIN_LOOPS (HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128)

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

constexpr double kPast32Bits = 2147483648.0;

// What the processor gives for a number that has no 32-bit integer.
constexpr std::int32_t kNoInteger = INT32_MIN;

std::int32_t RoundToInt32(double value) {
    double const shifted = value > 0 ? value + 0.5 : value - 0.5;
    return shifted < kPast32Bits && shifted > -kPast32Bits - 1 ? static_cast<std::int32_t>(shifted)
                                                               : kNoInteger;
}

template <typename From, typename To> To Converted(From value) {
    if constexpr (std::is_floating_point_v<From> && std::is_integral_v<To>)
        return static_cast<To>(RoundToInt32(value));
    else
        return static_cast<To>(value);
}

#if !ZPA_PLAIN_LOOPS

// Cuts to 32-bit integers; kNoInteger where there is none. On x86 that is the processor's own answer, which
// portable conversions go to some length to avoid.
template <class D> hn::Vec<hn::Rebind<std::int32_t, D>> Cut([[maybe_unused]] D d, hn::Vec<D> value) {
    hn::Rebind<std::int32_t, D> const integers;
    using Integers [[maybe_unused]] = hn::Vec<decltype(integers)>;
    constexpr bool kDoubles = sizeof(hn::TFromD<D>) == 8;
#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX3_DL
    if constexpr (kDoubles)
        return Integers{_mm512_cvttpd_epi32(value.raw)};
    else
        return Integers{_mm512_cvttps_epi32(value.raw)};
#elif HWY_TARGET == HWY_AVX2
    if constexpr (kDoubles)
        return Integers{_mm256_cvttpd_epi32(value.raw)};
    else
        return Integers{_mm256_cvttps_epi32(value.raw)};
#elif HWY_TARGET == HWY_SSE4 || HWY_TARGET == HWY_SSSE3
    if constexpr (kDoubles)
        return Integers{_mm_cvttpd_epi32(value.raw)};
    else
        return Integers{_mm_cvttps_epi32(value.raw)};
#else
    using T = hn::TFromD<D>;
    // What does not fit becomes the least integer before it is converted.
    auto const least = hn::Set(d, static_cast<T>(-kPast32Bits));
    auto const fits = hn::And(hn::Lt(value, hn::Set(d, static_cast<T>(kPast32Bits))), hn::Gt(value, least));
    auto const fitting = hn::IfThenElse(fits, value, least);
    if constexpr (kDoubles)
        return hn::DemoteTo(integers, fitting);
    else
        return hn::ConvertTo(integers, fitting);
#endif
}

// Rounds half away from zero. For floats, adding the number just below one half does so where adding one half
// in double precision would: where the addition itself rounds, it rounds to a number with the right whole
// part.
template <class D> hn::Vec<hn::Rebind<std::int32_t, D>> Round(D d, hn::Vec<D> value) {
    using T = hn::TFromD<D>;
    constexpr T kHalf = sizeof(T) == 8 ? T(0.5) : T(0.49999997f);
    return Cut(d, hn::Add(value, hn::CopySign(hn::Set(d, kHalf), value)));
}

// A vector of From becomes one of as many To. `d` is the tag of the wider type.
template <typename From, typename To, class D>
auto Convert([[maybe_unused]] D d, hn::Vec<hn::Rebind<From, D>> value) {
    hn::Rebind<To, D> const to;
    hn::Rebind<std::int32_t, D> const integers;
    if constexpr (std::is_integral_v<From> && std::is_integral_v<To>) {
        if constexpr (sizeof(To) > sizeof(From)) {
            return hn::PromoteTo(to, value);
        } else {
            using Unsigned = std::make_unsigned_t<From>;
            using Narrow = std::make_unsigned_t<To>;
            hn::Rebind<Unsigned, D> const bits;
            return hn::BitCast(to, hn::TruncateTo(hn::Rebind<Narrow, D>(), hn::BitCast(bits, value)));
        }
    } else if constexpr (std::is_integral_v<From>) {
        auto const wide = [&] {
            if constexpr (sizeof(From) < 4)
                return hn::PromoteTo(integers, value);
            else
                return value;
        }();
        if constexpr (std::is_same_v<To, double>)
            return hn::PromoteTo(to, wide);
        else
            return hn::ConvertTo(to, wide);
    } else if constexpr (std::is_integral_v<To>) {
        auto const rounded = Round(hn::Rebind<From, D>(), value);
        if constexpr (sizeof(To) == 4) {
            return rounded;
        } else {
            hn::Rebind<std::uint32_t, D> const bits;
            using Narrow = std::make_unsigned_t<To>;
            return hn::BitCast(to, hn::TruncateTo(hn::Rebind<Narrow, D>(), hn::BitCast(bits, rounded)));
        }
    } else if constexpr (std::is_same_v<To, double>) {
        return hn::PromoteTo(to, value);
    } else {
        return hn::DemoteTo(to, value);
    }
}

// As many elements as a vector of 32-bit integers has, as such integers; their low bits are wanted.
template <class D32, typename From> hn::Vec<D32> LoadIntegers(D32 integers, From const* source) {
    if constexpr (std::is_same_v<From, double>) {
        hn::Half<D32> const half;
        hn::Rebind<double, decltype(half)> const d;
        return hn::Combine(integers, Round(d, hn::LoadU(d, source + hn::Lanes(d))),
                           Round(d, hn::LoadU(d, source)));
    } else if constexpr (std::is_same_v<From, float>) {
        hn::Rebind<float, D32> const d;
        return Round(d, hn::LoadU(d, source));
    } else {
        return hn::LoadU(integers, source);
    }
}

// Fills a whole vector of To with the low bits of as many elements of 32 or 64 bits.
template <typename To, typename From> void NarrowWholeVector(From const* source, To* destination) {
    hn::ScalableTag<std::int32_t> const integers;
    hn::Repartition<std::uint16_t, decltype(integers)> const shorts;
    hn::Repartition<std::uint8_t, decltype(integers)> const bytes;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(integers));
    auto const two = [&](From const* at) {
        auto const lower = hn::BitCast(shorts, LoadIntegers(integers, at));
        auto const upper = hn::BitCast(shorts, LoadIntegers(integers, at + lanes));
        return hn::ConcatEven(shorts, upper, lower);
    };
    if constexpr (sizeof(To) == 2) {
        hn::StoreU(two(source), shorts, destination);
    } else {
        auto const lower = hn::BitCast(bytes, two(source));
        auto const upper = hn::BitCast(bytes, two(source + 2 * lanes));
        hn::StoreU(hn::ConcatEven(bytes, upper, lower), bytes, destination);
    }
}

#endif

template <typename From, typename To> void Run(From const* source, To* destination, std::ptrdiff_t count) {
    std::ptrdiff_t x = 0;
#if !ZPA_PLAIN_LOOPS
    using Wider = std::conditional_t<(sizeof(To) > sizeof(From)), To, From>;
    hn::ScalableTag<Wider> const d;
    hn::Rebind<From, decltype(d)> const from;
    hn::Rebind<To, decltype(d)> const to;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    auto const step = [&](std::ptrdiff_t at) {
        hn::StoreU(Convert<From, To>(d, hn::LoadU(from, source + at)), to, destination + at);
    };
    // A vector that crosses lines of the cache costs two: the wider side is brought into step with them.
    void const* const wider = sizeof(To) > sizeof(From) ? static_cast<void const*>(destination) : source;
    auto const address = reinterpret_cast<std::uintptr_t>(wider);
    auto const past = static_cast<std::ptrdiff_t>(address / sizeof(Wider)) & (lanes - 1);
    if (past != 0 && count >= 2 * lanes) {
        step(0);
        x = lanes - past;
    }
    if constexpr (sizeof(From) >= 4 && sizeof(To) <= 2) {
        auto const whole = static_cast<std::ptrdiff_t>(hn::Lanes(hn::ScalableTag<To>()));
        for (; x + whole <= count; x += whole) NarrowWholeVector(source + x, destination + x);
    }
    for (; x + 2 * lanes <= count; x += 2 * lanes) {
        step(x);
        step(x + lanes);
    }
    for (; x + lanes <= count; x += lanes) step(x);
    if (x < count && count >= lanes) {
        step(count - lanes);  // the last vector may write some elements a second time
        return;
    }
#endif
    for (; x < count; ++x) destination[x] = Converted<From, To>(source[x]);
}

#define ZPA_KERNEL(name, From, To) \
    void name(From const* source, To* destination, std::ptrdiff_t count) { Run(source, destination, count); }
ZPA_KERNEL(Run8uTo16u, std::uint8_t, std::uint16_t)
ZPA_KERNEL(Run8uTo32s, std::uint8_t, std::int32_t)
ZPA_KERNEL(Run8uTo32f, std::uint8_t, float)
ZPA_KERNEL(Run8uTo64f, std::uint8_t, double)
ZPA_KERNEL(Run16uTo8u, std::uint16_t, std::uint8_t)
ZPA_KERNEL(Run16sTo32s, std::int16_t, std::int32_t)
ZPA_KERNEL(Run16sTo32f, std::int16_t, float)
ZPA_KERNEL(Run16sTo64f, std::int16_t, double)
ZPA_KERNEL(Run16uTo32s, std::uint16_t, std::int32_t)
ZPA_KERNEL(Run16uTo32f, std::uint16_t, float)
ZPA_KERNEL(Run16uTo64f, std::uint16_t, double)
ZPA_KERNEL(Run32sTo8u, std::int32_t, std::uint8_t)
ZPA_KERNEL(Run32sTo16u, std::int32_t, std::uint16_t)
ZPA_KERNEL(Run32sTo32f, std::int32_t, float)
ZPA_KERNEL(Run32sTo64f, std::int32_t, double)
ZPA_KERNEL(Run32fTo8u, float, std::uint8_t)
ZPA_KERNEL(Run32fTo16u, float, std::uint16_t)
ZPA_KERNEL(Run32fTo32s, float, std::int32_t)
ZPA_KERNEL(Run32fTo64f, float, double)
ZPA_KERNEL(Run64fTo8u, double, std::uint8_t)
ZPA_KERNEL(Run64fTo16u, double, std::uint16_t)
ZPA_KERNEL(Run64fTo32s, double, std::int32_t)
ZPA_KERNEL(Run64fTo32f, double, float)
#undef ZPA_KERNEL

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

// One kernel serves the signed and the unsigned type of a width where both give the same bits.
#define ZPA_CONVERSION(From, To, kernel, KernelFrom, KernelTo)                                          \
    template <> void ConvertRow(From const* source, To* destination, std::ptrdiff_t count) {            \
        HWY_DYNAMIC_DISPATCH(kernel)                                                                    \
        (reinterpret_cast<KernelFrom const*>(source), reinterpret_cast<KernelTo*>(destination), count); \
    }
#define ZPA_CONVERSION_OF_ITS_OWN(kernel, From, To) \
    HWY_EXPORT(kernel);                             \
    ZPA_CONVERSION(From, To, kernel, From, To)

using u8 = std::uint8_t;
using s16 = std::int16_t;
using u16 = std::uint16_t;
using s32 = std::int32_t;

ZPA_CONVERSION_OF_ITS_OWN(Run8uTo16u, u8, u16)
ZPA_CONVERSION(u8, s16, Run8uTo16u, u8, u16)
ZPA_CONVERSION_OF_ITS_OWN(Run8uTo32s, u8, s32)
ZPA_CONVERSION_OF_ITS_OWN(Run8uTo32f, u8, float)
ZPA_CONVERSION_OF_ITS_OWN(Run8uTo64f, u8, double)

ZPA_CONVERSION_OF_ITS_OWN(Run16uTo8u, u16, u8)
ZPA_CONVERSION(s16, u8, Run16uTo8u, u16, u8)
ZPA_CONVERSION_OF_ITS_OWN(Run16sTo32s, s16, s32)
ZPA_CONVERSION_OF_ITS_OWN(Run16sTo32f, s16, float)
ZPA_CONVERSION_OF_ITS_OWN(Run16sTo64f, s16, double)
ZPA_CONVERSION_OF_ITS_OWN(Run16uTo32s, u16, s32)
ZPA_CONVERSION_OF_ITS_OWN(Run16uTo32f, u16, float)
ZPA_CONVERSION_OF_ITS_OWN(Run16uTo64f, u16, double)

ZPA_CONVERSION_OF_ITS_OWN(Run32sTo8u, s32, u8)
ZPA_CONVERSION_OF_ITS_OWN(Run32sTo16u, s32, u16)
ZPA_CONVERSION(s32, s16, Run32sTo16u, s32, u16)
ZPA_CONVERSION_OF_ITS_OWN(Run32sTo32f, s32, float)
ZPA_CONVERSION_OF_ITS_OWN(Run32sTo64f, s32, double)

ZPA_CONVERSION_OF_ITS_OWN(Run32fTo8u, float, u8)
ZPA_CONVERSION_OF_ITS_OWN(Run32fTo16u, float, u16)
ZPA_CONVERSION(float, s16, Run32fTo16u, float, u16)
ZPA_CONVERSION_OF_ITS_OWN(Run32fTo32s, float, s32)
ZPA_CONVERSION_OF_ITS_OWN(Run32fTo64f, float, double)

ZPA_CONVERSION_OF_ITS_OWN(Run64fTo8u, double, u8)
ZPA_CONVERSION_OF_ITS_OWN(Run64fTo16u, double, u16)
ZPA_CONVERSION(double, s16, Run64fTo16u, double, u16)
ZPA_CONVERSION_OF_ITS_OWN(Run64fTo32s, double, s32)
ZPA_CONVERSION_OF_ITS_OWN(Run64fTo32f, double, float)

#undef ZPA_CONVERSION_OF_ITS_OWN
#undef ZPA_CONVERSION

// The same bits.
template <> void ConvertRow(s16 const* source, u16* destination, std::ptrdiff_t count) {
    if (count > 0) std::memmove(destination, source, static_cast<std::size_t>(count) * sizeof *source);
}
template <> void ConvertRow(u16 const* source, s16* destination, std::ptrdiff_t count) {
    if (count > 0) std::memmove(destination, source, static_cast<std::size_t>(count) * sizeof *source);
}

}  // namespace ZPA
#endif
