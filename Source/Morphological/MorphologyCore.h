// The core that dilation and erosion share: the order of their checks, the scratch, and the way to the
// primitives.
#ifndef ZPA_SOURCE_MORPHOLOGICAL_MORPHOLOGYCORE_H
#define ZPA_SOURCE_MORPHOLOGICAL_MORPHOLOGYCORE_H

#include <algorithm>
#include <climits>
#include <memory>
#include <vector>

#include "primitives/Morphology.h"
#include "primitives/ReplicateBorder.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"
#include "Source/Internal/Memory.h"

namespace ZPA {

inline Status CopyReplicateBorder(std::uint8_t const* source, std::ptrdiff_t sourceStep, Size sourceSize,
                                  std::uint8_t* destination, std::ptrdiff_t destinationStep,
                                  Size destinationSize, int top, int left) {
    return ippiCopyReplicateBorder_8u_C1R(source, sourceStep, sourceSize, destination, destinationStep,
                                          destinationSize, top, left);
}
inline Status CopyReplicateBorder(std::uint16_t const* source, std::ptrdiff_t sourceStep, Size sourceSize,
                                  std::uint16_t* destination, std::ptrdiff_t destinationStep,
                                  Size destinationSize, int top, int left) {
    return ippiCopyReplicateBorder_16u_C1R(source, sourceStep, sourceSize, destination, destinationStep,
                                           destinationSize, top, left);
}

// A structuring element as the primitives take it. One whose rows cannot be read is not looked at, and counts as
// a whole block until it is refused.
class PackedElement {
public:
    explicit PackedElement(ImageAttributes const& se)
        : elements(static_cast<std::uint8_t const*>(se.buffer)), size{se.width, se.height} {
        if (!se.buffer || se.width < 1 || se.height < 2 || se.stride == se.width) return;
        ImageView<std::uint8_t const> const view(se);
        copy_.assign(static_cast<std::size_t>(view.Width() * view.Height()), 1);
        elements = copy_.data();
        if (RowsUnreadable(se)) return;
        for (std::ptrdiff_t y = 0; y < view.Height(); ++y)
            std::copy_n(view.Row(y), view.Width(), copy_.data() + y * view.Width());
    }
    PackedElement(PackedElement const&) = delete;
    PackedElement& operator=(PackedElement const&) = delete;

    std::uint8_t const* elements;
    Size size;

private:
    std::vector<std::uint8_t> copy_;
};

// From the first pixel that rows of `width` pixels touch to the end of the last; the size is 1 or more.
template <typename T>
std::uint64_t BytesTouched(ImageAttributes const& image, std::int64_t width, std::int64_t height) {
    return static_cast<std::uint64_t>((height - 1) * image.stride + width) * sizeof(T);
}

// True if no pixel of the source is in the memory that is written.
template <typename T> bool LieApart(ImageAttributes const& source, ImageAttributes const& destination) {
    auto const from = reinterpret_cast<std::uintptr_t>(source.buffer);
    auto const to = reinterpret_cast<std::uintptr_t>(destination.buffer);
    std::uint64_t const read = BytesTouched<T>(source, source.width, source.height);
    std::uint64_t const written = BytesTouched<T>(destination, source.width, source.height);
    return from < to ? to - from >= read : from - to >= written;
}

// Refuses what cannot be read or written row by row, of images and elements with pixels.
template <typename T, typename Operation>
SOLVANE_RETURNCODE RefuseShapes(ImageAttributes const& source, ImageAttributes destination,
                                ImageAttributes const& se) {
    auto const refuse = [](wchar_t const* text) {
        return Fail(SOLVANE_SIZE_MISMATCH, Operation::Located(text));
    };
    if (RowsUnreadable(source)) return refuse(L"The source image's rows overlap.");
    if (RowsUnreadable(se)) return refuse(L"The structuring element's rows overlap.");

    bool const inPlace = destination.buffer == source.buffer;
    auto const elementSize = static_cast<std::size_t>(SizeOfTypeCode(destination.type));
    if (!inPlace && elementSize < sizeof(T))
        return refuse(L"The destination image's elements are narrower than the source's.");
    // In place the destination's own size is not looked at, and may be any.
    std::uint64_t const described = std::max(BlockBytes(ElementsDescribed(source), sizeof(T)),
                                             BlockBytes(ElementsDescribed(destination), elementSize));
    destination.width = source.width;
    destination.height = source.height;
    if (RowsOverlap(destination)) return refuse(L"The destination image's rows overlap.");
    if (inPlace && BytesTouched<T>(destination, source.width, source.height) > described)
        return refuse(L"The destination image's rows lead out of its memory.");
    return SOLVANE_OK;
}

template <typename Operation> SOLVANE_RETURNCODE ReportCopy(Status status) {
    if (status == kDone) return SOLVANE_OK;
    return Fail(SOLVANE_OPERATION_FAILED, Operation::Located(L"ippiCopyReplicateBorder failed. code %d"),
                int{status});
}

template <typename Operation> SOLVANE_RETURNCODE Report(Status status) {
    if (status == kDone) return SOLVANE_OK;
    return Fail(SOLVANE_OPERATION_FAILED, Operation::Located(Operation::kFailure), int{status});
}

// The checks of the two steps, border copy and primitive, and then the steps.
template <typename T, typename Operation>
SOLVANE_RETURNCODE CopyAndMorph(ImageAttributes const& source, ImageAttributes const& destination,
                                ImageAttributes const& se, int anchorX, int anchorY, int border,
                                Size bordered, T* scratch) {
    constexpr auto kBytes = static_cast<std::ptrdiff_t>(sizeof(T));
    ImageView<T const> const from(source);
    ImageView<T> const to(destination);
    Size const size{source.width, source.height};
    std::ptrdiff_t const scratchStep = bordered.width * kBytes;

    auto const copy = [&] {
        return ReportCopy<Operation>(CopyReplicateBorder(from.Row(0), from.Stride() * kBytes, size, scratch,
                                                         scratchStep, bordered, border, border));
    };
    // The border copy refuses these, and reads nothing.
    if (!source.buffer || size.width < 1 || size.height < 1 || border < 0) return copy();
    PackedElement const element(se);
    SOLVANE_RETURNCODE code = Report<Operation>(CheckMask(element.elements, element.size, anchorX, anchorY));
    if (code == SOLVANE_OK) code = RefuseShapes<T, Operation>(source, destination, se);
    if (code != SOLVANE_OK) return code;

    bool const inPlace = source.buffer == destination.buffer && source.stride == destination.stride;
    // Both steps at once where that gives the same: each row within its border is gone from the cache otherwise
    // by the time that it is read.
    if (inPlace || LieApart<T>(source, destination))
        return Report<Operation>(Operation::WithinBorder(from.Row(0), from.Stride() * kBytes, to.Row(0),
                                                         to.Stride() * kBytes, size, element.elements,
                                                         element.size, anchorX, anchorY, scratch));
    code = copy();
    if (code != SOLVANE_OK) return code;
    T const* const inner = scratch + std::ptrdiff_t{border} * bordered.width + border;
    return Report<Operation>(Operation::WithSurroundings(inner, scratchStep, to.Row(0), to.Stride() * kBytes,
                                                         size, element.elements, element.size, anchorX,
                                                         anchorY));
}

template <typename T, typename Operation>
SOLVANE_RETURNCODE MorphTyped(ImageAttributes const& source, ImageAttributes const& destination,
                              ImageAttributes const& se, int anchorX, int anchorY) {
    std::int64_t const border = std::max(se.width, se.height);
    std::int64_t const width = source.width + 2 * border;
    std::int64_t const height = source.height + 2 * border;
    std::uint64_t count = kNoSize;
    if (width < 1 || height < 1)
        count = 0;  // refused by the border copy
    else if (width <= INT_MAX && height <= INT_MAX)
        count = BlockBytes(static_cast<std::uint64_t>(width * height), sizeof(T));
    std::unique_ptr<T[]> const scratch(AllocateElements<T>(count));
    if (!scratch) return FailMemory(Operation::Located(Operation::kCore), count);

    if constexpr (std::is_same_v<T, std::uint8_t> || std::is_same_v<T, std::uint16_t>) {
        Size const bordered{static_cast<int>(width), static_cast<int>(height)};
        return CopyAndMorph<T, Operation>(source, destination, se, anchorX, anchorY, static_cast<int>(border),
                                          bordered, scratch.get());
    } else {
        return ReportCopy<Operation>(kNoPrimitive);
    }
}

// The whole operation but for its frame.
template <typename Operation>
SOLVANE_RETURNCODE Morph(ImageAttributes const& source, ImageAttributes* destination,
                         ImageAttributes const& se, int anchorX, int anchorY) {
    if (se.type != eByte)
        return Fail(SOLVANE_INVALID_ARGUMENT,
                    Operation::Located(L"Structuring element must be eByte datatype."));
    if (destination && destination->buffer != source.buffer &&
        ValidateImageBuffer(source, destination) != SOLVANE_OK)
        return Fail(SOLVANE_OPERATION_FAILED, Operation::Located(L"Failed to ValidateImageBuffer."));

    auto const core = [&](auto element) {
        return MorphTyped<typename decltype(element)::type, Operation>(
            source, destination ? *destination : source, se, anchorX, anchorY);
    };
    return Dispatch<std::uint32_t, std::int32_t, float, std::uint16_t, std::int16_t, std::uint8_t,
                    std::int8_t, double>(source.type, core, [] {
        return Fail(SOLVANE_UNSUPPORTED_TYPE, Operation::Located(L"Unsupported image datatype."));
    });
}

}  // namespace ZPA

#endif
