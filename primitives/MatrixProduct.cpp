// Matrix product: parts of both factors that fit the caches are packed where that pays, and a tile of the product
// at a time is summed in registers.
#include "primitives/MatrixProduct.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/MatrixProduct.cpp"
#include <hwy/foreach_target.h>  // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "primitives/ForEachRow.h"
#include "primitives/MatrixBlock.h"

HWY_BEFORE_NAMESPACE();
namespace ZPA::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Two vectors of each row: enough sums under way to hide the latency of a multiply-add, few enough for the
// registers, 32 of them or 16.
#if HWY_TARGET <= HWY_AVX3 && HWY_ARCH_X86
constexpr int kTileRows = 14;
#else
constexpr int kTileRows = 6;
#endif
template <typename T> constexpr int kLanes = static_cast<int>(hn::MaxLanes(hn::ScalableTag<T>()));
template <typename T> constexpr int kTileColumns = 2 * kLanes<T>;

template <typename T>
void PackColumns(Matrix<T const> const& from, int columns, int rows, T* panels, int depth) {
    hn::ScalableTag<T> const d;
    for (int k = 0; k < rows; ++k, panels += kTileColumns<T>) {
        T* to = panels;
        for (int x = 0; x < columns; x += kTileColumns<T>, to += std::ptrdiff_t{kTileColumns<T>} * depth) {
            T const* const row = from.At(k, x);
            int const width = std::min(kTileColumns<T>, columns - x);
            if (width == kTileColumns<T> && from.columnStride == 1) {
                hn::Store(hn::LoadU(d, row), d, to);
                hn::Store(hn::LoadU(d, row + kLanes<T>), d, to + kLanes<T>);
            } else {
                hn::Store(hn::Zero(d), d, to);
                hn::Store(hn::Zero(d), d, to + kLanes<T>);
                for (int i = 0; i < width; ++i) to[i] = row[i * from.columnStride];
            }
        }
    }
}

// A tile of the product, one or two vectors wide. The indices are a pack so that all sums stay in registers.
template <typename T, bool kTwo, std::size_t... Row>
HWY_INLINE void MultiplyTile(T const* HWY_RESTRICT first, std::ptrdiff_t firstStride,
                             T const* HWY_RESTRICT second, std::ptrdiff_t secondStride, int depth,
                             T* HWY_RESTRICT product, std::ptrdiff_t stride, bool adds,
                             std::index_sequence<Row...>) {
    hn::ScalableTag<T> const d;
    using Vector = hn::Vec<decltype(d)>;
    constexpr int kRight = kTwo ? kLanes<T> : 0;
    auto const start = [&](T const* from) HWY_ATTR { return adds ? hn::LoadU(d, from) : hn::Zero(d); };
    T const* const rows[] = {first + static_cast<std::ptrdiff_t>(Row) * firstStride...};
    Vector left[] = {start(product + static_cast<std::ptrdiff_t>(Row) * stride)...};
    Vector right[] = {start(product + static_cast<std::ptrdiff_t>(Row) * stride + kRight)...};
    for (int k = 0; k < depth; ++k) {
        auto const columnLeft = hn::LoadU(d, second), columnRight = hn::LoadU(d, second + kRight);
        auto const add = [&](Vector element, Vector& sumLeft, Vector& sumRight) HWY_ATTR {
            sumLeft = hn::MulAdd(element, columnLeft, sumLeft);
            if (kTwo) sumRight = hn::MulAdd(element, columnRight, sumRight);
        };
        (add(hn::Set(d, rows[Row][k]), left[Row], right[Row]), ...);
        second += secondStride;
    }
    (hn::StoreU(left[Row], d, product + static_cast<std::ptrdiff_t>(Row) * stride), ...);
    if (kTwo) (hn::StoreU(right[Row], d, product + static_cast<std::ptrdiff_t>(Row) * stride + kRight), ...);
}

template <typename T, bool kTwo, std::size_t kRows>
void MultiplyRows(T const* first, std::ptrdiff_t firstStride, T const* second, std::ptrdiff_t secondStride,
                  int depth, T* product, std::ptrdiff_t stride, bool adds) {
    MultiplyTile<T, kTwo>(first, firstStride, second, secondStride, depth, product, stride, adds,
                          std::make_index_sequence<kRows>());
}

// The kernel for tiles of some rows, which are one more than the index.
template <typename T, bool kTwo, std::size_t... Index> auto TileOf(int rows, std::index_sequence<Index...>) {
    static constexpr decltype(&MultiplyRows<T, kTwo, 1>) kTiles[] = {MultiplyRows<T, kTwo, Index + 1>...};
    return kTiles[rows - 1];
}

template <typename T> void Multiply(Block<T> const& block) {
    constexpr std::make_index_sequence<kTileRows> kHeights{};
    for (int x = 0; x < block.columns; x += kTileColumns<T>) {
        int const width = std::min(kTileColumns<T>, block.columns - x);
        bool const whole = width % kLanes<T> == 0 && block.product.columnStride == 1;
        // Of about equal height: a last one of few rows would have too few sums under way.
        int tiles = (block.rows + kTileRows - 1) / kTileRows;
        for (int y = 0, height; y < block.rows; y += height, --tiles) {
            height = (block.rows - y + tiles - 1) / tiles;
            auto const kernel =
                width > kLanes<T> ? TileOf<T, true>(height, kHeights) : TileOf<T, false>(height, kHeights);
            auto const multiply = [&](T* product, std::ptrdiff_t stride) {
                kernel(block.first.At(y, 0), block.first.rowStride, block.second.At(0, x),
                       block.second.rowStride, block.depth, product, stride, block.adds);
            };
            if (whole) {
                multiply(block.product.At(y, x), block.product.rowStride);
                continue;
            }
            // A tile that leaves the product is made aside.
            HWY_ALIGN T edge[kTileRows * kTileColumns<T>] = {};
            auto const forEachElement = [&](auto const& visit) {
                for (int j = 0; j < height; ++j)
                    for (int i = 0; i < width; ++i)
                        visit(edge[j * kTileColumns<T> + i], *block.product.At(y + j, x + i));
            };
            if (block.adds) forEachElement([](T& inner, T const& outer) { inner = outer; });
            multiply(edge, kTileColumns<T>);
            forEachElement([](T const& inner, T& outer) { outer = inner; });
        }
    }
}

#define ZPA_KERNEL(name, T) \
    Kernels<T> KernelsFor##name() { return {kTileRows, kTileColumns<T>, PackColumns<T>, Multiply<T>}; }
ZPA_KERNEL(32f, float)
ZPA_KERNEL(64f, double)
#undef ZPA_KERNEL

}  // namespace
}  // namespace ZPA::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZPA {
namespace {

constexpr int kDepth = 256;          // of panels: a few of them fit the first cache
constexpr int kPacked = 4096;        // rows of the first factor, and columns of the second, packed at once
constexpr int kGroupBytes = 131072;  // of a factor that a thread works on at once, in the second cache

// Products that are smaller read a factor where it lies, since packed elements are not used often enough.
constexpr int kColumnsToPackRows = 256;
constexpr int kRowsToPackColumns = 64;
constexpr int kShortRow = 64;  // of the second factor: columns of long ones are packed, as they lie far apart

constexpr int kMultiplyAddsPerByte = 4;  // done in the time that moving a byte takes

// Memory for what is packed, aligned for the widest vector; null if there is none or nothing is packed.
template <typename T> class PackedElements {
public:
    explicit PackedElements(std::ptrdiff_t count) {
        if (count == 0) return;
        std::size_t const bytes = static_cast<std::size_t>(count) * sizeof(T);
        std::size_t space = bytes + kAlignment;
        memory_.reset(new (std::nothrow) unsigned char[space]);
        void* start = memory_.get();
        if (start) first_ = static_cast<T*>(std::align(kAlignment, bytes, start, space));
    }
    T* First() const { return first_; }

private:
    static constexpr std::size_t kAlignment = 64;
    std::unique_ptr<unsigned char[]> memory_;
    T* first_ = nullptr;
};

int Parts(int count, int unit) { return (count + unit - 1) / unit; }

// Elements from packed row to packed row: an odd number of cache lines, so that the rows of a tile do not meet in
// one set of the cache.
template <typename T> int PackedStride(int depth) {
    constexpr int kLine = 64 / int{sizeof(T)};
    return (Parts(depth, kLine) | 1) * kLine;
}

// Both return the factor as it is packed.
template <typename T>
Matrix<T const> PackRows(Matrix<T const> const& from, int rows, int depth, T* to,
                         std::ptrdiff_t stride) noexcept {
    ForEachRow(rows, std::int64_t{2 * sizeof(T)} * depth, [&](int y) noexcept {
        T* const row = to + y * stride;
        if (from.columnStride == 1)
            std::copy_n(from.At(y, 0), depth, row);
        else
            for (int k = 0; k < depth; ++k) row[k] = *from.At(y, k);
    });
    return {to, stride, 1};
}

template <typename T>
Matrix<T const> PackColumns(Kernels<T> const& kernels, Matrix<T const> const& from, int columns, int depth,
                            T* panels) noexcept {
    constexpr int kRows = 32;  // enough for the call of a kernel not to count
    ForEachRow(Parts(depth, kRows), std::int64_t{2 * sizeof(T)} * kRows * columns, [&](int which) noexcept {
        int const k = which * kRows;
        kernels.packColumns(from.From(k, 0), columns, std::min(kRows, depth - k),
                            panels + std::ptrdiff_t{k} * kernels.tileColumns, depth);
    });
    return {panels, kernels.tileColumns, depth};
}

// The block in groups of tiles, whose parts of the factors stay in the second cache.
template <typename T> void MultiplyGroups(Kernels<T> const& kernels, Block<T> const& block) noexcept {
    auto const groupOf = [](int tileLines) {
        return std::max(1, kGroupBytes / (kDepth * int{sizeof(T)} * tileLines)) * tileLines;
    };
    int const groupRows = groupOf(kernels.tileRows), groupColumns = groupOf(kernels.tileColumns);
    int const down = Parts(block.rows, groupRows), across = Parts(block.columns, groupColumns);
    std::int64_t const multiplyAdds =
        std::int64_t{std::min(groupRows, block.rows)} * std::min(groupColumns, block.columns) * block.depth;
    ForEachRow(down * across, multiplyAdds / kMultiplyAddsPerByte, [&](int which) noexcept {
        int const y = which % down * groupRows, x = which / down * groupColumns;
        kernels.multiply({block.first.From(y, 0), block.second.From(0, x), block.depth,
                          block.product.From(y, x), std::min(groupRows, block.rows - y),
                          std::min(groupColumns, block.columns - x), block.adds});
    });
}

// The product has `height` rows and `width` columns; `length` is what is summed over.
template <typename T>
Status Multiply(Kernels<T> const& kernels, Matrix<T const> const& first, Matrix<T const> const& second,
                Matrix<T> const& product, int height, int width, int length) noexcept {
    bool const packsRows = first.columnStride != 1 || width >= kColumnsToPackRows;
    bool const packsColumns = second.columnStride != 1 || second.rowStride > kShortRow ||
                              height >= kRowsToPackColumns || width % (kernels.tileColumns / 2) != 0;
    int const blockRows = std::min(height, kPacked);
    int const blockColumns = Parts(std::min(width, kPacked), kernels.tileColumns) * kernels.tileColumns;
    int const blockDepth = std::min(length, kDepth);
    std::ptrdiff_t const packedStride = PackedStride<T>(blockDepth);
    std::ptrdiff_t const rowElements = packsRows ? blockRows * packedStride : 0;
    std::ptrdiff_t const columnElements = packsColumns ? std::ptrdiff_t{blockColumns} * blockDepth : 0;
    PackedElements<T> const packed(columnElements + rowElements);
    if (!packed.First() && (packsRows || packsColumns)) return kNoMemory;

    for (std::int64_t x = 0; x < width; x += blockColumns)
        for (std::int64_t k = 0; k < length; k += blockDepth) {
            int const columns = static_cast<int>(std::min<std::int64_t>(blockColumns, width - x));
            int const depth = static_cast<int>(std::min<std::int64_t>(blockDepth, length - k));
            Matrix<T const> right = second.From(k, x);
            if (packsColumns) right = PackColumns(kernels, right, columns, depth, packed.First());
            for (std::int64_t y = 0; y < height; y += blockRows) {
                int const rows = static_cast<int>(std::min<std::int64_t>(blockRows, height - y));
                Matrix<T const> left = first.From(y, k);
                if (packsRows)
                    left = PackRows(left, rows, depth, packed.First() + columnElements, packedStride);
                MultiplyGroups(kernels,
                               Block<T>{left, right, depth, product.From(y, x), rows, columns, k > 0});
            }
        }
    return kDone;
}

template <typename T>
Status CheckAndMultiply(Kernels<T> const& kernels, Matrix<T const> first, int firstWidth, int firstHeight,
                        Matrix<T const> second, int secondWidth, int secondHeight,
                        Matrix<T> product) noexcept {
    if (!first.first || !second.first || !product.first) return kNullPointer;
    if (firstWidth < 1 || firstHeight < 1 || secondWidth < 1 || firstWidth != secondHeight) return kBadSize;
    constexpr auto kSize = static_cast<std::ptrdiff_t>(sizeof(T));
    for (std::ptrdiff_t* stride : {&first.rowStride, &first.columnStride, &second.rowStride,
                                   &second.columnStride, &product.rowStride, &product.columnStride}) {
        if (*stride % kSize != 0) return kBadArgument;
        *stride /= kSize;
    }
    return Multiply(kernels, first, second, product, firstHeight, secondWidth, firstWidth);
}

}  // namespace

#define ZPA_PRODUCT(name, T)                                                                                 \
    HWY_EXPORT(KernelsFor##name);                                                                            \
    Status ippmMul_mm_##name(T const* first, std::ptrdiff_t firstStride1, std::ptrdiff_t firstStride2,       \
                             int firstWidth, int firstHeight, T const* second, std::ptrdiff_t secondStride1, \
                             std::ptrdiff_t secondStride2, int secondWidth, int secondHeight, T* product,    \
                             std::ptrdiff_t productStride1, std::ptrdiff_t productStride2) noexcept {        \
        return CheckAndMultiply<T>(HWY_DYNAMIC_DISPATCH(KernelsFor##name)(),                                 \
                                   {first, firstStride1, firstStride2}, firstWidth, firstHeight,             \
                                   {second, secondStride1, secondStride2}, secondWidth, secondHeight,        \
                                   {product, productStride1, productStride2});                               \
    }
ZPA_PRODUCT(32f, float)
ZPA_PRODUCT(64f, double)
#undef ZPA_PRODUCT

}  // namespace ZPA
#endif
