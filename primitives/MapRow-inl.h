// How a row is walked by vectors. Included by kernels once for each SIMD target.
#if defined(ZPA_PRIMITIVES_MAPROW_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ZPA_PRIMITIVES_MAPROW_INL_H
#undef ZPA_PRIMITIVES_MAPROW_INL_H
#else
#define ZPA_PRIMITIVES_MAPROW_INL_H
#endif

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {

// Stores value(d, x), the vector of results from element x on, for a whole row. `value` depends on nothing
// but the inputs at the same elements, one of which the row may be.
//
// The first and the last vector overlap those between, which are aligned: no element is done alone, and none
// is read after it was written, since both ends are made before anything is stored. A row shorter than a
// vector is done by narrower ones.
template <class D, class Value>
void MapRow(D d, hwy::HWY_NAMESPACE::TFromD<D>* row, std::ptrdiff_t count, Value const& value) {
    namespace hn = hwy::HWY_NAMESPACE;
    constexpr auto kLanes = static_cast<std::ptrdiff_t>(hn::MaxLanes(D()));
    if (count < kLanes) {
        if constexpr (kLanes > 1) MapRow(hn::Half<D>(), row, count, value);
        return;
    }
    auto const first = value(d, std::ptrdiff_t{0});
    auto const last = value(d, count - kLanes);
    // Not as a signed number, which addresses of the upper half would turn negative.
    std::uintptr_t const past = reinterpret_cast<std::uintptr_t>(row) / sizeof *row % hn::MaxLanes(D());
    for (auto x = kLanes - static_cast<std::ptrdiff_t>(past); x + kLanes <= count; x += kLanes)
        hn::StoreU(value(d, x), d, row + x);
    hn::StoreU(last, d, row + (count - kLanes));
    hn::StoreU(first, d, row);
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
