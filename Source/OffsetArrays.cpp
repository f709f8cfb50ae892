// Vectors and matrices whose indices begin at any number.
#include <Basics/LinearAlgebra.h>

#include <cstdint>

#include "Source/Internal/Report.h"

namespace ZPA {
namespace {

// Where `first` begins if index `low` is the second of its elements, or the other way round. In numbers: the
// address itself may lie outside of the block.
template <typename T> T* Shifted(T* first, std::int64_t elements) {
    return reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(first) +
                                static_cast<std::uintptr_t>(elements) * sizeof(T));
}

// Indices from `low` to `high`; negative if they are out of order.
std::int64_t Count(int low, int high) { return std::int64_t{high} - low + 1; }

// Elements of a block with one more than needed; more than any memory holds where there cannot be any.
std::uint64_t WithSpare(std::int64_t elements) {
    return elements < 0 ? kNoSize : static_cast<std::uint64_t>(elements) + 1;
}

}  // namespace

float* alloc_vector(int nl, int nh) {
    std::uint64_t const elements = WithSpare(Count(nl, nh));
    auto* const block = AllocateElements<float>(elements);
    if (block) return Shifted(block, 1 - std::int64_t{nl});
    ReportMemory(L"alloc_vector()", elements, sizeof(float));
    return nullptr;
}

void delete_vector(float* v, int nl) {
    if (v) delete[] Shifted(v, std::int64_t{nl} - 1);
}

float** alloc_matrix(int nrl, int nrh, int ncl, int nch) {
    std::int64_t const rows = Count(nrl, nrh), columns = Count(ncl, nch);
    bool const countable = rows >= 0 && columns >= 0 && (rows == 0 || columns <= PTRDIFF_MAX / rows);
    std::uint64_t const elements = countable ? WithSpare(rows * columns) : kNoSize;
    if (BlockBytes(elements, sizeof(float)) == kNoSize) {
        ReportMemory(L"alloc_matrix()", elements, sizeof(float));
        return nullptr;
    }
    // Without a row there is still a pointer, by which the block is found again.
    std::uint64_t const rowsAndSpare = WithSpare(rows == 0 ? 1 : rows);
    auto** const pointers = AllocateElements<float*>(rowsAndSpare);
    if (!pointers) {
        ReportMemory(L"alloc_matrix()", rowsAndSpare, sizeof(float*));
        return nullptr;
    }
    auto* const block = AllocateElements<float>(elements);
    if (!block) {
        // The pointers are not released: an oddity that is part of the interface.
        ReportMemory(L"alloc_matrix()", elements, sizeof(float));
        return nullptr;
    }
    float** const firstRow = pointers + 1;
    *firstRow = Shifted(block, 1 - std::int64_t{ncl});
    for (std::int64_t y = 1; y < rows; ++y) firstRow[y] = Shifted(firstRow[y - 1], columns);
    return Shifted(pointers, 1 - std::int64_t{nrl});
}

void delete_matrix(float** m, int nrl, int, int ncl) {
    if (!m) return;
    float** const pointers = Shifted(m, std::int64_t{nrl} - 1);
    delete[] Shifted(pointers[1], std::int64_t{ncl} - 1);
    delete[] pointers;
}

}  // namespace ZPA
