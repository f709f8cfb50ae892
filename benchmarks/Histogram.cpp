// Histograms, of pixels at random and of equal ones, which lay claim to one counter.
#include <Basics/Histogram.h>

#include <memory>
#include <numeric>
#include <vector>

#include "support/Benchmark.h"
#include "support/OpenCv.h"
#include "support/Scene.h"

#ifdef ZPA_PEER_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace ZPA::Benchmarks {
namespace {

constexpr int kSides[] = {512, 2048};

template <typename T> constexpr double kSize = static_cast<double>(sizeof(T));

enum class Content { kRandom, kEqual, kGradient };

// A gradient is noise of 8 bits on a ramp.
template <typename T> Image<T> Pixels(int side, Content content, int values) {
    if (content == Content::kEqual) return RandomImage<T>(side, side, 0, values / 3, values / 3);
    if (content == Content::kRandom) return RandomImage<T>(side, side, 0, 0, values - 1);
    auto image = RandomImage<T>(side, side, 0, 0, 255);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            image.Row(y)[x] = static_cast<T>(image.Row(y)[x] + static_cast<T>(x * (values - 256) / side));
    return image;
}

// `values` bins, from 0 on.
template <typename T> Contenders Count(int side, bool masked, Content content, int values) {
    struct Scene {
        Image<T> image;
        Image<unsigned char> mask;
        std::vector<ULong32> ours;
        std::vector<float> theirs;
    };
    auto const bins = static_cast<std::size_t>(values);
    auto const scene = std::make_shared<Scene>(Scene{Pixels<T>(side, content, values),
                                                     RandomImage<unsigned char>(side, side, 0, 0, 1, 2),
                                                     std::vector<ULong32>(bins), std::vector<float>(bins)});
    Contenders contenders{
        [=, mask = scene->mask.Attributes()] {
            BufferAttributes histogram(eUInt32, scene->ours.data(), values);
            int const last = values - 1;
            if constexpr (std::is_integral_v<T>)
                Require(GetIntegerHistogram(scene->image.Attributes(), nullptr, masked ? &mask : nullptr,
                                            nullptr, nullptr, &last, &histogram));
            else
                Require(GetRealHistogram(scene->image.Attributes(), nullptr, masked ? &mask : nullptr,
                                         nullptr, values, 0.5, last + 0.5, &histogram));
        },
        "",
        {},
        {}};
#ifdef ZPA_PEER_OPENCV
    if constexpr (!std::is_same_v<T, double>) {  // it has no histogram of these
        contenders.peer = "OpenCV calcHist";
        contenders.theirs = [=, image = MatView(scene->image), mask = MatView(scene->mask)] {
            cv::Mat histogram(values, 1, CV_32F, scene->theirs.data());
            float const range[] = {0, static_cast<float>(values)};
            float const* ranges = range;
            int const channel = 0;
            cv::calcHist(&image, 1, &channel, masked ? mask : cv::Mat(), histogram, 1, &values, &ranges);
        };
        contenders.sameAnswer = [scene] {
            return std::equal(scene->ours.begin(), scene->ours.end(), scene->theirs.begin(),
                              [](ULong32 a, float b) { return static_cast<float>(a) == b; });
        };
    }
#endif
    return contenders;
}

Contenders Smooth(int count, float sigma) {
    struct Scene {
        Image<float> ours, theirs;
    };
    auto const scene = std::make_shared<Scene>(Scene{Image<float>(count, 1), Image<float>(count, 1)});
    Contenders contenders{[=] { Require(smoothHistogram(scene->ours.Row(0), count, sigma, 2)); }, "", {}, {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV GaussianBlur";
    contenders.theirs = [=, row = MatView(scene->theirs)]() mutable {
        int const taps = 2 * static_cast<int>(4 * sigma + 0.5F) + 1;
        cv::GaussianBlur(row, row, {taps, 1}, sigma, 1, cv::BORDER_REFLECT_101);
    };
#endif
    return contenders;
}

template <typename T> void RegisterCounts(int side, int values, std::string const& type) {
    auto const add = [&](char const* name, bool masked, Content content) {
        Traffic const traffic{kSize<T> + (masked ? 1 : 0), 0};
        char const* const operation = std::is_integral_v<T> ? "GetIntegerHistogram" : "GetRealHistogram";
        Register({std::string(operation) + name, type, side, side, traffic,
                  [=] { return Count<T>(side, masked, content, values); }});
    };
    add("", false, Content::kRandom);
    add(", equal", false, Content::kEqual);
    if (values > 256) add(", gradient", false, Content::kGradient);
    add(", mask", true, Content::kRandom);
    add(", equal, mask", true, Content::kEqual);
}

Registration const rows([] {
    for (int const side : kSides) {
        RegisterCounts<unsigned char>(side, 256, "8u");
        RegisterCounts<unsigned short>(side, 65536, "16u");
        RegisterCounts<unsigned short>(side, 4096, "16u, 12 bits");
        RegisterCounts<float>(side, 1000, "32f");
        RegisterCounts<double>(side, 1000, "64f");
    }
    for (float const sigma : {1.0F, 10.0F})
        Register({"smoothHistogram", sigma < 2 ? "32f, sigma 1" : "32f, sigma 10", 65536, 1, {4, 4}, [=] {
                      return Smooth(65536, sigma);
                  }});
});

}  // namespace
}  // namespace ZPA::Benchmarks
