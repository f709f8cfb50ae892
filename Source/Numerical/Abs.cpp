// Abs: pixels without their sign.
#include <cstring>

#include "Source/Numerical/ImageArithmetic.h"

namespace ZPA {

template <typename T>
SOLVANE_RETURNCODE template_abs(ImageAttributes image, ImageAttributes* output, bool inPlace) {
    using Kernel = SignedElement<T>;
    auto const write = [&](ImageAttributes const& result) {
        SOLVANE_RETURNCODE const code = CheckShapes(image, nullptr, result, sizeof(T));
        if (code != SOLVANE_OK) return code;
        ForEachRowPair(ImageView<Kernel const>(image), ImageView<Kernel>(result), AbsoluteRow<Kernel>);
        return SOLVANE_OK;
    };
    return WithOneImage(L"ZPA::template_abs", kInputNull, image, output, inPlace, write);
}

#define ZPA_INSTANCE(T) \
    template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_abs<T>(ImageAttributes, ImageAttributes*, bool);
ZPA_INSTANCE(char)
ZPA_INSTANCE(short)
ZPA_INSTANCE(int)
ZPA_INSTANCE(float)
ZPA_INSTANCE(double)
#undef ZPA_INSTANCE

namespace {

// What has no sign stays as it is: one block, whatever the strides say, so both images must hold it.
SOLVANE_RETURNCODE CopyBlock(ImageAttributes const& image, ImageAttributes* output, bool inPlace) {
    if (!image.buffer) return Fail(SOLVANE_INVALID_ARGUMENT, kInputNull);
    if (inPlace) return SOLVANE_OK;
    ArithmeticOutput result(image, output, inPlace);
    SOLVANE_RETURNCODE code = result.Prepare();
    if (code != SOLVANE_OK) return code;
    auto const elementSize = static_cast<std::size_t>(SizeOfTypeCode(image.type));
    code = CheckWritable(image, elementSize, L"first image");
    if (code == SOLVANE_OK) code = CheckWritable(result.Image(), elementSize, L"output image");
    if (code == SOLVANE_OK && image.width > 0 && image.height > 0)
        std::memmove(
            output->buffer, image.buffer,
            static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height) * elementSize);
    return result.Finish(code);
}

}  // namespace

SOLVANE_RETURNCODE Abs(ImageAttributes image, ImageAttributes* output) {
    return Guarded(L"ZPA::Abs", [&] {
        bool const inPlace = !output;
        if (image.type == eByte || image.type == eUInt16 || image.type == eUInt32)
            return CopyBlock(image, output, inPlace);
        auto const absolute = [&](auto element) {
            return template_abs<typename decltype(element)::type>(image, output, inPlace);
        };
        return Dispatch<char, short, int, float, double>(image.type, absolute, [] {
            return Fail(SOLVANE_UNSUPPORTED_TYPE, L"Abs not support input type.");
        });
    });
}

}  // namespace ZPA
