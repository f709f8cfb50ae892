// Outputs of image arithmetic, and the shapes that it refuses.
#include "Source/Numerical/ImageArithmetic.h"

namespace ZPA {

void CreatedPixels::Free() {
    if (!image_) return;
    FreePixels(image_->buffer);
    image_->buffer = nullptr;
    image_ = nullptr;
}

SOLVANE_RETURNCODE ArithmeticOutput::Prepare() {
    if (inPlace_) return SOLVANE_OK;
    bool const creates = output_ && !output_->buffer;
    if (ValidateImageBuffer(first_, output_) != SOLVANE_OK)
        return Fail(SOLVANE_OPERATION_FAILED,
                    L"Failed of ValidateImageBuffer when validate buffer of output image.");
    if (creates) created_.Take(output_);
    return SOLVANE_OK;
}

namespace {

SOLVANE_RETURNCODE CheckElements(ImageAttributes const& image, std::size_t elementSize, wchar_t const* name) {
    if (static_cast<std::size_t>(SizeOfTypeCode(image.type)) < elementSize)
        return Fail(SOLVANE_SIZE_MISMATCH, L"The elements of the %s are too narrow.", name);
    return SOLVANE_OK;
}
SOLVANE_RETURNCODE RefuseRows(wchar_t const* name) {
    return Fail(SOLVANE_SIZE_MISMATCH, L"The %s's rows overlap.", name);
}

}  // namespace

SOLVANE_RETURNCODE CheckReadable(ImageAttributes const& image, std::size_t elementSize, wchar_t const* name) {
    SOLVANE_RETURNCODE const code = CheckElements(image, elementSize, name);
    return code == SOLVANE_OK && RowsUnreadable(image) ? RefuseRows(name) : code;
}

SOLVANE_RETURNCODE CheckWritable(ImageAttributes const& image, std::size_t elementSize, wchar_t const* name) {
    SOLVANE_RETURNCODE const code = CheckElements(image, elementSize, name);
    return code == SOLVANE_OK && RowsOverlap(image) ? RefuseRows(name) : code;
}

SOLVANE_RETURNCODE CheckShapes(ImageAttributes const& first, ImageAttributes const* second,
                               ImageAttributes const& output, std::size_t elementSize) {
    SOLVANE_RETURNCODE code = CheckReadable(first, elementSize, L"first image");
    if (code == SOLVANE_OK && second) code = CheckReadable(*second, elementSize, L"second image");
    if (code == SOLVANE_OK) code = CheckWritable(output, elementSize, L"output image");
    return code;
}

}  // namespace ZPA
