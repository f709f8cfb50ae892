// Grey values and sizes of pictures.
#include "radiograph/Picture.h"

#include <algorithm>
#include <cmath>

#include "radiograph/Statistics.h"

namespace Radiograph {

GreyScale ChooseScale(Image const& image, bool highIsDark) {
    Range const shown = Percentiles(image, 0.005, 0.995);
    return highIsDark ? GreyScale{shown.high, shown.low} : GreyScale{shown.low, shown.high};
}

Picture Show(Image const& image, GreyScale scale) {
    double const span = scale.white == scale.black ? 1 : scale.white - scale.black;
    std::vector<unsigned char> table(0x10000);
    for (std::size_t value = 0; value < table.size(); ++value) {
        double const part = (static_cast<double>(value) - scale.black) / span;
        table[value] = static_cast<unsigned char>(std::lround(255 * std::clamp(part, 0.0, 1.0)));
    }
    Pixels const pixels(image);
    Picture picture{image.GetWidth(), image.GetHeight(), std::vector<unsigned char>(pixels.size())};
    std::transform(pixels.begin(), pixels.end(), picture.grey.begin(),
                   [&](Pixel pixel) { return table[pixel]; });
    return picture;
}

Picture ScaleDown(Picture const& picture, int longest) {
    int const block = (std::max(picture.width, picture.height) - 1) / longest + 1;
    if (block == 1) return picture;
    Picture small{(picture.width - 1) / block + 1, (picture.height - 1) / block + 1, {}};
    small.grey.reserve(static_cast<std::size_t>(small.width) * static_cast<std::size_t>(small.height));
    for (int top = 0; top < picture.height; top += block) {
        int const bottom = std::min(top + block, picture.height);
        for (int left = 0; left < picture.width; left += block) {
            int const right = std::min(left + block, picture.width);
            long long sum = 0;
            for (int y = top; y < bottom; ++y) {
                auto const* const row = picture.grey.data() + static_cast<std::ptrdiff_t>(y) * picture.width;
                for (int x = left; x < right; ++x) sum += row[x];
            }
            long long const count = static_cast<long long>(bottom - top) * (right - left);
            small.grey.push_back(static_cast<unsigned char>((sum + count / 2) / count));
        }
    }
    return small;
}

}  // namespace Radiograph
