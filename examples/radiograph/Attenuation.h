// What the rays through a body lose: a map to which parts of the body are added one by one.
#ifndef RADIOGRAPH_ATTENUATION_H
#define RADIOGRAPH_ATTENUATION_H

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Radiograph {

// A place in the body: `x` to the right of the picture, `y` downwards, from -1 to 1; `z` along the rays.
struct Place {
    double x, y, z;
};

// A square map in units of the body's soft tissue: 1 is the chest at its thickest.
class Attenuation {
public:
    explicit Attenuation(int side);

    int Side() const { return side_; }
    std::vector<float> const& Values() const { return values_; }

    // Adds what `thickness(x, y)` gives at every pixel.
    template <typename Thickness> void Add(Thickness const& thickness) {
        std::size_t i = 0;
        for (int row = 0; row < side_; ++row)
            for (int column = 0; column < side_; ++column)
                values_[i++] += static_cast<float>(thickness(ToPlace(column), ToPlace(row)));
    }

    // Adds a ball that takes away `density` where it is thickest.
    void AddBall(Place centre, double radius, double density);

    // Adds a round tube along `path(t)`, t from 0 to 1, that takes away `density` where a ray crosses it at
    // right angles. Where the tube runs along the rays it takes away more.
    template <typename Path> void AddTube(Path const& path, double radius, double density) {
        int const discs = std::max(1, static_cast<int>(Length(path) * side_ / 2));  // about one a pixel
        Place last = path(0.0);
        for (int i = 1; i <= discs; ++i) {
            Place const here = path(static_cast<double>(i) / discs);
            AddDisc(here, radius, density * Distance(last, here) / (2 * radius));
            last = here;
        }
    }

private:
    static double Distance(Place a, Place b);
    template <typename Path> static double Length(Path const& path) {
        constexpr int kChords = 32;
        double length = 0;
        for (int i = 0; i < kChords; ++i)
            length += Distance(path(static_cast<double>(i) / kChords), path((i + 1.0) / kChords));
        return length;
    }
    double ToPlace(int pixel) const { return (2.0 * pixel + 1) / side_ - 1; }
    double ToPixel(double place) const { return ((place + 1) * side_ - 1) / 2; }

    // Discs of equal weight strung along a line add up to the chords of a round tube.
    void AddDisc(Place centre, double radius, double weight);
    // Adds profile(distance from the centre, in pixels) to the pixels within `reach` pixels.
    template <typename Profile> void AddAround(Place centre, double reach, Profile const& profile);

    int side_;
    std::vector<float> values_;
};

}  // namespace Radiograph

#endif
