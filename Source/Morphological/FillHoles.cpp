// FillHoles: the outside is marked from the border, what is still zero is overwritten, and the mark taken
// back.
#include <Basics/Regions.h>

#include <algorithm>
#include <limits>

#include "primitives/PixelBits.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"
#include "Source/Morphological/FillBuffer.h"

namespace ZPA {
namespace {

// Zeros take the last value before them that is not zero, in their row or in those above.
template <typename T> void OverwriteZeros(ImageView<T> const& image) {
    constexpr std::ptrdiff_t kAtOnce = 4096;
    std::uint64_t zeros[WordsOf(kAtOnce)];
    T carried = 0;
    for (std::ptrdiff_t y = 0; y < image.Height(); ++y) {
        for (std::ptrdiff_t x = 0; x < image.Width(); x += kAtOnce) {
            T* const pixels = image.Row(y) + x;
            std::ptrdiff_t const count = std::min(kAtOnce, image.Width() - x);
            FindEqual(pixels, count, T{0}, zeros);
            ForEachRun(zeros, count, [&](std::ptrdiff_t first, std::ptrdiff_t end) {
                std::fill(pixels + first, pixels + end, first > 0 ? pixels[first - 1] : carried);
            });
            carried = pixels[count - 1];
        }
    }
}

}  // namespace

template <typename T>
SOLVANE_RETURNCODE template_FloodBorderAreas(ImageAttributes image, T background, T newValue,
                                             int connectivity) {
    if (image.width < 1 || image.height < 1) return SOLVANE_OK;
    if (!image.buffer) return Fail(SOLVANE_NULL_POINTER, L"The input image had a NULL buffer pointer.");
    if (RowsOverlap(image)) return Fail(SOLVANE_SIZE_MISMATCH, L"The image's rows overlap.");
    if (ElementsTooNarrow<T>(image))
        return Fail(SOLVANE_SIZE_MISMATCH, L"The image's elements are too narrow.");
    FillBuffer buffer;
    if (buffer.Allocate(image) != SOLVANE_OK)
        return Fail(SOLVANE_OPERATION_FAILED, L"FloodFill top border background failed.");
    // One fill from all border pixels: as many fills one after the other would each look at their rows again.
    std::ptrdiff_t const step = std::ptrdiff_t{image.stride} * static_cast<std::ptrdiff_t>(sizeof(T));
    Status const status =
        FloodFillFromBorder(static_cast<T*>(image.buffer), step, {image.width, image.height}, background,
                            newValue, connectivity != 4, buffer.Get());
    return status == kDone ? SOLVANE_OK
                           : Fail(SOLVANE_OPERATION_FAILED, L"FloodFill top border background failed.");
}

template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_FloodBorderAreas(ImageAttributes, unsigned char,
                                                                       unsigned char, int);
template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_FloodBorderAreas(ImageAttributes, unsigned short,
                                                                       unsigned short, int);

template <typename T> SOLVANE_RETURNCODE template_FillHoles(ImageAttributes image, int connectivity) {
    constexpr T kMarker = std::numeric_limits<T>::max();
    if (image.width < 1 || image.height < 1) return SOLVANE_OK;
    if (!image.buffer) return Fail(SOLVANE_NULL_POINTER, L"The input image had a NULL buffer pointer.");
    if (RowsOverlap(image)) return Fail(SOLVANE_SIZE_MISMATCH, L"The image's rows overlap.");
    if (ElementsTooNarrow<T>(image))
        return Fail(SOLVANE_SIZE_MISMATCH, L"The image's elements are too narrow.");
    auto const flood = [&](T background, T newValue) {
        if (template_FloodBorderAreas(image, background, newValue, connectivity) == SOLVANE_OK)
            return SOLVANE_OK;
        return Fail(SOLVANE_OPERATION_FAILED, L"template_FloodBorderAreas to %% failed.");
    };
    SOLVANE_RETURNCODE const code = flood(T{0}, kMarker);
    if (code != SOLVANE_OK) return code;
    OverwriteZeros(ImageView<T>(image));
    return flood(kMarker, T{0});
}

template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_FillHoles<unsigned char>(ImageAttributes, int);
template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_FillHoles<unsigned short>(ImageAttributes, int);

SOLVANE_RETURNCODE FillHoles(ImageAttributes image, int connectivity) {
    return Guarded(L"ZPA::FillHoles", [&] {
        auto const fill = [&](auto element) {
            return template_FillHoles<typename decltype(element)::type>(image, connectivity);
        };
        return Dispatch<unsigned char, unsigned short>(
            image.type, fill, [] { return Fail(SOLVANE_UNSUPPORTED_TYPE, L"Unsupported image datatype."); });
    });
}

}  // namespace ZPA
