// Pixels of a row, inverted. Compiled for each instruction set, the plain loops become vectors by themselves.
#include "primitives/InvertRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/InvertRow.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {

template <typename T> void Flip(T const* from, std::uint8_t const* mask, std::ptrdiff_t count, T key, T* to) {
    if (mask)
        for (std::ptrdiff_t x = 0; x < count; ++x)
            to[x] = mask[x] != 0 ? static_cast<T>(from[x] ^ key) : to[x];
    else
        for (std::ptrdiff_t x = 0; x < count; ++x) to[x] = static_cast<T>(from[x] ^ key);
}

template <typename T> void Not(T const* from, std::uint8_t const* mask, std::ptrdiff_t count, T* to) {
    if (mask)
        for (std::ptrdiff_t x = 0; x < count; ++x) to[x] = mask[x] == 1 ? T{from[x] == 0} : to[x];
    else
        for (std::ptrdiff_t x = 0; x < count; ++x) to[x] = T{from[x] == 0};
}

#define ZPA_KERNELS(name, T)                                                                       \
    void Flip##name(T const* from, std::uint8_t const* mask, std::ptrdiff_t count, T key, T* to) { \
        Flip(from, mask, count, key, to);                                                          \
    }                                                                                              \
    void Not##name(T const* from, std::uint8_t const* mask, std::ptrdiff_t count, T* to) {         \
        Not(from, mask, count, to);                                                                \
    }
ZPA_KERNELS(8u, std::uint8_t)
ZPA_KERNELS(16u, std::uint16_t)
#undef ZPA_KERNELS

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

#define ZPA_EXPORT(name, T)                                                                      \
    HWY_EXPORT(Flip##name);                                                                      \
    void FlipBits(T const* from, std::uint8_t const* mask, std::ptrdiff_t count, T key, T* to) { \
        HWY_DYNAMIC_DISPATCH(Flip##name)(from, mask, count, key, to);                            \
    }                                                                                            \
    HWY_EXPORT(Not##name);                                                                       \
    void Negate(T const* from, std::uint8_t const* mask, std::ptrdiff_t count, T* to) {          \
        HWY_DYNAMIC_DISPATCH(Not##name)(from, mask, count, to);                                  \
    }
ZPA_EXPORT(8u, std::uint8_t)
ZPA_EXPORT(16u, std::uint16_t)
#undef ZPA_EXPORT

}  // namespace ZPA
#endif
