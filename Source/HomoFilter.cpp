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

// Contiguous doubles. The means become the result; they share no memory with the pixels.
struct Images {
    double const* pixels;
    double* means;
    double* meanSquares;
    Size size;
};

// AnisotropicGaussian of the pixels or of their squares, and in the log a call of it. Its passes are run here,
// where the first one squares the pixels as it reads them: no image of squares is written and read.
void MakeMean(AnisotropicFilterPlan const& plan, Of what, double const* pixels, double* mean, Size size,
              double* work) {
    EntryExitLogging const entered(L"ZPA::AnisotropicGaussian", eLogFunction);
    std::ptrdiff_t const count = std::ptrdiff_t{size.width} * size.height;
    if (plan.RunsAlongSlant())
        SmoothColumns(MakeRecursiveGaussian(plan.sigmaSlant), what, pixels, mean, size.width, size, work);
    else if (what == Of::kSquares)
        SquareRow(pixels, mean, count);
    else
        std::copy_n(pixels, count, mean);
    if (plan.RunsAlongX(size.width))
        SmoothRows(MakeRecursiveGaussian(plan.sigmaX), mean, mean, size.width, size, work);
}

void MakeMeans(double sigma, Images const& images) {
    AnisotropicFilterPlan const plan(sigma, sigma, 0, 0, 0);
    auto const elements = RecursiveGaussianWork(images.size);
    auto const work = std::unique_ptr<double[]>(new double[static_cast<std::size_t>(elements)]);
    MakeMean(plan, Of::kPixels, images.pixels, images.means, images.size, work.get());
    MakeMean(plan, Of::kSquares, images.pixels, images.meanSquares, images.size, work.get());
}

void Filter(double sigma, Images const& images) {
    MakeMeans(sigma, images);
    std::ptrdiff_t const count = std::ptrdiff_t{images.size.width} * images.size.height;
    Sums sums{};
    ContrastRow(images.pixels, images.means, images.meanSquares, images.means, count, sums);
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
