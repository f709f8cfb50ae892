// Row kernels that operations outside the primitives' families share: each works on one row, on the caller's
// thread.
#ifndef ZPA_PRIMITIVES_ROWS_H
#define ZPA_PRIMITIVES_ROWS_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// A count below 1 does nothing. Pointers may have any alignment that their type has.

// Converts elements of one type to another; source and destination must not overlap. Integers become wider by
// their value and narrower by their low bits. Integers become floating point by the nearest value. Floating
// point becomes integer by rounding half away from zero to 32 bits, 0x80000000 standing for what has no such
// value, and then by the low bits. Served: any two different types of 8u, 16s, 16u, 32s, 32f and 64f.
template <typename From, typename To>
void ConvertRow(From const* source, To* destination, std::ptrdiff_t count);

// Sets the elements whose mask byte is `wanted`; a negative one wants any byte but zero.
void FillSelected(std::uint8_t* row, std::uint8_t const* mask, std::ptrdiff_t count, std::uint8_t value,
                  int wanted);
void FillSelected(std::uint16_t* row, std::uint8_t const* mask, std::ptrdiff_t count, std::uint16_t value,
                  int wanted);
void FillSelected(float* row, std::uint8_t const* mask, std::ptrdiff_t count, float value, int wanted);
void FillSelected(double* row, std::uint8_t const* mask, std::ptrdiff_t count, double value, int wanted);

// Clears the elements whose mask byte is zero. `row` may be `mask`.
void ClearUnmasked(std::uint8_t* row, std::uint8_t const* mask, std::ptrdiff_t count);
void ClearUnmasked(std::uint16_t* row, std::uint8_t const* mask, std::ptrdiff_t count);

// True if an element of `b` is larger or smaller than that of `a` by `tolerance` or more; for a tolerance of
// 0 or less that is every number. A difference that is not a number is neither; that of floating-point
// elements is made in their type.
bool AnyDiffer(std::uint8_t const* a, std::uint8_t const* b, std::ptrdiff_t count, int tolerance);
bool AnyDiffer(std::int16_t const* a, std::int16_t const* b, std::ptrdiff_t count, int tolerance);
bool AnyDiffer(std::uint16_t const* a, std::uint16_t const* b, std::ptrdiff_t count, int tolerance);
bool AnyDiffer(float const* a, float const* b, std::ptrdiff_t count, float tolerance);
bool AnyDiffer(double const* a, double const* b, std::ptrdiff_t count, double tolerance);

// row[i] becomes next[i] - row[i], wrapping around. `row` may not begin behind `next` within what it reads.
void SubtractFrom(std::uint8_t const* next, std::uint8_t* row, std::ptrdiff_t count);
void SubtractFrom(std::uint16_t const* next, std::uint16_t* row, std::ptrdiff_t count);
void SubtractFrom(std::uint32_t const* next, std::uint32_t* row, std::ptrdiff_t count);

// Elements below `low` become `low`; of the others, those above `high` become `high`.
void ClipRow(std::int16_t* row, std::ptrdiff_t count, std::int16_t low, std::int16_t high);

}  // namespace ZPA

#endif
