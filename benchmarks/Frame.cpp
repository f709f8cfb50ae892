// What a call costs before it comes to its pixels: the frame, the checks and the dispatch of an operation on
// one pixel, with the log's categories off as they are from the start.
#include <Basics/PixelOperations.h>

#include <memory>

#include "support/Benchmark.h"
#include "support/OpenCv.h"
#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

struct Scene {
    Image<unsigned short> source = RandomImage<unsigned short>(1, 1);
    Image<unsigned short> ours{1, 1}, theirs{1, 1};
};

Contenders Call() {
    auto const scene = std::make_shared<Scene>();
    Contenders contenders{[scene, destination = scene->ours.Attributes()]() mutable {
        Require(CopyPixels(scene->source.Attributes(), &destination));
    }};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV copyTo";
    contenders.theirs = [source = MatView(scene->source), destination = MatView(scene->theirs)]() mutable {
        source.copyTo(destination);
    };
    contenders.sameAnswer = [scene] { return LargestDifference(scene->ours, scene->theirs) == 0; };
#endif
    return contenders;
}

Contenders CallThatAllocates() {
    auto const scene = std::make_shared<Scene>();
    return {[scene] {
                ImageAttributes destination;
                Require(CopyPixels(scene->source.Attributes(), &destination));
                FreePixels(destination.buffer);
            },
            "only new[] and delete[]",
            [] {
                // Volatile, or the pair is left out.
                unsigned short* volatile pixels = new unsigned short[1];
                delete[] pixels;
            }};
}

Registration const rows([] {
    Register({"a call", "16u", 1, 1, {0, 0}, Call});
    Register({"a call that allocates", "16u", 1, 1, {0, 0}, CallThatAllocates});
});

}  // namespace
}  // namespace ZPA::Benchmarks
