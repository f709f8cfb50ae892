// The bins of floating-point numbers. Compiled for each instruction set, the plain loop becomes vectors by
// itself.
#include "primitives/RealBins.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/RealBins.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {

template <typename T>
void Find(T const* numbers, std::ptrdiff_t count, RealBins const& bins, std::uint32_t* binOf) {
    double const start = bins.start, width = bins.width, end = bins.count;
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        double const place = (static_cast<double>(numbers[x]) - start) / width;
        double const above = place > -1 ? place : end;
        double const within = above < end ? above : end;
        binOf[x] = static_cast<std::uint32_t>(static_cast<std::int32_t>(within));
    }
}

void Find32f(float const* numbers, std::ptrdiff_t count, RealBins const& bins, std::uint32_t* binOf) {
    Find(numbers, count, bins, binOf);
}
void Find64f(double const* numbers, std::ptrdiff_t count, RealBins const& bins, std::uint32_t* binOf) {
    Find(numbers, count, bins, binOf);
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

HWY_EXPORT(Find32f);
void FindBins(float const* numbers, std::ptrdiff_t count, RealBins const& bins, std::uint32_t* binOf) {
    HWY_DYNAMIC_DISPATCH(Find32f)(numbers, count, bins, binOf);
}

HWY_EXPORT(Find64f);
void FindBins(double const* numbers, std::ptrdiff_t count, RealBins const& bins, std::uint32_t* binOf) {
    HWY_DYNAMIC_DISPATCH(Find64f)(numbers, count, bins, binOf);
}

}  // namespace ZPA
#endif
