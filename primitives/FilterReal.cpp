// Filters with kernels of real numbers: at once, or as two passes where the kernel is a column times a row.
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>

#include "primitives/Filter.h"
#include "primitives/Filtering.h"
#include "primitives/WeighRows.h"

namespace ZPA {
namespace {

// Bytes of pixels multiplied and added in the time that moving a byte takes.
constexpr int kWeighedPerByte = 16;

// Rows of sums on the way. One line more: rows a power of two apart would share the lines of a cache.
template <typename T> std::uint64_t RowStride(int width) {
    return WholeLines<T>(static_cast<std::uint64_t>(width) + 1);
}

// What a filter works in: each band's rows, the turned kernel, and the row and the column that it may be the
// product of.
template <typename T> struct WorkSize {
    WorkSize(Size kernel, int width)
        : taps(static_cast<std::uint64_t>(kernel.width) * static_cast<std::uint64_t>(kernel.height)),
          edges(static_cast<std::uint64_t>(kernel.width) + static_cast<std::uint64_t>(kernel.height)),
          band(IsWorthSeparating(kernel) ? SlidingRows(kernel.height) * RowStride<T>(width) : 0),
          bands(band == 0 ? 0 : static_cast<std::uint64_t>(MostBands())) {}
    std::uint64_t Bytes() const { return WorkBytes<T>(bands, band, taps + edges); }

    std::uint64_t taps;
    std::uint64_t edges;
    std::uint64_t band;
    // The first question about threads starts OpenMP's run-time: kernels without bands do not ask.
    std::uint64_t bands;
};

// A Gaussian that was computed misses being a product by fewer roundings: up to 50, by those of its exponents.
constexpr std::ptrdiff_t kMostRoundings = 100;

// Finds the row and the column whose product the kernel is. Each element may differ from that by as much as
// two passes have fewer roundings than one, so that the bound of the error does not grow; but by no more than
// kernels are rounded by, since that bound is far above the errors that large kernels have.
template <typename T> bool Separate(T const* kernel, Size size, T* row, T* column) {
    std::ptrdiff_t const width = size.width, height = size.height, taps = width * height;
    T const* const pivot =
        std::max_element(kernel, kernel + taps, [](T a, T b) { return std::abs(a) < std::abs(b); });
    if (*pivot == 0 || !std::isfinite(*pivot)) return false;
    std::ptrdiff_t const pivotX = (pivot - kernel) % width;
    std::copy_n(pivot - pivotX, width, row);
    for (std::ptrdiff_t j = 0; j < height; ++j) column[j] = kernel[j * width + pivotX] / *pivot;

    // The product is kept to more digits; `fma`, which would keep all, rounds twice on some platforms.
    using Wide = std::conditional_t<std::is_same_v<T, float>, double, long double>;
    std::ptrdiff_t const roundings = std::min(taps - width - height, kMostRoundings);
    Wide const tolerance = static_cast<Wide>(roundings) * std::numeric_limits<T>::epsilon() / 2;
    for (std::ptrdiff_t j = 0; j < height; ++j)
        for (std::ptrdiff_t i = 0; i < width; ++i) {
            Wide const element = kernel[j * width + i];
            // Nothing but zeros makes up for what is not a number.
            if ((element == 0) != (column[j] == 0 || row[i] == 0)) return false;
            if (!(std::abs(Wide{column[j]} * row[i] - element) <= tolerance * std::abs(element)))
                return false;
        }
    return true;
}

template <typename T> void Filter(Filtering<T, T> const& filtering, std::uint8_t* work) noexcept {
    constexpr auto kBytes = static_cast<std::ptrdiff_t>(sizeof(T));
    Size const kernel = filtering.kernelSize;
    int const width = filtering.size.width;
    std::ptrdiff_t const sourceStride = filtering.source.step / kBytes;
    std::ptrdiff_t const destinationStride = filtering.destination.step / kBytes;
    WorkSize<T> const sizes(kernel, width);
    T* const bands = FirstAligned<T>(work);
    T* const turned = bands + sizes.bands * sizes.band;
    T* const row = turned + sizes.taps;
    T* const column = row + kernel.width;
    std::reverse_copy(filtering.kernel, filtering.kernel + filtering.Taps(), turned);

    if (IsWorthSeparating(kernel) && Separate(turned, kernel, row, column)) {
        Window<T> const across{row, {kernel.width, 1}}, down{column, {1, kernel.height}};
        auto const stride = static_cast<std::ptrdiff_t>(RowStride<T>(width));
        std::int64_t const cost =
            (std::int64_t{kernel.width} + kernel.height) * kBytes * width / kWeighedPerByte;
        ForEachBand(filtering.size.height, cost, [&](int band, int first, int end) noexcept {
            SlideDown(
                bands + static_cast<std::ptrdiff_t>(sizes.band) * band, stride, kernel.height, first, end,
                [&](std::ptrdiff_t y, T* sums) {
                    WeighRows(across, filtering.ReadRow(y), sourceStride, sums, stride, {width, 1});
                },
                [&](T const* sums, int y, int count) {
                    WeighRows(down, sums, stride, filtering.destination[y], destinationStride,
                              {width, count});
                });
        });
        return;
    }
    std::int64_t const cost = filtering.Taps() * kBytes * width / kWeighedPerByte;
    ForEachBand(filtering.size.height, cost, [&](int, int first, int end) noexcept {
        WeighRows(Window<T>{turned, kernel}, filtering.ReadRow(first), sourceStride,
                  filtering.destination[first], destinationStride, {width, end - first});
    });
}

}  // namespace

Status ippiFilter_32f_C1R(float const* source, std::ptrdiff_t sourceStep, float* destination,
                          std::ptrdiff_t destinationStep, Size size, float const* kernel, Size kernelSize,
                          int anchorX, int anchorY) noexcept {
    Filtering<float, float> const filtering{
        {source, sourceStep}, {destination, destinationStep}, size, kernel, kernelSize, anchorX, anchorY};
    Status const status = filtering.Check();
    if (status != kDone) return status;
    std::uint64_t const bytes = WorkSize<float>(kernelSize, size.width).Bytes();
    if (bytes == kNoWorkSize) return kNoMemory;
    std::unique_ptr<std::uint8_t[]> const work(new (std::nothrow)
                                                   std::uint8_t[static_cast<std::size_t>(bytes)]);
    if (!work) return kNoMemory;
    Filter(filtering, work.get());
    return kDone;
}

Status ippiFilter_64f_C1R(double const* source, std::ptrdiff_t sourceStep, double* destination,
                          std::ptrdiff_t destinationStep, Size size, double const* kernel, Size kernelSize,
                          int anchorX, int anchorY, std::uint8_t* work) noexcept {
    Filtering<double, double> const filtering{
        {source, sourceStep}, {destination, destinationStep}, size, kernel, kernelSize, anchorX, anchorY};
    Status const status = work ? filtering.Check() : kNullPointer;
    if (status == kDone) Filter(filtering, work);
    return status;
}

Status ippiFilterGetBufSize_64f_C1R(Size kernelSize, int width, std::uint64_t* bytes) noexcept {
    if (!bytes) return kNullPointer;
    if (kernelSize.width < 1 || kernelSize.height < 1 || width < 1) return kBadSize;
    *bytes = WorkSize<double>(kernelSize, width).Bytes();
    return kDone;
}

}  // namespace ZPA
