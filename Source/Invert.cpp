// InvertGray and InvertMaskImage: grey values turned round, and binary masks negated.
#include <Basics/Statistics.h>

#include "primitives/InvertRow.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/Region.h"

namespace ZPA {
namespace {

constexpr auto kDiffer = L"The output and input images must be of the same type and type";

// What the two share: the checks, and the walk over the region. `invert` takes a row of the input, its mask,
// the number of pixels, and the row of the output.
template <typename InvertRow>
SOLVANE_RETURNCODE Invert(ImageAttributes const& image, Rectangle const* roi, ImageAttributes const* mask,
                          APOINT const* maskOrigin, ImageAttributes const* output,
                          SOLVANE_RETURNCODE maskTypeCode, InvertRow const& invert) {
    if (!output) return Fail(SOLVANE_NULL_POINTER, L"Ouput pointer is null");
    if (output->type != image.type ||
        std::int64_t{output->height} * output->stride != std::int64_t{image.height} * image.stride)
        return Fail(SOLVANE_SIZE_MISMATCH, kDiffer);
    if (mask && mask->type != eByte) return Fail(maskTypeCode, L"The mask must be of type eByte.");

    auto const invertPixels = [&](auto element) {
        using T = typename decltype(element)::type;
        if (!image.buffer) return Fail(SOLVANE_NULL_POINTER, L"The input image had a NULL buffer pointer.");
        Region region;
        SOLVANE_RETURNCODE const code = region.Resolve(image, roi, mask, maskOrigin, kOfInput);
        if (code != SOLVANE_OK) return code;
        if (!output->buffer)
            return Fail(SOLVANE_NULL_POINTER, L"The output image had a NULL buffer pointer.");
        if (RowsOverlap(image) || !region.FitsInto(*output, image))
            return Fail(SOLVANE_SIZE_MISMATCH, kDiffer);

        // The output is written by the stride of the input.
        ImageView<T const> const pixels(image);
        auto const to = static_cast<T*>(output->buffer);
        region.ForEachRow(pixels, [&](T const* row, unsigned char const* maskRow, std::ptrdiff_t count) {
            invert(row, maskRow, count, to + (row - pixels.Row(0)));
        });
        return SOLVANE_OK;
    };
    return Dispatch<std::uint8_t, std::uint16_t>(image.type, invertPixels, [] {
        return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The input image must be of type eByte or eUInt16.");
    });
}

}  // namespace

SOLVANE_RETURNCODE InvertGray(ImageAttributes image, Rectangle const* roi, ImageAttributes const* mask,
                              APOINT const* maskOrigin, ImageAttributes* output) {
    return Guarded(L"ZPA::InvertGray", [&] {
        std::uint32_t const key = (std::uint32_t{1} << (image.bitsperpixel & 31)) - 1;
        return Invert(image, roi, mask, maskOrigin, output, SOLVANE_SIZE_MISMATCH,
                      [&](auto from, auto maskRow, std::ptrdiff_t count, auto to) {
                          using T = std::remove_pointer_t<decltype(to)>;
                          FlipBits(from, maskRow, count, static_cast<T>(key), to);
                      });
    });
}

SOLVANE_RETURNCODE InvertMaskImage(ImageAttributes image, Rectangle const* roi, ImageAttributes const* mask,
                                   APOINT const* maskOrigin, ImageAttributes* output) {
    return Guarded(L"ZPA::InvertMaskImage", [&] {
        return Invert(
            image, roi, mask, maskOrigin, output, SOLVANE_UNSUPPORTED_TYPE,
            [](auto from, auto maskRow, std::ptrdiff_t count, auto to) { Negate(from, maskRow, count, to); });
    });
}

}  // namespace ZPA
