// Flood fills of regions of each kind, and masks whose holes are closed.
#include <Basics/Regions.h>

#include <memory>

#ifdef ZPA_PEER_OPENCV
#include <opencv2/imgproc.hpp>
#endif

#include "support/Benchmark.h"
#include "support/OpenCv.h"
#include "support/Scene.h"

namespace ZPA::Benchmarks {
namespace {

using Mask = Image<unsigned char>;

// Pixels that `set` chooses are 1.
template <typename Set> Mask MaskOf(int side, Set const& set) {
    Mask mask(side, side);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) mask.Row(y)[x] = set(x, y);
    return mask;
}

template <typename T> Image<T> Converted(Mask const& mask) {
    Image<T> image(mask.Width(), mask.Height());
    for (int y = 0; y < mask.Height(); ++y) std::copy_n(mask.Row(y), mask.Width(), image.Row(y));
    return image;
}

// The region of ones is half of the image.
Mask Round(int side) {
    double const radius = 0.4 * side;  // 0.16 * pi
    return MaskOf(side, [=](int x, int y) {
        double const dx = x - 0.5 * side, dy = y - 0.5 * side;
        return dx * dx + dy * dy < radius * radius;
    });
}

// Half of the pixels at random: with eight neighbours most of them are connected.
Mask Porous(int side) {
    Mask mask = RandomImage<unsigned char>(side, side, 0, 0, 1, 2);
    mask.Row(side / 2)[side / 2] = 1;
    return mask;
}

// One path of a pixel's width from a corner to the middle, with a wall of the same width.
Mask Spiral(int side) {
    Mask mask(side, side);
    int x = 0, y = 0, dx = 1, dy = 0, turns = 0;
    for (int left = side - 1; left > 0; left -= turns > 1 && turns % 2 == 1 ? 2 : 0) {
        for (int i = 0; i < left; ++i, x += dx, y += dy) mask.Row(y)[x] = 1;
        int const turned = dx;
        dx = -dy;
        dy = turned;
        ++turns;
    }
    mask.Row(y)[x] = 1;
    return mask;
}

// Filled to and fro between two values.
template <typename T> Contenders Filling(Mask const& mask, int seedX, int seedY) {
    struct Scene {
        Image<T> ours;
        Mask theirs;
    };
    auto const scene = std::make_shared<Scene>(Scene{Converted<T>(mask), mask});
    Contenders contenders{[=, value = 1]() mutable {
                              value = 8 - value;
                              Require(FloodFill(scene->ours.Attributes(), seedX, seedY, value, 8));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    contenders.peer = "OpenCV floodFill, 8u";
    contenders.theirs = [=, image = MatView(scene->theirs), value = 1]() mutable {
        value = 8 - value;
        cv::floodFill(image, {seedX, seedY}, value, nullptr, {}, {}, 8);
    };
    contenders.sameAnswer = [scene] {
        return LargestDifference(scene->ours, Converted<T>(scene->theirs)) == 0;
    };
#endif
    return contenders;
}

constexpr int kHolesAcross = 100;  // 10,000 in all

// A hole in the middle of each cell, of about a quarter of its area.
bool IsInHole(int x, int y, int side) {
    auto const inMiddle = [side](int at) {
        double const cell = static_cast<double>(side) / kHolesAcross;
        double const within = at - cell * std::floor(at / cell);
        return within >= 0.25 * cell && within < 0.75 * cell;
    };
    return inMiddle(x) && inMiddle(y);
}

bool IsOnBorder(int x, int y, int side) { return x == 0 || y == 0 || x == side - 1 || y == side - 1; }

// Foreground all over but for the holes, and for every other pixel of the border.
Mask Plate(int side) {
    return MaskOf(side, [=](int x, int y) {
        return IsOnBorder(x, y, side) ? (x + y) % 2 == 1 : !IsInHole(x, y, side);
    });
}

// A ring of one pixel around each hole, and background between the rings.
Mask Rings(int side) {
    return MaskOf(side, [=](int x, int y) {
        if (IsOnBorder(x, y, side)) return (x + y) % 2 == 1;
        bool beside = false;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) beside |= IsInHole(x + dx, y + dy, side);
        return beside && !IsInHole(x, y, side);
    });
}

// Both make a mask without holes of one that they keep.
// Both make a mask without holes of one that they keep. OpenCV fills no 16-bit images.
template <typename T> Contenders Holes(Mask const& mask) {
    struct Scene {
        Image<T> source, ours, theirs;
    };
    Image<T> const blank(mask.Width(), mask.Height());
    auto const scene = std::make_shared<Scene>(Scene{Converted<T>(mask), blank, blank});
    Contenders contenders{[=] {
                              auto const& pixels = scene->source.Elements();
                              std::copy(pixels.begin(), pixels.end(), scene->ours.Elements().begin());
                              Require(FillHoles(scene->ours.Attributes(), 8));
                          },
                          "",
                          {},
                          {}};
#ifdef ZPA_PEER_OPENCV
    bool const isWide = sizeof(T) > 1;
    contenders.peer = isWide ? "OpenCV floodFill, compare, and to 8u and back" : "OpenCV floodFill, compare";
    contenders.theirs = [=, source = MatView(scene->source), filled = MatView(scene->theirs),
                         bytes = cv::Mat(), padded = cv::Mat()]() mutable {
        if (isWide) source.convertTo(bytes, CV_8U);
        cv::copyMakeBorder(isWide ? bytes : source, padded, 1, 1, 1, 1, cv::BORDER_CONSTANT, 0);
        cv::floodFill(padded, {0, 0}, 2, nullptr, {}, {}, 8);
        cv::compare(padded({1, 1, source.cols, source.rows}), 2, isWide ? bytes : filled, cv::CMP_NE);
        if (isWide) bytes.convertTo(filled, filled.type());
    };
    contenders.sameAnswer = [scene] {
        for (T& pixel : scene->theirs.Elements()) pixel = pixel != 0;
        return LargestDifference(scene->ours, scene->theirs) == 0;
    };
#endif
    return contenders;
}

template <typename T> void RegisterAll(int side) {
    constexpr double kBytes = sizeof(T);
    auto const row = [=](char const* name, std::function<Contenders()> const& make) {
        Register({name, kTypeName<T>, side, side, {kBytes, kBytes}, make});
    };
    int const middle = side / 2;
    row("FloodFill, round", [=] { return Filling<T>(Round(side), middle, middle); });
    row("FloodFill, porous", [=] { return Filling<T>(Porous(side), middle, middle); });
    row("FloodFill, spiral", [=] { return Filling<T>(Spiral(side), 0, 0); });
    row("FillHoles, plate", [=] { return Holes<T>(Plate(side)); });
    row("FillHoles, rings", [=] { return Holes<T>(Rings(side)); });
    row("FillHoles, porous", [=] { return Holes<T>(Porous(side)); });
}

Registration const rows([] {
    for (int const side : {512, 2048}) {
        RegisterAll<unsigned char>(side);
        RegisterAll<unsigned short>(side);
    }
});

}  // namespace
}  // namespace ZPA::Benchmarks
