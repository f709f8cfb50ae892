// Transforms of complex points: FFT, FFT_DBL and FFT2d_DBL.
#include <Basics/FourierTransform.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "primitives/FourierStages.h"
#include "primitives/RootsOfUnity.h"
#include "Source/Internal/Fourier.h"
#include "Source/Internal/Report.h"
#include "Source/Internal/WorkSpace.h"

namespace ZPA {
namespace {

constexpr std::size_t kStackBytes = 16384;
using Work = WorkSpace<unsigned char, kStackBytes>;

// Needs no memory: radix 2, point by point. `stride` counts points.
template <typename T>
void TransformWithoutWork(T* points, std::ptrdiff_t stride, int logPoints, bool inverse) {
    std::ptrdiff_t const n = std::ptrdiff_t{1} << logPoints;
    auto const at = [&](std::ptrdiff_t k) { return points + 2 * stride * k; };
    for (std::ptrdiff_t k = 0, reversed = 0; k < n; ++k) {
        if (k < reversed) {
            std::swap(at(k)[0], at(reversed)[0]);
            std::swap(at(k)[1], at(reversed)[1]);
        }
        std::ptrdiff_t bit = n / 2;
        for (; reversed & bit; bit /= 2) reversed ^= bit;
        reversed |= bit;
    }

    for (int logHalf = 0; logHalf < logPoints; ++logHalf) {
        std::ptrdiff_t const half = std::ptrdiff_t{1} << logHalf;
        RootsOfUnity const powers(logHalf + 1);
        for (std::ptrdiff_t j = 0; j < half; ++j) {
            Complex const turn = powers.Power(static_cast<std::uint64_t>(inverse ? 2 * half - j : j));
            for (std::ptrdiff_t k = j; k < n; k += 2 * half) {
                T *const a = at(k), *const b = at(k + half);
                Complex const turned = turn * Complex{b[0], b[1]};
                b[0] = static_cast<T>(a[0] - turned.re);
                b[1] = static_cast<T>(a[1] - turned.im);
                a[0] = static_cast<T>(a[0] + turned.re);
                a[1] = static_cast<T>(a[1] + turned.im);
            }
        }
    }
    if (!inverse) return;
    for (std::ptrdiff_t k = 0; k < n; ++k) {
        at(k)[0] /= static_cast<T>(n);
        at(k)[1] /= static_cast<T>(n);
    }
}

template <typename T> void Transform(T* points, int logPoints, bool inverse) {
    Work work(SequenceWorkBytes(logPoints, sizeof(T)));
    if (work.Get())
        TransformSequences(points, logPoints, 1, inverse, work.Get());
    else
        TransformWithoutWork(points, 1, logPoints, inverse);
}

template <typename T> void TransformChecked(T* data, int n, int sign, Message nullPointer) {
    int const logPoints = LogOfPowerOfTwo(n);
    if (AnyNull(nullPointer, data) || logPoints < 0) return;
    TransformPoints(data, logPoints, sign < 0);
}

}  // namespace

void TransformPoints(float* points, int logPoints, bool inverse) { Transform(points, logPoints, inverse); }
void TransformPoints(double* points, int logPoints, bool inverse) { Transform(points, logPoints, inverse); }

void FFT(float* data, int n, int sign) { TransformChecked(data, n, sign, L"FFT(): Null pointer."); }
void FFT_DBL(double* data, int n, int sign) { TransformChecked(data, n, sign, L"FFT_DBL(): Null pointer."); }

void FFT2d_DBL(double* data, int n, int sign) {
    int const log = LogOfPowerOfTwo(n);
    if (AnyNull(L"FFT2d_DBL(): Null pointer.", data) || log < 0) return;
    bool const inverse = sign < 0;
    Work work(std::max(SequenceWorkBytes(log, sizeof(double)), ColumnsWorkBytes(log)));
    if (work.Get()) {
        TransformSequences(data, log, n, inverse, work.Get());
        TransformColumns(data, log, inverse, work.Get());
        return;
    }
    for (std::ptrdiff_t y = 0; y < n; ++y) TransformWithoutWork(data + 2 * n * y, 1, log, inverse);
    for (std::ptrdiff_t x = 0; x < n; ++x) TransformWithoutWork(data + 2 * x, n, log, inverse);
}

}  // namespace ZPA
