// Erode: the smallest pixel of a neighbourhood.
#include <Basics/Morphology.h>

#include "Source/Morphological/MorphologyCore.h"

namespace ZPA {
namespace {

struct Erosion {
    static constexpr auto kCore = L"template_Erode()";
    static constexpr auto kFailure = L"ippiErode failed. code %d";

    // The log names this file for all failures of the operation.
    static Message Located(wchar_t const* text) { return text; }

    template <typename... Rest> static Status WithSurroundings(std::uint8_t const* source, Rest... rest) {
        return ippiErode_8u_C1R(source, rest...);
    }
    template <typename... Rest> static Status WithSurroundings(std::uint16_t const* source, Rest... rest) {
        return ippiErode_16u_C1R(source, rest...);
    }
    template <typename... All> static Status WithinBorder(All... all) { return ErodeWithinBorder(all...); }
};

}  // namespace

SOLVANE_RETURNCODE Erode(ImageAttributes src, ImageAttributes* dst, ImageAttributes se, int anchorX,
                         int anchorY) {
    return Guarded(L"ZPA::Erode", [&] { return Morph<Erosion>(src, dst, se, anchorX, anchorY); });
}

}  // namespace ZPA
