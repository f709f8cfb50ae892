// The operations that copy, set, mask and compare pixels.
#include <Basics/PixelOperations.h>

#include <cstring>
#include <memory>
#include <tuple>

#include "support/Benchmark.h"
#include "support/OpenCv.h"
#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

constexpr int kSides[] = {512, 2048};

// Values that all types hold, so that wrapping around and saturating agree.
template <typename T> Image<T> Smooth(int side, int stride = 0) {
    return RandomImage<T>(side, side, stride, 0, 127);
}

template <typename T> struct Pair { Image<T> ours, theirs; };

// The same type: the peer is the C library's copy of the same bytes.
template <typename T> Contenders Copy(int side, int stride) {
    struct Scene {
        Image<T> source, ours, theirs;
    };
    auto const scene = std::make_shared<Scene>(Scene{
        RandomImage<T>(side, side, stride), Image<T>(side, side, stride), Image<T>(side, side, stride)});
    return {[scene, destination = scene->ours.Attributes()]() mutable {
                Require(CopyPixels(scene->source.Attributes(), &destination));
            },
            "memcpy",
            [scene, side] {
                std::size_t const row = static_cast<std::size_t>(side) * sizeof(T);
                if (scene->source.Stride() == side)
                    std::memcpy(scene->theirs.Row(0), scene->source.Row(0),
                                row * static_cast<std::size_t>(side));
                else
                    for (int y = 0; y < side; ++y)
                        std::memcpy(scene->theirs.Row(y), scene->source.Row(y), row);
            },
            [scene] { return LargestDifference(scene->ours, scene->theirs) == 0; }};
}

template <typename From, typename To> Contenders Convert(int side) {
    struct Scene {
        Image<From> source;
        Image<To> ours, theirs;
    };
    auto const scene =
        std::make_shared<Scene>(Scene{Smooth<From>(side), Image<To>(side, side), Image<To>(side, side)});
    Contenders contenders{[scene, destination = scene->ours.Attributes()]() mutable {
                              Require(CopyPixels(scene->source.Attributes(), &destination));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV convertTo";
    contenders.theirs = [scene, source = MatView(scene->source),
                         destination = MatView(scene->theirs)]() mutable {
        source.convertTo(destination, destination.type());
    };
    // The peer rounds halves to even.
    contenders.sameAnswer = [scene] {
        return LargestDifference(scene->ours, scene->theirs) <= (std::is_integral_v<To> ? 1 : 0);
    };
#endif
    return contenders;
}

template <typename T> Contenders SetUnderMask(int side) {
    struct Scene {
        Image<T> ours, theirs;
        Image<unsigned char> mask;
    };
    auto const scene = std::make_shared<Scene>(
        Scene{Smooth<T>(side), Smooth<T>(side), RandomImage<unsigned char>(side, side, 0, 0, 1, 2)});
    Contenders contenders{[scene, mask = scene->mask.Attributes()] {
                              Require(SetPixels(nullptr, &mask, nullptr, -1, 9, scene->ours.Attributes()));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV setTo";
    contenders.theirs = [scene, image = MatView(scene->theirs), mask = MatView(scene->mask)]() mutable {
        image.setTo(9, mask);
    };
    contenders.sameAnswer = [scene] { return LargestDifference(scene->ours, scene->theirs) == 0; };
#endif
    return contenders;
}

template <typename T> Contenders Set(int side) {
    auto const scene = std::make_shared<Pair<T>>(Pair<T>{Image<T>(side, side), Image<T>(side, side)});
    Contenders contenders{
        [scene] { Require(SetPixels(nullptr, nullptr, nullptr, 0, 9, scene->ours.Attributes())); },
        "",
        {},
        {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV setTo";
    contenders.theirs = [scene, image = MatView(scene->theirs)]() mutable { image.setTo(9); };
    contenders.sameAnswer = [scene] { return LargestDifference(scene->ours, scene->theirs) == 0; };
#endif
    return contenders;
}

template <typename T> Contenders ClearOutsideMask(int side) {
    struct Scene {
        Image<T> ours, theirs;
        Image<unsigned char> mask, inverse;
    };
    auto const scene = std::make_shared<Scene>(Scene{Smooth<T>(side), Smooth<T>(side),
                                                     RandomImage<unsigned char>(side, side, 0, 0, 1, 2),
                                                     RandomImage<unsigned char>(side, side, 0, 0, 1, 2)});
    for (unsigned char& element : scene->inverse.Elements()) element = element == 0;
    Contenders contenders{
        [scene] { Require(ApplyMask(scene->ours.Attributes(), scene->mask.Attributes())); }, "", {}, {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV setTo";
    contenders.theirs = [scene, image = MatView(scene->theirs), inverse = MatView(scene->inverse)]() mutable {
        image.setTo(0, inverse);
    };
    contenders.sameAnswer = [scene] { return LargestDifference(scene->ours, scene->theirs) == 0; };
#endif
    return contenders;
}

Contenders CompareEqual(int side) {
    using Pixel = unsigned short;
    auto const scene = std::make_shared<Pair<Pixel>>(Pair<Pixel>{Smooth<Pixel>(side), Smooth<Pixel>(side)});
    return {[scene] { Require(compare(scene->ours.Attributes(), scene->theirs.Attributes())); },
            "memcmp",
            [scene] {
                std::size_t const bytes = scene->ours.Elements().size() * sizeof(Pixel);
                if (std::memcmp(scene->ours.Row(0), scene->theirs.Row(0), bytes) != 0)
                    Require(SOLVANE_OPERATION_FAILED);
            },
            {}};
}

template <typename T> Contenders CompareWithin(int side) {
    auto const scene = std::make_shared<Pair<T>>(Pair<T>{Smooth<T>(side), Smooth<T>(side)});
    Contenders contenders{[scene] {
                              bool same = false;
                              Require(DecimateAndCompare(scene->ours.Attributes(), scene->theirs.Attributes(),
                                                         nullptr, nullptr, nullptr, 1, 1, 2.0, &same));
                              if (!same) Require(SOLVANE_OPERATION_FAILED);
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV norm";
    contenders.theirs = [a = MatView(scene->ours), b = MatView(scene->theirs)] {
        if (cv::norm(a, b, cv::NORM_INF) >= 2.0) Require(SOLVANE_OPERATION_FAILED);
    };
#endif
    return contenders;
}

template <typename T> Contenders CopyWhole(int side) {
    struct Scene {
        Image<T> source;
        ImageAttributes copy;
    };
    auto const scene = std::make_shared<Scene>(Scene{Smooth<T>(side), {}});
    Contenders contenders{[scene] {
                              ImageAttributes copy;
                              Require(copyImage(scene->source.Attributes(), &copy));
                              FreePixels(copy.buffer);
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV clone";
    contenders.theirs = [source = MatView(scene->source)] { cv::Mat const copy = source.clone(); };
#endif
    return contenders;
}

Contenders CopyWholeBuffer(int count) {
    auto const source = std::make_shared<Image<unsigned short>>(RandomImage<unsigned short>(count, 1));
    Contenders contenders{[source, count] {
                              BufferAttributes copy;
                              Require(copyBuffer({eUInt16, source->Row(0), count}, &copy));
                              FreePixels(copy.buffer);
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV clone";
    contenders.theirs = [row = MatView(*source)] { cv::Mat const copy = row.clone(); };
#endif
    return contenders;
}

template <typename T> Contenders Differences(int count) {
    auto const scene = std::make_shared<Pair<T>>(Pair<T>{RandomImage<T>(count, 1), RandomImage<T>(count, 1)});
    Contenders contenders{[scene, count] {
                              BufferAttributes output(TypeCodeOf<T>, scene->ours.Row(0), count);
                              Require(DiffBuffer({TypeCodeOf<T>, scene->theirs.Row(0), count}, &output));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV subtract";
    contenders.theirs = [a = MatView(scene->theirs), b = MatView(scene->ours)]() mutable {
        cv::subtract(a, b, b);
    };
#endif
    return contenders;
}

Contenders Clip(int side) {
    auto const scene =
        std::make_shared<Pair<short>>(Pair<short>{RandomImage<short>(side, side), Image<short>(side, side)});
    scene->theirs = scene->ours;
    Contenders contenders{
        [scene, side] { ClipImage(scene->ours.Row(0), side * side, -1000, 1000); }, "", {}, {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV max and min";
    contenders.theirs = [image = MatView(scene->theirs)]() mutable {
        cv::max(image, -1000, image);
        cv::min(image, 1000, image);
    };
    contenders.sameAnswer = [scene] { return LargestDifference(scene->ours, scene->theirs) == 0; };
#endif
    return contenders;
}

using Types = std::tuple<unsigned char, short, unsigned short, int, float, double>;

template <typename Visit> void ForEachType(Visit const& visit) {
    std::apply([&](auto... element) { (visit(element), ...); }, Types());
}

template <typename T> constexpr double kSize = static_cast<double>(sizeof(T));

Registration const copies([] {
    for (int const side : kSides)
        ForEachType([&](auto from) {
            using From = decltype(from);
            Traffic const same{kSize<From>, kSize<From>};
            Register({"CopyPixels", kTypeName<From>, side, side, same, [=] { return Copy<From>(side, 0); }});
            Register({"CopyPixels, padded", kTypeName<From>, side, side, same,
                      [=] { return Copy<From>(side, side + 40); }});
            ForEachType([&](auto to) {
                using To = decltype(to);
                if constexpr (!std::is_same_v<From, To>)
                    Register({"CopyPixels",
                              std::string(kTypeName<From>) + " to " + kTypeName<To>,
                              side,
                              side,
                              {kSize<From>, kSize<To>},
                              [=] { return Convert<From, To>(side); }});
            });
        });
});

template <typename T> void RegisterSettings(int side) {
    constexpr double kBytes = kSize<T>;
    Register({"SetPixels", kTypeName<T>, side, side, {0, kBytes}, [=] { return Set<T>(side); }});
    Register({"SetPixels, mask", kTypeName<T>, side, side, {kBytes + 1, kBytes}, [=] {
                  return SetUnderMask<T>(side);
              }});
}

template <typename T> void RegisterMasking(int side) {
    Register({"ApplyMask", kTypeName<T>, side, side, {kSize<T> + 1, kSize<T>}, [=] {
                  return ClearOutsideMask<T>(side);
              }});
}

template <typename T> void RegisterComparison(int side) {
    Register({"DecimateAndCompare", kTypeName<T>, side, side, {2 * kSize<T>, 0}, [=] {
                  return CompareWithin<T>(side);
              }});
}

template <typename T> void RegisterWhole(int side) {
    Register(
        {"copyImage", kTypeName<T>, side, side, {kSize<T>, kSize<T>}, [=] { return CopyWhole<T>(side); }});
}

template <typename T> void RegisterDifferences(int count) {
    Register({"DiffBuffer", kTypeName<T>, count, 1, {2 * kSize<T>, kSize<T>}, [=] {
                  return Differences<T>(count);
              }});
}

Registration const others([] {
    for (int const side : kSides) {
        RegisterSettings<unsigned char>(side);
        RegisterSettings<unsigned short>(side);
        RegisterSettings<float>(side);
        RegisterSettings<double>(side);
        RegisterMasking<unsigned char>(side);
        RegisterMasking<unsigned short>(side);
        RegisterWhole<unsigned char>(side);
        RegisterWhole<unsigned short>(side);
        RegisterWhole<double>(side);
        Register({"copyBuffer", "16u", side * side, 1, {2, 2}, [=] { return CopyWholeBuffer(side * side); }});
        Register({"compare", "16u", side, side, {4, 0}, [=] { return CompareEqual(side); }});
        RegisterComparison<unsigned char>(side);
        RegisterComparison<short>(side);
        RegisterComparison<unsigned short>(side);
        RegisterComparison<float>(side);
        RegisterComparison<double>(side);
        RegisterDifferences<unsigned char>(side * side);
        RegisterDifferences<short>(side * side);
        RegisterDifferences<int>(side * side);
        Register({"ClipImage", "16s", side, side, {2, 2}, [=] { return Clip(side); }});
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
