// Linear algebra and Fourier transforms.
#include <Basics/FourierTransform.h>
#include <Basics/LinearAlgebra.h>

#include "digest/Cases.h"
#include "support/Matrices.h"

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
            auto const matrix = Fractions<double>(count * count, 52), right = Fractions<double>(count, 53);
            auto factors = matrix, solved = matrix, inverted = matrix, inverse = matrix;
            auto x = right, y = right;
            std::vector<int> indices(count);
            double d = 0;
            (twin ? ludcmp_DBL : ludcmp)(factors.data(), n, indices.data(), &d);
            digest.Add(factors, indices);
            digest.Add(d);
            (twin ? lubksb_DBL : lubksb)(factors.data(), n, indices.data(), x.data());
            (twin ? sollequ_DBL : sollequ)(solved.data(), n, y.data());
            invmatrix_DBL(inverted.data(), inverse.data(), n);
            digest.Add(x, y, inverse);
        }
    }
}

template <typename T, typename Decompose> void Singular(Digest& digest, Decompose const& decompose) {
    constexpr int kM = 31, kN = 19;
    OffsetMatrix<T> a(kM, kN), v(kN, kN);
    auto const elements = Fractions<T>(kM * kN, 54);
    std::copy(elements.begin(), elements.end(), a.elements.begin());
    std::vector<T> w(kN + 1);
    digest.Add(int{decompose(a.pointers.data(), kM, kN, w.data(), v.pointers.data())});
    digest.Add(a.elements.data(), elements.size());
    digest.Add(w);
    digest.Add(v.elements.data(), kN * kN);
    if constexpr (sizeof(T) == 4) {
        auto b = Fractions<float>(kM + 1, 55);
        std::vector<float> x(kN + 1);
        digest.Add(int{svbksb(a.pointers.data(), w.data(), v.pointers.data(), kM, kN, b.data(), x.data())});
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
            digest.Add(single, real);
            realFFT(single.data(), n, sign);
            realFFT_DBL(real.data(), n, sign);
            digest.Add(single, real);
        }
    }
    auto square = Fractions<double>(2 * 64 * 64, 58);
    FFT2d_DBL(square.data(), 64, 1);
    digest.Add(square);
}

void Correlations(Digest& digest) {
    constexpr int kN = 256;
    auto const a = Fractions<double>(kN, 59), b = Fractions<double>(kN, 60);
    auto const c = Fractions<float>(kN, 61), d = Fractions<float>(kN, 62);
    std::vector<double> first(2 * kN), second(2 * kN), third(kN), fourth(kN), correlation(kN);
    std::vector<float> one(2 * kN), two(2 * kN), three(kN), four(kN), sums(kN), work(2 * kN);
    realFFT2_DBL(a.data(), b.data(), first.data(), second.data(), kN);
    realFFT2(c.data(), d.data(), one.data(), two.data(), kN);
    digest.Add(first, second, one, two);
    realIFFT2_DBL(first.data(), second.data(), third.data(), fourth.data(), kN);
    realIFFT2(one.data(), two.data(), three.data(), four.data(), kN);
    correl_DBL(a.data(), b.data(), kN, correlation.data());
    correl(c.data(), d.data(), kN, sums.data(), work.data());
    auto filtered = b;
    convlv_DBL(a.data(), filtered.data(), kN);
    digest.Add(third, fourth, three, four, correlation, sums, filtered);
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
