// copyImage and copyBuffer: deep copies into fresh memory, padding included.
#include <Basics/PixelOperations.h>

#include <cstring>

#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"
#include "Source/Internal/Memory.h"

namespace ZPA {

template <typename T>
SOLVANE_RETURNCODE template_copy(ImageAttributes source, ImageAttributes* destination) try {
    if (!source.buffer || !destination || destination->buffer)
        return Fail(SOLVANE_NULL_POINTER, L"template_copy(): Null pointer.");
    if (RowsUnreadable(source))
        return Fail(SOLVANE_SIZE_MISMATCH, L"template_copy(): The rows of the source overlap.");
    if (SizeOfTypeCode(source.type) != static_cast<int>(sizeof(T)))  // the copy has the source's type, too
        return Fail(SOLVANE_SIZE_MISMATCH, L"template_copy(): The elements of the source have another size.");

    // stride * height, and where the stride is narrower than the width the rest of the last row: the copy has
    // the source's descriptor, and must hold all that it describes.
    std::uint64_t const elements = ElementsSpanned(source.width, source.height, source.stride);
    T* const copy = AllocateElements<T>(elements);
    if (!copy) return Fail(SOLVANE_OUT_OF_MEMORY, L"template_copy(): Null pointer.");
    std::memcpy(copy, source.buffer, static_cast<std::size_t>(elements) * sizeof(T));
    *destination = source;
    destination->buffer = copy;
    return SOLVANE_OK;
} catch (...) {
    return Fail(SOLVANE_UNEXPECTED, L"template_copy(): Unexpected exception.");
}

template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_copy<unsigned char>(ImageAttributes, ImageAttributes*);
template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_copy<unsigned short>(ImageAttributes, ImageAttributes*);
template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_copy<double>(ImageAttributes, ImageAttributes*);

namespace {

SOLVANE_RETURNCODE RefuseInSilence() { return SOLVANE_UNSUPPORTED_TYPE; }

// Whatever `copy` does not succeed in, the memory that the caller left in the destination is freed.
template <typename Attributes, typename Copy>
SOLVANE_RETURNCODE CopyOrFree(wchar_t const* name, Attributes* destination, Copy const& copy) {
    SOLVANE_RETURNCODE const code = Guarded(name, copy);
    if (code != SOLVANE_OK && destination && destination->buffer) {
        FreePixels(destination->buffer);
        destination->buffer = nullptr;
    }
    return code;
}

}  // namespace

SOLVANE_RETURNCODE copyImage(ImageAttributes source, ImageAttributes* destination) {
    return CopyOrFree(L"ZPA::copyImage", destination, [&] {
        auto const copy = [&](auto element) {
            return template_copy<typename decltype(element)::type>(source, destination);
        };
        return Dispatch<unsigned char, unsigned short, double>(source.type, copy, RefuseInSilence);
    });
}

SOLVANE_RETURNCODE copyBuffer(BufferAttributes source, BufferAttributes* destination) {
    return CopyOrFree(L"ZPA::copyBuffer", destination, [&] {
        auto const copy = [&](auto element) {
            using T = typename decltype(element)::type;
            ImageAttributes const row(source.type, source.buffer, source.size, 1, source.size, 0, 0);
            ImageAttributes made;
            if (destination) made.buffer = destination->buffer;
            SOLVANE_RETURNCODE const code = template_copy<T>(row, destination ? &made : nullptr);
            if (code == SOLVANE_OK) *destination = BufferAttributes(source.type, made.buffer, source.size);
            return code;
        };
        return Dispatch<unsigned short>(source.type, copy, RefuseInSilence);
    });
}

}  // namespace ZPA
