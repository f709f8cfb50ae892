// The matrix product.
#include <Basics/Arithmetic.h>
#include <omp.h>

#include <memory>

#include "support/Benchmark.h"
#include "support/Scene.h"

#ifdef ZPA_PEER_OPENBLAS
#include <cblas.h>
#endif

namespace ZPA::Benchmarks {
namespace {

#ifdef ZPA_PEER_OPENBLAS
void Gemm(int m, int n, int k, float const* a, float const* b, float* c) {
    cblas_sgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, m, n, k, 1, a, k, b, n, 0, c, n);
}
void Gemm(int m, int n, int k, double const* a, double const* b, double* c) {
    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, m, n, k, 1, a, k, b, n, 0, c, n);
}
#endif

using WithImage = SOLVANE_RETURNCODE (*)(ImageAttributes, ImageAttributes, ImageAttributes*);

// A height x length matrix by a length x width one.
template <typename T> Contenders Product(int height, int width, int length, WithImage product = Mul) {
    struct Scene {
        Image<T> first, second, ours, theirs;
    };
    auto const scene = std::make_shared<Scene>(Scene{RandomImage<T>(length, height, 0, -1, 1),
                                                     RandomImage<T>(width, length, 0, -1, 1, 2),
                                                     Image<T>(width, height), Image<T>(width, height)});
    Contenders contenders{
        [=, output = scene->ours.Attributes()]() mutable {
            Require(product(scene->first.Attributes(), scene->second.Attributes(), &output));
        },
        "",
        {},
        {}};
#ifdef ZPA_PEER_OPENBLAS
    openblas_set_num_threads(omp_get_max_threads());
    // With the kernels that it chose: on a processor younger than itself it takes its slowest, unless
    // OPENBLAS_CORETYPE names better ones, such as SkylakeX.
    contenders.peer = std::string("OpenBLAS gemm, ") + openblas_get_corename();
    contenders.theirs = [=] {
        Gemm(height, width, length, scene->first.Row(0), scene->second.Row(0), scene->theirs.Row(0));
    };
    contenders.sameAnswer = [=] {
        return LargestDifference(scene->ours, scene->theirs) <=
               length * static_cast<double>(std::numeric_limits<T>::epsilon());
    };
#endif
    return contenders;
}

template <typename T> void RegisterProducts() {
    for (int const side : {32, 128, 512, 1024})
        Register({"Mul", kTypeName<T>, side, side, {0, 0}, [=] { return Product<T>(side, side, side); }});
    for (int const side : {32, 512})
        Register({"ipp_mul", kTypeName<T>, side, side, {0, 0}, [=] {
                      return Product<T>(side, side, side, ipp_mul);
                  }});
    Register({"Mul, 2000 summed", kTypeName<T>, 100, 100, {0, 0}, [] { return Product<T>(100, 100, 2000); }});
}

Registration const products([] {
    RegisterProducts<float>();
    RegisterProducts<double>();
});

}  // namespace
}  // namespace ZPA::Benchmarks
