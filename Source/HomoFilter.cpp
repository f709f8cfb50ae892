// HomoFilter: what it refuses, and which images it works in.
#include <Basics/AnisotropicGaussian.h>
#include <Basics/HomoFilter.h>
#include <Basics/ImageBuffer.h>

#include <cmath>

#include "primitives/ContrastRow.h"
#include "Source/Internal/DoubleImage.h"
#include "Source/Internal/Overlap.h"

namespace ZPA {
namespace {

bool IsServed(eTypeCode type) { return type == eByte || type == eUInt16 || type == eDouble; }

void MakeLike(ImageAttributes const& image, ZPA_Image<double>& made) {
    made.SetImage(nullptr, image.width, image.height, image.width, 64, image.pixelspacing, true, false);
}

// The pixels less the local means, in units of the local deviations, over the means; gives the whole's mean
// and deviation. Sums are made from pixel to pixel.
struct Moments {
    double mean, deviation;
};
Moments Normalize(ImageView<double const> const& pixels, ImageView<double const> const& meanSquares,
                  ImageView<double> const& means) {
    double sum = 0;
    double squares = 0;
    for (std::ptrdiff_t y = 0; y < means.Height(); ++y) {
        double* const row = means.Row(y);
        ContrastRow(pixels.Row(y), row, meanSquares.Row(y), row, means.Width());
        for (std::ptrdiff_t x = 0; x < means.Width(); ++x) {
            sum += row[x];
            squares += row[x] * row[x];
        }
    }
    auto const count = static_cast<double>(means.Width() * means.Height());
    double const mean = sum / count;
    return {mean, std::sqrt(squares / count - mean * mean)};
}

// All images are contiguous doubles; the result shares no memory with the input.
SOLVANE_RETURNCODE Filter(ImageAttributes const& input, double sigma, ImageAttributes result) {
    std::ptrdiff_t const count = std::ptrdiff_t{input.width} * input.height;
    auto const pixels = static_cast<double const*>(input.buffer);
    ZPA_Image<double> meanSquares;
    MakeLike(input, meanSquares);
    ImageAttributes squares = meanSquares;

    SOLVANE_RETURNCODE code = AnisotropicGaussian(input, &result, sigma, sigma, 0, 0, 0);
    if (code != SOLVANE_OK) return code;
    SquareRow(pixels, meanSquares.GetBufferPtr(), count);
    code = AnisotropicGaussian(squares, &squares, sigma, sigma, 0, 0, 0);
    if (code != SOLVANE_OK) return code;

    auto const all = Normalize(ImageView<double const>(input), ImageView<double const>(squares),
                               ImageView<double>(result));
    StandardizeRow(static_cast<double*>(result.buffer), count, all.mean, all.deviation);
    return SOLVANE_OK;
}

}  // namespace

SOLVANE_RETURNCODE HomoFilter(ImageAttributes input, double sigma, ImageAttributes* output) {
    return Guarded(L"ZPA::HomoFilter", [&] {
        SOLVANE_RETURNCODE code = CheckFilterImages(input, output, IsServed);
        if (code != SOLVANE_OK) return code;

        ZPA_Image<double> converted;
        ImageAttributes working = input;
        if (!IsContiguousDouble(input)) {
            MakeLike(input, converted);
            working = converted;
            code = Convert(input, working);
            if (code != SOLVANE_OK) return code;
        }
        ZPA_Image<double> made;
        bool const outputServes =
            output->buffer && IsContiguousDouble(*output) && !ShareMemory(working, *output);
        if (!outputServes) MakeLike(input, made);
        ImageAttributes const result = outputServes ? *output : ImageAttributes(made);

        code = Filter(working, sigma, result);
        if (code != SOLVANE_OK || outputServes) return code;
        if (output->buffer) return Convert(result, *output);
        *output = result;
        made.Disown();
        return SOLVANE_OK;
    });
}

}  // namespace ZPA
