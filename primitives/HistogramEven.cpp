// Histograms with evenly spaced bins: every value is counted, and then the values of a bin are added.
#include "primitives/HistogramEven.h"

#include <omp.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>

#include "primitives/CountTables.h"
#include "primitives/ForEachRow.h"

namespace ZPA {
namespace {

// Counting a pixel takes as long as moving that many bytes.
constexpr std::int64_t kWorkPerPixel = 8;

constexpr std::int64_t kMostLevels = std::int64_t{1} << 31;

// Tables of their own for each thread, which sees a band of rows. Adding the tables is work too: no more
// bands than threads.
int BandsOf(Size size) {
    if (std::int64_t{size.width} * size.height * kWorkPerPixel < kParallelWork) return 1;
    return std::clamp(omp_get_max_threads(), 1, size.height);
}

// counts[i] becomes how many pixels are low + i, for `bins` values.
template <typename T>
Status CountValues(Rows<T const> rows, Size size, std::int64_t low, std::int64_t bins,
                   std::uint32_t* counts) noexcept {
    int const bands = BandsOf(size);
    std::unique_ptr<CountTables<T>[]> const tables(new (std::nothrow)
                                                       CountTables<T>[static_cast<std::size_t>(bands)]);
    if (!tables) return kNoMemory;
    for (int band = 0; band < bands; ++band)
        if (!tables[static_cast<std::size_t>(band)].Prepare(low, bins)) return kNoMemory;

    auto const firstRow = [&](std::int64_t band) { return static_cast<int>(band * size.height / bands); };
    std::int64_t const work = std::int64_t{size.width} * size.height * kWorkPerPixel / bands;
    ForEachRow(bands, bands > 1 ? work : 0, [&](int band) noexcept {
        CountTables<T>& own = tables[static_cast<std::size_t>(band)];
        int const first = firstRow(band), end = firstRow(band + 1);
        if (rows.step == std::ptrdiff_t{size.width} * static_cast<std::ptrdiff_t>(sizeof(T)))
            return own.Count(rows[first], std::ptrdiff_t{end - first} * size.width);
        for (int y = first; y < end; ++y) own.Count(rows[y], size.width);
    });
    std::fill_n(counts, bins, 0u);
    for (int band = 0; band < bands; ++band) tables[static_cast<std::size_t>(band)].AddTo(counts);
    return kDone;
}

template <typename T>
Status Histogram(T const* source, std::ptrdiff_t step, Size size, std::uint32_t* counts, std::int64_t* levels,
                 std::int64_t levelCount, std::int64_t lower, std::int64_t upper) noexcept {
    if (!source || !counts) return kNullPointer;
    if (size.width < 1 || size.height < 1) return kBadSize;
    if (levelCount < 2 || levelCount > kMostLevels || lower >= upper) return kBadArgument;

    std::int64_t const bins = levelCount - 1;
    // In two parts, since the product of a level's number and the whole width could overflow.
    std::int64_t const whole = (upper - lower) / bins, part = (upper - lower) % bins;
    auto const level = [&](std::int64_t k) { return lower + k * whole + k * part / bins; };
    if (levels)
        for (std::int64_t k = 0; k < levelCount; ++k) levels[k] = level(k);

    Rows<T const> const rows{source, step};
    if (whole == 1 && part == 0) return CountValues(rows, size, lower, bins, counts);

    // Bins of more or fewer values than one: the values are counted, and then shared out.
    std::fill_n(counts, bins, 0u);
    std::int64_t const first = std::max<std::int64_t>(lower, std::numeric_limits<T>::min());
    std::int64_t const last = std::min<std::int64_t>(upper - 1, std::numeric_limits<T>::max());
    if (first > last) return kDone;
    std::int64_t const values = last - first + 1;
    std::unique_ptr<std::uint32_t[]> const ofValues(new (std::nothrow)
                                                        std::uint32_t[static_cast<std::size_t>(values)]);
    if (!ofValues) return kNoMemory;
    Status const status = CountValues(rows, size, first, values, ofValues.get());
    if (status != kDone) return status;
    std::int64_t bin = 0;
    for (std::int64_t value = first; value <= last; ++value) {
        while (level(bin + 1) <= value) ++bin;
        counts[bin] += ofValues[static_cast<std::size_t>(value - first)];
    }
    return kDone;
}

}  // namespace

#define ZPA_HISTOGRAM(suffix, Element)                                                                      \
    Status ippiHistogramEven_##suffix##_C1R(                                                                \
        Element const* source, std::ptrdiff_t step, Size size, std::uint32_t* counts, std::int64_t* levels, \
        std::int64_t levelCount, std::int64_t lower, std::int64_t upper) noexcept {                         \
        return Histogram(source, step, size, counts, levels, levelCount, lower, upper);                     \
    }
ZPA_HISTOGRAM(8u, std::uint8_t)
ZPA_HISTOGRAM(16u, std::uint16_t)
ZPA_HISTOGRAM(16s, std::int16_t)
#undef ZPA_HISTOGRAM

}  // namespace ZPA
