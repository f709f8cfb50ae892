// strel and strel_GetBufferSize: the shapes, their sizes and their makers.
#include <Basics/Logging.h>
#include <Basics/StructuringElement.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <utility>
#include <vector>

#include "Source/DiskPatterns.h"
#include "Source/Internal/Convert.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/ImageView.h"

namespace ZPA {
namespace {

static_assert(sizeof(StrelParam) == sizeof(void*) && std::is_trivially_copyable_v<StrelParam>);

int NumberOf(StrelParam param) { return static_cast<int>(param.word); }
double const* NumbersOf(StrelParam param) { return reinterpret_cast<double const*>(param.word); }

SOLVANE_RETURNCODE FailNull() { return Fail(SOLVANE_NULL_POINTER, L"strel: Null pointer."); }

SOLVANE_RETURNCODE FailOverlap() { return Fail(SOLVANE_SIZE_MISMATCH, L"The mask's rows overlap."); }

SOLVANE_RETURNCODE FillBlock(ImageAttributes const& se, double* center) {
    if (!se.buffer || !center) return FailNull();
    if (RowsOverlap(se)) return FailOverlap();
    auto const fill = [&](auto element) {
        ImageView<typename decltype(element)::type> const pixels(se);
        for (std::ptrdiff_t y = 0; y < pixels.Height(); ++y) std::fill_n(pixels.Row(y), pixels.Width(), 1);
        center[0] = se.width / 2 + se.width % 2;
        center[1] = se.height / 2 + se.height % 2;
        return SOLVANE_OK;
    };
    return Dispatch<std::uint8_t, std::int8_t, std::uint16_t, std::int16_t, std::uint32_t, std::int32_t>(
        se.type, fill,
        [] { return Fail(SOLVANE_UNSUPPORTED_TYPE, L"strel: The mask's type is not supported."); });
}

SOLVANE_RETURNCODE MakeSquareStrel(ImageAttributes const& se, double* center, int param1) {
    EntryExitLogging const scope(L"ZPA::MakeSquareStrel", eLogFunction);
    if (param1 < 1 || se.height != param1 || se.width != param1)
        return Fail(SOLVANE_INVALID_ARGUMENT, L"MakeSquareStrel::param1 = %d is not supported.", param1);
    return FillBlock(se, center);
}

SOLVANE_RETURNCODE MakeRectangleStrel(ImageAttributes const& se, double* center, int param1, int param2) {
    EntryExitLogging const scope(L"ZPA::MakeRectangleStrel", eLogFunction);
    if (param1 < 1 || param2 < 1 || se.height != param1 || se.width != param2)
        return Fail(SOLVANE_INVALID_ARGUMENT, L"MakeSquareStrel::param1,param2 = %d,%d is not supported.",
                    param1, param2);
    return FillBlock(se, center);
}

void flipud(std::vector<int>& array) {
    EntryExitLogging const scope(L"ZPA::flipud", eLogFunction);
    for (std::size_t i = 0; i < array.size() / 2; ++i) std::swap(array[i], array[array.size() - 1 - i]);
}

// Appends one point, a step beyond the end of the line from (x1, y1) to (x2, y2). Its slope is an integer.
void intline(std::int64_t x1, std::int64_t x2, std::int64_t y1, std::int64_t y2, std::vector<int>& rows,
             std::vector<int>& cols) {
    EntryExitLogging const scope(L"ZPA::intline", eLogFunction);
    std::int64_t const dx = std::abs(x2 - x1);
    std::int64_t const dy = std::abs(y2 - y1);
    if (dx == 0 && dy == 0) {
        cols.push_back(static_cast<int>(x1));
        rows.push_back(static_cast<int>(y1));
        return;
    }
    // Toward zero, so halves are not rounded alike on both sides of it.
    auto const rounded = [](std::int64_t steps, std::int64_t slope, std::int64_t start) {
        return TruncateToInt32(static_cast<double>(steps) * static_cast<double>(slope) +
                               static_cast<double>(start) + 0.5);
    };
    bool flipped = false;
    if (dx >= dy) {
        if (x1 > x2) {
            std::swap(x1, x2);
            std::swap(y1, y2);
            flipped = true;
        }
        std::int64_t const x = x2 + 1;
        cols.push_back(static_cast<int>(x));
        rows.push_back(rounded(x - x1, (y2 - y1) / (x2 - x1), y1));
    } else {
        if (y1 > y2) {
            std::swap(x1, x2);
            std::swap(y1, y2);
            flipped = true;
        }
        std::int64_t const y = y2 + 1;
        rows.push_back(static_cast<int>(y));
        cols.push_back(rounded(y - y1, (x2 - x1) / (y2 - y1), x1));
    }
    if (flipped) {
        flipud(rows);
        flipud(cols);
    }
}

// The points of a line from its centre on, and the coordinates that lie farthest from it, with their signs.
struct LinePoints {
    LinePoints(int length, double degrees) {
        constexpr double kPi = 3.141592653589793;
        auto const half = static_cast<double>((std::int64_t{length} - 1) / 2);
        double const angle = degrees * kPi / 180.0;
        std::int64_t const x = TruncateToInt32(std::cos(angle) * half + 0.5);
        std::int64_t const y = TruncateToInt32(std::sin(angle) * half + 0.5);
        intline(-x, x, y, -y, rows, cols);
        for (int const col : cols)
            if (std::abs(std::int64_t{col}) > maxX) maxX = col;
        for (int const row : rows)
            if (std::abs(std::int64_t{row}) > maxY) maxY = row;
    }
    std::int64_t Width() const { return 2 * maxX + 1; }
    std::int64_t Height() const { return 2 * maxY + 1; }

    std::vector<int> rows;
    std::vector<int> cols;
    std::int64_t maxX = 0;
    std::int64_t maxY = 0;
};

SOLVANE_RETURNCODE LineStrel_GetBufferSize(int length, double const* degrees, int* height, int* width) {
    EntryExitLogging const scope(L"ZPA::LineStrel_GetBufferSize", eLogFunction);
    LinePoints const points(length, *degrees);
    *height = static_cast<int>(points.Height());
    *width = static_cast<int>(points.Width());
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE MakeLineStrel(ImageAttributes const& se, double* center, int length,
                                 double const* degrees) {
    EntryExitLogging const scope(L"ZPA::MakeLineStrel", eLogFunction);
    auto const printed = static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(degrees));
    if (length < 1)
        return Fail(SOLVANE_INVALID_ARGUMENT, L"MakeLineStrel(int len = %d, double theta_d = %x) error",
                    length, printed);
    if (!degrees) return FailNull();
    LinePoints const points(length, *degrees);
    // A size below 1, which a point above or left of the centre asks for, has no pixels to set.
    if (se.height != points.Height() || se.width != points.Width() || se.height < 1 || se.width < 1)
        return Fail(SOLVANE_INVALID_ARGUMENT,
                    L"MakeLineStrel(int len = %d, double theta_d = %x) buffer invalid", length, printed);
    if (!se.buffer || !center) return FailNull();
    if (RowsOverlap(se)) return FailOverlap();

    center[0] = static_cast<double>(points.maxX);
    center[1] = static_cast<double>(points.maxY);
    ImageView<unsigned char> const bytes(se);
    std::ptrdiff_t const block = std::max(bytes.Stride() * bytes.Height(), bytes.Width());
    std::memset(se.buffer, 0, static_cast<std::size_t>(block));
    for (std::size_t i = 0; i < points.rows.size(); ++i)
        bytes.Row(static_cast<std::ptrdiff_t>(points.rows[i] + points.maxY))[points.cols[i] + points.maxX] =
            1;
    return SOLVANE_OK;
}

// The largest coordinate of a periodic line; INT_MIN where it does not fit 32 bits.
int Reach(int count, double step) { return count < 0 ? 0 : TruncateToInt32(std::abs(count * step)); }

SOLVANE_RETURNCODE PeriodicLineStrel_GetBufferSize(int count, double const* steps, int* height, int* width) {
    EntryExitLogging const scope(L"ZPA::PeriodicLineStrel_GetBufferSize", eLogFunction);
    *height = static_cast<int>(std::int64_t{2} * std::max(Reach(count, steps[0]), 0) + 1);
    *width = static_cast<int>(std::int64_t{2} * std::max(Reach(count, steps[1]), 0) + 1);
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE MakePeriodicLineStrel(ImageAttributes const& se, double* center, int count,
                                         double const* steps) {
    EntryExitLogging const scope(L"ZPA::MakePeriodicLineStrel", eLogFunction);
    if (!se.buffer || !center || !steps) return FailNull();
    std::int64_t const maxRow = Reach(count, steps[0]);
    std::int64_t const maxCol = Reach(count, steps[1]);
    if (maxRow < 0 || maxCol < 0 || se.height < 2 * maxRow + 1 || se.width < 2 * maxCol + 1)
        return Fail(SOLVANE_INVALID_ARGUMENT, L"MakePeriodicLineStrel::se invalid");
    if (RowsOverlap(se)) return FailOverlap();

    center[0] = static_cast<double>(maxCol);
    center[1] = static_cast<double>(maxRow);
    ImageView<unsigned char> const bytes(se);
    for (std::ptrdiff_t y = 0; y < bytes.Height(); ++y) std::fill_n(bytes.Row(y), bytes.Width(), 0);
    for (std::int64_t k = -std::int64_t{count}; k <= count; ++k) {
        auto const at = static_cast<double>(k);
        auto const row = static_cast<std::ptrdiff_t>(maxRow + TruncateToInt32(at * steps[0]));
        bytes.Row(row)[maxCol + TruncateToInt32(at * steps[1])] = 1;
    }
    return SOLVANE_OK;
}

bool HasDisk(int radius) { return radius >= 1 && radius <= 6; }

void DiskStrel_GetBufferSize(int radius, int param3, int* height, int* width) {
    EntryExitLogging const scope(L"ZPA::DiskStrel_GetBufferSize", eLogFunction);
    if (!HasDisk(radius)) {
        // Logged, and not passed on: the caller's sizes stay as they were.
        (void)Fail(SOLVANE_UNSUPPORTED_TYPE, L"DiskStrel_GetBufferSize::radius = %d is not supported.",
                   radius);
        return;
    }
    *height = *width = DiskPatternOf(radius, param3).side;
}

SOLVANE_RETURNCODE MakeDiskStrel(ImageAttributes const& se, int radius, int param3) {
    EntryExitLogging const scope(L"ZPA::MakeDiskStrel", eLogFunction);
    auto const refuse = [] { return Fail(SOLVANE_INVALID_ARGUMENT, L"MakeDiskStrel::se invalid"); };
    std::int64_t const side = (std::int64_t{radius} + param3) * 2 - 1;
    if (!se.buffer || se.width != side || se.height != side) return refuse();
    if (!HasDisk(radius)) return SOLVANE_UNSUPPORTED_TYPE;
    if (se.type == eUInt16) std::memcpy(se.buffer, kWideDisk, sizeof kWideDisk);
    if (se.type != eByte) return SOLVANE_OK;

    DiskPattern const pattern = DiskPatternOf(radius, param3);
    if (pattern.side > side) return refuse();
    if (RowsOverlap(se)) return FailOverlap();
    ImageView<unsigned char> const pixels(se);
    for (std::ptrdiff_t y = 0; y < pattern.side; ++y)
        std::copy_n(pattern.elements + y * pattern.side, pattern.side, pixels.Row(y));
    return SOLVANE_OK;
}

// Tells the log of a shape that is known and not made.
SOLVANE_RETURNCODE MakeNothing(wchar_t const* maker) {
    EntryExitLogging const scope(maker, eLogFunction);
    return SOLVANE_UNSUPPORTED_TYPE;
}

enum class Shape {
    kArbitrary,
    kSquare,
    kDiamond,
    kRectangle,
    kOctagon,
    kLine,
    kPair,
    kPeriodicLine,
    kDisk,
    kOther
};

// In the order of the enumerators.
constexpr char const* kShapes[] = {"arbitrary", "square", "diamond",      "rectangle", "octagon",
                                   "line",      "pair",   "periodicline", "disk"};

Shape ShapeOf(char const* name) {
    int shape = 0;
    for (char const* known : kShapes) {
        if (std::strcmp(name, known) == 0) break;
        ++shape;
    }
    return static_cast<Shape>(shape);
}

}  // namespace

SOLVANE_RETURNCODE strel_GetBufferSize(char const* shape, int param1, StrelParam param2, int param3,
                                       int* height, int* width) {
    auto const tell = [&](Shape known) {
        switch (known) {
            case Shape::kSquare:
                *height = *width = param1;
                return SOLVANE_OK;
            case Shape::kDiamond:
            case Shape::kRectangle:
                *height = param1;
                *width = NumberOf(param2);
                return SOLVANE_OK;
            case Shape::kLine:
                return LineStrel_GetBufferSize(param1, NumbersOf(param2), height, width);
            case Shape::kPeriodicLine:
                return PeriodicLineStrel_GetBufferSize(param1, NumbersOf(param2), height, width);
            case Shape::kDisk:
                DiskStrel_GetBufferSize(param1, param3, height, width);
                return SOLVANE_OK;
            default:
                return SOLVANE_UNSUPPORTED_TYPE;
        }
    };
    return Guarded(L"ZPA::strel_GetBufferSize", [&] {
        auto const failNull = [] {
            return Fail(SOLVANE_NULL_POINTER, L"strel_GetBufferSize: Null pointer.");
        };
        if (!shape) return failNull();
        Shape const known = ShapeOf(shape);
        bool const hasSize = known != Shape::kArbitrary && known != Shape::kOctagon &&
                             known != Shape::kPair && known != Shape::kOther;
        bool const readsNumbers = known == Shape::kLine || known == Shape::kPeriodicLine;
        if (hasSize && (!height || !width || (readsNumbers && !NumbersOf(param2)))) return failNull();
        return tell(known);
    });
}

SOLVANE_RETURNCODE strel(ImageAttributes se, double* center, char const* shape, int param1, StrelParam param2,
                         int param3) {
    return Guarded(L"ZPA::strel", [&] {
        if (!shape) return FailNull();
        switch (ShapeOf(shape)) {
            case Shape::kArbitrary:
                return MakeNothing(L"ZPA::MakeArbitraryStrel");
            case Shape::kSquare:
                return MakeSquareStrel(se, center, param1);
            case Shape::kDiamond:
                return MakeNothing(L"ZPA::MakeDiamondStrel");
            case Shape::kRectangle:
                return MakeRectangleStrel(se, center, param1, NumberOf(param2));
            case Shape::kOctagon:
                return MakeNothing(L"ZPA::MakeOctagonStrel");
            case Shape::kLine:
                return MakeLineStrel(se, center, param1, NumbersOf(param2));
            case Shape::kPair:
                return MakeNothing(L"ZPA::MakePairStrel");
            case Shape::kPeriodicLine:
                return MakePeriodicLineStrel(se, center, param1, NumbersOf(param2));
            case Shape::kDisk:
                return MakeDiskStrel(se, param1, param3);
            default:
                return SOLVANE_UNSUPPORTED_TYPE;
        }
    });
}

}  // namespace ZPA
