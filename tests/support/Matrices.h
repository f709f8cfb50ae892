// Matrices for tests of linear algebra.
#ifndef ZPA_TESTS_SUPPORT_MATRICES_H
#define ZPA_TESTS_SUPPORT_MATRICES_H

#include <cstddef>
#include <random>
#include <vector>

namespace ZPA::Testing {

// Between -1 and 1.
template <typename T = double, typename Count> std::vector<T> Random(Count count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> any(-1, 1);
    std::vector<T> values(static_cast<std::size_t>(count));
    for (T& value : values) value = static_cast<T>(any(random));
    return values;
}

// A matrix with offset row pointers of its own.
template <typename T> struct OffsetMatrix {
    std::size_t rows, columns;
    std::vector<T> elements;
    std::vector<T*> pointers;

    OffsetMatrix(int itsRows, int itsColumns)
        : rows(static_cast<std::size_t>(itsRows)),
          columns(static_cast<std::size_t>(itsColumns)),
          elements(rows * columns + 1),
          pointers(rows + 1) {
        for (std::size_t y = 0; y < rows; ++y) pointers[y + 1] = &elements[y * columns] - 1;
    }
    double At(std::size_t y, std::size_t x) const { return static_cast<double>(elements[y * columns + x]); }
};

}  // namespace ZPA::Testing

#endif
