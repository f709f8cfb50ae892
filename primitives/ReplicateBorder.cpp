// The border copy: rows are copied with their borders, and rows beyond the source repeat its first or last.
#include "primitives/ReplicateBorder.h"

#include "primitives/ForEachRow.h"

namespace ZPA {
namespace {

template <typename T>
Status CopyRows(T const* source, std::ptrdiff_t sourceStep, Size sourceSize, T* destination,
                std::ptrdiff_t destinationStep, Size destinationSize, int top, int left) noexcept {
    if (!source || !destination) return kNullPointer;
    if (sourceSize.width < 1 || sourceSize.height < 1) return kBadSize;
    std::int64_t const right = std::int64_t{destinationSize.width} - sourceSize.width - left;
    std::int64_t const bottom = std::int64_t{destinationSize.height} - sourceSize.height - top;
    if (left < 0 || right < 0 || top < 0 || bottom < 0) return kBadSize;

    Rows<T const> const from{source, sourceStep};
    Rows<T> const to{destination, destinationStep};
    ForEachRow(destinationSize.height, std::int64_t{2} * destinationSize.width * std::int64_t{sizeof(T)},
               [&](int y) noexcept {
                   int const row = std::clamp(y - top, 0, sourceSize.height - 1);
                   CopyWithinBorder(from[row], sourceSize.width, left, static_cast<std::ptrdiff_t>(right),
                                    to[y]);
               });
    return kDone;
}

}  // namespace

#define ZPA_COPY(suffix, T)                                                                                 \
    Status ippiCopyReplicateBorder_##suffix##_C1R(                                                          \
        T const* source, std::ptrdiff_t sourceStep, Size sourceSize, T* destination,                        \
        std::ptrdiff_t destinationStep, Size destinationSize, int top, int left) noexcept {                 \
        return CopyRows(source, sourceStep, sourceSize, destination, destinationStep, destinationSize, top, \
                        left);                                                                              \
    }
ZPA_COPY(8u, std::uint8_t)
ZPA_COPY(16u, std::uint16_t)
#undef ZPA_COPY

}  // namespace ZPA
