// Histograms with evenly spaced bins.
#ifndef ZPA_PRIMITIVES_HISTOGRAMEVEN_H
#define ZPA_PRIMITIVES_HISTOGRAMEVEN_H

#include "primitives/Status.h"

namespace ZPA {

// Count the pixels of a region, whose rows are `step` bytes apart, into levelCount - 1 bins from the lower
// level up to, but without, the upper one. Bin k holds the pixels from levels[k] up to, but without,
// levels[k + 1]; the levels are spaced evenly and rounded down. Pixels outside are not counted.
//
// `counts` receives levelCount - 1 elements. `levels` receives levelCount, or may be null.
// kNullPointer, kBadSize: no pixels. kBadArgument: fewer than two levels, or `upper` not above `lower`.
// kNoMemory: nothing was counted.
Status ippiHistogramEven_8u_C1R(std::uint8_t const* source, std::ptrdiff_t step, Size size,
                                std::uint32_t* counts, std::int64_t* levels, std::int64_t levelCount,
                                std::int64_t lower, std::int64_t upper) noexcept;
Status ippiHistogramEven_16u_C1R(std::uint16_t const* source, std::ptrdiff_t step, Size size,
                                 std::uint32_t* counts, std::int64_t* levels, std::int64_t levelCount,
                                 std::int64_t lower, std::int64_t upper) noexcept;
Status ippiHistogramEven_16s_C1R(std::int16_t const* source, std::ptrdiff_t step, Size size,
                                 std::uint32_t* counts, std::int64_t* levels, std::int64_t levelCount,
                                 std::int64_t lower, std::int64_t upper) noexcept;

}  // namespace ZPA

#endif
