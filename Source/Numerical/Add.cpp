// Add: the sum of two images, saturating for the types of its primitive.
#include "primitives/Add.h"

#include "Source/Numerical/ImageArithmetic.h"

namespace ZPA {

template <typename T>
SOLVANE_RETURNCODE template_add(ImageAttributes first, ImageAttributes second, ImageAttributes* output,
                                bool inPlace) {
    return CombineImages<WrappingElement<T>>(L"ZPA::template_add", Arithmetic::kSum, first, second, output,
                                             inPlace);
}

#define ZPA_INSTANCE(T)                                                                            \
    template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_add<T>(ImageAttributes, ImageAttributes, \
                                                                 ImageAttributes*, bool);
ZPA_INSTANCE(char)
ZPA_INSTANCE(int)
ZPA_INSTANCE(unsigned int)
ZPA_INSTANCE(double)
#undef ZPA_INSTANCE

namespace {

constexpr int kUnscaled = 0;
constexpr int kNoSuchType = -2;

// An operation's images, as its primitive takes them.
template <typename T> struct Operands {
    Rows<T const> first, second;
    Rows<T> sum;
    Size size;
    bool inPlace;
};

template <typename T> Rows<T> RowsOf(ImageAttributes const& image) {
    return {static_cast<T*>(image.buffer), image.stride * static_cast<std::ptrdiff_t>(sizeof(T))};
}

// Calls the primitive's form for the case; integers have a scale factor.
template <typename T, typename Apart, typename InPlace, typename... Scale>
Status AddBy(Apart apart, InPlace inPlace, Operands<T> const& by, Scale... scaleFactor) {
    if (by.inPlace)
        return inPlace(by.second.first, by.second.step, by.sum.first, by.sum.step, by.size, scaleFactor...);
    return apart(by.second.first, by.second.step, by.first.first, by.first.step, by.sum.first, by.sum.step,
                 by.size, scaleFactor...);
}
Status AddTyped(Operands<std::uint8_t> const& by) {
    return AddBy(ippiAdd_8u_C1RSfs, ippiAdd_8u_C1IRSfs, by, kUnscaled);
}
Status AddTyped(Operands<std::int16_t> const& by) {
    return AddBy(ippiAdd_16s_C1RSfs, ippiAdd_16s_C1IRSfs, by, kUnscaled);
}
Status AddTyped(Operands<std::uint16_t> const& by) {
    return AddBy(ippiAdd_16u_C1RSfs, ippiAdd_16u_C1IRSfs, by, kUnscaled);
}
Status AddTyped(Operands<float> const& by) { return AddBy(ippiAdd_32f_C1R, ippiAdd_32f_C1IR, by); }

SOLVANE_RETURNCODE Report(int status) {
    if (status != kDone) return Fail(SOLVANE_OPERATION_FAILED, L"Add(): ippiAdd. code %d", status);
    return SOLVANE_OK;
}

}  // namespace

SOLVANE_RETURNCODE ipp_add(ImageAttributes first, ImageAttributes second, ImageAttributes* output,
                           bool inPlace) {
    auto const add = [&](ImageAttributes const& sum) {
        auto const typed = [&](auto element) {
            using T = typename decltype(element)::type;
            SOLVANE_RETURNCODE const code = CheckShapes(first, &second, sum, sizeof(T));
            if (code != SOLVANE_OK) return code;
            return Report(AddTyped(Operands<T>{RowsOf<T const>(first),
                                               RowsOf<T const>(second),
                                               RowsOf<T>(sum),
                                               {sum.width, sum.height},
                                               inPlace}));
        };
        return Dispatch<std::uint8_t, std::int16_t, std::uint16_t, float>(first.type, typed, [&] {
            return Report(SizeOfTypeCode(first.type) ? int{kNoPrimitive} : kNoSuchType);
        });
    };
    return WithTwoImages(L"ZPA::ipp_add", first, second, output, inPlace, add,
                         L"ipp_add(): Unexpected exception.");
}

SOLVANE_RETURNCODE Add(ImageAttributes first, ImageAttributes second, ImageAttributes* output) {
    return Guarded(L"ZPA::Add", [&] {
        if (first.type != second.type) return Fail(SOLVANE_INVALID_ARGUMENT, kDifferentTypes);
        bool const inPlace = !output;
        switch (first.type) {
            case eByte:
            case eInt16:
            case eUInt16:
            case eSingle:
                return ipp_add(first, second, output, inPlace);
            case eSByte:
                return template_add<char>(first, second, output, inPlace);
            case eInt32:
            case eUInt32:
                return template_add<int>(first, second, output, inPlace);
            case eDouble:
                return template_add<double>(first, second, output, inPlace);
            default:
                return RefuseType();
        }
    });
}

}  // namespace ZPA
