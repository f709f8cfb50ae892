// Truth tables over two images.
#include <Basics/LogicalPixelOp.h>

#include <memory>

#include "support/Benchmark.h"
#include "support/OpenCv.h"
#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

// Zeros and ones, for which the peer's bits and our truth values agree.
template <typename T1, typename T2, typename T3> Contenders And(int side) {
    struct Scene {
        Image<T1> first;
        Image<T2> second;
        Image<T3> ours, theirs;
        unsigned char table[4] = {0, 0, 0, 1};
    };
    auto const scene = std::make_shared<Scene>(Scene{RandomImage<T1>(side, side, 0, 0, 1),
                                                     RandomImage<T2>(side, side, 0, 0, 1, 2),
                                                     Image<T3>(side, side), Image<T3>(side, side)});
    Contenders contenders{[scene, output = scene->ours.Attributes()]() mutable {
                              Require(LogicalPixelOp(scene->first.Attributes(), scene->second.Attributes(),
                                                     scene->table, &output));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    if constexpr (sizeof(T1) == sizeof(T2) && sizeof(T2) == sizeof(T3)) {
        contenders.peer = "OpenCV bitwise_and";
        contenders.theirs = [scene, first = MatView(scene->first), second = MatView(scene->second),
                             result = MatView(scene->theirs)]() mutable {
            cv::bitwise_and(first, second, result);
        };
        contenders.sameAnswer = [scene] { return LargestDifference(scene->ours, scene->theirs) == 0; };
    }
#endif
    return contenders;
}

template <typename T1, typename T2, typename T3> void RegisterAnd(int side) {
    std::string type = kTypeName<T1>;
    if (sizeof(T1) != sizeof(T2) || sizeof(T2) != sizeof(T3))
        type += std::string(", ") + kTypeName<T2> + " to " + kTypeName<T3>;
    Register({"LogicalPixelOp", type, side, side, {sizeof(T1) + sizeof(T2), sizeof(T3)}, [=] {
                  return And<T1, T2, T3>(side);
              }});
}

Registration const logic([] {
    for (int const side : {512, 2048}) {
        RegisterAnd<unsigned char, unsigned char, unsigned char>(side);
        RegisterAnd<unsigned short, unsigned short, unsigned short>(side);
        RegisterAnd<int, int, int>(side);
        RegisterAnd<unsigned short, unsigned char, unsigned char>(side);
        RegisterAnd<unsigned short, unsigned char, unsigned short>(side);
        RegisterAnd<unsigned char, int, unsigned short>(side);
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
