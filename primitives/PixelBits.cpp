// Rows of pixels as rows of bits, 64 to a word.
#include "primitives/PixelBits.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/PixelBits.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <cstring>
#include <limits>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

template <typename T> std::uint64_t EqualBits(T const* pixels, std::ptrdiff_t count, T value) {
    std::uint64_t bits = 0;
    for (std::ptrdiff_t i = 0; i < count; ++i) bits |= std::uint64_t{pixels[i] == value} << i;
    return bits;
}

#if HWY_TARGET != HWY_SCALAR

// A word's pixels are a whole number of vectors.
template <typename T> std::uint64_t EqualBits64(T const* pixels, T value) {
    hn::CappedTag<T, 64> const d;
    auto const lanes = hn::Lanes(d);
    auto const values = hn::Set(d, value);
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < 64; i += lanes) {
        std::uint64_t bits = 0;  // little-endian, as all machines with these vectors are
        hn::StoreMaskBits(d, hn::Eq(hn::LoadU(d, pixels + i), values),
                          reinterpret_cast<std::uint8_t*>(&bits));
        word |= bits << i;
    }
    return word;
}

template <typename T> void SetWhere64(T* pixels, T value, std::uint64_t word) {
    hn::CappedTag<T, 64> const d;
    auto const lanes = hn::Lanes(d);
    auto const values = hn::Set(d, value);
    for (std::size_t i = 0; i < 64; i += lanes) {
        std::uint64_t const bits = word >> i;
        hn::BlendedStore(values, hn::LoadMaskBits(d, reinterpret_cast<std::uint8_t const*>(&bits)), d,
                         pixels + i);
    }
}

#else

template <typename T> std::uint64_t EqualBits64(T const* pixels, T value) {
    return EqualBits(pixels, 64, value);
}

template <typename T> void SetWhere64(T* pixels, T value, std::uint64_t word) {
    for (int i = 0; i < 64; ++i)
        if ((word >> i) & 1) pixels[i] = value;
}

#endif

template <typename T> void Find(T const* row, std::ptrdiff_t width, T value, std::uint64_t* bits) {
    std::ptrdiff_t x = 0;
    for (; x + 64 <= width; x += 64) *bits++ = EqualBits64(row + x, value);
    if (x < width) *bits = EqualBits(row + x, width - x, value);
}

template <typename T> bool FindZerosOf(T const* row, std::ptrdiff_t width, std::uint64_t* bits) {
    constexpr T kLargest = std::numeric_limits<T>::max();
    std::uint64_t largest = 0;
    std::ptrdiff_t x = 0;
    for (; x + 64 <= width; x += 64) {
        *bits++ = EqualBits64(row + x, T{0});
        largest |= EqualBits64(row + x, kLargest);
    }
    if (x < width) {
        *bits = EqualBits(row + x, width - x, T{0});
        largest |= EqualBits(row + x, width - x, kLargest);
    }
    return largest != 0;
}

template <typename T> void Set(T* row, std::ptrdiff_t width, T value, std::uint64_t const* bits) {
    for (std::ptrdiff_t x = 0; x < width; x += 64) {
        std::uint64_t word = *bits++;
        if (word == 0) continue;
        if (x + 64 <= width) {
            SetWhere64(row + x, value, word);
            continue;
        }
        for (std::ptrdiff_t i = x; word; ++i, word >>= 1)
            if (word & 1) row[i] = value;
    }
}

template <typename T> void SetToBefore(T* row, std::ptrdiff_t width, std::uint64_t const* bits) {
    T value = 0;
    bool isBefore = false;  // the pixel before the word has this value
    for (std::ptrdiff_t x = 0; x < width; x += 64) {
        std::uint64_t word = *bits++;
        T* const pixels = row + x;
        if (word != 0 && x + 64 <= width) {
            // Most often all runs have the same pixel before them. To read it again just after it was written
            // as part of a vector would be slow.
            if (!isBefore) value = pixels[__builtin_ctzll(word) - 1];
            std::uint64_t const equal = EqualBits64(pixels, value);
            std::uint64_t const before = (word & ~(word << 1)) >> 1;
            if ((before & ~equal) == 0) {
                SetWhere64(pixels, value, word);
                isBefore = ((word | equal) >> 63) != 0;
                continue;
            }
        }
        isBefore = false;
        for (; word != 0; word &= word - 1) {
            int const i = __builtin_ctzll(word);
            pixels[i] = pixels[i - 1];
        }
    }
}

void Find8u(std::uint8_t const* row, std::ptrdiff_t width, std::uint8_t value, std::uint64_t* bits) {
    Find(row, width, value, bits);
}
void Find16u(std::uint16_t const* row, std::ptrdiff_t width, std::uint16_t value, std::uint64_t* bits) {
    Find(row, width, value, bits);
}
bool FindZeros8u(std::uint8_t const* row, std::ptrdiff_t width, std::uint64_t* bits) {
    return FindZerosOf(row, width, bits);
}
bool FindZeros16u(std::uint16_t const* row, std::ptrdiff_t width, std::uint64_t* bits) {
    return FindZerosOf(row, width, bits);
}
void Set8u(std::uint8_t* row, std::ptrdiff_t width, std::uint8_t value, std::uint64_t const* bits) {
    Set(row, width, value, bits);
}
void Set16u(std::uint16_t* row, std::ptrdiff_t width, std::uint16_t value, std::uint64_t const* bits) {
    Set(row, width, value, bits);
}

void SetToBefore8u(std::uint8_t* row, std::ptrdiff_t width, std::uint64_t const* bits) {
    SetToBefore(row, width, bits);
}
void SetToBefore16u(std::uint16_t* row, std::ptrdiff_t width, std::uint64_t const* bits) {
    SetToBefore(row, width, bits);
}

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

HWY_EXPORT(Find8u);
void FindEqual(std::uint8_t const* row, std::ptrdiff_t width, std::uint8_t value, std::uint64_t* bits) {
    HWY_DYNAMIC_DISPATCH(Find8u)(row, width, value, bits);
}

HWY_EXPORT(Find16u);
void FindEqual(std::uint16_t const* row, std::ptrdiff_t width, std::uint16_t value, std::uint64_t* bits) {
    HWY_DYNAMIC_DISPATCH(Find16u)(row, width, value, bits);
}

HWY_EXPORT(FindZeros8u);
bool FindZeros(std::uint8_t const* row, std::ptrdiff_t width, std::uint64_t* bits) {
    return HWY_DYNAMIC_DISPATCH(FindZeros8u)(row, width, bits);
}

HWY_EXPORT(FindZeros16u);
bool FindZeros(std::uint16_t const* row, std::ptrdiff_t width, std::uint64_t* bits) {
    return HWY_DYNAMIC_DISPATCH(FindZeros16u)(row, width, bits);
}

HWY_EXPORT(Set8u);
void SetWhere(std::uint8_t* row, std::ptrdiff_t width, std::uint8_t value, std::uint64_t const* bits) {
    HWY_DYNAMIC_DISPATCH(Set8u)(row, width, value, bits);
}

HWY_EXPORT(Set16u);
void SetWhere(std::uint16_t* row, std::ptrdiff_t width, std::uint16_t value, std::uint64_t const* bits) {
    HWY_DYNAMIC_DISPATCH(Set16u)(row, width, value, bits);
}

HWY_EXPORT(SetToBefore8u);
void SetToPixelBefore(std::uint8_t* row, std::ptrdiff_t width, std::uint64_t const* bits) {
    HWY_DYNAMIC_DISPATCH(SetToBefore8u)(row, width, bits);
}

HWY_EXPORT(SetToBefore16u);
void SetToPixelBefore(std::uint16_t* row, std::ptrdiff_t width, std::uint64_t const* bits) {
    HWY_DYNAMIC_DISPATCH(SetToBefore16u)(row, width, bits);
}

}  // namespace ZPA
#endif
