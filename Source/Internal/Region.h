// The rule of rectangle, mask and origin, which says which pixels of an image an operation works on.
#ifndef ZPA_SOURCE_INTERNAL_REGION_H
#define ZPA_SOURCE_INTERNAL_REGION_H

#include <Basics/CoreTypes.h>

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

    Rectangle const& Area() const { return area_; }
    bool IsMasked() const { return maskStart_ != nullptr; }

    // Calls work(pixels, mask, count) for every row of the region, or once if all pixels follow each other.
    // Without a mask, `mask` is null and every pixel is selected.
    template <typename T, typename Work> void ForEachRow(ImageView<T> const& image, Work const& work) const {
        std::ptrdiff_t const width = area_.width;
        std::ptrdiff_t const height = area_.height;
        T* const first = image.Row(area_.y) + area_.x;
        bool const withoutGaps = image.Stride() == width && (!IsMasked() || maskStride_ == width);
        if (withoutGaps) return work(first, maskStart_, width * height);
        for (std::ptrdiff_t y = 0; y < height; ++y)
            work(first + y * image.Stride(), IsMasked() ? maskStart_ + y * maskStride_ : nullptr, width);
    }

private:
    Rectangle area_;
    unsigned char const* maskStart_ = nullptr;
    std::ptrdiff_t maskStride_ = 0;
};

// True if the rectangle leaves an image of this size; sums of its fields must not overflow.
inline bool LeavesImage(std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height,
                        ImageAttributes const& image) {
    return x < 0 || y < 0 || x + width > image.width || y + height > image.height;
}

}  // namespace ZPA

#endif
