// What the matrix product hands to the kernels of a SIMD target.
#ifndef ZPA_PRIMITIVES_MATRIXBLOCK_H
#define ZPA_PRIMITIVES_MATRIXBLOCK_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// Rows and columns of the tile of the product that the registers hold.
struct TileShape {
    int rows;
    int columns;
};

// A matrix whose rows and columns may be any number of elements apart.
template <typename T> struct Matrix {
    T* first;
    std::ptrdiff_t rowStride;
    std::ptrdiff_t columnStride;

    T* At(std::ptrdiff_t y, std::ptrdiff_t x) const { return first + y * rowStride + x * columnStride; }
    Matrix From(std::int64_t y, std::int64_t x) const {
        return {At(static_cast<std::ptrdiff_t>(y), static_cast<std::ptrdiff_t>(x)), rowStride, columnStride};
    }
};

// A part of the product, and the packed panels that it is made of: of the first factor, each `depth` columns
// of as many elements as a tile has rows; of the second, `depth` rows of as many as it has columns.
template <typename T> struct Block {
    T const* rowPanels;
    T const* columnPanels;
    int depth;
    Matrix<T> product;
    int rows;
    int columns;
    bool adds;  // to what the product holds; else from zero on
};

}  // namespace ZPA

#endif
