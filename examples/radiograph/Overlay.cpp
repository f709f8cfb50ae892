// Tints, outlines and the colours that they have.
#include "radiograph/Overlay.h"

#include <array>
#include <cstdio>

namespace Radiograph {
namespace {

using Colour = std::array<unsigned char, 3>;

// Apart from each other for most eyes, also for those that do not tell red from green: M. Okabe and K. Ito,
// "Color Universal Design" (2008), without black.
constexpr std::array<Colour, 7> kColours = {{{86, 180, 233},
                                             {230, 159, 0},
                                             {0, 158, 115},
                                             {204, 121, 167},
                                             {240, 228, 66},
                                             {213, 94, 0},
                                             {0, 114, 178}}};
constexpr Colour kOthers = {160, 160, 160};
constexpr int kTint = 77;  // of 256

unsigned char Mix(int grey, int colour) {
    return static_cast<unsigned char>((grey * (256 - kTint) + colour * kTint) >> 8);
}

}  // namespace

Picture Overlay(Picture const& grey, Image const& labels, std::vector<Region> const& regions) {
    std::vector<Colour> colours(0x10000, kOthers);
    for (std::size_t i = 0; i < regions.size(); ++i)
        colours[regions[i].label] = kColours[i % kColours.size()];

    int const width = grey.width;
    int const height = grey.height;
    int const border = std::max(1, std::max(width, height) / 700);  // to be seen where it is shown smaller
    Pixel const* const label = labels.GetBufferPtr();
    auto const labelAt = [&](int x, int y) {
        bool const inside = x >= 0 && y >= 0 && x < width && y < height;
        return inside ? label[static_cast<std::ptrdiff_t>(y) * width + x] : Pixel{0};
    };
    Picture picture{width, height, {}, 3};
    picture.samples.reserve(grey.samples.size() * 3);
    auto below = grey.samples.begin();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x, ++below) {
            Pixel const here = labelAt(x, y);
            bool const outline = here && (labelAt(x - border, y) != here || labelAt(x + border, y) != here ||
                                          labelAt(x, y - border) != here || labelAt(x, y + border) != here);
            for (unsigned char const colour : colours[here])
                picture.samples.push_back(outline ? colour : here ? Mix(*below, colour) : *below);
        }
    return picture;
}

std::string ColourOf(std::size_t place) {
    Colour const& colour = kColours[place % kColours.size()];
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "#%02x%02x%02x", colour[0], colour[1], colour[2]);
    return text.data();
}

}  // namespace Radiograph
