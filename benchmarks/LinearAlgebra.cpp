// Linear systems and singular values beside LAPACK and Eigen, on one thread. LAPACK's matrices have their
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
void dgetri_(int const* n, double* a, int const* stride, int* exchanges, double* work, int const* workSize,
             int* info);
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

template <typename T> Contenders SingularValues(int rows, int columns) {
    struct Scene {
        Matrix<T> u, v;
        Image<T> source;
        std::vector<T> w;
    };
    Matrix<T> const any(rows, columns);
    auto const scene =
        std::make_shared<Scene>(Scene{Matrix<T>(rows, columns), Matrix<T>(columns, columns), any.elements,
                                      std::vector<T>(static_cast<std::size_t>(columns) + 1)});
    Contenders contenders{[=] {
                              scene->u.Fill(scene->source);
                              Require(Decompose(scene->u.pointers.data(), rows, columns, scene->w.data(),
                                                scene->v.pointers.data()));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_EIGEN
    using Dynamic = Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
    struct Peer {
        Dynamic matrix;
        Eigen::JacobiSVD<Dynamic> decomposed;
    };
    auto const peer = std::make_shared<Peer>();
    peer->matrix = Eigen::Map<Dynamic>(scene->source.Row(0), rows, columns);
    contenders.peer = "Eigen JacobiSVD";
    contenders.theirs = [=] {
        peer->decomposed.compute(peer->matrix, Eigen::ComputeThinU | Eigen::ComputeThinV);
    };
    // Of theirs the largest is the first.
    contenders.sameAnswer = [=] {
        std::vector<T> sorted(scene->w.begin() + 1, scene->w.end());
        std::sort(sorted.rbegin(), sorted.rend());
        auto const& values = peer->decomposed.singularValues();
        double worst = 0;
        for (int i = 0; i < columns; ++i)
            worst = std::max(worst,
                             static_cast<double>(std::abs(sorted[static_cast<std::size_t>(i)] - values[i])) /
                                 static_cast<double>(sizeof(T) == 4 ? values[0] : values[i]));
        return worst < (sizeof(T) == 4 ? 1e-5 : 1e-12);
    };
#endif
    return contenders;
}

Registration const rows([] {
    for (int const n : {2, 4, 8, 16, 24, 32, 40, 41, 64, 100, 200, 500})
        Register({"sollequ", "64f", n, n, {0, 0}, [=] { return Solve(n); }});
    for (int const n : {8, 40, 200, 500})
        Register({"invmatrix_DBL", "64f", n, n, {0, 0}, [=] { return Invert(n); }});
    for (int const n : {20, 200}) {
        Register({"svdcmp", "32f", n, n, {0, 0}, [=] { return SingularValues<float>(n, n); }});
        Register({"dsvdcmp_DBL", "64f", n, n, {0, 0}, [=] { return SingularValues<double>(n, n); }});
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
