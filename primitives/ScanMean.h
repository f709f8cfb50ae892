// Means of 16-bit images over a sliding window, in integers.
#ifndef ZPA_PRIMITIVES_SCANMEAN_H
#define ZPA_PRIMITIVES_SCANMEAN_H

#include <cstdint>

#include "primitives/SlidingWindow.h"

namespace ZPA {

// Whether ScanMean serves a window of this size. It serves those of some million pixels.
bool ScanMeanServes(Size window);

// The number of doubles that either function works in. What they hold before does not matter.
std::uint64_t ScanMeanWork(Size image, Size window);

// The mean, truncated toward zero.
void ScanMean(std::uint16_t const* input, std::uint16_t* output, Size image, Size window,
              double* work) noexcept;
void ScanMean(std::int16_t const* input, std::int16_t* output, Size image, Size window,
              double* work) noexcept;

// The same with sums that wrap around to signed 32-bit numbers; the quotient's low 16 bits are stored. Serves
// every window.
void WrappingScanMean(std::uint16_t const* input, std::uint16_t* output, Size image, Size window,
                      double* work) noexcept;

}  // namespace ZPA

#endif
