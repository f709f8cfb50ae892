// The rule of rectangle, mask and origin, which says which pixels of an image an operation works on.
#ifndef ZPA_SOURCE_INTERNAL_REGION_H
#define ZPA_SOURCE_INTERNAL_REGION_H

#include <Basics/CoreTypes.h>

#include <cstdint>

#include "Source/Internal/ImageView.h"

namespace ZPA {

// What the failures call the image.
struct RegionTexts {
    wchar_t const* outOfBounds;
};
inline constexpr RegionTexts kOfInput{L"The rectangular ROI was out of bounds in the input image."};
inline constexpr RegionTexts kOfDestination{
    L"The rectangular ROI was out of bounds in the destination image."};

// The pixels that an operation works on: a rectangle inside the image and, under a mask, the mask's rows
// beside it.
class Region {
public:
    // The whole image if `rectangle` is null. Mask pixel (origin.x + i, origin.y + j) governs pixel (x + i, y
    // + j) of the rectangle at (x, y); a null `maskOrigin` is (0, 0). Logs what is refused, and returns its
    // code: an empty rectangle, one that leaves the image, a mask without pixels, one that does not cover the
    // rectangle from its origin on; at last an image or mask whose rows overlap.
    [[nodiscard]] SOLVANE_RETURNCODE Resolve(ImageAttributes const& image, Rectangle const* rectangle,
                                             ImageAttributes const* mask, APOINT const* maskOrigin,
                                             RegionTexts const& texts);

    // The two halves of it, for operations with checks in between: the first two refusals, and the others.
    [[nodiscard]] SOLVANE_RETURNCODE ResolveRectangle(ImageAttributes const& image,
                                                      Rectangle const* rectangle, RegionTexts const& texts);
    [[nodiscard]] SOLVANE_RETURNCODE ResolveMask(ImageAttributes const& image, ImageAttributes const* mask,
                                                 APOINT const* maskOrigin);

    Rectangle const& Area() const { return area_; }
    std::int64_t PixelCount() const { return std::int64_t{area_.width} * area_.height; }  // selected or not
    bool IsMasked() const { return mask_.buffer != nullptr; }

    // True if `output` has room for the region where `image` has it, counted by the stride of `image`.
    bool FitsInto(ImageAttributes const& output, ImageAttributes const& image) const;

    // Calls work(pixels, mask, count) for every row of the region, or once if all pixels follow each other.
    // Without a mask, `mask` is null and every pixel is selected. No count passes 2^31.
    template <typename Mask = unsigned char, typename T, typename Work>
    void ForEachRow(ImageView<T> const& image, Work const& work) const {
        std::int64_t const pixels = PixelCount();
        bool const withoutGaps =
            image.Stride() == area_.width && (!IsMasked() || mask_.stride == area_.width);
        if (withoutGaps && pixels <= INT32_MAX)
            return work(image.Row(area_.y), MaskRow<Mask>(0), static_cast<std::ptrdiff_t>(pixels));
        ForEachNumberedRow<Mask>(
            image, [&](int, T* row, Mask const* mask, std::ptrdiff_t count) { work(row, mask, count); });
    }

    // Calls work(y, pixels, mask, count) for every row of the region, the first being row 0.
    template <typename Mask = unsigned char, typename T, typename Work>
    void ForEachNumberedRow(ImageView<T> const& image, Work const& work) const {
        for (int y = 0; y < area_.height; ++y)
            work(y, image.Row(std::ptrdiff_t{area_.y} + y) + area_.x, MaskRow<Mask>(y),
                 std::ptrdiff_t{area_.width});
    }

private:
    template <typename Mask> Mask const* MaskRow(int y) const {
        if (!IsMasked()) return nullptr;
        return ImageView<Mask const>(mask_).Row(std::ptrdiff_t{origin_.y} + y) + origin_.x;
    }

    Rectangle area_;
    ImageAttributes mask_;
    APOINT origin_;
};

// True if the rectangle leaves an image of this size; sums of its fields must not overflow.
inline bool LeavesImage(std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height,
                        ImageAttributes const& image) {
    return x < 0 || y < 0 || x + width > image.width || y + height > image.height;
}

}  // namespace ZPA

#endif
