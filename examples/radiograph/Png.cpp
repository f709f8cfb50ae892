// All that this program wants of libpng.
#include "radiograph/Png.h"

#include <png.h>

#include "radiograph/Failure.h"

namespace Radiograph {

std::string EncodePng(Picture const& picture) {
    png_image header{};
    header.version = PNG_IMAGE_VERSION;
    header.width = static_cast<png_uint_32>(picture.width);
    header.height = static_cast<png_uint_32>(picture.height);
    header.format = picture.channels == 3 ? PNG_FORMAT_RGB : PNG_FORMAT_GRAY;
    header.flags = PNG_IMAGE_FLAG_FAST;

    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(header);
    std::string bytes(size, '\0');
    if (!png_image_write_to_memory(&header, bytes.data(), &size, 0, picture.samples.data(),
                                   picture.width * picture.channels, nullptr))
        throw Failure(std::string("cannot make a PNG picture: ") + header.message);
    bytes.resize(size);
    return bytes;
}

char const* PngVersion() { return png_get_libpng_ver(nullptr); }

}  // namespace Radiograph
