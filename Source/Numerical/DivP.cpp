// DivP: the quotient of two images.
#include "Source/Numerical/ImageArithmetic.h"

namespace ZPA {

template <typename T>
SOLVANE_RETURNCODE template_divp(ImageAttributes first, ImageAttributes second, ImageAttributes* output,
                                 bool inPlace) {
    return CombineImages<SignedElement<T>>(L"ZPA::template_divp", Arithmetic::kQuotient, first, second,
                                           output, inPlace);
}

#define ZPA_INSTANCE(T)                                                                             \
    template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_divp<T>(ImageAttributes, ImageAttributes, \
                                                                  ImageAttributes*, bool);
ZPA_FOR_ARITHMETIC_ELEMENTS(ZPA_INSTANCE)
#undef ZPA_INSTANCE

SOLVANE_RETURNCODE DivP(ImageAttributes first, ImageAttributes second, ImageAttributes* output) {
    return Guarded(L"ZPA::DivP", [&] {
        if (first.type != second.type) return Fail(SOLVANE_INVALID_ARGUMENT, kDifferentTypes);
        auto const divide = [&](auto element) {
            return template_divp<typename decltype(element)::type>(first, second, output, !output);
        };
        return DispatchBySign(first.type, divide, RefuseInSilence);
    });
}

}  // namespace ZPA
