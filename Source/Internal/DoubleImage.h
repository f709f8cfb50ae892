// What the filters that work on double images have in common.
#ifndef ZPA_SOURCE_INTERNAL_DOUBLEIMAGE_H
#define ZPA_SOURCE_INTERNAL_DOUBLEIMAGE_H

#include <Basics/PixelOperations.h>

#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"
#include "Source/Internal/Memory.h"

namespace ZPA {

inline bool IsContiguousDouble(ImageAttributes const& image) {
    return image.type == eDouble && image.stride == image.width;
}

// Refuses an input or output whose type isServed(type) denies, outputs of another size than the input's, and sizes
// that no double image has.
template <typename IsServed>
[[nodiscard]] SOLVANE_RETURNCODE CheckFilterImages(ImageAttributes const& input,
                                                   ImageAttributes const* output, IsServed const& isServed) {
    if (!input.buffer) return Fail(SOLVANE_NULL_POINTER, L"The input image had a NULL buffer pointer.");
    if (!isServed(input.type))
        return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The input image must be of type eByte, eUInt16, or eDouble.");
    if (!output) return Fail(SOLVANE_NULL_POINTER, L"The output ImageAttributes pointer was NULL.");
    if (output->buffer && (output->width != input.width || output->height != input.height))
        return Fail(SOLVANE_SIZE_MISMATCH, L"The output image is the wrong size.");
    if (output->buffer && !isServed(output->type))
        return Fail(SOLVANE_UNSUPPORTED_TYPE,
                    L"The output image must be of type eByte, eUInt16, or eDouble.");
    if (RowsUnreadable(input)) return Fail(SOLVANE_SIZE_MISMATCH, L"The input image's rows overlap.");
    if (output->buffer && RowsOverlap(*output))
        return Fail(SOLVANE_SIZE_MISMATCH, L"The output image's rows overlap.");
    bool const tooLarge =
        BlockBytes(ElementsSpanned(input.width, input.height, input.width), sizeof(double)) == kNoSize;
    if (input.width < 1 || input.height < 1 || tooLarge) return Fail(SOLVANE_UNEXPECTED, kUnexpected);
    return SOLVANE_OK;
}

// Copies pixels into an image that has some.
[[nodiscard]] inline SOLVANE_RETURNCODE Convert(ImageAttributes const& source, ImageAttributes destination) {
    SOLVANE_RETURNCODE const code = CopyPixels(source, &destination);
    return code == SOLVANE_OK ? code : Fail(code, L"The call to CopyPixels() failed.");
}

}  // namespace ZPA

#endif
