// The rule of rectangle, mask and origin: its checks, in their order.
#include "Source/Internal/Region.h"

#include "Source/Internal/Frame.h"

namespace ZPA {

SOLVANE_RETURNCODE Region::Resolve(ImageAttributes const& image, Rectangle const* rectangle,
                                   ImageAttributes const* mask, APOINT const* maskOrigin,
                                   RegionTexts const& texts) {
    area_ = rectangle ? *rectangle : Rectangle(0, 0, image.width, image.height);
    if (area_.width < 1 || area_.height < 1)
        return Fail(SOLVANE_OUT_OF_RANGE, L"The rectangular ROI was empty.");
    if (LeavesImage(area_.x, area_.y, area_.width, area_.height, image))
        return Fail(SOLVANE_OUT_OF_RANGE, texts.outOfBounds);
    if (mask) {
        APOINT const origin = maskOrigin ? *maskOrigin : APOINT();
        if (!mask->buffer) return Fail(SOLVANE_NULL_POINTER, L"The mask had a NULL buffer pointer.");
        if (LeavesImage(origin.x, origin.y, area_.width, area_.height, *mask))
            return Fail(SOLVANE_OUT_OF_RANGE, L"The rectangular ROI was out of bounds in the mask.");
        if (RowsUnreadable(*mask)) return Fail(SOLVANE_SIZE_MISMATCH, L"The mask's rows overlap.");
        ImageView<unsigned char const> const pixels(*mask);
        maskStart_ = pixels.Row(origin.y) + origin.x;
        maskStride_ = pixels.Stride();
    }
    if (RowsUnreadable(image)) return Fail(SOLVANE_SIZE_MISMATCH, L"The image's rows overlap.");
    return SOLVANE_OK;
}

}  // namespace ZPA
