// Which run each of eight pixels belongs to, for all that eight bits and the one before them can be.
#ifndef ZPA_PRIMITIVES_RUNPATTERNS_H
#define ZPA_PRIMITIVES_RUNPATTERNS_H

#include <cstdint>

namespace ZPA {

inline constexpr int kPixelsOfPattern = 8;

// Indexed by the pixel before the eight (bit 0) and the eight (bits 1 to 8).
template <typename T> struct RunPatterns {
    // For each pixel the number of runs begun among the eight up to it: as the places of the bytes of such an
    // element in a vector, and places beyond all vectors where the pixel is not set.
    T bytes[512][kPixelsOfPattern] = {};
    // Runs begun among all eight.
    std::uint8_t begun[512] = {};

    constexpr RunPatterns() {
        for (int pattern = 0; pattern < 512; ++pattern)
            for (int i = 0; i < kPixelsOfPattern; ++i) {
                bool const isSet = pattern >> (i + 1) & 1, begins = isSet && !(pattern >> i & 1);
                begun[pattern] = static_cast<std::uint8_t>(begun[pattern] + begins);
                for (int byte = static_cast<int>(sizeof(T)) - 1; byte >= 0; --byte) {
                    int const place = isSet ? begun[pattern] * static_cast<int>(sizeof(T)) + byte : 0x80;
                    bytes[pattern][i] = static_cast<T>(bytes[pattern][i] << 8 | place);
                }
            }
    }
};
template <typename T> inline constexpr RunPatterns<T> kRunPatterns;

}  // namespace ZPA

#endif
