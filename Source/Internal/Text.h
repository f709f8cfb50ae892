// How names compare, whatever the locale.
#ifndef ZPA_SOURCE_INTERNAL_TEXT_H
#define ZPA_SOURCE_INTERNAL_TEXT_H

#include <algorithm>
#include <string_view>

namespace ZPA {

// True if the texts are the same but for the case of ASCII letters.
inline bool SameText(std::string_view a, std::string_view b) {
    auto const lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char left, char right) { return lower(left) == lower(right); });
}

}  // namespace ZPA

#endif
