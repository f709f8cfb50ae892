// What the library logs while a test runs.
#ifndef ZPA_TESTS_SUPPORT_CAPTUREDLOG_H
#define ZPA_TESTS_SUPPORT_CAPTUREDLOG_H

#include <Basics/Logging.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace ZPA::Testing {

struct LogLine {
    std::wstring location;
    int category;  // of an error: its code
    std::wstring message;
};

// Receives errors and warnings, and debug and information lines of the categories that are switched on, from
// its construction to its destruction. One at a time.
class CapturedLog {
public:
    CapturedLog();
    ~CapturedLog();
    CapturedLog(CapturedLog const&) = delete;
    CapturedLog& operator=(CapturedLog const&) = delete;

    // Turns on debug lines of a category until the end of this object.
    void Debug(LogCategory category);

    std::vector<LogLine> const& Errors() const;
    std::vector<LogLine> const& Warnings() const;
    std::vector<LogLine> const& DebugLines() const;
    std::vector<LogLine> const& InfoLines() const;

    // The last error; empty and 0 if there was none.
    std::wstring Text() const;
    int Code() const;
    // The texts of all errors, each with an end of line behind it.
    std::wstring Texts() const;
    // The functions that were entered and left: L"outer{inner{}}".
    std::wstring Scopes() const;
    void Clear();
};

// The texts of lines, of one category or of all.
inline std::vector<std::wstring> Messages(std::vector<LogLine> const& lines, int category = eLogAll) {
    std::vector<std::wstring> messages;
    for (LogLine const& line : lines)
        if (category == eLogAll || line.category == category) messages.push_back(line.message);
    return messages;
}

// A callback for tests of what its exceptions reach.
inline void ThrowFromCallback(wchar_t const*, int, wchar_t const*) {
    throw std::runtime_error("from the callback");
}

// The call gives the code, and ends in an error of this code and text; in none if the text is empty.
template <typename Call> void ExpectRefusal(Call const& call, int code, std::wstring const& text) {
    CapturedLog const log;
    EXPECT_EQ(int{call()}, code);
    EXPECT_EQ(log.Text(), text);
    EXPECT_EQ(log.Code(), text.empty() ? 0 : code);
}

#define EXPECT_REFUSAL(code, text, ...)                                  \
    do {                                                                 \
        SCOPED_TRACE(#__VA_ARGS__);                                      \
        ExpectRefusal([&]() -> int { return __VA_ARGS__; }, code, text); \
    } while (false)

// The functions that a call enters and leaves.
template <typename Call> std::wstring ScopesOf(Call const& call) {
    CapturedLog log;
    log.Debug(eLogFunction);
    call();
    return log.Scopes();
}

}  // namespace ZPA::Testing

#endif
