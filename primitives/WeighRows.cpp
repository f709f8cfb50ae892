// Sums under a window: a tile of a few rows by a few vectors is summed in registers, so that a pixel that is
// loaded serves all rows of the tile that it is in reach of.
#include "primitives/WeighRows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/WeighRows.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <utility>

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

constexpr int kTileRows = 4;
// Sums that a common second cache does not hold are written past the caches.
constexpr std::int64_t kLeastStreamedBytes = 4 * 1024 * 1024;
constexpr std::ptrdiff_t kCacheLine = 64;
// So far ahead of a tile its pixels are sent for: stores past the caches leave no time to wait for them.
constexpr std::ptrdiff_t kLinesAhead = 8;

template <typename T> struct Place {
    T const* source;
    std::ptrdiff_t sourceStride;
    T* sums;
    std::ptrdiff_t sumsStride;

    Place At(std::ptrdiff_t x, std::ptrdiff_t y) const {
        return {source + y * sourceStride + x, sourceStride, sums + y * sumsStride + x, sumsStride};
    }
};

// The sums of a row, over as many vectors as `Vector` has numbers: a pack, so that they stay in registers.
template <class D, std::size_t... Vector, typename T = hn::TFromD<D>>
HWY_INLINE void WeighRow(D d, Window<T> const& window, Place<T> const& place,
                         std::index_sequence<Vector...>) {
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    auto const zero = [&](std::size_t) HWY_ATTR { return hn::Zero(d); };
    hn::Vec<D> sums[] = {zero(Vector)...};
    T const* weights = window.weights;
    for (int j = 0; j < window.size.height; ++j) {
        T const* pixels = place.source + j * place.sourceStride;
        for (int i = 0; i < window.size.width; ++i, ++pixels) {
            auto const weight = hn::Set(d, *weights++);
            ((sums[Vector] = hn::MulAdd(
                  weight, hn::LoadU(d, pixels + static_cast<std::ptrdiff_t>(Vector) * lanes), sums[Vector])),
             ...);
        }
    }
    (hn::StoreU(sums[Vector], d, place.sums + static_cast<std::ptrdiff_t>(Vector) * lanes), ...);
}

// Adds a row of pixels to the sums of the rows `Row` of a tile, which are numbered from `first`. `weights` are
// those that the pixels have in the tile's row 0.
template <int first, class D, std::size_t... Row, typename T = hn::TFromD<D>>
HWY_INLINE void AddPixels(D d, T const* weights, int width, T const* pixels, hn::Vec<D>* HWY_RESTRICT left,
                          hn::Vec<D>* HWY_RESTRICT right, std::index_sequence<Row...>) {
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    for (int i = 0; i < width; ++i, ++weights, ++pixels) {
        auto const pixelsLeft = hn::LoadU(d, pixels), pixelsRight = hn::LoadU(d, pixels + lanes);
        auto const add = [&](std::ptrdiff_t row) HWY_ATTR {
            auto const weight = hn::Set(d, weights[-row * width]);
            left[row] = hn::MulAdd(weight, pixelsLeft, left[row]);
            right[row] = hn::MulAdd(weight, pixelsRight, right[row]);
        };
        (add(first + static_cast<std::ptrdiff_t>(Row)), ...);
    }
}

// A tile of two vectors. Past the caches, where it begins at a multiple of a vector's bytes.
template <bool streams, class D, typename T = hn::TFromD<D>>
HWY_INLINE void WeighTile(D d, Window<T> const& window, Place<T> const& place) {
    static_assert(kTileRows == 4, "the rows are told apart below");
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    int const width = window.size.width;
    hn::Vec<D> left[] = {hn::Zero(d), hn::Zero(d), hn::Zero(d), hn::Zero(d)};
    hn::Vec<D> right[] = {hn::Zero(d), hn::Zero(d), hn::Zero(d), hn::Zero(d)};
    T const* pixels = place.source;
    T const* weights = window.weights;
    for (int r = 0; r < window.size.height + kTileRows - 1; ++r) {
        int const first = std::max(0, r - window.size.height + 1), last = std::min(r, kTileRows - 1);
        switch (first * kTileRows + last) {
#define ZPA_ROWS(first, last)                                           \
    case first* kTileRows + last:                                       \
        AddPixels<first>(d, weights, width, pixels, left, right,        \
                         std::make_index_sequence<last - first + 1>()); \
        break;
            ZPA_ROWS(0, 0)
            ZPA_ROWS(0, 1)
            ZPA_ROWS(0, 2)
            ZPA_ROWS(0, 3)
            ZPA_ROWS(1, 1) ZPA_ROWS(1, 2) ZPA_ROWS(1, 3) ZPA_ROWS(2, 2) ZPA_ROWS(2, 3) ZPA_ROWS(3, 3)
#undef ZPA_ROWS
        }
        pixels += place.sourceStride;
        weights += width;
    }
    for (int y = 0; y < kTileRows; ++y) {
        T* const sums = place.sums + y * place.sumsStride;
        if constexpr (streams) {
            hn::Stream(left[y], d, sums);
            hn::Stream(right[y], d, sums + lanes);
        } else {
            hn::StoreU(left[y], d, sums);
            hn::StoreU(right[y], d, sums + lanes);
        }
    }
}

// Calls tile(x) for tiles that together cover the columns; the last one may cover columns again.
template <typename Tile> HWY_INLINE void ForEachTile(int width, std::ptrdiff_t tileWidth, Tile const& tile) {
    std::ptrdiff_t x = 0;
    for (; x + tileWidth <= width; x += tileWidth) tile(x);
    if (x < width) tile(width - tileWidth);
}

template <typename T> constexpr auto kLine = kCacheLine / static_cast<std::ptrdiff_t>(sizeof(T));

// Whether the sums are many and their rows not narrow, and all rows begin at the same place of a line.
template <typename T> bool Streams(Place<T> const& place, Size size) {
    constexpr auto kBytes = static_cast<std::ptrdiff_t>(sizeof(T));
    return size.width >= 2 * kLine<T> &&
           std::int64_t{size.width} * size.height >= kLeastStreamedBytes / kBytes &&
           place.sumsStride % kLine<T> == 0 && reinterpret_cast<std::uintptr_t>(place.sums) % sizeof(T) == 0;
}

// Rows of a tile's height. From the first line of the cache that begins within the rows, tiles follow each other;
// those before and behind cover some sums again.
template <class D, typename T = hn::TFromD<D>>
void StreamTiles(D d, Window<T> const& window, Place<T> const& place, std::ptrdiff_t width) {
    auto const tileWidth = 2 * static_cast<std::ptrdiff_t>(hn::Lanes(d));
    auto const address = reinterpret_cast<std::uintptr_t>(place.sums);
    std::ptrdiff_t const first = static_cast<std::ptrdiff_t>(-address / sizeof(T)) & (kLine<T> - 1);
    for (std::ptrdiff_t x = 0; x < first; x += tileWidth) WeighTile<false>(d, window, place.At(x, 0));
    std::ptrdiff_t x = first;
    for (; x + tileWidth <= width; x += tileWidth) {
        Place<T> const at = place.At(x, 0);
        for (std::ptrdiff_t row = window.size.height - 1; row < window.size.height + kTileRows - 1; ++row)
            for (std::ptrdiff_t i = 0; i < tileWidth; i += kLine<T>)
                hwy::Prefetch(at.source + row * at.sourceStride + kLinesAhead * kLine<T> + i);
        WeighTile<true>(d, window, at);
    }
    if (x < width) WeighTile<false>(d, window, place.At(width - tileWidth, 0));
}

template <typename T> void Weigh(Window<T> const& window, Place<T> const& place, Size size) {
    hn::ScalableTag<T> const d;
    auto const lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
    int y = 0;
    if (size.width >= 2 * lanes) {
        if (Streams(place, size)) {
            for (; y + kTileRows <= size.height; y += kTileRows)
                StreamTiles(d, window, place.At(0, y), size.width);
            hwy::FlushStream();
        }
        if (window.size.height > 3)
            for (; y + kTileRows <= size.height; y += kTileRows)
                ForEachTile(size.width, 2 * lanes,
                            [&](std::ptrdiff_t x) HWY_ATTR { WeighTile<false>(d, window, place.At(x, y)); });
    }
    for (; y < size.height; ++y) {
        if (size.width >= 4 * lanes)
            ForEachTile(size.width, 4 * lanes, [&](std::ptrdiff_t x) HWY_ATTR {
                WeighRow(d, window, place.At(x, y), std::make_index_sequence<4>());
            });
        else if (size.width >= lanes)
            ForEachTile(size.width, lanes, [&](std::ptrdiff_t x) HWY_ATTR {
                WeighRow(d, window, place.At(x, y), std::make_index_sequence<1>());
            });
        else
            ForEachTile(size.width, 1, [&](std::ptrdiff_t x) HWY_ATTR {
                WeighRow(hn::CappedTag<T, 1>(), window, place.At(x, y), std::make_index_sequence<1>());
            });
    }
}

#define ZPA_KERNEL(name, T)                                                                          \
    void Weigh##name(Window<T> const& window, T const* source, std::ptrdiff_t sourceStride, T* sums, \
                     std::ptrdiff_t sumsStride, Size size) {                                         \
        Weigh<T>(window, {source, sourceStride, sums, sumsStride}, size);                            \
    }
ZPA_KERNEL(32f, float)
ZPA_KERNEL(64f, double)
#undef ZPA_KERNEL

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {

HWY_EXPORT(Weigh32f);
HWY_EXPORT(Weigh64f);
void WeighRows(Window<float> const& window, float const* source, std::ptrdiff_t sourceStride, float* sums,
               std::ptrdiff_t sumsStride, Size size) noexcept {
    HWY_DYNAMIC_DISPATCH(Weigh32f)(window, source, sourceStride, sums, sumsStride, size);
}
void WeighRows(Window<double> const& window, double const* source, std::ptrdiff_t sourceStride, double* sums,
               std::ptrdiff_t sumsStride, Size size) noexcept {
    HWY_DYNAMIC_DISPATCH(Weigh64f)(window, source, sourceStride, sums, sumsStride, size);
}

}  // namespace ZPA
#endif
