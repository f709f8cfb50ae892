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

    auto* const means = static_cast<double*>(result.buffer);
    Sums sums{};
    ContrastRow(pixels, means, meanSquares.GetBufferPtr(), means, count, sums);
    double const mean = sums.values / static_cast<double>(count);
    double const deviation = std::sqrt(sums.squares / static_cast<double>(count) - mean * mean);
    StandardizeRow(means, count, mean, deviation);
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
