// Calls of what copies, sets, compares and converts pixels.
#include <Basics/PixelOperations.h>

#include <Basics/AnisotropicGaussian.h>
#include <Basics/LogicalPixelOp.h>

#include "operations/Operations.h"

namespace ZPA::Fuzz {
namespace {

// The destination of a copy is freed by the operation if it fails.
template <typename Attributes, SOLVANE_RETURNCODE (*operation)(Attributes, Attributes*)>
void CallCopy(Scene& scene) {
    auto const source = Argument<Attributes>(scene);
    Attributes copy;
    int const choice = scene.input.Choice(6);
    if (choice == 4) copy.buffer = std::malloc(16);
    SOLVANE_RETURNCODE const code = operation(source, choice == 5 ? nullptr : &copy);
    FreePixels(copy.buffer);
    scene.Answer(code);
}

// The templates free nothing.
template <typename T> void CallTemplateCopy(Scene& scene) {
    ImageAttributes const source = scene.Image();
    ImageAttributes* const copy = scene.Output();
    scene.Answer(template_copy<T>(source, copy));
}

void CallClip(Scene& scene) {
    int const count = scene.input.Number(0, 200);
    auto* const pixels = scene.Elements<short>(count);
    ClipImage(pixels, count, scene.input.Number(-100, 100), scene.input.Number(-100, 100));
    scene.Answer(0);
}

template <auto operation> void CallTruthTable(Scene& scene) {
    ImageAttributes const first = scene.Image(), second = scene.Image();
    auto* const table = scene.Elements<unsigned char>(4);
    scene.Answer(operation(first, second, table, scene.Output()));
}

void CallFreePixels(Scene& scene) {
    FreePixels(nullptr);
    FreePixels(std::malloc(scene.input.Byte()));
    scene.Answer(SizeOfTypeCode(scene.input.Bits<eTypeCode>()));
}

}  // namespace

std::vector<Operation> const& PixelOperations() {
    static std::vector<Operation> const operations = {
        {"CopyPixels", Call<CopyPixels>, kPlain},
        {"SetPixels", Call<SetPixels>, kPlain},
        {"copyImage", CallCopy<ImageAttributes, copyImage>, kWholeRows},
        {"copyBuffer", CallCopy<BufferAttributes, copyBuffer>, kPlain},
        {"template_copy<8>", CallTemplateCopy<unsigned char>, kWholeRows | kPassesExceptions},
        {"template_copy<16>", CallTemplateCopy<unsigned short>, kWholeRows | kPassesExceptions},
        {"template_copy<double>", CallTemplateCopy<double>, kWholeRows | kPassesExceptions},
        {"ApplyMask", Call<ApplyMask>, kWholeRows},
        {"compare", Call<compare>, kPlain},
        {"template_compare", Call<template_compare<unsigned short>>, kPassesExceptions},
        {"DecimateAndCompare", Call<DecimateAndCompare>, kPlain},
        {"DiffBuffer", Call<DiffBuffer>, kPlain},
        {"ClipImage", CallClip, kPlain},
        {"ValidateImageBuffer", Call<ValidateImageBuffer>, kPlain},
        {"FreePixels", CallFreePixels, kPlain},
        {"TransposeImage", Call<TransposeImage>, kPlain},
        {"LogicalPixelOp", CallTruthTable<LogicalPixelOp>, kPlain},
        {"template_LogicalPixelOp<float>",
         CallTruthTable<template_LogicalPixelOp<float, unsigned short, int>>, kPlain},
        {"template_LogicalPixelOp<double>",
         CallTruthTable<template_LogicalPixelOp<double, unsigned char, unsigned char>>, kPlain},
        {"template_LogicalPixelOp<signed char>",
         CallTruthTable<template_LogicalPixelOp<signed char, int, short>>, kPlain},
    };
    return operations;
}

}  // namespace ZPA::Fuzz
