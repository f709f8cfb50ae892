// Arithmetic on images, and with constants.
#include <Basics/Arithmetic.h>

#include <memory>
#include <tuple>

#include "support/Benchmark.h"
#include "support/OpenCv.h"
#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

constexpr int kSides[] = {512, 2048};

using WithImage = SOLVANE_RETURNCODE (*)(ImageAttributes, ImageAttributes, ImageAttributes*);
using WithConstant = SOLVANE_RETURNCODE (*)(ImageAttributes, void*, ImageAttributes*);

template <typename T> struct Scene {
    Image<T> first, second, ours, theirs;
    T constant;
};

// The peer has no unsigned 32-bit type.
template <typename T> constexpr bool kPeerServes = !std::is_same_v<T, unsigned int>;

// Small values, so that wrapping around and saturating agree; dividends that divisors go into, since the peer
// rounds quotients.
template <typename T> std::shared_ptr<Scene<T>> MakeScene(int side, char operation) {
    bool const inPlaceOnly = operation == '*' && std::is_floating_point_v<T>;
    auto scene = std::make_shared<Scene<T>>(Scene<T>{RandomImage<T>(side, side, 0, 5, 11),
                                                     RandomImage<T>(side, side, 0, 1, 5, 2),
                                                     Image<T>(side, side), Image<T>(side, side), T(3)});
    if (inPlaceOnly) {
        // Products with ones can be repeated in place without leaving the type.
        for (T& element : scene->second.Elements()) element = 1;
        scene->ours = scene->theirs = scene->first;
    }
    if (operation == '/' && std::is_integral_v<T>)
        for (std::size_t i = 0; i < scene->first.Elements().size(); ++i)
            scene->first.Elements()[i] =
                static_cast<T>(scene->first.Elements()[i] * scene->second.Elements()[i]);
    return scene;
}

template <typename T> Contenders Combine(char name, WithImage operation, int side) {
    auto const scene = MakeScene<T>(side, name);
    bool const inPlace = name == '*' && std::is_floating_point_v<T>;
    Contenders contenders{
        [=, output = scene->ours.Attributes()]() mutable {
            if (inPlace)
                Require(operation(output, scene->second.Attributes(), nullptr));
            else
                Require(operation(scene->first.Attributes(), scene->second.Attributes(), &output));
        },
        "",
        {},
        {}};
#ifdef ZPA_PEER_OPENCV
    if constexpr (kPeerServes<T>) {
        contenders.peer = name == '+'   ? "OpenCV add"
                          : name == '-' ? "OpenCV subtract"
                          : name == '*' ? "OpenCV multiply"
                                        : "OpenCV divide";
        contenders.theirs = [=, a = MatView(inPlace ? scene->theirs : scene->first),
                             b = MatView(scene->second), result = MatView(scene->theirs)]() mutable {
            if (name == '+')
                cv::add(a, b, result);
            else if (name == '-')
                cv::subtract(a, b, result);
            else if (name == '*')
                cv::multiply(a, b, result);
            else
                cv::divide(a, b, result);
        };
        contenders.sameAnswer = [scene] { return LargestDifference(scene->ours, scene->theirs) == 0; };
    }
#endif
    return contenders;
}

template <typename T>
Contenders CombineConstant([[maybe_unused]] char name, WithConstant operation, int side) {
    auto const scene = MakeScene<T>(side, ' ');
    Contenders contenders{[=, output = scene->ours.Attributes()]() mutable {
                              Require(operation(scene->first.Attributes(), &scene->constant, &output));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    if constexpr (kPeerServes<T>) {
        contenders.peer = name == '+'   ? "OpenCV add"
                          : name == '-' ? "OpenCV subtract"
                          : name == '*' ? "OpenCV multiply"
                                        : "OpenCV divide";
        double const constant = static_cast<double>(scene->constant);
        contenders.theirs = [=, a = MatView(scene->first), result = MatView(scene->theirs)]() mutable {
            if (name == '+')
                cv::add(a, constant, result);
            else if (name == '-')
                cv::subtract(a, constant, result);
            else if (name == '*')
                cv::multiply(a, constant, result);
            else
                cv::divide(a, constant, result);
        };
        // The peer rounds quotients of integers, and multiplies floats by an inverse.
        contenders.sameAnswer = [=] {
            return LargestDifference(scene->ours, scene->theirs) <= (name == '/' ? 1 : 0);
        };
    }
#endif
    return contenders;
}

template <typename T> Contenders Absolute(int side) {
    struct Scene {
        Image<T> source, ours, theirs;
    };
    auto const scene = std::make_shared<Scene>(
        Scene{RandomImage<T>(side, side, 0, -100, 100), Image<T>(side, side), Image<T>(side, side)});
    Contenders contenders{[scene, output = scene->ours.Attributes()]() mutable {
                              Require(Abs(scene->source.Attributes(), &output));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV absdiff";
    contenders.theirs = [source = MatView(scene->source), result = MatView(scene->theirs)]() mutable {
        cv::absdiff(source, cv::Scalar(), result);
    };
    contenders.sameAnswer = [scene] { return LargestDifference(scene->ours, scene->theirs) == 0; };
#endif
    return contenders;
}

struct Operation {
    char name;
    char const* image;
    WithImage withImage;
    char const* constant;
    WithConstant withConstant;
};
constexpr Operation kOperations[] = {{'+', "Add", Add, "AddC", AddC},
                                     {'-', "Sub", Sub, "SubC", SubC},
                                     {'*', "MulP", MulP, "MulC", MulC},
                                     {'/', "DivP", DivP, "DivC", DivC}};
constexpr WithImage kCoreOfAdd = [](ImageAttributes first, ImageAttributes second, ImageAttributes* output) {
    return ipp_add(first, second, output, false);
};

using Types = std::tuple<signed char, unsigned char, short, unsigned short, int, unsigned int, float, double>;

template <typename Visit> void ForEachType(Visit const& visit) {
    std::apply([&](auto... element) { (visit(element), ...); }, Types());
}

Registration const arithmetic([] {
    for (int const side : kSides) {
        for (Operation const& operation : kOperations)
            ForEachType([&](auto element) {
                using T = decltype(element);
                constexpr double kSize = sizeof(T);
                Register({operation.image, kTypeName<T>, side, side, {2 * kSize, kSize}, [=] {
                              return Combine<T>(operation.name, operation.withImage, side);
                          }});
                Register({operation.constant, kTypeName<T>, side, side, {kSize, kSize}, [=] {
                              return CombineConstant<T>(operation.name, operation.withConstant, side);
                          }});
            });
        ForEachType([&](auto element) {
            using T = decltype(element);
            constexpr double kSize = sizeof(T);
            if constexpr (std::is_same_v<T, unsigned char> || sizeof(T) == 2 || std::is_same_v<T, float>)
                Register({"ipp_add", kTypeName<T>, side, side, {2 * kSize, kSize}, [=] {
                              return Combine<T>('+', kCoreOfAdd, side);
                          }});
            if constexpr (std::is_signed_v<T>)
                Register(
                    {"Abs", kTypeName<T>, side, side, {kSize, kSize}, [=] { return Absolute<T>(side); }});
        });
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
