// Calls of filters and reductions.
#include <Basics/AnisotropicGaussian.h>
#include <Basics/BlockAverage.h>
#include <Basics/FlatTopFilter.h>
#include <Basics/HomoFilter.h>
#include <Basics/LinearFilters.h>

#include <memory>

#include "operations/Operations.h"

namespace ZPA::Fuzz {
namespace {

// Pixels of an image without padding.
std::int64_t Pixels(int width, int height) {
    return width > 0 && height > 0 ? std::int64_t{width} * height : 0;
}

template <typename T>
void CallFlatTop(Scene& scene, SOLVANE_RETURNCODE (*filter)(T*, T*, int, int, int, int)) {
    int const width = scene.input.Number(1, 70), height = scene.input.Number(1, 30);
    auto* const from = scene.Elements<T>(Pixels(width, height));
    auto* const to = scene.input.Seldom(32) ? from : scene.Elements<T>(Pixels(width, height));
    int const kernelWidth = scene.input.Number(1, 20);
    scene.Answer(filter(from, to, width, height, kernelWidth, scene.input.Number(1, 20)));
}
template <auto filter> void CallFlatTop(Scene& scene) { CallFlatTop(scene, filter); }

template <typename T>
void CallMaskedFlatTop(Scene& scene, SOLVANE_RETURNCODE (*filter)(T*, T*, char*, int, int, int, int)) {
    int const width = scene.input.Number(1, 70), height = scene.input.Number(1, 30);
    auto* const from = scene.Elements<T>(Pixels(width, height));
    auto* const to = scene.input.Seldom(32) ? from : scene.Elements<T>(Pixels(width, height));
    auto* const mask = scene.Elements<char>(Pixels(width, height));
    int const kernelWidth = scene.input.Number(1, 20);
    scene.Answer(filter(from, to, mask, width, height, kernelWidth, scene.input.Number(1, 20)));
}
template <auto filter> void CallMaskedFlatTop(Scene& scene) { CallMaskedFlatTop(scene, filter); }

template <typename T, typename... Code>
void CallBlockAverage(Scene& scene, SOLVANE_RETURNCODE (*average)(T*, T*, int, int, int, int, int, Code...),
                      Code... code) {
    int const width = scene.input.Number(0, 70), height = scene.input.Number(0, 30);
    int const factor = scene.input.Number(1, 9);
    int outputWidth = factor > 0 ? width / factor : 0, outputHeight = factor > 0 ? height / factor : 0;
    if (scene.input.Seldom(16)) outputWidth = scene.input.Number(0, 70);
    if (scene.input.Seldom(16)) outputHeight = scene.input.Number(0, 30);
    auto* const from = scene.Elements<T>(Pixels(width, height));
    auto* const to = scene.input.Seldom(8) ? from : scene.Elements<T>(Pixels(outputWidth, outputHeight));
    scene.Answer(average(from, to, width, height, outputWidth, outputHeight, factor, code...));
}
template <auto average> void CallBlockAverage(Scene& scene) { CallBlockAverage(scene, average); }
template <typename T, auto average> void CallCodedBlockAverage(Scene& scene) {
    auto const code = scene.input.Bits<T>();
    CallBlockAverage<T, T>(scene, average, code);
}

void CallSubsample(Scene& scene) {
    ImageAttributes const source = scene.Image();
    ImageAttributes* const destination = scene.Output();
    int const factor = scene.input.Number(1, 9), row = scene.input.Number(0, 9);
    scene.Answer(subsample(scene.input.Seldom(64) ? nullptr : &source, destination, factor, row,
                           scene.input.Number(0, 9)));
}

// The kernel has elements that go with the image's as a rule.
void CallFilter2D(Scene& scene) {
    ImageAttributes const source = scene.Image();
    Rectangle const* const roi = scene.Roi();
    ImageAttributes* const destination = scene.Output();
    APOINT const* const origin = scene.Origin();
    ImageAttributes kernel = scene.Element();
    bool const isReal = source.type == eSingle || source.type == eDouble;
    if (!scene.input.Seldom(16)) {
        kernel.type = isReal ? source.type : eInt32;
        std::int64_t const elements = scene.Span(kernel);
        kernel.buffer = kernel.type == eSingle   ? scene.Elements<float>(elements)
                        : kernel.type == eDouble ? static_cast<void*>(scene.Elements<double>(elements))
                                                 : scene.Elements<int>(elements);
    }
    auto* const divisor = scene.input.Choice(2) ? scene.Value<int>(scene.input.Number(0, 40)) : nullptr;
    scene.Answer(Filter2D(source, roi, destination, origin, kernel, divisor));
}

// An output that does not fit is freed by the operation.
template <auto filter> void CallFilterBuffer(Scene& scene) {
    BufferAttributes const input = scene.Buffer();
    int const size = scene.input.Number(0, 12);
    BufferAttributes const weights(scene.input.Seldom(16) ? scene.Buffer().type : eSingle,
                                   scene.Elements<double>(size), size);
    BufferAttributes output = input;
    int const choice = scene.input.Choice(4);
    if (choice > 1) output = BufferAttributes(eUnknown, nullptr, 0);
    bool const isOwn = choice == 3;
    if (isOwn) {
        output =
            BufferAttributes(scene.input.Seldom(4) ? eInt16 : input.type, nullptr, scene.input.Number(0, 70));
        std::int64_t const bytes = std::int64_t{std::max(output.size, 0)} * SizeOfTypeCode(output.type);
        if (bytes < 1 << 16) output.buffer = std::malloc(static_cast<std::size_t>(bytes));
        if (output.buffer) std::memset(output.buffer, 0, static_cast<std::size_t>(bytes));
    }
    auto const free = [&](BufferAttributes const* made) {
        if (made->buffer != input.buffer) FreePixels(made->buffer);
    };
    std::unique_ptr<BufferAttributes, decltype(free)> const freed(&output, free);  // whatever gets out
    scene.Answer(filter(input, weights, choice == 0 ? nullptr : &output));
}

void CallSpecial(Scene& scene) {
    ImageAttributes kernel = scene.Image();
    static constexpr char const* kKinds[] = {"average", "gaussian", "laplacian", "sobel", "unknown"};
    char const* const kind = scene.input.Seldom(32) ? nullptr : scene.input.OneOf(kKinds);
    scene.Answer(fspecial(kernel, kind, scene.input.Real()));
}

}  // namespace

std::vector<Operation> const& Filters() {
    static std::vector<Operation> const operations = {
        {"rectFlatTopFilter", CallFlatTop<rectFlatTopFilter>, kPlain},
        {"rect_flat_top_filtering_ushort", CallFlatTop<rect_flat_top_filtering_ushort>, kPlain},
        {"rect_flat_top_filtering_short", CallFlatTop<rect_flat_top_filtering_short>, kPlain},
        {"rect_flat_top_filtering_double", CallFlatTop<rect_flat_top_filtering_double>, kPlain},
        {"rectFlatTopFilteringWithMask_ushort", CallMaskedFlatTop<rectFlatTopFilteringWithMask_ushort>,
         kPlain},
        {"rectFlatTopFilteringWithMask_short", CallMaskedFlatTop<rectFlatTopFilteringWithMask_short>, kPlain},
        {"rectFlatTopFilteringWithMask_double", CallMaskedFlatTop<rectFlatTopFilteringWithMask_double>,
         kPlain},
        {"blockAverage", CallBlockAverage<blockAverage>, kPlain},
        {"blockAverageDownSample_ushort", CallBlockAverage<blockAverageDownSample_ushort>, kPlain},
        {"blockAverageDownSample_short", CallBlockAverage<blockAverageDownSample_short>, kPlain},
        {"blockAverageDownSample_double", CallBlockAverage<blockAverageDownSample_double>, kPlain},
        {"blockAverageDownSampleCodedMask_ushort",
         CallCodedBlockAverage<unsigned short, blockAverageDownSampleCodedMask_ushort>, kPlain},
        {"blockAverageDownSampleCodedMask_short",
         CallCodedBlockAverage<short, blockAverageDownSampleCodedMask_short>, kPlain},
        {"blockAverageDownSampleCodedMask_double",
         CallCodedBlockAverage<double, blockAverageDownSampleCodedMask_double>, kPlain},
        {"subsample", CallSubsample, kTakesUnset},
        {"AnisotropicGaussian", Call<AnisotropicGaussian>, kPlain},
        {"HomoFilter", Call<HomoFilter>, kPlain},
        {"Filter2D", CallFilter2D, kOneInstructionSet},
        {"FilterBufferSimple", CallFilterBuffer<FilterBufferSimple>, kPlain},
        {"template_FilterBufferSimple<unsigned short>",
         CallFilterBuffer<template_FilterBufferSimple<unsigned short>>, kPassesExceptions},
        {"template_FilterBufferSimple<double>", CallFilterBuffer<template_FilterBufferSimple<double>>,
         kPassesExceptions},
        {"fspecial", CallSpecial, kWholeRows},
    };
    return operations;
}

}  // namespace ZPA::Fuzz
