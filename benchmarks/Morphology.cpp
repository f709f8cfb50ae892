// Dilation and erosion: elements of each kind that is treated in its own way.
#include <Basics/Morphology.h>

#include <memory>

#ifdef ZPA_PEER_OPENCV
#include <opencv2/imgproc.hpp>
#endif

#include "support/Benchmark.h"
#include "support/OpenCv.h"
#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

using Element = Image<unsigned char>;

Element Block(int width, int height) {
    Element element(width, height);
    for (unsigned char& each : element.Elements()) each = 1;
    return element;
}

Element Disk(int side) {
    Element element(side, side);
    int const radius = side / 2;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            int const dx = x - radius, dy = y - radius;
            element.Row(y)[x] = dx * dx + dy * dy <= radius * (radius + 1);
        }
    return element;
}

// One in `rarity` is set.
Element Sparse(int side, int rarity) {
    Element element = RandomImage<unsigned char>(side, side, 0, 0, rarity - 1, 3);
    for (unsigned char& each : element.Elements()) each = each == 0;
    element.Row(0)[0] = 1;
    return element;
}

template <typename T> struct Scene {
    Image<T> source, ours, theirs;
    Element element;
};

template <typename T> Contenders Dilation(int side, Element const& element) {
    auto const scene = std::make_shared<Scene<T>>(
        Scene<T>{RandomImage<T>(side, side), Image<T>(side, side), Image<T>(side, side), element});
    int const x = element.Width() / 2, y = element.Height() / 2;
    Contenders contenders{
        [=, destination = scene->ours.Attributes()]() mutable {
            Require(Dilate(scene->source.Attributes(), &destination, scene->element.Attributes(), x, y));
        },
        "",
        {},
        {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV dilate";
    contenders.theirs = [=, source = MatView(scene->source), destination = MatView(scene->theirs),
                         kernel = MatView(scene->element)]() mutable {
        cv::dilate(source, destination, kernel, {x, y}, 1, cv::BORDER_REPLICATE);
    };
    contenders.sameAnswer = [scene] { return LargestDifference(scene->ours, scene->theirs) == 0; };
#endif
    return contenders;
}

// Ten passes beside ten times one: the ratio is to be 1 or more.
template <typename T> Contenders Iterations(int side) {
    auto const scene = std::make_shared<Scene<T>>(
        Scene<T>{RandomImage<T>(side, side), Image<T>(side, side), Image<T>(side, side), Block(3, 3)});
    return {[scene, destination = scene->ours.Attributes()]() mutable {
                Require(Dilate3x3(scene->source.Attributes(), &destination, 10));
            },
            "ten times one",
            [scene, destination = scene->theirs.Attributes()]() mutable {
                for (int i = 0; i < 10; ++i) Require(Dilate3x3(scene->source.Attributes(), &destination, 1));
            },
            {}};
}

template <typename T> void RegisterAll(int side) {
    constexpr double kBytes = sizeof(T);
    auto const dilation = [=](char const* kind, Element const& element) {
        Register({std::string("Dilate, ") + kind, kTypeName<T>, side, side, {kBytes, kBytes}, [=] {
                      return Dilation<T>(side, element);
                  }});
    };
    dilation("3 by 3", Block(3, 3));
    dilation("7 by 7", Block(7, 7));
    dilation("15 by 15", Block(15, 15));
    dilation("61 by 61", Block(61, 61));
    dilation("255 by 255", Block(255, 255));
    dilation("disk of 11", Disk(11));
    dilation("disk of 41", Disk(41));
    dilation("sparse of 15", Sparse(15, 20));
    dilation("random of 15", Sparse(15, 2));
    Register({"Dilate3x3, 10", kTypeName<T>, side, side, {kBytes * 10, kBytes * 10}, [=] {
                  return Iterations<T>(side);
              }});
}

Registration const rows([] {
    for (int const side : {512, 2048}) {
        RegisterAll<unsigned char>(side);
        RegisterAll<unsigned short>(side);
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
