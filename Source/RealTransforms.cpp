// Transforms of real values, and what they are for: correlation and convolution.
#include <Basics/FourierTransform.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "primitives/SpectrumPairs.h"
#include "Source/Internal/Fourier.h"
#include "Source/Internal/Report.h"
#include "Source/Internal/WorkSpace.h"

namespace ZPA {
namespace {

// 2n real values, n of them a power of two.
template <typename T> void TransformReal(T* data, std::ptrdiff_t n, bool inverse) {
    int const log = LogOfPowerOfTwo(n);
    if (log < 0) return;
    if (!inverse) TransformPoints(data, log, false);
    CombineHalves(data, n, inverse);
    T const sum = data[0] + data[1], difference = data[0] - data[1];
    data[0] = inverse ? sum / 2 : sum;
    data[1] = inverse ? difference / 2 : difference;
    if (inverse) TransformPoints(data, log, true);
}

template <typename T> void TransformTwo(T const* data1, T const* data2, T* fft1, T* fft2, int n) {
    int const log = LogOfPowerOfTwo(n);
    if (log < 0) return;
    Interleave(data1, data2, fft1, n);
    TransformPoints(fft1, log, false);
    Separate(fft1, fft2, n);
}

template <typename T> void TransformTwoBack(T* fft1, T const* fft2, T* out1, T* out2, int n) {
    int const log = LogOfPowerOfTwo(n);
    if (log < 0) return;
    AddTurned(fft1, fft2, n);
    TransformPoints(fft1, log, true);
    TakeApart(fft1, out1, out2, n);
}

// `work` has room for n values. Two transforms of half the length need half the memory of one of both at once.
template <typename T> void CorrelateThrough(T* work, T const* data1, T const* data2, int n, T* ans, T scale) {
    if (n == 1) {
        ans[0] = data1[0] * data2[0];
        return;
    }
    std::ptrdiff_t const points = n / 2;
    std::copy_n(data1, n, work);
    std::memmove(ans, data2, static_cast<std::size_t>(n) * sizeof(T));  // it may be one of the inputs
    TransformReal(work, points, false);
    TransformReal(ans, points, false);
    ans[0] *= work[0] * scale;
    ans[1] *= work[1] * scale;
    MultiplyByConjugates(ans + 2, work + 2, scale, points - 1);
    TransformReal(ans, points, true);
}

}  // namespace

void realFFT(float* data, int n, int sign) {
    if (!AnyNull(L"realFFT(): Null pointer.", data)) TransformReal(data, n, sign != 1);
}
void realFFT_DBL(double* data, int n, int sign) {
    if (!AnyNull(L"realFFT_DBL(): Null pointer.", data)) TransformReal(data, n, sign != 1);
}

void realFFT2(float const* data1, float const* data2, float* fft1, float* fft2, int n) {
    if (!AnyNull(L"realFFT2(): Null pointer.", data1, data2, fft1, fft2))
        TransformTwo(data1, data2, fft1, fft2, n);
}
void realFFT2_DBL(double const* data1, double const* data2, double* fft1, double* fft2, int n) {
    if (!AnyNull(L"realFFT2_DBL(): Null pointer.", data1, data2, fft1, fft2))
        TransformTwo(data1, data2, fft1, fft2, n);
}

void realIFFT2(float* fft1, float const* fft2, float* out1, float* out2, int n) {
    if (!AnyNull(L"realIFFT2(): Null pointer.", fft1, fft2, out1, out2))
        TransformTwoBack(fft1, fft2, out1, out2, n);
}
void realIFFT2_DBL(double* fft1, double const* fft2, double* out1, double* out2, int n) {
    if (!AnyNull(L"realIFFT2_DBL(): Null pointer.", fft1, fft2, out1, out2))
        TransformTwoBack(fft1, fft2, out1, out2, n);
}

void correl(float const* data1, float const* data2, int n, float* ans, float* work) {
    if (AnyNull(L"correl(): Null pointer.", data1, data2, ans) || LogOfPowerOfTwo(n) < 0) return;
    // a power of two, so that multiplying is dividing
    float const scale = n > 1 ? 1.0f / static_cast<float>(n / 2) : 1.0f;
    if (work) return CorrelateThrough(work, data1, data2, n, ans, scale);
    std::uint64_t const count = 2 * static_cast<std::uint64_t>(n);
    std::unique_ptr<float[]> const own(AllocateElements<float>(count));
    if (own)
        CorrelateThrough(own.get(), data1, data2, n, ans, scale);
    else
        ReportMemory(L"correl()", count, sizeof(float));
}

void correl_DBL(double const* data1, double const* data2, int n, double* ans) {
    if (AnyNull(L"correl_DBL(): Null pointer.", data1, data2, ans) || LogOfPowerOfTwo(n) < 0) return;
    std::uint64_t const count = 2 * static_cast<std::uint64_t>(n);
    auto const own = AllocateCleared<double>(count);
    if (own)
        CorrelateThrough(own.get(), data1, data2, n, ans, 1.0);
    else
        ReportMemory(L"correl_DBL()", count, sizeof(double));
}

void convlv_DBL(double const* filter, double* data, int n) {
    if (AnyNull(L"convlv_DBL(): Null pointer.", filter, data) || LogOfPowerOfTwo(n) < 0) return;
    int const points = n / 2;
    TransformReal(data, points, false);
    data[0] *= filter[0];
    if (n == 1) return;
    data[1] *= filter[1];
    MultiplyPoints(data + 2, filter + 2, points - 1);
    TransformReal(data, points, true);
}

}  // namespace ZPA
