// What the library logs while a test runs.
#ifndef ZPA_TESTS_SUPPORT_CAPTUREDLOG_H
#define ZPA_TESTS_SUPPORT_CAPTUREDLOG_H

#include <Basics/Logging.h>

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
    void Clear();
};

}  // namespace ZPA::Testing

#endif
