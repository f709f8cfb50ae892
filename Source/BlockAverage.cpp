// The means of blocks: what they refuse, and how they divide.
#include <Basics/BlockAverage.h>

#include <type_traits>

#include "primitives/BlockMeans.h"
#include "Source/Internal/Frame.h"

namespace ZPA {
namespace {

// What a family of the functions says.
struct Texts {
    wchar_t const* null;
    wchar_t const* factor;
    wchar_t const* size;
};
#define ZPA_TEXTS(name)                                                          \
    {                                                                            \
        L##name L"() - NULL pointer(s).", L##name L"() - subsample factor < 1.", \
            L##name L"() - Incorrect SS w x h passed in = %d x %d."              \
    }
constexpr Texts kWrappingTexts = ZPA_TEXTS("blockAverageDownSample");
constexpr Texts kPlainTexts = ZPA_TEXTS("blockAverageDownSampleTemplate");
constexpr Texts kCodedTexts = ZPA_TEXTS("blockAverageDownSampleCodedMaskTemplate");
#undef ZPA_TEXTS

template <typename T> struct Reduction {
    T const* input;
    T* output;
    int width, height, outputWidth, outputHeight, factor;

    SOLVANE_RETURNCODE Check(Texts const& texts) const {
        if (!input || !output) return Fail(SOLVANE_NULL_POINTER, texts.null);
        if (factor < 1) return Fail(SOLVANE_OUT_OF_RANGE, texts.factor);
        if (width / factor != outputWidth || height / factor != outputHeight)
            return Fail(SOLVANE_UNEXPECTED, texts.size, outputWidth, outputHeight);
        return SOLVANE_OK;
    }

    // Calls means(pixels, results) for every row of blocks.
    template <typename Means> void ForEachRow(Means const& means) const {
        if (outputWidth < 1) return;
        for (std::ptrdiff_t y = 0; y < outputHeight; ++y)
            means(input + y * factor * width, output + y * outputWidth);
    }

    // Calls mean(block) for every block: its first pixel's address in, its mean out.
    template <typename Mean> void ForEachBlock(Mean const& mean) const {
        ForEachRow([&](T const* pixels, T* means) {
            for (std::ptrdiff_t x = 0; x < outputWidth; ++x) means[x] = mean(pixels + x * factor);
        });
    }

    // Calls add(pixel) for every pixel of a block.
    template <typename Add> void ForEachPixel(T const* block, Add const& add) const {
        for (int y = 0; y < factor; ++y, block += width)
            for (int x = 0; x < factor; ++x) add(block[x]);
    }

    std::int64_t Area() const { return std::int64_t{factor} * factor; }
};

// Whether the primitives serve blocks of the factor.
template <typename T> constexpr bool HasPrimitive(int factor) {
    return std::is_floating_point_v<T> || factor <= kLargestBlock;
}

template <typename T> void Average(Reduction<T> const& given) {
    if (HasPrimitive<T>(given.factor))
        return given.ForEachRow([&](T const* pixels, T* means) {
            BlockMeans(pixels, given.width, given.factor, given.outputWidth, means);
        });
    if constexpr (std::is_integral_v<T>)
        given.ForEachBlock([&](T const* block) {
            std::int64_t sum = 0;
            given.ForEachPixel(block, [&](T pixel) { sum += pixel; });
            return static_cast<T>(sum / given.Area());
        });
}

template <typename T> void AverageWithout(T code, Reduction<T> const& given) {
    if (HasPrimitive<T>(given.factor))
        return given.ForEachRow([&](T const* pixels, T* means) {
            BlockMeansWithout(code, pixels, given.width, given.factor, given.outputWidth, means);
        });
    if constexpr (std::is_integral_v<T>)
        given.ForEachBlock([&](T const* block) {
            std::int64_t sum = 0, count = 0;
            given.ForEachPixel(block, [&](T pixel) {
                if (pixel == code) return;
                sum += pixel;
                ++count;
            });
            return count == 0 ? code : static_cast<T>(sum / count);
        });
}

void AverageWrapping(Reduction<unsigned short> const& given) {
    if (given.factor <= kLargestBlock) return Average(given);
    given.ForEachBlock([&](unsigned short const* block) {
        std::uint32_t sum = 0;
        given.ForEachPixel(block, [&](unsigned short pixel) { sum += pixel; });
        return static_cast<unsigned short>(static_cast<std::int32_t>(sum) / given.Area());
    });
}

template <typename T> SOLVANE_RETURNCODE CheckAndAverage(Reduction<T> const& given) {
    SOLVANE_RETURNCODE const code = given.Check(kPlainTexts);
    if (code == SOLVANE_OK) Average(given);
    return code;
}

template <typename T> SOLVANE_RETURNCODE CheckAndAverageWithout(T reserved, Reduction<T> const& given) {
    SOLVANE_RETURNCODE const code = given.Check(kCodedTexts);
    if (code == SOLVANE_OK) AverageWithout(reserved, given);
    return code;
}

}  // namespace

SOLVANE_RETURNCODE blockAverage(unsigned short* input, unsigned short* output, int width, int height,
                                int outputWidth, int outputHeight, int factor) {
    return Guarded(L"ZPA::blockAverage", [&] {
        Reduction<unsigned short> const given{input,       output,       width, height,
                                              outputWidth, outputHeight, factor};
        SOLVANE_RETURNCODE const code = given.Check(kWrappingTexts);
        if (code == SOLVANE_OK) AverageWrapping(given);
        return code;
    });
}

template <typename T>
SOLVANE_RETURNCODE blockAverageDownSampleTemplate(T* input, T* output, int width, int height, int outputWidth,
                                                  int outputHeight, int factor) {
    return Guarded(L"ZPA::blockAverageDownSampleTemplate", [&] {
        return CheckAndAverage<T>({input, output, width, height, outputWidth, outputHeight, factor});
    });
}

template <typename T>
SOLVANE_RETURNCODE blockAverageDownSampleCodedMaskTemplate(T* input, T* output, int width, int height,
                                                           int outputWidth, int outputHeight, int factor,
                                                           T code) {
    return Guarded(L"ZPA::blockAverageDownSampleCodedMaskTemplate", [&] {
        return CheckAndAverageWithout<T>(code,
                                         {input, output, width, height, outputWidth, outputHeight, factor});
    });
}

#define ZPA_DEFINED_HERE(T)                                                                               \
    template ZPA_INSTANCE_API SOLVANE_RETURNCODE blockAverageDownSampleTemplate<T>(T*, T*, int, int, int, \
                                                                                   int, int);             \
    template ZPA_INSTANCE_API SOLVANE_RETURNCODE blockAverageDownSampleCodedMaskTemplate<T>(              \
        T*, T*, int, int, int, int, int, T);
ZPA_FOR_BLOCK_AVERAGE_ELEMENTS_(ZPA_DEFINED_HERE)
#undef ZPA_DEFINED_HERE

// The plain names stand in the log under their own.
#define ZPA_PLAIN_NAMES(suffix, T)                                                                           \
    SOLVANE_RETURNCODE blockAverageDownSample_##suffix(T* input, T* output, int width, int height,           \
                                                       int outputWidth, int outputHeight, int factor) {      \
        return Guarded(L"ZPA::blockAverageDownSample_" #suffix, [&] {                                        \
            return CheckAndAverage<T>({input, output, width, height, outputWidth, outputHeight, factor});    \
        });                                                                                                  \
    }                                                                                                        \
    SOLVANE_RETURNCODE blockAverageDownSampleCodedMask_##suffix(                                             \
        T* input, T* output, int width, int height, int outputWidth, int outputHeight, int factor, T code) { \
        return Guarded(L"ZPA::blockAverageDownSampleCodedMask_" #suffix, [&] {                               \
            return CheckAndAverageWithout<T>(                                                                \
                code, {input, output, width, height, outputWidth, outputHeight, factor});                    \
        });                                                                                                  \
    }
ZPA_PLAIN_NAMES(ushort, unsigned short)
ZPA_PLAIN_NAMES(short, short)
ZPA_PLAIN_NAMES(double, double)
#undef ZPA_PLAIN_NAMES

}  // namespace ZPA
