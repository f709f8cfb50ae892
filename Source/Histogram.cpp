// GetIntegerHistogram and GetRealHistogram: how many pixels fall into each bin.
#include <Basics/Histogram.h>

#include <algorithm>
#include <new>

#include "primitives/CopySelected.h"
#include "primitives/CountTables.h"
#include "primitives/HistogramEven.h"
#include "primitives/RealBins.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/OutputBuffer.h"
#include "Source/Internal/Region.h"

namespace ZPA {
namespace {

constexpr auto kNoMask = L"The mask had a NULL buffer pointer.";
constexpr auto kNoInput = L"The input image had a NULL buffer pointer.";

// What both check of the output before they look at the image.
SOLVANE_RETURNCODE CheckHistogram(BufferAttributes const* histogram) {
    if (!histogram) return Fail(SOLVANE_NULL_POINTER, L"The histogram pointer was NULL.");
    if (histogram->buffer && histogram->type != eUInt32)
        return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The histogram must be of type eUInt32.");
    return SOLVANE_OK;
}

// The values that are counted, a bin each.
struct ValueRange {
    std::int64_t min, max;
    std::int64_t Bins() const { return max - min + 1; }
};

// The values of pixels with that many bits, where the caller gave no limits. Those of unsigned pixels end
// with what T holds; those of signed ones leave out the most negative.
template <typename T> ValueRange RangeOfValues(int bits, int const* minValue, int const* maxValue) {
    ValueRange range;
    if constexpr (std::is_signed_v<T>) {
        std::int64_t const half = std::int64_t{1} << (bits - 1);
        range = {1 - half, half - 1};
    } else {
        range = {0, static_cast<T>((std::int64_t{1} << bits) - 1)};
    }
    if (minValue) range.min = *minValue;
    if (maxValue) range.max = *maxValue;
    return range;
}

template <typename T>
using HistogramPrimitive = Status (*)(T const*, std::ptrdiff_t, Size, std::uint32_t*, std::int64_t*,
                                      std::int64_t, std::int64_t, std::int64_t) noexcept;

template <typename T>
SOLVANE_RETURNCODE CountAllBy(HistogramPrimitive<T> primitive, wchar_t const* name, Rectangle const& area,
                              ImageView<T const> const& pixels, ValueRange const& range,
                              std::uint32_t* counts) {
    constexpr auto kSize = static_cast<std::ptrdiff_t>(sizeof(T));
    Status const status =
        primitive(pixels.Row(area.y) + area.x, pixels.Stride() * kSize, {area.width, area.height}, counts,
                  nullptr, range.Bins() + 1, range.min, range.max + 1);
    return status == kDone ? SOLVANE_OK : Fail(SOLVANE_OPERATION_FAILED, L"Failed in %s().", name);
}
SOLVANE_RETURNCODE CountAll(Rectangle const& area, ImageView<std::uint8_t const> const& pixels,
                            ValueRange const& range, std::uint32_t* counts) {
    return CountAllBy(ippiHistogramEven_8u_C1R, L"ippiHistogramEven_8u_C1R", area, pixels, range, counts);
}
SOLVANE_RETURNCODE CountAll(Rectangle const& area, ImageView<std::uint16_t const> const& pixels,
                            ValueRange const& range, std::uint32_t* counts) {
    return CountAllBy(ippiHistogramEven_16u_C1R, L"ippiHistogramEven_16u_C1R", area, pixels, range, counts);
}
SOLVANE_RETURNCODE CountAll(Rectangle const& area, ImageView<std::int16_t const> const& pixels,
                            ValueRange const& range, std::uint32_t* counts) {
    return CountAllBy(ippiHistogramEven_16s_C1R, L"ippiHistogramEven_16s_C1R", area, pixels, range, counts);
}

template <typename Mask, typename T>
void CountSelected(Region const& region, ImageView<T const> const& pixels, ValueRange const& range,
                   std::uint32_t* counts) {
    CountTables<T> tables;
    if (!tables.Prepare(range.min, range.Bins())) throw std::bad_alloc();
    region.ForEachRow<Mask>(pixels, [&](T const* row, Mask const* mask, std::ptrdiff_t count) {
        tables.CountSelected(row, mask, count);
    });
    tables.AddTo(counts);
}

template <typename T, typename Mask>
SOLVANE_RETURNCODE CountIntegers(ImageAttributes const& image, Rectangle const* roi,
                                 ImageAttributes const* mask, APOINT const* maskOrigin, int const* minValue,
                                 int const* maxValue, BufferAttributes* histogram) {
    if (!image.buffer) return Fail(SOLVANE_NULL_POINTER, kNoInput);
    Region region;
    SOLVANE_RETURNCODE code = region.ResolveRectangle(image, roi, kOfInput);
    if (code != SOLVANE_OK) return code;
    int const bits = image.bitsperpixel;
    if (bits < 1 || bits > 31) return Fail(SOLVANE_INVALID_ARGUMENT, L"Illegal minValue/maxValue.");
    ValueRange const range = RangeOfValues<T>(bits, minValue, maxValue);
    if (range.max < range.min || range.max > (std::int64_t{1} << bits) - 1)
        return Fail(SOLVANE_INVALID_ARGUMENT, L"Illegal minValue/maxValue.");

    OutputBuffer output(histogram);
    code = output.Prepare(range.Bins());
    if (code != SOLVANE_OK) return Fail(code, L"The histogram buffer is too small.");
    code = region.ResolveMask(image, mask, maskOrigin);
    if (code != SOLVANE_OK) return code;
    ImageView<T const> const pixels(image);
    if (!region.IsMasked()) return output.Finish(CountAll(region.Area(), pixels, range, output.Counts()));
    CountSelected<Mask>(region, pixels, range, output.Cleared());
    return output.Finish(SOLVANE_OK);
}

// Pixels that find their bins before they are counted, while the nearest cache holds them.
constexpr std::ptrdiff_t kBlock = 1024;

template <typename T>
void CountReals(T const* row, unsigned char const* mask, std::ptrdiff_t count, RealBins const& bins,
                CountTables<std::uint32_t>& tables) {
    T selected[kBlock];
    std::uint32_t binOf[kBlock];
    for (std::ptrdiff_t x = 0; x < count; x += kBlock) {
        std::ptrdiff_t size = std::min(count - x, kBlock);
        if (mask) size = CopySelected(row + x, mask + x, size, selected);
        FindBins(mask ? selected : row + x, size, bins, binOf);
        tables.Count(binOf, size);
    }
}

}  // namespace

SOLVANE_RETURNCODE GetIntegerHistogram(ImageAttributes image, Rectangle const* roi,
                                       ImageAttributes const* mask, APOINT const* maskOrigin,
                                       int const* minValue, int const* maxValue,
                                       BufferAttributes* histogram) {
    return Guarded(L"ZPA::GetIntegerHistogram", [&] {
        if (mask && !mask->buffer) return Fail(SOLVANE_NULL_POINTER, kNoMask);
        SOLVANE_RETURNCODE const code = CheckHistogram(histogram);
        if (code != SOLVANE_OK) return code;

        auto const ofImage = [&](auto element) {
            auto const underMask = [&](auto maskElement) {
                // Both kinds of 16 bits are zero alike.
                using Mask = std::make_unsigned_t<typename decltype(maskElement)::type>;
                return CountIntegers<typename decltype(element)::type, Mask>(image, roi, mask, maskOrigin,
                                                                             minValue, maxValue, histogram);
            };
            return Dispatch<std::uint8_t, std::int16_t, std::uint16_t>(
                mask ? mask->type : eByte, underMask, [] {
                    return Fail(SOLVANE_UNSUPPORTED_TYPE,
                                L"The mask image must be of type eByte, eUInt16 or eInt16.");
                });
        };
        return Dispatch<std::uint8_t, std::int16_t, std::uint16_t>(image.type, ofImage, [] {
            return Fail(SOLVANE_UNSUPPORTED_TYPE,
                        L"The input image must be of type eByte, eUInt16, or eInt16.");
        });
    });
}

SOLVANE_RETURNCODE GetRealHistogram(ImageAttributes image, Rectangle const* roi, ImageAttributes const* mask,
                                    APOINT const* maskOrigin, int binCount, double minValue, double maxValue,
                                    BufferAttributes* histogram) {
    return Guarded(L"ZPA::GetRealHistogram", [&] {
        if (mask && !mask->buffer) return Fail(SOLVANE_NULL_POINTER, kNoMask);
        if (mask && mask->type != eByte)
            return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The mask must be of type eByte.");
        SOLVANE_RETURNCODE const code = CheckHistogram(histogram);
        if (code != SOLVANE_OK) return code;

        auto const countReals = [&](auto element) {
            using T = typename decltype(element)::type;
            if (!image.buffer) return Fail(SOLVANE_NULL_POINTER, kNoInput);
            Region region;
            SOLVANE_RETURNCODE step = region.ResolveRectangle(image, roi, kOfInput);
            if (step != SOLVANE_OK) return step;
            if (maxValue < minValue)
                return Fail(SOLVANE_INVALID_ARGUMENT, L"minValue is less than maxValue.");
            if (binCount < 1) return Fail(SOLVANE_INVALID_ARGUMENT, L"binCount must be >= 1.");

            OutputBuffer output(histogram);
            step = output.Prepare(binCount);
            if (step != SOLVANE_OK) return Fail(step, L"The histogram buffer is too small.");
            step = region.ResolveMask(image, mask, maskOrigin);
            if (step != SOLVANE_OK) return step;

            double const width = (maxValue - minValue) / (binCount - 1);
            RealBins const bins{minValue - width * 0.5, width, static_cast<std::uint32_t>(binCount)};
            CountTables<std::uint32_t> tables;
            if (!tables.Prepare(0, binCount)) throw std::bad_alloc();
            region.ForEachRow(ImageView<T const>(image),
                              [&](T const* row, unsigned char const* maskRow, std::ptrdiff_t count) {
                                  CountReals(row, maskRow, count, bins, tables);
                              });
            tables.AddTo(output.Cleared());
            return output.Finish(SOLVANE_OK);
        };
        return Dispatch<float, double>(image.type, countReals, [] {
            return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The input image must be of type eSingle or eDouble.");
        });
    });
}

}  // namespace ZPA
