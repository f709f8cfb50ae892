// Linear algebra and Fourier transforms.
#include <Basics/FourierTransform.h>
#include <Basics/LinearAlgebra.h>

#include "digest/Cases.h"

namespace ZPA::Testing {
namespace {

void Vectors(Digest& digest) {
    auto const a = Fractions<double>(1003, 50);
    auto const b = Fractions<double>(1003, 51);
    std::vector<double> out(1003);
    vvdiff(a.data(), b.data(), 1003, out.data());
    digest.Add(out);
    digest.Add(viprod(a.data(), b.data(), 1003));
    mvmul(a.data(), b.data(), out.data(), 29, 31);
    digest.Add(out.data(), 29);
    digest.Add(pythag(3.25F, -1e30F));
    digest.Add(dpythag_DBL(1e300, 2.5e299));
}

void Systems(Digest& digest) {
    for (int const n : {1, 3, 17, 90}) {
        auto const count = static_cast<std::size_t>(n);
        for (bool const twin : {false, true}) {
            auto matrix = Fractions<double>(count * count, 52);
            auto const right = Fractions<double>(count, 53);
            auto x = right;
            auto const whole = matrix;
            std::vector<int> indices(count);
            double d = 0;
            (twin ? ludcmp_DBL : ludcmp)(matrix.data(), n, indices.data(), &d);
            digest.Add(matrix);
            digest.Add(indices);
            digest.Add(d);
            (twin ? lubksb_DBL : lubksb)(matrix.data(), n, indices.data(), x.data());
            digest.Add(x);
            matrix = whole;
            x = right;
            (twin ? sollequ_DBL : sollequ)(matrix.data(), n, x.data());
            digest.Add(x);
            matrix = whole;
            std::vector<double> inverse(count * count);
            invmatrix_DBL(matrix.data(), inverse.data(), n);
            digest.Add(inverse);
        }
    }
}

// The rows of a packed matrix whose indices begin at 1.
template <typename T> std::vector<T*> Rows(std::vector<T>& elements, int rows, int columns) {
    std::vector<T*> pointers(static_cast<std::size_t>(rows) + 1);
    for (int i = 1; i <= rows; ++i)
        pointers[static_cast<std::size_t>(i)] =
            elements.data() + static_cast<std::ptrdiff_t>(i - 1) * columns - 1;
    return pointers;
}

template <typename T, typename Decompose> void Singular(Digest& digest, Decompose const& decompose) {
    constexpr int kM = 31, kN = 19;
    auto a = Fractions<T>(kM * kN, 54);
    std::vector<T> w(kN + 1), v(kN * kN);
    auto rows = Rows(a, kM, kN);
    auto rowsOfV = Rows(v, kN, kN);
    digest.Add(int{decompose(rows.data(), kM, kN, w.data(), rowsOfV.data())});
    digest.Add(a);
    digest.Add(w);
    digest.Add(v);
    if constexpr (sizeof(T) == 4) {
        auto b = Fractions<float>(kM + 1, 55);
        std::vector<float> x(kN + 1);
        digest.Add(int{svbksb(rows.data(), w.data(), rowsOfV.data(), kM, kN, b.data(), x.data())});
        digest.Add(x);
    }
}

void SingularValues(Digest& digest) {
    Singular<float>(digest, svdcmp);
    Singular<double>(digest, dsvdcmp_DBL);
}

void Transforms(Digest& digest) {
    for (int const n : {1, 2, 8, 64, 512, 16384}) {
        auto const count = static_cast<std::size_t>(n);
        for (int const sign : {1, -1}) {
            auto single = Fractions<float>(2 * count, 56);
            auto real = Fractions<double>(2 * count, 57);
            FFT(single.data(), n, sign);
            FFT_DBL(real.data(), n, sign);
            digest.Add(single);
            digest.Add(real);
            realFFT(single.data(), n, sign);
            realFFT_DBL(real.data(), n, sign);
            digest.Add(single);
            digest.Add(real);
        }
    }
    auto square = Fractions<double>(2 * 64 * 64, 58);
    FFT2d_DBL(square.data(), 64, 1);
    digest.Add(square);
}

void Correlations(Digest& digest) {
    constexpr int kN = 256;
    auto const a = Fractions<double>(kN, 59);
    auto const b = Fractions<double>(kN, 60);
    auto const c = Fractions<float>(kN, 61);
    auto const d = Fractions<float>(kN, 62);
    std::vector<double> first(2 * kN), second(2 * kN), third(kN), fourth(kN);
    std::vector<float> one(2 * kN), two(2 * kN), three(2 * kN), four(2 * kN);
    realFFT2_DBL(a.data(), b.data(), first.data(), second.data(), kN);
    realFFT2(c.data(), d.data(), one.data(), two.data(), kN);
    digest.Add(first);
    digest.Add(second);
    digest.Add(one);
    digest.Add(two);
    realIFFT2_DBL(first.data(), second.data(), third.data(), fourth.data(), kN);
    realIFFT2(one.data(), two.data(), three.data(), four.data(), kN);
    digest.Add(third);
    digest.Add(fourth);
    digest.Add(three.data(), kN);
    digest.Add(four.data(), kN);
    correl_DBL(a.data(), b.data(), kN, first.data());
    digest.Add(first.data(), kN);
    correl(c.data(), d.data(), kN, one.data(), two.data());
    digest.Add(one.data(), kN);
    third = b;
    convlv_DBL(a.data(), third.data(), kN);
    digest.Add(third);
}

}  // namespace

std::vector<Case> NumericCases() {
    return {{"vvdiff, viprod, mvmul, pythag", Vectors},
            {"ludcmp, lubksb, sollequ, invmatrix_DBL", Systems},
            {"svdcmp, svbksb, dsvdcmp_DBL", SingularValues},
            {"FFT, realFFT, FFT2d_DBL", Transforms},
            {"realFFT2, realIFFT2, correl, convlv_DBL", Correlations}};
}

}  // namespace ZPA::Testing
