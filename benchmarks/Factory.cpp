// Objects made from one line of text: what reading it and holding the pixels in an object add to the pixels.
#include <Basics/Factory.h>
#include <Basics/SmartPointer.h>

#include <string>

#include "support/Benchmark.h"
#include "support/OpenCv.h"

namespace ZPA::Benchmarks {
namespace {

Contenders Create(int side) {
    std::string const size = std::to_string(side);
    Contenders contenders{[id = "image.8." + size + "." + size + ".0.16.0"] {
        ZPA_Ptr<ISolvane_Object> const image(ZPA_Create(id.c_str()));
        if (!image.GetPointer()) Require(SOLVANE_UNEXPECTED);
    }};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV create and setTo";
    contenders.theirs = [side] {
        cv::Mat image(side, side, CV_16U);
        image.setTo(0);
    };
#endif
    return contenders;
}

Registration const rows([] {
    Register({"ZPA_Create", "16u", 1, 1, {}, [] { return Create(1); }});
    for (int const side : {512, 2048})
        Register({"ZPA_Create", "16u", side, side, {0, 2}, [=] { return Create(side); }});
});

}  // namespace
}  // namespace ZPA::Benchmarks
