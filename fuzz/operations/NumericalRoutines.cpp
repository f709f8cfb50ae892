// Calls of linear algebra and Fourier transforms.
#include <Basics/FourierTransform.h>
#include <Basics/LinearAlgebra.h>

#include "allocation/Allocations.h"
#include "operations/Operations.h"

namespace ZPA::Fuzz {
namespace {

// Elements that a routine takes for granted are there up to this size; beyond it there are none.
constexpr int kLargest = 70;

// A size, and the elements of a vector or matrix that has it: none where the size makes no sense.
std::int64_t Count(std::int64_t rows, std::int64_t columns = 1) {
    if (rows < 1 || columns < 1) return 0;
    return rows > INT32_MAX / columns ? INT32_MAX : rows * columns;
}

int Size(Scene& scene) {
    return scene.input.Seldom(16) ? kLargest - scene.input.Choice(8) : scene.input.Number(0, 9);
}

// Powers of two as a rule.
int Points(Scene& scene) {
    if (scene.input.Seldom(8)) return scene.input.Number(0, 70);
    return 1 << scene.input.Choice(11);
}
int Sign(Scene& scene) {
    return scene.input.Seldom(16) ? scene.input.Number(-2, 2) : 1 - 2 * scene.input.Choice(2);
}

// Row pointers of an offset matrix whose rows have memory of their own; it begins at 1.
template <typename T> class OffsetMatrix {
public:
    OffsetMatrix(Scene& scene, int rows, int columns) : pointer_(nullptr) {
        if (rows > kLargest || columns > kLargest || scene.input.Seldom(64)) return;
        rows_.push_back(nullptr);
        for (int i = 0; i < rows; ++i) rows_.push_back(scene.Needed<T>(Count(columns)) - 1);
        pointer_ = rows_.data();
    }
    T** Get() { return pointer_; }

private:
    Scene::List<T*> rows_;
    T** pointer_;
};
template <typename T> T* OffsetVector(Scene& scene, int size) {
    T* const elements = scene.Elements<T>(Count(size));
    return elements ? elements - 1 : nullptr;
}

void CallAllocVector(Scene& scene) {
    int const first = scene.input.Choice(3), last = scene.input.Number(-2, 20);
    float* const vector = alloc_vector(first, last);
    if (vector)
        for (int i = first; i <= last; ++i) vector[i] = 1;
    delete_vector(vector, first);
    scene.Answer(vector != nullptr);
}

// Row pointers leak, as the routine's own comment tells, where there is memory for them and not for elements.
void CallAllocMatrix(Scene& scene) {
    int const firstRow = scene.input.Choice(3), firstColumn = scene.input.Choice(3);
    int const lastRow = firstRow - 1 + scene.input.Choice(9),
              lastColumn = firstColumn - 1 + scene.input.Choice(9);
    Testing::ThisThreadsAllocations().untilFailure = -1;
    float** const matrix = alloc_matrix(firstRow, lastRow, firstColumn, lastColumn);
    if (matrix)
        for (int i = firstRow; i <= lastRow; ++i)
            for (int j = firstColumn; j <= lastColumn; ++j) matrix[i][j] = 1;
    delete_matrix(matrix, firstRow, lastRow, firstColumn);
    scene.Answer(matrix != nullptr);
}

void CallVectors(Scene& scene) {
    int const n = scene.input.Number(0, 40), m = scene.input.Number(0, 9);
    auto* const a = scene.Elements<double>(Count(n));
    auto* const b = scene.Elements<double>(Count(n));
    auto* const out = scene.input.Seldom(4) ? a : scene.Elements<double>(Count(n));
    bool const isOut = vvdiff(a, b, n, out) == out;
    auto* const product = scene.Value<double>(viprod(a, b, n));
    auto* const matrix = scene.Elements<double>(m > 1000 || n > 1000 ? INT32_MAX : Count(m, n));
    mvmul(matrix, a, scene.Elements<double>(Count(m)), m, n);
    (void)pythag(static_cast<float>(scene.input.Number(0, 9)), 3);
    (void)dpythag_DBL(scene.input.Real(), scene.input.Real());
    scene.Answer(isOut && product);
}

template <auto factor> void CallFactor(Scene& scene) {
    int const n = Size(scene);
    auto* const matrix = scene.Elements<double>(Count(n, n));
    auto* const index = scene.Elements<int>(Count(n));
    factor(matrix, n, index, scene.Value<double>(0));
    scene.Answer(0);
}

template <auto substitute> void CallSubstitute(Scene& scene) {
    int const n = Size(scene);
    auto* const matrix = scene.Elements<double>(Count(n, n));
    auto* const index = scene.Elements<int>(Count(n));
    if (index && n <= kLargest && !scene.input.Seldom(4))
        for (int i = 0; i < n; ++i) index[i] = scene.input.Choice(n);
    substitute(matrix, n, index, scene.Elements<double>(Count(n)));
    scene.Answer(0);
}

template <auto solve> void CallSolve(Scene& scene) {
    int const n = Size(scene);
    auto* const matrix = scene.Elements<double>(Count(n, n));
    solve(matrix, n, scene.Elements<double>(Count(n)));
    scene.Answer(0);
}

void CallInvert(Scene& scene) {
    int const n = Size(scene);
    auto* const matrix = scene.Elements<double>(Count(n, n));
    invmatrix_DBL(matrix, scene.Elements<double>(Count(n, n)), n);
    scene.Answer(0);
}

template <typename T, auto decompose> void CallDecompose(Scene& scene) {
    int const m = scene.input.Number(0, 9), n = scene.input.Number(0, 9);
    OffsetMatrix<T> a(scene, m, n), v(scene, n, n);
    T* const w = OffsetVector<T>(scene, n);
    scene.Answer(decompose(a.Get(), m, n, w, v.Get()));
}

void CallBackSubstitute(Scene& scene) {
    int const m = scene.input.Number(0, 9), n = scene.input.Number(0, 9);
    OffsetMatrix<float> u(scene, m, n), v(scene, n, n);
    float* const w = OffsetVector<float>(scene, n);
    float* const b = OffsetVector<float>(scene, m);
    float* const x = m == n && scene.input.Seldom(4) ? b : OffsetVector<float>(scene, n);
    scene.Answer(svbksb(u.Get(), w, v.Get(), m, n, b, x));
}

template <typename T, auto transform, int side> void CallTransform(Scene& scene) {
    int const n = side == 2 ? std::min(Points(scene), 64) : Points(scene);
    auto* const data = scene.Elements<T>(2 * (side == 2 ? Count(n, n) : Count(n)));
    transform(data, n, Sign(scene));
    scene.Answer(0);
}

template <typename T, auto transform> void CallTwoForward(Scene& scene) {
    int const n = Points(scene);
    auto* const first = scene.Elements<T>(Count(n));
    auto* const second = scene.input.Seldom(8) ? first : scene.Elements<T>(Count(n));
    auto* const spectrum = scene.Elements<T>(2 * Count(n));
    transform(first, second, spectrum, scene.Elements<T>(2 * Count(n)), n);
    scene.Answer(0);
}

template <typename T, auto transform> void CallTwoBack(Scene& scene) {
    int const n = Points(scene);
    auto* const first = scene.Elements<T>(2 * Count(n));
    auto* const second = scene.Elements<T>(2 * Count(n));
    auto* const out = scene.input.Seldom(4) ? first : scene.Elements<T>(Count(n));
    transform(first, second, out, scene.Elements<T>(Count(n)), n);
    scene.Answer(0);
}

template <typename T, auto correlate> void CallCorrelate(Scene& scene) {
    int const n = Points(scene);
    auto* const first = scene.Elements<T>(Count(n));
    auto* const second = scene.Elements<T>(Count(n));
    auto* const answer = scene.input.Seldom(4) ? first : scene.Elements<T>(Count(n));
    if constexpr (std::is_same_v<T, float>)
        correlate(first, second, n, answer,
                  scene.input.Choice(2) ? scene.Elements<T>(2 * Count(n)) : nullptr);
    else
        correlate(first, second, n, answer);
    scene.Answer(0);
}

void CallConvolve(Scene& scene) {
    int const n = Points(scene);
    auto* const filter = scene.Elements<double>(Count(n));
    convlv_DBL(filter, scene.Elements<double>(Count(n)), n);
    scene.Answer(0);
}

}  // namespace

std::vector<Operation> const& NumericalRoutines() {
    static std::vector<Operation> const operations = {
        {"alloc_vector delete_vector", CallAllocVector, kPlain},
        {"alloc_matrix delete_matrix", CallAllocMatrix, kPlain},
        {"vvdiff viprod mvmul pythag dpythag_DBL", CallVectors, kPlain},
        {"ludcmp", CallFactor<ludcmp>, kPlain},
        {"ludcmp_DBL", CallFactor<ludcmp_DBL>, kPlain},
        {"lubksb", CallSubstitute<lubksb>, kPlain},
        {"lubksb_DBL", CallSubstitute<lubksb_DBL>, kPlain},
        {"sollequ", CallSolve<sollequ>, kPlain},
        {"sollequ_DBL", CallSolve<sollequ_DBL>, kPlain},
        {"invmatrix_DBL", CallInvert, kPlain},
        {"svdcmp", CallDecompose<float, svdcmp>, kPlain},
        {"dsvdcmp_DBL", CallDecompose<double, dsvdcmp_DBL>, kPlain},
        {"svbksb", CallBackSubstitute, kPlain},
        {"FFT", CallTransform<float, FFT, 1>, kPlain},
        {"FFT_DBL", CallTransform<double, FFT_DBL, 1>, kPlain},
        {"FFT2d_DBL", CallTransform<double, FFT2d_DBL, 2>, kPlain},
        {"realFFT", CallTransform<float, realFFT, 1>, kPlain},
        {"realFFT_DBL", CallTransform<double, realFFT_DBL, 1>, kPlain},
        {"realFFT2", CallTwoForward<float, realFFT2>, kPlain},
        {"realFFT2_DBL", CallTwoForward<double, realFFT2_DBL>, kPlain},
        {"realIFFT2", CallTwoBack<float, realIFFT2>, kPlain},
        {"realIFFT2_DBL", CallTwoBack<double, realIFFT2_DBL>, kPlain},
        {"correl", CallCorrelate<float, correl>, kPlain},
        {"correl_DBL", CallCorrelate<double, correl_DBL>, kPlain},
        {"convlv_DBL", CallConvolve, kPlain},
    };
    return operations;
}

}  // namespace ZPA::Fuzz
