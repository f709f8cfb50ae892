// HomoFilter: what it refuses, and which images it works in.
#include <Basics/HomoFilter.h>
#include <Basics/ImageBuffer.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>

#include "primitives/ContrastRow.h"
#include "primitives/RecursiveGaussian.h"
#include "Source/Internal/AnisotropicFilterPlan.h"
#include "Source/Internal/DoubleImage.h"
#include "Source/Internal/Memory.h"
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

// The means of the squares and the work memory are one block: of several blocks, allocators tend to give back what
// is freed to the system, and to be given it anew takes as long as the filter.
void Filter(double sigma, Images const& images) {
    std::ptrdiff_t const count = std::ptrdiff_t{images.size.width} * images.size.height;
    std::unique_ptr<double[]> const memory(
        AllocateElements<double>(static_cast<std::uint64_t>(count) + RecursiveGaussianWork(images.size)));
    if (!memory) throw std::bad_alloc();
    double* const meanSquares = memory.get();
    double* const work = meanSquares + count;

    AnisotropicFilterPlan const plan(sigma, sigma, 0, 0, 0);
    MakeMean(plan, Of::kPixels, images.pixels, images.means, images.size, work);
    MakeMean(plan, Of::kSquares, images.pixels, meanSquares, images.size, work);
    Sums sums{};
    ContrastRow(images.pixels, images.means, meanSquares, images.means, count, sums);
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

        Filter(sigma, {static_cast<double const*>(working.buffer),
                       static_cast<double*>(result.buffer),
                       {input.width, input.height}});
        if (outputServes) return SOLVANE_OK;
        if (output->buffer) return Convert(result, *output);
        *output = result;
        made.Disown();
        return SOLVANE_OK;
    });
}

}  // namespace ZPA
