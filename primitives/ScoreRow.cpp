// Standard scores of a row. Compiled for each instruction set, the plain loops become vectors by themselves.
#include "primitives/ScoreRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/ScoreRow.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <limits>
#include <type_traits>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {

template <typename T> T Stored(double score) {
    if constexpr (std::is_integral_v<T>) {
        // The low bits of what stands for no number, 0x80000000, are 0. In two steps without a jump.
        constexpr double kLow = -2147483649.0, kHigh = 2147483648.0, kNone = -2147483648.0;
        double const aboveLow = score > kLow ? score : kNone;
        double const within = aboveLow < kHigh ? aboveLow : kNone;
        return static_cast<T>(static_cast<std::int32_t>(within));
    } else {
        return static_cast<T>(score);
    }
}

template <typename T> void Scores(T const* from, std::ptrdiff_t count, double mean, double deviation, T* to) {
    for (std::ptrdiff_t x = 0; x < count; ++x)
        to[x] = Stored<T>((static_cast<double>(from[x]) - mean) / deviation);
}

template <typename T> void Blend(T const* from, std::uint8_t const* mask, std::ptrdiff_t count, T* to) {
    for (std::ptrdiff_t x = 0; x < count; ++x) to[x] = mask[x] != 0 ? from[x] : to[x];
}

// Scores are made in blocks that the nearest cache holds, and under a mask all of them: they are vectors, and
// jumps are not.
template <typename T>
void ScoreAny(T const* from, std::uint8_t const* mask, std::ptrdiff_t count, double mean, double deviation,
              T* to) {
    constexpr std::ptrdiff_t kBlock = 1024;
    T scores[kBlock];
    for (std::ptrdiff_t x = 0; x < count; x += kBlock) {
        std::ptrdiff_t const size = std::min(count - x, kBlock);
        if (deviation == 0)
            std::fill_n(scores, size, T{0});
        else
            Scores(from + x, size, mean, deviation, scores);
        if (mask)
            Blend(scores, mask + x, size, to + x);
        else
            std::copy_n(scores, size, to + x);
    }
}

#define ZPA_KERNEL(name, T)                                                                      \
    void Score##name(T const* from, std::uint8_t const* mask, std::ptrdiff_t count, double mean, \
                     double deviation, T* to) {                                                  \
        ScoreAny(from, mask, count, mean, deviation, to);                                        \
    }
ZPA_KERNEL(8u, std::uint8_t)
ZPA_KERNEL(16u, std::uint16_t)
ZPA_KERNEL(32f, float)
ZPA_KERNEL(64f, double)
#undef ZPA_KERNEL

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

#define ZPA_EXPORT(name, T)                                                                   \
    HWY_EXPORT(Score##name);                                                                  \
    template <>                                                                               \
    void ScoreRow(T const* from, std::uint8_t const* mask, std::ptrdiff_t count, double mean, \
                  double deviation, T* to) {                                                  \
        HWY_DYNAMIC_DISPATCH(Score##name)(from, mask, count, mean, deviation, to);            \
    }
ZPA_EXPORT(8u, std::uint8_t)
ZPA_EXPORT(16u, std::uint16_t)
ZPA_EXPORT(32f, float)
ZPA_EXPORT(64f, double)
#undef ZPA_EXPORT

}  // namespace ZPA
#endif
