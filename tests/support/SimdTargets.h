// Runs a check once for every instruction set of the machine, and once without any.
#ifndef ZPA_TESTS_SUPPORT_SIMDTARGETS_H
#define ZPA_TESTS_SUPPORT_SIMDTARGETS_H

#include <gtest/gtest.h>
#include <hwy/highway.h>
#include <omp.h>

#if HWY_ARCH_X86
#include <immintrin.h>
#else
#include <cmath>
#endif

namespace ZPA::Testing {

// The kernels inside the library follow, since the choice of instruction set is shared by the whole process.
template <typename Check> void ForEachSimdTarget(Check const& check) {
    for (std::int64_t const target : hwy::SupportedAndGeneratedTargets()) {
        SCOPED_TRACE(hwy::TargetName(target));
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(target);
        check();
    }
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

// Whether the instruction set that the kernels run on has fused multiply-adds.
inline bool Fuses() {
    constexpr std::int64_t kFusing = HWY_AVX2 | HWY_AVX3 | HWY_AVX3_DL;
    return (hwy::SupportedTargets() & HWY_TARGETS & kFusing) != 0;
}

// a * b + c with one rounding, where that is fused: std::fma rounds twice on some platforms.
#if HWY_ARCH_X86
__attribute__((target("fma"))) inline float Fused(float a, float b, float c) {
    return _mm_cvtss_f32(_mm_fmadd_ss(_mm_set_ss(a), _mm_set_ss(b), _mm_set_ss(c)));
}
__attribute__((target("fma"))) inline double Fused(double a, double b, double c) {
    return _mm_cvtsd_f64(_mm_fmadd_sd(_mm_set_sd(a), _mm_set_sd(b), _mm_set_sd(c)));
}
#else
template <typename T> T Fused(T a, T b, T c) { return std::fma(a, b, c); }
#endif

// Runs a check with 1, 2 and 5 threads.
template <typename Check> void ForEachThreadCount(Check const& check) {
    int const usual = omp_get_max_threads();
    for (int const threads : {1, 2, 5}) {
        SCOPED_TRACE(testing::Message() << threads << " threads");
        omp_set_num_threads(threads);
        check();
    }
    omp_set_num_threads(usual);
}

}  // namespace ZPA::Testing

#endif
