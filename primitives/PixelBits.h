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

// Calls work(first, end) for every run of set bits, from the lowest on. No bit beyond `width` may be set.
template <typename Work> void ForEachRun(std::uint64_t const* bits, std::ptrdiff_t width, Work const& work) {
    std::ptrdiff_t first = -1;  // of a run that has not ended yet
    for (std::ptrdiff_t x = 0; x < width; x += 64, ++bits) {
        // Set where a run begins or ends.
        std::uint64_t edges = *bits ^ (*bits << 1 | std::uint64_t{first >= 0});
        for (; edges != 0; edges &= edges - 1) {
            std::ptrdiff_t const edge = x + __builtin_ctzll(edges);
            if (first < 0) {
                first = edge;
            } else {
                work(first, edge);
                first = -1;
            }
        }
    }
    if (first >= 0) work(first, width);
}

}  // namespace ZPA

#endif
