// The bins of floating-point numbers.
#ifndef ZPA_PRIMITIVES_REALBINS_H
#define ZPA_PRIMITIVES_REALBINS_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// Bins that are `width` wide, the first of them from `start` on. Numbers less than one width below count in
// it too, since a place is cut toward zero.
struct RealBins {
    double start;
    double width;
    std::uint32_t count;  // below 2^31
};

// binOf[x] becomes the bin of numbers[x], or bins.count where there is none: outside, or not a number.
void FindBins(float const* numbers, std::ptrdiff_t count, RealBins const& bins, std::uint32_t* binOf);
void FindBins(double const* numbers, std::ptrdiff_t count, RealBins const& bins, std::uint32_t* binOf);

}  // namespace ZPA

#endif
