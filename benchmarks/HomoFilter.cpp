// Local contrast normalisation beside the two Gaussians that it is made of.
#include <Basics/AnisotropicGaussian.h>
#include <Basics/HomoFilter.h>

#include <memory>

#include "support/Benchmark.h"
#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

template <typename T> Contenders Normalize(int side) {
    struct Scene {
        Image<T> source;
        Image<double> ours, theirs;
    };
    auto const scene = std::make_shared<Scene>(
        Scene{RandomImage<T>(side, side), Image<double>(side, side), Image<double>(side, side)});
    return {[scene, output = scene->ours.Attributes()]() mutable {
                Require(HomoFilter(scene->source.Attributes(), 8, &output));
            },
            "two AnisotropicGaussian",
            [scene, output = scene->theirs.Attributes()]() mutable {
                for (int i = 0; i < 2; ++i)
                    Require(AnisotropicGaussian(scene->source.Attributes(), &output, 8, 8, 0, 0, 0));
            },
            {}};
}

Registration const rows([] {
    for (int const side : {512, 2048}) {
        Register({"HomoFilter", "16u to 64f", side, side, {2, 8}, [=] {
                      return Normalize<unsigned short>(side);
                  }});
        Register({"HomoFilter", "64f", side, side, {8, 8}, [=] { return Normalize<double>(side); }});
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
