// [sample]
// The kernel of Threshold.
#include "examples/samples/operation/ThresholdRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "examples/samples/operation/ThresholdRow.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <limits>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

template <typename T> void Mark(T const* pixels, std::uint8_t* marks, std::ptrdiff_t count, T limit) {
    std::ptrdiff_t x = 0;
#if HWY_TARGET != HWY_SCALAR
    hn::ScalableTag<T> const d;
    hn::Rebind<hwy::MakeSigned<T>, decltype(d)> const signedPixels;
    hn::Rebind<std::uint8_t, decltype(d)> const bytes;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    auto const limits = hn::Set(d, limit);
    for (; x + lanes <= count; x += lanes) {
        auto const row = hn::LoadU(d, pixels + x);
        auto const bright = hn::VecFromMask(d, hn::Eq(hn::Max(row, limits), row));
        auto const ones = hn::And(bright, hn::Set(d, 1));
        if constexpr (sizeof(T) == 1)
            hn::StoreU(ones, bytes, marks + x);
        else
            hn::StoreU(hn::DemoteTo(bytes, hn::BitCast(signedPixels, ones)), bytes, marks + x);
    }
#endif
    for (; x < count; ++x) marks[x] = pixels[x] >= limit;
}

void Mark8u(std::uint8_t const* pixels, std::uint8_t* marks, std::ptrdiff_t count, std::uint8_t limit) {
    Mark(pixels, marks, count, limit);
}
void Mark16u(std::uint16_t const* pixels, std::uint8_t* marks, std::ptrdiff_t count, std::uint16_t limit) {
    Mark(pixels, marks, count, limit);
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

HWY_EXPORT(Mark8u);
void ThresholdRow(std::uint8_t const* pixels, std::uint8_t* marks, std::ptrdiff_t count, int limit) {
    if (limit > UINT8_MAX)
        return void(std::fill_n(marks, std::max<std::ptrdiff_t>(count, 0), std::uint8_t{0}));
    HWY_DYNAMIC_DISPATCH(Mark8u)(pixels, marks, count, static_cast<std::uint8_t>(std::max(limit, 0)));
}

HWY_EXPORT(Mark16u);
void ThresholdRow(std::uint16_t const* pixels, std::uint8_t* marks, std::ptrdiff_t count, int limit) {
    if (limit > UINT16_MAX)
        return void(std::fill_n(marks, std::max<std::ptrdiff_t>(count, 0), std::uint8_t{0}));
    HWY_DYNAMIC_DISPATCH(Mark16u)(pixels, marks, count, static_cast<std::uint16_t>(std::max(limit, 0)));
}

}  // namespace ZPA
#endif
// [sample]
