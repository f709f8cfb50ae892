// Singular values: svdcmp, dsvdcmp_DBL and svbksb.
#include <Basics/LinearAlgebra.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>

#include "primitives/Vectors.h"
#include "Source/Internal/Hypotenuse.h"
#include "Source/Internal/Report.h"
#include "Source/Internal/WorkSpace.h"

namespace ZPA {
namespace {

constexpr int kMostSteps = 30;

// The decomposition of a matrix of m rows and n columns. U and V are kept with their columns one behind the
// other, so that all work runs along memory. Indices begin at 0.
template <typename T> class Decomposition {
public:
    // `work` has WorkElements(m, n), `above` n elements.
    static std::uint64_t WorkElements(std::ptrdiff_t m, std::ptrdiff_t n) {
        auto const rows = static_cast<std::uint64_t>(m), columns = static_cast<std::uint64_t>(n);
        std::uint64_t const most = kNoSize / 4;
        if (rows + columns + 2 > most / columns) return kNoSize;
        return (rows + columns + 1) * columns + rows;
    }
    Decomposition(std::ptrdiff_t m, std::ptrdiff_t n, T* w, T* above, T* work)
        : m_(m), n_(n), w_(w), above_(above), u_(work), v_(u_ + m * n), row_(v_ + n * n), column_(row_ + n) {}

    T* U(std::ptrdiff_t column) { return u_ + column * m_; }
    T* V(std::ptrdiff_t column) { return v_ + column * n_; }

    // From the matrix in U. False if a singular value did not converge.
    bool Run() {
        Reduce();
        AccumulateRight();
        AccumulateLeft();
        for (std::ptrdiff_t k = n_ - 1; k >= 0; --k)
            if (!Converge(k)) return false;
        return true;
    }

private:
    // What is below counts as zero: quotients by it could lose their digits or pass the range. Beside the matrix's
    // largest element, which is far above, it is less than a rounding.
    static constexpr T kNothing = std::numeric_limits<T>::min() / std::numeric_limits<T>::epsilon();

    // Makes x a reflection's direction that leaves only its first element, and gives that element. `half`
    // becomes half the square of the direction's length, negative; 0 where there is nothing to reflect. The
    // direction is scaled by `scale`.
    static T Reflect(T* x, std::ptrdiff_t count, T& scale, T& half) {
        scale = 0;
        half = 0;
        for (std::ptrdiff_t i = 0; i < count; ++i) scale += std::abs(x[i]);
        if (scale < kNothing) {
            scale = 0;
            return 0;
        }
        for (std::ptrdiff_t i = 0; i < count; ++i) x[i] /= scale;
        T const length = std::sqrt(InnerProduct(x, x, count));
        T const left = x[0] < 0 ? length : -length;
        half = x[0] * left - length * length;
        x[0] -= left;
        return scale * left;
    }
    static void Multiply(T* x, T factor, std::ptrdiff_t count) {
        for (std::ptrdiff_t i = 0; i < count; ++i) x[i] *= factor;
    }

    // To two diagonals, w and the one above it, by reflections from both sides; their directions stay in U.
    void Reduce() {
        norm_ = 0;
        for (std::ptrdiff_t i = 0; i < n_; ++i) {
            std::ptrdiff_t const next = i + 1;
            T scale = 0, half = 0;
            w_[i] = 0;
            if (i == 0) above_[0] = 0;
            if (next < n_) above_[next] = 0;
            if (i < m_) {
                T* const direction = U(i) + i;
                w_[i] = Reflect(direction, m_ - i, scale, half);
                if (half != 0)
                    for (std::ptrdiff_t j = next; j < n_; ++j)
                        AddMultiple(InnerProduct(direction, U(j) + i, m_ - i) / half, direction, U(j) + i,
                                    m_ - i);
                if (scale != 0) Multiply(direction, scale, m_ - i);
                if (next < n_) ReduceRow(i);
            }
            T const size = std::abs(w_[i]) + std::abs(above_[i]);
            // not std::max, which would lose what is not a number
            if (!(size <= norm_)) norm_ = size;
        }
    }

    void ReduceRow(std::ptrdiff_t i) {
        std::ptrdiff_t const next = i + 1, count = n_ - next, below = m_ - next;
        for (std::ptrdiff_t j = 0; j < count; ++j) row_[j] = U(next + j)[i];
        T scale = 0, half = 0;
        above_[next] = Reflect(row_, count, scale, half);
        if (half != 0) {
            std::fill_n(column_, below, T{0});
            AddMultiples(row_, {U(next) + next, m_}, column_, count, below);
            for (std::ptrdiff_t j = 0; j < count; ++j)
                AddMultiple(row_[j] / half, column_, U(next + j) + next, below);
        }
        for (std::ptrdiff_t j = 0; j < count; ++j) U(next + j)[i] = scale != 0 ? row_[j] * scale : row_[j];
    }

    // V from the reflections of rows.
    void AccumulateRight() {
        for (std::ptrdiff_t i = n_ - 1; i >= 0; --i) {
            std::ptrdiff_t const next = i + 1, count = n_ - next;
            T* const own = V(i);
            std::fill_n(own, n_, T{0});
            if (count > 0 && i < m_ && above_[next] != 0) {
                for (std::ptrdiff_t j = 0; j < count; ++j) row_[j] = U(next + j)[i];
                // divided twice, since the product may be too small
                for (std::ptrdiff_t j = 0; j < count; ++j) own[next + j] = row_[j] / row_[0] / above_[next];
                for (std::ptrdiff_t j = next; j < n_; ++j)
                    AddMultiple(InnerProduct(row_, V(j) + next, count), own + next, V(j) + next, count);
            }
            for (std::ptrdiff_t j = next; j < n_; ++j) V(j)[i] = 0;
            std::fill_n(own + next, count, T{0});
            own[i] = 1;
        }
    }

    // U from the reflections of columns.
    void AccumulateLeft() {
        for (std::ptrdiff_t i = std::min(m_, n_) - 1; i >= 0; --i) {
            std::ptrdiff_t const next = i + 1, below = m_ - next;
            T* const own = U(i) + i;
            for (std::ptrdiff_t j = next; j < n_; ++j) U(j)[i] = 0;
            if (w_[i] != 0) {
                for (std::ptrdiff_t j = next; j < n_; ++j) {
                    T const product = InnerProduct(own + 1, U(j) + next, below);
                    AddMultiple(product / own[0] / w_[i], own, U(j) + i, m_ - i);
                }
                for (std::ptrdiff_t y = 0; y < m_ - i; ++y) own[y] /= w_[i];
            } else {
                std::fill_n(own, m_ - i, T{0});
            }
            own[0] += 1;
        }
    }

    bool Negligible(T value) const { return std::abs(value) + norm_ == norm_; }

    // QR steps until w[k] stands alone.
    bool Converge(std::ptrdiff_t k) {
        for (int step = 1;; ++step) {
            std::ptrdiff_t const first = FirstOfBlock(k);
            if (first == k) {
                if (w_[k] < 0) {
                    w_[k] = -w_[k];
                    Multiply(V(k), T{-1}, n_);
                }
                return true;
            }
            if (step == kMostSteps) return false;
            Step(first, k);
        }
    }

    // Where the block that ends at k begins: above it there is nothing to speak of. A diagonal element of
    // nothing ends a block too, once what is beside it has been rotated away.
    std::ptrdiff_t FirstOfBlock(std::ptrdiff_t k) {
        for (std::ptrdiff_t first = k; first > 0; --first) {
            if (Negligible(above_[first])) return first;
            if (Negligible(w_[first - 1])) {
                RotateAway(first, k);
                return first;
            }
        }
        return 0;
    }

    void RotateAway(std::ptrdiff_t first, std::ptrdiff_t k) {
        double cosine = 0, sine = 1;
        for (std::ptrdiff_t i = first; i <= k; ++i) {
            double const left = sine * above_[i], diagonal = w_[i];
            above_[i] = static_cast<T>(cosine * above_[i]);
            if (Negligible(static_cast<T>(left))) return;
            w_[i] = static_cast<T>(SetAngle(diagonal, -left, cosine, sine));
            Turn(U(first - 1), U(i), cosine, sine, m_);
        }
    }

    // One step on the block from `first` to k, with the shift from its last two by two elements. What goes
    // from one rotation to the next is in double precision: the steps are many.
    void Step(std::ptrdiff_t first, std::ptrdiff_t k) {
        // in units of the matrix, whose squares keep within their range
        double const unit = norm_, top = w_[first] / unit, last = w_[k] / unit, y = w_[k - 1] / unit,
                     g = above_[k - 1] / unit, h = above_[k] / unit;
        double const shift = ((y - last) * (y + last) + (g - h) * (g + h)) / (2 * h * y);
        double const root = Hypotenuse(shift, 1.0);
        double f =
            unit * ((top - last) * (top + last) + h * (y / (shift + (shift < 0 ? -root : root)) - h)) / top;

        double x = w_[first];
        double cosine = 1, sine = 1;
        for (std::ptrdiff_t j = first; j < k; ++j) {
            double const beside = cosine * above_[j + 1], bulge = sine * above_[j + 1];
            above_[j] = static_cast<T>(SetAngle(f, bulge, cosine, sine));
            Turn(V(j), V(j + 1), cosine, sine, n_);
            f = x * cosine + beside * sine;
            double const above = beside * cosine - x * sine, below = w_[j + 1] * sine,
                         diagonal = w_[j + 1] * cosine;
            w_[j] = static_cast<T>(SetAngle(f, below, cosine, sine));
            Turn(U(j), U(j + 1), cosine, sine, m_);
            f = cosine * above + sine * diagonal;
            x = cosine * diagonal - sine * above;
        }
        above_[first] = 0;
        above_[k] = static_cast<T>(f);
        w_[k] = static_cast<T>(x);
    }

    // The angle of a vector, whose length it gives. A vector of no length may have any angle.
    static double SetAngle(double adjacent, double opposite, double& cosine, double& sine) {
        double const length = Hypotenuse(adjacent, opposite);
        cosine = length != 0 ? adjacent / length : 1;
        sine = length != 0 ? opposite / length : 0;
        return length;
    }

    static void Turn(T* a, T* b, double cosine, double sine, std::ptrdiff_t count) {
        Rotate(a, b, static_cast<T>(cosine), static_cast<T>(sine), count);
    }

    std::ptrdiff_t m_, n_;
    T* w_;
    T* above_;  // the diagonal above w: above_[i] beside w[i], so that the first one is none
    T *u_, *v_;
    T *row_, *column_;  // work space
    T norm_;
};

template <typename T> void TimesPowerOfTwo(int exponent, T* elements, std::ptrdiff_t count) {
    if (exponent != 0)
        for (std::ptrdiff_t i = 0; i < count; ++i) elements[i] = std::scalbn(elements[i], exponent);
}

// Of the largest element if its square is out of range, else 0. Divided by this power of two, a matrix keeps its bits,
// its norm stays in range, and what rounding leaves of its rows and columns has all its digits.
template <typename T> int ExponentOutOfRange(T largest) {
    if (largest == 0 || !std::isfinite(largest)) return 0;
    int const exponent = std::ilogb(largest);
    return std::abs(exponent) >= std::numeric_limits<T>::max_exponent / 2 ? exponent : 0;
}

// From and to offset matrices. False if a singular value did not converge.
template <typename T>
bool Decompose(T** a, std::ptrdiff_t m, std::ptrdiff_t n, T* w, T** v, T* above, T* work) {
    Decomposition<T> matrix(m, n, w + 1, above, work);
    T largest = 0;
    for (std::ptrdiff_t y = 0; y < m; ++y)
        for (std::ptrdiff_t x = 0; x < n; ++x) {
            matrix.U(x)[y] = a[y + 1][x + 1];
            largest = std::max(largest, std::abs(a[y + 1][x + 1]));
        }
    int const exponent = ExponentOutOfRange(largest);
    TimesPowerOfTwo(-exponent, matrix.U(0), m * n);
    bool const converged = matrix.Run();
    TimesPowerOfTwo(exponent, w + 1, n);
    for (std::ptrdiff_t y = 0; y < m; ++y)
        for (std::ptrdiff_t x = 0; x < n; ++x) a[y + 1][x + 1] = matrix.U(x)[y];
    for (std::ptrdiff_t y = 0; y < n; ++y)
        for (std::ptrdiff_t x = 0; x < n; ++x) v[y + 1][x + 1] = matrix.V(x)[y];
    return converged;
}

// An offset vector from 1 to n for the length of a call.
class OwnVector {
public:
    explicit OwnVector(int n) : vector_(alloc_vector(1, n)) {}
    ~OwnVector() { delete_vector(vector_, 1); }
    OwnVector(OwnVector const&) = delete;
    OwnVector& operator=(OwnVector const&) = delete;
    explicit operator bool() const { return vector_ != nullptr; }
    float& operator[](std::ptrdiff_t i) { return vector_[i]; }

private:
    float* vector_;
};

}  // namespace

SOLVANE_RETURNCODE svdcmp(float** a, int m, int n, float* w, float** v) {
    if (AnyNull(L"svdcmp(): Null pointer.", a, w, v)) return SOLVANE_NULL_POINTER;
    if (m < 1 || n < 1) return SOLVANE_OK;
    OwnVector rv1(n);
    if (!rv1)
        return Report(SOLVANE_OPERATION_FAILED,
                      L"svdcmp():alloc_vector() for 'rv1' failed with params nl=%d, nh=%d", 1, n);
    std::uint64_t const elements = Decomposition<float>::WorkElements(m, n);
    std::unique_ptr<float[]> const work(AllocateElements<float>(elements));
    if (!work) return ReportMemory(L"svdcmp()", elements, sizeof(float));
    if (Decompose(a, m, n, w, v, &rv1[1], work.get())) return SOLVANE_OK;
    return Report(SOLVANE_UNEXPECTED, L"svdcmp() - No convergence in 30 svdcmp iterations.");
}

SOLVANE_RETURNCODE dsvdcmp_DBL(double** a, int m, int n, double* w, double** v) {
    if (AnyNull(L"dsvdcmp_DBL(): Null pointer.", a, w, v)) return SOLVANE_NULL_POINTER;
    if (m < 1 || n < 1) return SOLVANE_OK;
    std::uint64_t const elements = Decomposition<double>::WorkElements(m, n);
    auto const work =
        AllocateCleared<double>(elements == kNoSize ? kNoSize : elements + static_cast<std::uint64_t>(n));
    if (!work) return Report(SOLVANE_UNEXPECTED, L"svdcmp(): no enough memory.");
    if (Decompose(a, m, n, w, v, work.get(), work.get() + n)) return SOLVANE_OK;
    return Report(SOLVANE_UNEXPECTED, L"svdcmp(): no convergence in %d svdcmp iterations.", kMostSteps);
}

SOLVANE_RETURNCODE svbksb(float** u, float* w, float** v, int m, int n, float* b, float* x) {
    if (AnyNull(L"svbksb(): Null pointer.", u, w, v, b, x)) return SOLVANE_NULL_POINTER;
    if (m < 1 || n < 1) return SOLVANE_OK;
    OwnVector tmp(n);
    if (!tmp)
        return Report(SOLVANE_OPERATION_FAILED,
                      L"svbksb(): alloc_vector() for 'tmp' failed with params nl=%d, nh=%d", 1, n);
    std::fill_n(&tmp[1], n, 0.0f);
    AddMultiples(b + 1, {u + 1, 1}, &tmp[1], m, n);
    for (std::ptrdiff_t i = 1; i <= n; ++i) tmp[i] = w[i] != 0 ? tmp[i] / w[i] : 0;
    InnerProducts({v + 1, 1}, &tmp[1], x + 1, n, n);
    return SOLVANE_OK;
}

}  // namespace ZPA
