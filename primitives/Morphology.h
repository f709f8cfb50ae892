// Dilation and erosion with a mask of any shape.
#ifndef ZPA_PRIMITIVES_MORPHOLOGY_H
#define ZPA_PRIMITIVES_MORPHOLOGY_H

#include "primitives/Status.h"

namespace ZPA {

// What is refused of a mask, in this order: null elements, no size, no set element, an anchor outside.
Status CheckMask(std::uint8_t const* mask, Size maskSize, int anchorX, int anchorY) noexcept;

// Dilation and erosion give every pixel (x, y) of the region the largest or smallest of source(x + i -
// anchorX, y + j - anchorY), for all elements (i, j) of the mask that are not zero. The mask has no padding.
// Refused are, in this order: null images, a region of no size, what CheckMask refuses, and work for which there
// is no memory.
//
// Here the source has surroundings: all that the mask reaches from the region is in memory. The destination
// must not overlap it.
Status ippiDilate_8u_C1R(std::uint8_t const* source, std::ptrdiff_t sourceStep, std::uint8_t* destination,
                         std::ptrdiff_t destinationStep, Size size, std::uint8_t const* mask, Size maskSize,
                         int anchorX, int anchorY) noexcept;
Status ippiDilate_16u_C1R(std::uint16_t const* source, std::ptrdiff_t sourceStep, std::uint16_t* destination,
                          std::ptrdiff_t destinationStep, Size size, std::uint8_t const* mask, Size maskSize,
                          int anchorX, int anchorY) noexcept;
Status ippiErode_8u_C1R(std::uint8_t const* source, std::ptrdiff_t sourceStep, std::uint8_t* destination,
                        std::ptrdiff_t destinationStep, Size size, std::uint8_t const* mask, Size maskSize,
                        int anchorX, int anchorY) noexcept;
Status ippiErode_16u_C1R(std::uint16_t const* source, std::ptrdiff_t sourceStep, std::uint16_t* destination,
                         std::ptrdiff_t destinationStep, Size size, std::uint8_t const* mask, Size maskSize,
                         int anchorX, int anchorY) noexcept;

// The same where the source has nothing around the region: its edge pixels count as repeated without end. The
// border copy is made row by row, just before a row is used, so that it stays in the cache. It is made in
// `scratch`, which has room for (width + maskSize.width - 1) * (height + maskSize.height - 1) pixels. The
// destination is the source itself, with the same step, or does not overlap it.
Status DilateWithinBorder(std::uint8_t const* source, std::ptrdiff_t sourceStep, std::uint8_t* destination,
                          std::ptrdiff_t destinationStep, Size size, std::uint8_t const* mask, Size maskSize,
                          int anchorX, int anchorY, std::uint8_t* scratch) noexcept;
Status DilateWithinBorder(std::uint16_t const* source, std::ptrdiff_t sourceStep, std::uint16_t* destination,
                          std::ptrdiff_t destinationStep, Size size, std::uint8_t const* mask, Size maskSize,
                          int anchorX, int anchorY, std::uint16_t* scratch) noexcept;
Status ErodeWithinBorder(std::uint8_t const* source, std::ptrdiff_t sourceStep, std::uint8_t* destination,
                         std::ptrdiff_t destinationStep, Size size, std::uint8_t const* mask, Size maskSize,
                         int anchorX, int anchorY, std::uint8_t* scratch) noexcept;
Status ErodeWithinBorder(std::uint16_t const* source, std::ptrdiff_t sourceStep, std::uint16_t* destination,
                         std::ptrdiff_t destinationStep, Size size, std::uint8_t const* mask, Size maskSize,
                         int anchorX, int anchorY, std::uint16_t* scratch) noexcept;

}  // namespace ZPA

#endif
