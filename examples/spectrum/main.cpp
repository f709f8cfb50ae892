// Smooths the middle column of a radiograph in its spectrum, and draws what became of it.
//
// Usage: spectrum [IMAGE.WIDTH.HEIGHT.raw] [PICTURE.svg]
//
// Without an image it makes a column of its own: a shadow with an edge, under the lines of a grid.
#include <Basics/FourierTransform.h>
#include <Basics/RawFile.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using Values = std::vector<double>;

constexpr double kPi = 3.141592653589793;
constexpr double kShortestPeriod = 16;  // pixels; what changes faster fades out

Values MadeUpColumn() {
    Values column(1500);
    for (std::size_t y = 0; y < column.size(); ++y) {
        double const at = static_cast<double>(y);
        double const body = 9000 + 5000 * std::cos(2 * kPi * at / 1100),
                     bone = y > 600 && y < 760 ? -2500 : 0;
        column[y] = body + bone + 700 * std::sin(2 * kPi * at / 5.3);
    }
    return column;
}

// Empty if there is no such image; the log has the reason.
Values MiddleColumn(char const* file) {
    ZPA::ImageAttributes image;
    if (ZPA::ReadRawFile(file, &image) != ZPA::SOLVANE_OK) return {};
    Values column;
    if (image.type == ZPA::eUInt16)
        for (int y = 0; y < image.height; ++y) {
            auto const* const row =
                static_cast<unsigned short*>(image.buffer) + static_cast<std::ptrdiff_t>(y) * image.stride;
            column.push_back(row[image.width / 2]);
        }
    ZPA::FreePixels(image.buffer);
    return column;
}

// A transform takes its values to go on for ever, so that the last one meets the first. Running back the way
// it came, the column has no jump there. The number is a power of two; the column's last value fills what is
// left.
Values ThereAndBack(Values const& column) {
    std::size_t half = 2;
    while (half < column.size()) half *= 2;
    Values values(column);
    values.resize(half, column.back());
    for (std::size_t y = half; y-- > 0;) values.push_back(values[y]);
    return values;
}

// The size of each frequency. Pairs are real and imaginary part; the first one holds the two that are real.
Values Sizes(Values const& spectrum) {
    Values sizes{std::abs(spectrum[0])};
    for (std::size_t k = 2; k < spectrum.size(); k += 2)
        sizes.push_back(std::hypot(spectrum[k], spectrum[k + 1]));
    return sizes;
}

double Power(Values const& sizes, std::size_t first) {
    double sum = 0;
    for (std::size_t k = first; k < sizes.size(); ++k) sum += sizes[k] * sizes[k];
    return sum;
}

// A line through the values, in a box of 900 by 240 whose upper left corner is at (50, top).
void Draw(std::FILE* svg, Values const& values, double low, double high, int top, char const* colour) {
    std::fprintf(svg, "<polyline fill='none' stroke='%s' points='", colour);
    for (std::size_t i = 0; i < values.size(); ++i)
        std::fprintf(svg, "%.1f,%.1f ",
                     50 + 900 * static_cast<double>(i) / static_cast<double>(values.size() - 1),
                     top + 240 * (high - std::clamp(values[i], low, high)) / (high - low));
    std::fprintf(svg, "'/>\n");
}

Values Logarithms(Values sizes) {
    for (double& size : sizes) size = std::log10(size + 1);
    return sizes;
}

bool DrawAll(char const* file, Values const& before, Values const& after, Values const& sizesBefore,
             Values const& sizesAfter) {
    std::FILE* const svg = std::fopen(file, "w");
    if (!svg) return false;
    auto const [low, high] = std::minmax_element(before.begin(), before.end());
    Values const spectrumBefore = Logarithms(sizesBefore), spectrumAfter = Logarithms(sizesAfter);
    double const largest = *std::max_element(spectrumBefore.begin(), spectrumBefore.end());
    std::fprintf(
        svg,
        "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 1000 620' font-family='sans-serif'>\n"
        "<rect width='1000' height='620' fill='white'/>\n"
        "<text x='50' y='30'>The column, top to bottom: as it was (grey) and smoothed (red)</text>\n");
    Draw(svg, before, *low, *high + 1, 45, "silver");
    Draw(svg, after, *low, *high + 1, 45, "firebrick");
    std::fprintf(svg, "<text x='50' y='335'>Its frequencies, slow to fast, in powers of ten</text>\n");
    Draw(svg, spectrumBefore, 0, largest, 350, "silver");
    Draw(svg, spectrumAfter, 0, largest, 350, "firebrick");
    std::fprintf(svg, "</svg>\n");
    return std::fclose(svg) == 0;
}

}  // namespace

int main(int count, char** arguments) {
    // One argument alone may be either.
    std::string const last = count > 1 ? arguments[count - 1] : "";
    bool const namesPicture = last.size() > 4 && last.compare(last.size() - 4, 4, ".svg") == 0;
    std::string const picture = namesPicture ? last : "spectrum.svg";
    bool const namesImage = count - 1 > (namesPicture ? 1 : 0);

    Values const column = namesImage ? MiddleColumn(arguments[1]) : MadeUpColumn();
    if (column.empty()) {
        std::fprintf(stderr, "spectrum: %s is no 16-bit image\n", arguments[1]);
        return 1;
    }
    std::printf("%zu pixels of %s.\n", column.size(), namesImage ? arguments[1] : "a made-up column");

    Values values = ThereAndBack(column);
    int const points = static_cast<int>(values.size() / 2);  // two reals each
    ZPA::realFFT_DBL(values.data(), points, 1);
    Values const sizesBefore = Sizes(values);

    // Frequency k has k periods in all the values. From half the limit on it fades, without a sharp edge that
    // would leave ripples.
    double const limit = static_cast<double>(values.size()) / kShortestPeriod;
    for (std::size_t k = 1; k < sizesBefore.size(); ++k) {
        double const past = std::clamp(2 * static_cast<double>(k) / limit - 1, 0.0, 1.0);
        double const kept = 0.5 + 0.5 * std::cos(kPi * past);
        values[2 * k] *= kept;
        values[2 * k + 1] *= kept;
    }
    values[1] = 0;  // the highest frequency
    Values const sizesAfter = Sizes(values);
    ZPA::realFFT_DBL(values.data(), points, -1);
    values.resize(column.size());

    double const varying = Power(sizesBefore, 1);
    std::printf("Periods below %.0f pixels are gone, and with them %.2f %% of what varies.\n",
                kShortestPeriod, varying > 0 ? 100 * (varying - Power(sizesAfter, 1)) / varying : 0.0);
    if (!DrawAll(picture.c_str(), column, values, sizesBefore, sizesAfter)) {
        std::fprintf(stderr, "spectrum: %s cannot be written\n", picture.c_str());
        return 1;
    }
    std::printf("Picture: %s\n", picture.c_str());
    return 0;
}
