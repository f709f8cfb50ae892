// The flat-top filters over windows of growing size: a pixel should cost the same in all of them.
#include <Basics/FlatTopFilter.h>

#include <cmath>
#include <memory>
#include <string>

#include "support/Benchmark.h"
#include "support/OpenCv.h"
#include "support/Scene.h"

#ifdef ZPA_PEER_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace ZPA::Benchmarks {
namespace {

constexpr int kSides[] = {512, 2048};
constexpr int kKernels[] = {3, 15, 61, 301};

// Grey values as a detector gives them.
constexpr double kBrightest = 16383;

template <typename T> struct Scene {
    Image<T> source, ours, theirs;
    explicit Scene(int side)
        : source(RandomImage<T>(side, side, 0, 0, kBrightest)), ours(side, side), theirs(side, side) {}
};

template <typename T> using Filter = SOLVANE_RETURNCODE (*)(T*, T*, int, int, int, int);
template <typename T> using MaskedFilter = SOLVANE_RETURNCODE (*)(T*, T*, char*, int, int, int, int);

#ifdef ZPA_PEER_OPENCV
// Away from the border, where the peer pads the image. It rounds means of integers, adds in another order,
// and divides 0 by 0 where no weight is left.
template <typename T> bool SameInside(Image<T> const& ours, Image<T> const& theirs, int kernel) {
    double const tolerance = std::is_integral_v<T> ? 1 : 1e-6;
    for (int y = kernel / 2; y < ours.Height() - kernel / 2; ++y)
        for (int x = kernel / 2; x < ours.Width() - kernel / 2; ++x) {
            auto const one = static_cast<double>(ours.Row(y)[x]),
                       other = static_cast<double>(theirs.Row(y)[x]);
            if (!(std::abs(one - (std::isnan(other) ? 0.0 : other)) <= tolerance)) return false;
        }
    return true;
}
#endif

template <typename T> Contenders Mean(int side, int kernel, Filter<T> filter) {
    auto const scene = std::make_shared<Scene<T>>(side);
    Contenders contenders{
        [scene, side, kernel, filter] {
            Require(filter(scene->source.Row(0), scene->ours.Row(0), side, side, kernel, kernel));
        },
        "",
        {},
        {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV blur";
    contenders.theirs = [kernel, source = MatView(scene->source), result = MatView(scene->theirs)] {
        cv::blur(source, result, {kernel, kernel}, {-1, -1}, cv::BORDER_REFLECT_101 | cv::BORDER_ISOLATED);
    };
    contenders.sameAnswer = [scene, kernel] { return SameInside(scene->ours, scene->theirs, kernel); };
#endif
    return contenders;
}

// The peer has no such filter; its answer is put together from a product, two sums and a quotient. It knows
// no window that is cut off, but zeros outside of the image leave both sums as they are.
template <typename T> Contenders MaskedMean(int side, int kernel, MaskedFilter<T> filter) {
    struct MaskedScene : Scene<T> {
        Image<unsigned char> mask;
        explicit MaskedScene(int side)
            : Scene<T>(side), mask(RandomImage<unsigned char>(side, side, 0, 0, 1, 2)) {}
    };
    auto const scene = std::make_shared<MaskedScene>(side);
    Contenders contenders{
        [scene, side, kernel, filter] {
            Require(filter(scene->source.Row(0), scene->ours.Row(0),
                           reinterpret_cast<char*>(scene->mask.Row(0)), side, side, kernel, kernel));
        },
        "",
        {},
        {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV multiply, boxFilter and divide";
    contenders.theirs = [kernel, source = MatView(scene->source), result = MatView(scene->theirs),
                         mask = MatView(scene->mask), product = cv::Mat(), sums = cv::Mat(),
                         weights = cv::Mat()]() mutable {
        auto const sum = [kernel](cv::Mat const& from, cv::Mat& to) {
            cv::boxFilter(from, to, CV_64F, {kernel, kernel}, {-1, -1}, false,
                          cv::BORDER_CONSTANT | cv::BORDER_ISOLATED);
        };
        cv::multiply(source, mask, product, 1, CV_64F);
        sum(product, sums);
        sum(mask, weights);
        cv::divide(sums, weights, result, 1, result.type());
    };
    contenders.sameAnswer = [scene, kernel] { return SameInside(scene->ours, scene->theirs, kernel); };
#endif
    return contenders;
}

template <typename T> void RegisterMean(char const* operation, Filter<T> filter) {
    for (int const side : kSides)
        for (int const kernel : kKernels)
            Register({operation,
                      std::string(kTypeName<T>) + " by " + std::to_string(kernel),
                      side,
                      side,
                      {sizeof(T), sizeof(T)},
                      [=] { return Mean<T>(side, kernel, filter); }});
}

template <typename T> void RegisterMaskedMean(char const* operation, MaskedFilter<T> filter) {
    for (int const side : kSides)
        for (int const kernel : kKernels)
            Register({operation,
                      std::string(kTypeName<T>) + " by " + std::to_string(kernel),
                      side,
                      side,
                      {sizeof(T) + 1.0, sizeof(T)},
                      [=] { return MaskedMean<T>(side, kernel, filter); }});
}

Registration const rows([] {
    RegisterMean<unsigned short>("rectFlatTopFilter", rectFlatTopFilter);
    RegisterMean<unsigned short>("rect_flat_top_filtering", rect_flat_top_filtering_ushort);
    RegisterMean<short>("rect_flat_top_filtering", rect_flat_top_filtering_short);
    RegisterMean<double>("rect_flat_top_filtering", rect_flat_top_filtering_double);
    RegisterMaskedMean<unsigned short>("rectFlatTopFilteringWithMask", rectFlatTopFilteringWithMask_ushort);
    RegisterMaskedMean<double>("rectFlatTopFilteringWithMask", rectFlatTopFilteringWithMask_double);
});

}  // namespace
}  // namespace ZPA::Benchmarks
