// The recursive Gaussian: many neighbouring lines at a time go down and up again, in memory that stays in the
// cache.
#include "primitives/RecursiveGaussian.h"

#include <algorithm>

#include "primitives/Transpose.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/RecursiveGaussian.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#ifndef ZPA_RECURSIVEGAUSSIAN_STRIP
#define ZPA_RECURSIVEGAUSSIAN_STRIP
namespace ZPA {
namespace {

// Some of the lanes of a strip.
struct Lanes {
    std::ptrdiff_t low, high;
};

// Neighbouring lines of an image, lane j being line firstLine + j, and the rows that any of them crosses.
struct Strip {
    Of of;  // without a slant only
    double const* source;
    double* destination;
    std::ptrdiff_t sourceStride, destinationStride, width;
    Slant slant;  // without shifts: lines are columns
    std::ptrdiff_t firstLine, lines, firstRow, rows;
    double* work;  // rows + 5 rows of as many elements as there are lines
    double* left;  // for each row of the image, the result of the line before the first, as far as it counts

    std::ptrdiff_t Column(std::ptrdiff_t y) const { return firstLine + (slant.shift ? slant.shift[y] : 0); }
    double Fraction(std::ptrdiff_t y) const { return slant.fraction ? slant.fraction[y] : 0; }
    // Those that are inside of the image.
    Lanes Inside(std::ptrdiff_t y) const {
        return {std::max<std::ptrdiff_t>(0, -Column(y)), std::min(lines, width - Column(y))};
    }
    double* Row(std::ptrdiff_t y) const { return work + (y - firstRow + 3) * lines; }
    // The image at lane j. Beyond its last column it goes on as it is there.
    double Sample(std::ptrdiff_t y, std::ptrdiff_t j) const {
        std::ptrdiff_t const x = Column(y) + j;
        double const* const pixel = source + y * sourceStride + x;
        double const fraction = Fraction(y);
        if (of == Of::kSquares) return pixel[0] * pixel[0];
        if (fraction == 0 || x + 1 >= width) return pixel[0];
        return (1 - fraction) * pixel[0] + fraction * pixel[1];
    }
};

// Calls work(j) for the lanes of `now` that are not in `other`.
template <typename Work> void ForEachBeyond(Lanes now, Lanes other, Work const& work) {
    for (std::ptrdiff_t j = now.low; j < std::min(other.low, now.high); ++j) work(j);
    for (std::ptrdiff_t j = std::max(other.high, now.low); j < now.high; ++j) work(j);
}

// No lane: everything lies beyond.
constexpr Lanes kNoLanes{PTRDIFF_MAX / 2, PTRDIFF_MAX / 2};

}  // namespace
}  // namespace ZPA
#endif

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using Doubles = hn::ScalableTag<double>;
using V = hn::Vec<Doubles>;

// Calls vector(j) for as many whole vectors of lanes as there are, and single(j) for the rest.
template <typename Vector, typename Single>
HWY_INLINE void ForEachLane(Lanes lanes, Vector const& vector, Single const& single) {
    auto const step = static_cast<std::ptrdiff_t>(hn::Lanes(Doubles()));
    std::ptrdiff_t j = lanes.low;
    for (; j + step <= lanes.high; j += step) vector(j);
    for (; j < lanes.high; ++j) single(j);
}

// An input with what the three rows before it, `step` elements apart, feed back.
HWY_INLINE double Recurred(RecursiveGaussianCoefficients const& weights, double input, double const* at,
                           std::ptrdiff_t step) {
    return input + weights.a1 * at[step] + weights.a2 * at[2 * step] + weights.a3 * at[3 * step];
}

// The same for a row, of input(j), or of inputs(j) for a vector of lanes.
template <typename Inputs, typename Input>
HWY_INLINE void Recur(RecursiveGaussianCoefficients const& weights, double* row, std::ptrdiff_t step,
                      Lanes lanes, Inputs const& inputs, Input const& input) {
    Doubles const d;
    auto const a1 = hn::Set(d, weights.a1), a2 = hn::Set(d, weights.a2), a3 = hn::Set(d, weights.a3);
    ForEachLane(
        lanes,
        [&](std::ptrdiff_t j) {
            V sum = hn::Add(inputs(j), hn::Mul(a1, hn::LoadU(d, row + j + step)));
            sum = hn::Add(sum, hn::Mul(a2, hn::LoadU(d, row + j + 2 * step)));
            hn::StoreU(hn::Add(sum, hn::Mul(a3, hn::LoadU(d, row + j + 3 * step))), d, row + j);
        },
        [&](std::ptrdiff_t j) { row[j] = Recurred(weights, input(j), row + j, step); });
}

// The mean of neighbours that lies `fraction` of the way from one to the other.
HWY_INLINE V Between(double const* one, double const* other, double fraction) {
    Doubles const d;
    return hn::Add(hn::Mul(hn::Set(d, 1 - fraction), hn::LoadU(d, one)),
                   hn::Mul(hn::Set(d, fraction), hn::LoadU(d, other)));
}

// Rows of a wide image lie on pages of their own: nothing but this sends for what comes next.
HWY_INLINE void SendForRow(Strip const& strip, std::ptrdiff_t y) {
    if (y >= strip.firstRow + strip.rows) return;
    double const* const pixels = strip.source + y * strip.sourceStride + strip.Column(y);
    Lanes const inside = strip.Inside(y);
    for (std::ptrdiff_t j = inside.low; j < inside.high; j += 8) hwy::Prefetch(pixels + j);
}

// Before a line's first element stands what a constant would have given.
void Forward(RecursiveGaussianCoefficients const& weights, Strip const& strip) {
    Doubles const d;
    Lanes before = kNoLanes;
    for (std::ptrdiff_t y = strip.firstRow; y < strip.firstRow + strip.rows; ++y) {
        SendForRow(strip, y + 4);
        Lanes const now = strip.Inside(y);
        double* const row = strip.Row(y);
        ForEachBeyond(now, before, [&](std::ptrdiff_t j) {
            double const start = strip.Sample(y, j) / weights.scale;
            for (std::ptrdiff_t i = 1; i <= 3; ++i) row[j - i * strip.lines] = start;
        });
        before = now;
        double const* const pixels = strip.source + y * strip.sourceStride + strip.Column(y);
        double const fraction = strip.Fraction(y);
        auto const sample = [&](std::ptrdiff_t j) { return strip.Sample(y, j); };
        if (strip.of == Of::kSquares) {
            auto const squares = [&](std::ptrdiff_t j) {
                V const loaded = hn::LoadU(d, pixels + j);
                return hn::Mul(loaded, loaded);
            };
            Recur(weights, row, -strip.lines, now, squares, sample);
            continue;
        }
        if (fraction == 0) {
            Recur(
                weights, row, -strip.lines, now, [&](std::ptrdiff_t j) { return hn::LoadU(d, pixels + j); },
                sample);
            continue;
        }
        // The image's last column has no neighbour.
        std::ptrdiff_t const end = std::max(now.low, std::min(now.high, strip.width - 1 - strip.Column(y)));
        Recur(
            weights, row, -strip.lines, {now.low, end},
            [&](std::ptrdiff_t j) { return Between(pixels + j, pixels + j + 1, fraction); }, sample);
        for (std::ptrdiff_t j = end; j < now.high; ++j)
            row[j] = Recurred(weights, sample(j), row + j, -strip.lines);
    }
}

// Behind a line's last element stands what would have come back if the line went on with it for ever.
void Return(RecursiveGaussianCoefficients const& weights, Strip const& strip, std::ptrdiff_t y,
            std::ptrdiff_t j) {
    double* const row = strip.Row(y) + j;
    double const end = weights.endFactor * strip.Sample(y, j);
    double const last[] = {row[0] - end, row[-strip.lines] - end, row[-2 * strip.lines] - end};
    for (std::ptrdiff_t i = 0; i < 3; ++i) {
        double const* const of = weights.boundary + 3 * i;
        row[i * strip.lines] =
            (of[0] * last[0] + of[1] * last[1] + of[2] * last[2] + end * weights.endFactor) *
            weights.squaredScale;
    }
}

void WriteRow(Strip const& strip, std::ptrdiff_t y, Lanes now) {
    if (now.low >= now.high) return;
    double const* const row = strip.Row(y);
    double* const pixels = strip.destination + y * strip.destinationStride + strip.Column(y);
    double const fraction = strip.Fraction(y);
    double const left = strip.left && now.low == 0 && strip.Column(y) > 0 ? strip.left[y] : row[now.low];
    if (strip.left && now.high == strip.lines) strip.left[y] = row[strip.lines - 1];
    if (fraction == 0) {
        std::copy(row + now.low, row + now.high, pixels + now.low);
        return;
    }
    pixels[now.low] = (1 - fraction) * row[now.low] + fraction * left;
    ForEachLane(
        {now.low + 1, now.high},
        [&](std::ptrdiff_t j) { hn::StoreU(Between(row + j, row + j - 1, fraction), Doubles(), pixels + j); },
        [&](std::ptrdiff_t j) { pixels[j] = (1 - fraction) * row[j] + fraction * row[j - 1]; });
}

void Backward(RecursiveGaussianCoefficients const& weights, Strip const& strip) {
    Doubles const d;
    auto const gain = hn::Set(d, weights.squaredScale);
    Lanes after = kNoLanes;
    for (std::ptrdiff_t y = strip.firstRow + strip.rows - 1; y >= strip.firstRow; --y) {
        Lanes const now = strip.Inside(y);
        double* const row = strip.Row(y);
        ForEachBeyond(now, after, [&](std::ptrdiff_t j) { Return(weights, strip, y, j); });
        Lanes const both{std::max(now.low, after.low), std::min(now.high, after.high)};
        Recur(
            weights, row, strip.lines, both,
            [&](std::ptrdiff_t j) { return hn::Mul(gain, hn::LoadU(d, row + j)); },
            [&](std::ptrdiff_t j) { return weights.squaredScale * row[j]; });
        after = now;
        WriteRow(strip, y, now);
    }
}

void Run(RecursiveGaussianCoefficients const& weights, Strip const& strip) {
    Forward(weights, strip);
    Backward(weights, strip);
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

HWY_EXPORT(Run);

namespace {

// A strip, with what it works in, should leave half of a common second cache to the image.
constexpr std::ptrdiff_t kStripElements = 160 * 1024;

std::ptrdiff_t LinesAtOnce(std::ptrdiff_t length, std::ptrdiff_t elementsEach) {
    std::ptrdiff_t const fitting = kStripElements / (length * elementsEach + 5);
    return std::clamp<std::ptrdiff_t>(fitting - fitting % 16, 16, 256);
}
std::ptrdiff_t ColumnsAtOnce(Size size) {
    return std::min<std::ptrdiff_t>(LinesAtOnce(size.height, 1), size.width);
}
int RowsAtOnce(Size size) {
    return static_cast<int>(std::min<std::ptrdiff_t>(LinesAtOnce(size.width, 2), size.height));
}

std::uint64_t* Bits(double* elements) { return reinterpret_cast<std::uint64_t*>(elements); }
std::uint64_t const* Bits(double const* elements) { return reinterpret_cast<std::uint64_t const*>(elements); }

}  // namespace

RecursiveGaussianCoefficients MakeRecursiveGaussian(double sigma) {
    double const q =
        sigma >= 3.556 ? (sigma - 3.556) * 0.9804 + 2.5091 : 0.0561 * sigma * sigma + 0.5784 * sigma - 0.2568;
    double const t = 1 / ((q + 1.1668) * (q * q + 2.21566 * q + 3.2037296485000004));
    RecursiveGaussianCoefficients made;
    made.scale = 3.7381117538698008 * t;
    made.squaredScale = made.scale * made.scale;
    double const a1 = made.a1 = (3 * q * q + 6.76492 * q + 5.788961736500001) * t * q;
    double const a2 = made.a2 = -(3 * q + 3.38246) * t * q * q;
    double const a3 = made.a3 = t * q * q * q;
    made.endFactor = 1 / (1 - a1 - a2 - a3);

    double const n = 1 / ((1 + a2 + (a1 - a3) * a3) * (1 - a1 - a2 - a3) * (1 + a1 - a2 + a3));
    double const p = a3 * a1;
    double const r = a3 * a3;
    double const w = p + a2;
    double const z = a3 * a2;
    double const boundary[] = {(1 - p - r - a2) * n,
                               (a3 + a1) * n * w,
                               a3 * n * (a1 + z),
                               (a1 + z) * n,
                               -(a2 - 1) * n * w,
                               -(r + p + a2 - 1) * a3 * n,
                               (a1 * a1 + w - a2 * a2) * n,
                               (z * a2 + a1 * a2 - a3 * p - a3 * r - z + a3) * n,
                               a3 * n * (a1 + z)};
    std::copy(boundary, boundary + 9, made.boundary);
    return made;
}

std::uint64_t RecursiveGaussianWork(Size size) {
    auto const width = static_cast<std::uint64_t>(size.width);
    auto const height = static_cast<std::uint64_t>(size.height);
    return std::max((height + 5) * static_cast<std::uint64_t>(ColumnsAtOnce(size)) + height,
                    (2 * width + 5) * static_cast<std::uint64_t>(RowsAtOnce(size)));
}

void SmoothColumns(RecursiveGaussianCoefficients const& weights, Of of, double const* source,
                   double* destination, std::ptrdiff_t stride, Size size, double* work) {
    for (std::ptrdiff_t x = 0; x < size.width; x += ColumnsAtOnce(size)) {
        std::ptrdiff_t const lines = std::min<std::ptrdiff_t>(ColumnsAtOnce(size), size.width - x);
        HWY_DYNAMIC_DISPATCH(Run)
        (weights,
         {of, source, destination, stride, stride, size.width, {}, x, lines, 0, size.height, work, nullptr});
    }
}

// Strips come in the order of their columns: a strip reads one column of the next, which must still be the
// source's, and one result of the last.
void SmoothSlant(RecursiveGaussianCoefficients const& weights, Slant const& slant, double const* source,
                 double* destination, std::ptrdiff_t stride, Size size, double* work) {
    std::ptrdiff_t const most = ColumnsAtOnce(size);
    double* const left = work + (std::ptrdiff_t{size.height} + 5) * most;
    auto const first = slant.shift;
    auto const end = slant.shift + size.height;
    bool const growing = end[-1] >= first[0];
    std::ptrdiff_t const firstLine = -std::max(first[0], end[-1]);
    std::ptrdiff_t const endLine = size.width - std::min(first[0], end[-1]);
    for (std::ptrdiff_t line = firstLine; line < endLine; line += most) {
        std::ptrdiff_t const lines = std::min(most, endLine - line);
        // The rows where the last line has come in and the first one has not yet gone out, or the reverse.
        auto const hasCome = [&](std::ptrdiff_t shift) { return line + lines - 1 + shift >= 0; };
        auto const isLeft = [&](std::ptrdiff_t shift) { return line + shift < size.width; };
        auto const from = growing ? std::partition_point(first, end, [&](auto s) { return !hasCome(s); })
                                  : std::partition_point(first, end, [&](auto s) { return !isLeft(s); });
        auto const to =
            growing ? std::partition_point(from, end, isLeft) : std::partition_point(from, end, hasCome);
        HWY_DYNAMIC_DISPATCH(Run)
        (weights, {Of::kPixels, source, destination, stride, stride, size.width, slant, line, lines,
                   from - first, to - from, work, left});
    }
}

void SmoothRows(RecursiveGaussianCoefficients const& weights, double const* source, double* destination,
                std::ptrdiff_t stride, Size size, double* work) {
    for (int y = 0; y < size.height;) {
        int const rows = std::min(RowsAtOnce(size), size.height - y);
        double* const turned = work + (std::ptrdiff_t{size.width} + 5) * rows;
        Transpose(Bits(source + y * stride), stride, Bits(turned), rows, {size.width, rows});
        HWY_DYNAMIC_DISPATCH(Run)
        (weights, {Of::kPixels, turned, turned, rows, rows, rows, {}, 0, rows, 0, size.width, work, nullptr});
        Transpose(Bits(turned), rows, Bits(destination + y * stride), stride, {rows, size.width});
        y += rows;
    }
}

}  // namespace ZPA
#endif
