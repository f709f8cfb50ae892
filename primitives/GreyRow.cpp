// Pixels as grey levels. Compiled for each instruction set, the plain loops become vectors by themselves.
#include "primitives/GreyRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/GreyRow.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <type_traits>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {

// Doubles of this size have no room for a fraction, and their lowest bits count.
constexpr double kShift = 6755399441055744.0;

template <typename T> std::uint8_t Level(double value) {
    // The sum rounds once, unless it is wider than a double.
    double const shifted = (FLT_EVAL_METHOD == 0 ? value : std::nearbyint(value)) + kShift;
    std::uint64_t zero, level;
    std::memcpy(&zero, &kShift, sizeof zero);
    std::memcpy(&level, &shifted, sizeof level);
    level -= zero;
    return static_cast<std::uint8_t>(std::is_integral_v<T> || level <= 255 ? level : 0);
}

template <typename T>
void Grey(T const* HWY_RESTRICT pixels, std::ptrdiff_t count, double black, double scale,
          std::uint8_t* HWY_RESTRICT levels) {
    for (std::ptrdiff_t x = 0; x < count; ++x)
        levels[x] = Level<T>((static_cast<double>(pixels[x]) - black) * scale);
}

#define ZPA_KERNEL(name, T)                                                            \
    void Grey##name(T const* pixels, std::ptrdiff_t count, double black, double scale, \
                    std::uint8_t* levels) {                                            \
        Grey(pixels, count, black, scale, levels);                                     \
    }
ZPA_KERNEL(8u, std::uint8_t)
ZPA_KERNEL(16u, std::uint16_t)
ZPA_KERNEL(64f, double)
#undef ZPA_KERNEL

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

#define ZPA_EXPORT(name, T)                                                                                 \
    HWY_EXPORT(Grey##name);                                                                                 \
    void GreyRow(T const* pixels, std::ptrdiff_t count, double black, double scale, std::uint8_t* levels) { \
        HWY_DYNAMIC_DISPATCH(Grey##name)(pixels, count, black, scale, levels);                              \
    }
ZPA_EXPORT(8u, std::uint8_t)
ZPA_EXPORT(16u, std::uint16_t)
ZPA_EXPORT(64f, double)
#undef ZPA_EXPORT

}  // namespace ZPA
#endif
