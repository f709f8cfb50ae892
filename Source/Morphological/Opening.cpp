// ImOpen and ImClose: erosion and dilation, one after the other.
#include <Basics/Morphology.h>

#include "Source/Internal/Frame.h"

namespace ZPA {
namespace {

using Operation = SOLVANE_RETURNCODE (*)(ImageAttributes, ImageAttributes*, ImageAttributes, int, int);

// The second step reads the first one's result through the destination.
SOLVANE_RETURNCODE Chain(Operation first, Operation second, ImageAttributes const& src, ImageAttributes* dst,
                         ImageAttributes const& se, int anchorX, int anchorY) {
    if (!dst) return Fail(SOLVANE_NULL_POINTER, L"The destination image pointer was NULL.");
    SOLVANE_RETURNCODE const code = first(src, dst, se, anchorX, anchorY);
    return code == SOLVANE_OK ? second(*dst, dst, se, anchorX, anchorY) : code;
}

}  // namespace

SOLVANE_RETURNCODE ImOpen(ImageAttributes src, ImageAttributes* dst, ImageAttributes se, int anchorX,
                          int anchorY) {
    return Guarded(L"ZPA::ImOpen", [&] { return Chain(Erode, Dilate, src, dst, se, anchorX, anchorY); });
}

SOLVANE_RETURNCODE ImClose(ImageAttributes src, ImageAttributes* dst, ImageAttributes se, int anchorX,
                           int anchorY) {
    return Guarded(L"ZPA::ImClose", [&] { return Chain(Dilate, Erode, src, dst, se, anchorX, anchorY); });
}

}  // namespace ZPA
