// TransposeImage: columns become rows, for every element type.
#include <Basics/AnisotropicGaussian.h>

#include "primitives/Transpose.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"
#include "Source/Internal/Overlap.h"

namespace ZPA {
namespace {

// The values do not matter, only how wide they are.
template <typename T> void TransposeAs(ImageAttributes const& source, ImageAttributes const& destination) {
    Transpose(static_cast<T const*>(source.buffer), source.stride, static_cast<T*>(destination.buffer),
              destination.stride, {source.width, source.height});
}

}  // namespace

SOLVANE_RETURNCODE TransposeImage(ImageAttributes source, ImageAttributes* destination) {
    return Guarded(L"ZPA::TransposeImage", [&] {
        if (!source.buffer) return Fail(SOLVANE_NULL_POINTER, L"The source image had a NULL buffer pointer.");
        if (!destination || !destination->buffer)
            return Fail(SOLVANE_NULL_POINTER, L"The destination image pointer was NULL.");
        int const bytes = SizeOfTypeCode(source.type);
        if (bytes == 0) return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The source image type is not supported.");
        if (destination->type != source.type)
            return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The source and destination images have different types.");
        if (destination->width != source.height || destination->height != source.width)
            return Fail(SOLVANE_SIZE_MISMATCH, L"The destination image is the wrong size.");
        if (source.width < 1 || source.height < 1) return SOLVANE_OK;
        if (RowsUnreadable(source)) return Fail(SOLVANE_SIZE_MISMATCH, L"The source image's rows overlap.");
        if (RowsOverlap(*destination))
            return Fail(SOLVANE_SIZE_MISMATCH, L"The destination image's rows overlap.");
        if (ShareMemory(source, *destination))
            return Fail(SOLVANE_INVALID_ARGUMENT, L"The source and destination images share memory.");

        if (bytes == 1) TransposeAs<std::uint8_t>(source, *destination);
        if (bytes == 2) TransposeAs<std::uint16_t>(source, *destination);
        if (bytes == 4) TransposeAs<std::uint32_t>(source, *destination);
        if (bytes == 8) TransposeAs<std::uint64_t>(source, *destination);
        return SOLVANE_OK;
    });
}

}  // namespace ZPA
