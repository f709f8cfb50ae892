// A function of a byte as a table.
#ifndef ZPA_PRIMITIVES_BYTETABLE_H
#define ZPA_PRIMITIVES_BYTETABLE_H

#include <cstddef>
#include <cstdint>
#include <numeric>

namespace ZPA {

class ByteTable {
public:
    static constexpr int kEntries = 256;

    // Of what kernel(from, count, to) makes of each byte on its own.
    template <typename Kernel> explicit ByteTable(Kernel const& kernel) {
        std::uint8_t bytes[kEntries];
        std::iota(bytes, bytes + kEntries, std::uint8_t{0});
        kernel(bytes, std::ptrdiff_t{kEntries}, entries_);
    }

    // to[x] becomes the entry of from[x] where the mask byte is not zero, or everywhere without a mask. `to`
    // may be `from`.
    void operator()(std::uint8_t const* from, std::ptrdiff_t count, std::uint8_t* to,
                    std::uint8_t const* mask = nullptr) const;

private:
    std::uint8_t entries_[kEntries];
};

// Calls work(kernel) for a kernel that maps `count` elements in all, each on its own; or work(table) with its
// table, where the elements are bytes and enough of them to pay for it.
template <typename T, typename Kernel, typename Work>
auto WithTable(Kernel const& kernel, std::int64_t count, Work const& work) {
    if constexpr (sizeof(T) == 1)
        if (count > ByteTable::kEntries) return work(ByteTable(kernel));
    return work(kernel);
}

}  // namespace ZPA

#endif
