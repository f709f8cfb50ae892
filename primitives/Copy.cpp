// Copies of a region of pixels. The C library's copy of a row is as fast as memory. It is the one for rows that
// may share memory, since images are what callers make of them, and costs nothing more.
#include "primitives/Copy.h"

#include <algorithm>
#include <cstring>

#include "primitives/ForEachRow.h"

namespace ZPA {
namespace {

// Regions without gaps are copied in blocks of this size, whatever their rows: large enough for the copy's
// best speed, small enough to be shared among threads.
constexpr std::int64_t kBlock = 1 << 16;

Status CopyRows(void const* source, std::ptrdiff_t sourceStep, void* destination,
                std::ptrdiff_t destinationStep, Size size, std::int64_t elementSize) noexcept {
    if (!source || !destination) return kNullPointer;
    if (size.width < 1 || size.height < 1) return kBadSize;
    Rows<unsigned char const> const from{static_cast<unsigned char const*>(source), sourceStep};
    Rows<unsigned char> const to{static_cast<unsigned char*>(destination), destinationStep};
    std::int64_t const rowSize = size.width * elementSize;

    bool const withoutGaps = sourceStep == rowSize && destinationStep == rowSize;
    if (!withoutGaps) {
        ForEachRow(size.height, rowSize,
                   [&](int y) noexcept { std::memmove(to[y], from[y], static_cast<std::size_t>(rowSize)); });
        return kDone;
    }
    std::int64_t const bytes = rowSize * size.height;
    auto const blocks = static_cast<int>((bytes + kBlock - 1) / kBlock);
    ForEachRow(blocks, std::min(bytes, kBlock), [&](int block) noexcept {
        std::int64_t const start = block * kBlock;
        std::memmove(to.first + start, from.first + start,
                     static_cast<std::size_t>(std::min(bytes - start, kBlock)));
    });
    return kDone;
}

}  // namespace

#define ZPA_COPY(suffix, Element)                                                                          \
    Status ippiCopy_##suffix##_C1R(Element const* source, std::ptrdiff_t sourceStep, Element* destination, \
                                   std::ptrdiff_t destinationStep, Size size) noexcept {                   \
        return CopyRows(source, sourceStep, destination, destinationStep, size,                            \
                        std::int64_t{sizeof(Element)});                                                    \
    }
ZPA_COPY(8u, std::uint8_t)
ZPA_COPY(16s, std::int16_t)
ZPA_COPY(16u, std::uint16_t)
ZPA_COPY(32s, std::int32_t)
ZPA_COPY(32f, float)
#undef ZPA_COPY

}  // namespace ZPA
