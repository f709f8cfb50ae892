// Rows become columns: squares of elements are turned in registers, and lines of the cache written whole.
#include "primitives/Transpose.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/Transpose.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

template <typename T>
void TurnPlainly(T const* source, std::ptrdiff_t sourceStride, T* destination,
                 std::ptrdiff_t destinationStride, std::ptrdiff_t width, std::ptrdiff_t height) {
    for (std::ptrdiff_t x = 0; x < width; ++x)
        for (std::ptrdiff_t y = 0; y < height; ++y)
            destination[x * destinationStride + y] = source[y * sourceStride + x];
}

#if HWY_TARGET != HWY_SCALAR

// Elements in a line of the cache.
template <typename T> constexpr std::ptrdiff_t kLine = 64 / sizeof(T);
// So many columns become rows together: a line in the source, if that is not too many rows.
template <typename T> constexpr std::ptrdiff_t kColumns = std::min<std::ptrdiff_t>(kLine<T>, 32);
// And over so many rows: the processor keeps track of their pages.
constexpr std::ptrdiff_t kRows = 512;

// A destination that a common second cache does not hold is written past the caches, in half the time. Bytes
// would need too many registers for a whole line.
template <typename T> constexpr bool kStreams = sizeof(T) > 1;
constexpr std::ptrdiff_t kLeastStreamedBytes = 2 * 1024 * 1024;
// Over fewer rows, so that what is written next lies close by.
constexpr std::ptrdiff_t kStreamedRows = 32;

// Squares have sides of one vector, of two blocks where there are such vectors; bytes would need too many.
template <typename T> constexpr std::size_t kBytes = HWY_MAX_BYTES >= 32 && sizeof(T) > 1 ? 32 : 16;
template <typename T> constexpr std::ptrdiff_t kSide = kBytes<T> / sizeof(T);
template <typename T> using Square = hn::FixedTag<T, kBytes<T> / sizeof(T)>;

// Turns the squares of 16 bytes in as many rows. Interleaving row i with the one half a square below, for all
// i, moves the elements as a shuffle of cards does; after as many rounds as the side has bits, each row holds
// a column.
template <typename T> HWY_INLINE void TurnBlocks(hn::Vec<Square<T>>* rows) {
    constexpr std::ptrdiff_t kBlock = 16 / sizeof(T);
    Square<T> const d;
    hn::Vec<Square<T>> shuffled[kBlock];
    for (std::ptrdiff_t round = 1; round < kBlock; round *= 2) {
        for (std::ptrdiff_t i = 0; i < kBlock / 2; ++i) {
            shuffled[2 * i] = hn::InterleaveLower(d, rows[i], rows[i + kBlock / 2]);
            shuffled[2 * i + 1] = hn::InterleaveUpper(d, rows[i], rows[i + kBlock / 2]);
        }
        for (std::ptrdiff_t i = 0; i < kBlock; ++i) rows[i] = shuffled[i];
    }
}

// Leaves the columns of a square in `columns`.
template <typename T>
HWY_INLINE void TurnSquare(T const* source, std::ptrdiff_t stride, hn::Vec<Square<T>>* columns) {
    Square<T> const d;
#if HWY_MAX_BYTES >= 32
    if constexpr (kBytes<T> == 32) {
        constexpr std::ptrdiff_t kHalf = kSide<T> / 2;
        hn::Vec<Square<T>> rows[kSide<T>];
        for (std::ptrdiff_t i = 0; i < kSide<T>; ++i) rows[i] = hn::LoadU(d, source + i * stride);
        TurnBlocks<T>(rows);
        TurnBlocks<T>(rows + kHalf);
        for (std::ptrdiff_t i = 0; i < kHalf; ++i) {
            columns[i] = hn::ConcatLowerLower(d, rows[i + kHalf], rows[i]);
            columns[i + kHalf] = hn::ConcatUpperUpper(d, rows[i + kHalf], rows[i]);
        }
        return;
    }
#endif
    for (std::ptrdiff_t i = 0; i < kSide<T>; ++i) columns[i] = hn::LoadU(d, source + i * stride);
    TurnBlocks<T>(columns);
}

// A store whose line has to come first holds up those behind it, so the lines of the square below are sent for.
template <typename T>
HWY_INLINE void StoreSquare(T const* source, std::ptrdiff_t sourceStride, T* destination,
                            std::ptrdiff_t destinationStride) {
    if (sizeof(T) > 1)
        for (std::ptrdiff_t i = 0; i < kSide<T>; ++i)
            hwy::Prefetch(destination + i * destinationStride + kSide<T>);
    hn::Vec<Square<T>> columns[kSide<T>];
    TurnSquare(source, sourceStride, columns);
    for (std::ptrdiff_t i = 0; i < kSide<T>; ++i)
        hn::StoreU(columns[i], Square<T>(), destination + i * destinationStride);
}

// Writes whole lines past the caches, their parts one after the other: apart, each would go to memory alone.
template <typename T>
HWY_INLINE void StreamSquares(T const* source, std::ptrdiff_t sourceStride, T* destination,
                              std::ptrdiff_t destinationStride) {
    constexpr std::ptrdiff_t kParts = kLine<T> / kSide<T>;
    hn::Vec<Square<T>> columns[kParts][kSide<T>];
    for (std::ptrdiff_t part = 0; part < kParts; ++part)
        TurnSquare(source + part * kSide<T> * sourceStride, sourceStride, columns[part]);
    for (std::ptrdiff_t i = 0; i < kSide<T>; ++i)
        for (std::ptrdiff_t part = 0; part < kParts; ++part)
            hn::Stream(columns[part][i], Square<T>(), destination + i * destinationStride + part * kSide<T>);
}

// Calls turn(x, y) for areas of kSide<T> by `step`, which fill the size, in bands of so many rows. Stores wait
// in line, loads do not: so the destination is written from left to right. Areas as large as lines of both images
// are filled one by one, since lines that rows a power of two apart share the places of leave the first cache soon.
template <typename T, typename Turn>
void ForEachArea(std::ptrdiff_t width, std::ptrdiff_t height, std::ptrdiff_t rows, std::ptrdiff_t step,
                 Turn const& turn) {
    for (std::ptrdiff_t top = 0; top < height; top += rows) {
        std::ptrdiff_t const bottom = std::min(top + rows, height);
        for (std::ptrdiff_t left = 0; left < width; left += kColumns<T>) {
            std::ptrdiff_t const right = std::min(left + kColumns<T>, width);
            for (std::ptrdiff_t line = top; line < bottom; line += kLine<T>)
                for (std::ptrdiff_t x = left; x < right; x += kSide<T>)
                    for (std::ptrdiff_t y = line; y < std::min(line + kLine<T>, bottom); y += step)
                        turn(x, y);
        }
    }
}

#endif

template <typename T>
void Turn(T const* source, std::ptrdiff_t sourceStride, T* destination, std::ptrdiff_t destinationStride,
          Size size) {
    std::ptrdiff_t const width = size.width;
    std::ptrdiff_t const height = size.height;
#if HWY_TARGET == HWY_SCALAR
    TurnPlainly(source, sourceStride, destination, destinationStride, width, height);
#else
    // Where all rows of the destination begin at the same place of a line, whole lines begin at row `first`.
    constexpr auto kBytesEach = static_cast<std::ptrdiff_t>(sizeof(T));
    auto const address = reinterpret_cast<std::uintptr_t>(destination);
    bool const streams = kStreams<T> && width * height >= kLeastStreamedBytes / kBytesEach &&
                         destinationStride % kLine<T> == 0 && address % sizeof(T) == 0;
    auto const toLine = static_cast<std::ptrdiff_t>(-address / sizeof(T)) & (kLine<T> - 1);
    std::ptrdiff_t const first = streams ? std::min(toLine, height) : 0;
    std::ptrdiff_t const step = streams ? kLine<T> : kSide<T>;
    std::ptrdiff_t const squaresWidth = width - width % kSide<T>;
    std::ptrdiff_t const squaresHeight = height - first - (height - first) % step;
    T const* const from = source + first * sourceStride;
    T* const to = destination + first;
    if (streams) {
        ForEachArea<T>(squaresWidth, squaresHeight, kStreamedRows, step,
                       [&](std::ptrdiff_t x, std::ptrdiff_t y) {
                           StreamSquares(from + y * sourceStride + x, sourceStride,
                                         to + x * destinationStride + y, destinationStride);
                       });
        hwy::FlushStream();
    } else {
        ForEachArea<T>(squaresWidth, squaresHeight, kRows, step, [&](std::ptrdiff_t x, std::ptrdiff_t y) {
            StoreSquare(from + y * sourceStride + x, sourceStride, to + x * destinationStride + y,
                        destinationStride);
        });
    }
    TurnPlainly(source, sourceStride, destination, destinationStride, squaresWidth, first);
    TurnPlainly(from + squaresHeight * sourceStride, sourceStride, to + squaresHeight, destinationStride,
                squaresWidth, height - first - squaresHeight);
    TurnPlainly(source + squaresWidth, sourceStride, destination + squaresWidth * destinationStride,
                destinationStride, width - squaresWidth, height);
#endif
}

#define ZPA_KERNEL(bits)                                                                             \
    void Turn##bits(std::uint##bits##_t const* source, std::ptrdiff_t sourceStride,                  \
                    std::uint##bits##_t* destination, std::ptrdiff_t destinationStride, Size size) { \
        Turn(source, sourceStride, destination, destinationStride, size);                            \
    }
ZPA_KERNEL(8)
ZPA_KERNEL(16)
ZPA_KERNEL(32)
ZPA_KERNEL(64)
#undef ZPA_KERNEL

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

#define ZPA_EXPORT(bits)                                                                              \
    HWY_EXPORT(Turn##bits);                                                                           \
    void Transpose(std::uint##bits##_t const* source, std::ptrdiff_t sourceStride,                    \
                   std::uint##bits##_t* destination, std::ptrdiff_t destinationStride, Size size) {   \
        HWY_DYNAMIC_DISPATCH(Turn##bits)(source, sourceStride, destination, destinationStride, size); \
    }
ZPA_EXPORT(8)
ZPA_EXPORT(16)
ZPA_EXPORT(32)
ZPA_EXPORT(64)
#undef ZPA_EXPORT

}  // namespace ZPA
#endif
