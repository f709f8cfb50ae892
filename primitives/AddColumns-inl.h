// Sums of columns that become sums of blocks. Included by kernels once for each SIMD target.
#if defined(ZPA_PRIMITIVES_ADDCOLUMNS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ZPA_PRIMITIVES_ADDCOLUMNS_INL_H
#undef ZPA_PRIMITIVES_ADDCOLUMNS_INL_H
#else
#define ZPA_PRIMITIVES_ADDCOLUMNS_INL_H
#endif

#include <hwy/highway.h>

#include <cstddef>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {

// Adds up neighbours, in place: `side` columns at a time become one.
template <typename Whole> void AddColumns(Whole* sums, std::ptrdiff_t blocks, std::ptrdiff_t side) {
    for (; side % 2 == 0; side /= 2) {
        std::ptrdiff_t const pairs = blocks * side / 2;
        std::ptrdiff_t x = 0;
#if HWY_TARGET != HWY_SCALAR
        namespace hn = hwy::HWY_NAMESPACE;
        hn::ScalableTag<Whole> const d;
        auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
        for (; x + lanes <= pairs; x += lanes) {
            auto const left = hn::LoadU(d, sums + 2 * x);
            auto const right = hn::LoadU(d, sums + 2 * x + lanes);
            hn::StoreU(hn::Add(hn::ConcatEven(d, right, left), hn::ConcatOdd(d, right, left)), d, sums + x);
        }
#endif
        for (; x < pairs; ++x) sums[x] = sums[2 * x] + sums[2 * x + 1];
    }
    if (side == 1) return;
    for (std::ptrdiff_t block = 0; block < blocks; ++block) {
        Whole const* const of = sums + block * side;
        Whole sum = of[0] + of[1] + of[2];
        for (std::ptrdiff_t x = 3; x < side; ++x) sum += of[x];
        sums[block] = sum;
    }
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
