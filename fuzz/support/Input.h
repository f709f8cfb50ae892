// Reads numbers, choices and texts out of the bytes that a fuzz target is given.
#ifndef ZPA_FUZZ_SUPPORT_INPUT_H
#define ZPA_FUZZ_SUPPORT_INPUT_H

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

namespace ZPA::Fuzz {

// Every sequence of bytes is an input: past its end all bytes are zero, and zero is a tame choice everywhere.
class Input {
public:
    Input(std::uint8_t const* bytes, std::size_t size) : at_(bytes), end_(bytes + size) {}

    std::uint8_t Byte() { return at_ == end_ ? std::uint8_t{0} : *at_++; }
    // The bytes of a number as they are.
    template <typename T> T Bits() {
        T value{};
        std::size_t const size = std::min(sizeof value, static_cast<std::size_t>(end_ - at_));
        std::memcpy(&value, at_, size);
        at_ += size;
        return value;
    }
    // From 0 to count - 1; at most 256 are told apart.
    int Choice(int count) { return Byte() % count; }
    // True once in so many times.
    bool Seldom(int times) { return Byte() % times == times - 1; }
    template <typename T, std::size_t N> T const& OneOf(T const (&values)[N]) {
        return values[Choice(static_cast<int>(N))];
    }

    // Mostly from `least` to `most`; else what breaks arithmetic on sizes and positions.
    int Number(int least, int most) {
        int const byte = Byte();
        if (byte < 240) return least + byte % (most - least + 1);
        constexpr int kHostile[] = {-1, INT_MIN, INT_MAX, INT_MIN + 1, INT_MAX - 1,
                                    0,  65536,   46341,   1 << 30,     -65536};
        return byte == 255 ? Bits<std::int32_t>() : kHostile[byte % 10];
    }
    // Mostly a small number of quarters; else what breaks real arithmetic.
    double Real() {
        using Limits = std::numeric_limits<double>;
        int const byte = Byte();
        if (byte < 192) return (byte - 64) / 4.0;
        constexpr double kHostile[] = {Limits::quiet_NaN(),  Limits::infinity(),
                                       -Limits::infinity(),  Limits::max(),
                                       Limits::denorm_min(), -0.0,
                                       2147483648.0,         -1e-300,
                                       4294967296.5};
        return byte >= 248 ? Bits<double>() : kHostile[byte % 9];
    }

    // As many of the bytes that are left.
    std::string Text(std::size_t size) {
        size = std::min(size, static_cast<std::size_t>(end_ - at_));
        std::string const text(reinterpret_cast<char const*>(at_), size);
        at_ += size;
        return text;
    }
    // The bytes up to the next zero, which is passed over.
    std::string TextToZero() {
        auto const* const zero = std::find(at_, end_, std::uint8_t{0});
        std::string const text = Text(static_cast<std::size_t>(zero - at_));
        if (at_ != end_) ++at_;
        return text;
    }
    std::string Rest() { return Text(SIZE_MAX); }
    bool IsEmpty() const { return at_ == end_; }

private:
    std::uint8_t const* at_;
    std::uint8_t const* end_;
};

}  // namespace ZPA::Fuzz

#endif
