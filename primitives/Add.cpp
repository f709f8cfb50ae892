// Sums of two images: a row kernel for each type, and the threads that share the rows.
#include "primitives/Add.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/Add.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <type_traits>

#include "primitives/ForEachRow.h"
#include "primitives/MapRow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

template <typename T> struct SaturatedSum {
    T const* a;
    T const* b;
    template <class D> HWY_INLINE hn::Vec<D> operator()(D d, std::ptrdiff_t x) const {
        if constexpr (std::is_integral_v<T>)
            return hn::SaturatedAdd(hn::LoadU(d, a + x), hn::LoadU(d, b + x));
        else
            return hn::Add(hn::LoadU(d, a + x), hn::LoadU(d, b + x));
    }
};

#define ZPA_KERNEL(name, T)                                                \
    void Add##name(T const* a, T const* b, T* sum, std::ptrdiff_t count) { \
        MapRow(hn::ScalableTag<T>(), sum, count, SaturatedSum<T>{a, b});   \
    }
ZPA_KERNEL(8u, std::uint8_t)
ZPA_KERNEL(16u, std::uint16_t)
ZPA_KERNEL(16s, std::int16_t)
ZPA_KERNEL(32f, float)
#undef ZPA_KERNEL

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {
namespace {

// Images without gaps are added in blocks of this many elements, whatever their rows: enough to forget the
// call, few enough to be shared among threads.
constexpr std::int64_t kBlock = 1 << 14;

template <typename T, typename Kernel>
Status AddImages(Kernel add, Rows<T const> a, Rows<T const> b, Rows<T> sum, Size size) noexcept {
    if (!a.first || !b.first || !sum.first) return kNullPointer;
    if (size.width < 1 || size.height < 1) return kBadSize;
    constexpr std::int64_t kMoved = 3 * sizeof(T);
    std::int64_t const rowBytes = std::int64_t{size.width} * static_cast<std::int64_t>(sizeof(T));
    if (a.step != rowBytes || b.step != rowBytes || sum.step != rowBytes) {
        ForEachRow(size.height, kMoved * size.width,
                   [&](int y) noexcept { add(a[y], b[y], sum[y], size.width); });
        return kDone;
    }
    std::int64_t const elements = std::int64_t{size.width} * size.height;
    auto const blocks = static_cast<int>((elements + kBlock - 1) / kBlock);
    ForEachRow(blocks, kMoved * std::min(elements, kBlock), [&](int block) noexcept {
        std::int64_t const start = block * kBlock;
        add(a.first + start, b.first + start, sum.first + start,
            static_cast<std::ptrdiff_t>(std::min(elements - start, kBlock)));
    });
    return kDone;
}

}  // namespace

#define ZPA_ADD(name, T)                                                                                   \
    HWY_EXPORT(Add##name);                                                                                 \
    Status ippiAdd_##name##_C1RSfs(T const* first, std::ptrdiff_t firstStep, T const* second,              \
                                   std::ptrdiff_t secondStep, T* sum, std::ptrdiff_t sumStep, Size size,   \
                                   int scaleFactor) noexcept {                                             \
        if (scaleFactor != 0) return kBadArgument;                                                         \
        return AddImages<T>(HWY_DYNAMIC_DISPATCH(Add##name), {first, firstStep}, {second, secondStep},     \
                            {sum, sumStep}, size);                                                         \
    }                                                                                                      \
    Status ippiAdd_##name##_C1IRSfs(T const* source, std::ptrdiff_t sourceStep, T* destination,            \
                                    std::ptrdiff_t destinationStep, Size size, int scaleFactor) noexcept { \
        return ippiAdd_##name##_C1RSfs(source, sourceStep, destination, destinationStep, destination,      \
                                       destinationStep, size, scaleFactor);                                \
    }
ZPA_ADD(8u, std::uint8_t)
ZPA_ADD(16u, std::uint16_t)
ZPA_ADD(16s, std::int16_t)
#undef ZPA_ADD

HWY_EXPORT(Add32f);
Status ippiAdd_32f_C1R(float const* first, std::ptrdiff_t firstStep, float const* second,
                       std::ptrdiff_t secondStep, float* sum, std::ptrdiff_t sumStep, Size size) noexcept {
    return AddImages<float>(HWY_DYNAMIC_DISPATCH(Add32f), {first, firstStep}, {second, secondStep},
                            {sum, sumStep}, size);
}
Status ippiAdd_32f_C1IR(float const* source, std::ptrdiff_t sourceStep, float* destination,
                        std::ptrdiff_t destinationStep, Size size) noexcept {
    return ippiAdd_32f_C1R(source, sourceStep, destination, destinationStep, destination, destinationStep,
                           size);
}

}  // namespace ZPA
#endif
