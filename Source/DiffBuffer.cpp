// DiffBuffer: differences of neighbours in a buffer.
#include <Basics/PixelOperations.h>

#include <type_traits>

#include "primitives/Rows.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"

namespace ZPA {

SOLVANE_RETURNCODE DiffBuffer(BufferAttributes source, BufferAttributes* output) {
    return Guarded(L"ZPA::DiffBuffer", [&] {
        if (!output) return Fail(SOLVANE_NULL_POINTER, L"The output buffer pointer was NULL.");
        if (source.size != output->size || source.type != output->type)
            return Fail(SOLVANE_SIZE_MISMATCH,
                        L"The output and input images must be of the same type and type");

        auto const subtract = [&](auto element) {
            using T = typename decltype(element)::type;
            using Bits = std::make_unsigned_t<T>;  // differences wrap around
            if (!source.buffer || !output->buffer)
                return Fail(SOLVANE_NULL_POINTER, L"The input or output buffer had a NULL pointer.");
            auto const* const from = static_cast<Bits const*>(source.buffer);
            auto* const to = static_cast<Bits*>(output->buffer);
            std::ptrdiff_t const last = std::ptrdiff_t{source.size} - 1;
            // An output that begins inside the source feeds what was written back into what is read.
            bool const feedsBack = to > from && to - from <= last;
            if (feedsBack)
                for (std::ptrdiff_t i = 0; i < last; ++i) to[i] = static_cast<Bits>(from[i + 1] - to[i]);
            else
                SubtractFrom(from + 1, to, last);
            if (last >= 0) to[last] = 0;
            return SOLVANE_OK;
        };
        return Dispatch<unsigned char, short, int>(source.type, subtract, [] {
            return Fail(SOLVANE_SIZE_MISMATCH, L"Buffer type 16bit unsupported");
        });
    });
}

}  // namespace ZPA
