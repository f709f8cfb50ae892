// Type codes by size and name, and outputs of operations that cannot work in place.
#include <Basics/CoreTypes.h>

#include <cstring>
#include <type_traits>

#include "Source/Internal/Memory.h"
#include "Source/Internal/Report.h"
#include "Source/Internal/Text.h"

namespace ZPA {
namespace {

// Records pass by value across a C boundary.
template <typename Record>
constexpr bool kIsPlain = std::is_trivially_copyable_v<Record>&& std::is_standard_layout_v<Record>;
static_assert(kIsPlain<ImageAttributes> && kIsPlain<BufferAttributes>);
static_assert(kIsPlain<APOINT> && kIsPlain<SSize> && kIsPlain<Rectangle> && kIsPlain<Point>);
static_assert(kIsPlain<BladeInfo> && kIsPlain<Boundary>);
static_assert(sizeof(BladeInfo) == 14 * 4 && sizeof(Boundary) == 8 * 4);
static_assert(sizeof(void*) != 4 || (sizeof(ImageAttributes) == 7 * 4 && sizeof(BufferAttributes) == 3 * 4));
static_assert(sizeof(void*) != 8 || (sizeof(ImageAttributes) == 40 && sizeof(BufferAttributes) == 24));
static_assert(sizeof(ULong32) == 4);

}  // namespace

int SizeOfTypeCode(eTypeCode type) {
    switch (type) {
        case eSByte:
        case eByte:
            return 1;
        case eInt16:
        case eUInt16:
            return 2;
        case eInt32:
        case eUInt32:
        case eSingle:
            return 4;
        case eDouble:
            return 8;
        default:
            return 0;
    }
}

eTypeCode ParseTypeCode(char const* name) {
    struct Named {
        char const* name;
        eTypeCode type;
    };
    static constexpr Named kNames[] = {
        {"unsigned char", eByte},
        {"char", eSByte},
        {"byte", eByte},
        {"signed char", eSByte},
        {"short", eInt16},
        {"ushort", eUInt16},
        {"unsigned short", eUInt16},
        {"int", eInt32},
        {"unsigned int", eUInt32},
        {"long", eInt32},
        {"unsigned long", eUInt32},
        {"float", eSingle},
        {"double", eDouble},
        {"long double", eDouble},
    };
    if (!name) return eUnknown;
    for (Named const& known : kNames)
        if (SameText(name, known.name)) return known.type;
    return eUnknown;
}

SOLVANE_RETURNCODE ValidateImageBuffer(ImageAttributes source, ImageAttributes* destination) {
    if (!destination || source.buffer == destination->buffer)
        return Report(SOLVANE_INVALID_ARGUMENT, L"Output is NULL and in-place operation not supported");
    if (destination->buffer) {
        if (destination->width != source.width || destination->height != source.height)
            return Report(SOLVANE_INVALID_ARGUMENT, L"Source and destination image must be same size.");
        return SOLVANE_OK;
    }

    *destination = source;
    destination->buffer = nullptr;
    std::uint64_t const elements = ElementsSpanned(source.width, source.height, source.stride);
    std::uint64_t const bytes = BlockBytes(elements, static_cast<std::size_t>(SizeOfTypeCode(source.type)));
    destination->buffer = AllocateElements<unsigned char>(bytes);
    if (!destination->buffer) return ReportMemory(L"ValidateImageBuffer", bytes, 1);
    std::memset(destination->buffer, 0, static_cast<std::size_t>(bytes));
    return SOLVANE_OK;
}

void FreePixels(void* pixels) { ::operator delete[](pixels); }

}  // namespace ZPA
