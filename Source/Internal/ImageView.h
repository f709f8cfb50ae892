// Typed access to the pixels of a descriptor.
#ifndef ZPA_SOURCE_INTERNAL_IMAGEVIEW_H
#define ZPA_SOURCE_INTERNAL_IMAGEVIEW_H

#include <Basics/CoreTypes.h>

#include <cstddef>

namespace ZPA {

// Owns nothing, checks nothing.
template <typename T> class ImageView {
public:
    explicit ImageView(ImageAttributes const& image)
        : first_(static_cast<T*>(image.buffer)),
          width_(image.width),
          height_(image.height),
          stride_(image.stride) {}

    std::ptrdiff_t Width() const { return width_; }
    std::ptrdiff_t Height() const { return height_; }
    std::ptrdiff_t Stride() const { return stride_; }  // in elements
    // In ptrdiff_t: a large image must not overflow.
    T* Row(std::ptrdiff_t y) const { return first_ + y * stride_; }
    bool IsContiguous() const { return stride_ == width_ || height_ == 1; }

private:
    T* first_;
    std::ptrdiff_t width_;
    std::ptrdiff_t height_;
    std::ptrdiff_t stride_;
};

// Calls work(a's row, b's row, pixels) for every row of two images of one size, or once if both have no gaps.
template <typename A, typename B, typename Work>
void ForEachRowPair(ImageView<A> const& a, ImageView<B> const& b, Work const& work) {
    if (a.Width() < 1 || a.Height() < 1) return;
    if (a.IsContiguous() && b.IsContiguous()) return work(a.Row(0), b.Row(0), a.Width() * a.Height());
    for (std::ptrdiff_t y = 0; y < a.Height(); ++y) work(a.Row(y), b.Row(y), a.Width());
}

// True if elements of T would reach beyond what the image's type describes.
template <typename T> bool ElementsTooNarrow(ImageAttributes const& image) {
    return SizeOfTypeCode(image.type) < static_cast<int>(sizeof(T));
}

// Elements from the first pixel to the last one. The padding of the last row is none of the image's: where it is a
// window of a larger one, its memory may end before.
inline std::uint64_t ElementsDescribed(ImageAttributes const& image) {
    if (image.width < 1 || image.height < 1) return 0;
    if (image.height == 1) return static_cast<std::uint64_t>(image.width);
    if (image.stride < 0) return 0;
    return static_cast<std::uint64_t>((std::int64_t{image.height} - 1) * image.stride + image.width);
}

// True if rows of the image would share memory, or lie before its first pixel: no operation writes such an
// image.
inline bool RowsOverlap(ImageAttributes const& image) {
    return image.height > 1 && image.stride < image.width;
}

// True if no operation reads such an image. Images of 8 bits and less may share memory between rows.
inline bool RowsUnreadable(ImageAttributes const& image) {
    return RowsOverlap(image) && (image.bitsperpixel > 8 || image.stride <= 0);
}

}  // namespace ZPA

#endif
