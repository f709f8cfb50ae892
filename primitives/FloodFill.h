// Fills of connected pixels, in place.
#ifndef ZPA_PRIMITIVES_FLOODFILL_H
#define ZPA_PRIMITIVES_FLOODFILL_H

#include "primitives/Status.h"

namespace ZPA {

// Bytes of the working buffer for an image of a size: three eighths of a byte a pixel.
Status ippiFloodFillGetSize(Size size, std::uint64_t* bytes) noexcept;

// Replace the pixel at the seed, and those of its value that are connected with it, by `value`. The buffer
// may have any alignment and content. Rows that the region does not reach are not read.
Status ippiFloodFill_4Con(std::uint8_t* image, std::ptrdiff_t step, Size size, int seedX, int seedY,
                          std::uint8_t value, void* buffer) noexcept;
Status ippiFloodFill_4Con(std::uint16_t* image, std::ptrdiff_t step, Size size, int seedX, int seedY,
                          std::uint16_t value, void* buffer) noexcept;
Status ippiFloodFill_8Con(std::uint8_t* image, std::ptrdiff_t step, Size size, int seedX, int seedY,
                          std::uint8_t value, void* buffer) noexcept;
Status ippiFloodFill_8Con(std::uint16_t* image, std::ptrdiff_t step, Size size, int seedX, int seedY,
                          std::uint16_t value, void* buffer) noexcept;

// What these refuse, in this order, before they read a pixel: null pointers, no size, a seed outside.
Status CheckSeed(void const* image, Size size, int seedX, int seedY, void const* buffer) noexcept;

// Replaces the pixels of value `background` on the image's border, and those connected with them, by `value`:
// what a fill from each of them in turn would do.
Status FloodFillFromBorder(std::uint8_t* image, std::ptrdiff_t step, Size size, std::uint8_t background,
                           std::uint8_t value, bool eightNeighbours, void* buffer) noexcept;
Status FloodFillFromBorder(std::uint16_t* image, std::ptrdiff_t step, Size size, std::uint16_t background,
                           std::uint16_t value, bool eightNeighbours, void* buffer) noexcept;

// Closes holes, which are zeros that no path of zeros connects with the border: each takes the value of the
// pixel before it in its row. Then pixels of the type's largest value that the border reaches through such
// pixels and through the zeros outside are cleared.
Status FloodHoles(std::uint8_t* image, std::ptrdiff_t step, Size size, bool eightNeighbours,
                  void* buffer) noexcept;
Status FloodHoles(std::uint16_t* image, std::ptrdiff_t step, Size size, bool eightNeighbours,
                  void* buffer) noexcept;

// The same for an image with no zero on its border, so that all zeros are holes, and without the clearing.
void CloseZeros(std::uint8_t* image, std::ptrdiff_t step, Size size) noexcept;
void CloseZeros(std::uint16_t* image, std::ptrdiff_t step, Size size) noexcept;

}  // namespace ZPA

#endif
