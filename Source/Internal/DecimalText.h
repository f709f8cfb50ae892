// Floating-point numbers in documents, which do not follow the host program's locale.
#ifndef ZPA_SOURCE_INTERNAL_DECIMALTEXT_H
#define ZPA_SOURCE_INTERNAL_DECIMALTEXT_H

#include <string>

namespace ZPA {

// With six decimals after a dot, however long: "%f" in the "C" locale.
std::string DecimalText(double value);

// The number that a text begins with, 0 without one: atof in the "C" locale.
double ParseDecimal(std::string text);

}  // namespace ZPA

#endif
