// Floating-point numbers in documents, which do not follow the host program's locale.
#include "Source/Internal/DecimalText.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace ZPA {
namespace {

// What stands between whole number and fraction in the host program's locale.
std::string DecimalPoint() {
    char half[16];
    int const size = std::snprintf(half, sizeof half, "%.1f", 0.5);
    return size > 2 && size < static_cast<int>(sizeof half)
               ? std::string(half + 1, static_cast<std::size_t>(size) - 2)
               : ".";
}

}  // namespace

std::string DecimalText(double value) {
    constexpr int kDecimals = 6;
    char text[std::numeric_limits<double>::max_exponent10 + kDecimals + 4];  // sign, first digit, dot
    auto const end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, kDecimals).ptr;
    return {text, end};
}

double ParseDecimal(std::string text) {
    if (std::string const point = DecimalPoint(); point != ".") {
        text.resize(std::min(text.find(point), text.size()));
        std::size_t const dot = text.find('.');
        if (dot != text.npos) text.replace(dot, 1, point);
    }
    return std::strtod(text.c_str(), nullptr);
}

}  // namespace ZPA
