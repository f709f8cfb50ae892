// Dilation, erosion, opening and closing: elements of each kind that is treated in its own way.
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

using WithElement = SOLVANE_RETURNCODE (*)(ImageAttributes, ImageAttributes*, ImageAttributes, int, int);
using With3x3 = SOLVANE_RETURNCODE (*)(ImageAttributes, ImageAttributes*, int);

// An operation beside OpenCV's of the same number.
struct Operation {
    char const* name;
    WithElement run;
    char const* peer;
    int number;
};
constexpr Operation kDilate{"Dilate", Dilate, "OpenCV dilate", 1};
constexpr Operation kErode{"Erode", Erode, "OpenCV erode", 0};
constexpr Operation kOpen{"ImOpen", ImOpen, "OpenCV morphologyEx", 2};
constexpr Operation kClose{"ImClose", ImClose, "OpenCV morphologyEx", 3};
#ifdef ZPA_PEER_OPENCV
static_assert(cv::MORPH_ERODE == 0 && cv::MORPH_DILATE == 1 && cv::MORPH_OPEN == 2 && cv::MORPH_CLOSE == 3);
#endif

template <typename T> Contenders WithAnElement(Operation operation, int side, Element const& element) {
    auto const scene = std::make_shared<Scene<T>>(
        Scene<T>{RandomImage<T>(side, side), Image<T>(side, side), Image<T>(side, side), element});
    int const x = element.Width() / 2, y = element.Height() / 2;
    Contenders contenders{[=, destination = scene->ours.Attributes()]() mutable {
                              Require(operation.run(scene->source.Attributes(), &destination,
                                                    scene->element.Attributes(), x, y));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = operation.peer;
    contenders.theirs = [=, source = MatView(scene->source), destination = MatView(scene->theirs),
                         kernel = MatView(scene->element)]() mutable {
        cv::morphologyEx(source, destination, operation.number, kernel, {x, y}, 1, cv::BORDER_REPLICATE);
    };
    contenders.sameAnswer = [scene] { return LargestDifference(scene->ours, scene->theirs) == 0; };
#endif
    return contenders;
}

// Ten passes beside ten times one: the ratio is to be 1 or more.
template <typename T> Contenders Iterations(With3x3 operation, int side) {
    auto const scene = std::make_shared<Scene<T>>(
        Scene<T>{RandomImage<T>(side, side), Image<T>(side, side), Image<T>(side, side), Block(3, 3)});
    return {[=, destination = scene->ours.Attributes()]() mutable {
                Require(operation(scene->source.Attributes(), &destination, 10));
            },
            "ten times one",
            [=, destination = scene->theirs.Attributes()]() mutable {
                for (int i = 0; i < 10; ++i) Require(operation(scene->source.Attributes(), &destination, 1));
            },
            {}};
}

template <typename T> void RegisterAll(int side) {
    constexpr double kBytes = sizeof(T);
    auto const add = [=](Operation const& operation, char const* kind, Element const& element) {
        Register({std::string(operation.name) + ", " + kind, kTypeName<T>, side, side, {kBytes, kBytes}, [=] {
                      return WithAnElement<T>(operation, side, element);
                  }});
    };
    add(kDilate, "3 by 3", Block(3, 3));
    add(kDilate, "7 by 7", Block(7, 7));
    add(kDilate, "15 by 15", Block(15, 15));
    add(kDilate, "61 by 61", Block(61, 61));
    add(kDilate, "255 by 255", Block(255, 255));
    add(kDilate, "disk of 11", Disk(11));
    add(kDilate, "disk of 41", Disk(41));
    add(kDilate, "sparse of 15", Sparse(15, 20));
    add(kDilate, "random of 15", Sparse(15, 2));
    auto const addIterations = [=](char const* name, With3x3 operation) {
        Register({name, kTypeName<T>, side, side, {kBytes * 10, kBytes * 10}, [=] {
                      return Iterations<T>(operation, side);
                  }});
    };
    addIterations("Dilate3x3, 10", Dilate3x3);
    // The same loops with another comparison: an element of each kind.
    for (Operation const& operation : {kErode, kOpen, kClose}) {
        add(operation, "3 by 3", Block(3, 3));
        add(operation, "15 by 15", Block(15, 15));
        add(operation, "disk of 11", Disk(11));
    }
    addIterations("Erode3x3, 10", Erode3x3);
}

Registration const rows([] {
    for (int const side : {512, 2048}) {
        RegisterAll<unsigned char>(side);
        RegisterAll<unsigned short>(side);
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
