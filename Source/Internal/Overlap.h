// Whether two images share memory.
#ifndef ZPA_SOURCE_INTERNAL_OVERLAP_H
#define ZPA_SOURCE_INTERNAL_OVERLAP_H

#include <Basics/CoreTypes.h>

#include <functional>

#include "Source/Internal/ImageView.h"
#include "Source/Internal/Memory.h"

namespace ZPA {

// True if the blocks from the first to the last pixel have a byte in common. For images whose rows are
// readable.
inline bool ShareMemory(ImageAttributes const& a, ImageAttributes const& b) {
    auto const end = [](ImageAttributes const& image) {
        return static_cast<char const*>(image.buffer) +
               BlockBytes(ElementsDescribed(image), static_cast<std::size_t>(SizeOfTypeCode(image.type)));
    };
    std::less<void const*> const before;
    return before(a.buffer, end(b)) && before(b.buffer, end(a));
}

}  // namespace ZPA

#endif
