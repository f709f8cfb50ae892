// subsample: every so-manieth pixel of a 16-bit image.
#include <Basics/BlockAverage.h>

#include <algorithm>

#include "primitives/SampleRow.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"
#include "Source/Internal/Memory.h"

namespace ZPA {
namespace {

bool IsNarrow(ImageAttributes const& image) { return SizeOfTypeCode(image.type) == 1; }

// The 16-bit units in the memory that an image describes, whatever its elements. Without a type it has them.
std::uint64_t UnitsDescribed(ImageAttributes image) {
    if (image.stride == 0) image.stride = image.width;
    auto const size = static_cast<std::uint64_t>(SizeOfTypeCode(image.type));
    std::uint64_t const elements = ElementsDescribed(image);
    return size == 1 ? elements / 2 : size == 0 ? elements : elements * (size / 2);
}

std::int64_t Pixels(ImageAttributes const& image) {
    return std::int64_t{std::max(image.width, 0)} * std::max(image.height, 0);
}

}  // namespace

SOLVANE_RETURNCODE subsample(ImageAttributes const* source, ImageAttributes* destination, int factor,
                             int rowOffset, int columnOffset) {
    return Guarded(L"ZPA::subsample", [&] {
        if (!source || !destination) return Fail(SOLVANE_NULL_POINTER, L"subsample(): Null pointer(s).");
        ImageAttributes input = *source;
        if (!input.buffer || input.width <= 0 || input.height <= 0)
            return Fail(SOLVANE_INVALID_ARGUMENT, L"subsample(): Invalid source image.");
        if (factor <= 0 || factor >= input.width || factor >= input.height)
            return Fail(SOLVANE_OUT_OF_RANGE, L"subsample(): Invalid subsample factor.");
        if (rowOffset < 0 || rowOffset >= factor || columnOffset < 0 || columnOffset >= factor)
            return Fail(SOLVANE_OUT_OF_RANGE, L"subsample(): Invalid row or col offset(s).");
        if (input.stride == 0) input.stride = input.width;

        auto const spacing =
            static_cast<std::uint32_t>(input.pixelspacing) * static_cast<std::uint32_t>(factor);
        ImageAttributes output(eUInt16, destination->buffer, input.width / factor, input.height / factor,
                               input.width / factor, input.bitsperpixel, static_cast<int>(spacing));
        if (output.buffer && Pixels(*destination) < Pixels(output))
            return Fail(SOLVANE_OUT_OF_RANGE, L"subsample(): Destination buffer too small.");
        // Of the last sample.
        std::int64_t const row = rowOffset + (std::int64_t{output.height} - 1) * factor;
        std::ptrdiff_t const column = columnOffset + (std::ptrdiff_t{output.width} - 1) * factor;
        std::uint64_t const units = UnitsDescribed(input);
        if (units <= static_cast<std::uint64_t>(row * input.stride + column)) {
            if (IsNarrow(input))
                return Fail(SOLVANE_UNSUPPORTED_TYPE,
                            L"subsample(): The source image is not a 16-bit image.");
            return Fail(SOLVANE_SIZE_MISMATCH, L"subsample(): The source image's rows overlap.");
        }
        if (output.buffer && UnitsDescribed(*destination) < static_cast<std::uint64_t>(Pixels(output))) {
            if (IsNarrow(*destination))
                return Fail(SOLVANE_SIZE_MISMATCH,
                            L"subsample(): The destination image is not a 16-bit image.");
            return Fail(SOLVANE_SIZE_MISMATCH, L"subsample(): The destination image's rows overlap.");
        }

        if (!output.buffer) {
            auto const pixels = static_cast<std::uint64_t>(Pixels(output));
            output.buffer = AllocateElements<unsigned short>(pixels);
            if (!output.buffer) return FailMemory(L"subsample()", BlockBytes(pixels, sizeof(unsigned short)));
        }
        ImageView<unsigned short const> const from(input);
        ImageView<unsigned short> const to(output);
        // SampleRow may read up to where another sample would begin: where that is beyond the memory, the last one
        // is taken alone.
        std::ptrdiff_t const last = to.Width() - 1;
        bool const isTight = units < static_cast<std::uint64_t>(row * input.stride + to.Width() * factor);
        for (std::ptrdiff_t y = 0; y < to.Height(); ++y) {
            unsigned short const* const samples = from.Row(rowOffset + y * factor);
            SampleRow(samples, factor, columnOffset, to.Row(y), isTight ? last : last + 1);
            if (isTight) to.Row(y)[last] = samples[column];
        }
        *destination = output;
        return SOLVANE_OK;
    });
}

}  // namespace ZPA
