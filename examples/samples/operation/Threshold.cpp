// [sample]
// Threshold: a mask of the pixels that are bright enough.
#include "examples/samples/operation/Threshold.h"

#include "examples/samples/operation/ThresholdRow.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"
#include "Source/Internal/OutputImage.h"

namespace ZPA {

SOLVANE_RETURNCODE Threshold(ImageAttributes image, int limit, ImageAttributes* output) {
    return Guarded(L"ZPA::Threshold", [&] {
        if (!image.buffer || !output) return Fail(SOLVANE_NULL_POINTER, L"Threshold(): Null pointer.");

        auto const mark = [&](auto element) {
            using T = typename decltype(element)::type;
            OutputImage<unsigned char> made(output, image.width, image.height, 8, image.pixelspacing);
            if (output->type != eByte || output->width != image.width || output->height != image.height)
                return Fail(SOLVANE_SIZE_MISMATCH,
                            L"Threshold(): The output image has another type or size.");
            if (RowsUnreadable(image) || RowsOverlap(*output))
                return Fail(SOLVANE_SIZE_MISMATCH, L"Threshold(): Rows overlap.");

            ForEachRowPair(ImageView<T const>(image), ImageView<unsigned char>(*output),
                           [limit](T const* pixels, unsigned char* marks, std::ptrdiff_t count) {
                               ThresholdRow(pixels, marks, count, limit);
                           });
            return made.Finish(SOLVANE_OK);
        };
        return Dispatch<unsigned char, unsigned short>(image.type, mark, [] {
            return Fail(SOLVANE_UNSUPPORTED_TYPE, L"Threshold(): The image type is not supported.");
        });
    });
}

}  // namespace ZPA
// [sample]
