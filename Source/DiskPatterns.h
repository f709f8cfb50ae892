// The fixed patterns of disks.
#ifndef ZPA_SOURCE_DISKPATTERNS_H
#define ZPA_SOURCE_DISKPATTERNS_H

#include <cstdint>

namespace ZPA {

// Rows of `side` elements each, 0 or 1, without padding.
struct DiskPattern {
    int side;
    unsigned char const* elements;
};

// For a radius of 1 to 6. Radius 5 has a second pattern, where `param3` is 1.
DiskPattern DiskPatternOf(int radius, int param3);

// The pattern of radius 6 in 16-bit elements.
inline constexpr int kWideDiskElements = 11 * 11;
extern std::uint16_t const kWideDisk[kWideDiskElements];

}  // namespace ZPA

#endif
