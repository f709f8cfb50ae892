// Fourier transforms of 2^k complex points. A sequence is cut into a rectangle: its columns are transformed,
// turned by their roots of unity and transposed, and transformed again. Columns lie side by side in rows of
// one cache line of real and one of imaginary parts, so that a stage works on whole lines, no lane of a
// vector ever meets another, and every instruction set gives the same bits.
#include "primitives/FourierStages.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/FourierStages.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "primitives/FourierColumns-inl.h"
#include "primitives/RootsOfUnity.h"

#ifndef ZPA_PRIMITIVES_FOURIERSTAGES_ONCE
#define ZPA_PRIMITIVES_FOURIERSTAGES_ONCE
namespace ZPA {
namespace {

// Columns side by side where there are enough of them: a cache line.
template <typename T> inline constexpr int kWidest = 64 / static_cast<int>(sizeof(T));

// Hands out parts of a work space.
class Parts {
public:
    explicit Parts(void* work) : next_(Aligned(reinterpret_cast<std::uintptr_t>(work))) {}
    template <typename T> T* Take(std::ptrdiff_t count) {
        T* const part = reinterpret_cast<T*>(next_);
        next_ = Aligned(next_ + static_cast<std::size_t>(count) * sizeof(T));
        return part;
    }

private:
    static std::uintptr_t Aligned(std::uintptr_t address) { return (address + 63) & ~std::uintptr_t{63}; }
    std::uintptr_t next_;
};

}  // namespace
}  // namespace ZPA
#endif

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// All powers of the root of order 2^logOrder, as pairs.
template <typename T> void FillRoots(T* pairs, int logOrder, double* spare) {
    std::ptrdiff_t const order = std::ptrdiff_t{1} << logOrder;
    FillPowers(logOrder, spare, spare + order, order);
    for (std::ptrdiff_t k = 0; k < order; ++k) {
        pairs[2 * k] = static_cast<T>(spare[k]);
        pairs[2 * k + 1] = static_cast<T>(spare[order + k]);
    }
}

// Writes a square of `width` by `width` elements with rows and columns exchanged; both have rows of `kRow`.
template <int width, typename T> void Transpose(T const* from, T* to) {
    constexpr std::ptrdiff_t kRow = 2 * width;
#if HWY_TARGET != HWY_SCALAR
    constexpr int kBlock = 16 / static_cast<int>(sizeof(T));
    if constexpr (width >= kBlock) {
        hn::Full128<T> const d;
        for (int y = 0; y < width; y += kBlock)
            for (int x = 0; x < width; x += kBlock) {
                T const* const source = from + y * kRow + x;
                T* const target = to + x * kRow + y;
                if constexpr (kBlock == 2) {
                    auto const a = hn::Load(d, source), b = hn::Load(d, source + kRow);
                    hn::Store(hn::InterleaveLower(d, a, b), d, target);
                    hn::Store(hn::InterleaveUpper(d, a, b), d, target + kRow);
                } else {
                    hn::RepartitionToWide<decltype(d)> const pairs;
                    auto const a = hn::Load(d, source), b = hn::Load(d, source + kRow);
                    auto const c = hn::Load(d, source + 2 * kRow), e = hn::Load(d, source + 3 * kRow);
                    auto const abLow = hn::BitCast(pairs, hn::InterleaveLower(d, a, b));
                    auto const abHigh = hn::BitCast(pairs, hn::InterleaveUpper(d, a, b));
                    auto const ceLow = hn::BitCast(pairs, hn::InterleaveLower(d, c, e));
                    auto const ceHigh = hn::BitCast(pairs, hn::InterleaveUpper(d, c, e));
                    hn::Store(hn::BitCast(d, hn::InterleaveLower(pairs, abLow, ceLow)), d, target);
                    hn::Store(hn::BitCast(d, hn::InterleaveUpper(pairs, abLow, ceLow)), d, target + kRow);
                    hn::Store(hn::BitCast(d, hn::InterleaveLower(pairs, abHigh, ceHigh)), d,
                              target + 2 * kRow);
                    hn::Store(hn::BitCast(d, hn::InterleaveUpper(pairs, abHigh, ceHigh)), d,
                              target + 3 * kRow);
                }
            }
        return;
    }
#endif
    for (int y = 0; y < width; ++y)
        for (int x = 0; x < width; ++x) to[x * kRow + y] = from[y * kRow + x];
}

// The transform of as few points as one butterfly takes.
template <int count, typename T> void TransformFew(T* points, std::ptrdiff_t stride, bool inverse) {
    hn::CappedTag<T, 1> const d;
    std::ptrdiff_t const re = inverse ? 1 : 0, im = inverse ? 0 : 1;
    auto const scale = hn::Set(d, inverse ? T{1} / count : T{1});
    Points<hn::Vec<decltype(d)>> a[count];
    for (int k = 0; k < count; ++k) {
        T const* const point = points + 2 * k * stride;
        a[k] = {hn::LoadU(d, point + re), hn::LoadU(d, point + im)};
    }
    Butterfly(a);
    for (int k = 0; k < count; ++k) {
        T* const point = points + 2 * k * stride;
        hn::StoreU(hn::Mul(scale, a[k].re), d, point + re);
        hn::StoreU(hn::Mul(scale, a[k].im), d, point + im);
    }
}
inline constexpr int kLargestLogFew = 3;
template <typename T> void TransformFew(T* points, int logPoints, std::ptrdiff_t stride, bool inverse) {
    switch (logPoints) {
        case 1:
            return TransformFew<2>(points, stride, inverse);
        case 2:
            return TransformFew<4>(points, stride, inverse);
        case 3:
            return TransformFew<8>(points, stride, inverse);
        default:
            return;  // one point is its own transform
    }
}

// Takes columns out of pairs and back. The inverse is the transform of points whose parts are exchanged, and
// whose result's parts are exchanged again.
template <typename T, int width> class Exchange {
public:
    using In = Columns<T, width>;
    using D = typename In::D;

    explicit Exchange(bool inverse, T scale)
        : re_(inverse ? width : 0), im_(inverse ? 0 : width), scale_(scale) {}

    // `stride` counts points from one row to the next.
    void Take(T const* points, std::ptrdiff_t stride, std::ptrdiff_t length, T* rows) const {
        D const d;
        for (std::ptrdiff_t j = 0; j < length; ++j, points += 2 * stride, rows += In::kRow)
            for (std::ptrdiff_t at = 0; at < width; at += In::Lanes()) {
                hn::Vec<D> re, im;
                hn::LoadInterleaved2(d, points + 2 * at, re, im);
                hn::Store(re, d, rows + re_ + at);
                hn::Store(im, d, rows + im_ + at);
            }
    }
    void Give(T const* rows, std::uint32_t const* positions, std::ptrdiff_t length, T* points,
              std::ptrdiff_t stride) const {
        D const d;
        auto const scale = hn::Set(d, scale_);
        for (std::ptrdiff_t k = 0; k < length; ++k, points += 2 * stride) {
            T const* const row = rows + static_cast<std::ptrdiff_t>(positions[k]) * In::kRow;
            for (std::ptrdiff_t at = 0; at < width; at += In::Lanes())
                hn::StoreInterleaved2(hn::Mul(scale, hn::Load(d, row + re_ + at)),
                                      hn::Mul(scale, hn::Load(d, row + im_ + at)), d, points + 2 * at);
        }
    }

private:
    std::ptrdiff_t re_, im_;
    T scale_;
};

// Transforms of one length, and the tables that they share.
template <typename T, int width> class Sequences {
public:
    using In = Columns<T, width>;
    static constexpr std::ptrdiff_t kRow = In::kRow;

    Sequences(int logPoints, bool inverse, void* work)
        : logTall_(logPoints / 2),
          logWide_(logPoints - logTall_),
          tall_(std::ptrdiff_t{1} << logTall_),
          wide_(std::ptrdiff_t{1} << logWide_),
          exchange_(inverse, inverse ? static_cast<T>(1.0 / static_cast<double>(tall_ * wide_)) : T{1}),
          powers_(logPoints) {
        Parts parts(work);
        transposed_ = parts.Take<T>(2 * tall_ * wide_);
        rows_ = parts.Take<T>(kRow * tall_);
        roots_ = parts.Take<T>(2 * wide_);
        turns_ = parts.Take<T>(kRow * tall_);
        blockRe_ = parts.Take<T>(tall_);
        blockIm_ = parts.Take<T>(tall_);
        tallPositions_ = parts.Take<std::uint32_t>(tall_);
        widePositions_ = parts.Take<std::uint32_t>(wide_);
        spare_ = parts.Take<double>(std::max(2 * wide_, kRow * tall_));

        FillPositions(tallPositions_, logTall_);
        FillPositions(widePositions_, logWide_);
        FillRoots(roots_, logWide_, spare_);
        FillTurns();
    }

    void Transform(T* points) {
        for (std::ptrdiff_t first = 0; first < wide_; first += width) {
            exchange_.Take(points + 2 * first, wide_, tall_, rows_);
            In::Transform(rows_, logTall_, roots_, wide_ / tall_);
            FillBlockTurns(first);
            TurnAndTranspose(first);
        }
        for (std::ptrdiff_t first = 0; first < tall_; first += width) {
            T* const rows = transposed_ + first * wide_ * 2;
            In::Transform(rows, logWide_, roots_, 1);
            exchange_.Give(rows, widePositions_, wide_, points + 2 * first, tall_);
        }
    }

private:
    // Frequency k of column c is turned by the power k * c of the root. A block of columns begins at some
    // column, so that its turns are those of the columns 0, 1, ... (`turns_`, a row for each k) times those
    // of its first one.
    void FillTurns() {
        for (std::ptrdiff_t known = 0; known < tall_; known = known ? 2 * known : 1) {
            double* const root = spare_ + known * kRow;
            for (std::ptrdiff_t c = 0; c < width; ++c) {
                Complex const power = powers_.Power(static_cast<std::uint64_t>(known * c));
                root[c] = power.re;
                root[width + c] = power.im;
            }
            for (std::ptrdiff_t k = 1; k < known; ++k) {
                double const* const a = spare_ + k * kRow;
                double* const product = root + k * kRow;
                for (std::ptrdiff_t c = 0; c < width; ++c) {
                    product[c] = root[c] * a[c] - root[width + c] * a[width + c];
                    product[width + c] = root[c] * a[width + c] + root[width + c] * a[c];
                }
            }
        }
        for (std::ptrdiff_t i = 0; i < kRow * tall_; ++i) turns_[i] = static_cast<T>(spare_[i]);
    }

    void FillBlockTurns(std::ptrdiff_t first) {
        double *const re = spare_, *const im = spare_ + tall_;
        re[0] = 1;
        im[0] = 0;
        for (std::ptrdiff_t known = 1; known < tall_; known *= 2) {
            Complex const root = powers_.Power(static_cast<std::uint64_t>(known * first));
            for (std::ptrdiff_t k = 0; k < known; ++k) {
                re[known + k] = root.re * re[k] - root.im * im[k];
                im[known + k] = root.re * im[k] + root.im * re[k];
            }
        }
        for (std::ptrdiff_t k = 0; k < tall_; ++k) {
            blockRe_[k] = static_cast<T>(re[k]);
            blockIm_[k] = static_cast<T>(im[k]);
        }
    }

    void TurnAndTranspose(std::ptrdiff_t first) {
        typename In::D const d;
        for (std::ptrdiff_t top = 0; top < tall_; top += width) {
            alignas(64) T square[width * kRow];
            for (std::ptrdiff_t y = 0; y < width; ++y) {
                std::ptrdiff_t const k = top + y;
                typename In::Lines const block{hn::Set(d, blockRe_[k]), hn::Set(d, blockIm_[k])};
                for (std::ptrdiff_t at = 0; at < width; at += In::Lanes()) {
                    auto const turn = block * In::Load(turns_ + k * kRow, at);
                    auto const point =
                        In::Load(rows_ + static_cast<std::ptrdiff_t>(tallPositions_[k]) * kRow, at);
                    In::Store(point * turn, square + y * kRow, at);
                }
            }
            T* const to = transposed_ + (top * wide_ + first * width) * 2;
            Transpose<width>(square, to);
            Transpose<width>(square + width, to + width);
        }
    }

    int logTall_, logWide_;
    std::ptrdiff_t tall_, wide_;  // rows and columns of the rectangle
    Exchange<T, width> exchange_;
    RootsOfUnity powers_;
    T* transposed_;  // blocks of `width` rows of the rectangle, each with its columns as rows
    T* rows_;
    T* roots_;
    T* turns_;
    T* blockRe_;
    T* blockIm_;
    std::uint32_t* tallPositions_;
    std::uint32_t* widePositions_;
    double* spare_;
};

template <typename T, int width>
void Transform(T* points, int logPoints, std::ptrdiff_t count, bool inverse, void* work) {
    Sequences<T, width> sequences(logPoints, inverse, work);
    for (std::ptrdiff_t i = 0; i < count; ++i) sequences.Transform(points + (i << logPoints) * 2);
}

// Narrower blocks where the rectangle is small.
template <typename T>
void TransformAny(T* points, int logPoints, std::ptrdiff_t count, bool inverse, void* work) {
    if (std::ptrdiff_t{1} << (logPoints / 2) >= kWidest<T>)
        Transform<T, kWidest<T>>(points, logPoints, count, inverse, work);
    else if (logPoints > kLargestLogFew)
        Transform<T, 4>(points, logPoints, count, inverse, work);
    else
        for (std::ptrdiff_t i = 0; i < count; ++i)
            TransformFew(points + (i << logPoints) * 2, logPoints, 1, inverse);
}

template <typename T, int width> void TransformSquare(T* points, int logPoints, bool inverse, void* work) {
    using In = Columns<T, width>;
    std::ptrdiff_t const length = std::ptrdiff_t{1} << logPoints;
    Parts parts(work);
    T* const rows = parts.Take<T>(In::kRow * length);
    T* const roots = parts.Take<T>(2 * length);
    auto* const positions = parts.Take<std::uint32_t>(length);
    FillPositions(positions, logPoints);
    FillRoots(roots, logPoints, parts.Take<double>(2 * length));
    Exchange<T, width> const exchange(inverse,
                                      inverse ? static_cast<T>(1.0 / static_cast<double>(length)) : T{1});
    for (std::ptrdiff_t first = 0; first < length; first += width) {
        exchange.Take(points + 2 * first, length, length, rows);
        In::Transform(rows, logPoints, roots, 1);
        exchange.Give(rows, positions, length, points + 2 * first, length);
    }
}

void Sequences32f(float* points, int logPoints, std::ptrdiff_t count, bool inverse, void* work) {
    TransformAny(points, logPoints, count, inverse, work);
}
void Sequences64f(double* points, int logPoints, std::ptrdiff_t count, bool inverse, void* work) {
    TransformAny(points, logPoints, count, inverse, work);
}
void Square64f(double* points, int logPoints, bool inverse, void* work) {
    std::ptrdiff_t const length = std::ptrdiff_t{1} << logPoints;
    if (length >= kWidest<double>)
        TransformSquare<double, kWidest<double>>(points, logPoints, inverse, work);
    else
        for (std::ptrdiff_t c = 0; c < length; ++c) TransformFew(points + 2 * c, logPoints, length, inverse);
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {
HWY_EXPORT(Sequences32f);
HWY_EXPORT(Sequences64f);
HWY_EXPORT(Square64f);

// Each part may begin up to a cache line later.
constexpr std::uint64_t kAlignments = 10 * 64;
constexpr std::uint64_t kRowBytes = 2 * 64;

std::uint64_t SequenceWorkBytes(int logPoints, std::size_t elementSize) {
    std::uint64_t const points = std::uint64_t{1} << logPoints, tall = std::uint64_t{1} << (logPoints / 2);
    std::uint64_t const wide = points / tall;
    std::uint64_t const spare = std::max(2 * wide, kRowBytes / elementSize * tall) * sizeof(double);
    return kAlignments + elementSize * (2 * points + 2 * wide + 2 * tall) + 2 * kRowBytes * tall +
           sizeof(std::uint32_t) * (tall + wide) + spare;
}
std::uint64_t ColumnsWorkBytes(int logPoints) {
    return kAlignments +
           (kRowBytes + 4 * sizeof(double) + sizeof(std::uint32_t)) * (std::uint64_t{1} << logPoints);
}

void TransformSequences(float* points, int logPoints, std::ptrdiff_t count, bool inverse, void* work) {
    HWY_DYNAMIC_DISPATCH(Sequences32f)(points, logPoints, count, inverse, work);
}
void TransformSequences(double* points, int logPoints, std::ptrdiff_t count, bool inverse, void* work) {
    HWY_DYNAMIC_DISPATCH(Sequences64f)(points, logPoints, count, inverse, work);
}
void TransformColumns(double* points, int logPoints, bool inverse, void* work) {
    HWY_DYNAMIC_DISPATCH(Square64f)(points, logPoints, inverse, work);
}

}  // namespace ZPA
#endif
