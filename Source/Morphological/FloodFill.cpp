// FloodFill: a connected region in another value.
#include <Basics/Regions.h>

#include "primitives/FloodFill.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"
#include "Source/Internal/Memory.h"
#include "Source/Morphological/FillBuffer.h"

namespace ZPA {
namespace {

SOLVANE_RETURNCODE Report(Status status) {
    if (status == kDone) return SOLVANE_OK;
    return Fail(SOLVANE_OPERATION_FAILED, L"ippiFloodFill_nCon failed. code %d", int{status});
}

// The types without a primitive get as far as the working buffer.
SOLVANE_RETURNCODE FillNothing(ImageAttributes const& image) {
    FillBuffer buffer;
    SOLVANE_RETURNCODE const code = buffer.Allocate(image);
    return code == SOLVANE_OK ? Report(kNoPrimitive) : code;
}

}  // namespace

SOLVANE_RETURNCODE FillBuffer::Allocate(ImageAttributes const& image) {
    std::uint64_t bytes = 0;
    Status const status = ippiFloodFillGetSize({image.width, image.height}, &bytes);
    if (status != kDone)
        return Fail(SOLVANE_OPERATION_FAILED, L"ippiFloodFillGetSize failed. code %d", int{status});
    memory_.reset(AllocateElements<unsigned char>(bytes));
    return memory_ ? SOLVANE_OK : FailMemory(L"template_FloodFill", bytes);
}

template <typename T>
SOLVANE_RETURNCODE template_FloodFill(ImageAttributes image, int seedX, int seedY, T newValue,
                                      int connectivity) {
    FillBuffer buffer;
    SOLVANE_RETURNCODE const code = buffer.Allocate(image);
    if (code != SOLVANE_OK) return code;
    Size const size{image.width, image.height};
    Status const status = CheckSeed(image.buffer, size, seedX, seedY, buffer.Get());
    if (status != kDone) return Report(status);
    if (RowsOverlap(image)) return Fail(SOLVANE_SIZE_MISMATCH, L"The image's rows overlap.");
    if (ElementsTooNarrow<T>(image))
        return Fail(SOLVANE_SIZE_MISMATCH, L"The image's elements are too narrow.");
    std::ptrdiff_t const step = std::ptrdiff_t{image.stride} * static_cast<std::ptrdiff_t>(sizeof(T));
    auto* const pixels = static_cast<T*>(image.buffer);
    return Report(connectivity == 4
                      ? ippiFloodFill_4Con(pixels, step, size, seedX, seedY, newValue, buffer.Get())
                      : ippiFloodFill_8Con(pixels, step, size, seedX, seedY, newValue, buffer.Get()));
}

template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_FloodFill(ImageAttributes, int, int, unsigned char,
                                                                int);
template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_FloodFill(ImageAttributes, int, int, unsigned short,
                                                                int);

SOLVANE_RETURNCODE FloodFill(ImageAttributes image, int seedX, int seedY, int newValue, int connectivity) {
    return Guarded(L"ZPA::FloodFill", [&] {
        auto const fill = [&](auto element) {
            using T = typename decltype(element)::type;
            return template_FloodFill(image, seedX, seedY, static_cast<T>(newValue), connectivity);
        };
        auto const fillNothing = [&](auto) { return FillNothing(image); };
        return Dispatch<unsigned char, unsigned short>(image.type, fill, [&] {
            return Dispatch<unsigned int, int, float, short, signed char, double>(
                image.type, fillNothing,
                [] { return Fail(SOLVANE_UNSUPPORTED_TYPE, L"Unsupported image datatype."); });
        });
    });
}

}  // namespace ZPA
