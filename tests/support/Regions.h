// The ways to choose pixels of an image that tests of regions go through.
#ifndef ZPA_TESTS_SUPPORT_REGIONS_H
#define ZPA_TESTS_SUPPORT_REGIONS_H

#include <climits>
#include <string>

#include "support/CapturedLog.h"
#include "support/Images.h"

namespace ZPA::Testing {

// A rectangle, a mask and its origin, each of which may be missing; the null pointers that operations take.
struct Choice {
    std::string name;
    Rectangle area;
    bool givesRectangle;
    bool masked;
    APOINT origin;
    bool givesOrigin;

    Rectangle const* Roi() const { return givesRectangle ? &area : nullptr; }
    APOINT const* Origin() const { return givesOrigin ? &origin : nullptr; }
    ImageAttributes const* Mask(ImageAttributes const& mask) const { return masked ? &mask : nullptr; }
    // Whether the mask, if there is one, selects the pixel (x, y) of the rectangle.
    template <typename Mask> bool Selects(TestImage<Mask> const& mask, int x, int y) const {
        return !masked || mask.At(origin.x + x, origin.y + y) != 0;
    }
    // Calls visit(x, y), from the image's corner, for the pixels that are chosen.
    template <typename Mask, typename Visit>
    void ForEach(TestImage<Mask> const& mask, Visit const& visit) const {
        for (int y = 0; y < area.height; ++y)
            for (int x = 0; x < area.width; ++x)
                if (Selects(mask, x, y)) visit(area.x + x, area.y + y);
    }
};
inline std::ostream& operator<<(std::ostream& out, Choice const& choice) { return out << choice.name; }

// What operations on regions say of those that they refuse.
inline constexpr auto kByteMask = L"The mask must be of type eByte.";
inline constexpr auto kNullImage = L"The input image had a NULL buffer pointer.";
inline constexpr auto kEmptyRegion = L"The rectangular ROI was empty.";
inline constexpr auto kOutsideImage = L"The rectangular ROI was out of bounds in the input image.";
inline constexpr auto kNullMask = L"The mask had a NULL buffer pointer.";
inline constexpr auto kOutsideMask = L"The rectangular ROI was out of bounds in the mask.";
inline constexpr auto kRowsOverlap = L"The image's rows overlap.";

// The whole image and an inner part, each with and without a mask of the shape that MaskShape gives. An origin without
// a mask counts for nothing.
inline std::vector<Choice> Choices(Shape shape) {
    int const left = shape.width / 4, top = shape.height / 3;
    Rectangle const whole(0, 0, shape.width, shape.height);
    Rectangle const inner(left, top, shape.width - left, shape.height - top);
    return {{"whole", whole, false, false, {}, false},
            {"inner", inner, true, false, {1, -1}, true},
            {"whole, masked", whole, false, true, {}, false},
            {"inner, masked from its corner", inner, true, true, {}, false},
            {"inner, masked", inner, true, true, {left / 2, top}, true}};
}
inline Shape MaskShape(Shape shape) { return {shape.width, shape.height, shape.stride}; }

// Arguments for an image of 4 x 3 pixels, and what may be wrong with them.
struct Region {
    Rectangle const* roi = nullptr;
    ImageAttributes const* mask = nullptr;
    APOINT const* origin = nullptr;
};
inline Rectangle const kInside(1, 1, 3, 2), kEmpty(0, 0, 0, 1), kNegative(0, -1, 2, 2), kWide(1, 0, 4, 1),
    kHuge(1, 1, INT_MAX, INT_MAX);
inline unsigned char maskPixels[12];
inline ImageAttributes const kMask(eByte, maskPixels, 4, 3, 4, 8, 0), kNoMask(eByte, nullptr, 4, 3, 4, 8, 0),
    kFloatMask(eSingle, maskPixels, 4, 3, 4, 32, 0), kBackwards(eByte, maskPixels, 4, 3, -4, 8, 0);
inline APOINT const kBefore(-1, 0), kBeyond(0, 2), kFarBeyond(0, INT_MAX);

// A call with regions that are refused, in the order of what is wrong with them. `maskFirst`: a mask without pixels is
// refused before anything else is looked at.
template <typename Call>
void ExpectRegionRefusals(Call const& call, wchar_t const* outside = kOutsideImage, bool maskFirst = false) {
    ImageAttributes const* const later = maskFirst ? &kMask : &kNoMask;
    EXPECT_REFUSAL(3, kEmptyRegion, call({&kEmpty, later, &kBeyond}));
    EXPECT_REFUSAL(3, outside, call({&kNegative, later, &kBeyond}));
    EXPECT_REFUSAL(3, outside, call({&kWide, later, &kBeyond}));
    EXPECT_REFUSAL(3, outside, call({&kHuge, later, &kBeyond}));
    EXPECT_REFUSAL(2, kNullMask, call({&kInside, &kNoMask, &kBeyond}));
    EXPECT_REFUSAL(3, kOutsideMask, call({&kInside, &kMask, &kBefore}));
    EXPECT_REFUSAL(3, kOutsideMask, call({&kInside, &kMask, &kBeyond}));
    EXPECT_REFUSAL(3, kOutsideMask, call({&kInside, &kMask, &kFarBeyond}));
    EXPECT_REFUSAL(7, L"The mask's rows overlap.", call({&kInside, &kBackwards}));
}

}  // namespace ZPA::Testing

#endif
