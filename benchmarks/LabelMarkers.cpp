// Labels of connected regions: of blobs, and of noise, which has the most and the smallest.
#include <Basics/Logging.h>
#include <Basics/Regions.h>

#include <memory>
#include <random>
#include <vector>

#ifdef ZPA_PEER_OPENCV
#include <opencv2/imgproc.hpp>
#endif

#include "support/Benchmark.h"
#include "support/OpenCv.h"
#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

// Disks of radius 2 to 40, about as much area as the image.
Image<unsigned char> Blobs(int side) {
    Image<unsigned char> mask(side, side);
    std::mt19937 random(1);
    auto const upTo = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    for (int area = 0; area < side * side;) {
        int const radius = 2 + upTo(39), atX = upTo(side), atY = upTo(side);
        area += 3 * radius * radius;
        for (int y = std::max(atY - radius, 0); y <= std::min(atY + radius, side - 1); ++y)
            for (int x = std::max(atX - radius, 0); x <= std::min(atX + radius, side - 1); ++x)
                if ((x - atX) * (x - atX) + (y - atY) * (y - atY) <= radius * radius) mask.Row(y)[x] = 255;
    }
    return mask;
}

Image<unsigned char> Noise(int side, int percent) {
    auto mask = RandomImage<unsigned char>(side, side, 0, 0, 99);
    for (unsigned char& pixel : mask.Elements()) pixel = pixel < percent ? 255 : 0;
    return mask;
}

template <typename T> struct Scene {
    Image<unsigned char> mask;
    Image<T> ours;
    Image<int> theirs;
    int regions = 0, theirRegions = 0;
};

// True if pixels that have one label of theirs have one of ours. Several regions may share a label of ours.
template <typename T> bool SameRegions(Scene<T> const& scene) {
    if (scene.regions + 1 != scene.theirRegions) return false;  // one for the background
    std::vector<int> labels(static_cast<std::size_t>(scene.theirRegions), -1);
    for (int y = 0; y < scene.mask.Height(); ++y)
        for (int x = 0; x < scene.mask.Width(); ++x) {
            int& label = labels[static_cast<std::size_t>(scene.theirs.Row(y)[x])];
            int const ours = scene.ours.Row(y)[x];
            if (label < 0) label = ours;
            if (label != ours) return false;
        }
    return labels[0] <= 0;
}

// In place, or to an image apart. Labels have the regions of the mask, so that labelling them once more is the
// same work.
template <typename T> Contenders Labelling(Image<unsigned char> mask, int connectivity, bool apart = false) {
    // More regions than labels are expected.
    ZPA_Logging::SetWarningCallback([](wchar_t const*, int, wchar_t const*) {});
    int const side = mask.Width();
    auto const scene =
        std::make_shared<Scene<T>>(Scene<T>{std::move(mask), Image<T>(side, side), Image<int>(side, side)});
    for (std::size_t i = 0; i < scene->mask.Elements().size(); ++i)
        scene->ours.Elements()[i] = scene->mask.Elements()[i];
    Contenders contenders{
        [=, labels = scene->ours.Attributes()]() mutable {
            Require(apart ? LabelMarkers2(scene->mask.Attributes(), connectivity, &scene->regions, &labels)
                          : LabelMarkers(labels, connectivity, &scene->regions));
        },
        "",
        {},
        {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV connectedComponents";
    contenders.theirs = [=, source = MatView(scene->mask), labels = MatView(scene->theirs)]() mutable {
        scene->theirRegions = cv::connectedComponents(source, labels, connectivity, CV_32S);
    };
    contenders.sameAnswer = [=] { return SameRegions(*scene); };
#endif
    return contenders;
}

// Noise once beside blobs five times: the ratio is to be 1 or more.
template <typename T> Contenders NoiseBesideBlobs(int side, int connectivity) {
    auto const blobs = Labelling<T>(Blobs(side), connectivity).ours;
    return {Labelling<T>(Noise(side, 50), connectivity).ours,
            "blobs, five times",
            [=] {
                for (int i = 0; i < 5; ++i) blobs();
            },
            {}};
}

template <typename T> void RegisterAll(int side) {
    constexpr double kBytes = sizeof(T);
    for (int const connectivity : {8, 4}) {
        std::string const neighbours = connectivity == 4 ? ", 4 neighbours" : ", 8 neighbours";
        Register({"LabelMarkers, blobs" + neighbours, kTypeName<T>, side, side, {kBytes, kBytes}, [=] {
                      return Labelling<T>(Blobs(side), connectivity);
                  }});
        Register({"LabelMarkers, noise beside blobs" + neighbours,
                  kTypeName<T>,
                  side,
                  side,
                  {kBytes, kBytes},
                  [=] { return NoiseBesideBlobs<T>(side, connectivity); }});
        for (int const percent : {10, 50, 90})
            Register({"LabelMarkers, noise of " + std::to_string(percent) + " %" + neighbours,
                      kTypeName<T>,
                      side,
                      side,
                      {kBytes, kBytes},
                      [=] { return Labelling<T>(Noise(side, percent), connectivity); }});
    }
}

Registration const rows([] {
    for (int const side : {512, 2048}) {
        RegisterAll<unsigned char>(side);
        RegisterAll<unsigned short>(side);
        auto const add = [=](char const* name, Image<unsigned char> (*mask)(int)) {
            Register({name, "8u to 16u", side, side, {1, 2}, [=] {
                          return Labelling<unsigned short>(mask(side), 8, true);
                      }});
        };
        add("LabelMarkers2, blobs", Blobs);
        add("LabelMarkers2, noise of 10 %", [](int size) { return Noise(size, 10); });
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
