// Filters with kernels of integers.
#include <algorithm>
#include <limits>

#include "primitives/Filter.h"
#include "primitives/ForEachRow.h"

namespace ZPA {
namespace {

template <typename T> T Quotient(std::int64_t sum, std::int64_t divisor) {
    using Limits = std::numeric_limits<T>;
    return static_cast<T>(std::clamp<std::int64_t>(sum / divisor, Limits::min(), Limits::max()));
}

template <typename T>
Status Filter(Rows<T const> source, Rows<T> destination, Size size, std::int32_t const* kernel,
              Size kernelSize, int anchorX, int anchorY, int divisor) noexcept {
    if (!source.first || !destination.first || !kernel) return kNullPointer;
    if (size.width < 1 || size.height < 1 || kernelSize.width < 1 || kernelSize.height < 1) return kBadSize;
    if (anchorX < 0 || anchorX >= kernelSize.width || anchorY < 0 || anchorY >= kernelSize.height)
        return kAnchorOutside;
    if (divisor == 0) return kBadArgument;
    std::int64_t const taps = std::int64_t{kernelSize.width} * kernelSize.height;
    ForEachRow(size.height, taps * size.width, [&](int y) noexcept {
        for (int x = 0; x < size.width; ++x) {
            std::int64_t sum = 0;
            std::int32_t const* last = kernel + taps - 1;
            for (int j = 0; j < kernelSize.height; ++j) {
                T const* const row = source[std::ptrdiff_t{y} - anchorY + j] + x - anchorX;
                for (int i = 0; i < kernelSize.width; ++i) sum += std::int64_t{*last--} * row[i];
            }
            destination[y][x] = Quotient<T>(sum, divisor);
        }
    });
    return kDone;
}

}  // namespace

#define ZPA_FILTER(name, T)                                                                              \
    Status ippiFilter_##name##_C1R(T const* source, std::ptrdiff_t sourceStep, T* destination,           \
                                   std::ptrdiff_t destinationStep, Size size, std::int32_t const* kernel, \
                                   Size kernelSize, int anchorX, int anchorY, int divisor) noexcept {    \
        return Filter<T>({source, sourceStep}, {destination, destinationStep}, size, kernel, kernelSize, \
                         anchorX, anchorY, divisor);                                                     \
    }
ZPA_FILTER(8u, std::uint8_t)
ZPA_FILTER(16s, std::int16_t)
ZPA_FILTER(16u, std::uint16_t)
#undef ZPA_FILTER

}  // namespace ZPA
