// Matrix product: both factors are packed into panels that fit the caches, and a tile of the product at a
// time is summed in registers.
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

// The tile at `product`, whose rows are `stride` elements apart. The indices are a pack so that all sums stay
// in registers.
template <typename T, std::size_t... Row>
HWY_INLINE void MultiplyTile(T const* HWY_RESTRICT rows, T const* HWY_RESTRICT columns, int depth,
                             T* HWY_RESTRICT product, std::ptrdiff_t stride, bool adds,
                             std::index_sequence<Row...>) {
    hn::ScalableTag<T> const d;
    using Vector = hn::Vec<decltype(d)>;
    constexpr int kRight = kLanes<T>;
    auto const start = [&](T const* from) HWY_ATTR { return adds ? hn::LoadU(d, from) : hn::Zero(d); };
    Vector left[] = {start(product + static_cast<std::ptrdiff_t>(Row) * stride)...};
    Vector right[] = {start(product + static_cast<std::ptrdiff_t>(Row) * stride + kRight)...};
    for (int k = 0; k < depth; ++k) {
        auto const columnLeft = hn::Load(d, columns), columnRight = hn::Load(d, columns + kRight);
        auto const add = [&](Vector element, Vector& sumLeft, Vector& sumRight) HWY_ATTR {
            sumLeft = hn::MulAdd(element, columnLeft, sumLeft);
            sumRight = hn::MulAdd(element, columnRight, sumRight);
        };
        (add(hn::Set(d, rows[Row]), left[Row], right[Row]), ...);
        rows += kTileRows;
        columns += kTileColumns<T>;
    }
    (hn::StoreU(left[Row], d, product + static_cast<std::ptrdiff_t>(Row) * stride), ...);
    (hn::StoreU(right[Row], d, product + static_cast<std::ptrdiff_t>(Row) * stride + kRight), ...);
}

template <typename T> void Multiply(Block<T> const& block) {
    constexpr std::make_index_sequence<kTileRows> kRowIndices{};
    HWY_ALIGN T edge[kTileRows * kTileColumns<T>] = {};
    for (int x = 0; x < block.columns; x += kTileColumns<T>) {
        T const* const columns = block.columnPanels + std::ptrdiff_t{x} * block.depth;
        int const width = std::min(kTileColumns<T>, block.columns - x);
        for (int y = 0; y < block.rows; y += kTileRows) {
            T const* const rows = block.rowPanels + std::ptrdiff_t{y} * block.depth;
            int const height = std::min(kTileRows, block.rows - y);
            T* const tile = block.product.At(y, x);
            bool const whole =
                height == kTileRows && width == kTileColumns<T> && block.product.columnStride == 1;
            if (whole) {
                MultiplyTile(rows, columns, block.depth, tile, block.product.rowStride, block.adds,
                             kRowIndices);
                continue;
            }
            // A tile that leaves the product is made aside.
            auto const forEachElement = [&](auto const& visit) {
                for (int j = 0; j < height; ++j)
                    for (int i = 0; i < width; ++i)
                        visit(edge[j * kTileColumns<T> + i], *block.product.At(y + j, x + i));
            };
            if (block.adds) forEachElement([](T& inner, T const& outer) { inner = outer; });
            MultiplyTile(rows, columns, block.depth, edge, kTileColumns<T>, block.adds, kRowIndices);
            forEachElement([](T const& inner, T& outer) { outer = inner; });
        }
    }
}

#define ZPA_KERNEL(name, T)                                         \
    TileShape Tile##name() { return {kTileRows, kTileColumns<T>}; } \
    void Multiply##name(Block<T> const& block) { Multiply(block); }
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
constexpr int kMultiplyAddsPerByte = 4;  // done in the time that moving a byte takes

// Memory for packed panels, aligned for the widest vector; null if there is none.
template <typename T> class Panels {
public:
    Panels(int lines, int depth) {
        std::size_t bytes = static_cast<std::size_t>(lines) * static_cast<std::size_t>(depth) * sizeof(T);
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

int RoundedUp(int count, int unit) { return (count + unit - 1) / unit * unit; }

// Panels of rows: one column after the other. The last one is filled up with zeros.
template <typename T>
void PackRows(Matrix<T const> const& from, int rows, int depth, int panelRows, T* panels) noexcept {
    ForEachRow(RoundedUp(rows, panelRows) / panelRows, std::int64_t{2 * sizeof(T)} * panelRows * depth,
               [&](int which) noexcept {
                   T* const panel = panels + std::ptrdiff_t{which} * panelRows * depth;
                   for (int i = 0; i < panelRows; ++i) {
                       int const y = which * panelRows + i;
                       for (int k = 0; k < depth; ++k)
                           panel[k * panelRows + i] = y < rows ? *from.At(y, k) : T(0);
                   }
               });
}

// Panels of columns: one row after the other. The last one is filled up with zeros.
template <typename T>
void PackColumns(Matrix<T const> const& from, int columns, int depth, int panelColumns, T* panels) noexcept {
    ForEachRow(depth, std::int64_t{2 * sizeof(T)} * columns, [&](int k) noexcept {
        for (int x = 0; x < columns; x += panelColumns) {
            T* const to = panels + std::ptrdiff_t{x} * depth + std::ptrdiff_t{k} * panelColumns;
            int const width = std::min(panelColumns, columns - x);
            if (from.columnStride == 1)
                std::copy_n(from.At(k, x), width, to);
            else
                for (int i = 0; i < width; ++i) to[i] = *from.At(k, x + i);
            std::fill(to + width, to + panelColumns, T(0));
        }
    });
}

template <typename T> struct Kernels {
    TileShape tile;
    void (*multiply)(Block<T> const&);
};

// The block in groups of tiles, whose panels stay in the second cache.
template <typename T> void MultiplyGroups(Kernels<T> const& kernels, Block<T> const& block) noexcept {
    auto const groupOf = [](int tileLines) {
        return std::max(1, kGroupBytes / (kDepth * int{sizeof(T)} * tileLines)) * tileLines;
    };
    int const groupRows = groupOf(kernels.tile.rows), groupColumns = groupOf(kernels.tile.columns);
    int const down = RoundedUp(block.rows, groupRows) / groupRows;
    int const across = RoundedUp(block.columns, groupColumns) / groupColumns;
    std::int64_t const multiplyAdds =
        std::int64_t{std::min(groupRows, block.rows)} * std::min(groupColumns, block.columns) * block.depth;
    ForEachRow(down * across, multiplyAdds / kMultiplyAddsPerByte, [&](int which) noexcept {
        int const y = which % down * groupRows, x = which / down * groupColumns;
        kernels.multiply({block.rowPanels + std::ptrdiff_t{y} * block.depth,
                          block.columnPanels + std::ptrdiff_t{x} * block.depth, block.depth,
                          block.product.From(y, x), std::min(groupRows, block.rows - y),
                          std::min(groupColumns, block.columns - x), block.adds});
    });
}

// The product has `height` rows and `width` columns; `length` is what is summed over.
template <typename T>
Status Multiply(Kernels<T> const& kernels, Matrix<T const> const& first, Matrix<T const> const& second,
                Matrix<T> const& product, int height, int width, int length) noexcept {
    int const blockRows = RoundedUp(std::min(height, kPacked), kernels.tile.rows);
    int const blockColumns = RoundedUp(std::min(width, kPacked), kernels.tile.columns);
    int const blockDepth = std::min(length, kDepth);
    Panels<T> const rowPanels(blockRows, blockDepth), columnPanels(blockColumns, blockDepth);
    if (!rowPanels.First() || !columnPanels.First()) return kNoMemory;

    for (std::int64_t x = 0; x < width; x += blockColumns)
        for (std::int64_t k = 0; k < length; k += blockDepth) {
            int const columns = static_cast<int>(std::min<std::int64_t>(blockColumns, width - x));
            int const depth = static_cast<int>(std::min<std::int64_t>(blockDepth, length - k));
            PackColumns(second.From(k, x), columns, depth, kernels.tile.columns, columnPanels.First());
            for (std::int64_t y = 0; y < height; y += blockRows) {
                int const rows = static_cast<int>(std::min<std::int64_t>(blockRows, height - y));
                PackRows(first.From(y, k), rows, depth, kernels.tile.rows, rowPanels.First());
                MultiplyGroups(kernels, Block<T>{rowPanels.First(), columnPanels.First(), depth,
                                                 product.From(y, x), rows, columns, k > 0});
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
    HWY_EXPORT(Tile##name);                                                                                  \
    HWY_EXPORT(Multiply##name);                                                                              \
    Status ippmMul_mm_##name(T const* first, std::ptrdiff_t firstStride1, std::ptrdiff_t firstStride2,       \
                             int firstWidth, int firstHeight, T const* second, std::ptrdiff_t secondStride1, \
                             std::ptrdiff_t secondStride2, int secondWidth, int secondHeight, T* product,    \
                             std::ptrdiff_t productStride1, std::ptrdiff_t productStride2) noexcept {        \
        Kernels<T> const kernels{HWY_DYNAMIC_DISPATCH(Tile##name)(), HWY_DYNAMIC_DISPATCH(Multiply##name)};  \
        return CheckAndMultiply<T>(kernels, {first, firstStride1, firstStride2}, firstWidth, firstHeight,    \
                                   {second, secondStride1, secondStride2}, secondWidth, secondHeight,        \
                                   {product, productStride1, productStride2});                               \
    }
ZPA_PRODUCT(32f, float)
ZPA_PRODUCT(64f, double)
#undef ZPA_PRODUCT

}  // namespace ZPA
#endif
