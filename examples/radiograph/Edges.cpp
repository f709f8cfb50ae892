// Two filters and the length of what they give.
#include "radiograph/Edges.h"

#include <Basics/AnisotropicGaussian.h>
#include <Basics/LinearFilters.h>

#include <algorithm>
#include <cmath>

#include "radiograph/Library.h"

namespace Radiograph {
namespace {

using Real = ZPA::ZPA_Image<double>;

// All zero.
ZPA::ZPA_Ptr<Real> NewReal(int width, int height) {
    return ZPA::ZPA_Ptr<Real>(new Real(nullptr, width, height, width, 64, 1, true, true));
}

ZPA::ZPA_Ptr<Real> Filtered(Real const& image, Real const& kernel) {
    auto const filtered = NewReal(image.GetWidth(), image.GetHeight());
    ZPA::ImageAttributes output = *filtered;
    ZPA::APOINT const origin(1, 1);  // as far from the edges as the kernel reaches
    Check(ZPA::Filter2D(image, nullptr, &output, &origin, kernel, nullptr), "cannot find the edges");
    return filtered;
}

}  // namespace

ImagePtr Edges(Image const& input, double sigma) {
    int const width = input.GetWidth();
    int const height = input.GetHeight();
    auto const smooth = NewReal(width, height);
    ZPA::ImageAttributes smoothed = *smooth;
    Check(ZPA::AnisotropicGaussian(input, &smoothed, sigma, sigma, 0, 0, 0), "cannot smooth the radiograph");

    auto const down = NewReal(3, 3);
    auto const across = NewReal(3, 3);
    ZPA::ImageAttributes turned = *across;
    Check(ZPA::fspecial(*down, "sobel", 0), "cannot make a Sobel kernel");
    Check(ZPA::TransposeImage(*down, &turned), "cannot turn a Sobel kernel");
    auto const vertical = Filtered(*smooth, *down);
    auto const horizontal = Filtered(*smooth, *across);

    ImagePtr const edges = NewImage(width, height);
    Pixels const to(*edges);
    std::transform(vertical->GetBufferPtr(), vertical->GetBufferPtr() + to.size(), horizontal->GetBufferPtr(),
                   to.begin(), [](double a, double b) {
                       return static_cast<Pixel>(std::min(std::round(std::hypot(a, b)), 65535.0));
                   });
    return edges;
}

}  // namespace Radiograph
