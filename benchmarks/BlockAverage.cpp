// Block averages, subsamples and transposed images, beside their peers.
#include <Basics/AnisotropicGaussian.h>
#include <Basics/BlockAverage.h>

#include <memory>
#include <tuple>

#include "support/Benchmark.h"
#include "support/OpenCv.h"
#include "support/Scene.h"
#ifdef ZPA_PEER_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace ZPA::Benchmarks {
namespace {

constexpr int kSides[] = {512, 2048};

template <typename T> struct Scene { Image<T> source, ours, theirs; };

template <typename T> std::shared_ptr<Scene<T>> Reduced(int side, int factor) {
    int const to = side / factor;
    return std::make_shared<Scene<T>>(
        Scene<T>{RandomImage<T>(side, side), Image<T>(to, to), Image<T>(to, to)});
}

// Resizes by OpenCV; the answers may be apart by as much.
template <typename T>
Contenders Beside([[maybe_unused]] std::shared_ptr<Scene<T>> const& scene, std::function<void()> ours,
                  [[maybe_unused]] char const* peer, [[maybe_unused]] int method,
                  [[maybe_unused]] double apart) {
    Contenders contenders{std::move(ours), "", {}, {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = peer;
    // Of whole blocks only.
    int const used = scene->source.Width() / scene->ours.Width() * scene->ours.Width();
    contenders.theirs = [scene, from = MatView(scene->source)(cv::Rect(0, 0, used, used)),
                         to = MatView(scene->theirs),
                         method]() mutable { cv::resize(from, to, to.size(), 0, 0, method); };
    contenders.sameAnswer = [scene, apart] { return LargestDifference(scene->ours, scene->theirs) <= apart; };
#endif
    return contenders;
}

#ifdef ZPA_PEER_OPENCV
constexpr int kArea = cv::INTER_AREA;
constexpr int kNearest = cv::INTER_NEAREST;
#else
constexpr int kArea = 0;
constexpr int kNearest = 0;
#endif

using Reduce = SOLVANE_RETURNCODE (*)(unsigned short*, unsigned short*, int, int, int, int, int);

// The peer rounds.
Contenders Average(Reduce reduce, int side, int factor) {
    auto const scene = Reduced<unsigned short>(side, factor);
    int const to = side / factor;
    auto ours = [=] {
        Require(reduce(scene->source.Row(0), scene->ours.Row(0), side, side, to, to, factor));
    };
    return Beside(scene, ours, "OpenCV resize, area", kArea, 1);
}

template <typename T> Contenders TypedAverage(int side, int factor) {
    auto const scene = Reduced<T>(side, factor);
    int const to = side / factor;
    auto ours = [=] {
        Require(blockAverageDownSampleTemplate(scene->source.Row(0), scene->ours.Row(0), side, side, to, to,
                                               factor));
    };
    return Beside(scene, ours, "OpenCV resize, area", kArea, 1);
}

// The code is what no pixel has, so that the peer, which knows no code, gives the same.
template <typename T> Contenders CodedAverage(int side, int factor) {
    auto const scene = Reduced<T>(side, factor);
    int const to = side / factor;
    for (T& pixel : scene->source.Elements())
        if (pixel == T(7)) pixel = T(8);
    auto ours = [=] {
        Require(blockAverageDownSampleCodedMaskTemplate(scene->source.Row(0), scene->ours.Row(0), side, side,
                                                        to, to, factor, T(7)));
    };
    return Beside(scene, ours, "OpenCV resize, area", kArea, 1);
}

Contenders Sample(int side, int factor) {
    auto const scene = Reduced<unsigned short>(side, factor);
    auto ours = [scene, factor, to = scene->ours.Attributes()]() mutable {
        ImageAttributes const from = scene->source.Attributes();
        Require(subsample(&from, &to, factor, 0, 0));
    };
    return Beside(scene, ours, "OpenCV resize, nearest", kNearest, 0);
}

template <typename T> Contenders Turn(int side) {
    auto const scene = Reduced<T>(side, 1);
    Contenders contenders{[scene, to = scene->ours.Attributes()]() mutable {
                              Require(TransposeImage(scene->source.Attributes(), &to));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV transpose";
    contenders.theirs = [scene, from = MatView(scene->source), to = MatView(scene->theirs)]() mutable {
        cv::transpose(from, to);
    };
    contenders.sameAnswer = [scene] { return LargestDifference(scene->ours, scene->theirs) == 0; };
#endif
    return contenders;
}

Traffic Reducing(std::size_t bytes, int factor) {
    auto const size = static_cast<double>(bytes);
    return {size, size / (factor * factor)};
}

Registration const rows([] {
    for (int const side : kSides) {
        for (int const factor : {2, 3, 4, 8}) {
            std::string const by = ", factor " + std::to_string(factor);
            auto const add = [&](std::string const& name, char const* type, std::size_t bytes,
                                 std::function<Contenders()> make) {
                Register({name + by, type, side, side, Reducing(bytes, factor), std::move(make)});
            };
            add("blockAverage", "16u", 2, [=] { return Average(blockAverage, side, factor); });
            add("blockAverageDownSample", "16u", 2,
                [=] { return TypedAverage<unsigned short>(side, factor); });
            add("blockAverageDownSample", "16s", 2, [=] { return TypedAverage<short>(side, factor); });
            add("blockAverageDownSample", "64f", 8, [=] { return TypedAverage<double>(side, factor); });
            add("blockAverageDownSampleCodedMask", "16u", 2,
                [=] { return CodedAverage<unsigned short>(side, factor); });
            add("blockAverageDownSampleCodedMask", "16s", 2,
                [=] { return CodedAverage<short>(side, factor); });
            add("blockAverageDownSampleCodedMask", "64f", 8,
                [=] { return CodedAverage<double>(side, factor); });
            add("subsample", "16u", 2, [=] { return Sample(side, factor); });
        }
        Register({"TransposeImage", "8u", side, side, {1, 1}, [=] { return Turn<unsigned char>(side); }});
        Register({"TransposeImage", "16u", side, side, {2, 2}, [=] { return Turn<unsigned short>(side); }});
        Register({"TransposeImage", "32f", side, side, {4, 4}, [=] { return Turn<float>(side); }});
        Register({"TransposeImage", "64f", side, side, {8, 8}, [=] { return Turn<double>(side); }});
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
