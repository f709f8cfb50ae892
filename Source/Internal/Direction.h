// The direction that an angle points in.
#ifndef ZPA_SOURCE_INTERNAL_DIRECTION_H
#define ZPA_SOURCE_INTERNAL_DIRECTION_H

#include <cmath>

namespace ZPA {

struct Direction {
    double cosine;
    double sine;
};

// Of an angle in radians. The x87 unit, which some platforms compute sines with, loses digits beside the axes;
// so near to them the sine is the angle itself.
inline Direction DirectionOf(double theta) {
    constexpr double kNear = 1e-8;
    constexpr double kRight = 1.57079632679489661923,
                     kRightRest = 6.123233995736766e-17;  // their sum: pi / 2
    double const turns = std::nearbyint(theta / kRight);
    if (!(std::abs(turns) <= 1024)) return {std::cos(theta), std::sin(theta)};
    long double const right = kRight;  // a few of these have no digit more than it can hold
    auto const rest =
        static_cast<double>(theta - turns * right - static_cast<long double>(turns) * kRightRest);
    if (std::abs(rest) >= kNear) return {std::cos(theta), std::sin(theta)};
    switch (static_cast<int>(turns) & 3) {
        case 0:
            return {1, rest};
        case 1:
            return {-rest, 1};
        case 2:
            return {-1, -rest};
        default:
            return {rest, -1};
    }
}

}  // namespace ZPA

#endif
