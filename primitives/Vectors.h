// Sums, products and rotations of vectors of numbers.
#ifndef ZPA_PRIMITIVES_VECTORS_H
#define ZPA_PRIMITIVES_VECTORS_H

#include <cstddef>

namespace ZPA {

// The vectors that a matrix's rows are.
template <typename T> class MatrixRows {
public:
    // The first, and how many elements further each of the others begins.
    MatrixRows(T const* first, std::ptrdiff_t step) : first_(first), step_(step) {}
    // Rows that are somewhere each, from the same element of all on.
    MatrixRows(T const* const* rows, std::ptrdiff_t begin) : rows_(rows), step_(begin) {}

    T const* operator[](std::ptrdiff_t row) const {
        return rows_ ? rows_[row] + step_ : first_ + row * step_;
    }

private:
    T const* const* rows_ = nullptr;
    T const* first_ = nullptr;
    std::ptrdiff_t step_;
};

// The same bits on every instruction set. A count below 1 does nothing, and its sum is 0.

// Sums are made in 32 (float) or 16 (double) parts, element i in part i modulo their number.
float InnerProduct(float const* a, float const* b, std::ptrdiff_t count);
double InnerProduct(double const* a, double const* b, std::ptrdiff_t count);
// products[i] = InnerProduct(a[i], b, count), to the bit; must not overlap what it is made from.
void InnerProducts(MatrixRows<float> const& a, float const* b, float* products, std::ptrdiff_t rows,
                   std::ptrdiff_t count);
void InnerProducts(MatrixRows<double> const& a, double const* b, double* products, std::ptrdiff_t rows,
                   std::ptrdiff_t count);

// sum += factor * a
void AddMultiple(float factor, float const* a, float* sum, std::ptrdiff_t count);
void AddMultiple(double factor, double const* a, double* sum, std::ptrdiff_t count);
// AddMultiple(factors[i], a[i], sum, count) for one row after the other, to the bit; `sum` must not overlap
// what is added.
void AddMultiples(float const* factors, MatrixRows<float> const& a, float* sum, std::ptrdiff_t rows,
                  std::ptrdiff_t count);
void AddMultiples(double const* factors, MatrixRows<double> const& a, double* sum, std::ptrdiff_t rows,
                  std::ptrdiff_t count);

// a and b become a * cosine + b * sine and b * cosine - a * sine.
void Rotate(float* a, float* b, float cosine, float sine, std::ptrdiff_t count);
void Rotate(double* a, double* b, double cosine, double sine, std::ptrdiff_t count);

}  // namespace ZPA

#endif
