// Rows of pixels as rows of bits, 64 to a word: what searches for connected pixels work on.
#ifndef ZPA_PRIMITIVES_PIXELBITS_H
#define ZPA_PRIMITIVES_PIXELBITS_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// Words that hold a row; bit i % 64 of word i / 64 is pixel i.
constexpr std::ptrdiff_t WordsOf(std::ptrdiff_t width) { return width / 64 + (width % 64 > 0); }

// As many runs of set bits as can begin in a word.
inline constexpr int kRunsOfWord = 32;

// Sets the bits of the pixels that equal `value`, and clears all others up to the end of the last word.
void FindEqual(std::uint8_t const* row, std::ptrdiff_t width, std::uint8_t value, std::uint64_t* bits);
void FindEqual(std::uint16_t const* row, std::ptrdiff_t width, std::uint16_t value, std::uint64_t* bits);

// The same for zero. True if any pixel has the largest value of its type.
bool FindZeros(std::uint8_t const* row, std::ptrdiff_t width, std::uint64_t* bits);
bool FindZeros(std::uint16_t const* row, std::ptrdiff_t width, std::uint64_t* bits);

// Sets the pixels whose bits are set to `value`.
void SetWhere(std::uint8_t* row, std::ptrdiff_t width, std::uint8_t value, std::uint64_t const* bits);
void SetWhere(std::uint16_t* row, std::ptrdiff_t width, std::uint16_t value, std::uint64_t const* bits);

// Sets each run of pixels whose bits are set to the pixel before it, which is read at row[-1] if the first bit
// is set.
void SetToPixelBefore(std::uint8_t* row, std::ptrdiff_t width, std::uint64_t const* bits);
void SetToPixelBefore(std::uint16_t* row, std::ptrdiff_t width, std::uint64_t const* bits);

}  // namespace ZPA

#endif
