// Dilate3x3 and Erode3x3: a fixed element, several times.
#include <Basics/ImageBuffer.h>
#include <Basics/Morphology.h>

#include "Source/Internal/Frame.h"

namespace ZPA {
namespace {

using Operation = SOLVANE_RETURNCODE (*)(ImageAttributes, ImageAttributes*, ImageAttributes, int, int);

SOLVANE_RETURNCODE Repeat(Operation operation, ImageAttributes src, ImageAttributes* dst, int iterations) {
    unsigned char ones[9] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
    ZPA_Image<unsigned char> const square(ones, 3, 3, 3, 8, 0, false, false);
    if (!dst) dst = &src;
    SOLVANE_RETURNCODE code = operation(src, dst, square, 1, 1);
    for (int i = 1; i < iterations && code == SOLVANE_OK; ++i) code = operation(*dst, nullptr, square, 1, 1);
    return code;
}

}  // namespace

SOLVANE_RETURNCODE Dilate3x3(ImageAttributes src, ImageAttributes* dst, int iterations) {
    return Guarded(L"ZPA::Dilate3x3", [&] { return Repeat(Dilate, src, dst, iterations); });
}

SOLVANE_RETURNCODE Erode3x3(ImageAttributes src, ImageAttributes* dst, int iterations) {
    return Guarded(L"ZPA::Erode3x3", [&] { return Repeat(Erode, src, dst, iterations); });
}

}  // namespace ZPA
