// The one place that prints a message format.
#ifndef ZPA_SOURCE_INTERNAL_FORMATWIDE_H
#define ZPA_SOURCE_INTERNAL_FORMATWIDE_H

#include <cstdarg>
#include <cstddef>

namespace ZPA {

// Prints into `text`, of `capacity` characters with the closing zero, as wide printing does on Windows: %s
// and %ls are wide, %S and %hs narrow, %p bare upper-case hexadecimal of the pointer's width. Longer text is
// cut, a narrow byte above 127 is the character of that number, a null text "(null)"; %n writes nothing. It
// never fails.
void FormatWide(wchar_t* text, std::size_t capacity, wchar_t const* format, std::va_list values);

// The same, for a format that nobody gave values for: its conversions find zeros and null texts.
void FormatWide(wchar_t* text, std::size_t capacity, wchar_t const* format);

}  // namespace ZPA

#endif
