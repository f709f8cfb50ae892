// What the matrix product hands to the kernels of a SIMD target.
#ifndef ZPA_PRIMITIVES_MATRIXBLOCK_H
#define ZPA_PRIMITIVES_MATRIXBLOCK_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

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

// A part of the product, and what it is made of: `depth` columns of the first factor and rows of the second. The
// elements of a row lie side by side: in the first factor all, in the second those of a tile.
template <typename T> struct Block {
    Matrix<T const> first;
    Matrix<T const> second;
    int depth;
    Matrix<T> product;
    int rows;
    int columns;
    bool adds;  // to what the product holds; else from zero on
};

// The kernels of a SIMD target.
template <typename T> struct Kernels {
    // The tile of the product that the registers hold: two vectors wide, or one at the end of a row.
    int tileRows;
    int tileColumns;
    // Some rows as they lie in panels, which are as wide as a tile and `depth` rows high. The last panel is filled
    // up with zeros.
    void (*packColumns)(Matrix<T const> const& from, int columns, int rows, T* panels, int depth);
    // Where the second factor is not packed, the columns are whole vectors.
    void (*multiply)(Block<T> const& block);
};

}  // namespace ZPA

#endif
