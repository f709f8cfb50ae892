// fspecial: the standard kernels.
#include <Basics/LinearFilters.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"
#include "Source/Platform/ExtendedPrecision.h"

namespace ZPA {
namespace {

// Parameters below this count as none, and values below this part of the largest as nothing. Callers compare
// results with it.
constexpr double kNegligible = 2.2204e-16;

SOLVANE_RETURNCODE Average(ImageView<double> const& kernel) {
    double const value = 1.0 / (static_cast<double>(kernel.Width()) * static_cast<double>(kernel.Height()));
    for (std::ptrdiff_t y = 0; y < kernel.Height(); ++y) std::fill_n(kernel.Row(y), kernel.Width(), value);
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE Gaussian(ImageView<double> const& kernel, double parameter) {
    [[maybe_unused]] ExtendedPrecision const precision;  // for exponentials of the same bits on every thread
    double const sigma = parameter < kNegligible ? 0.5 : parameter;
    std::ptrdiff_t const right = kernel.Width() - 1, bottom = kernel.Height() - 1;
    double const cx = static_cast<double>(right) * 0.5, cy = static_cast<double>(bottom) * 0.5;
    double largest = 0, sum = 0;
    // A quarter of the elements, which the others mirror.
    for (std::ptrdiff_t y = 0; y <= bottom - y; ++y) {
        double* const row = kernel.Row(y);
        double const dy = static_cast<double>(y) - cy;
        for (std::ptrdiff_t x = 0; x <= right - x; ++x) {
            double const dx = static_cast<double>(x) - cx;
            row[x] = row[right - x] = std::exp(-(dx * dx + dy * dy) / (2 * sigma * sigma));
            largest = std::max(largest, row[x]);
        }
        if (y != bottom - y) std::copy_n(row, kernel.Width(), kernel.Row(bottom - y));
    }
    auto const forEachElement = [&](auto const& visit) {
        for (std::ptrdiff_t y = 0; y <= bottom; ++y) std::for_each_n(kernel.Row(y), kernel.Width(), visit);
    };
    forEachElement([&](double& element) {
        if (element < largest * kNegligible) element = 0;
        sum += element;
    });
    if (sum != 0) forEachElement([sum](double& element) { element /= sum; });
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE Write(ImageAttributes const& kernel, double const (&elements)[9]) {
    if (std::int64_t{kernel.height} * kernel.stride < 9 || kernel.height < 0)
        return Fail(SOLVANE_SIZE_MISMATCH, L"The kernel image is too small.");
    std::memcpy(kernel.buffer, elements, sizeof elements);
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE Laplacian(ImageAttributes const& kernel, double parameter) {
    double const a = parameter < kNegligible ? 0 : std::min(parameter, 1.0);
    double const corner = a / (a + 1), edge = (1 - a) / (a + 1), centre = -4 / (a + 1);
    return Write(kernel, {corner, edge, corner, edge, centre, edge, corner, edge, corner});
}

}  // namespace

SOLVANE_RETURNCODE fspecial(ImageAttributes kernel, char const* kind, double parameter) try {
    if (!kernel.buffer) return Fail(SOLVANE_INVALID_ARGUMENT, L"The input buffer is NULL.");
    if (kernel.type != eDouble) return Fail(SOLVANE_INVALID_ARGUMENT, L"Input image are not double type.");

    auto const is = [&](char const* name) { return kind && std::strcmp(kind, name) == 0; };
    if (is("laplacian")) return Laplacian(kernel, parameter);
    if (is("sobel")) return Write(kernel, {1, 2, 1, 0, 0, 0, -1, -2, -1});
    if (!is("average") && !is("gaussian")) return SOLVANE_UNSUPPORTED_TYPE;
    if (RowsOverlap(kernel)) return Fail(SOLVANE_SIZE_MISMATCH, L"The kernel's rows overlap.");
    if (kernel.width < 1) return SOLVANE_OK;  // however many rows there are of nothing
    ImageView<double> const view(kernel);
    return is("average") ? Average(view) : Gaussian(view, parameter);
} catch (...) {
    return SOLVANE_UNEXPECTED;  // from the log's callback, which would throw again
}

}  // namespace ZPA
