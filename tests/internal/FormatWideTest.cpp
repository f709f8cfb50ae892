// Message formats: they read as wide printing does on Windows, whatever the platform.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>
#include <vector>

#include "Source/Internal/FormatWide.h"

namespace ZPA {
namespace {

std::wstring PrintInto(std::size_t capacity, wchar_t const* format, std::va_list values) {
    // The element behind the capacity is a guard.
    std::vector<wchar_t> text(capacity + 1, L'\xA5');
    FormatWide(text.data(), capacity, format, values);
    EXPECT_EQ(text[capacity], L'\xA5');
    return capacity ? std::wstring(text.data()) : std::wstring();
}

std::wstring PrintedInto(std::size_t capacity, wchar_t const* format, ...) {
    std::va_list values;
    va_start(values, format);
    std::wstring const text = PrintInto(capacity, format, values);
    va_end(values);
    return text;
}

template <typename... Values> std::wstring Printed(wchar_t const* format, Values... values) {
    return PrintedInto(512, format, values...);
}

// A row is a call, since a format's values have types of their own.
struct Row {
    std::wstring printed, expected;
};
void ExpectAll(std::vector<Row> const& rows) {
    for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i].printed, rows[i].expected) << "row " << i;
}

std::wstring const kPointerZeros(2 * sizeof(void*) - 4, L'0');
void* const kPointer = reinterpret_cast<void*>(std::uintptr_t{0xBEEF});
wchar_t const* const kNoWide = nullptr;
char const* const kNoNarrow = nullptr;

TEST(FormatWide, TakesWideAndNarrowTextAsWindowsDoes) {
    ExpectAll({
        {Printed(L"%s|%ls|%ws", L"a", L"bc", L"d"), L"a|bc|d"},
        {Printed(L"%S|%hs|%hS", "a", "bc", "d"), L"a|bc|d"},
        {Printed(L"%lS", L"wide"), L"wide"},
        {Printed(L"%s%S", kNoWide, kNoNarrow), L"(null)(null)"},
        {Printed(L"%.3s|%8S", kNoWide, kNoNarrow), L"(nu|  (null)"},
        {Printed(L"%5s|%-5s|%2s", L"ab", L"ab", L"long"), L"   ab|ab   |long"},
        {Printed(L"%.2s|%.0s|%.s|%5.1S", L"abc", L"abc", L"abc", "abc"), L"ab|||    a"},
        {Printed(L"%*s|%-*s|%*s", 3, L"a", 3, L"b", -3, L"c"), L"  a|b  |c  "},
        {Printed(L"%.*s|%.*s", 1, L"ab", -1, L"ab"), L"a|ab"},
        {Printed(L"%S", "\xE9\x80\xFF"), L"\xE9\x80\xFF"},  // Latin-1, not the locale's bytes
        {Printed(L"%s", L"\x20AC\xD800"), L"\x20AC\xD800"},
        {Printed(L"%c%C%hc%lc", L'\x20AC', 'n', 'h', L'\x3A9'), L"\x20ACnh\x3A9"},
        {Printed(L"%C|%3c|%-3c|", '\xE9', L'x', L'y'), L"\xE9|  x|y  |"},
        {Printed(L"100%% of %s", L"%d"), L"100% of %d"},
    });
}

TEST(FormatWide, NeverReadsTextBehindThePrecision) {
    wchar_t const wide[] = {L'a', L'b'};
    char const narrow[] = {'c', 'd'};
    EXPECT_EQ(Printed(L"%.2s%.*S", wide, 2, narrow), L"abcd");
}

TEST(FormatWide, PrintsPointersInUpperCaseAndWhole) {
    std::wstring const digits = kPointerZeros + L"BEEF";
    ExpectAll({
        {Printed(L"%p", kPointer), digits},
        {Printed(L"%08p", kPointer), digits},
        {Printed(L"%p", static_cast<void*>(nullptr)), kPointerZeros + L"0000"},
        {Printed(L"%20p|%-20p|", kPointer, kPointer), std::wstring(20 - digits.size(), L' ') + digits + L"|" +
                                                          digits + std::wstring(20 - digits.size(), L' ') +
                                                          L"|"},
    });
}

TEST(FormatWide, PrintsNumbersOfAllSizes) {
    ExpectAll({
        {Printed(L"%d %i %u", -1, INT_MIN, 4000000000U), L"-1 -2147483648 4000000000"},
        {Printed(L"%ld %lu", LONG_MIN, ULONG_MAX),
         std::to_wstring(LONG_MIN) + L" " + std::to_wstring(ULONG_MAX)},
        {Printed(L"%lld %I64d", LLONG_MIN, LLONG_MAX), L"-9223372036854775808 9223372036854775807"},
        {Printed(L"%llx %I64X", 0xFEDCBA9876543210ULL, 0xABCULL), L"fedcba9876543210 ABC"},
        {Printed(L"%hd %hu %hhd %hhu", 0x1FFFF, 0x1FFFF, 0x1FF, 0x1FF), L"-1 65535 -1 255"},
        {Printed(L"%zu %td %jd %Iu", SIZE_MAX, PTRDIFF_MIN, INTMAX_MIN, SIZE_MAX),
         std::to_wstring(SIZE_MAX) + L" " + std::to_wstring(PTRDIFF_MIN) + L" " +
             std::to_wstring(INTMAX_MIN) + L" " + std::to_wstring(SIZE_MAX)},
        {Printed(L"%I32d %o %#x %#o", -7, 8, 255, 8), L"-7 10 0xff 010"},
        {Printed(L"%5d|%-5d|%05d|%+d|% d|%.3d", 42, 42, 42, 42, 42, 7), L"   42|42   |00042|+42| 42|007"},
        {Printed(L"%*d|%*d|%.*d|%.*d", 4, 1, -4, 1, 3, 1, -3, 1), L"   1|1   |001|1"},
        {Printed(L"%5.3lf|%f|%.0f|%8.2f|%-8.2f|", 0.1234567, 1.5, 2.5, 3.14159, 3.14159),
         L"0.123|1.500000|2|    3.14|3.14    |"},
        {Printed(L"%g %e %G %Lf", 1e-5, 12345.678, 1e20, 1.5L), L"1e-05 1.234568e+04 1E+20 1.500000"},
        {Printed(L"%d%s%llx%p%5.1f%S", 1, L"a", 2ULL, kPointer, 3.0, "b"),
         L"1a2" + kPointerZeros + L"BEEF  3.0b"},
    });
}

TEST(FormatWide, ShowsWhatIsNoConversionAsItStands) {
    ExpectAll({
        {Printed(L"%"), L"%"},
        {Printed(L"a%"), L"a%"},
        {Printed(L"%5"), L"%5"},
        {Printed(L"%-08.3l"), L"%-08.3l"},
        {Printed(L"%y %d", 3), L"%y 3"},
        {Printed(L"%!%\x20AC%d", 3),
         L"%!%\x20AC"
         L"3"},
        {Printed(L"%5%"), L"%"},
        {Printed(L"%----------++++++  ##0005d", 7), L"+7   "},
    });
}

TEST(FormatWide, NeverWritesThroughAFormat) {
    int written = -1;
    EXPECT_EQ(Printed(L"a%nb%d", &written, 5), L"ab5");
    EXPECT_EQ(written, -1);
}

TEST(FormatWide, CutsWhatDoesNotFit) {
    std::wstring const many(600, L'x');
    std::wstring const full(511, L'x');
    std::wstring const blank(511, L' ');
    ExpectAll({
        {Printed(many.c_str()), full},
        {Printed(L"%s", many.c_str()), full},
        {Printed(L"%S", std::string(600, 'x').c_str()), full},
        {Printed(L"%600d", 1), blank},
        {Printed(L"%2147483647d", 1), blank},
        {Printed(L"%99999999999999999999s", L"a"), blank},
        {Printed(L"%*d", INT_MIN, 1), L"1" + blank.substr(1)},
        {Printed(L"%*s", INT_MAX, L"a"), blank},
        {Printed(L"%.2147483647d", 1), std::wstring(511, L'0')},
        {Printed(L"%f", 1e308).substr(0, 9), L"100000000"},
        {Printed(L"%.99999f", 1.5), L"1.5" + std::wstring(508, L'0')},
        {PrintedInto(0, L"%s", L"abc"), L""},
        {PrintedInto(1, L"%s%d", L"abc", 1), L""},
        {PrintedInto(2, L"%d", 123), L"1"},
        {PrintedInto(4, L"abc"), L"abc"},
        {PrintedInto(4, L"ab%s", L"cd"), L"abc"},
    });
}

TEST(FormatWide, FindsZerosWhereNobodyGaveValues) {
    wchar_t text[64];
    FormatWide(text, 64, L"%s|%S|%d|%llx|%.1f|%*d|%c|%%|%n");
    // The character 0 ends the text.
    EXPECT_EQ(std::wstring(text), L"(null)|(null)|0|0|0.0|0|");
    FormatWide(text, 64, L"%p %.*s");
    EXPECT_EQ(std::wstring(text), kPointerZeros + L"0000 ");
}

}  // namespace
}  // namespace ZPA
