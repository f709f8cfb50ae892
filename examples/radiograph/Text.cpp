// Digits and spaces.
#include "radiograph/Text.h"

#include <array>
#include <cstdio>

namespace Radiograph {

std::string Number(double value, int decimals) {
    std::array<char, 400> text{};  // room for any double
    std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
    std::string number = text.data();
    auto const whole = static_cast<std::ptrdiff_t>(number.size()) - (decimals ? decimals + 1 : 0);
    for (auto at = whole - 3; at > 0; at -= 3) number.insert(static_cast<std::size_t>(at), "\u202F");
    return number;
}

std::string Dimensions(int width, int height) { return Number(width) + "\u00A0×\u00A0" + Number(height); }

}  // namespace Radiograph
