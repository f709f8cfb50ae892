// The oriented Gaussian beside OpenCV's, and a slanting call beside an upright one.
#include <Basics/AnisotropicGaussian.h>

#include <memory>

#include "support/Benchmark.h"
#include "support/OpenCv.h"
#include "support/Scene.h"
#ifdef ZPA_PEER_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace ZPA::Benchmarks {
namespace {

struct Scene {
    Image<double> source, ours, theirs;
};
std::shared_ptr<Scene> MakeScene(int side) {
    return std::make_shared<Scene>(
        Scene{RandomImage<double>(side, side), Image<double>(side, side), Image<double>(side, side)});
}

std::function<void()> Smoothing(std::shared_ptr<Scene> const& scene, Image<double>& to, double u, double v,
                                double angle) {
    return [scene, output = to.Attributes(), u, v, angle]() mutable {
        Require(AnisotropicGaussian(scene->source.Attributes(), &output, u, v, angle, 0, 0));
    };
}

// The answers are not compared: the peer cuts its kernel off, and ours is recursive.
Contenders Round(int side, double sigma) {
    auto const scene = MakeScene(side);
    Contenders contenders{Smoothing(scene, scene->ours, sigma, sigma, 0), "", {}, {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV GaussianBlur";
    contenders.theirs = [scene, from = MatView(scene->source), to = MatView(scene->theirs), sigma]() mutable {
        cv::GaussianBlur(from, to, cv::Size(), sigma, sigma, cv::BORDER_REPLICATE);
    };
#endif
    return contenders;
}

Contenders Slanting(int side, double angle) {
    auto const scene = MakeScene(side);
    return {Smoothing(scene, scene->ours, 12, 3, angle),
            "this, angle 0",
            Smoothing(scene, scene->theirs, 12, 3, 0),
            {}};
}

Registration const rows([] {
    for (int const side : {512, 2048}) {
        for (int const sigma : {2, 8, 32})
            Register({"AnisotropicGaussian, sigma " + std::to_string(sigma), "64f", side, side, {8, 8}, [=] {
                          return Round(side, sigma);
                      }});
        for (int const angle : {15, 45, 80})
            Register({"AnisotropicGaussian, angle " + std::to_string(angle), "64f", side, side, {8, 8}, [=] {
                          return Slanting(side, angle);
                      }});
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
