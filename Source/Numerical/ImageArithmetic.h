// The frames that the operations on images and constants share: checks, output, and the walk over rows.
#ifndef ZPA_SOURCE_NUMERICAL_IMAGEARITHMETIC_H
#define ZPA_SOURCE_NUMERICAL_IMAGEARITHMETIC_H

#include <Basics/Arithmetic.h>

#include <type_traits>

#include "primitives/ArithmeticRow.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"

namespace ZPA {

inline constexpr auto kInputNull = L"At least one input image is NULL.";
inline constexpr auto kDifferentTypes = L"Input images are different datatypes.";
inline constexpr auto kUnsupportedType = L"Unsupported image datatype.";

// Pixels that an operation created for its output, until it succeeds.
class CreatedPixels {
public:
    CreatedPixels() = default;
    ~CreatedPixels() { Free(); }
    CreatedPixels(CreatedPixels const&) = delete;
    CreatedPixels& operator=(CreatedPixels const&) = delete;

    void Take(ImageAttributes* image) { image_ = image; }
    // Ends the operation with its code: the pixels become the caller's, or go.
    [[nodiscard]] SOLVANE_RETURNCODE Finish(SOLVANE_RETURNCODE code) {
        if (code == SOLVANE_OK) image_ = nullptr;
        Free();
        return code;
    }

private:
    void Free();
    ImageAttributes* image_ = nullptr;
};

// What an operation writes: its first operand in place, or the caller's output.
class ArithmeticOutput {
public:
    ArithmeticOutput(ImageAttributes const& first, ImageAttributes* output, bool inPlace)
        : first_(first), output_(output), inPlace_(inPlace) {}

    // Makes it ready, creating it from the first operand if it has no pixels.
    [[nodiscard]] SOLVANE_RETURNCODE Prepare();
    ImageAttributes const& Image() const { return inPlace_ ? first_ : *output_; }
    [[nodiscard]] SOLVANE_RETURNCODE Finish(SOLVANE_RETURNCODE code) { return created_.Finish(code); }

private:
    ImageAttributes const& first_;
    ImageAttributes* output_;
    bool inPlace_;
    CreatedPixels created_;
};

// Refuse what the operations' own checks leave open, naming the image as `name`.
[[nodiscard]] SOLVANE_RETURNCODE CheckReadable(ImageAttributes const& image, std::size_t elementSize,
                                               wchar_t const* name);
[[nodiscard]] SOLVANE_RETURNCODE CheckWritable(ImageAttributes const& image, std::size_t elementSize,
                                               wchar_t const* name);
[[nodiscard]] SOLVANE_RETURNCODE CheckShapes(ImageAttributes const& first, ImageAttributes const* second,
                                             ImageAttributes const& output, std::size_t elementSize);

// The type whose kernels serve T: the results of signed and unsigned integers have the same bits, except for
// quotients.
template <typename T, bool kSigned> struct KernelElement {
    using Integer = std::conditional_t<sizeof(T) == 1, std::int8_t,
                                       std::conditional_t<sizeof(T) == 2, std::int16_t, std::int32_t>>;
    using type = std::conditional_t<
        std::is_floating_point_v<T>, T,
        std::conditional_t<kSigned && std::is_signed_v<T>, Integer, std::make_unsigned_t<Integer>>>;
};
template <typename T> using WrappingElement = typename KernelElement<T, false>::type;
template <typename T> using SignedElement = typename KernelElement<T, true>::type;

// Dispatches where signed and unsigned elements of a width are served alike.
template <typename Core, typename Otherwise>
[[nodiscard]] SOLVANE_RETURNCODE DispatchByWidth(eTypeCode type, Core const& core,
                                                 Otherwise const& otherwise) {
    switch (type) {
        case eSByte:
        case eByte:
            return core(Element<char>{});
        case eInt16:
        case eUInt16:
            return core(Element<short>{});
        case eInt32:
        case eUInt32:
            return core(Element<int>{});
        case eSingle:
            return core(Element<float>{});
        case eDouble:
            return core(Element<double>{});
        default:
            return otherwise();
    }
}
template <typename Core, typename Otherwise>
[[nodiscard]] SOLVANE_RETURNCODE DispatchBySign(eTypeCode type, Core const& core,
                                                Otherwise const& otherwise) {
    return Dispatch<char, unsigned char, short, unsigned short, int, unsigned int, float, double>(type, core,
                                                                                                  otherwise);
}

inline SOLVANE_RETURNCODE RefuseInSilence() { return SOLVANE_UNEXPECTED; }
inline SOLVANE_RETURNCODE RefuseType() { return Fail(SOLVANE_UNSUPPORTED_TYPE, kUnsupportedType); }

// Instantiates `what(T)` for the elements that most cores are offered for.
#define ZPA_FOR_ARITHMETIC_ELEMENTS(what)                                                                    \
    what(char) what(unsigned char) what(short) what(unsigned short) what(int) what(unsigned int) what(float) \
        what(double)

// Both frames run write(output), which returns a code, once the checks are passed and the output is ready.
template <typename Write>
SOLVANE_RETURNCODE WithTwoImages(wchar_t const* scope, ImageAttributes const& first,
                                 ImageAttributes const& second, ImageAttributes* output, bool inPlace,
                                 Write const& write, Message unexpected = kUnexpected) {
    auto const body = [&] {
        if (first.width != second.width || first.height != second.height)
            return Fail(SOLVANE_INVALID_ARGUMENT, L"Input images have different dimensions.");
        if (!first.buffer || !second.buffer) return Fail(SOLVANE_INVALID_ARGUMENT, kInputNull);
        ArithmeticOutput result(first, output, inPlace);
        SOLVANE_RETURNCODE const code = result.Prepare();
        return code == SOLVANE_OK ? result.Finish(write(result.Image())) : code;
    };
    return Guarded(scope, body, unexpected);
}
template <typename Write>
SOLVANE_RETURNCODE WithOneImage(wchar_t const* scope, wchar_t const* nullText, ImageAttributes const& image,
                                ImageAttributes* output, bool inPlace, Write const& write) {
    return Guarded(scope, [&] {
        if (!image.buffer) return Fail(SOLVANE_INVALID_ARGUMENT, nullText);
        ArithmeticOutput result(image, output, inPlace);
        SOLVANE_RETURNCODE const code = result.Prepare();
        return code == SOLVANE_OK ? result.Finish(write(result.Image())) : code;
    });
}

// The cores, for T of the kernels' types.
template <typename T>
SOLVANE_RETURNCODE CombineImages(wchar_t const* scope, Arithmetic operation, ImageAttributes const& first,
                                 ImageAttributes const& second, ImageAttributes* output, bool inPlace) {
    return WithTwoImages(scope, first, second, output, inPlace, [&](ImageAttributes const& result) {
        SOLVANE_RETURNCODE const code = CheckShapes(first, &second, result, sizeof(T));
        if (code != SOLVANE_OK) return code;
        ImageView<T const> const a(first), b(second);
        ImageView<T> const to(result);
        if (to.Width() < 1 || to.Height() < 1) return SOLVANE_OK;
        if (a.IsContiguous() && b.IsContiguous() && to.IsContiguous())
            CombineRows<T>(operation, a.Row(0), b.Row(0), to.Row(0), to.Width() * to.Height());
        else
            for (std::ptrdiff_t y = 0; y < to.Height(); ++y)
                CombineRows<T>(operation, a.Row(y), b.Row(y), to.Row(y), to.Width());
        return SOLVANE_OK;
    });
}
template <typename T>
SOLVANE_RETURNCODE CombineImageWithConstant(wchar_t const* scope, Arithmetic operation,
                                            ImageAttributes const& image, void const* constant,
                                            ImageAttributes* output, bool inPlace) {
    auto const write = [&](ImageAttributes const& result) {
        if (!constant) return Fail(SOLVANE_NULL_POINTER, L"The constant is NULL.");
        SOLVANE_RETURNCODE const code = CheckShapes(image, nullptr, result, sizeof(T));
        if (code != SOLVANE_OK) return code;
        T const value = *static_cast<T const*>(constant);
        ForEachRowPair(ImageView<T const>(image), ImageView<T>(result),
                       [&](T const* from, T* to, std::ptrdiff_t count) {
                           CombineWithConstant<T>(operation, from, value, to, count);
                       });
        return SOLVANE_OK;
    };
    return WithOneImage(scope, L"Input image can not be NULL.", image, output, inPlace, write);
}

}  // namespace ZPA

#endif
