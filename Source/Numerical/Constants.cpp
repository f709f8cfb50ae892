// AddC, SubC, MulC and DivC: an image and a constant.
#include "Source/Numerical/ImageArithmetic.h"

namespace ZPA {

template <typename T>
SOLVANE_RETURNCODE template_addc(ImageAttributes image, T* constant, ImageAttributes* output, bool inPlace) {
    return CombineImageWithConstant<WrappingElement<T>>(L"ZPA::template_addc", Arithmetic::kSum, image,
                                                        constant, output, inPlace);
}
template <typename T>
SOLVANE_RETURNCODE template_subc(ImageAttributes image, T* constant, ImageAttributes* output, bool inPlace) {
    return CombineImageWithConstant<WrappingElement<T>>(L"ZPA::template_subc", Arithmetic::kDifference, image,
                                                        constant, output, inPlace);
}
template <typename T>
SOLVANE_RETURNCODE template_mulpc(ImageAttributes image, T* constant, ImageAttributes* output, bool inPlace) {
    return CombineImageWithConstant<WrappingElement<T>>(L"ZPA::template_mulpc", Arithmetic::kProduct, image,
                                                        constant, output, inPlace);
}
template <typename T>
SOLVANE_RETURNCODE template_divpc(ImageAttributes image, T* constant, ImageAttributes* output, bool inPlace) {
    return CombineImageWithConstant<SignedElement<T>>(L"ZPA::template_divpc", Arithmetic::kQuotient, image,
                                                      constant, output, inPlace);
}

#define ZPA_INSTANCE(name, T) \
    template ZPA_INSTANCE_API SOLVANE_RETURNCODE name<T>(ImageAttributes, T*, ImageAttributes*, bool);
#define ZPA_INSTANCES(T)            \
    ZPA_INSTANCE(template_addc, T)  \
    ZPA_INSTANCE(template_subc, T)  \
    ZPA_INSTANCE(template_mulpc, T) \
    ZPA_INSTANCE(template_divpc, T)
ZPA_FOR_ARITHMETIC_ELEMENTS(ZPA_INSTANCES)
#undef ZPA_INSTANCES
#undef ZPA_INSTANCE

SOLVANE_RETURNCODE AddC(ImageAttributes image, void* constant, ImageAttributes* output) {
    return Guarded(L"ZPA::AddC", [&] {
        if (!constant) return Fail(SOLVANE_INVALID_ARGUMENT, L"ZPA::AddC(): nput data cannot be NULL.");
        auto const add = [&](auto element) {
            using T = typename decltype(element)::type;
            return template_addc<T>(image, static_cast<T*>(constant), output, !output);
        };
        return DispatchByWidth(image.type, add, RefuseInSilence);
    });
}

SOLVANE_RETURNCODE SubC(ImageAttributes image, void* constant, ImageAttributes* output) {
    return Guarded(L"ZPA::SubC", [&] {
        if (!constant) return Fail(SOLVANE_INVALID_ARGUMENT, L"ZPA::SubC(): nput data cannot be NULL.");
        auto const subtract = [&](auto element) {
            using T = typename decltype(element)::type;
            return template_subc<T>(image, static_cast<T*>(constant), output, !output);
        };
        return DispatchByWidth(image.type, subtract, RefuseInSilence);
    });
}

SOLVANE_RETURNCODE MulC(ImageAttributes image, void* constant, ImageAttributes* output) {
    return Guarded(L"ZPA::MulC", [&] {
        if (!constant) return Fail(SOLVANE_INVALID_ARGUMENT, L"ZPA::MulC(): nput data cannot be NULL.");
        auto const multiply = [&](auto element) {
            using T = typename decltype(element)::type;
            return template_mulpc<T>(image, static_cast<T*>(constant), output, !output);
        };
        return DispatchByWidth(image.type, multiply, RefuseInSilence);
    });
}

SOLVANE_RETURNCODE DivC(ImageAttributes image, void* constant, ImageAttributes* output) {
    return Guarded(L"ZPA::DivC", [&] {
        if (!constant) return Fail(SOLVANE_INVALID_ARGUMENT, L"ZPA::DivC(): nput data cannot be NULL.");
        auto const divide = [&](auto element) {
            using T = typename decltype(element)::type;
            return template_divpc<T>(image, static_cast<T*>(constant), output, !output);
        };
        return DispatchBySign(image.type, divide, RefuseInSilence);
    });
}

}  // namespace ZPA
