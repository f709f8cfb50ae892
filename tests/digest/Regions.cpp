// Structuring elements, morphology, fills and labels.
#include <Basics/Morphology.h>
#include <Basics/Regions.h>
#include <Basics/StructuringElement.h>

#include "digest/Cases.h"

namespace ZPA::Testing {
namespace {

// Angles whose sines and cosines have no last bit to differ in.
void Elements(Digest& digest) {
    double const angles[] = {0, 90, 45};
    double const step[] = {1, 2};
    struct Shape {
        char const* name;
        int param1;
        StrelParam param2;
        int param3;
    };
    std::vector<Shape> const shapes = {
        {"square", 3, 0, 0},        {"rectangle", 4, 7, 0},     {"line", 9, &angles[0], 0},
        {"line", 9, &angles[1], 0}, {"line", 9, &angles[2], 0}, {"periodicline", 3, step, 0},
        {"disk", 1, 0, 1},          {"disk", 2, 0, 1},          {"disk", 3, 0, 0},
        {"disk", 4, 0, 0},          {"disk", 5, 0, 0},          {"disk", 5, 0, 1},
        {"disk", 6, 0, 0},          {"diamond", 5, 5, 0},       {"octagon", 5, 5, 0}};
    for (Shape const& shape : shapes) {
        int height = 0, width = 0;
        digest.Add(
            int{strel_GetBufferSize(shape.name, shape.param1, shape.param2, shape.param3, &height, &width)});
        digest.Add(height);
        digest.Add(width);
        if (height < 1 || width < 1) continue;
        TestImage<unsigned char> mask({width, height, width});
        double center[2] = {};
        digest.Add(
            int{strel(mask.Attributes(), center, shape.name, shape.param1, shape.param2, shape.param3)});
        AddImage(digest, mask);
        digest.Add(center, 2);
    }
}

template <typename T> void Morph(Digest& digest, ZPA::Testing::Shape shape) {
    auto image = Sample<T>(shape, 41);
    auto sparse = Patches<unsigned char>({9, 6, 11}, 42);
    TestImage<unsigned char> rectangle({13, 5, 13});
    std::fill_n(rectangle.Pixels(), rectangle.Size(), static_cast<unsigned char>(1));
    for (ImageAttributes const element : {sparse.Attributes(), rectangle.Attributes()})
        for (auto const operation : {Dilate, Erode, ImOpen, ImClose}) {
            AddResult<T>(digest, shape, [&](ImageAttributes* output) {
                return operation(image.Attributes(), output, element, 4, 2);
            });
        }
    for (auto const operation : {Dilate3x3, Erode3x3}) {
        AddResult<T>(digest, shape,
                     [&](ImageAttributes* output) { return operation(image.Attributes(), output, 3); });
    }
}

void Morphology(Digest& digest) {
    Morph<unsigned char>(digest, kSmall);
    Morph<unsigned short>(digest, kSmall);
    Morph<unsigned short>(digest, kLarge);
}

void Fills(Digest& digest) {
    ForTypes<unsigned char, unsigned short>([&](auto type) {
        using T = typename decltype(type)::type;
        for (int const connectivity : {4, 8}) {
            auto image = Patches<T>(kSmall, 43);
            for (int const x : {0, 50, 100, 130})
                digest.Add(int{FloodFill(image.Attributes(), x, x / 3, x + 7, connectivity)});
            AddImage(digest, image);
            auto holes = Patches<T>(kSmall, 44);
            digest.Add(int{FillHoles(holes.Attributes(), connectivity)});
            AddImage(digest, holes);
        }
    });
}

void Labels(Digest& digest) {
    for (int const connectivity : {4, 8}) {
        int count = 0;
        ForTypes<unsigned char, unsigned short>([&](auto type) {
            auto image = Patches<typename decltype(type)::type>(kSmall, 45);
            digest.Add(int{LabelMarkers(image.Attributes(), connectivity, &count)});
            digest.Add(count);
            AddImage(digest, image);
        });
        auto mask = Patches<unsigned char>(kLarge, 46);
        TestImage<unsigned short> labels(kLarge);
        digest.Add(int{LabelMarkers2(mask.Attributes(), connectivity, &count, labels.Into())});
        digest.Add(count);
        AddImage(digest, labels);
    }
}

}  // namespace

std::vector<Case> RegionCases() {
    return {{"strel, strel_GetBufferSize", Elements},
            {"Dilate, Erode, ImOpen, ImClose, Dilate3x3, Erode3x3", Morphology},
            {"FloodFill, FillHoles", Fills},
            {"LabelMarkers, LabelMarkers2", Labels}};
}

}  // namespace ZPA::Testing
