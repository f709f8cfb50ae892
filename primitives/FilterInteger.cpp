// Filters with kernels of integers: which sums a kernel can come to decides how they are made, always exactly.
#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <memory>
#include <new>
#include <numeric>
#include <vector>

#include "primitives/Filter.h"
#include "primitives/Filtering.h"
#include "primitives/Rows.h"
#include "primitives/WeighPairs.h"
#include "primitives/WeighRows.h"

namespace ZPA {
namespace {

// Multiply-adds of short integers, and of doubles, done in the time that moving a byte takes.
constexpr int kPairsPerByte = 6;
constexpr int kDoublesPerByte = 2;

// What sums of weighted pixels may come to; exact below 2^53.
struct Range {
    double low;
    double high;

    double Largest() const { return std::max(std::abs(low), std::abs(high)); }
};
template <typename T> Range RangeOf(std::int32_t const* weights, std::int64_t count) {
    double constexpr kLow = std::numeric_limits<T>::min(), kHigh = std::numeric_limits<T>::max();
    double positive = 0, negative = 0;
    for (std::int64_t i = 0; i < count; ++i) (weights[i] > 0 ? positive : negative) += weights[i];
    return {positive * kLow + negative * kHigh, positive * kHigh + negative * kLow};
}

bool AreShort(std::int32_t const* weights, std::int64_t count) {
    return std::all_of(weights, weights + count,
                       [](std::int32_t weight) { return weight >= INT16_MIN && weight <= INT16_MAX; });
}

// A PairWindow that owns what it shows. `weights` are in the order of the pixels, and short.
class Pairs {
public:
    // Sums of all weighted pixels are `offset` too small; short pixels of type T differ from the pixels.
    template <typename T>
    Pairs(T, std::int32_t const* weights, Size size, double offset) : pairs_((size.width | 1) / 2 + 1) {
        std::uint32_t start = 0;
        for (int j = 0; j < size.height; ++j, weights += size.width) {
            if (std::all_of(weights, weights + size.width, [](std::int32_t weight) { return weight == 0; }))
                continue;
            rows_.push_back(j);
            auto const at = [&](std::ptrdiff_t i) {
                return static_cast<std::uint32_t>(i < 0 || i >= size.width ? 0 : weights[i]);
            };
            for (std::ptrdiff_t i = 0; i < std::ptrdiff_t{2} * pairs_; i += 2)
                for (std::ptrdiff_t const left : {i, i - 1})
                    weights_.push_back(static_cast<std::int32_t>((at(left) & 0xFFFF) | at(left + 1) << 16));
            constexpr std::uint32_t kLess = std::is_same_v<T, std::uint16_t> ? 32768 : 0;
            for (int i = 0; i < size.width; ++i) start += at(i) * kLess;
        }
        start_ =
            static_cast<std::int32_t>(start - static_cast<std::uint32_t>(static_cast<std::int64_t>(offset)));
    }
    PairWindow Get() const {
        return {weights_.data(), rows_.data(), static_cast<int>(rows_.size()), pairs_, start_};
    }
    std::ptrdiff_t Products() const { return static_cast<std::ptrdiff_t>(weights_.size()); }
    // Elements of a row of short pixels: whole blocks, and what the window reads behind them.
    std::ptrdiff_t Stride(std::ptrdiff_t width) const {
        auto const read = static_cast<std::uint64_t>((width + kPairBlock - 1) / kPairBlock * kPairBlock +
                                                     std::ptrdiff_t{2} * pairs_);
        return static_cast<std::ptrdiff_t>(WholeLines<std::int16_t>(read));
    }

private:
    std::vector<std::int32_t> weights_;
    std::vector<int> rows_;
    int pairs_;
    std::int32_t start_;
};

Quotient QuotientOf(int divisor, double largest, double offset) {
    bool const isPower = divisor > 0 && (divisor & (divisor - 1)) == 0;
    int shift = 0;
    while (isPower && divisor >> shift > 1) ++shift;
    auto const way = offset != 0            ? Quotient::kMovedDouble
                     : isPower              ? Quotient::kShift
                     : largest < kFloatSums ? Quotient::kFloat
                                            : Quotient::kDouble;
    return {way, shift, 1.0 / divisor, offset};
}

// A kernel that is a column times a row, both of integers.
struct Factors {
    std::vector<std::int32_t> row, column;  // empty if it is none
};
Factors FactorsOf(std::int32_t const* weights, Size size) {
    auto const rowAt = [&](int j) { return weights + std::ptrdiff_t{j} * size.width; };
    auto const isZero = [](std::int32_t weight) { return weight == 0; };
    int first = 0;
    while (first < size.height && std::all_of(rowAt(first), rowAt(first) + size.width, isZero)) ++first;
    if (first == size.height) return {};

    // The row without a common divisor: the others are whole multiples of it, or no multiples.
    std::int64_t common = 0;
    for (int i = 0; i < size.width; ++i) common = std::gcd(common, std::int64_t{rowAt(first)[i]});
    std::vector<std::int64_t> row;
    for (int i = 0; i < size.width; ++i) row.push_back(rowAt(first)[i] / common);
    auto const pivot = static_cast<std::ptrdiff_t>(
        std::find_if(row.begin(), row.end(), [](std::int64_t each) { return each != 0; }) - row.begin());

    Factors factors;
    for (int j = 0; j < size.height; ++j) {
        std::int64_t const factor = rowAt(j)[pivot] / row[static_cast<std::size_t>(pivot)];
        for (int i = 0; i < size.width; ++i)
            if (factor * row[static_cast<std::size_t>(i)] != rowAt(j)[i]) return {};
        if (factor > INT32_MAX) return {};  // the lowest integer's opposite
        factors.column.push_back(static_cast<std::int32_t>(factor));
    }
    for (std::int64_t const each : row) factors.row.push_back(static_cast<std::int32_t>(each));
    return factors;
}

// Each band's rows. Strides are whole cache lines.
template <typename T> class WorkRows {
public:
    // Throws where there is no memory.
    WorkRows(std::uint64_t rows, std::ptrdiff_t stride) : band_(rows * static_cast<std::uint64_t>(stride)) {
        std::uint64_t const bytes = WorkBytes<T>(static_cast<std::uint64_t>(MostBands()), band_, 0);
        if (bytes == kNoWorkSize) throw std::bad_alloc();
        memory_.reset(new std::uint8_t[static_cast<std::size_t>(bytes)]);
    }
    T* Of(int band) const {
        return FirstAligned<T>(memory_.get()) + band_ * static_cast<std::uint64_t>(band);
    }

private:
    std::uint64_t band_;
    std::unique_ptr<std::uint8_t[]> memory_;
};

// A filter whose weights are in the order of the pixels.
template <typename T> class IntegerFilter {
public:
    // Throws where there is no memory.
    IntegerFilter(Filtering<T, std::int32_t> const& filtering, int divisor)
        : filtering_(filtering),
          size_(filtering.size),
          divisor_(divisor),
          weights_(filtering.kernel, filtering.kernel + filtering.Taps()) {
        std::reverse(weights_.begin(), weights_.end());
    }

    // Throws where there is no memory.
    void Run() const {
        Range const range = RangeOf<T>(weights_.data(), filtering_.Taps());
        if (PairsServe() && RunSeparated()) return;
        if (PairsServe() && range.high - range.low < 4294967296.0 &&
            AreShort(weights_.data(), filtering_.Taps()))
            return RunPairs(range);
        if (range.Largest() < kDoubleSums) return RunDoubles();
        RunPlainly();
    }

private:
    // In 32 bits that may wrap around: the offset brings what the sum can be into their range.
    void RunPairs(Range const& range) const {
        bool const fits = range.low >= INT32_MIN && range.high <= INT32_MAX;
        double const offset = fits ? 0 : range.low + 2147483648.0;
        Pairs const pairs(T(), weights_.data(), filtering_.kernelSize, offset);
        PairWindow const window = pairs.Get();
        Quotient const quotient = QuotientOf(divisor_, range.Largest(), offset);
        std::ptrdiff_t const stride = pairs.Stride(size_.width);
        WorkRows<std::int16_t> const memory(SlidingRows(filtering_.kernelSize.height), stride);
        std::int64_t const work = (pairs.Products() + 8) * size_.width / kPairsPerByte;
        ForEachBand(size_.height, work, [&](int band, int first, int end) noexcept {
            SlideDown(
                memory.Of(band), stride, filtering_.kernelSize.height, first, end,
                [&](std::ptrdiff_t y, std::int16_t* row) {
                    ShortRow(filtering_.ReadRow(y), filtering_.ReadWidth(), row, stride);
                },
                [&](std::int16_t const* shorts, int y, int count) {
                    for (int i = 0; i < count; ++i)
                        FilterPairs(window, quotient, shorts + i * stride, stride,
                                    filtering_.destination[y + i], size_.width);
                });
        });
    }

    // False if the kernel does not separate, or not so that it is worth it.
    bool RunSeparated() const {
        Size const kernel = filtering_.kernelSize;
        if (!IsWorthSeparating(kernel)) return false;
        Factors const factors = FactorsOf(weights_.data(), kernel);
        if (factors.row.empty() || !AreShort(factors.row.data(), kernel.width)) return false;
        Range const rowRange = RangeOf<T>(factors.row.data(), kernel.width);
        if (rowRange.low < INT32_MIN || rowRange.high > INT32_MAX) return false;
        double largest = 0;  // of the sums on the way, whatever their order
        for (std::int32_t const weight : factors.column) largest += std::abs(static_cast<double>(weight));
        largest *= rowRange.Largest();
        if (largest < kFloatWhole) {
            RunSeparated<float>(factors, largest);
            return true;
        }
        if (largest < kDoubleSums) {
            RunSeparated<double>(factors, largest);
            return true;
        }
        return false;
    }

    template <typename Real> void RunSeparated(Factors const& factors, double largest) const {
        int const height = filtering_.kernelSize.height;
        Pairs const pairs(T(), factors.row.data(), {filtering_.kernelSize.width, 1}, 0);
        PairWindow const window = pairs.Get();
        std::vector<Real> const column(factors.column.begin(), factors.column.end());
        Quotient const quotient = QuotientOf(divisor_, largest, 0);
        std::ptrdiff_t const stride = pairs.Stride(size_.width);
        WorkRows<std::int16_t> const shorts(1, stride);
        WorkRows<Real> const memory(SlidingRows(height), stride);
        std::int64_t const work =
            (pairs.Products() + std::ptrdiff_t{2} * height + 16) * size_.width / kPairsPerByte;
        ForEachBand(size_.height, work, [&](int band, int first, int end) noexcept {
            std::int16_t* const pixels = shorts.Of(band);
            SlideDown(
                memory.Of(band), stride, height, first, end,
                [&](std::ptrdiff_t y, Real* row) {
                    ShortRow(filtering_.ReadRow(y), filtering_.ReadWidth(), pixels, stride);
                    SumPairs(window, pixels, row, size_.width);
                },
                [&](Real const* sums, int y, int count) {
                    for (int i = 0; i < count; ++i)
                        FilterColumns(column.data(), height, quotient, sums + i * stride, stride,
                                      filtering_.destination[y + i], size_.width);
                });
        });
    }

    // In doubles, which hold every sum exactly.
    void RunDoubles() const {
        int const height = filtering_.kernelSize.height;
        std::vector<double> const weights(weights_.begin(), weights_.end());
        Window<double> const window{weights.data(), filtering_.kernelSize};
        auto const stride = static_cast<std::ptrdiff_t>(
            WholeLines<double>(static_cast<std::uint64_t>(filtering_.ReadWidth())));
        WorkRows<double> const memory(SlidingRows(height) + kRowsAtOnce, stride);
        double const reciprocal = 1.0 / divisor_;
        std::int64_t const work = filtering_.Taps() * size_.width / kDoublesPerByte;
        ForEachBand(size_.height, work, [&](int band, int first, int end) noexcept {
            double* const part = memory.Of(band);
            double* const sums = part + static_cast<std::ptrdiff_t>(SlidingRows(height)) * stride;
            SlideDown(
                part, stride, height, first, end,
                [&](std::ptrdiff_t y, double* row) {
                    ConvertRow<T, double>(filtering_.ReadRow(y), row, filtering_.ReadWidth());
                },
                [&](double const* pixels, int y, int count) {
                    WeighRows(window, pixels, stride, sums, stride, {size_.width, count});
                    for (int i = 0; i < count; ++i)
                        for (int x = 0; x < size_.width; ++x) {
                            double const sum = sums[i * stride + x];
                            filtering_.destination[y + i][x] =
                                Saturated((sum + std::copysign(0.5, sum)) * reciprocal);
                        }
                });
        });
    }

    void RunPlainly() const {
        ForEachBand(size_.height, filtering_.Taps() * size_.width, [&](int, int first, int end) noexcept {
            for (int y = first; y < end; ++y)
                for (int x = 0; x < size_.width; ++x)
                    filtering_.destination[y][x] = Saturated(PlainQuotient(x, y));
        });
    }

    double PlainQuotient(int x, int y) const {
        std::uint64_t sum = 0;
        std::int32_t const* weight = weights_.data();
        for (int j = 0; j < filtering_.kernelSize.height; ++j) {
            T const* const row = filtering_.ReadRow(std::ptrdiff_t{y} + j) + x;
            for (int i = 0; i < filtering_.kernelSize.width; ++i)
                sum += static_cast<std::uint64_t>(std::int64_t{*weight++} * row[i]);
        }
        auto const whole = static_cast<std::int64_t>(sum);
        // The lowest one's opposite is no integer of 64 bits.
        return static_cast<double>(divisor_ == -1 ? -std::max(whole, -INT64_MAX) : whole / divisor_);
    }

    static T Saturated(double quotient) {
        return static_cast<T>(
            std::clamp<double>(quotient, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
    }

    Filtering<T, std::int32_t> const& filtering_;
    Size size_;
    int divisor_;
    std::vector<std::int32_t> weights_;
};

template <typename T>
Status CheckAndFilter(Filtering<T, std::int32_t> const& filtering, int divisor) noexcept {
    Status const status = filtering.Check();
    if (status != kDone) return status;
    if (divisor == 0) return kBadArgument;
    try {
        IntegerFilter<T>(filtering, divisor).Run();
        return kDone;
    } catch (...) {
        return kNoMemory;
    }
}

}  // namespace

#define ZPA_FILTER(name, T)                                                                               \
    Status ippiFilter_##name##_C1R(T const* source, std::ptrdiff_t sourceStep, T* destination,            \
                                   std::ptrdiff_t destinationStep, Size size, std::int32_t const* kernel, \
                                   Size kernelSize, int anchorX, int anchorY, int divisor) noexcept {     \
        return CheckAndFilter<T>({{source, sourceStep},                                                   \
                                  {destination, destinationStep},                                         \
                                  size,                                                                   \
                                  kernel,                                                                 \
                                  kernelSize,                                                             \
                                  anchorX,                                                                \
                                  anchorY},                                                               \
                                 divisor);                                                                \
    }
ZPA_FILTER(8u, std::uint8_t)
ZPA_FILTER(16s, std::int16_t)
ZPA_FILTER(16u, std::uint16_t)
#undef ZPA_FILTER

}  // namespace ZPA
