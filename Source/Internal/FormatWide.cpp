// The one place that prints a message format. Platforms disagree about %s in wide formats, about text that
// does not fit and about bytes that are no characters, so only numbers are left to the platform's printing.
#include "Source/Internal/FormatWide.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <string>
#include <string_view>
#include <type_traits>

namespace ZPA {
namespace {

// The values of a format in their order; zeros when there are none.
class Values {
public:
    Values() : given_(false) {}
    explicit Values(std::va_list list) : given_(true) { va_copy(list_, list); }
    ~Values() {
        if (given_) va_end(list_);
    }
    Values(Values const&) = delete;
    Values& operator=(Values const&) = delete;

    template <typename T> T Next() { return given_ ? va_arg(list_, T) : T{}; }

private:
    bool given_;
    std::va_list list_;
};

// Text of limited size that drops what does not fit.
class Writer {
public:
    Writer(wchar_t* text, std::size_t capacity) : at_(text), end_(capacity ? text + capacity - 1 : text) {
        if (capacity) *at_ = 0;
    }
    void Put(wchar_t character) {
        if (at_ == end_) return;
        *at_++ = character;
        *at_ = 0;
    }
    void Fill(std::size_t count) {
        for (; count > 0 && at_ != end_; --count) Put(L' ');
    }
    template <typename Char> void Put(std::basic_string_view<Char> characters) {
        for (Char const character : characters) {
            if (at_ == end_) return;
            Put(static_cast<wchar_t>(static_cast<std::make_unsigned_t<Char>>(character)));
        }
    }

private:
    wchar_t* at_;
    wchar_t* end_;
};

enum class Length { None, HalfHalf, Half, Long, LongLong, IntMax, Size, Difference, LongDouble };

// One conversion, between its "%" and its letter.
struct Conversion {
    std::string flags;
    int width = 0;
    int precision = -1;
    Length length = Length::None;
    wchar_t letter = 0;

    bool LeftAligned() const { return flags.find('-') != std::string::npos; }
};

// Wider than any line: more would be cut anyway.
constexpr int kWidest = 1000;

int ReadNumber(wchar_t const*& at, Values& values) {
    if (*at == L'*') {
        ++at;
        return std::clamp(values.Next<int>(), -kWidest, kWidest);
    }
    int number = 0;
    for (; *at >= L'0' && *at <= L'9'; ++at)
        number = std::min(number * 10 + static_cast<int>(*at - L'0'), kWidest);
    return number;
}

bool Skip(wchar_t const*& at, std::wstring_view word) {
    if (std::wcsncmp(at, word.data(), word.size()) != 0) return false;
    at += word.size();
    return true;
}

Length ReadLength(wchar_t const*& at) {
    struct Word {
        std::wstring_view text;
        Length length;
    };
    static constexpr Word kWords[] = {
        {L"hh", Length::HalfHalf}, {L"h", Length::Half},       {L"ll", Length::LongLong},
        {L"l", Length::Long},      {L"w", Length::Long},       {L"I64", Length::LongLong},
        {L"I32", Length::None},    {L"I", Length::Size},       {L"j", Length::IntMax},
        {L"z", Length::Size},      {L"t", Length::Difference}, {L"L", Length::LongDouble},
    };
    for (Word const& word : kWords)
        if (Skip(at, word.text)) return word.length;
    return Length::None;
}

// Reads what follows a "%", the letter included.
Conversion ReadConversion(wchar_t const*& at, Values& values) {
    Conversion conversion;
    for (; *at && std::wcschr(L"-+ #0", *at); ++at)
        if (conversion.flags.find(static_cast<char>(*at)) == std::string::npos)
            conversion.flags += static_cast<char>(*at);
    conversion.width = ReadNumber(at, values);
    if (conversion.width < 0) {
        conversion.flags += '-';
        conversion.width = -conversion.width;
    }
    if (*at == L'.') conversion.precision = ReadNumber(++at, values);
    conversion.length = ReadLength(at);
    conversion.letter = *at;
    if (*at) ++at;
    return conversion;
}

template <typename Char>
void PutText(Writer& writer, Conversion const& conversion, std::basic_string_view<Char> text) {
    auto const width = static_cast<std::size_t>(conversion.width);
    std::size_t const padding = width > text.size() ? width - text.size() : 0;
    if (!conversion.LeftAligned()) writer.Fill(padding);
    writer.Put(text);
    if (conversion.LeftAligned()) writer.Fill(padding);
}

template <typename Char> void PutString(Writer& writer, Conversion const& conversion, Char const* text) {
    static constexpr Char kNull[] = {'(', 'n', 'u', 'l', 'l', ')', 0};
    if (!text) text = kNull;
    std::size_t size = 0;
    auto const limit = conversion.precision < 0 ? SIZE_MAX : static_cast<std::size_t>(conversion.precision);
    while (size < limit && text[size]) ++size;
    PutText(writer, conversion, std::basic_string_view<Char>(text, size));
}

// Prints a number as the platform does; `length` is the size word that goes with the value's type.
template <typename Number>
void PutNumber(Writer& writer, Conversion const& conversion, char const* length, Number value) {
    char format[16];
    char digits[2 * kWidest];
    std::snprintf(format, sizeof format, "%%%s*.*%s%c", conversion.flags.c_str(), length,
                  static_cast<char>(conversion.letter));
    int const size =
        std::snprintf(digits, sizeof digits, format, conversion.width, conversion.precision, value);
    writer.Put(std::string_view(
        digits, std::min<std::size_t>(static_cast<std::size_t>(std::max(size, 0)), sizeof digits - 1)));
}

std::intmax_t NextSigned(Values& values, Length length) {
    switch (length) {
        case Length::HalfHalf:
            return static_cast<signed char>(values.Next<int>());
        case Length::Half:
            return static_cast<short>(values.Next<int>());
        case Length::Long:
            return values.Next<long>();
        case Length::LongLong:
            return values.Next<long long>();
        case Length::IntMax:
            return values.Next<std::intmax_t>();
        case Length::Size:
        case Length::Difference:
            return values.Next<std::ptrdiff_t>();
        default:
            return values.Next<int>();
    }
}

std::uintmax_t NextUnsigned(Values& values, Length length) {
    switch (length) {
        case Length::HalfHalf:
            return static_cast<unsigned char>(values.Next<int>());
        case Length::Half:
            return static_cast<unsigned short>(values.Next<int>());
        case Length::Long:
            return values.Next<unsigned long>();
        case Length::LongLong:
            return values.Next<unsigned long long>();
        case Length::IntMax:
            return values.Next<std::uintmax_t>();
        case Length::Size:
        case Length::Difference:
            return values.Next<std::size_t>();
        default:
            return values.Next<unsigned int>();
    }
}

void PutPointer(Writer& writer, Conversion const& conversion, void const* pointer) {
    char digits[2 * sizeof(void*) + 1];
    auto value = reinterpret_cast<std::uintptr_t>(pointer);
    for (std::size_t digit = 2 * sizeof(void*); digit-- > 0; value >>= 4)
        digits[digit] = "0123456789ABCDEF"[value & 15];
    PutText(writer, conversion, std::string_view(digits, 2 * sizeof(void*)));
}

// `start` is the place of the "%", for what turns out to be no conversion.
void Put(Writer& writer, Conversion const& conversion, Values& values, std::wstring_view start) {
    bool const narrow = conversion.length == Length::Half;
    bool const wide = conversion.length == Length::Long;
    switch (conversion.letter) {
        case L'%':
            return writer.Put(L'%');
        case L's':
        case L'S':
            if (narrow || (conversion.letter == L'S' && !wide))
                return PutString(writer, conversion, values.Next<char const*>());
            return PutString(writer, conversion, values.Next<wchar_t const*>());
        case L'c':
        case L'C': {
            int const value = values.Next<int>();
            bool const byte = narrow || (conversion.letter == L'C' && !wide);
            auto const character = static_cast<wchar_t>(byte ? static_cast<unsigned char>(value) : value);
            return PutText(writer, conversion, std::wstring_view(&character, 1));
        }
        case L'd':
        case L'i':
            return PutNumber(writer, conversion, "j", NextSigned(values, conversion.length));
        case L'u':
        case L'o':
        case L'x':
        case L'X':
            return PutNumber(writer, conversion, "j", NextUnsigned(values, conversion.length));
        case L'e':
        case L'E':
        case L'f':
        case L'F':
        case L'g':
        case L'G':
        case L'a':
        case L'A':
            if (conversion.length == Length::LongDouble)
                return PutNumber(writer, conversion, "L", values.Next<long double>());
            return PutNumber(writer, conversion, "", values.Next<double>());
        case L'p':
            return PutPointer(writer, conversion, values.Next<void const*>());
        case L'n':
            values.Next<void*>();
            return;
        default:
            return writer.Put(start);
    }
}

void Print(wchar_t* text, std::size_t capacity, wchar_t const* format, Values& values) {
    Writer writer(text, capacity);
    for (wchar_t const* at = format; *at;) {
        if (*at != L'%') {
            writer.Put(*at++);
            continue;
        }
        wchar_t const* const start = at++;
        Conversion const conversion = ReadConversion(at, values);
        Put(writer, conversion, values, std::wstring_view(start, static_cast<std::size_t>(at - start)));
    }
}

}  // namespace

void FormatWide(wchar_t* text, std::size_t capacity, wchar_t const* format, std::va_list list) {
    Values values(list);
    Print(text, capacity, format, values);
}

void FormatWide(wchar_t* text, std::size_t capacity, wchar_t const* format) {
    Values values;
    Print(text, capacity, format, values);
}

}  // namespace ZPA
