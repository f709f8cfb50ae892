// LogicalPixelOp: a truth table over two images of any element types.
#include <Basics/LogicalPixelOp.h>

#include <algorithm>

#include "primitives/LogicRow.h"
#include "primitives/Rows.h"
#include "Source/Internal/OutputImage.h"
#include "Source/Numerical/ImageArithmetic.h"

namespace ZPA {
namespace {

constexpr auto kNoOutput = L"The output image pointer was NULL.";

// What the pixels are, whatever the descriptors say.
struct ElementTypes {
    eTypeCode first, second, output;
};

// A run of pixels: addresses without types, which the kernels' signedness does not follow.
struct Run {
    unsigned char const* first;
    unsigned char const* second;
    unsigned char* output;
    std::ptrdiff_t count;
};

template <typename T> T const* As(unsigned char const* pixels) { return reinterpret_cast<T const*>(pixels); }
template <typename T> T* As(unsigned char* pixels) { return reinterpret_cast<T*>(pixels); }

std::ptrdiff_t SizeOf(eTypeCode type) { return SizeOfTypeCode(type); }
bool IsInteger(eTypeCode type) { return type != eSingle && type != eDouble; }

template <typename T> void CombineAlike(Run const& run, unsigned char const* table) {
    CombineTruths(As<T>(run.first), As<T>(run.second), table, As<T>(run.output), run.count);
}

// Bytes that are not zero where the pixels are not; the pixels themselves if they are bytes.
unsigned char const* TruthsOf(eTypeCode type, unsigned char const* pixels, unsigned char* truths,
                              std::ptrdiff_t count) {
    if (type == eSingle)
        TruthRow(As<float>(pixels), truths, count);
    else if (type == eDouble)
        TruthRow(As<double>(pixels), truths, count);
    else if (SizeOf(type) == 2)
        TruthRow(As<std::uint16_t>(pixels), truths, count);
    else if (SizeOf(type) == 4)
        TruthRow(As<std::uint32_t>(pixels), truths, count);
    else
        return pixels;
    return truths;
}

// By way of bytes, a chunk at a time that stays in the first cache.
void CombineByBytes(Run run, ElementTypes const& types, unsigned char const* table) {
    constexpr std::ptrdiff_t kChunk = 2048;
    unsigned char first[kChunk], second[kChunk], results[kChunk];
    bool const narrow = SizeOf(types.output) == 1;
    while (run.count > 0) {
        std::ptrdiff_t const count = std::min(run.count, kChunk);
        CombineTruths(TruthsOf(types.first, run.first, first, count),
                      TruthsOf(types.second, run.second, second, count), table, narrow ? run.output : results,
                      count);
        if (SizeOf(types.output) == 2)
            ConvertRow(results, As<std::uint16_t>(run.output), count);
        else if (SizeOf(types.output) == 4)
            ConvertRow(results, As<std::int32_t>(run.output), count);
        run = {run.first + count * SizeOf(types.first), run.second + count * SizeOf(types.second),
               run.output + count * SizeOf(types.output), run.count - count};
    }
}

void CombineRun(Run const& run, ElementTypes const& types, unsigned char const* table) {
    std::ptrdiff_t const size = SizeOf(types.output);
    bool const alike = SizeOf(types.first) == size && SizeOf(types.second) == size && IsInteger(types.first);
    if (alike && size == 1) return CombineAlike<std::uint8_t>(run, table);
    if (alike && size == 2) return CombineAlike<std::uint16_t>(run, table);
    if (alike && size == 4) return CombineAlike<std::uint32_t>(run, table);
    CombineByBytes(run, types, table);
}

void CombineAllRows(ImageAttributes const& first, ImageAttributes const& second,
                    ImageAttributes const& output, ElementTypes const& types, unsigned char const* table) {
    auto const row = [](ImageAttributes const& image, eTypeCode type, std::ptrdiff_t y) {
        return static_cast<unsigned char*>(image.buffer) + y * image.stride * SizeOf(type);
    };
    std::ptrdiff_t width = first.width, height = first.height;
    if (width < 1 || height < 1) return;
    if (first.stride == width && second.stride == width && output.stride == width) {
        width *= height;
        height = 1;
    }
    for (std::ptrdiff_t y = 0; y < height; ++y)
        CombineRun(
            {row(first, types.first, y), row(second, types.second, y), row(output, types.output, y), width},
            types, table);
}

// Refuses what can be worked on by nobody, once the operation's own checks are passed.
SOLVANE_RETURNCODE CheckOperands(ImageAttributes const& first, ImageAttributes const& second,
                                 unsigned char const* table, ImageAttributes output,
                                 ElementTypes const& types) {
    auto const size = [](eTypeCode type) { return static_cast<std::size_t>(SizeOfTypeCode(type)); };
    if (!table) return Fail(SOLVANE_NULL_POINTER, L"The truth table pointer was NULL.");
    SOLVANE_RETURNCODE code = CheckReadable(first, size(types.first), L"first image");
    if (code == SOLVANE_OK) code = CheckReadable(second, size(types.second), L"second image");
    if (code != SOLVANE_OK || !output.buffer) return code;
    if (output.type == eUnknown) output.type = types.output;
    return CheckWritable(output, size(types.output), L"output image");
}

// The core of all element types.
SOLVANE_RETURNCODE Combine(ImageAttributes const& first, ImageAttributes const& second,
                           unsigned char const* table, ImageAttributes* output, ElementTypes const& types) {
    if (!first.buffer || !second.buffer)
        return Fail(SOLVANE_INVALID_ARGUMENT, L"At least one of the two input image buffers is NULL.");
    if (first.width != second.width || first.height != second.height)
        return Fail(SOLVANE_SIZE_MISMATCH, L"The two input images have different dimensions.");
    if (!output) return Fail(SOLVANE_NULL_POINTER, kNoOutput);
    if (output->buffer && (output->width != first.width || output->height != first.height))
        return Fail(SOLVANE_SIZE_MISMATCH, L"The output image dimensions are different than the input.");
    SOLVANE_RETURNCODE const code = CheckOperands(first, second, table, *output, types);
    if (code != SOLVANE_OK) return code;

    auto const write = [&](auto element) {
        using T = typename decltype(element)::type;
        constexpr int kBits = 8 * static_cast<int>(sizeof(T));
        OutputImage<T> image(output, first.width, first.height, kBits, first.pixelspacing);
        CombineAllRows(first, second, *output, types, table);
        return image.Finish(SOLVANE_OK);
    };
    return Dispatch<unsigned char, short, unsigned short, int, unsigned int>(types.output, write,
                                                                             [] { return SOLVANE_OK; });
}

SOLVANE_RETURNCODE CombineGuarded(ImageAttributes const& first, ImageAttributes const& second,
                                  unsigned char const* table, ImageAttributes* output,
                                  ElementTypes const& types) {
    return Guarded(L"ZPA::template_LogicalPixelOp",
                   [&] { return Combine(first, second, table, output, types); });
}

bool IsServed(eTypeCode type) { return type >= eByte && type <= eUInt32; }

}  // namespace

template <typename T1, typename T2, typename T3>
SOLVANE_RETURNCODE template_LogicalPixelOp(ImageAttributes first, ImageAttributes second,
                                           unsigned char* table, ImageAttributes* output) {
    return CombineGuarded(first, second, table, output, {TypeCodeOf<T1>, TypeCodeOf<T2>, TypeCodeOf<T3>});
}

#define ZPA_INSTANCE(T1, T2, T3)                                                      \
    template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_LogicalPixelOp<T1, T2, T3>( \
        ImageAttributes, ImageAttributes, unsigned char*, ImageAttributes*);
#define ZPA_INSTANCES_FOR_TWO(T1, T2)    \
    ZPA_INSTANCE(T1, T2, unsigned char)  \
    ZPA_INSTANCE(T1, T2, short)          \
    ZPA_INSTANCE(T1, T2, unsigned short) \
    ZPA_INSTANCE(T1, T2, int)            \
    ZPA_INSTANCE(T1, T2, unsigned int)
#define ZPA_INSTANCES(T1)                     \
    ZPA_INSTANCES_FOR_TWO(T1, unsigned char)  \
    ZPA_INSTANCES_FOR_TWO(T1, short)          \
    ZPA_INSTANCES_FOR_TWO(T1, unsigned short) \
    ZPA_INSTANCES_FOR_TWO(T1, int)            \
    ZPA_INSTANCES_FOR_TWO(T1, unsigned int)
ZPA_INSTANCES(signed char)
ZPA_INSTANCES(unsigned char)
ZPA_INSTANCES(short)
ZPA_INSTANCES(unsigned short)
ZPA_INSTANCES(int)
ZPA_INSTANCES(unsigned int)
ZPA_INSTANCES(float)
ZPA_INSTANCES(double)
#undef ZPA_INSTANCES
#undef ZPA_INSTANCES_FOR_TWO
#undef ZPA_INSTANCE

SOLVANE_RETURNCODE LogicalPixelOp(ImageAttributes first, ImageAttributes second, unsigned char* table,
                                  ImageAttributes* output) {
    return Guarded(L"ZPA::LogicalPixelOp", [&] {
        if (!output) return Fail(SOLVANE_NULL_POINTER, kNoOutput);
        if (!IsServed(first.type))
            return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The first image type is not supported.");
        if (!IsServed(second.type))
            return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The second image type is not supported.");
        eTypeCode const written = output->type == eUnknown ? first.type : output->type;
        if (!IsServed(written))
            return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The output image type is not supported.");
        return Combine(first, second, table, output, {first.type, second.type, written});
    });
}

}  // namespace ZPA
