// Linear filters with kernels of integers and of real numbers.
#ifndef ZPA_PRIMITIVES_FILTER_H
#define ZPA_PRIMITIVES_FILTER_H

#include "primitives/Status.h"

namespace ZPA {

// Every pixel (x, y) of the region becomes the sum over the kernel's elements (i, j) of kernel(i, j) *
// source(x - anchorX + width - 1 - i, y - anchorY + height - 1 - j), with the kernel's width and height: the
// kernel is turned by 180 degrees. The source has its surroundings in memory, as far as that reaches; the
// destination must not overlap it. The kernel has no padding.
//
// Refused are, in this order, with nothing written: null pointers, a region or a kernel of no size, an anchor
// outside the kernel, a divisor of 0 (kBadArgument), and work for which there is no memory.
//
// The sum is exact, cut toward zero after the division, and saturated. Sums that pass 63 bits wrap around.
Status ippiFilter_8u_C1R(std::uint8_t const* source, std::ptrdiff_t sourceStep, std::uint8_t* destination,
                         std::ptrdiff_t destinationStep, Size size, std::int32_t const* kernel,
                         Size kernelSize, int anchorX, int anchorY, int divisor) noexcept;
Status ippiFilter_16s_C1R(std::int16_t const* source, std::ptrdiff_t sourceStep, std::int16_t* destination,
                          std::ptrdiff_t destinationStep, Size size, std::int32_t const* kernel,
                          Size kernelSize, int anchorX, int anchorY, int divisor) noexcept;
Status ippiFilter_16u_C1R(std::uint16_t const* source, std::ptrdiff_t sourceStep, std::uint16_t* destination,
                          std::ptrdiff_t destinationStep, Size size, std::int32_t const* kernel,
                          Size kernelSize, int anchorX, int anchorY, int divisor) noexcept;

// Every sum is one chain of multiply-adds in the order of the window's pixels, row by row, in the pixels' type
// and from zero on, so it does not depend on threads or vectors. They are fused where the processor does
// that, and else rounded twice.
Status ippiFilter_32f_C1R(float const* source, std::ptrdiff_t sourceStep, float* destination,
                          std::ptrdiff_t destinationStep, Size size, float const* kernel, Size kernelSize,
                          int anchorX, int anchorY) noexcept;
// The same in `work`, of at least as many bytes as ippiFilterGetBufSize_64f_C1R told on this thread for
// regions of this width. What it holds does not matter.
Status ippiFilter_64f_C1R(double const* source, std::ptrdiff_t sourceStep, double* destination,
                          std::ptrdiff_t destinationStep, Size size, double const* kernel, Size kernelSize,
                          int anchorX, int anchorY, std::uint8_t* work) noexcept;
// Null pointers and sizes are refused as above. Work that passes the address space is told as UINT64_MAX bytes.
Status ippiFilterGetBufSize_64f_C1R(Size kernelSize, int width, std::uint64_t* bytes) noexcept;

}  // namespace ZPA

#endif
