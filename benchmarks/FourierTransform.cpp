// Fourier transforms beside FFTW. Its plans (FFTW_ESTIMATE) are made outside of what is timed; ours keep
// nothing between calls, so that their roots of unity and their work space are made within. Once the answers
// are compared all transform zeros, which take as long as other numbers and do not grow.
#include <Basics/FourierTransform.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "support/Benchmark.h"
#include "support/Scene.h"
#ifdef ZPA_PEER_FFTW
#include <fftw3.h>
#endif

namespace ZPA::Benchmarks {
namespace {

void Transform(float* data, int n) { FFT(data, n, 1); }
void Transform(double* data, int n) { FFT_DBL(data, n, 1); }
void TransformReal(float* data, int n) { realFFT(data, n, 1); }
void TransformReal(double* data, int n) { realFFT_DBL(data, n, 1); }
void Correlate(float const* a, float const* b, int n, float* ans, float* work) { correl(a, b, n, ans, work); }
void Correlate(double const* a, double const* b, int n, double* ans, double*) { correl_DBL(a, b, n, ans); }

template <typename T> Image<T> Numbers(int count, unsigned seed = 1) {
    return RandomImage<T>(count, 1, 0, -1, 1, seed);
}
template <typename T> void Clear(Image<T>& image) {
    std::fill(image.Elements().begin(), image.Elements().end(), T{0});
}

// Root mean square of the differences, relative to that of the peer's; ours times `factor` is compared.
template <typename T> bool Agree(T const* ours, T const* theirs, int count, double factor = 1) {
    double differences = 0, squares = 0;
    for (int i = 0; i < count; ++i) {
        double const difference = factor * static_cast<double>(ours[i]) - static_cast<double>(theirs[i]);
        differences += difference * difference;
        squares += static_cast<double>(theirs[i]) * static_cast<double>(theirs[i]);
    }
    return std::sqrt(differences / squares) < (sizeof(T) == 4 ? 1e-6 : 1e-13);
}

#ifdef ZPA_PEER_FFTW
constexpr char const* kPeer = "FFTW ESTIMATE";

// One set of FFTW's names for both types.
template <typename T> struct Fftw;
#define ZPA_FFTW(T, prefix)                                                                      \
    template <> struct Fftw<T> {                                                                 \
        using Complex = prefix##complex;                                                         \
        using Plan = std::shared_ptr<prefix##plan_s>;                                            \
        static Plan Own(prefix##plan plan) { return {plan, prefix##destroy_plan}; }              \
        static Complex* Points(T* data) { return reinterpret_cast<Complex*>(data); }             \
        static Plan Sequence(T* data, int n) {                                                   \
            return Own(prefix##plan_dft_1d(n, Points(data), Points(data), 1, FFTW_ESTIMATE));    \
        }                                                                                        \
        static Plan Square(T* data, int n) {                                                     \
            return Own(prefix##plan_dft_2d(n, n, Points(data), Points(data), 1, FFTW_ESTIMATE)); \
        }                                                                                        \
        static Plan Real(T* data, T* spectrum, int n) {                                          \
            return Own(prefix##plan_dft_r2c_1d(n, data, Points(spectrum), FFTW_ESTIMATE));       \
        }                                                                                        \
        static Plan RealBack(T* spectrum, T* data, int n) {                                      \
            return Own(prefix##plan_dft_c2r_1d(n, Points(spectrum), data, FFTW_ESTIMATE));       \
        }                                                                                        \
        static void Run(Plan const& plan) { prefix##execute(plan.get()); }                       \
    };
ZPA_FFTW(float, fftwf_)
ZPA_FFTW(double, fftw_)
#undef ZPA_FFTW
#endif

template <typename T> struct Pair { Image<T> ours, theirs; };

// In place: `transform` and the peer's plan from `plan(data)`.
template <typename T, typename OurTransform, typename MakePlan>
Contenders InPlace(int reals, OurTransform const& transform, [[maybe_unused]] MakePlan const& plan) {
    auto const scene = std::make_shared<Pair<T>>(Pair<T>{Numbers<T>(reals), Numbers<T>(reals)});
    Contenders contenders{[=] { transform(scene->ours.Row(0)); }, "", {}, {}};
#ifdef ZPA_PEER_FFTW
    contenders.peer = kPeer;
    contenders.theirs = [planned = plan(scene->theirs.Row(0))] { Fftw<T>::Run(planned); };
    contenders.sameAnswer = [scene, reals] {
        bool const same = Agree(scene->ours.Row(0), scene->theirs.Row(0), reals);
        Clear(scene->ours);
        Clear(scene->theirs);
        return same;
    };
#else
    Clear(scene->ours);
#endif
    return contenders;
}

template <typename T> Contenders Sequence(int n) {
    return InPlace<T>(
        2 * n, [n](T* data) { Transform(data, n); },
        [n]([[maybe_unused]] T* data) {
#ifdef ZPA_PEER_FFTW
            return Fftw<T>::Sequence(data, n);
#endif
        });
}

Contenders Square(int n) {
    return InPlace<double>(
        2 * n * n, [n](double* data) { FFT2d_DBL(data, n, 1); },
        [n]([[maybe_unused]] double* data) {
#ifdef ZPA_PEER_FFTW
            return Fftw<double>::Square(data, n);
#endif
        });
}

#ifdef ZPA_PEER_FFTW
// From the peer's spectrum of n real values to our layout: it has the conjugate, and the highest frequency at
// the end.
template <typename T> void ToOurLayout(T* spectrum, int n) {
    spectrum[1] = spectrum[n];
    for (int k = 1; k < n / 2; ++k) spectrum[2 * k + 1] = -spectrum[2 * k + 1];
}
#endif

// The peer goes from one array to another.
template <typename T> Contenders Real(int n) {
    struct Scene {
        Image<T> ours, theirs, spectrum;
    };
    auto const scene = std::make_shared<Scene>(Scene{Numbers<T>(n), Numbers<T>(n), Image<T>(n + 2, 1)});
    Contenders contenders{[=] { TransformReal(scene->ours.Row(0), n / 2); }, "", {}, {}};
#ifdef ZPA_PEER_FFTW
    contenders.peer = kPeer;
    contenders.theirs = [plan = Fftw<T>::Real(scene->theirs.Row(0), scene->spectrum.Row(0), n)] {
        Fftw<T>::Run(plan);
    };
    contenders.sameAnswer = [scene, n] {
        ToOurLayout(scene->spectrum.Row(0), n);
        bool const same = Agree(scene->ours.Row(0), scene->spectrum.Row(0), n);
        Clear(scene->ours);
        Clear(scene->theirs);
        return same;
    };
#else
    Clear(scene->ours);
#endif
    return contenders;
}

// The peer transforms one after the other, and has half of each spectrum.
Contenders TwoReal(int n) {
    struct Scene {
        Image<double> a, b, ofA, ofB, theirsOfA, theirsOfB;
    };
    auto const scene = std::make_shared<Scene>(Scene{Numbers<double>(n), Numbers<double>(n, 2),
                                                     Image<double>(2 * n, 1), Image<double>(2 * n, 1),
                                                     Image<double>(n + 2, 1), Image<double>(n + 2, 1)});
    Contenders contenders{
        [=] { realFFT2_DBL(scene->a.Row(0), scene->b.Row(0), scene->ofA.Row(0), scene->ofB.Row(0), n); },
        "",
        {},
        {}};
#ifdef ZPA_PEER_FFTW
    contenders.peer = kPeer;
    contenders.theirs = [ofA = Fftw<double>::Real(scene->a.Row(0), scene->theirsOfA.Row(0), n),
                         ofB = Fftw<double>::Real(scene->b.Row(0), scene->theirsOfB.Row(0), n)] {
        Fftw<double>::Run(ofA);
        Fftw<double>::Run(ofB);
    };
    contenders.sameAnswer = [scene, n] {
        for (auto* spectrum : {&scene->theirsOfA, &scene->theirsOfB}) ToOurLayout(spectrum->Row(0), n);
        scene->theirsOfA.Row(0)[1] = scene->theirsOfB.Row(0)[1] = 0;  // the highest is elsewhere in ours
        return Agree(scene->ofA.Row(0), scene->theirsOfA.Row(0), n) &&
               Agree(scene->ofB.Row(0), scene->theirsOfB.Row(0), n);
    };
#endif
    return contenders;
}

// And back, of which one spectrum is destroyed.
Contenders TwoRealBack(int n) {
    struct Scene {
        Image<double> a, b, ofA, ofB, spent;
    };
    auto const scene =
        std::make_shared<Scene>(Scene{Numbers<double>(n), Numbers<double>(n, 2), Image<double>(2 * n, 1),
                                      Image<double>(2 * n, 1), Image<double>(2 * n, 1)});
    realFFT2_DBL(scene->a.Row(0), scene->b.Row(0), scene->ofA.Row(0), scene->ofB.Row(0), n);
    return {[=] {
        std::copy_n(scene->ofA.Row(0), 2 * n, scene->spent.Row(0));
        realIFFT2_DBL(scene->spent.Row(0), scene->ofB.Row(0), scene->a.Row(0), scene->b.Row(0), n);
    }};
}

// With a filter that leaves all as it is, so that the values do not grow.
Contenders Convolution(int n) {
    struct Scene {
        Image<double> filter, ours, theirs, spectrum;
    };
    auto const scene = std::make_shared<Scene>(
        Scene{Image<double>(n, 1), Numbers<double>(n), Numbers<double>(n), Image<double>(n + 2, 1)});
    scene->filter.Row(0)[0] = 1;
    realFFT_DBL(scene->filter.Row(0), n / 2, 1);
    Contenders contenders{[=] { convlv_DBL(scene->filter.Row(0), scene->ours.Row(0), n); }, "", {}, {}};
#ifdef ZPA_PEER_FFTW
    contenders.peer = kPeer;
    double *const spectrum = scene->spectrum.Row(0), *const filter = scene->filter.Row(0);
    contenders.theirs = [=, there = Fftw<double>::Real(scene->theirs.Row(0), spectrum, n),
                         back = Fftw<double>::RealBack(spectrum, scene->theirs.Row(0), n)] {
        Fftw<double>::Run(there);
        spectrum[0] *= filter[0] / n;
        spectrum[n] *= filter[1] / n;
        for (int k = 2; k < n; k += 2) {
            double const re = (spectrum[k] * filter[k] + spectrum[k + 1] * filter[k + 1]) / n;
            spectrum[k + 1] = (spectrum[k + 1] * filter[k] - spectrum[k] * filter[k + 1]) / n;
            spectrum[k] = re;
        }
        Fftw<double>::Run(back);
    };
    contenders.sameAnswer = [scene, n] { return Agree(scene->ours.Row(0), scene->theirs.Row(0), n); };
#endif
    return contenders;
}

template <typename T> Contenders Correlation(int n) {
    struct Scene {
        Image<T> a, b, ours, theirs, work, spectrumA, spectrumB;
    };
    auto const scene =
        std::make_shared<Scene>(Scene{Numbers<T>(n), Numbers<T>(n, 2), Image<T>(n, 1), Image<T>(n, 1),
                                      Image<T>(2 * n, 1), Image<T>(n + 2, 1), Image<T>(n + 2, 1)});
    Contenders contenders{
        [=] { Correlate(scene->a.Row(0), scene->b.Row(0), n, scene->ours.Row(0), scene->work.Row(0)); },
        "",
        {},
        {}};
#ifdef ZPA_PEER_FFTW
    contenders.peer = kPeer;
    T *const a = scene->spectrumA.Row(0), *const b = scene->spectrumB.Row(0);
    contenders.theirs = [=, ofA = Fftw<T>::Real(scene->a.Row(0), a, n),
                         ofB = Fftw<T>::Real(scene->b.Row(0), b, n),
                         back = Fftw<T>::RealBack(a, scene->theirs.Row(0), n)] {
        Fftw<T>::Run(ofA);
        Fftw<T>::Run(ofB);
        for (int k = 0; k < n + 2; k += 2) {
            T const re = a[k] * b[k] + a[k + 1] * b[k + 1];
            a[k + 1] = a[k] * b[k + 1] - a[k + 1] * b[k];
            a[k] = re;
        }
        Fftw<T>::Run(back);
    };
    contenders.sameAnswer = [scene, n] {
        return Agree(scene->ours.Row(0), scene->theirs.Row(0), n,
                     sizeof(T) == 4 ? static_cast<double>(n) * n / 2 : n);
    };
#endif
    return contenders;
}

Registration const rows([] {
    for (int const log : {4, 6, 8, 10, 12, 14, 16, 18, 20}) {
        int const n = 1 << log;
        Register({"FFT", "32f", n, 1, {0, 0}, [=] { return Sequence<float>(n); }});
        Register({"FFT_DBL", "64f", n, 1, {0, 0}, [=] { return Sequence<double>(n); }});
    }
    for (int const n : {64, 256, 1024})
        Register({"FFT2d_DBL", "64f", n, n, {0, 0}, [=] { return Square(n); }});
    for (int const n : {1 << 10, 1 << 16}) {
        Register({"realFFT", "32f", n, 1, {0, 0}, [=] { return Real<float>(n); }});
        Register({"realFFT_DBL", "64f", n, 1, {0, 0}, [=] { return Real<double>(n); }});
        Register({"realFFT2_DBL", "64f", n, 1, {0, 0}, [=] { return TwoReal(n); }});
        Register({"realIFFT2_DBL", "64f", n, 1, {0, 0}, [=] { return TwoRealBack(n); }});
        Register({"convlv_DBL", "64f", n, 1, {0, 0}, [=] { return Convolution(n); }});
        Register({"correl", "32f", n, 1, {0, 0}, [=] { return Correlation<float>(n); }});
        Register({"correl_DBL", "64f", n, 1, {0, 0}, [=] { return Correlation<double>(n); }});
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
