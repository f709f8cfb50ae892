// Row kernels that count a value. Each works on one row, on the caller's thread.
#ifndef ZPA_PRIMITIVES_MATCHROW_H
#define ZPA_PRIMITIVES_MATCHROW_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// How many elements a mask selects, and how many of these have a value.
struct Matches {
    std::int64_t equal;
    std::int64_t selected;
};

// Without a mask all are selected. A value that no element can have is never matched.
Matches CountMatches(std::uint8_t const* row, std::uint8_t const* mask, std::ptrdiff_t count, int value);
Matches CountMatches(std::int16_t const* row, std::uint8_t const* mask, std::ptrdiff_t count, int value);
Matches CountMatches(std::uint16_t const* row, std::uint8_t const* mask, std::ptrdiff_t count, int value);

// The same column by column: adds 1 to equal[x] where a selected row[x] has the value, and to other[x] where
// it has not. The counts may be the same memory.
void CountMatchesByColumn(std::uint8_t const* row, std::uint8_t const* mask, std::ptrdiff_t count, int value,
                          std::uint32_t* equal, std::uint32_t* other);
void CountMatchesByColumn(std::uint16_t const* row, std::uint8_t const* mask, std::ptrdiff_t count, int value,
                          std::uint32_t* equal, std::uint32_t* other);

}  // namespace ZPA

#endif
