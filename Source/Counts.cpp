// ImageCountOfN, RowCountOfN and ColumnCountOfN: how many pixels have a value.
#include <Basics/Statistics.h>

#include "primitives/MatchRow.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/OutputBuffer.h"
#include "Source/Internal/Region.h"

namespace ZPA {
namespace {

// The checks that the three share. `sameLocation`: the two outputs are one.
template <typename... Served, typename Count>
SOLVANE_RETURNCODE CheckAndCount(ImageAttributes const& image, Rectangle const* roi,
                                 ImageAttributes const* mask, APOINT const* maskOrigin, bool noOutput,
                                 bool sameLocation, Count const& count) {
    if (mask && mask->type != eByte)
        return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The mask must be of type eByte.");
    auto const checked = [&](auto element) {
        using T = typename decltype(element)::type;
        if (noOutput) return Fail(SOLVANE_NULL_POINTER, L"Both of the output pointers were NULL.");
        if (sameLocation)
            return Fail(SOLVANE_NULL_POINTER, L"Both output pointers point to same count location.");
        if (!image.buffer) return Fail(SOLVANE_NULL_POINTER, L"The input image had a NULL buffer pointer.");
        Region region;
        SOLVANE_RETURNCODE const code = region.Resolve(image, roi, mask, maskOrigin, kOfInput);
        return code == SOLVANE_OK ? count(region, ImageView<T const>(image)) : code;
    };
    return Dispatch<Served...>(image.type, checked, [] {
        return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The input image must be of type eByte or eUInt16.");
    });
}

// The counts of rows or of columns. `size` tells how many of them a region has; `count` fills the two arrays.
template <typename SizeOf, typename Count>
SOLVANE_RETURNCODE CountInto(ImageAttributes const& image, Rectangle const* roi, ImageAttributes const* mask,
                             APOINT const* maskOrigin, BufferAttributes* targetCount,
                             BufferAttributes* notTargetCount, SizeOf const& sizeOf, Count const& count) {
    bool const sameLocation =
        targetCount && notTargetCount && targetCount->buffer && targetCount->buffer == notTargetCount->buffer;
    auto const prepareAndCount = [&](Region const& region, auto const& pixels) {
        int const size = sizeOf(region.Area());
        OutputBuffer targets(targetCount), others(notTargetCount);
        SOLVANE_RETURNCODE code = targets.Prepare(size);
        if (code != SOLVANE_OK)
            return Fail(code, L"There is a problem with the count of target output buffer.");
        code = others.Prepare(size);
        if (code != SOLVANE_OK)
            return Fail(code, L"There is a problem with the count of not target output buffer.");
        count(region, pixels, targets.Cleared(), others.Cleared());
        return others.Finish(targets.Finish(SOLVANE_OK));
    };
    return CheckAndCount<std::uint8_t, std::uint16_t>(
        image, roi, mask, maskOrigin, !targetCount && !notTargetCount, sameLocation, prepareAndCount);
}

}  // namespace

SOLVANE_RETURNCODE ImageCountOfN(ImageAttributes image, Rectangle const* roi, ImageAttributes const* mask,
                                 APOINT const* maskOrigin, int n, int* targetCount, int* notTargetCount) {
    return Guarded(L"ZPA::ImageCountOfN", [&] {
        auto const count = [&](Region const& region, auto const& pixels) {
            Matches all{0, 0};
            region.ForEachRow(pixels, [&](auto row, unsigned char const* maskRow, std::ptrdiff_t size) {
                Matches const matches = CountMatches(row, maskRow, size, n);
                all.equal += matches.equal;
                all.selected += matches.selected;
            });
            if (targetCount) *targetCount = static_cast<int>(all.equal);
            if (notTargetCount) *notTargetCount = static_cast<int>(all.selected - all.equal);
            return SOLVANE_OK;
        };
        return CheckAndCount<std::uint8_t, std::int16_t, std::uint16_t>(image, roi, mask, maskOrigin,
                                                                        !targetCount && !notTargetCount,
                                                                        targetCount == notTargetCount, count);
    });
}

SOLVANE_RETURNCODE RowCountOfN(ImageAttributes image, Rectangle const* roi, ImageAttributes const* mask,
                               APOINT const* maskOrigin, int n, BufferAttributes* targetCount,
                               BufferAttributes* notTargetCount) {
    return Guarded(L"ZPA::RowCountOfN", [&] {
        auto const count = [n](Region const& region, auto const& pixels, std::uint32_t* targets,
                               std::uint32_t* others) {
            region.ForEachNumberedRow(
                pixels, [&](int y, auto row, unsigned char const* maskRow, std::ptrdiff_t size) {
                    Matches const matches = CountMatches(row, maskRow, size, n);
                    targets[y] = static_cast<std::uint32_t>(matches.equal);
                    others[y] = static_cast<std::uint32_t>(matches.selected - matches.equal);
                });
        };
        return CountInto(
            image, roi, mask, maskOrigin, targetCount, notTargetCount,
            [](Rectangle const& area) { return area.height; }, count);
    });
}

SOLVANE_RETURNCODE ColumnCountOfN(ImageAttributes image, Rectangle const* roi, ImageAttributes const* mask,
                                  APOINT const* maskOrigin, int n, BufferAttributes* targetCount,
                                  BufferAttributes* notTargetCount) {
    return Guarded(L"ZPA::ColumnCountOfN", [&] {
        auto const count = [n](Region const& region, auto const& pixels, std::uint32_t* targets,
                               std::uint32_t* others) {
            region.ForEachNumberedRow(pixels,
                                      [&](int, auto row, unsigned char const* maskRow, std::ptrdiff_t size) {
                                          CountMatchesByColumn(row, maskRow, size, n, targets, others);
                                      });
        };
        return CountInto(
            image, roi, mask, maskOrigin, targetCount, notTargetCount,
            [](Rectangle const& area) { return area.width; }, count);
    });
}

}  // namespace ZPA
