// A row of floats, weighted. Each sum has a lane of its own, so that its order is that of a plain loop.
#include "primitives/CorrelateRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/CorrelateRow.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

void Correlate(float const* row, float const* weights, std::ptrdiff_t taps, std::ptrdiff_t count,
               float* sums) {
    hn::ScalableTag<float> const d;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    std::ptrdiff_t i = 0;
    // Four vectors at once: a single one would wait for each of its additions.
    for (; i + 4 * lanes <= count; i += 4 * lanes) {
        auto sum0 = hn::Zero(d), sum1 = hn::Zero(d), sum2 = hn::Zero(d), sum3 = hn::Zero(d);
        for (std::ptrdiff_t k = 0; k < taps; ++k) {
            auto const weight = hn::Set(d, weights[k]);
            float const* const at = row + i + k;
            sum0 = hn::Add(sum0, hn::Mul(hn::LoadU(d, at), weight));
            sum1 = hn::Add(sum1, hn::Mul(hn::LoadU(d, at + lanes), weight));
            sum2 = hn::Add(sum2, hn::Mul(hn::LoadU(d, at + 2 * lanes), weight));
            sum3 = hn::Add(sum3, hn::Mul(hn::LoadU(d, at + 3 * lanes), weight));
        }
        hn::StoreU(sum0, d, sums + i);
        hn::StoreU(sum1, d, sums + i + lanes);
        hn::StoreU(sum2, d, sums + i + 2 * lanes);
        hn::StoreU(sum3, d, sums + i + 3 * lanes);
    }
    for (; i < count; ++i) {
        float sum = 0;
        for (std::ptrdiff_t k = 0; k < taps; ++k) sum += row[i + k] * weights[k];
        sums[i] = sum;
    }
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

HWY_EXPORT(Correlate);
void CorrelateRow(float const* row, float const* weights, std::ptrdiff_t taps, std::ptrdiff_t count,
                  float* sums) {
    HWY_DYNAMIC_DISPATCH(Correlate)(row, weights, taps, count, sums);
}

}  // namespace ZPA
#endif
