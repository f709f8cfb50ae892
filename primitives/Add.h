// Sums of two images; those of integers saturate.
#ifndef ZPA_PRIMITIVES_ADD_H
#define ZPA_PRIMITIVES_ADD_H

#include "primitives/Status.h"

namespace ZPA {

// Rows are as many bytes apart as the steps say. The sum may be written over either operand. The scale factor
// of integer sums, by whose power of 2 they would be divided, can only be 0: kBadArgument for any other.
Status ippiAdd_8u_C1RSfs(std::uint8_t const* first, std::ptrdiff_t firstStep, std::uint8_t const* second,
                         std::ptrdiff_t secondStep, std::uint8_t* sum, std::ptrdiff_t sumStep, Size size,
                         int scaleFactor) noexcept;
Status ippiAdd_16u_C1RSfs(std::uint16_t const* first, std::ptrdiff_t firstStep, std::uint16_t const* second,
                          std::ptrdiff_t secondStep, std::uint16_t* sum, std::ptrdiff_t sumStep, Size size,
                          int scaleFactor) noexcept;
Status ippiAdd_16s_C1RSfs(std::int16_t const* first, std::ptrdiff_t firstStep, std::int16_t const* second,
                          std::ptrdiff_t secondStep, std::int16_t* sum, std::ptrdiff_t sumStep, Size size,
                          int scaleFactor) noexcept;
Status ippiAdd_32f_C1R(float const* first, std::ptrdiff_t firstStep, float const* second,
                       std::ptrdiff_t secondStep, float* sum, std::ptrdiff_t sumStep, Size size) noexcept;

// In place: the source is added to what the destination holds.
Status ippiAdd_8u_C1IRSfs(std::uint8_t const* source, std::ptrdiff_t sourceStep, std::uint8_t* destination,
                          std::ptrdiff_t destinationStep, Size size, int scaleFactor) noexcept;
Status ippiAdd_16u_C1IRSfs(std::uint16_t const* source, std::ptrdiff_t sourceStep, std::uint16_t* destination,
                           std::ptrdiff_t destinationStep, Size size, int scaleFactor) noexcept;
Status ippiAdd_16s_C1IRSfs(std::int16_t const* source, std::ptrdiff_t sourceStep, std::int16_t* destination,
                           std::ptrdiff_t destinationStep, Size size, int scaleFactor) noexcept;
Status ippiAdd_32f_C1IR(float const* source, std::ptrdiff_t sourceStep, float* destination,
                        std::ptrdiff_t destinationStep, Size size) noexcept;

}  // namespace ZPA

#endif
