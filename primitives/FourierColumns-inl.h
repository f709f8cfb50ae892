// Fourier transforms of columns that lie side by side. Included by kernels once for each SIMD target.
#if defined(ZPA_PRIMITIVES_FOURIERCOLUMNS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ZPA_PRIMITIVES_FOURIERCOLUMNS_INL_H
#undef ZPA_PRIMITIVES_FOURIERCOLUMNS_INL_H
#else
#define ZPA_PRIMITIVES_FOURIERCOLUMNS_INL_H
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "primitives/FourierStages.h"

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Stages of larger parts than this go on with one part after the other.
constexpr std::ptrdiff_t kResidentBytes = 32768;

// How many bits of a length the next stage takes: eights, but no pair is left over.
inline int NextBits(int logLength) { return logLength % 3 == 0 ? 3 : std::min(logLength, 2); }

template <class V> struct Points { V re, im; };

template <class V> HWY_INLINE Points<V> operator+(Points<V> a, Points<V> b) {
    return {hn::Add(a.re, b.re), hn::Add(a.im, b.im)};
}
template <class V> HWY_INLINE Points<V> operator-(Points<V> a, Points<V> b) {
    return {hn::Sub(a.re, b.re), hn::Sub(a.im, b.im)};
}
template <class V> HWY_INLINE Points<V> operator*(Points<V> a, Points<V> b) {
    return {hn::Sub(hn::Mul(a.re, b.re), hn::Mul(a.im, b.im)),
            hn::Add(hn::Mul(a.re, b.im), hn::Mul(a.im, b.re))};
}
// a + i b and a - i b
template <class V> HWY_INLINE Points<V> PlusTurned(Points<V> a, Points<V> b) {
    return {hn::Sub(a.re, b.im), hn::Add(a.im, b.re)};
}
template <class V> HWY_INLINE Points<V> MinusTurned(Points<V> a, Points<V> b) {
    return {hn::Add(a.re, b.im), hn::Sub(a.im, b.re)};
}

template <class V> HWY_INLINE void Butterfly(Points<V> (&a)[2]) {
    Points<V> const sum = a[0] + a[1];
    a[1] = a[0] - a[1];
    a[0] = sum;
}

template <class V> HWY_INLINE void Butterfly(Points<V> (&a)[4]) {
    Points<V> const even = a[0] + a[2], evenOdd = a[0] - a[2], odd = a[1] + a[3], oddOdd = a[1] - a[3];
    a[0] = even + odd;
    a[1] = PlusTurned(evenOdd, oddOdd);
    a[2] = even - odd;
    a[3] = MinusTurned(evenOdd, oddOdd);
}

template <class V> HWY_INLINE void Butterfly(Points<V> (&a)[8]) {
    hn::DFromV<V> const d;
    Points<V> even[4] = {a[0], a[2], a[4], a[6]};
    Points<V> odd[4] = {a[1], a[3], a[5], a[7]};
    Butterfly(even);
    Butterfly(odd);
    auto const diagonal = hn::Set(d, static_cast<hn::TFromD<decltype(d)>>(0.7071067811865476));
    Points<V> const eighth{hn::Mul(diagonal, hn::Sub(odd[1].re, odd[1].im)),
                           hn::Mul(diagonal, hn::Add(odd[1].re, odd[1].im))};
    // three eighths forwards are an eighth backwards with the sign changed
    Points<V> const back{hn::Mul(diagonal, hn::Add(odd[3].re, odd[3].im)),
                         hn::Mul(diagonal, hn::Sub(odd[3].im, odd[3].re))};
    a[0] = even[0] + odd[0];
    a[4] = even[0] - odd[0];
    a[1] = even[1] + eighth;
    a[5] = even[1] - eighth;
    a[2] = PlusTurned(even[2], odd[2]);
    a[6] = MinusTurned(even[2], odd[2]);
    a[3] = even[3] - back;
    a[7] = even[3] + back;
}

// The transform of all columns of `width` that lie side by side. Rows are `width` real and as many imaginary
// parts.
template <typename T, int width> class Columns {
public:
    using D = hn::CappedTag<T, width>;
    using Lines = Points<hn::Vec<D>>;
    static constexpr std::ptrdiff_t kRow = 2 * width;

    static Lines Load(T const* row, std::ptrdiff_t at) {
        D const d;
        return {hn::Load(d, row + at), hn::Load(d, row + width + at)};
    }
    static void Store(Lines points, T* row, std::ptrdiff_t at) {
        D const d;
        hn::Store(points.re, d, row + at);
        hn::Store(points.im, d, row + width + at);
    }
    static constexpr std::ptrdiff_t Lanes() { return static_cast<std::ptrdiff_t>(hn::MaxLanes(D())); }

    // Rows are transformed in place and end where FillPositions tells. `roots` are pairs: all powers of the
    // root of order 2^logLength * step.
    static void Transform(T* rows, int logLength, T const* roots, std::ptrdiff_t step) {
        Stages(rows, std::ptrdiff_t{1} << logLength, logLength, roots, step);
    }

private:
    // The stages of all sequences of 2^logLength rows among `total`.
    static void Stages(T* rows, std::ptrdiff_t total, int logLength, T const* roots, std::ptrdiff_t step) {
        while (logLength > 0) {
            int const bits = NextBits(logLength);
            switch (bits) {
                case 1:
                    Stage<2>(rows, total, logLength, roots, step);
                    break;
                case 2:
                    Stage<4>(rows, total, logLength, roots, step);
                    break;
                default:
                    Stage<8>(rows, total, logLength, roots, step);
                    break;
            }
            logLength -= bits;
            step <<= bits;
            if (total * kRow * static_cast<std::ptrdiff_t>(sizeof(T)) > kResidentBytes) {
                std::ptrdiff_t const length = std::ptrdiff_t{1} << logLength;
                for (std::ptrdiff_t first = 0; first < total; first += length)
                    Stages(rows + first * kRow, length, logLength, roots, step);
                return;
            }
        }
    }

    template <int radix>
    static void Stage(T* rows, std::ptrdiff_t total, int logLength, T const* roots, std::ptrdiff_t step) {
        std::ptrdiff_t const length = std::ptrdiff_t{1} << logLength, part = length / radix;
        for (std::ptrdiff_t first = 0; first < total; first += length) {
            Crossing<radix, false>(rows + first * kRow, part * kRow, nullptr, 0);
            for (std::ptrdiff_t j = 1; j < part; ++j)
                Crossing<radix, true>(rows + (first + j) * kRow, part * kRow, roots, 2 * j * step);
        }
    }

    template <int radix, bool turns>
    static HWY_INLINE void Crossing(T* rows, std::ptrdiff_t part, T const* roots, std::ptrdiff_t step) {
        D const d;
        for (std::ptrdiff_t at = 0; at < width; at += Lanes()) {
            Lines a[radix];
            for (int m = 0; m < radix; ++m) a[m] = Load(rows + m * part, at);
            Butterfly(a);
            Store(a[0], rows, at);
            for (int m = 1; m < radix; ++m) {
                if constexpr (turns)
                    a[m] = a[m] * Lines{hn::Set(d, roots[m * step]), hn::Set(d, roots[m * step + 1])};
                Store(a[m], rows + m * part, at);
            }
        }
    }
};

// Where Columns::Transform leaves the frequencies.
void FillPositions(std::uint32_t* positions, int logLength) {
    int bitsOf[kLargestLogPoints], stages = 0;
    for (int left = logLength; left > 0; left -= bitsOf[stages++]) bitsOf[stages] = NextBits(left);
    positions[0] = 0;
    std::uint32_t length = 1;
    while (stages > 0) {
        std::uint32_t const radix = 1u << bitsOf[--stages];
        for (std::uint32_t k = length; k-- > 0;) {
            std::uint32_t const inner = positions[k];
            for (std::uint32_t m = 0; m < radix; ++m) positions[k * radix + m] = m * length + inner;
        }
        length *= radix;
    }
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
