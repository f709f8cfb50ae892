// Sums of 16-bit pixels under a window of 16-bit weights, two products at a time, and their quotients.
#ifndef ZPA_PRIMITIVES_WEIGHPAIRS_H
#define ZPA_PRIMITIVES_WEIGHPAIRS_H

#include "primitives/Status.h"

namespace ZPA {

// Pixels that a kernel takes at once have this many bytes of sums at most. Rows of short pixels are padded to
// a multiple of so many elements, and rows of sums hold so many.
inline constexpr std::ptrdiff_t kPairBlock = 64;

// Weights in the order of the pixels that they belong to. Each pair of pixels of a row, from the first one on,
// has two numbers: the two weights that it has for a sum at an even place, and for the next sum, the first in
// the low half. The pairs of a row come to one pixel more than the weights if these are even in number, and
// those without a weight have 0.
struct PairWindow {
    std::int32_t const* weights;
    int const* rows;  // those with weights, of the window
    int rowCount;
    int pairs;           // of a row
    std::int32_t start;  // of every sum, which wraps around
};

// How a sum becomes a pixel: (sum + offset) / divisor, cut toward zero and saturated.
struct Quotient {
    enum Way {
        kShift,        // the divisor is 1 << shift, the offset 0
        kFloat,        // the sum is below kFloatSums in size, the offset 0
        kDouble,       // the sum is below kDoubleSums in size, the offset 0
        kMovedDouble,  // the sum and the offset together are
    };
    Way way;
    int shift;
    double reciprocal;
    double offset;
};
// A quotient is the sum times the reciprocal, moved away from zero by half the reciprocal, and cut. So it is
// that much away from where the cut would go wrong; three roundings move it by less for sums up to here.
inline constexpr double kFloatSums = 2796200;            // 2^23 / 3, nearly
inline constexpr double kDoubleSums = 1125899906842624;  // 2^50
inline constexpr double kFloatWhole = 16777216;          // 2^24: up to here floats hold every whole number

// False where the processor has no vectors. Then nothing else here may be called.
bool PairsServe();

// Pixels as short integers, less 32768 if they are unsigned and have 16 bits; zeros from `count` to `padded`.
void ShortRow(std::uint8_t const* pixels, std::ptrdiff_t count, std::int16_t* row, std::ptrdiff_t padded);
void ShortRow(std::int16_t const* pixels, std::ptrdiff_t count, std::int16_t* row, std::ptrdiff_t padded);
void ShortRow(std::uint16_t const* pixels, std::ptrdiff_t count, std::int16_t* row, std::ptrdiff_t padded);

// A row of the result, from the rows of short pixels under the window, `stride` elements apart.
void FilterPairs(PairWindow const& window, Quotient const& quotient, std::int16_t const* rows,
                 std::ptrdiff_t stride, std::uint8_t* result, std::ptrdiff_t count);
void FilterPairs(PairWindow const& window, Quotient const& quotient, std::int16_t const* rows,
                 std::ptrdiff_t stride, std::int16_t* result, std::ptrdiff_t count);
void FilterPairs(PairWindow const& window, Quotient const& quotient, std::int16_t const* rows,
                 std::ptrdiff_t stride, std::uint16_t* result, std::ptrdiff_t count);

// The sums of a row, exact, in an order of their own that FilterColumns knows, for `count` pixels and the rest
// of a block.
void SumPairs(PairWindow const& window, std::int16_t const* row, float* sums, std::ptrdiff_t count);
void SumPairs(PairWindow const& window, std::int16_t const* row, double* sums, std::ptrdiff_t count);

// A row of the result, from rows of such sums, `stride` elements apart, each times a weight. All that is added
// must be exact: in float below kFloatWhole, in double below kDoubleSums.
void FilterColumns(float const* weights, int height, Quotient const& quotient, float const* sums,
                   std::ptrdiff_t stride, std::uint8_t* result, std::ptrdiff_t count);
void FilterColumns(float const* weights, int height, Quotient const& quotient, float const* sums,
                   std::ptrdiff_t stride, std::int16_t* result, std::ptrdiff_t count);
void FilterColumns(float const* weights, int height, Quotient const& quotient, float const* sums,
                   std::ptrdiff_t stride, std::uint16_t* result, std::ptrdiff_t count);
void FilterColumns(double const* weights, int height, Quotient const& quotient, double const* sums,
                   std::ptrdiff_t stride, std::uint8_t* result, std::ptrdiff_t count);
void FilterColumns(double const* weights, int height, Quotient const& quotient, double const* sums,
                   std::ptrdiff_t stride, std::int16_t* result, std::ptrdiff_t count);
void FilterColumns(double const* weights, int height, Quotient const& quotient, double const* sums,
                   std::ptrdiff_t stride, std::uint16_t* result, std::ptrdiff_t count);

}  // namespace ZPA

#endif
