// The kind of image that every step takes and gives.
#ifndef RADIOGRAPH_IMAGE_H
#define RADIOGRAPH_IMAGE_H

#include <Basics/ImageBuffer.h>

#include <cstddef>

namespace Radiograph {

using Pixel = unsigned short;
using Image = ZPA::ZPA_Image<Pixel>;
using ImagePtr = ZPA::ZPA_Ptr<Image>;

// A packed image whose pixels are not yet set.
inline ImagePtr NewImage(int width, int height) {
    return ImagePtr(new Image(nullptr, width, height, width, 16, 1, true, false));
}

// The pixels of an image as one block: all images here are packed.
class Pixels {
public:
    explicit Pixels(Image const& image)
        : first_(image.GetBufferPtr()),
          size_(static_cast<std::size_t>(image.GetWidth()) * static_cast<std::size_t>(image.GetHeight())) {}
    Pixel* begin() const { return first_; }
    Pixel* end() const { return first_ + size_; }
    std::size_t size() const { return size_; }

private:
    Pixel* first_;
    std::size_t size_;
};

}  // namespace Radiograph

#endif
