// Rows become columns: squares of elements are turned in registers, and lines of the cache written whole.
#include "primitives/Transpose.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/Transpose.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// So many columns become rows together: a line of the cache in the source, if that is not too many rows.
template <typename T> constexpr std::ptrdiff_t kColumns = std::min<std::ptrdiff_t>(64 / sizeof(T), 16);
// And over so many rows: the processor keeps track of their pages.
constexpr std::ptrdiff_t kRows = 512;

template <typename T>
void TurnPlainly(T const* source, std::ptrdiff_t sourceStride, T* destination,
                 std::ptrdiff_t destinationStride, std::ptrdiff_t width, std::ptrdiff_t height) {
    for (std::ptrdiff_t x = 0; x < width; ++x)
        for (std::ptrdiff_t y = 0; y < height; ++y)
            destination[x * destinationStride + y] = source[y * sourceStride + x];
}

#if HWY_TARGET != HWY_SCALAR

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

template <typename T>
HWY_INLINE void TurnSquare(T const* source, std::ptrdiff_t sourceStride, T* destination,
                           std::ptrdiff_t destinationStride) {
    Square<T> const d;
    hn::Vec<Square<T>> rows[kSide<T>];
    for (std::ptrdiff_t i = 0; i < kSide<T>; ++i) rows[i] = hn::LoadU(d, source + i * sourceStride);
    TurnBlocks<T>(rows);
#if HWY_MAX_BYTES >= 32
    if constexpr (kBytes<T> == 32) {
        constexpr std::ptrdiff_t kHalf = kSide<T> / 2;
        TurnBlocks<T>(rows + kHalf);
        for (std::ptrdiff_t i = 0; i < kHalf; ++i) {
            hn::StoreU(hn::ConcatLowerLower(d, rows[i + kHalf], rows[i]), d,
                       destination + i * destinationStride);
            hn::StoreU(hn::ConcatUpperUpper(d, rows[i + kHalf], rows[i]), d,
                       destination + (i + kHalf) * destinationStride);
        }
        return;
    }
#endif
    for (std::ptrdiff_t i = 0; i < kSide<T>; ++i) hn::StoreU(rows[i], d, destination + i * destinationStride);
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
    std::ptrdiff_t const squaresWidth = width - width % kSide<T>;
    std::ptrdiff_t const squaresHeight = height - height % kSide<T>;
    // Stores wait in line, loads do not: so the destination is written from left to right.
    for (std::ptrdiff_t top = 0; top < squaresHeight; top += kRows) {
        std::ptrdiff_t const bottom = std::min(top + kRows, squaresHeight);
        for (std::ptrdiff_t left = 0; left < squaresWidth; left += kColumns<T>) {
            std::ptrdiff_t const right = std::min(left + kColumns<T>, squaresWidth);
            for (std::ptrdiff_t y = top; y < bottom; y += kSide<T>)
                for (std::ptrdiff_t x = left; x < right; x += kSide<T>)
                    TurnSquare(source + y * sourceStride + x, sourceStride,
                               destination + x * destinationStride + y, destinationStride);
        }
    }
    TurnPlainly(source + squaresWidth, sourceStride, destination + squaresWidth * destinationStride,
                destinationStride, width - squaresWidth, squaresHeight);
    TurnPlainly(source + squaresHeight * sourceStride, sourceStride, destination + squaresHeight,
                destinationStride, width, height - squaresHeight);
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
