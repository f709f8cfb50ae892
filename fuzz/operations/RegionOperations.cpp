// Calls of structuring elements, morphology and connected regions.
#include <Basics/Morphology.h>
#include <Basics/Regions.h>
#include <Basics/StructuringElement.h>

#include "operations/Operations.h"

namespace ZPA::Fuzz {
namespace {

template <auto operation> void CallMorphology(Scene& scene) {
    ImageAttributes const source = scene.Image();
    ImageAttributes* const destination = scene.Output();
    ImageAttributes const element = scene.Element();
    int const x = scene.input.Number(0, 4);
    scene.Answer(operation(source, destination, element, x, scene.input.Number(0, 4)));
}

// The cost is in proportion to the iterations.
template <auto operation> void CallIterated(Scene& scene) {
    ImageAttributes const source = scene.Image();
    ImageAttributes* const destination = scene.Output();
    scene.Answer(operation(source, destination, std::min(scene.input.Number(0, 5), 50)));
}

template <typename T> void CallFloodFill(Scene& scene) {
    ImageAttributes const image = scene.Image();
    int const x = scene.input.Number(0, 69), y = scene.input.Number(0, 11);
    auto const value = static_cast<T>(scene.input.Byte());
    scene.Answer(template_FloodFill<T>(image, x, y, value, scene.input.Number(4, 8)));
}

template <typename T> void CallFloodBorder(Scene& scene) {
    ImageAttributes const image = scene.Image();
    auto const background = static_cast<T>(scene.input.Choice(3));
    auto const value = static_cast<T>(scene.input.Byte());
    scene.Answer(template_FloodBorderAreas<T>(image, background, value, scene.input.Number(4, 8)));
}

struct Shape {
    char const* name;
    int param1;
    StrelParam param2;
    int param3;
};

Shape ShapeOf(Scene& scene) {
    static constexpr char const* kShapes[] = {"square",  "rectangle", "line",    "periodicline", "disk",
                                              "diamond", "arbitrary", "octagon", "unknown",      ""};
    char const* const name = scene.input.OneOf(kShapes);
    Shape shape{scene.input.Seldom(64) ? nullptr : name, scene.input.Number(1, 9), 0,
                scene.input.Number(0, 2)};
    bool const isLine = std::strcmp(name, "line") == 0, isPeriodic = std::strcmp(name, "periodicline") == 0;
    if (isLine || isPeriodic) {
        auto* const numbers = scene.Elements<double>(isLine ? 1 : 2);
        if (numbers)
            for (int i = 0; i < (isLine ? 1 : 2); ++i) numbers[i] = scene.input.Real();
        shape.param2 = numbers;
        // The cost is in proportion to the count.
        if (isPeriodic) shape.param1 = std::min(shape.param1, 1000);
    } else {
        shape.param2 = scene.input.Number(1, 9);
    }
    return shape;
}

void CallStrelSize(Scene& scene) {
    Shape const shape = ShapeOf(scene);
    auto* const height = scene.Value<int>(0);
    auto* const width = scene.Value<int>(0);
    scene.Answer(strel_GetBufferSize(shape.name, shape.param1, shape.param2, shape.param3, height, width));
}

void CallStrel(Scene& scene) {
    Shape const shape = ShapeOf(scene);
    int height = 0, width = 0;
    (void)strel_GetBufferSize(shape.name, shape.param1, shape.param2, shape.param3, &height, &width);
    ImageAttributes se = scene.Image();
    se.height = scene.input.Seldom(8) ? scene.input.Number(0, 20) : height;
    se.width = scene.input.Seldom(8) ? scene.input.Number(0, 20) : width;
    se.stride = scene.input.Seldom(4) ? scene.input.Number(0, 40) : se.width;
    constexpr eTypeCode kBytes[] = {eByte, eByte, eUInt16, eSByte};
    if (!scene.input.Seldom(8)) se.type = scene.input.OneOf(kBytes);
    std::int64_t const elements = scene.Span(se);
    // The pattern of a wide disk is one block of 242 bytes, whatever the mask is.
    std::int64_t const bytes = std::max(elements * SizeOfTypeCode(se.type), std::int64_t{242});
    se.buffer = se.type == eUInt16
                    ? scene.Elements<unsigned char>(bytes)
                    : scene.Elements<unsigned char>(elements * std::max(SizeOfTypeCode(se.type), 1));
    auto* const center = scene.Elements<double>(2);
    scene.Answer(strel(se, center, shape.name, shape.param1, shape.param2, shape.param3));
}

}  // namespace

std::vector<Operation> const& RegionOperations() {
    static std::vector<Operation> const operations = {
        {"Dilate", CallMorphology<Dilate>, kPlain},
        {"Erode", CallMorphology<Erode>, kPlain},
        {"ImOpen", CallMorphology<ImOpen>, kPlain},
        {"ImClose", CallMorphology<ImClose>, kPlain},
        {"Dilate3x3", CallIterated<Dilate3x3>, kPlain},
        {"Erode3x3", CallIterated<Erode3x3>, kPlain},
        {"FloodFill", Call<FloodFill>, kPlain},
        {"FillHoles", Call<FillHoles>, kPlain},
        {"LabelMarkers", Call<LabelMarkers>, kPlain},
        {"LabelMarkers2", Call<LabelMarkers2>, kPlain},
        {"template_LabelMarkers<8>", Call<template_LabelMarkers<unsigned char>>, kPassesExceptions},
        {"template_LabelMarkers<16>", Call<template_LabelMarkers<unsigned short>>, kPassesExceptions},
        {"template_FloodFill<8>", CallFloodFill<unsigned char>, kPassesExceptions},
        {"template_FloodFill<16>", CallFloodFill<unsigned short>, kPassesExceptions},
        {"template_FillHoles<8>", Call<template_FillHoles<unsigned char>>, kPassesExceptions},
        {"template_FillHoles<16>", Call<template_FillHoles<unsigned short>>, kPassesExceptions},
        {"template_FloodBorderAreas<8>", CallFloodBorder<unsigned char>, kPassesExceptions},
        {"template_FloodBorderAreas<16>", CallFloodBorder<unsigned short>, kPassesExceptions},
        {"strel_GetBufferSize", CallStrelSize, kPlain},
        {"strel", CallStrel, kWholeRows},
    };
    return operations;
}

}  // namespace ZPA::Fuzz
