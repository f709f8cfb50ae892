// LabelMarkers and LabelMarkers2: connected regions, numbered in place or into an image of their own.
#include <Basics/PixelOperations.h>
#include <Basics/Regions.h>

#include <limits>
#include <memory>

#include "primitives/LabelMarkers.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"
#include "Source/Internal/Memory.h"
#include "Source/Internal/OutputImage.h"
#include "Source/Internal/Overlap.h"

namespace ZPA {
namespace {

constexpr int kSmallestLabel = 1;
template <typename T> constexpr int kLargestLabel = std::numeric_limits<T>::max() - 1;

SOLVANE_RETURNCODE RefuseType() { return Fail(SOLVANE_UNSUPPORTED_TYPE, L"Unsupported image datatype."); }

// True if the copy would read what it has written. What it cannot read or write is left to it.
bool ShareReadableMemory(ImageAttributes const& mask, ImageAttributes const& labeled) {
    return mask.width > 0 && mask.height > 0 && !RowsUnreadable(mask) && !RowsOverlap(labeled) &&
           ShareMemory(mask, labeled);
}

SOLVANE_RETURNCODE LabelInto(ImageAttributes const& mask, int connectivity, int* pnLabels,
                             ImageAttributes* labeled) {
    if (!mask.buffer) return Fail(SOLVANE_NULL_POINTER, L"The input mask image had a NULL buffer pointer.");
    // The two types of the text are others than those of the check, which lets bytes alone pass.
    if (mask.type != eByte && mask.type != eInt16)
        return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The input mask image must be of type eByte or eUInt16.");
    if (!labeled) return Fail(SOLVANE_NULL_POINTER, L"The output labeled ImageAttributes pointer was NULL.");

    OutputImage<unsigned short> output(labeled, mask.width, mask.height, 16, mask.pixelspacing);
    if (labeled->width != mask.width || labeled->height != mask.height)
        return Fail(SOLVANE_SIZE_MISMATCH, L"The output labeled image was not the same size as the input.");
    if (labeled->type != eUInt16)
        return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The output labeled image must be of type eUInt16.");
    if (mask.buffer != labeled->buffer) {
        if (ShareReadableMemory(mask, *labeled))
            return Fail(SOLVANE_INVALID_ARGUMENT, L"The input mask and output labeled images share memory.");
        SOLVANE_RETURNCODE const code = CopyPixels(mask, labeled);
        if (code != SOLVANE_OK) return Fail(code, L"The call to CopyPixels() failed.");
    }
    // Callers get 0 whatever came of the labelling; only what was made for them depends on it.
    static_cast<void>(output.Finish(template_LabelMarkers<unsigned short>(*labeled, connectivity, pnLabels)));
    return SOLVANE_OK;
}

}  // namespace

template <typename T>
SOLVANE_RETURNCODE template_LabelMarkers(ImageAttributes image, int connectivity, int* pnLabels) {
    if (!image.buffer) return Fail(SOLVANE_NULL_POINTER, L"The input mask image had a NULL buffer pointer.");
    if (!pnLabels) return Fail(SOLVANE_NULL_POINTER, L"The pnLabels pointer was NULL.");
    Size const size{image.width, image.height};
    std::size_t bytes = 0;
    Status status = ippiLabelMarkersGetBufferSize(size, &bytes);
    if (status != kDone)
        return Fail(SOLVANE_OPERATION_FAILED, L"ippiLabelMarkersGetBufferSize<T> failed. code %d",
                    int{status});
    std::unique_ptr<unsigned char[]> const buffer(AllocateElements<unsigned char>(bytes));
    if (!buffer) return FailMemory(L"template_LabelMarkers", bytes);
    if (RowsOverlap(image)) return Fail(SOLVANE_SIZE_MISMATCH, L"The image's rows overlap.");
    if (ElementsTooNarrow<T>(image))
        return Fail(SOLVANE_SIZE_MISMATCH, L"The image's elements are too narrow.");

    std::ptrdiff_t const step = std::ptrdiff_t{image.stride} * static_cast<std::ptrdiff_t>(sizeof(T));
    status = ippiLabelMarkers(static_cast<T*>(image.buffer), step, size, kSmallestLabel, kLargestLabel<T>,
                              connectivity == 4 ? kL1Norm : kInfinityNorm, pnLabels, buffer.get());
    if (status != kDone)
        return Fail(SOLVANE_OPERATION_FAILED, L"ippiLabelMarkers<T> failed. code %d", int{status});
    if (*pnLabels > kLargestLabel<T>)
        return Warn(eLogRegions,
                    L"WARNING: Input image has %d regions. Only %ld allowed for this image data type.",
                    *pnLabels, long{kLargestLabel<T>});
    return SOLVANE_OK;
}

template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_LabelMarkers<unsigned char>(ImageAttributes, int, int*);
template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_LabelMarkers<unsigned short>(ImageAttributes, int,
                                                                                   int*);

SOLVANE_RETURNCODE LabelMarkers(ImageAttributes image, int connectivity, int* pnLabels) {
    return Guarded(L"ZPA::LabelMarkers", [&] {
        auto const label = [&](auto element) {
            return template_LabelMarkers<typename decltype(element)::type>(image, connectivity, pnLabels);
        };
        return Dispatch<unsigned char, unsigned short>(image.type, label, RefuseType);
    });
}

SOLVANE_RETURNCODE LabelMarkers2(ImageAttributes mask, int connectivity, int* pnLabels,
                                 ImageAttributes* labeled) {
    return Guarded(L"ZPA::LabelMarkers2", [&] {
        auto const label = [&](auto) { return LabelInto(mask, connectivity, pnLabels, labeled); };
        return Dispatch<unsigned char, unsigned short>(mask.type, label, RefuseType);
    });
}

}  // namespace ZPA
