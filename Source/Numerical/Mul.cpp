// Mul: the matrix product of two images.
#include <cstring>

#include "primitives/MatrixProduct.h"
#include "Source/Internal/Memory.h"
#include "Source/Numerical/ImageArithmetic.h"

namespace ZPA {
namespace {

// The output as the second image is described, with the first one's height, and zeros.
SOLVANE_RETURNCODE Create(ImageAttributes const& first, ImageAttributes const& second,
                          ImageAttributes* output) {
    *output = second;
    output->height = first.height;
    output->buffer = nullptr;
    std::uint64_t const elements = ElementsSpanned(output->width, output->height, output->stride);
    std::uint64_t const bytes = BlockBytes(elements, static_cast<std::size_t>(SizeOfTypeCode(output->type)));
    output->buffer = AllocateElements<unsigned char>(bytes);
    if (!output->buffer) return FailMemory(L"ipp_mul", bytes);
    std::memset(output->buffer, 0, static_cast<std::size_t>(bytes));
    return SOLVANE_OK;
}

// The rows of matrices may not overlap, not even where they are only read.
SOLVANE_RETURNCODE CheckMatrices(ImageAttributes const& first, ImageAttributes const& second,
                                 ImageAttributes const& output, std::size_t elementSize) {
    SOLVANE_RETURNCODE code = CheckWritable(first, elementSize, L"first image");
    if (code == SOLVANE_OK) code = CheckWritable(second, elementSize, L"second image");
    if (code == SOLVANE_OK) code = CheckWritable(output, elementSize, L"output image");
    return code;
}

Status MultiplyFloats(ImageAttributes const& first, ImageAttributes const& second,
                      ImageAttributes const& output) {
    constexpr std::ptrdiff_t kSize = sizeof(float);
    return ippmMul_mm_32f(static_cast<float const*>(first.buffer), first.stride * kSize, kSize, first.width,
                          first.height, static_cast<float const*>(second.buffer), second.stride * kSize,
                          kSize, second.width, second.height, static_cast<float*>(output.buffer),
                          output.stride * kSize, kSize);
}

// By the widths, not the strides: callers know doubles without padding only.
Status MultiplyDoubles(ImageAttributes const& first, ImageAttributes const& second,
                       ImageAttributes const& output) {
    constexpr std::ptrdiff_t kSize = sizeof(double);
    return ippmMul_mm_64f(static_cast<double const*>(first.buffer), first.width * kSize, kSize, first.width,
                          first.height, static_cast<double const*>(second.buffer), second.width * kSize,
                          kSize, second.width, second.height, static_cast<double*>(output.buffer),
                          output.width * kSize, kSize);
}

SOLVANE_RETURNCODE Report(Status status) {
    if (status != kDone) return Fail(SOLVANE_OPERATION_FAILED, L"ipp_mul(): ipp_mul. code %d", int{status});
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE MultiplyMatrices(ImageAttributes const& first, ImageAttributes const& second,
                                    ImageAttributes const& output) {
    auto const multiply = [&](auto element) {
        using T = typename decltype(element)::type;
        SOLVANE_RETURNCODE const code = CheckMatrices(first, second, output, sizeof(T));
        if (code != SOLVANE_OK) return code;
        constexpr auto kProduct = std::is_same_v<T, float> ? MultiplyFloats : MultiplyDoubles;
        return Report(kProduct(first, second, output));
    };
    return Dispatch<float, double>(first.type, multiply, [] {
        return Fail(SOLVANE_UNSUPPORTED_TYPE, L"ipp_mul():Unsupported image datatype.");
    });
}

}  // namespace

SOLVANE_RETURNCODE ipp_mul(ImageAttributes first, ImageAttributes second, ImageAttributes* output) {
    auto const body = [&] {
        if (first.width != second.height) return Fail(SOLVANE_INVALID_ARGUMENT, L"Incorrect dimensions.");
        if (!first.buffer || !second.buffer) return Fail(SOLVANE_INVALID_ARGUMENT, kInputNull);
        if (!output || output->buffer == first.buffer || output->buffer == second.buffer)
            return Fail(SOLVANE_INVALID_ARGUMENT, L"Output is NULL and in-place operation not supported");
        CreatedPixels created;
        if (!output->buffer) {
            SOLVANE_RETURNCODE const code = Create(first, second, output);
            if (code != SOLVANE_OK) return code;
            created.Take(output);
        } else if (output->width != second.width || output->height != first.height) {
            return Fail(SOLVANE_INVALID_ARGUMENT, L"Source and destination image must be same size.");
        }
        return created.Finish(MultiplyMatrices(first, second, *output));
    };
    return Guarded(L"ZPA::ipp_mul", body, L"ipp_mul(): Unexpected exception.");
}

SOLVANE_RETURNCODE Mul(ImageAttributes first, ImageAttributes second, ImageAttributes* output) {
    return Guarded(L"ZPA::Mul", [&] {
        if (first.type != second.type) return Fail(SOLVANE_INVALID_ARGUMENT, kDifferentTypes);
        if (first.type != eSingle && first.type != eDouble) return RefuseType();
        if (!output) return Fail(SOLVANE_UNSUPPORTED_TYPE, L"In place multipy not supportednow.");
        return ipp_mul(first, second, output);
    });
}

}  // namespace ZPA
