// Structuring elements: their size, and then their content.
#include <Basics/StructuringElement.h>

#include <memory>
#include <string>

#ifdef ZPA_PEER_OPENCV
#include <opencv2/imgproc.hpp>
#endif

#include "support/Benchmark.h"
#include "support/OpenCv.h"
#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

SSize SizeOf(char const* shape, int param1, StrelParam param2) {
    SSize size(0, 0);
    Require(strel_GetBufferSize(shape, param1, param2, 0, &size.height, &size.width));
    return size;
}

Contenders Making(char const* shape, int param1, StrelParam param2) {
    SSize const size = SizeOf(shape, param1, param2);
    auto const mask = std::make_shared<Image<unsigned char>>(size.width, size.height);
    Contenders contenders{[=] {
                              SizeOf(shape, param1, param2);
                              double centre[2];
                              Require(strel(mask->Attributes(), centre, shape, param1, param2, 0));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    if (shape != std::string("square")) return contenders;
    auto const theirs = std::make_shared<cv::Mat>();
    contenders.peer = "OpenCV getStructuringElement";
    contenders.theirs = [=] {
        *theirs = cv::getStructuringElement(cv::MORPH_RECT, {size.width, size.height});
    };
    contenders.sameAnswer = [=] { return cv::norm(MatView(*mask), *theirs, cv::NORM_INF) == 0; };
#endif
    return contenders;
}

Registration const rows([] {
    static constexpr double kDegrees = 30, kStep[] = {1, 2};
    auto const add = [](char const* shape, int param1, StrelParam param2) {
        SSize const size = SizeOf(shape, param1, param2);
        Register({std::string("strel, ") + shape, "8u", size.width, size.height, {0, 0}, [=] {
                      return Making(shape, param1, param2);
                  }});
    };
    for (int const side : {3, 15, 61}) add("square", side, 0);
    add("disk", 6, 0);
    add("line", 15, &kDegrees);
    add("periodicline", 10, kStep);
});

}  // namespace
}  // namespace ZPA::Benchmarks
