// NormalizeImage and NormalizeBuffer: elements as standard scores.
#include <Basics/Statistics.h>

#include "primitives/ByteTable.h"
#include "primitives/ScoreRow.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/Measures.h"

namespace ZPA {
namespace {

SOLVANE_RETURNCODE RefuseType() {
    return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The input image type is not supported");
}

// Calls work(score), with what gives rows of `count` elements in all their scores.
template <typename T, typename Work>
void WithScores(Moments const& moments, std::int64_t count, Work const& work) {
    auto const score = [&](T const* from, std::ptrdiff_t size, T* to, std::uint8_t const* mask = nullptr) {
        ScoreRow(from, mask, size, moments.mean, moments.deviation, to);
    };
    WithTable<T>(score, count, work);
}

}  // namespace

SOLVANE_RETURNCODE NormalizeImage(ImageAttributes image, Rectangle const* roi, ImageAttributes const* mask,
                                  APOINT const* maskOrigin, ImageAttributes* output) {
    return Guarded(L"ZPA::NormalizeImage", [&] {
        if (mask && mask->type != eByte)
            return Fail(SOLVANE_SIZE_MISMATCH, L"The mask must be of type eByte.");

        auto const normalize = [&](auto element) {
            using T = typename decltype(element)::type;
            if (!image.buffer)
                return Fail(SOLVANE_NULL_POINTER, L"The input image had a NULL buffer pointer.");
            Region region;
            SOLVANE_RETURNCODE const code = region.Resolve(image, roi, mask, maskOrigin, kOfInput);
            if (code != SOLVANE_OK) return code;
            if (!output || !output->buffer)
                return Fail(SOLVANE_NULL_POINTER, L"The output image had a NULL buffer pointer.");
            if (RowsOverlap(image) || !region.FitsInto(*output, image))
                return Fail(SOLVANE_SIZE_MISMATCH, L"The output image is too small.");

            Statistics<T> statistics{};
            AddToStatistics(region, image, Measure::kSums, statistics);
            ImageView<T const> const pixels(image);
            auto const to = static_cast<T*>(output->buffer);
            WithScores<T>(MomentsOf(statistics), region.PixelCount(), [&](auto const& score) {
                region.ForEachRow(pixels,
                                  [&](T const* row, unsigned char const* maskRow, std::ptrdiff_t count) {
                                      score(row, count, to + (row - pixels.Row(0)), maskRow);
                                  });
            });
            return SOLVANE_OK;
        };
        return Dispatch<std::uint8_t, std::uint16_t, double>(image.type, normalize, RefuseType);
    });
}

SOLVANE_RETURNCODE NormalizeBuffer(BufferAttributes buffer, int const* start, int const* end,
                                   BufferAttributes* output) {
    return Guarded(L"ZPA::NormalizeBuffer", [&] {
        if (!output) return Fail(SOLVANE_NULL_POINTER, L"The output buffer had a NULL buffer pointer.");
        if (output->size != buffer.size)
            return Fail(SOLVANE_SIZE_MISMATCH, L"Input and Output buffers must be of the same size");

        auto const normalize = [&](auto element) {
            using T = typename decltype(element)::type;
            IndexRange range;
            SOLVANE_RETURNCODE const code = range.Resolve(buffer, start, end);
            if (code != SOLVANE_OK) return code;
            if (!output->buffer)
                return Fail(SOLVANE_NULL_POINTER, L"The output buffer had a NULL buffer pointer.");
            if (SizeOfTypeCode(output->type) < static_cast<int>(sizeof(T)))
                return Fail(SOLVANE_SIZE_MISMATCH, L"The output buffer's elements are too small.");

            Statistics<T> statistics{};
            AddToStatistics(range, buffer, Measure::kSums, statistics);
            auto const from = static_cast<T const*>(buffer.buffer) + range.First();
            auto const to = static_cast<T*>(output->buffer) + range.First();
            WithScores<T>(MomentsOf(statistics), range.Count(),
                          [&](auto const& score) { score(from, range.Count(), to); });
            return SOLVANE_OK;
        };
        return Dispatch<std::uint8_t, std::uint16_t, float, double>(buffer.type, normalize, RefuseType);
    });
}

}  // namespace ZPA
