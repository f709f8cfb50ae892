// FillHoles, and fills from the border.
#include <Basics/Regions.h>

#include <limits>

#include "primitives/FloodFill.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"
#include "Source/Morphological/FillBuffer.h"

namespace ZPA {
namespace {

bool IsEmpty(ImageAttributes const& image) { return image.width < 1 || image.height < 1; }

constexpr auto kTopOrLeft = L"FloodFill top border background failed.";
constexpr auto kBottomOrRight = L"FloodFill bottom border background failed.";

// The message of a fill from the border that failed: the first pixel that it would start from decides. Null if
// no pixel on the border is of the background.
template <typename T> wchar_t const* FailureOf(ImageView<T> const& image, T background) {
    std::ptrdiff_t const right = image.Width() - 1, bottom = image.Height() - 1;
    for (std::ptrdiff_t x = 0; x <= right; ++x) {
        if (image.Row(0)[x] == background) return kTopOrLeft;
        if (image.Row(bottom)[x] == background) return kBottomOrRight;
    }
    for (std::ptrdiff_t y = 0; y <= bottom; ++y) {
        if (image.Row(y)[0] == background) return kTopOrLeft;
        if (image.Row(y)[right] == background) return kBottomOrRight;
    }
    return nullptr;
}

template <typename T> SOLVANE_RETURNCODE Refuse(ImageAttributes const& image) {
    if (!image.buffer) return Fail(SOLVANE_NULL_POINTER, L"The input image had a NULL buffer pointer.");
    if (RowsOverlap(image)) return Fail(SOLVANE_SIZE_MISMATCH, L"The image's rows overlap.");
    if (ElementsTooNarrow<T>(image))
        return Fail(SOLVANE_SIZE_MISMATCH, L"The image's elements are too narrow.");
    return SOLVANE_OK;
}

template <typename T> std::ptrdiff_t StepOf(ImageAttributes const& image) {
    return std::ptrdiff_t{image.stride} * static_cast<std::ptrdiff_t>(sizeof(T));
}

// Runs flood(pixels, step, size, eightNeighbours, buffer), which starts from pixels of the background, on an
// image that was not refused. Where it would start from none, there is nothing to do and no buffer to make.
template <typename T, typename Flood>
SOLVANE_RETURNCODE FromBorder(ImageAttributes const& image, T background, int connectivity,
                              Flood const& flood) {
    wchar_t const* const failure = FailureOf(ImageView<T>(image), background);
    if (!failure) return SOLVANE_OK;
    FillBuffer buffer;
    if (buffer.Allocate(image) == SOLVANE_OK &&
        flood(static_cast<T*>(image.buffer), StepOf<T>(image), Size{image.width, image.height},
              connectivity != 4, buffer.Get()) == kDone)
        return SOLVANE_OK;
    return Fail(SOLVANE_OPERATION_FAILED, failure);
}

}  // namespace

template <typename T>
SOLVANE_RETURNCODE template_FloodBorderAreas(ImageAttributes image, T background, T newValue,
                                             int connectivity) {
    if (IsEmpty(image)) return SOLVANE_OK;
    SOLVANE_RETURNCODE const code = Refuse<T>(image);
    if (code != SOLVANE_OK) return code;
    // One fill from all border pixels: as many fills one after the other would each look at their rows again.
    return FromBorder(image, background, connectivity,
                      [&](T* pixels, std::ptrdiff_t step, Size size, bool eightNeighbours, void* buffer) {
                          return FloodFillFromBorder(pixels, step, size, background, newValue,
                                                     eightNeighbours, buffer);
                      });
}

template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_FloodBorderAreas(ImageAttributes, unsigned char,
                                                                       unsigned char, int);
template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_FloodBorderAreas(ImageAttributes, unsigned short,
                                                                       unsigned short, int);

template <typename T> SOLVANE_RETURNCODE template_FillHoles(ImageAttributes image, int connectivity) {
    if (IsEmpty(image)) return SOLVANE_OK;
    SOLVANE_RETURNCODE code = Refuse<T>(image);
    if (code != SOLVANE_OK) return code;
    if (FailureOf(ImageView<T>(image), T{0})) {
        code = FromBorder(image, T{0}, connectivity,
                          [](T* pixels, std::ptrdiff_t step, Size size, bool eightNeighbours, void* buffer) {
                              return FloodHoles(pixels, step, size, eightNeighbours, buffer);
                          });
    } else {
        CloseZeros(static_cast<T*>(image.buffer), StepOf<T>(image), {image.width, image.height});
        code = template_FloodBorderAreas(image, std::numeric_limits<T>::max(), T{0}, connectivity);
    }
    if (code == SOLVANE_OK) return SOLVANE_OK;
    return Fail(SOLVANE_OPERATION_FAILED, L"template_FloodBorderAreas to %% failed.");
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
