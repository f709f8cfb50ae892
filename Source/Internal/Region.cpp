// The rule of rectangle, mask and origin: its checks, in their order.
#include "Source/Internal/Region.h"

#include "Source/Internal/Frame.h"

namespace ZPA {

SOLVANE_RETURNCODE Region::Resolve(ImageAttributes const& image, Rectangle const* rectangle,
                                   ImageAttributes const* mask, APOINT const* maskOrigin,
                                   RegionTexts const& texts) {
    SOLVANE_RETURNCODE const code = ResolveRectangle(image, rectangle, texts);
    return code == SOLVANE_OK ? ResolveMask(image, mask, maskOrigin) : code;
}

SOLVANE_RETURNCODE Region::ResolveRectangle(ImageAttributes const& image, Rectangle const* rectangle,
                                            RegionTexts const& texts) {
    area_ = rectangle ? *rectangle : Rectangle(0, 0, image.width, image.height);
    if (area_.width < 1 || area_.height < 1)
        return Fail(SOLVANE_OUT_OF_RANGE, L"The rectangular ROI was empty.");
    if (LeavesImage(area_.x, area_.y, area_.width, area_.height, image))
        return Fail(SOLVANE_OUT_OF_RANGE, texts.outOfBounds);
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE Region::ResolveMask(ImageAttributes const& image, ImageAttributes const* mask,
                                       APOINT const* maskOrigin) {
    if (mask) {
        APOINT const origin = maskOrigin ? *maskOrigin : APOINT();
        if (!mask->buffer) return Fail(SOLVANE_NULL_POINTER, L"The mask had a NULL buffer pointer.");
        if (LeavesImage(origin.x, origin.y, area_.width, area_.height, *mask))
            return Fail(SOLVANE_OUT_OF_RANGE, L"The rectangular ROI was out of bounds in the mask.");
        if (RowsUnreadable(*mask)) return Fail(SOLVANE_SIZE_MISMATCH, L"The mask's rows overlap.");
        mask_ = *mask;
        origin_ = origin;
    }
    if (RowsUnreadable(image)) return Fail(SOLVANE_SIZE_MISMATCH, L"The image's rows overlap.");
    return SOLVANE_OK;
}

bool Region::FitsInto(ImageAttributes const& output, ImageAttributes const& image) const {
    if (SizeOfTypeCode(output.type) < SizeOfTypeCode(image.type)) return false;
    std::int64_t const lastRow = std::int64_t{area_.y} + area_.height - 1;
    std::uint64_t const needed = static_cast<std::uint64_t>(lastRow * image.stride + area_.x + area_.width);
    return needed <= ElementsDescribed(output);
}

}  // namespace ZPA
