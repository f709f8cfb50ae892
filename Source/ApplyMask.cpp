// ApplyMask: pixels cleared where a mask is zero.
#include <Basics/PixelOperations.h>

#include "primitives/Rows.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"

namespace ZPA {

SOLVANE_RETURNCODE ApplyMask(ImageAttributes image, ImageAttributes mask) {
    return Guarded(L"ZPA::ApplyMask", [&] {
        if (image.width != mask.width || image.height != mask.height || image.stride != mask.stride)
            return Fail(SOLVANE_INVALID_ARGUMENT, L"ApplyMask(): Image and mask cannot be different sizes.");
        if (mask.type != eByte)
            return Fail(SOLVANE_INVALID_ARGUMENT, L"ApplyMask(): Mask must be unsigned char.");

        auto const clear = [&](auto element) {
            using T = typename decltype(element)::type;
            if (!image.buffer || !mask.buffer)
                return Fail(SOLVANE_NULL_POINTER, L"ApplyMask(): Null pointer.");
            if (image.height < 0 || image.stride < 0)
                return Fail(SOLVANE_OUT_OF_RANGE, L"ApplyMask(): The image's size is negative.");
            // The padding is masked too.
            ClearUnmasked(static_cast<T*>(image.buffer), static_cast<unsigned char const*>(mask.buffer),
                          std::ptrdiff_t{image.stride} * image.height);
            return SOLVANE_OK;
        };
        return Dispatch<unsigned char, unsigned short>(image.type, clear,
                                                       [] { return SOLVANE_UNSUPPORTED_TYPE; });
    });
}

}  // namespace ZPA
