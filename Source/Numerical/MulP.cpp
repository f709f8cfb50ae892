// MulP: the product of two images pixel by pixel, or of matrices.
#include "Source/Numerical/ImageArithmetic.h"

namespace ZPA {

template <typename T>
SOLVANE_RETURNCODE template_mulp(ImageAttributes first, ImageAttributes second, ImageAttributes* output,
                                 bool inPlace) {
    return CombineImages<WrappingElement<T>>(L"ZPA::template_mulp", Arithmetic::kProduct, first, second,
                                             output, inPlace);
}

#define ZPA_INSTANCE(T)                                                                             \
    template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_mulp<T>(ImageAttributes, ImageAttributes, \
                                                                  ImageAttributes*, bool);
ZPA_FOR_ARITHMETIC_ELEMENTS(ZPA_INSTANCE)
#undef ZPA_INSTANCE

SOLVANE_RETURNCODE MulP(ImageAttributes first, ImageAttributes second, ImageAttributes* output) {
    return Guarded(L"ZPA::MulP", [&] {
        if (first.type != second.type) return Fail(SOLVANE_INVALID_ARGUMENT, kDifferentTypes);
        bool const inPlace = !output;
        auto const multiply = [&](auto element) {
            using T = typename decltype(element)::type;
            // Callers rely on it: floating-point images with an output are matrices.
            if (std::is_floating_point_v<T> && !inPlace) return ipp_mul(first, second, output);
            return template_mulp<T>(first, second, output, inPlace);
        };
        return DispatchByWidth(first.type, multiply, RefuseType);
    });
}

}  // namespace ZPA
