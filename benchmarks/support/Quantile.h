// Medians and quartiles of timings.
#ifndef ZPA_BENCHMARKS_SUPPORT_QUANTILE_H
#define ZPA_BENCHMARKS_SUPPORT_QUANTILE_H

#include <algorithm>
#include <cstddef>
#include <vector>

namespace ZPA::Benchmarks {

struct Quartiles {
    double low;
    double median;
    double high;
};

// Between two values where the place falls between them. The values may not be empty.
inline Quartiles QuartilesOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    auto const at = [&](double share) {
        double const place = share * static_cast<double>(values.size() - 1);
        auto const below = static_cast<std::size_t>(place);
        auto const above = std::min(below + 1, values.size() - 1);
        return values[below] + (place - static_cast<double>(below)) * (values[above] - values[below]);
    };
    return {at(0.25), at(0.5), at(0.75)};
}

// Of the ratios of what was timed in the same round: noise that lasts longer than a round cancels out.
inline Quartiles RatioOf(std::vector<double> const& dividends, std::vector<double> const& divisors) {
    std::vector<double> ratios(dividends.size());
    std::transform(dividends.begin(), dividends.end(), divisors.begin(), ratios.begin(),
                   [](double dividend, double divisor) { return dividend / divisor; });
    return QuartilesOf(ratios);
}

}  // namespace ZPA::Benchmarks

#endif
