// Division of many numbers by one.
#ifndef ZPA_PRIMITIVES_DIVIDEBY_H
#define ZPA_PRIMITIVES_DIVIDEBY_H

#include <cmath>

namespace ZPA {

// Division by one number: by its reciprocal, if that has all its digits.
class DivideBy {
public:
    DivideBy() = default;
    explicit DivideBy(double divisor)
        : divisor_(divisor), reciprocal_(1 / divisor), multiplies_(std::isnormal(reciprocal_)) {}
    double operator()(double value) const { return multiplies_ ? value * reciprocal_ : value / divisor_; }

private:
    double divisor_, reciprocal_;
    bool multiplies_;
};

}  // namespace ZPA

#endif
