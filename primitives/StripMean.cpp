// Means over a sliding window in double precision. Each addition along a row waits for the one before it, so
// several rows go side by side.
#include "primitives/StripMean.h"

#include <cstring>
#include <type_traits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/StripMean.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#ifndef ZPA_PRIMITIVES_STRIPMEAN_SHARED
#define ZPA_PRIMITIVES_STRIPMEAN_SHARED
namespace ZPA {
namespace {

// As many rows as hide the time that an addition takes; with more, memory has too many places to look at.
constexpr std::ptrdiff_t kStripRows = 4;

// Column sums are made this many columns ahead of their use, to be near when they are wanted.
constexpr std::ptrdiff_t kBlock = 64;

}  // namespace
}  // namespace ZPA
#endif

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// ---- What is summed: pixels, weights, or their products, which are 32-bit integers where the pixels are.

using WideD = hn::ScalableTag<double>;
using WideV = hn::Vec<WideD>;
constexpr std::ptrdiff_t kWideLanes = hn::MaxLanes(WideD());

template <typename T> auto LoadTerms(T const* pixels) {
    if constexpr (std::is_integral_v<T>)
        return hn::PromoteTo(hn::Rebind<std::int32_t, WideD>(), hn::LoadU(hn::Rebind<T, WideD>(), pixels));
    else
        return hn::LoadU(WideD(), pixels);
}
template <class Terms> WideV ToReal(Terms terms) {
    if constexpr (std::is_same_v<Terms, WideV>)
        return terms;
    else
        return hn::PromoteTo(WideD(), terms);
}

template <typename T> struct Plain {
    T const* pixels;
    double At(std::ptrdiff_t i) const { return static_cast<double>(pixels[i]); }
    WideV Load(std::ptrdiff_t i) const { return ToReal(LoadTerms(pixels + i)); }
};

template <typename T> struct Weighted {
    T const* pixels;
    std::int8_t const* weights;
    double At(std::ptrdiff_t i) const { return static_cast<double>(pixels[i] * weights[i]); }
    WideV Load(std::ptrdiff_t i) const {
        auto const factors = LoadTerms(weights + i);
        if constexpr (std::is_integral_v<T>)
            return ToReal(hn::Mul(LoadTerms(pixels + i), factors));
        else
            return hn::Mul(LoadTerms(pixels + i), ToReal(factors));
    }
};

// ---- Column sums

template <bool kEntering, bool kLeaving, typename Terms>
void Slide(double const* sums, double* next, Terms const& terms, std::ptrdiff_t entering,
           std::ptrdiff_t leaving, std::ptrdiff_t count) {
    WideD const d;
    std::ptrdiff_t i = 0;
    for (; i + kWideLanes <= count; i += kWideLanes) {
        WideV sum = hn::LoadU(d, sums + i);
        if (kEntering) sum = hn::Add(sum, terms.Load(entering + i));
        if (kLeaving) sum = hn::Sub(sum, terms.Load(leaving + i));
        hn::StoreU(sum, d, next + i);
    }
    for (; i < count; ++i) {
        double sum = sums[i];
        if (kEntering) sum += terms.At(entering + i);
        if (kLeaving) sum -= terms.At(leaving + i);
        next[i] = sum;
    }
}

// ---- Running sums

using D = hn::CappedTag<double, 4>;  // more lanes would need more steps across them
using V = hn::Vec<D>;
constexpr std::ptrdiff_t kLanes = hn::MaxLanes(D());
constexpr std::ptrdiff_t kGroups = kStripRows / kLanes;

// Makes vectors of the lanes that stand in the same place.
void Transpose(V (&v)[kLanes]) {
#if HWY_TARGET == HWY_SCALAR
    (void)v;
#else
    D const d;
    for (std::ptrdiff_t i = 0; i < kLanes; i += 2) {
        V const lower = hn::InterleaveLower(d, v[i], v[i + 1]);
        v[i + 1] = hn::InterleaveUpper(d, v[i], v[i + 1]);
        v[i] = lower;
    }
    if constexpr (kLanes == 4) {
        for (std::ptrdiff_t i = 0; i < 2; ++i) {
            V const lower = hn::ConcatLowerLower(d, v[i + 2], v[i]);
            v[i + 2] = hn::ConcatUpperUpper(d, v[i + 2], v[i]);
            v[i] = lower;
        }
    }
#endif
}

// The column sums of a strip of rows, and the sums that run along these rows.
template <typename Terms> class Strip {
public:
    Strip(Terms terms, Size image, Size window, double* work)
        : terms_(terms),
          width_(image.width),
          height_(image.height),
          halfWidth_(window.width / 2),
          halfHeight_(window.height / 2),
          step_(PaddedColumns(image, window)),
          sums_(work + FirstColumn(window)) {
        std::fill_n(work, kStripRows * step_, 0.0);
        for (std::ptrdiff_t y = 0; y < halfHeight_; ++y) SlideRow(LastRow(), LastRow(), 0, width_, y, -1);
    }

    // Goes on to the rows from `top`, as many as there are, and stands before their first column.
    void Begin(std::ptrdiff_t top, std::ptrdiff_t rows) {
        D const d;
        top_ = top;
        rows_ = rows;
        std::fill_n(running_, kGroups, hn::Zero(d));
        for (std::ptrdiff_t x = 0; x < halfWidth_; x += kBlock) SlideTo(x, std::min(x + kBlock, halfWidth_));
        // Whole vectors begin among the zeros, which change nothing.
        for (std::ptrdiff_t x = -(-halfWidth_ & (kLanes - 1)); x < halfWidth_; x += kLanes)
            for (std::ptrdiff_t group = 0; group < kGroups; ++group) {
                V columns[kLanes];
                for (std::ptrdiff_t i = 0; i < kLanes; ++i)
                    columns[i] = hn::LoadU(d, Row(group * kLanes + i) + x);
                Transpose(columns);
                for (V const column : columns) running_[group] = hn::Add(running_[group], column);
            }
    }
    // Makes the column sums that the columns from `x` to `end` need.
    void Prepare(std::ptrdiff_t x, std::ptrdiff_t end) {
        SlideTo(std::min(x + halfWidth_, width_), std::min(end + halfWidth_, width_));
    }
    // The sums over the windows of the next columns, from `x` on: a vector for each column, a lane for each
    // row.
    void Next(std::ptrdiff_t x, std::ptrdiff_t group, V (&columns)[kLanes]) {
        D const d;
        for (std::ptrdiff_t i = 0; i < kLanes; ++i) {
            double const* const row = Row(group * kLanes + i) + x;
            columns[i] = hn::Sub(hn::LoadU(d, row + halfWidth_), hn::LoadU(d, row - halfWidth_ - 1));
        }
        Transpose(columns);
        for (V& column : columns) column = running_[group] = hn::Add(running_[group], column);
    }

private:
    double* Row(std::ptrdiff_t row) const { return sums_ + row * step_; }
    // Where the row above the strip is found.
    double* LastRow() const { return Row(kStripRows - 1); }

    void SlideTo(std::ptrdiff_t x, std::ptrdiff_t end) {
        for (std::ptrdiff_t row = 0; row < rows_; ++row) {
            std::ptrdiff_t const y = top_ + row;
            SlideRow(row > 0 ? Row(row - 1) : LastRow(), Row(row), x, end, y + halfHeight_,
                     y - halfHeight_ - 1);
        }
    }
    void SlideRow(double const* sums, double* next, std::ptrdiff_t x, std::ptrdiff_t end,
                  std::ptrdiff_t entering, std::ptrdiff_t leaving) const {
        std::ptrdiff_t const in = entering * width_ + x, out = leaving * width_ + x;
        if (leaving < 0)
            Slide<true, false>(sums + x, next + x, terms_, in, out, end - x);
        else if (entering < height_)
            Slide<true, true>(sums + x, next + x, terms_, in, out, end - x);
        else
            Slide<false, true>(sums + x, next + x, terms_, in, out, end - x);
    }

    Terms terms_;
    std::ptrdiff_t width_, height_, halfWidth_, halfHeight_;
    std::ptrdiff_t step_;
    double* sums_;
    std::ptrdiff_t top_ = 0, rows_ = 0;
    V running_[kGroups];
};

// ---- Means

template <typename T> void StoreMeans(V means, T* output, std::ptrdiff_t count) {
    D const d;
    HWY_ALIGN T elements[kLanes];
    T* const to = count < kLanes ? elements : output;
    if constexpr (std::is_integral_v<T>) {
        hn::Rebind<std::uint16_t, D> const narrow;
        // What is too low becomes 0x80000000 by itself; what is too high, or not a number, must be told to.
        auto const fits = hn::Lt(means, hn::Set(d, 2147483648.0));
        auto const integers = hn::DemoteTo(hn::Rebind<std::int32_t, D>(),
                                           hn::IfThenElse(fits, means, hn::Set(d, -2147483648.0)));
        hn::StoreU(hn::TruncateTo(narrow, hn::BitCast(hn::Rebind<std::uint32_t, D>(), integers)), narrow,
                   reinterpret_cast<std::uint16_t*>(to));
    } else {
        hn::StoreU(means, d, to);
    }
    if (to == elements) std::memcpy(output, elements, static_cast<std::size_t>(count) * sizeof(T));
}

// Sums divided by the number of pixels in the window.
template <typename T> class CountedMeans {
public:
    CountedMeans(T const* input, Size image, Size window, double* work)
        : sums_({input}, image, window, work + image.width + kVectorRoom),
          height_(image.height),
          halfHeight_(window.height / 2),
          columns_(work) {
        std::fill_n(columns_, image.width + kVectorRoom, 1.0);
        for (std::ptrdiff_t x = 0; x < image.width; ++x)
            columns_[x] = static_cast<double>(CountInside(x, window.width / 2, image.width));
    }
    void Begin(std::ptrdiff_t top, std::ptrdiff_t rows) {
        sums_.Begin(top, rows);
        HWY_ALIGN double inside[kStripRows];
        for (std::ptrdiff_t row = 0; row < kStripRows; ++row)
            inside[row] =
                static_cast<double>(CountInside(std::min(top + row, height_ - 1), halfHeight_, height_));
        for (std::ptrdiff_t group = 0; group < kGroups; ++group)
            rows_[group] = hn::Load(D(), inside + group * kLanes);
    }
    void Prepare(std::ptrdiff_t x, std::ptrdiff_t end) { sums_.Prepare(x, end); }
    void Next(std::ptrdiff_t x, std::ptrdiff_t group, V (&columns)[kLanes]) {
        sums_.Next(x, group, columns);
        for (std::ptrdiff_t i = 0; i < kLanes; ++i)
            columns[i] = hn::Div(columns[i], hn::Mul(hn::Set(D(), columns_[x + i]), rows_[group]));
    }

private:
    Strip<Plain<T>> sums_;
    std::ptrdiff_t height_, halfHeight_;
    double* columns_;  // of the window, inside the image, for each column
    V rows_[kGroups];  // the same for the rows of the strip
};

// Sums of products divided by the sums of the weights.
template <typename T> class WeightedMeans {
public:
    WeightedMeans(T const* input, std::int8_t const* weights, Size image, Size window, double* work)
        : sums_({input, weights}, image, window, work),
          weights_({weights}, image, window, work + kStripRows * PaddedColumns(image, window)) {}
    void Begin(std::ptrdiff_t top, std::ptrdiff_t rows) {
        sums_.Begin(top, rows);
        weights_.Begin(top, rows);
    }
    void Prepare(std::ptrdiff_t x, std::ptrdiff_t end) {
        sums_.Prepare(x, end);
        weights_.Prepare(x, end);
    }
    void Next(std::ptrdiff_t x, std::ptrdiff_t group, V (&columns)[kLanes]) {
        V weights[kLanes];
        sums_.Next(x, group, columns);
        weights_.Next(x, group, weights);
        auto const least = hn::Set(D(), 0.01);
        for (std::ptrdiff_t i = 0; i < kLanes; ++i)
            columns[i] = hn::IfThenElseZero(hn::Gt(weights[i], least), hn::Div(columns[i], weights[i]));
    }

private:
    Strip<Weighted<T>> sums_;
    Strip<Plain<std::int8_t>> weights_;
};

template <typename T, typename Means> void FillImage(T* output, Size image, Means means) {
    std::ptrdiff_t const width = image.width;
    for (std::ptrdiff_t top = 0; top < image.height; top += kStripRows) {
        std::ptrdiff_t const rows = std::min<std::ptrdiff_t>(kStripRows, image.height - top);
        means.Begin(top, rows);
        for (std::ptrdiff_t block = 0; block < width; block += kBlock) {
            std::ptrdiff_t const end = std::min(block + kBlock, width);
            means.Prepare(block, end);
            for (std::ptrdiff_t x = block; x < end; x += kLanes)
                for (std::ptrdiff_t group = 0; group < kGroups; ++group) {
                    V lanes[kLanes];
                    means.Next(x, group, lanes);
                    Transpose(lanes);
                    std::ptrdiff_t const first = group * kLanes;
                    for (std::ptrdiff_t i = 0; i < kLanes && first + i < rows; ++i)
                        StoreMeans(lanes[i], output + (top + first + i) * width + x, width - x);
                }
        }
    }
}

#define ZPA_KERNELS(suffix, T)                                                                   \
    void Mean##suffix(T const* input, T* output, Size image, Size window, double* work) {        \
        FillImage(output, image, CountedMeans<T>(input, image, window, work));                   \
    }                                                                                            \
    void WeightedMean##suffix(T const* input, std::int8_t const* weights, T* output, Size image, \
                              Size window, double* work) {                                       \
        FillImage(output, image, WeightedMeans<T>(input, weights, image, window, work));         \
    }
ZPA_KERNELS(16u, std::uint16_t)
ZPA_KERNELS(16s, std::int16_t)
ZPA_KERNELS(64f, double)
#undef ZPA_KERNELS

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

std::uint64_t StripMeanWork(Size image, Size window) {
    return static_cast<std::uint64_t>(image.width + kVectorRoom + kStripRows * PaddedColumns(image, window));
}
std::uint64_t WeightedStripMeanWork(Size image, Size window) {
    return static_cast<std::uint64_t>(2 * kStripRows * PaddedColumns(image, window));
}

#define ZPA_SERVED(suffix, T)                                                                               \
    HWY_EXPORT(Mean##suffix);                                                                               \
    HWY_EXPORT(WeightedMean##suffix);                                                                       \
    template <> void StripMean(T const* input, T* output, Size image, Size window, double* work) noexcept { \
        HWY_DYNAMIC_DISPATCH(Mean##suffix)(input, output, image, window, work);                             \
    }                                                                                                       \
    template <>                                                                                             \
    void WeightedStripMean(T const* input, std::int8_t const* weights, T* output, Size image, Size window,  \
                           double* work) noexcept {                                                         \
        HWY_DYNAMIC_DISPATCH(WeightedMean##suffix)(input, weights, output, image, window, work);            \
    }
ZPA_SERVED(16u, std::uint16_t)
ZPA_SERVED(16s, std::int16_t)
ZPA_SERVED(64f, double)
#undef ZPA_SERVED

}  // namespace ZPA
#endif
