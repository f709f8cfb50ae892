// Grey values and sizes of pictures.
#include "radiograph/Picture.h"

#include <algorithm>
#include <cmath>

#include "radiograph/Statistics.h"

namespace Radiograph {

GreyScale ChooseScale(Counts const& counts, bool highIsDark) {
    Range const shown = Percentiles(counts, 0.005, 0.995);
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
    std::transform(pixels.begin(), pixels.end(), picture.samples.begin(),
                   [&](Pixel pixel) { return table[pixel]; });
    return picture;
}

Picture ScaleDown(Picture const& picture, int longest) {
    int const block = (std::max(picture.width, picture.height) - 1) / longest + 1;
    if (block == 1) return picture;
    int const channels = picture.channels;
    Picture small{(picture.width - 1) / block + 1, (picture.height - 1) / block + 1, {}, channels};
    auto const sampleAt = [&](int x, int y, int channel) {
        auto const pixel = static_cast<std::ptrdiff_t>(y) * picture.width + x;
        return picture.samples[static_cast<std::size_t>(pixel * channels + channel)];
    };
    for (int top = 0; top < picture.height; top += block) {
        int const bottom = std::min(top + block, picture.height);
        for (int left = 0; left < picture.width; left += block) {
            int const right = std::min(left + block, picture.width);
            long long const count = static_cast<long long>(bottom - top) * (right - left);
            for (int channel = 0; channel < channels; ++channel) {
                long long sum = 0;
                for (int y = top; y < bottom; ++y)
                    for (int x = left; x < right; ++x) sum += sampleAt(x, y, channel);
                small.samples.push_back(static_cast<unsigned char>((sum + count / 2) / count));
            }
        }
    }
    return small;
}

}  // namespace Radiograph
