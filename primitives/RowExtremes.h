// The largest or smallest of several rows, element by element.
#ifndef ZPA_PRIMITIVES_ROWEXTREMES_H
#define ZPA_PRIMITIVES_ROWEXTREMES_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// Kernels for one kind of extreme. Rows have `count` elements, and may lie anywhere; below 1 nothing is done.
template <typename T> struct RowExtremes {
    // result[x] becomes the extreme of all rows[i][x]. There is one row at least. The result overlaps none.
    void (*ofRows)(T const* const* rows, std::ptrdiff_t rowCount, T* result, std::ptrdiff_t count);

    // The rows lie `step` elements apart. Each becomes the extreme of itself and all that follow it.
    void (*gatherUp)(T* first, std::ptrdiff_t step, std::ptrdiff_t rowCount, std::ptrdiff_t count);

    // carried[x] becomes the extreme of itself and row[x], and result[x] that of carried[x] and other[x].
    void (*carry)(T const* row, T* carried, T const* other, T* result, std::ptrdiff_t count);
};

// For 8u and 16u, with the best instructions that the machine has.
template <typename T> RowExtremes<T> RowMaxima();
template <typename T> RowExtremes<T> RowMinima();

}  // namespace ZPA

#endif
