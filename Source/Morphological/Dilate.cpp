// Dilate: the largest pixel of a neighbourhood.
#include <Basics/Morphology.h>

#include "Source/Morphological/MorphologyCore.h"

namespace ZPA {
namespace {

struct Dilation {
    static constexpr auto kCore = L"template_Dilate()";
    static constexpr auto kFailure = L"ippiDilate failed. code %d";

    // The log names this file for all failures of the operation.
    static Message Located(wchar_t const* text) { return text; }

    template <typename... Rest> static Status WithSurroundings(std::uint8_t const* source, Rest... rest) {
        return ippiDilate_8u_C1R(source, rest...);
    }
    template <typename... Rest> static Status WithSurroundings(std::uint16_t const* source, Rest... rest) {
        return ippiDilate_16u_C1R(source, rest...);
    }
    template <typename... All> static Status WithinBorder(All... all) { return DilateWithinBorder(all...); }
};

}  // namespace

SOLVANE_RETURNCODE Dilate(ImageAttributes src, ImageAttributes* dst, ImageAttributes se, int anchorX,
                          int anchorY) {
    return Guarded(L"ZPA::Dilate", [&] { return Morph<Dilation>(src, dst, se, anchorX, anchorY); });
}

}  // namespace ZPA
