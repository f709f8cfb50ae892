// Linear systems, singular values, products and differences beside LAPACK and Eigen, on one thread. LAPACK's matrices have their
// columns one behind the other: it is given the transpose, so that both solve the same system.
#include <Basics/LinearAlgebra.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include "support/Benchmark.h"
#include "support/Scene.h"
#ifdef ZPA_PEER_LAPACK
extern "C" {
void dgesv_(int const* n, int const* columns, double* a, int const* strideOfA, int* exchanges, double* b,
            int const* strideOfB, int* info);
void dgetrf_(int const* rows, int const* columns, double* a, int const* stride, int* exchanges, int* info);
void dgetrs_(char const* transposed, int const* n, int const* columns, double const* a, int const* strideOfA,
             int const* exchanges, double* b, int const* strideOfB, int* info);
void dgetri_(int const* n, double* a, int const* stride, int* exchanges, double* work, int const* workSize,
             int* info);
void dgesvd_(char const* jobOfU, char const* jobOfV, int const* rows, int const* columns, double* a,
             int const* stride, double* values, double* u, int const* strideOfU, double* v,
             int const* strideOfV, double* work, int const* workSize, int* info);
void dgemv_(char const* transposed, int const* rows, int const* columns, double const* factor,
            double const* a, int const* stride, double const* x, int const* step, double const* factorOfY,
            double* y, int const* stepOfY);
void sgemv_(char const* transposed, int const* rows, int const* columns, float const* factor, float const* a,
            int const* stride, float const* x, int const* step, float const* factorOfY, float* y,
            int const* stepOfY);
double ddot_(int const* n, double const* x, int const* stepOfX, double const* y, int const* stepOfY);
}
#endif
#ifdef ZPA_PEER_EIGEN
#include <Eigen/SVD>
#endif

namespace ZPA::Benchmarks {
namespace {

struct System {
    explicit System(int n)
        : matrix(RandomImage<double>(n, n, 0, -1, 1)),
          transposed(n, n),
          ours(matrix),
          theirs(transposed),
          inverse(n, n),
          x(static_cast<std::size_t>(n)),
          y(x),
          exchanges(x.size()),
          work(x.size() * 64) {
        for (int row = 0; row < n; ++row)
            for (int column = 0; column < n; ++column) transposed.Row(column)[row] = matrix.Row(row)[column];
    }
    static void Copy(Image<double> const& from, Image<double>& to) {
        std::memcpy(to.Row(0), from.Row(0),
                    sizeof(double) * static_cast<std::size_t>(from.Width()) *
                        static_cast<std::size_t>(from.Height()));
    }
    // Of a solution of a x = (1, 1, ...): the largest error of a row, relative to the sizes in it.
    double Residual(std::vector<double> const& solution) const {
        double worst = 0;
        for (int row = 0; row < matrix.Height(); ++row) {
            double sum = -1, sizes = 1;
            for (int column = 0; column < matrix.Width(); ++column) {
                double const product = matrix.Row(row)[column] * solution[static_cast<std::size_t>(column)];
                sum += product;
                sizes += std::abs(product);
            }
            worst = std::max(worst, std::abs(sum) / sizes);
        }
        return worst;
    }

    Image<double> matrix, transposed, ours, theirs, inverse;
    std::vector<double> x, y;
    std::vector<int> exchanges;
    std::vector<double> work;
};

// Both destroy the matrix, and so copy it first.
Contenders Solve(int n) {
    auto const scene = std::make_shared<System>(n);
    Contenders contenders{[=] {
                              System::Copy(scene->matrix, scene->ours);
                              std::fill(scene->x.begin(), scene->x.end(), 1.0);
                              sollequ(scene->ours.Row(0), n, scene->x.data());
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_LAPACK
    contenders.peer = "LAPACK dgesv";
    contenders.theirs = [=] {
        System::Copy(scene->transposed, scene->theirs);
        std::fill(scene->y.begin(), scene->y.end(), 1.0);
        int const one = 1;
        int info = 0;
        dgesv_(&n, &one, scene->theirs.Row(0), &n, scene->exchanges.data(), scene->y.data(), &n, &info);
    };
    contenders.sameAnswer = [=] {
        return scene->Residual(scene->x) <= 10 * scene->Residual(scene->y) + 1e-16;
    };
#endif
    return contenders;
}

// The factors alone, which destroy the matrix too. The peer scales no rows, and so has others.
Contenders Factor(int n) {
    auto const scene = std::make_shared<System>(n);
    Contenders contenders{[=] {
                              System::Copy(scene->matrix, scene->ours);
                              double sign;
                              ludcmp(scene->ours.Row(0), n, scene->exchanges.data(), &sign);
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_LAPACK
    contenders.peer = "LAPACK dgetrf";
    contenders.theirs = [=] {
        System::Copy(scene->transposed, scene->theirs);
        int info = 0;
        dgetrf_(&n, &n, scene->theirs.Row(0), &n, scene->exchanges.data(), &info);
    };
#endif
    return contenders;
}

// Of factors that are there.
Contenders Substitute(int n) {
    auto const scene = std::make_shared<System>(n);
    System::Copy(scene->matrix, scene->ours);
    double sign;
    ludcmp(scene->ours.Row(0), n, scene->exchanges.data(), &sign);
    Contenders contenders{[=] {
                              std::fill(scene->x.begin(), scene->x.end(), 1.0);
                              lubksb(scene->ours.Row(0), n, scene->exchanges.data(), scene->x.data());
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_LAPACK
    auto const exchanges = std::make_shared<std::vector<int>>(static_cast<std::size_t>(n));
    System::Copy(scene->transposed, scene->theirs);
    int failed = 0;
    dgetrf_(&n, &n, scene->theirs.Row(0), &n, exchanges->data(), &failed);
    contenders.peer = "LAPACK dgetrs";
    contenders.theirs = [=] {
        std::fill(scene->y.begin(), scene->y.end(), 1.0);
        int const one = 1;
        int info = 0;
        dgetrs_("N", &n, &one, scene->theirs.Row(0), &n, exchanges->data(), scene->y.data(), &n, &info);
    };
    contenders.sameAnswer = [=] {
        return scene->Residual(scene->x) <= 10 * scene->Residual(scene->y) + 1e-16;
    };
#endif
    return contenders;
}

Contenders Invert(int n) {
    auto const scene = std::make_shared<System>(n);
    Contenders contenders{[=] {
                              System::Copy(scene->matrix, scene->ours);
                              invmatrix_DBL(scene->ours.Row(0), scene->inverse.Row(0), n);
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_LAPACK
    contenders.peer = "LAPACK dgetri";
    contenders.theirs = [=] {
        System::Copy(scene->matrix, scene->theirs);
        int const workSize = 64 * n;
        int info = 0;
        dgetrf_(&n, &n, scene->theirs.Row(0), &n, scene->exchanges.data(), &info);
        dgetri_(&n, scene->theirs.Row(0), &n, scene->exchanges.data(), scene->work.data(), &workSize, &info);
    };
    // The inverse of the transpose is the transpose of the inverse.
    contenders.sameAnswer = [=] { return LargestDifference(scene->inverse, scene->theirs) < 1e-8; };
#endif
    return contenders;
}

Contenders Multiply(int n) {
    auto const scene = std::make_shared<System>(n);
    std::fill(scene->work.begin(), scene->work.end(), 1.0);
    Contenders contenders{
        [=] { mvmul(scene->matrix.Row(0), scene->work.data(), scene->x.data(), n, n); }, "", {}, {}};
#ifdef ZPA_PEER_LAPACK
    contenders.peer = "BLAS dgemv";
    contenders.theirs = [=] {
        int const step = 1;
        double const one = 1, zero = 0;
        dgemv_("T", &n, &n, &one, scene->matrix.Row(0), &n, scene->work.data(), &step, &zero, scene->y.data(),
               &step);
    };
    contenders.sameAnswer = [=] {
        double worst = 0;
        for (std::size_t i = 0; i < scene->x.size(); ++i)
            worst = std::max(worst, std::abs(scene->x[i] - scene->y[i]));
        return worst < 1e-11;
    };
#endif
    return contenders;
}

// Two vectors: their product, or their difference.
struct Vectors {
    explicit Vectors(int n)
        : a(RandomImage<double>(n, 1, 0, -1, 1)),
          b(RandomImage<double>(n, 1, 0, -1, 1, 2)),
          difference(n, 1) {}
    Image<double> a, b, difference;
    double ours = 0, theirs = 0;
};
Contenders InnerProduct(int n) {
    auto const scene = std::make_shared<Vectors>(n);
    Contenders contenders{[=] { scene->ours = viprod(scene->a.Row(0), scene->b.Row(0), n); }, "", {}, {}};
#ifdef ZPA_PEER_LAPACK
    contenders.peer = "BLAS ddot";
    contenders.theirs = [=] {
        int const step = 1;
        scene->theirs = ddot_(&n, scene->a.Row(0), &step, scene->b.Row(0), &step);
    };
    contenders.sameAnswer = [=] { return std::abs(scene->ours - scene->theirs) < 1e-9; };
#endif
    return contenders;
}
Contenders Difference(int n) {
    auto const scene = std::make_shared<Vectors>(n);
    return {[=] { vvdiff(scene->a.Row(0), scene->b.Row(0), n, scene->difference.Row(0)); }};
}

// An offset matrix. It may be moved, not copied: row pointers point to the elements.
template <typename T> struct Matrix {
    Matrix(int rows, int columns)
        : elements(RandomImage<T>(columns, rows, 0, -1, 1)), pointers(static_cast<std::size_t>(rows) + 1) {
        for (int y = 0; y < rows; ++y) pointers[static_cast<std::size_t>(y) + 1] = elements.Row(y) - 1;
    }
    void Fill(Image<T> const& source) {
        std::memcpy(
            elements.Row(0), source.Row(0),
            sizeof(T) * static_cast<std::size_t>(source.Width()) * static_cast<std::size_t>(source.Height()));
    }
    Matrix(Matrix&&) = default;

    Image<T> elements;
    std::vector<T*> pointers;
};

SOLVANE_RETURNCODE Decompose(float** a, int m, int n, float* w, float** v) { return svdcmp(a, m, n, w, v); }
SOLVANE_RETURNCODE Decompose(double** a, int m, int n, double* w, double** v) {
    return dsvdcmp_DBL(a, m, n, w, v);
}

// Of a square matrix.
template <typename T> struct Spectrum {
    explicit Spectrum(int n)
        : u(n, n), v(n, n), source(u.elements), w(static_cast<std::size_t>(n) + 1), size(n) {}
    void Find() {
        u.Fill(source);
        Require(Decompose(u.pointers.data(), size, size, w.data(), v.pointers.data()));
    }
    // The peer's values, the largest first. In double they agree to their last digits. In float the peer that
    // rotates pairs of columns has an error of 3e-5 of the largest for 200 columns, ours of 6e-7.
    bool Agrees(T const* values) const {
        std::vector<T> sorted(w.begin() + 1, w.end());
        std::sort(sorted.rbegin(), sorted.rend());
        for (std::size_t i = 0; i < sorted.size(); ++i) {
            double const difference =
                std::abs(static_cast<double>(sorted[i]) - static_cast<double>(values[i]));
            if (difference > static_cast<double>(sizeof(T) == 4 ? 1e-4 * values[0] : 1e-12 * values[i]))
                return false;
        }
        return true;
    }

    Matrix<T> u, v;
    Image<T> source;
    std::vector<T> w;
    int size;
};

// Least squares by singular values that are there.
Contenders SubstituteSingularValues(int n) {
    struct Scene : Spectrum<float> {
        using Spectrum<float>::Spectrum;
        std::vector<float> b = std::vector<float>(w.size(), 1.0F), x = b, y = b, product = b;
    };
    auto const scene = std::make_shared<Scene>(n);
    scene->Find();
    Contenders contenders{
        [=] {
            Require(svbksb(scene->u.pointers.data(), scene->w.data(), scene->v.pointers.data(), n, n,
                           scene->b.data(), scene->x.data()));
        },
        "",
        {},
        {}};
#ifdef ZPA_PEER_LAPACK
    contenders.peer = "BLAS sgemv, twice";
    contenders.theirs = [=] {
        int const step = 1;
        float const one = 1, zero = 0;
        float* const product = scene->product.data();
        sgemv_("N", &n, &n, &one, scene->u.elements.Row(0), &n, &scene->b[1], &step, &zero, product, &step);
        for (int i = 0; i < n; ++i) product[i] /= scene->w[static_cast<std::size_t>(i) + 1];
        sgemv_("T", &n, &n, &one, scene->v.elements.Row(0), &n, product, &step, &zero, &scene->y[1], &step);
    };
    contenders.sameAnswer = [=] {
        float largest = 0, difference = 0;
        for (std::size_t i = 1; i < scene->x.size(); ++i) {
            largest = std::max(largest, std::abs(scene->y[i]));
            difference = std::max(difference, std::abs(scene->x[i] - scene->y[i]));
        }
        return difference <= 1e-4F * largest;
    };
#endif
    return contenders;
}

template <typename T> Contenders SingularValues(int n) {
    auto const scene = std::make_shared<Spectrum<T>>(n);
    Contenders contenders{[=] { scene->Find(); }, "", {}, {}};
#ifdef ZPA_PEER_EIGEN
    using Dynamic = Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
    struct Peer {
        Dynamic matrix;
        Eigen::JacobiSVD<Dynamic> decomposed;
    };
    auto const peer = std::make_shared<Peer>();
    peer->matrix = Eigen::Map<Dynamic>(scene->source.Row(0), n, n);
    contenders.peer = "Eigen JacobiSVD";
    contenders.theirs = [=] {
        peer->decomposed.compute(peer->matrix, Eigen::ComputeThinU | Eigen::ComputeThinV);
    };
    contenders.sameAnswer = [=] { return scene->Agrees(peer->decomposed.singularValues().data()); };
#endif
    return contenders;
}

#ifdef ZPA_PEER_LAPACK
// The transpose has the same singular values.
Contenders SingularValuesBesideLapack(int n) {
    auto const scene = std::make_shared<Spectrum<double>>(n);
    struct Peer {
        Image<double> matrix, u, v;
        std::vector<double> values, work;
    };
    auto const size = static_cast<std::size_t>(n);
    auto const peer =
        std::make_shared<Peer>(Peer{Image<double>(n, n), Image<double>(n, n), Image<double>(n, n),
                                    std::vector<double>(size), std::vector<double>(64 * size)});
    return {[=] { scene->Find(); }, "LAPACK dgesvd",
            [=] {
                System::Copy(scene->source, peer->matrix);
                int const workSize = static_cast<int>(peer->work.size());
                int info = 0;
                dgesvd_("S", "S", &n, &n, peer->matrix.Row(0), &n, peer->values.data(), peer->u.Row(0), &n,
                        peer->v.Row(0), &n, peer->work.data(), &workSize, &info);
            },
            [=] { return scene->Agrees(peer->values.data()); }};
}
#endif

Registration const rows([] {
    for (int const n : {1, 2, 3, 4, 5, 6, 8, 16, 24, 32, 40, 41, 64, 100, 200, 500})
        Register({"sollequ", "64f", n, n, {0, 0}, [=] { return Solve(n); }});
    for (int const n : {8, 40, 200, 500})
        Register({"invmatrix_DBL", "64f", n, n, {0, 0}, [=] { return Invert(n); }});
    for (int const n : {40, 500}) {
        Register({"ludcmp", "64f", n, n, {0, 0}, [=] { return Factor(n); }});
        Register({"lubksb", "64f", n, n, {0, 0}, [=] { return Substitute(n); }});
    }
    for (int const n : {1000, 1 << 20}) {
        Register({"viprod", "64f", n, 1, {16, 0}, [=] { return InnerProduct(n); }});
        Register({"vvdiff", "64f", n, 1, {16, 8}, [=] { return Difference(n); }});
    }
    for (int const n : {40, 500}) Register({"mvmul", "64f", n, n, {0, 0}, [=] { return Multiply(n); }});
    for (int const n : {20, 200}) {
        Register({"svbksb", "32f", n, n, {0, 0}, [=] { return SubstituteSingularValues(n); }});
        Register({"svdcmp", "32f", n, n, {0, 0}, [=] { return SingularValues<float>(n); }});
        Register({"dsvdcmp_DBL", "64f", n, n, {0, 0}, [=] { return SingularValues<double>(n); }});
#ifdef ZPA_PEER_LAPACK
        Register({"dsvdcmp_DBL", "64f", n, n, {0, 0}, [=] { return SingularValuesBesideLapack(n); }});
#endif
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
