// Samples of a row: every second or fourth element is the low part of a wider one.
#include "primitives/SampleRow.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/SampleRow.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// As many samples as whole vectors hold; gives their number.
template <typename Wide>
std::ptrdiff_t RunWide(std::uint16_t const* row, int offset, std::uint16_t* samples, std::ptrdiff_t count) {
    constexpr std::ptrdiff_t kStep = sizeof(Wide) / 2;
    hn::ScalableTag<Wide> const d;
    hn::Repartition<std::uint16_t, decltype(d)> const elements;
    hn::Rebind<std::uint16_t, decltype(d)> const narrow;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    std::ptrdiff_t x = 0;
    for (; x + lanes <= count; x += lanes) {
        auto const wide = hn::BitCast(d, hn::LoadU(elements, row + kStep * x));
        hn::StoreU(hn::TruncateTo(narrow, hn::ShiftRightSame(wide, 16 * offset)), narrow, samples + x);
    }
    return x;
}

void Run(std::uint16_t const* row, int step, int offset, std::uint16_t* samples, std::ptrdiff_t count) {
    std::ptrdiff_t x = 0;
#if HWY_TARGET != HWY_SCALAR
    if (step == 2) x = RunWide<std::uint32_t>(row, offset, samples, count);
    if (step == 4) x = RunWide<std::uint64_t>(row, offset, samples, count);
#endif
    std::ptrdiff_t const far = step;
    row += offset + x * far;
    for (; x + 4 <= count; x += 4, row += 4 * far) {
        std::uint16_t const four[] = {row[0], row[far], row[2 * far], row[3 * far]};
        std::memcpy(samples + x, four, sizeof four);
    }
    for (; x < count; ++x, row += far) samples[x] = row[0];
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

HWY_EXPORT(Run);
void SampleRow(std::uint16_t const* row, int step, int offset, std::uint16_t* samples, std::ptrdiff_t count) {
    HWY_DYNAMIC_DISPATCH(Run)(row, step, offset, samples, count);
}

}  // namespace ZPA
#endif
