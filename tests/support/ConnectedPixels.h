// A plain search for connected pixels, and shapes of images to search.
#ifndef ZPA_TESTS_SUPPORT_CONNECTEDPIXELS_H
#define ZPA_TESTS_SUPPORT_CONNECTEDPIXELS_H

#include <deque>

#include "support/Images.h"

namespace ZPA::Testing {

// Both sides of a word of 64 pixels, and of several.
inline constexpr Shape kWordShapes[] = {{1, 1, 1},      {1, 9, 4},      {9, 1, 9},     {63, 7, 70},
                                        {64, 8, 64},    {65, 9, 65},    {128, 5, 130}, {131, 40, 140},
                                        {192, 33, 192}, {4200, 3, 4200}};

// Gives `value` to the pixels that have the seed's value and are connected to it.
template <typename T> void ModelFill(TestImage<T>& image, int seedX, int seedY, T value, int connectivity) {
    T const wanted = image.At(seedX, seedY);
    if (wanted == value) return;
    std::deque<APOINT> open = {APOINT(seedX, seedY)};
    image.At(seedX, seedY) = value;
    while (!open.empty()) {
        APOINT const at = open.front();
        open.pop_front();
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) {
                int const x = at.x + dx, y = at.y + dy;
                bool const neighbour = connectivity != 4 || dx == 0 || dy == 0;
                if (!neighbour || x < 0 || y < 0 || x >= image.shape.width || y >= image.shape.height)
                    continue;
                if (image.At(x, y) != wanted) continue;
                image.At(x, y) = value;
                open.push_back(APOINT(x, y));
            }
    }
}

}  // namespace ZPA::Testing

#endif
