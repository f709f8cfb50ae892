// DecimateAndCompare: whether two images agree, within a tolerance, at sampled pixels.
#include <Basics/PixelOperations.h>

#include <algorithm>
#include <type_traits>

#include "primitives/Rows.h"
#include "Source/Internal/Convert.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"

namespace ZPA {
namespace {

// Where rectangle and mask meet: the pixels in both, and where they lie in the memory of image and mask.
struct RoiAndMaskResolution {
    Rectangle area;
    std::ptrdiff_t imageOffset = 0;  // in elements
    std::ptrdiff_t maskOffset = 0;   // in elements
    wchar_t const* message = nullptr;
};

// The mask lies over the image with its corner at the origin; the rectangle is cut to what it covers. This
// differs from the rule of Region.h, where the origin lies in the mask and the mask must cover the rectangle.
SOLVANE_RETURNCODE ResolveRoiAndMask(SSize image, Rectangle const* roi, ImageAttributes const* mask,
                                     APOINT const* maskOrigin, RoiAndMaskResolution& result) {
    auto const refuse = [&](wchar_t const* message) {
        result.message = message;
        return SOLVANE_OUT_OF_RANGE;
    };
    std::int64_t left = roi ? roi->x : 0;
    std::int64_t top = roi ? roi->y : 0;
    std::int64_t right = left + (roi ? roi->width : image.width);
    std::int64_t bottom = top + (roi ? roi->height : image.height);
    if (left >= right || top >= bottom) return refuse(L"The rectangular ROI was empty.");

    APOINT const origin = maskOrigin ? *maskOrigin : APOINT();
    if (mask) {
        if (mask->width < 1 || mask->height < 1) return refuse(L"The mask ROI was empty.");
        left = std::max<std::int64_t>(left, origin.x);
        top = std::max<std::int64_t>(top, origin.y);
        right = std::min(right, std::int64_t{origin.x} + mask->width);
        bottom = std::min(bottom, std::int64_t{origin.y} + mask->height);
        if (left >= right || top >= bottom) return refuse(L"The combined ROI was empty.");
    }
    if (left < 0 || top < 0 || right > image.width || bottom > image.height)
        return refuse(L"The ROI was out of bounds in the image.");

    result.area = Rectangle(static_cast<int>(left), static_cast<int>(top), static_cast<int>(right - left),
                            static_cast<int>(bottom - top));
    result.imageOffset = static_cast<std::ptrdiff_t>(top * image.stride + left);
    if (mask)
        result.maskOffset = static_cast<std::ptrdiff_t>((top - origin.y) * mask->stride + left - origin.x);
    return SOLVANE_OK;
}

// The tolerance as differences of type T are compared with it.
template <typename T> auto ToleranceFor(double tolerance) {
    if constexpr (std::is_integral_v<T>)
        return TruncateToInt32(tolerance);
    else
        return static_cast<T>(tolerance);
}

struct Comparison {
    ImageAttributes first, second;
    ImageAttributes const* mask;
    int xStep, yStep;
    double tolerance;
};

// AnyDiffer for one sample, where a call of the kernel would cost more than the sample.
template <typename T, typename Tolerance> bool Differs(T a, T b, Tolerance tolerance) {
    Tolerance const difference = static_cast<Tolerance>(b) - static_cast<Tolerance>(a);
    return difference >= tolerance || difference <= -tolerance;
}

// True if no counted sample of the area differs by the tolerance or more.
template <typename T> bool SamplesAgree(Comparison const& images, RoiAndMaskResolution const& where) {
    auto const tolerance = ToleranceFor<T>(images.tolerance);
    if (std::is_integral_v<T> && tolerance < 1) return false;  // equal samples differ by that much
    std::ptrdiff_t const secondOffset = std::ptrdiff_t{where.area.y} * images.second.stride + where.area.x;
    T const* const first = static_cast<T const*>(images.first.buffer) + where.imageOffset;
    T const* const second = static_cast<T const*>(images.second.buffer) + secondOffset;
    unsigned char const* const mask =
        images.mask ? static_cast<unsigned char const*>(images.mask->buffer) + where.maskOffset : nullptr;

    auto const rowDiffers = [&](T const* a, T const* b, unsigned char const* selected) {
        if (images.xStep == 1 && !selected) return AnyDiffer(a, b, where.area.width, tolerance);
        for (std::int64_t x = 0; x < where.area.width; x += images.xStep)
            if ((!selected || selected[x] != 0) && Differs(a[x], b[x], tolerance)) return true;
        return false;
    };
    for (std::int64_t y = 0; y < where.area.height; y += images.yStep)
        if (rowDiffers(first + y * images.first.stride, second + y * images.second.stride,
                       mask ? mask + y * images.mask->stride : nullptr))
            return false;
    return true;
}

template <typename T>
SOLVANE_RETURNCODE Compare(Comparison const& images, Rectangle const* roi, APOINT const* maskOrigin,
                           bool* pbIsEquivalent) {
    RoiAndMaskResolution where;
    SSize const size(images.first.width, images.first.height, images.first.stride);
    SOLVANE_RETURNCODE const code = ResolveRoiAndMask(size, roi, images.mask, maskOrigin, where);
    if (code != SOLVANE_OK) return Fail(code, where.message);
    if (images.mask && !images.mask->buffer)
        return Fail(SOLVANE_NULL_POINTER, L"The mask had a NULL buffer pointer.");
    if (RowsUnreadable(images.first) || RowsUnreadable(images.second))
        return Fail(SOLVANE_SIZE_MISMATCH, L"The rows of an input image overlap.");
    if (images.mask && RowsUnreadable(*images.mask))
        return Fail(SOLVANE_SIZE_MISMATCH, L"The mask's rows overlap.");
    *pbIsEquivalent = SamplesAgree<T>(images, where);
    return SOLVANE_OK;
}

}  // namespace

SOLVANE_RETURNCODE DecimateAndCompare(ImageAttributes first, ImageAttributes second, Rectangle const* roi,
                                      ImageAttributes const* mask, APOINT const* maskOrigin, int xDecimation,
                                      int yDecimation, double tolerance, bool* pbIsEquivalent) {
    return Guarded(L"ZPA::DecimateAndCompare", [&] {
        if (!first.buffer) return Fail(SOLVANE_NULL_POINTER, L"The first image had a NULL buffer pointer.");
        if (!second.buffer) return Fail(SOLVANE_NULL_POINTER, L"The second image had a NULL buffer pointer.");
        if (first.width != second.width || first.height != second.height)
            return Fail(SOLVANE_SIZE_MISMATCH, L"The two input images have different sizes.");
        if (first.type != second.type)
            return Fail(SOLVANE_PARAM_TYPE, L"The two input images must be of the same type.");
        if (mask && mask->type != eByte)
            return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The mask must be of type eByte.");
        if (!pbIsEquivalent) return Fail(SOLVANE_NULL_POINTER, L"The pbIsEquivalent pointer was NULL.");
        if (xDecimation < 1 || yDecimation < 1)
            return Fail(SOLVANE_INVALID_ARGUMENT, L"The x and y decimation values must be >= 1.");
        if (tolerance <= 0) {
            *pbIsEquivalent = false;  // no difference is smaller
            return SOLVANE_OK;
        }

        auto const compareTyped = [&](auto element) {
            using T = typename decltype(element)::type;
            // The signed 16-bit type has the limit of the unsigned one.
            constexpr double kLargest = sizeof(T) == 1 ? 255.0 : 65535.0;
            if (std::is_integral_v<T> && tolerance > kLargest) {
                *pbIsEquivalent = true;  // no difference is larger
                return SOLVANE_OK;
            }
            Comparison const images{first, second, mask, xDecimation, yDecimation, tolerance};
            return Compare<T>(images, roi, maskOrigin, pbIsEquivalent);
        };
        return Dispatch<unsigned char, short, unsigned short, float, double>(first.type, compareTyped, [] {
            return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The image type is not supported.");
        });
    });
}

}  // namespace ZPA
