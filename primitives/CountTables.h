// Counts of whole numbers, one for each number of a range.
#ifndef ZPA_PRIMITIVES_COUNTTABLES_H
#define ZPA_PRIMITIVES_COUNTTABLES_H

#include <cstddef>
#include <cstdint>
#include <memory>

namespace ZPA {

// Counts elements of type T: 8u, 16s, 16u or 32u. Neighbours are counted in different tables: a processor
// that increments one counter again and again waits each time until it can read what it has just written.
template <typename T> class CountTables {
public:
    // Counts the numbers low, low + 1, ... of which there are `bins`, 1 at least; T need not hold them. False
    // if there is no memory.
    [[nodiscard]] bool Prepare(std::int64_t low, std::int64_t bins) noexcept;

    // Other numbers are not counted.
    void Count(T const* numbers, std::ptrdiff_t count) noexcept;

    // The same for those whose mask element is not zero.
    void CountSelected(T const* numbers, std::uint8_t const* mask, std::ptrdiff_t count) noexcept;
    void CountSelected(T const* numbers, std::uint16_t const* mask, std::ptrdiff_t count) noexcept;

    // counts[i] grows by how often low + i was counted.
    void AddTo(std::uint32_t* counts) const noexcept;

private:
    std::int64_t low_ = 0;
    std::int64_t first_ = 0;  // the first of those numbers that T holds
    std::size_t bins_ = 0;    // how many of them T holds
    std::size_t slots_ = 0;   // of a table: the bins, and what other numbers count in
    int tables_ = 0;
    std::unique_ptr<std::uint32_t[]> counts_;
};

}  // namespace ZPA

#endif
