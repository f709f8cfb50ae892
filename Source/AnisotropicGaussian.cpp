// AnisotropicGaussian: what it refuses, how the oriented Gaussian falls into two passes, and its derivatives.
#include <Basics/AnisotropicGaussian.h>
#include <Basics/ImageBuffer.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "primitives/RecursiveGaussian.h"
#include "Source/Internal/AnisotropicFilterPlan.h"
#include "Source/Internal/DoubleImage.h"
#include "Source/Internal/Overlap.h"

namespace ZPA {
namespace {

// The image is contiguous.
struct Pixels {
    double const* source;
    double* destination;
    Size size;
};

// Puts the sheared pass's lines where they belong, and filters along them.
void SmoothAlongSlant(AnisotropicFilterPlan const& plan, Pixels const& image, double* work) {
    auto const weights = MakeRecursiveGaussian(plan.sigmaSlant);
    auto const [source, destination, size] = image;
    bool const upright = !(std::abs(plan.shear) * size.height >= 0.5) || !std::isfinite(plan.shear);
    if (upright) return SmoothColumns(weights, Of::kPixels, source, destination, size.width, size, work);
    // Where the shear passes the width, a line has one pixel in the image. Its row still says how far the line is
    // from that pixel, but lines need not lie further apart than this.
    double const apart = std::clamp<double>(plan.shear, -size.width, size.width);
    std::vector<std::ptrdiff_t> shift(static_cast<std::size_t>(size.height));
    std::vector<double> fraction(shift.size());
    for (std::size_t y = 0; y < shift.size(); ++y) {
        double const column = plan.shear * static_cast<double>(y);
        shift[y] = static_cast<std::ptrdiff_t>(std::floor(apart * static_cast<double>(y)));
        fraction[y] = column - std::floor(column);
    }
    SmoothSlant(weights, {shift.data(), fraction.data()}, source, destination, size.width, size, work);
}

// Half of what the next pixel has more than the one before, in place: `across` times that along x, `down`
// times that along y.
void Differentiate(double across, double down, Pixels const& image) {
    std::ptrdiff_t const width = image.size.width;
    std::ptrdiff_t const height = image.size.height;
    double const halfAcross = across / 2;
    double const halfDown = down / 2;
    std::vector<double> above(image.destination, image.destination + width);
    std::vector<double> here(above.size() + 2);  // with its ends repeated
    for (std::ptrdiff_t y = 0; y < height; ++y) {
        double* const row = image.destination + y * width;
        double const* const below = y + 1 < height ? row + width : row;
        std::copy_n(row, width, here.data() + 1);
        here.front() = row[0];
        here.back() = row[width - 1];
        for (std::ptrdiff_t x = 0; x < width; ++x) {
            double const* const at = here.data() + x;
            double const next = below == row ? at[1] : below[x];
            row[x] = halfAcross * (at[2] - at[0]) + halfDown * (next - above[static_cast<std::size_t>(x)]);
        }
        std::copy_n(here.data() + 1, width, above.data());
    }
}

void Filter(AnisotropicFilterPlan const& plan, Pixels image) {
    auto const elements = RecursiveGaussianWork(image.size);
    auto const work = std::unique_ptr<double[]>(new double[static_cast<std::size_t>(elements)]);
    if (plan.RunsAlongSlant()) {
        SmoothAlongSlant(plan, image, work.get());
        image.source = image.destination;
    }
    if (plan.RunsAlongX(image.size.width)) {
        SmoothRows(MakeRecursiveGaussian(plan.sigmaX), image.source, image.destination, image.size.width,
                   image.size, work.get());
        image.source = image.destination;
    }
    if (image.source != image.destination)
        std::copy_n(image.source, std::ptrdiff_t{image.size.width} * image.size.height, image.destination);
    for (int i = 0; i < plan.derivativeOrderU; ++i) Differentiate(plan.cosine, plan.sine, image);
    for (int i = 0; i < plan.derivativeOrderV; ++i) Differentiate(-plan.sine, plan.cosine, image);
}

bool IsServed(eTypeCode type) {
    return type == eDouble || type == eByte || type == eUInt16 || type == eInt16;
}

// The whole filter: from the input into contiguous doubles, which are the output's where they can be.
SOLVANE_RETURNCODE FilterImage(AnisotropicFilterPlan const& plan, ImageAttributes const& input,
                               ImageAttributes* output) {
    bool const inputServes = IsContiguousDouble(input);
    bool const outputServes =
        output->buffer && IsContiguousDouble(*output) &&
        (!ShareMemory(input, *output) || (inputServes && input.buffer == output->buffer));
    ZPA_Image<double> made;
    if (!outputServes)
        made.SetImage(nullptr, input.width, input.height, input.width, 64, input.pixelspacing, true, false);
    ImageAttributes const result = outputServes ? *output : ImageAttributes(made);
    if (!inputServes) {
        SOLVANE_RETURNCODE const code = Convert(input, result);
        if (code != SOLVANE_OK) return code;
    }

    auto* const pixels = static_cast<double*>(result.buffer);
    Filter(plan, {inputServes ? static_cast<double const*>(input.buffer) : pixels,
                  pixels,
                  {input.width, input.height}});
    if (outputServes) return SOLVANE_OK;
    if (output->buffer) return Convert(result, *output);
    *output = result;
    made.Disown();
    return SOLVANE_OK;
}

}  // namespace

SOLVANE_RETURNCODE AnisotropicGaussian(ImageAttributes input, ImageAttributes* output, double sigmaU,
                                       double sigmaV, double angleDegrees, unsigned char derivativeOrderU,
                                       unsigned char derivativeOrderV) {
    return Guarded(L"ZPA::AnisotropicGaussian", [&] {
        SOLVANE_RETURNCODE const code = CheckFilterImages(input, output, IsServed);
        if (code != SOLVANE_OK) return code;
        AnisotropicFilterPlan const plan(sigmaU, sigmaV, angleDegrees, derivativeOrderU, derivativeOrderV);
        return FilterImage(plan, input, output);
    });
}

}  // namespace ZPA
