// The rectangular flat-top filters: what they refuse, and which kernel serves which form.
#include <Basics/FlatTopFilter.h>

#include <algorithm>
#include <memory>
#include <type_traits>

#include "primitives/ScanMean.h"
#include "primitives/StripMean.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/Memory.h"

namespace ZPA {
namespace {

// What a family of the filters says.
struct Texts {
    wchar_t const* null;
    wchar_t const* kernel;
    wchar_t const* inPlace;
    wchar_t const* maskInPlace;
    wchar_t const* context;  // of a failed allocation
};
#define ZPA_TEXTS(name)                                                               \
    {                                                                                 \
        L##name L"() - NULL pointer(s).", L##name L"() - invalid kernel size.",       \
            L##name L"() - input and output must be different buffers.",              \
            L##name L"() - mask and output must be different buffers.", L##name L"()" \
    }
constexpr Texts kWrappingTexts = ZPA_TEXTS("rect_flat_top_filtering");
constexpr Texts kPlainTexts = ZPA_TEXTS("rectFlatTopFilteringTemplate");
constexpr Texts kMaskedTexts = ZPA_TEXTS("rectFlatTopFilteringWithMaskTemplate");
#undef ZPA_TEXTS

bool ShareMemory(void const* a, std::uint64_t aBytes, void const* b, std::uint64_t bBytes) {
    auto const aAt = reinterpret_cast<std::uintptr_t>(a), bAt = reinterpret_cast<std::uintptr_t>(b);
    return aAt < bAt ? bAt - aAt < aBytes : aAt - bAt < bBytes;
}

// The arguments that all forms have.
template <typename T> struct Arguments {
    T const* input;
    T* output;
    int width, height;
    int kernelWidth, kernelHeight;

    std::uint64_t Pixels() const {
        return static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    }
    Size Image() const { return {width, height}; }
    Size Window() const { return {kernelWidth | 1, kernelHeight | 1}; }
};

template <typename T>
SOLVANE_RETURNCODE Check(Arguments<T> const& given, bool masked, void const* mask, Texts const& texts) {
    if (!given.input || !given.output || (masked && !mask)) return Fail(SOLVANE_NULL_POINTER, texts.null);
    if (given.kernelWidth <= 2 || given.kernelHeight <= 2) return Fail(SOLVANE_OUT_OF_RANGE, texts.kernel);
    if (given.Window().width > given.width || given.Window().height > given.height)
        return Fail(SOLVANE_OUT_OF_RANGE, texts.kernel);
    std::uint64_t const bytes = BlockBytes(given.Pixels(), sizeof(T));
    if (ShareMemory(given.input, bytes, given.output, bytes))
        return Fail(SOLVANE_INVALID_ARGUMENT, texts.inPlace);
    if (masked && ShareMemory(mask, given.Pixels(), given.output, bytes))
        return Fail(SOLVANE_INVALID_ARGUMENT, texts.maskInPlace);
    return SOLVANE_OK;
}

// Runs filter(work) with as many doubles; null if there is no memory for them.
template <typename Filter>
SOLVANE_RETURNCODE WithWork(std::uint64_t doubles, Texts const& texts, Filter const& filter) {
    std::unique_ptr<double[]> const work(AllocateElements<double>(doubles));
    if (!work) return FailMemory(texts.context, BlockBytes(doubles, sizeof(double)));
    filter(work.get());
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE FilterWrapping(Arguments<unsigned short> const& given) {
    SOLVANE_RETURNCODE const code = Check(given, false, nullptr, kWrappingTexts);
    if (code != SOLVANE_OK) return code;
    return WithWork(ScanMeanWork(given.Image(), given.Window()), kWrappingTexts, [&](double* work) {
        WrappingScanMean(given.input, given.output, given.Image(), given.Window(), work);
    });
}

template <typename T> SOLVANE_RETURNCODE FilterPlain(Arguments<T> const& given) {
    SOLVANE_RETURNCODE const code = Check(given, false, nullptr, kPlainTexts);
    if (code != SOLVANE_OK) return code;
    if constexpr (std::is_integral_v<T>) {
        if (ScanMeanServes(given.Window()))
            return WithWork(ScanMeanWork(given.Image(), given.Window()), kPlainTexts, [&](double* work) {
                ScanMean(given.input, given.output, given.Image(), given.Window(), work);
            });
    }
    return WithWork(StripMeanWork(given.Image(), given.Window()), kPlainTexts, [&](double* work) {
        StripMean(given.input, given.output, given.Image(), given.Window(), work);
    });
}

template <typename T> SOLVANE_RETURNCODE FilterMasked(Arguments<T> const& given, char const* mask) {
    SOLVANE_RETURNCODE const code = Check(given, true, mask, kMaskedTexts);
    if (code != SOLVANE_OK) return code;
    auto const weights = reinterpret_cast<std::int8_t const*>(mask);
    auto const filter = [&](double* work) {
        WeightedStripMean(given.input, weights, given.output, given.Image(), given.Window(), work);
    };
    SOLVANE_RETURNCODE const done =
        WithWork(WeightedStripMeanWork(given.Image(), given.Window()), kMaskedTexts, filter);
    // The filter writes every pixel. Where it did not run, the output is cleared.
    if (done != SOLVANE_OK) std::fill_n(given.output, given.Pixels(), T());
    return done;
}

}  // namespace

SOLVANE_RETURNCODE rectFlatTopFilter(unsigned short* input, unsigned short* output, int width, int height,
                                     int kernelWidth, int kernelHeight) {
    return Guarded(L"ZPA::rectFlatTopFilter", [&] {
        return FilterWrapping({input, output, width, height, kernelWidth, kernelHeight});
    });
}

template <typename T>
SOLVANE_RETURNCODE rectFlatTopFilteringTemplate(T* input, T* output, int width, int height, int kernelWidth,
                                                int kernelHeight) {
    return Guarded(L"ZPA::rectFlatTopFilteringTemplate", [&] {
        return FilterPlain<T>({input, output, width, height, kernelWidth, kernelHeight});
    });
}

template <typename T>
SOLVANE_RETURNCODE rectFlatTopFilteringWithMaskTemplate(T* input, T* output, char* mask, int width,
                                                        int height, int kernelWidth, int kernelHeight) {
    return Guarded(L"ZPA::rectFlatTopFilteringWithMaskTemplate", [&] {
        return FilterMasked<T>({input, output, width, height, kernelWidth, kernelHeight}, mask);
    });
}

#define ZPA_DEFINED_HERE(T)                                                                                  \
    template ZPA_INSTANCE_API SOLVANE_RETURNCODE rectFlatTopFilteringTemplate<T>(T*, T*, int, int, int,      \
                                                                                 int);                       \
    template ZPA_INSTANCE_API SOLVANE_RETURNCODE rectFlatTopFilteringWithMaskTemplate<T>(T*, T*, char*, int, \
                                                                                         int, int, int);
ZPA_FOR_FLAT_TOP_ELEMENTS_(ZPA_DEFINED_HERE)
#undef ZPA_DEFINED_HERE

// The plain names stand in the log under their own.
#define ZPA_PLAIN_NAMES(suffix, T)                                                                   \
    SOLVANE_RETURNCODE rect_flat_top_filtering_##suffix(T* input, T* output, int width, int height,  \
                                                        int kernelWidth, int kernelHeight) {         \
        return Guarded(L"ZPA::rect_flat_top_filtering_" #suffix, [&] {                               \
            return FilterPlain<T>({input, output, width, height, kernelWidth, kernelHeight});        \
        });                                                                                          \
    }                                                                                                \
    SOLVANE_RETURNCODE rectFlatTopFilteringWithMask_##suffix(                                        \
        T* input, T* output, char* mask, int width, int height, int kernelWidth, int kernelHeight) { \
        return Guarded(L"ZPA::rectFlatTopFilteringWithMask_" #suffix, [&] {                          \
            return FilterMasked<T>({input, output, width, height, kernelWidth, kernelHeight}, mask); \
        });                                                                                          \
    }
ZPA_PLAIN_NAMES(ushort, unsigned short)
ZPA_PLAIN_NAMES(short, short)
ZPA_PLAIN_NAMES(double, double)
#undef ZPA_PLAIN_NAMES

}  // namespace ZPA
