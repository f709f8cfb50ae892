// HomoFilter: what it refuses, and which images it works in.
#include <Basics/HomoFilter.h>
#include <Basics/ImageBuffer.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "primitives/ContrastRow.h"
#include "primitives/RecursiveGaussian.h"
#include "Source/Internal/AnisotropicFilterPlan.h"
#include "Source/Internal/DoubleImage.h"
#include "Source/Internal/Overlap.h"

namespace ZPA {
namespace {

bool IsServed(eTypeCode type) { return type == eByte || type == eUInt16 || type == eDouble; }

void MakeLike(ImageAttributes const& image, ZPA_Image<double>& made) {
    made.SetImage(nullptr, image.width, image.height, image.width, 64, image.pixelspacing, true, false);
}

// Contiguous doubles. The local means become the result; they share no memory with the pixels.
struct Images {
    double const* pixels;
    double* means;
    double* meanSquares;
    Size size;
};

// The means down the columns.
void SmoothAlongY(AnisotropicFilterPlan const& plan, Images const& images, double* work) {
    auto const [pixels, means, meanSquares, size] = images;
    if (plan.RunsAlongSlant()) {
        auto const weights = MakeRecursiveGaussian(plan.sigmaSlant);
        SmoothColumns(weights, Of::kPixels, pixels, means, size.width, size, work);
        SmoothColumns(weights, Of::kSquares, pixels, meanSquares, size.width, size, work);
    } else {
        std::ptrdiff_t const count = std::ptrdiff_t{size.width} * size.height;
        std::copy_n(pixels, count, means);
        SquareRow(pixels, meanSquares, count);
    }
}

// The means along the rows as well, and the contrast beside them, while some rows are in the cache.
Sums Contrast(AnisotropicFilterPlan const& plan, Images const& images, double* work) {
    auto const [pixels, means, meanSquares, size] = images;
    auto const weights = MakeRecursiveGaussian(plan.sigmaX);
    Sums sums{};
    for (int y = 0, rows; y < size.height; y += rows) {
        rows = std::min(RowsAtOnce(size), size.height - y);
        std::ptrdiff_t const first = std::ptrdiff_t{y} * size.width;
        if (plan.RunsAlongX(size.width))
            for (double* const band : {means + first, meanSquares + first})
                SmoothRows(weights, band, band, size.width, {size.width, rows}, work);
        ContrastRow(pixels + first, means + first, meanSquares + first, means + first,
                    std::ptrdiff_t{size.width} * rows, sums);
    }
    return sums;
}

// The means are AnisotropicGaussian's, with `sigma` both ways: its passes, run on pixels and squares in turn.
void Filter(double sigma, Images const& images) {
    AnisotropicFilterPlan const plan(sigma, sigma, 0, 0, 0);
    auto const elements = RecursiveGaussianWork(images.size);
    auto const work = std::unique_ptr<double[]>(new double[static_cast<std::size_t>(elements)]);
    SmoothAlongY(plan, images, work.get());
    Sums const sums = Contrast(plan, images, work.get());
    std::ptrdiff_t const count = std::ptrdiff_t{images.size.width} * images.size.height;
    double const mean = sums.values / static_cast<double>(count);
    double const deviation = std::sqrt(sums.squares / static_cast<double>(count) - mean * mean);
    StandardizeRow(images.means, count, mean, deviation);
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

        ZPA_Image<double> meanSquares;
        MakeLike(input, meanSquares);
        Filter(sigma, {static_cast<double const*>(working.buffer),
                       static_cast<double*>(result.buffer),
                       meanSquares.GetBufferPtr(),
                       {input.width, input.height}});
        if (outputServes) return SOLVANE_OK;
        if (output->buffer) return Convert(result, *output);
        *output = result;
        made.Disown();
        return SOLVANE_OK;
    });
}

}  // namespace ZPA
