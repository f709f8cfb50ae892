// How balls, and the discs that make up a tube, are drawn.
#include "radiograph/Attenuation.h"

#include <algorithm>
#include <cmath>

namespace Radiograph {

Attenuation::Attenuation(int side)
    : side_(side), values_(static_cast<std::size_t>(side) * static_cast<std::size_t>(side)) {}

double Attenuation::Distance(Place a, Place b) { return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z); }

template <typename Profile> void Attenuation::AddAround(Place centre, double reach, Profile const& profile) {
    double const x = ToPixel(centre.x);
    double const y = ToPixel(centre.y);
    auto const first = [&](double middle) {
        return std::max(0, static_cast<int>(std::ceil(middle - reach)));
    };
    auto const last = [&](double middle) {
        return std::min(side_ - 1, static_cast<int>(std::floor(middle + reach)));
    };
    for (int row = first(y); row <= last(y); ++row) {
        float* const values = values_.data() + static_cast<std::ptrdiff_t>(row) * side_;
        for (int column = first(x); column <= last(x); ++column) {
            double const dx = column - x;
            double const dy = row - y;
            values[column] += static_cast<float>(profile(std::sqrt(dx * dx + dy * dy)));
        }
    }
}

void Attenuation::AddBall(Place centre, double radius, double density) {
    double const pixels = radius * side_ / 2;
    AddAround(centre, pixels, [&](double distance) {
        double const part = distance / pixels;
        return density * std::sqrt(std::max(0.0, 1 - part * part));
    });
}

void Attenuation::AddDisc(Place centre, double radius, double weight) {
    double const pixels = radius * side_ / 2;
    // The rim fades over one pixel, or tubes would have jagged edges.
    AddAround(centre, pixels + 0.5,
              [&](double distance) { return weight * std::clamp(pixels + 0.5 - distance, 0.0, 1.0); });
}

}  // namespace Radiograph
