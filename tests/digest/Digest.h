// A short number that stands for everything that was added to it, on every platform.
#ifndef ZPA_TESTS_DIGEST_DIGEST_H
#define ZPA_TESTS_DIGEST_DIGEST_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace ZPA::Testing {

// FNV-1a (G. Fowler, L. Noll, K.-P. Vo) over the values' bytes, the lowest first.
class Digest {
public:
    template <typename T> void Add(T value) {
        static_assert(std::is_arithmetic_v<T>);
        if constexpr (std::is_floating_point_v<T>) {
            static_assert(sizeof(T) <= 8, "Extended precision has padding.");
            // Which of the many numbers that are none it is depends on the processor's way to it.
            if (value != value) return AddBits(0x7FF8'0000'0000'0001, 8);
            std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t> bits;
            std::memcpy(&bits, &value, sizeof bits);
            AddBits(bits, sizeof bits);
        } else {
            AddBits(static_cast<std::uint64_t>(value), sizeof value);
        }
    }
    template <typename T> void Add(T const* values, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) Add(values[i]);
    }
    template <typename T> void Add(std::vector<T> const& values) { Add(values.data(), values.size()); }
    template <typename T, typename... More>
    void Add(std::vector<T> const& values, std::vector<More> const&... more) {
        Add(values);
        (Add(more), ...);
    }
    void Add(std::string const& text) { Add(text.data(), text.size()); }

    // Values whose last bits may differ: in steps of 2^-`bits` of the largest.
    template <typename T> void AddRounded(T const* values, std::size_t count, int bits) {
        double largest = 0;
        for (std::size_t i = 0; i < count; ++i)
            largest = std::max(largest, std::abs(static_cast<double>(values[i])));
        int exponent = 0;
        std::frexp(largest, &exponent);
        for (std::size_t i = 0; i < count; ++i)
            Add(static_cast<std::int64_t>(
                std::llround(std::ldexp(static_cast<double>(values[i]), bits - exponent))));
    }
    template <typename T> void AddRounded(std::vector<T> const& values) {
        AddRounded(values.data(), values.size(), sizeof(T) == 4 ? 12 : 36);
    }

    std::uint64_t Value() const { return value_; }

private:
    void AddBits(std::uint64_t bits, std::size_t bytes) {
        for (std::size_t i = 0; i < bytes; ++i, bits >>= 8)
            value_ = (value_ ^ (bits & 0xFF)) * 0x0000'0100'0000'01B3;
    }

    std::uint64_t value_ = 0xCBF2'9CE4'8422'2325;
};

}  // namespace ZPA::Testing

#endif
