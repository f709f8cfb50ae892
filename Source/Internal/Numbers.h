// Whole numbers in names and documents: how one is read, and how those between dots are found.
#ifndef ZPA_SOURCE_INTERNAL_NUMBERS_H
#define ZPA_SOURCE_INTERNAL_NUMBERS_H

#include <algorithm>
#include <climits>
#include <cstdint>
#include <string_view>

namespace ZPA {

// Whether ParseInt finds a digit.
inline bool BeginsWithNumber(std::string_view text) {
    std::size_t at = text.find_first_not_of(" \t\n\v\f\r");
    if (at != text.npos && (text[at] == '-' || text[at] == '+')) ++at;
    return at < text.size() && text[at] >= '0' && text[at] <= '9';
}

// The number that a text begins with: white space, a sign, decimal digits, each of which may be missing.
// What follows is ignored, no digits are 0, and what an int cannot hold becomes its nearest limit.
inline int ParseInt(std::string_view text) {
    std::size_t at = text.find_first_not_of(" \t\n\v\f\r");
    if (at == text.npos) return 0;
    bool const negative = text[at] == '-';
    if (negative || text[at] == '+') ++at;
    std::int64_t number = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9' && number <= INT_MAX; ++at)
        number = number * 10 + (text[at] - '0');
    if (negative) return number > INT_MAX ? INT_MIN : static_cast<int>(-number);
    return number > INT_MAX ? INT_MAX : static_cast<int>(number);
}

// The fields of a text between its dots. Dots in a row separate once, and those at the ends not at all.
class DotFields {
public:
    explicit DotFields(std::string_view text) : rest_(text) {}

    // The next field; empty when there is none left.
    std::string_view Next() {
        rest_.remove_prefix(std::min(rest_.find_first_not_of('.'), rest_.size()));
        std::string_view const field = rest_.substr(0, rest_.find('.'));
        rest_.remove_prefix(field.size());
        return field;
    }
    // The next field as a number; `value` stays when there is none left.
    void Next(int& value) {
        std::string_view const field = Next();
        if (!field.empty()) value = ParseInt(field);
    }

private:
    std::string_view rest_;
};

}  // namespace ZPA

#endif
