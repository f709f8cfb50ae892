// Reading, and finding out why it failed.
#include "radiograph/Input.h"

#include <Basics/RawFile.h>

#include <cstdint>
#include <filesystem>

#include "radiograph/Failure.h"
#include "radiograph/Library.h"

namespace Radiograph {
namespace {

// Other names and extensions leave the descriptor as it was or describe something else, and two negative
// numbers have a product like any other.
bool IsRadiograph(ZPA::ImageAttributes const& named) {
    return named.type == ZPA::eUInt16 && named.width > 0 && named.height > 0;
}

// The library has one message for all that can be wrong with a file; a person wants to know which it was.
std::string Explanation(std::string const& path, ZPA::ImageAttributes const& named) {
    namespace fs = std::filesystem;
    std::error_code error;
    auto const status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) return path + ": no such file";
    if (!fs::is_regular_file(status)) return path + ": not a file that can be read";
    if (!IsRadiograph(named)) return path + ": the name must tell the size, as NAME.WIDTH.HEIGHT.raw does";
    auto const size = fs::file_size(path, error);
    auto const needed = std::uint64_t{sizeof(Pixel)} * static_cast<std::uint64_t>(named.width) *
                        static_cast<std::uint64_t>(named.height);
    if (!error && size != needed)
        return path + ": has " + std::to_string(size) + " bytes, but " + std::to_string(named.width) +
               " by " + std::to_string(named.height) + " pixels of 16 bits take " + std::to_string(needed);
    return path + ": cannot be read";
}

}  // namespace

ImagePtr ReadRadiograph(std::string const& path) {
    ZPA::ImageAttributes attributes;
    attributes.bitsperpixel = 16;
    auto const code = ZPA::ReadRawFile(path.c_str(), &attributes);
    if (code != ZPA::SOLVANE_OK) Check(code, Explanation(path, attributes));
    if (!IsRadiograph(attributes)) {
        ZPA::FreePixels(attributes.buffer);
        throw Failure(Explanation(path, attributes));
    }
    return ImagePtr(new Image(attributes, true, false));
}

}  // namespace Radiograph
