// FillHoles, and fills from the border.
#include <Basics/Regions.h>

#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"
#include "Source/Morphological/FillBuffer.h"

namespace ZPA {
namespace {

// Refuses what cannot be worked on, and makes room for a fill.
SOLVANE_RETURNCODE Prepare(ImageAttributes const& image, FillBuffer& buffer) {
    if (!image.buffer) return Fail(SOLVANE_NULL_POINTER, L"The input image had a NULL buffer pointer.");
    if (RowsOverlap(image)) return Fail(SOLVANE_SIZE_MISMATCH, L"The image's rows overlap.");
    if (buffer.Allocate(image) == SOLVANE_OK) return SOLVANE_OK;
    return Fail(SOLVANE_OPERATION_FAILED, L"FloodFill top border background failed.");
}

bool IsEmpty(ImageAttributes const& image) { return image.width < 1 || image.height < 1; }

template <typename T> std::ptrdiff_t StepOf(ImageAttributes const& image) {
    return std::ptrdiff_t{image.stride} * static_cast<std::ptrdiff_t>(sizeof(T));
}

}  // namespace

template <typename T>
SOLVANE_RETURNCODE template_FloodBorderAreas(ImageAttributes image, T background, T newValue,
                                             int connectivity) {
    if (IsEmpty(image)) return SOLVANE_OK;
    FillBuffer buffer;
    SOLVANE_RETURNCODE const code = Prepare(image, buffer);
    if (code != SOLVANE_OK) return code;
    // One fill from all border pixels: as many fills one after the other would each look at their rows again.
    // It refuses nothing that is left.
    FloodFillFromBorder(static_cast<T*>(image.buffer), StepOf<T>(image), {image.width, image.height},
                        background, newValue, connectivity != 4, buffer.Get());
    return SOLVANE_OK;
}

template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_FloodBorderAreas(ImageAttributes, unsigned char,
                                                                       unsigned char, int);
template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_FloodBorderAreas(ImageAttributes, unsigned short,
                                                                       unsigned short, int);

template <typename T> SOLVANE_RETURNCODE template_FillHoles(ImageAttributes image, int connectivity) {
    if (IsEmpty(image)) return SOLVANE_OK;
    FillBuffer buffer;
    SOLVANE_RETURNCODE const code = Prepare(image, buffer);
    if (code == SOLVANE_OPERATION_FAILED)
        return Fail(SOLVANE_OPERATION_FAILED, L"template_FloodBorderAreas to %% failed.");
    if (code != SOLVANE_OK) return code;
    FloodHoles(static_cast<T*>(image.buffer), StepOf<T>(image), {image.width, image.height},
               connectivity != 4, buffer.Get());
    return SOLVANE_OK;
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
