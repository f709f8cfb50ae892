// Statistics of images and buffers, counts of a value, standard scores and inversions.
#include <Basics/Statistics.h>

#include <memory>
#include <vector>

#include "support/Benchmark.h"
#include "support/OpenCv.h"
#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

constexpr int kSides[] = {512, 2048};

template <typename T> constexpr double kSize = static_cast<double>(sizeof(T));

// 12 bits, whose squares do not wrap, so that both give the same deviation.
template <typename T> Image<T> Pixels(int side) {
    return RandomImage<T>(side, side, 0, 0, sizeof(T) == 1 ? 255 : 4095);
}

// Half of the pixels at random.
Image<unsigned char> Half(int side) { return RandomImage<unsigned char>(side, side, 0, 0, 1, 2); }

struct Measures {
    double min, max, mean, stdDev;
};

// Which outputs are asked for.
struct Wanted {
    bool min, max, mean, stdDev;
};

template <typename T> Contenders Statistics(int side, bool masked, Wanted wanted) {
    struct Scene {
        Image<T> image;
        Image<unsigned char> mask;
        Measures ours, theirs;
    };
    auto const scene = std::make_shared<Scene>(Scene{Pixels<T>(side), Half(side), {}, {}});
    Contenders contenders{
        [=, mask = scene->mask.Attributes()] {
            Measures& found = scene->ours;
            Require(CalculateImageStats(scene->image.Attributes(), nullptr, masked ? &mask : nullptr, nullptr,
                                        wanted.min ? &found.min : nullptr, wanted.max ? &found.max : nullptr,
                                        wanted.mean ? &found.mean : nullptr,
                                        wanted.stdDev ? &found.stdDev : nullptr));
        },
        "",
        {},
        {}};
#ifdef ZPA_PEER_OPENCV
    bool const range = wanted.min || wanted.max, sums = wanted.mean || wanted.stdDev;
    contenders.peer = !sums    ? "OpenCV minMaxLoc"
                      : !range ? "OpenCV meanStdDev"
                               : "OpenCV minMaxLoc, meanStdDev";
    contenders.theirs = [=, image = MatView(scene->image), mask = MatView(scene->mask)] {
        Measures& found = scene->theirs;
        cv::Mat const chosen = masked ? mask : cv::Mat();
        if (range) cv::minMaxLoc(image, &found.min, &found.max, nullptr, nullptr, chosen);
        cv::Scalar mean, stdDev;
        if (sums) cv::meanStdDev(image, mean, stdDev, chosen);
        found.mean = mean[0];
        found.stdDev = stdDev[0];
    };
    contenders.sameAnswer = [=] {
        Measures const &a = scene->ours, &b = scene->theirs;
        auto const near = [](bool asked, double x, double y) { return !asked || std::abs(x - y) < 1e-6; };
        return near(wanted.min, a.min, b.min) && near(wanted.max, a.max, b.max) &&
               near(wanted.mean, a.mean, b.mean) && near(wanted.stdDev, a.stdDev, b.stdDev);
    };
#endif
    return contenders;
}

template <typename T> Contenders BufferStatistics(int count) {
    struct Scene {
        Image<T> buffer;
        Measures ours;
    };
    auto const scene = std::make_shared<Scene>(Scene{RandomImage<T>(count, 1, 0, 0, 255), {}});
    Contenders contenders{
        [=] {
            Measures& found = scene->ours;
            Require(CalculateBufferStats({TypeCodeOf<T>, scene->buffer.Row(0), count}, nullptr, nullptr,
                                         &found.min, &found.max, &found.mean, &found.stdDev));
        },
        "",
        {},
        {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV minMaxLoc, meanStdDev";
    contenders.theirs = [buffer = MatView(scene->buffer)] {
        double min, max;
        cv::Scalar mean, stdDev;
        cv::minMaxLoc(buffer, &min, &max);
        cv::meanStdDev(buffer, mean, stdDev);
    };
#endif
    return contenders;
}

template <typename T> Contenders CountOfValue(int side, bool masked) {
    struct Scene {
        Image<T> image;
        Image<unsigned char> mask;
        int ours, theirs;
    };
    auto const scene = std::make_shared<Scene>(Scene{RandomImage<T>(side, side, 0, 0, 7), Half(side), 0, 0});
    Contenders contenders{
        [=, mask = scene->mask.Attributes()] {
            Require(ImageCountOfN(scene->image.Attributes(), nullptr, masked ? &mask : nullptr, nullptr, 3,
                                  &scene->ours, nullptr));
        },
        "",
        {},
        {}};
#ifdef ZPA_PEER_OPENCV
    if (masked) return contenders;
    contenders.peer = "OpenCV compare, countNonZero";
    contenders.theirs = [scene, image = MatView(scene->image), equal = cv::Mat()]() mutable {
        cv::compare(image, 3, equal, cv::CMP_EQ);
        scene->theirs = cv::countNonZero(equal);
    };
    contenders.sameAnswer = [scene] { return scene->ours == scene->theirs; };
#endif
    return contenders;
}

using LineCount = SOLVANE_RETURNCODE (*)(ImageAttributes, Rectangle const*, ImageAttributes const*,
                                         APOINT const*, int, BufferAttributes*, BufferAttributes*);

// `dimension`: what OpenCV's reduce leaves, 0 a row of sums, 1 a column.
template <typename T> Contenders CountsOfLines(int side, LineCount count, [[maybe_unused]] int dimension) {
    struct Scene {
        Image<T> image;
        std::vector<ULong32> targets, others;
    };
    auto const size = static_cast<std::size_t>(side);
    auto const scene = std::make_shared<Scene>(
        Scene{RandomImage<T>(side, side, 0, 0, 7), std::vector<ULong32>(size), std::vector<ULong32>(size)});
    Contenders contenders{
        [=] {
            BufferAttributes targets(eUInt32, scene->targets.data(), side);
            BufferAttributes others(eUInt32, scene->others.data(), side);
            Require(count(scene->image.Attributes(), nullptr, nullptr, nullptr, 3, &targets, &others));
        },
        "",
        {},
        {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV compare, reduce";
    contenders.theirs = [=, image = MatView(scene->image), equal = cv::Mat(), sums = cv::Mat()]() mutable {
        cv::compare(image, 3, equal, cv::CMP_EQ);
        cv::reduce(equal, sums, dimension, cv::REDUCE_SUM, CV_32S);
    };
#endif
    return contenders;
}

#ifdef ZPA_PEER_OPENCV
// Images of one scene, which lives as long as `owner` is held.
template <typename T>
void SetPeerOfScores(Contenders& contenders, Image<T>& input, Image<T>& ours, Image<T>& theirs,
                     std::shared_ptr<void> const& owner) {
    contenders.peer = "OpenCV meanStdDev, convertTo";
    contenders.theirs = [owner, image = MatView(input), output = MatView(theirs)]() mutable {
        cv::Scalar mean, stdDev;
        cv::meanStdDev(image, mean, stdDev);
        image.convertTo(output, output.type(), 1 / stdDev[0], -mean[0] / stdDev[0]);
    };
    // Integers are saturated there, so that only floating-point answers can agree.
    if (std::is_floating_point_v<T>)
        contenders.sameAnswer = [owner, &ours, &theirs] {
            return LargestDifference(ours, theirs) < 1e-9 * (sizeof(T) == 4 ? 1e4 : 1);
        };
}
#endif

template <typename T> Contenders Scores(int side, bool masked) {
    struct Scene {
        Image<T> image, ours, theirs;
        Image<unsigned char> mask;
    };
    auto const scene = std::make_shared<Scene>(
        Scene{Pixels<T>(side), Image<T>(side, side), Image<T>(side, side), Half(side)});
    Contenders contenders{[=, output = scene->ours.Attributes(), mask = scene->mask.Attributes()]() mutable {
                              Require(NormalizeImage(scene->image.Attributes(), nullptr,
                                                     masked ? &mask : nullptr, nullptr, &output));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    if (masked) return contenders;
    SetPeerOfScores<T>(contenders, scene->image, scene->ours, scene->theirs, scene);
#endif
    return contenders;
}

template <typename T> Contenders BufferScores(int count) {
    struct Scene {
        Image<T> buffer, ours, theirs;
    };
    auto const scene = std::make_shared<Scene>(
        Scene{RandomImage<T>(count, 1, 0, 0, 255), Image<T>(count, 1), Image<T>(count, 1)});
    auto const buffer = [=](Image<T>& of) { return BufferAttributes(TypeCodeOf<T>, of.Row(0), count); };
    Contenders contenders{[=, output = buffer(scene->ours)]() mutable {
                              Require(NormalizeBuffer(buffer(scene->buffer), nullptr, nullptr, &output));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    SetPeerOfScores<T>(contenders, scene->buffer, scene->ours, scene->theirs, scene);
#endif
    return contenders;
}

template <typename T> Contenders Inversion(int side, bool masked) {
    struct Scene {
        Image<T> image, ours, theirs;
        Image<unsigned char> mask;
    };
    auto const scene = std::make_shared<Scene>(
        Scene{RandomImage<T>(side, side), Image<T>(side, side), Image<T>(side, side), Half(side)});
    Contenders contenders{[=, output = scene->ours.Attributes(), mask = scene->mask.Attributes()]() mutable {
                              Require(InvertGray(scene->image.Attributes(), nullptr, masked ? &mask : nullptr,
                                                 nullptr, &output));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV bitwise_not";
    contenders.theirs = [=, image = MatView(scene->image), mask = MatView(scene->mask),
                         output = MatView(scene->theirs)]() mutable {
        cv::bitwise_not(image, output, masked ? mask : cv::Mat());
    };
    contenders.sameAnswer = [scene] { return LargestDifference(scene->ours, scene->theirs) == 0; };
#endif
    return contenders;
}

template <typename T> Contenders MaskInversion(int side) {
    struct Scene {
        Image<T> image, ours, theirs;
    };
    auto const scene = std::make_shared<Scene>(
        Scene{RandomImage<T>(side, side, 0, 0, 1), Image<T>(side, side), Image<T>(side, side)});
    Contenders contenders{
        [=, output = scene->ours.Attributes()]() mutable {
            Require(InvertMaskImage(scene->image.Attributes(), nullptr, nullptr, nullptr, &output));
        },
        "",
        {},
        {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV bitwise_xor";
    contenders.theirs = [image = MatView(scene->image), output = MatView(scene->theirs)]() mutable {
        cv::bitwise_xor(image, 1, output);
    };
    contenders.sameAnswer = [scene] { return LargestDifference(scene->ours, scene->theirs) == 0; };
#endif
    return contenders;
}

template <typename T> void RegisterStatistics(int side) {
    char const* const type = kTypeName<T>;
    Traffic const whole{kSize<T>, 0}, masked{kSize<T> + 1, 0};
    Wanted const all{true, true, true, true};
    auto const add = [&](char const* name, Traffic traffic, bool underMask, Wanted wanted) {
        Register({name, type, side, side, traffic, [=] { return Statistics<T>(side, underMask, wanted); }});
    };
    add("CalculateImageStats", whole, false, all);
    add("CalculateImageStats, mask", masked, true, all);
    add("CalculateImageStats, min", whole, false, {true, false, false, false});
    add("CalculateImageStats, max", whole, false, {false, true, false, false});
    add("CalculateImageStats, mean", whole, false, {false, false, true, false});
    add("CalculateImageStats, stdDev", whole, false, {false, false, false, true});
}

template <typename T> void RegisterBuffers(int count) {
    Register({"CalculateBufferStats", kTypeName<T>, count, 1, {kSize<T>, 0}, [=] {
                  return BufferStatistics<T>(count);
              }});
    Register({"NormalizeBuffer", kTypeName<T>, count, 1, {kSize<T>, kSize<T>}, [=] {
                  return BufferScores<T>(count);
              }});
}

template <typename T> void RegisterCounts(int side) {
    Traffic const whole{kSize<T>, 0}, masked{kSize<T> + 1, 0};
    Register(
        {"ImageCountOfN", kTypeName<T>, side, side, whole, [=] { return CountOfValue<T>(side, false); }});
    Register({"ImageCountOfN, mask", kTypeName<T>, side, side, masked,
              [=] { return CountOfValue<T>(side, true); }});
}

template <typename T> void RegisterLineCounts(int side) {
    Traffic const whole{kSize<T>, 0};
    Register({"RowCountOfN", kTypeName<T>, side, side, whole,
              [=] { return CountsOfLines<T>(side, RowCountOfN, 1); }});
    Register({"ColumnCountOfN", kTypeName<T>, side, side, whole,
              [=] { return CountsOfLines<T>(side, ColumnCountOfN, 0); }});
}

template <typename T> void RegisterScores(int side) {
    Traffic const whole{kSize<T>, kSize<T>}, masked{kSize<T> + 1, kSize<T>};
    Register({"NormalizeImage", kTypeName<T>, side, side, whole, [=] { return Scores<T>(side, false); }});
    Register(
        {"NormalizeImage, mask", kTypeName<T>, side, side, masked, [=] { return Scores<T>(side, true); }});
}

template <typename T> void RegisterInversions(int side) {
    Traffic const whole{kSize<T>, kSize<T>}, masked{kSize<T> + 1, kSize<T>};
    Register({"InvertGray", kTypeName<T>, side, side, whole, [=] { return Inversion<T>(side, false); }});
    Register(
        {"InvertGray, mask", kTypeName<T>, side, side, masked, [=] { return Inversion<T>(side, true); }});
    Register({"InvertMaskImage", kTypeName<T>, side, side, whole, [=] { return MaskInversion<T>(side); }});
}

Registration const rows([] {
    for (int const side : kSides) {
        RegisterStatistics<unsigned char>(side);
        RegisterStatistics<short>(side);
        RegisterStatistics<unsigned short>(side);
        RegisterStatistics<double>(side);
        RegisterBuffers<unsigned char>(side * side);
        RegisterBuffers<unsigned short>(side * side);
        RegisterBuffers<float>(side * side);
        RegisterBuffers<double>(side * side);
        RegisterCounts<unsigned char>(side);
        RegisterCounts<short>(side);
        RegisterCounts<unsigned short>(side);
        RegisterLineCounts<unsigned char>(side);
        RegisterLineCounts<unsigned short>(side);
        RegisterScores<unsigned char>(side);
        RegisterScores<unsigned short>(side);
        RegisterScores<double>(side);
        RegisterInversions<unsigned char>(side);
        RegisterInversions<unsigned short>(side);
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
