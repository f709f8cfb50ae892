// Sub: the difference of two images.
#include "Source/Numerical/ImageArithmetic.h"

namespace ZPA {

template <typename T>
SOLVANE_RETURNCODE template_sub(ImageAttributes first, ImageAttributes second, ImageAttributes* output,
                                bool inPlace) {
    return CombineImages<WrappingElement<T>>(L"ZPA::template_sub", Arithmetic::kDifference, first, second,
                                             output, inPlace);
}

#define ZPA_INSTANCE(T)                                                                            \
    template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_sub<T>(ImageAttributes, ImageAttributes, \
                                                                 ImageAttributes*, bool);
ZPA_FOR_ARITHMETIC_ELEMENTS(ZPA_INSTANCE)
#undef ZPA_INSTANCE

SOLVANE_RETURNCODE Sub(ImageAttributes first, ImageAttributes second, ImageAttributes* output) {
    return Guarded(L"ZPA::Sub", [&] {
        if (first.type != second.type) return Fail(SOLVANE_INVALID_ARGUMENT, kDifferentTypes);
        auto const subtract = [&](auto element) {
            return template_sub<typename decltype(element)::type>(first, second, output, !output);
        };
        return DispatchByWidth(first.type, subtract, RefuseInSilence);
    });
}

}  // namespace ZPA
