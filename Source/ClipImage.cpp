// ClipImage: pixels kept between two limits.
#include <Basics/PixelOperations.h>

#include "primitives/Rows.h"
#include "Source/Internal/Frame.h"

namespace ZPA {
namespace {

bool HasSixteenBits(int value) { return value >= INT16_MIN && value <= INT16_MAX; }

}  // namespace

void ClipImage(short* pixels, int count, int low, int high) {
    (void)Guarded(L"ZPA::ClipImage", [&] {
        if (!pixels) return SOLVANE_OK;
        auto const lowPixel = static_cast<short>(low);
        auto const highPixel = static_cast<short>(high);
        if (HasSixteenBits(low) && HasSixteenBits(high)) {
            ClipRow(pixels, count, lowPixel, highPixel);
        } else {
            // A limit that no pixel can have still compares whole, and is cut to 16 bits when it is stored.
            for (std::ptrdiff_t i = 0; i < count; ++i)
                pixels[i] = pixels[i] < low ? lowPixel : pixels[i] > high ? highPixel : pixels[i];
        }
        return SOLVANE_OK;
    });
}

}  // namespace ZPA
