// Linear filters: kernels of each size, those that separate and those that do not.
#include <Basics/LinearFilters.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <type_traits>

#ifdef ZPA_PEER_OPENCV
#include <opencv2/imgproc.hpp>
#endif

#include "support/Benchmark.h"
#include "support/OpenCv.h"
#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

template <typename T> using KernelElement = std::conditional_t<std::is_integral_v<T>, int, T>;

template <typename T> struct Scene {
    Image<T> source, ours, theirs;
    Image<KernelElement<T>> kernel;
    int divisor;
};

// Their kernel: turned, and divided. For kernels that separate, the row of which it is the product with itself.
template <typename T> struct PeerKernel {
    using Real = std::conditional_t<std::is_same_v<T, double>, double, float>;
    Image<Real> whole, row;
};

// Does not separate.
template <typename K> Image<K> PlainKernel(int side) { return RandomImage<K>(side, side, 0, -9, 20, 5); }

// 1, 2, 3, 2, 1
template <typename K> Image<K> SmoothRow(int side) {
    Image<K> row(side, 1);
    for (int i = 0; i < side; ++i) row.Row(0)[i] = static_cast<K>(1 + std::min(i, side - 1 - i));
    return row;
}

template <typename T> Contenders Filtering(int side, int kernelSide, bool separable) {
    using K = KernelElement<T>;
    Image<K> const row = SmoothRow<K>(kernelSide);
    Image<K> kernel = PlainKernel<K>(kernelSide);
    double sum = 0;
    [[maybe_unused]] double sizes = 0;
    for (int y = 0; y < kernelSide; ++y)
        for (int x = 0; x < kernelSide; ++x) {
            if (separable) kernel.Row(y)[x] = row.Row(0)[x] * row.Row(0)[y];
            sum += static_cast<double>(kernel.Row(y)[x]);
            sizes += std::abs(static_cast<double>(kernel.Row(y)[x]));
        }
    int const divisor = static_cast<int>(sum);  // not 0 for any of these
    int const whole = side + kernelSide - 1;
    auto const scene = std::make_shared<Scene<T>>(
        Scene<T>{RandomImage<T>(whole, whole), Image<T>(side, side), Image<T>(side, side), kernel, divisor});
    Contenders contenders{[scene, destination = scene->ours.Attributes()]() mutable {
                              Require(Filter2D(scene->source.Attributes(), nullptr, &destination, nullptr,
                                               scene->kernel.Attributes(), &scene->divisor));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    using Real = typename PeerKernel<T>::Real;
    auto const peer = std::make_shared<PeerKernel<T>>(
        PeerKernel<T>{Image<Real>(kernelSide, kernelSide), Image<Real>(kernelSide, 1)});
    Real const scale = std::is_integral_v<T> ? Real(1) / static_cast<Real>(divisor) : Real(1);
    for (int y = 0; y < kernelSide; ++y) {
        peer->row.Row(0)[y] = static_cast<Real>(row.Row(0)[y]) * std::sqrt(scale);
        for (int x = 0; x < kernelSide; ++x)
            peer->whole.Row(y)[x] =
                static_cast<Real>(kernel.Row(kernelSide - 1 - y)[kernelSide - 1 - x]) * scale;
    }
    // A part of an image: they too find its surroundings in memory.
    cv::Rect const region(kernelSide / 2, kernelSide / 2, side, side);
    contenders.peer = separable ? "OpenCV sepFilter2D" : "OpenCV filter2D";
    contenders.theirs = [scene, peer, separable, source = MatView(scene->source)(region),
                         destination = MatView(scene->theirs), kernelMat = MatView(peer->whole),
                         rowMat = MatView(peer->row)]() mutable {
        if (separable)
            cv::sepFilter2D(source, destination, -1, rowMat, rowMat);
        else
            cv::filter2D(source, destination, -1, kernelMat);
    };
    // They round where we cut, have kernels of 8 bits for separable filters of 8-bit images, and a Fourier
    // transform of floats for large kernels.
    double const size = 65536 * sizes / (std::is_integral_v<T> ? divisor : 1);
    double const tolerance =
        size * (sizeof(T) == 8 ? 1e-13 : 2e-6) + (std::is_integral_v<T> ? 1 : 0) + (sizeof(T) == 1 ? 2 : 0);
    contenders.sameAnswer = [=] { return LargestDifference(scene->ours, scene->theirs) <= tolerance; };
#endif
    return contenders;
}

template <typename T> void RegisterAll(int side) {
    constexpr double kBytes = sizeof(T);
    for (bool const separable : {false, true})
        for (int const kernelSide : {3, 5, 7, 15}) {
            std::string const size = std::to_string(kernelSide) + " by " + std::to_string(kernelSide);
            Register({"Filter2D, " + size + (separable ? ", separable" : ""),
                      kTypeName<T>,
                      side,
                      side,
                      {kBytes, kBytes},
                      [=] { return Filtering<T>(side, kernelSide, separable); }});
        }
}

// Sixteen weights along a buffer.
template <typename T> Contenders BufferFiltering(int size) {
    struct Scene {
        Image<T> input, output;
        Image<float> weights;
    };
    auto const scene = std::make_shared<Scene>(
        Scene{RandomImage<T>(size, 1), Image<T>(size, 1), RandomImage<float>(16, 1, 0, -1, 1)});
    return {[=, output = BufferAttributes(TypeCodeOf<T>, scene->output.Row(0), size)]() mutable {
        Require(FilterBufferSimple({TypeCodeOf<T>, scene->input.Row(0), size},
                                   {eSingle, scene->weights.Row(0), 16}, &output));
    }};
}

Contenders Kernel(char const* kind, int side, double parameter) {
    struct Scene {
        Image<double> ours, theirs;
    };
    auto const scene = std::make_shared<Scene>(Scene{Image<double>(side, side), Image<double>(side, side)});
    Contenders contenders{
        [=, kernel = scene->ours.Attributes()] { Require(fspecial(kernel, kind, parameter)); }, "", {}, {}};
#ifdef ZPA_PEER_OPENCV
    if (kind != std::string("gaussian")) return contenders;
    contenders.peer = "OpenCV getGaussianKernel";
    contenders.theirs = [=, kernel = MatView(scene->theirs)]() mutable {
        cv::Mat const column = cv::getGaussianKernel(side, parameter, CV_64F);
        cv::mulTransposed(column, kernel, false);
    };
    contenders.sameAnswer = [scene] { return LargestDifference(scene->ours, scene->theirs) < 1e-12; };
#endif
    return contenders;
}

Registration const rows([] {
    for (int const side : {512, 2048}) {
        RegisterAll<unsigned char>(side);
        RegisterAll<short>(side);
        RegisterAll<unsigned short>(side);
        RegisterAll<float>(side);
        RegisterAll<double>(side);
    }
    auto const addKernel = [](char const* kind, int side, double parameter) {
        Register({std::string("fspecial, ") + kind, "64f", side, side, {0, 0}, [=] {
                      return Kernel(kind, side, parameter);
                  }});
    };
    for (int const side : {5, 15, 61}) addKernel("gaussian", side, side / 6.0);
    for (int const side : {15, 61}) addKernel("average", side, 0);
    addKernel("laplacian", 3, 0.2);
    addKernel("sobel", 3, 0);
    Register({"FilterBufferSimple, 16", "16u", 1 << 16, 1, {0, 0}, [] {
                  return BufferFiltering<unsigned short>(1 << 16);
              }});
    Register({"FilterBufferSimple, 16", "64f", 1 << 16, 1, {0, 0}, [] {
                  return BufferFiltering<double>(1 << 16);
              }});
});

}  // namespace
}  // namespace ZPA::Benchmarks
