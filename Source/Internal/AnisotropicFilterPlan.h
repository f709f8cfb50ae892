// How an oriented Gaussian falls into two passes.
#ifndef ZPA_SOURCE_INTERNAL_ANISOTROPICFILTERPLAN_H
#define ZPA_SOURCE_INTERNAL_ANISOTROPICFILTERPLAN_H

#include <algorithm>
#include <cmath>

#include "Source/Internal/Direction.h"

namespace ZPA {

struct AnisotropicFilterPlan {
    double sigmaSlant;  // along (shear, 1)
    double sigmaX;      // along x
    double shear;       // columns a row
    bool smooths;
    double cosine, sine;
    int derivativeOrderU, derivativeOrderV;

    AnisotropicFilterPlan(double u, double v, double angleDegrees, int orderU, int orderV)
        : derivativeOrderU(orderU), derivativeOrderV(orderV) {
        // A right angle behind the axis u: c is the sine of its angle, s the negative cosine.
        double const theta = (angleDegrees - 180.0 + 90.0) * 3.14159265358979323846 / 180.0;
        auto const [c, s] = DirectionOf(theta);
        double const d = c * c * u * u + s * s * v * v;
        sigmaSlant = std::sqrt(d);
        sigmaX = std::abs(u * v) / sigmaSlant;
        shear = d <= 1e-06 ? 0 : (v * v - u * u) * s * c / d;
        // Rounding may lift the passes' sigmas above both of these.
        smooths = std::max(std::abs(u), std::abs(v)) > kLeastSigma;
        cosine = -s;
        sine = c;
    }

    // A pass with this sigma or less would change nothing worth the name.
    static constexpr double kLeastSigma = 0.45;

    bool RunsAlongSlant() const { return smooths && sigmaSlant > kLeastSigma; }
    bool RunsAlongX(int width) const { return smooths && sigmaX > kLeastSigma && width >= 2; }
};

}  // namespace ZPA

#endif
