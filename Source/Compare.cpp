// compare: whether two images show the same pixels.
#include <Basics/PixelOperations.h>

#include <cstring>

#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"

namespace ZPA {

template <typename T> SOLVANE_RETURNCODE template_compare(ImageAttributes first, ImageAttributes second) {
    if (!first.buffer || !second.buffer)
        return Fail(SOLVANE_NULL_POINTER, L"template_compare(): Null pointer.");
    if (first.width != second.width || first.height != second.height) return SOLVANE_INVALID_ARGUMENT;
    if (RowsUnreadable(first) || RowsUnreadable(second))
        return Fail(SOLVANE_SIZE_MISMATCH, L"template_compare(): The rows of an image overlap.");
    if (ElementsTooNarrow<T>(first) || ElementsTooNarrow<T>(second))
        return Fail(SOLVANE_SIZE_MISMATCH, L"template_compare(): The elements of an image are too narrow.");
    if (first.width < 1) return SOLVANE_OK;

    ImageView<T const> const a(first);
    ImageView<T const> const b(second);
    auto const same = [](T const* p, T const* q, std::ptrdiff_t count) {
        return std::memcmp(p, q, static_cast<std::size_t>(count) * sizeof(T)) == 0;
    };
    if (a.IsContiguous() && b.IsContiguous())
        return a.Height() < 1 || same(a.Row(0), b.Row(0), a.Width() * a.Height()) ? SOLVANE_OK
                                                                                  : SOLVANE_OPERATION_FAILED;
    for (std::ptrdiff_t y = 0; y < a.Height(); ++y)
        if (!same(a.Row(y), b.Row(y), a.Width())) return SOLVANE_OPERATION_FAILED;
    return SOLVANE_OK;
}

template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_compare<unsigned short>(ImageAttributes,
                                                                              ImageAttributes);

SOLVANE_RETURNCODE compare(ImageAttributes first, ImageAttributes second) {
    return Guarded(L"ZPA::compare", [&] {
        if (first.type != eUInt16 || second.type != eUInt16) return SOLVANE_UNSUPPORTED_TYPE;
        return template_compare<unsigned short>(first, second);
    });
}

}  // namespace ZPA
