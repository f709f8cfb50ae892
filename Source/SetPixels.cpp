// SetPixels: one value for a rectangle, or for what a mask selects of it.
#include <Basics/PixelOperations.h>

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "primitives/Rows.h"
#include "Source/Internal/Convert.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/Region.h"

namespace ZPA {
namespace {

template <typename T> T ElementOf(double value) {
    if constexpr (std::is_integral_v<T>)
        return static_cast<T>(TruncateToInt32(value));
    else
        return static_cast<T>(value);
}

}  // namespace

SOLVANE_RETURNCODE SetPixels(Rectangle const* roi, ImageAttributes const* mask, APOINT const* maskOrigin,
                             int maskValue, double value, ImageAttributes destination) {
    return Guarded(L"ZPA::SetPixels", [&] {
        if (mask && mask->type != eByte)
            return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The mask must be of type eByte.");

        auto const set = [&](auto element) {
            using T = typename decltype(element)::type;
            if (!destination.buffer)
                return Fail(SOLVANE_NULL_POINTER, L"The destination image had a NULL buffer pointer.");
            if (mask && (mask->width != destination.width || mask->height != destination.height))
                return Fail(SOLVANE_NULL_POINTER, L"The destination image and mask were different sizes.");
            Region region;
            SOLVANE_RETURNCODE const code =
                region.Resolve(destination, roi, mask, maskOrigin, kOfDestination);
            if (code != SOLVANE_OK) return code;
            if (RowsOverlap(destination))
                return Fail(SOLVANE_SIZE_MISMATCH, L"The destination image's rows overlap.");

            T const pixel = ElementOf<T>(value);
            region.ForEachRow(ImageView<T>(destination),
                              [&](T* row, unsigned char const* maskRow, std::ptrdiff_t n) {
                                  if (maskRow)
                                      FillSelected(row, maskRow, n, pixel, maskValue);
                                  else
                                      std::fill_n(row, n, pixel);
                              });
            return SOLVANE_OK;
        };
        return Dispatch<std::uint8_t, std::uint16_t, float, double>(destination.type, set, [] {
            return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The destination image type is not supported.");
        });
    });
}

}  // namespace ZPA
