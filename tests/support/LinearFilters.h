// A plain two-dimensional filter, and kernels to try it with.
#ifndef ZPA_TESTS_SUPPORT_LINEARFILTERS_H
#define ZPA_TESTS_SUPPORT_LINEARFILTERS_H

#include "support/Images.h"
#include "support/SimdTargets.h"

namespace ZPA::Testing {

template <typename T> using KernelElement = std::conditional_t<std::is_integral_v<T>, int, T>;

// A pixel of the result, with the kernel's anchor over (x, y): exact for integers, one chain for real numbers.
template <typename T>
T ModelPixel(TestImage<T> const& source, TestImage<KernelElement<T>> const& kernel, int divisor, int x, int y,
             bool fused = false) {
    int const kw = kernel.shape.width, kh = kernel.shape.height;
    std::conditional_t<std::is_integral_v<T>, std::int64_t, T> sum = 0;
    for (int j = 0; j < kh; ++j)
        for (int i = 0; i < kw; ++i) {
            auto const pixel = source.At(x - kw / 2 + i, y - kh / 2 + j);
            auto const weight = kernel.At(kw - 1 - i, kh - 1 - j);
            if constexpr (std::is_integral_v<T>)
                sum += std::int64_t{weight} * pixel;
            else
                sum = fused ? Fused(weight, pixel, sum) : weight * pixel + sum;
        }
    if constexpr (std::is_integral_v<T>)
        sum = std::clamp<std::int64_t>(sum / divisor, std::numeric_limits<T>::min(),
                                       std::numeric_limits<T>::max());
    return static_cast<T>(sum);
}

// Elements from -limit to limit, every one of `rarity` other than 0.
template <typename K> TestImage<K> RandomKernel(Shape shape, double limit, unsigned seed, int rarity = 1) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> any(-limit, limit);
    TestImage<K> kernel(shape);
    for (K& weight : kernel)
        weight = random() % static_cast<unsigned>(rarity) == 0 ? static_cast<K>(any(random)) : K(0);
    return kernel;
}

}  // namespace ZPA::Testing

#endif
