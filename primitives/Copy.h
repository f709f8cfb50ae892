// Copies of a region of pixels.
#ifndef ZPA_PRIMITIVES_COPY_H
#define ZPA_PRIMITIVES_COPY_H

#include "primitives/Status.h"

namespace ZPA {

// Copy `size` pixels, rows `sourceStep` and `destinationStep` bytes apart. Where the two overlap, what comes
// out depends on the order that the rows are done in.
Status ippiCopy_8u_C1R(std::uint8_t const* source, std::ptrdiff_t sourceStep, std::uint8_t* destination,
                       std::ptrdiff_t destinationStep, Size size) noexcept;
Status ippiCopy_16s_C1R(std::int16_t const* source, std::ptrdiff_t sourceStep, std::int16_t* destination,
                        std::ptrdiff_t destinationStep, Size size) noexcept;
Status ippiCopy_16u_C1R(std::uint16_t const* source, std::ptrdiff_t sourceStep, std::uint16_t* destination,
                        std::ptrdiff_t destinationStep, Size size) noexcept;
Status ippiCopy_32s_C1R(std::int32_t const* source, std::ptrdiff_t sourceStep, std::int32_t* destination,
                        std::ptrdiff_t destinationStep, Size size) noexcept;
Status ippiCopy_32f_C1R(float const* source, std::ptrdiff_t sourceStep, float* destination,
                        std::ptrdiff_t destinationStep, Size size) noexcept;

}  // namespace ZPA

#endif
