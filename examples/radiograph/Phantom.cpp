// The anatomy of the phantom, and the detector that records it.
#include "radiograph/Phantom.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "radiograph/Attenuation.h"

namespace Radiograph {
namespace {

constexpr double kPi = 3.14159265358979323846;

double Square(double value) { return value * value; }

// From 0 at `from` to 1 at `to` without a kink.
double Rise(double value, double from, double to) {
    double const t = std::clamp((value - from) / (to - from), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

// 1 in the middle, 0 outside of `half`, with shoulders that steepen as `power` grows.
double Plateau(double value, double half, double power) {
    return std::exp(-std::pow(std::abs(value) / half, power));
}

// The rays' way through an ellipsoid, 1 in its middle.
double Ellipsoid(double x, double y, double halfWidth, double halfHeight) {
    return std::sqrt(std::max(0.0, 1 - Square(x / halfWidth) - Square(y / halfHeight)));
}

// The inner side of the ribs, as a distance from the midline.
double CageHalfWidth(double y) {
    return 0.73 * std::sqrt(std::max(0.0, 1 - std::pow(std::abs(y - 0.30) / 1.10, 2.5)));
}

double BodyHalfWidth(double y) {
    double const shoulders = 0.25 + 0.95 * Rise(y, -1.12, -0.58);
    return shoulders - 0.30 * Rise(y, -0.50, 0.10) + 0.06 * Rise(y, 0.2, 1.0);
}

// Neck, shoulders and trunk.
double SoftTissue(double x, double y) {
    double const part = std::min(1.0, std::abs(x) / BodyHalfWidth(y));
    return (0.72 + 0.28 * Rise(y, -0.9, -0.3)) * std::sqrt(1 - std::pow(part, 2.6));
}

// The diaphragm's dome; the right one, on the left of the picture, stands higher.
double DiaphragmTop(double x) {
    double const side = std::abs(x);
    return (x < 0 ? 0.36 : 0.42) + 1.5 * Square(side - 0.34);
}

// The air of both lungs without a heart between them, 1 at its thickest. Some of it lies behind the
// diaphragm.
double LungAir(double x, double y) {
    double const side = std::abs(x);
    double const inner = 0.075 + 0.035 * Rise(y, -0.3, 0.3);
    double const outer = CageHalfWidth(y) - 0.015;
    if (side <= inner || side >= outer) return 0;
    double const across = (side - inner) / (outer - inner);
    double const thickness = std::pow(Rise(across, -0.05, 0.42), 0.8) * std::pow(1 - across, 0.30) * 1.22;
    double const below = y - DiaphragmTop(x);
    double const toBase = 0.72 * Rise(-below, -0.008, 0.012) + 0.28 * Rise(-below, -0.24, 0.05);
    return thickness * (0.35 + 0.65 * Rise(y, -0.85, -0.35)) * toBase;
}

// The heart and the arch of the aorta, 1 where they are thickest. They take the place of air.
double Heart(double x, double y) {
    double const turn = 0.60;  // the tip points down to the left side of the body
    double const along = (x - 0.13) * std::cos(turn) + (y - 0.20) * std::sin(turn);
    double const beside = (y - 0.20) * std::cos(turn) - (x - 0.13) * std::sin(turn);
    double const ventricles = Ellipsoid(along, beside, 0.35, 0.24);
    double const atrium = 0.8 * Ellipsoid(x + 0.06, y - 0.17, 0.15, 0.21);
    double const arch = 0.6 * Ellipsoid(x - 0.085, y + 0.31, 0.085, 0.095);
    return std::min(1.0, std::hypot(ventricles, atrium) + arch);
}

// What is left to the air of both lungs.
double Air(double x, double y) {
    double const air = LungAir(x, y);
    return air > 0 ? air * (1 - 0.85 * std::sqrt(Heart(x, y))) : 0;
}

// What else lies between the lungs, and under them.
double Organs(double x, double y) {
    double const mediastinum = 0.16 * Plateau(x, 0.13, 3) * Rise(y, -1.0, -0.6);
    double const aorta = 0.08 * Plateau(x - 0.09, 0.055, 4) * Rise(y, -0.36, -0.25);
    double const liver =
        0.16 * Rise(y - std::min(0.48, DiaphragmTop(x)), -0.01, 0.30) * Rise(-x, -0.25, 0.10);
    double const stomachAir = -0.20 * Ellipsoid(x - 0.33, y - 0.57, 0.15, 0.075);
    return mediastinum + aorta + liver + stomachAir;
}

// Bodies of the vertebrae with the discs between them, pedicles and spinous processes.
void AddSpine(Attenuation& map) {
    constexpr double kSpacing = 0.112;
    map.Add([](double x, double y) {
        double const level = std::floor((y + 1) / kSpacing) * kSpacing - 1 + kSpacing / 2;
        double const waist = 0.05 * Square((y - level) / kSpacing);
        double const halfWidth = 0.060 + 0.008 * (y + 1) + waist;
        return Plateau(x, halfWidth, 8) * (0.05 + 0.08 * Plateau(y - level, kSpacing * 0.43, 8));
    });
    for (double y = -1 + kSpacing / 2; y < 1; y += kSpacing) {
        for (double side : {-1.0, 1.0}) {
            map.AddBall({side * 0.043, y - 0.012, 0}, 0.016, 0.05);
            map.AddBall({side * 0.043, y - 0.012, 0}, 0.010, -0.04);
        }
        map.AddBall({0, y + 0.035, 0}, 0.013, 0.05);
    }
}

// A shell of dense bone around a core that is less so.
template <typename Path> void AddBone(Attenuation& map, Path const& path, double radius, double density) {
    map.AddTube(path, radius, density);
    map.AddTube(path, radius * 0.72, density * -0.48);
}

// Each rib runs from the spine backwards and outwards, around the side, and down to the front.
void AddRibs(Attenuation& map) {
    for (int rib = 0; rib < 10; ++rib) {
        double const drop = 0.115 + 0.013 * rib;
        double const flank = -0.80 + 0.112 * rib + drop;
        double const halfWidth = CageHalfWidth(flank);
        for (double side : {-1.0, 1.0}) {
            auto const path = [&](double t) {
                double const angle = kPi * (0.475 - 0.80 * t);
                double const sag = 0.05 * Square(std::max(0.0, -std::sin(angle)));
                return Place{side * halfWidth * std::cos(angle), flank - drop * std::sin(angle) + sag,
                             0.45 * halfWidth * std::sin(angle)};
            };
            AddBone(map, path, 0.019 + 0.0006 * rib, 0.16);
        }
    }
}

void AddShoulders(Attenuation& map) {
    for (double side : {-1.0, 1.0}) {
        auto const clavicle = [&](double t) {
            return Place{side * (0.055 + 0.70 * t), -0.60 - 0.13 * t - 0.03 * std::sin(2 * kPi * t), 0};
        };
        auto const bladeEdge = [&](double t) {
            return Place{side * (0.80 - 0.10 * std::sin(kPi * t * 0.7)), -0.62 + 0.60 * t, 0};
        };
        AddBone(map, clavicle, 0.026, 0.17);
        AddBone(map, bladeEdge, 0.014, 0.09);
        map.AddBall({side * 0.99, -0.58, 0}, 0.13, 0.16);
    }
}

void AddAirways(Attenuation& map) {
    map.AddTube([](double t) { return Place{-0.012 * t, -1.05 + 0.80 * t, 0}; }, 0.034, -0.13);
    for (double side : {-1.0, 1.0})
        map.AddTube(
            [&](double t) {
                return Place{-0.012 + side * 0.17 * t, -0.25 + (side < 0 ? 0.17 : 0.13) * t, 0};
            },
            0.022, -0.09);
}

// Numbers in [0, 1) that are the same with every standard library.
class Chance {
public:
    double Next() { return static_cast<double>(generator_() >> 11) / 9007199254740992.0; }
    // Of mean 0 and deviation 1, near enough to a bell curve: a sum of four even ones.
    double Bell() { return (Next() + Next() + Next() + Next() - 2) * 1.7320508075688772; }

private:
    std::mt19937_64 generator_{20};
};

// A vessel that divides in two until it is too thin to be seen, or leaves the lung.
void AddVessel(Attenuation& map, Chance& chance, Place root, double angle, double radius) {
    if (radius < 0.0022 || Air(root.x, root.y) < 0.25) return;
    double const length = radius * (6.5 + 5 * chance.Next());
    double const bend = 0.5 * (chance.Next() - 0.5);
    auto const path = [&](double t) {
        return Place{root.x + length * t * std::cos(angle + bend * t),
                     root.y + length * t * std::sin(angle + bend * t), 0};
    };
    map.AddTube(path, radius, 11 * radius);
    double const fork = 0.25 + 0.35 * chance.Next();
    AddVessel(map, chance, path(1), angle + bend + fork, radius * (0.72 + 0.14 * chance.Next()));
    AddVessel(map, chance, path(1), angle + bend - fork, radius * (0.72 + 0.14 * chance.Next()));
}

void AddVessels(Attenuation& map, Chance& chance) {
    for (double side : {-1.0, 1.0}) {
        Place const hilum{side * 0.20, side < 0 ? -0.06 : -0.10, 0};
        map.AddBall(hilum, 0.055, 0.10);
        for (double angle : {-1.25, -0.75, -0.25, 0.2, 0.65, 1.1, 1.45})
            AddVessel(map, chance, hilum, side > 0 ? angle : kPi - angle, 0.013);
    }
}

void AddNodules(Attenuation& map) {
    map.AddBall({-0.46, 0.045, 0}, 0.042, 0.19);
    map.AddBall({0.40, -0.335, 0}, 0.026, 0.17);
}

// The letter L of lead that tells the left side of the patient.
void AddMarker(Attenuation& map) {
    map.Add([](double x, double y) {
        bool const upright = x > 0.845 && x < 0.867 && y > -0.935 && y < -0.815;
        bool const foot = x > 0.845 && x < 0.915 && y > -0.837 && y < -0.815;
        return upright || foot ? 2.2 : 0.0;
    });
}

// The beam is not equally strong everywhere.
double Exposure(double x, double y) { return 0.05 * x + 0.10 * y + 0.04 * x * y; }

}  // namespace

ImagePtr MakePhantom(int side) {
    Chance chance;
    Attenuation map(side);
    map.Add([](double x, double y) {
        return SoftTissue(x, y) + 0.12 * Heart(x, y) - 0.66 * Air(x, y) + Organs(x, y) + Exposure(x, y);
    });
    AddSpine(map);
    AddRibs(map);
    AddShoulders(map);
    AddAirways(map);
    AddVessels(map, chance);
    AddNodules(map);
    AddMarker(map);

    ImagePtr const image = NewImage(side, side);
    std::transform(map.Values().begin(), map.Values().end(), image->GetBufferPtr(), [&](float attenuation) {
        double const signal = 14800 - 6500.0 * attenuation;
        double const noise = 18 * std::exp(0.6 * attenuation) * chance.Bell();  // fewer quanta, more noise
        return static_cast<Pixel>(std::clamp(signal + noise, 0.0, 16383.0));
    });
    return image;
}

}  // namespace Radiograph
