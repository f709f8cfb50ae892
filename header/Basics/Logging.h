// The one diagnostic channel: callbacks, the event log, and scopes that report entry, exit and time.
#ifndef ZPA_BASICS_LOGGING_H
#define ZPA_BASICS_LOGGING_H

#include <Basics/CoreTypes.h>
#include <ctime>
#include <string>

/// @file
/// Formats are wide and read alike on every platform: `%%s` and `%%ls` take wide text, `%%S` and `%%hs`
/// narrow text, `%%p` prints bare upper-case hexadecimal as wide as a pointer. Numbers are as in `printf`. A
/// null text prints as "(null)"; a narrow byte above 127 prints as the character of that number; `%%n` prints
/// nothing and writes nothing. A message is cut to 511 characters.
///
/// Logging never fails towards its caller. It allocates nothing, except in the two scope classes.

/// This place in the source, as the two first arguments of ZPA_Logging's operations.
#define ZPA_LOG_HERE ZPA_LOG_WIDE_(__FILE__), __LINE__
/// @cond
#define ZPA_LOG_WIDE_(text) ZPA_LOG_WIDE_TEXT_(text)
#define ZPA_LOG_WIDE_TEXT_(text) L##text
/// @endcond

namespace ZPA {

/// What a message is about. Categories 0 to 22 have a flag each for information and for debugging; those
/// without a name are free for callers.
enum LogCategory : std::int32_t {
    eLogFactory = 2,    ///< The object factory.
    eLogRegions = 4,    ///< Labelling of regions.
    eLogImage = 15,     ///< New memory or shape in images and buffers.
    eLogTiming = 16,    ///< CodeBlockTimer.
    eLogFunction = 17,  ///< Entry and exit of the exported operations, and what they tell on their way.
    eLogMemory = 20,    ///< Allocations and reference counts.
    eLogDump = 22,      ///< ZPA_Logging::LogDump.
    eLogAll = 23        ///< All at once but 1, 20 and 22, which are switched one at a time.
};

/// Receives a message. One callback runs at a time, process-wide. It may log, on its own thread; one that
/// waits for another thread that logs will wait for ever.
///
/// @param location  File and line, as "name.ext(line)"; empty if the message has none. Valid during the call.
/// @param category  The LogCategory; for the error callback, the return code.
/// @param message   The text. Valid during the call.
using LogCallback = void (*)(wchar_t const* location, int category, wchar_t const* message);

/// The logging facade. Without callbacks, errors and warnings go to the operating system's event log and the
/// rest vanishes; all flags are off when the library loads. Setting callbacks and flags belongs to set-up,
/// before other threads call the library.
///
/// In all four operations `source` is the path of the file that logs, of which its name is shown, and may be
/// null; a null `format` makes the call do nothing. ZPA_LOG_HERE gives both arguments of a place.
class ZPA_API ZPA_Logging {
public:
    /// Reports an error: to the error callback, else to the event log.
    /// @return `code`, whatever became of the text, so that a check can log and return in one step.
    static SOLVANE_RETURNCODE LogError(wchar_t const* source, int line, int code, wchar_t const* format, ...);
    /// Reports a warning: to the warning callback, else to the event log.
    /// @return 0.
    static SOLVANE_RETURNCODE LogWarning(wchar_t const* source, int line, LogCategory category,
                                         wchar_t const* format, ...);
    /// Tells the info callback, if there is one and the category's log flag is set.
    /// @return 0.
    static SOLVANE_RETURNCODE LogInfo(wchar_t const* source, int line, LogCategory category,
                                      wchar_t const* format, ...);
    /// Tells the debug callback, if there is one and the category's debug flag is set.
    /// @return 0.
    static SOLVANE_RETURNCODE LogDebug(wchar_t const* source, int line, LogCategory category,
                                       wchar_t const* format, ...);

    /// Tells the debug callback of an image, under eLogDump: "Image," and its type ("eByte", or "eUInt16" for
    /// every other type), pixel pointer, width, height and label. A null label or pixel pointer tells
    /// nothing.
    ///
    /// The finished line is used as a format once more, so a "%" in the label is read as a conversion; it
    /// finds no argument, and prints 0 or "(null)". Write "%%" for a percent sign.
    /// @return 0.
    static SOLVANE_RETURNCODE LogDump(ImageAttributes image, wchar_t const* label);

    /// Sets the log flag of a category, or with eLogAll of all but 1, 20 and 22.
    /// @retval 0  Done.
    /// @retval 3  No such category: "Invalid log category."
    static SOLVANE_RETURNCODE EnableLog(LogCategory category, bool enabled);
    /// Sets the debug flag of a category, or with eLogAll of all but 1, 20 and 22.
    /// @retval 0  Done.
    /// @retval 3  No such category: "Invalid log category."
    static SOLVANE_RETURNCODE EnableDebug(LogCategory category, bool enabled);
    /// True if the category's log flag and an info callback are set. Two loads: cheap enough for any inner
    /// loop.
    static bool IsLogEnabled(LogCategory category);
    /// True if the category's debug flag and a debug callback are set. Two loads, as IsLogEnabled.
    static bool IsDebugEnabled(LogCategory category);

    /// Sets the callback for information; null removes it.
    /// @return 0.
    static SOLVANE_RETURNCODE SetInfoCallback(LogCallback callback);
    /// Sets the callback for warnings; null sends them to the event log.
    /// @return 0.
    static SOLVANE_RETURNCODE SetWarningCallback(LogCallback callback);
    /// Sets the callback for errors; null sends them to the event log.
    /// @return 0.
    static SOLVANE_RETURNCODE SetErrorCallback(LogCallback callback);
    /// Sets the callback for debugging; null removes it.
    /// @return 0.
    static SOLVANE_RETURNCODE SetDebugCallback(LogCallback callback);
};

/// Logs the standard line of a failed allocation, "`context`: Memory allocation failed for `bytes` bytes."
/// @return 1.
ZPA_C_API SOLVANE_RETURNCODE LogMemoryError(wchar_t const* source, int line, wchar_t const* context,
                                            int bytes);

/// Reports to the debug log that a function is entered, and when the object dies, that it is left. Costs two
/// loads while the category's debug flag or the callback is not set.
class ZPA_API EntryExitLogging {
public:
    /// Logs "Entering function `name`".
    /// @param name      Must outlive this object, as a literal does.
    /// @param category  The category to log under.
    EntryExitLogging(wchar_t const* name, LogCategory category);
    /// Logs "Entering function `name` `details`".
    ///
    /// The details are cut to as many characters as `format` itself has, however long they would be.
    /// @param name      Must outlive this object, as a literal does.
    /// @param category  The category to log under.
    /// @param format    What the details look like.
    EntryExitLogging(wchar_t const* name, LogCategory category, wchar_t const* format, ...);
    /// Logs "Exiting function `name`".
    virtual ~EntryExitLogging();

private:
    LogCategory category_;
    wchar_t const* name_;
};

/// Where a CodeBlockTimer reports.
enum TIMING_LOGGING_LEVEL : std::int32_t {
    eTimingDebug = 0,  ///< To the debug log.
    eTimingInfo = 1    ///< To the information log, as any other value.
};

/// Reports the processor time of the whole process between its construction and its destruction, under
/// eLogTiming: "`name` took 0.123 seconds."
class ZPA_API CodeBlockTimer {
public:
    /// Starts the clock, once the name is formed.
    /// @param level   Where to report.
    /// @param format  The name of what is measured.
    CodeBlockTimer(TIMING_LOGGING_LEVEL level, wchar_t const* format, ...);
    CodeBlockTimer(CodeBlockTimer const&);             ///< A second report with the same start.
    CodeBlockTimer& operator=(CodeBlockTimer const&);  ///< A second report with the same start.
    /// Stops the clock and reports.
    ~CodeBlockTimer();

private:
    std::clock_t start_;
    std::wstring name_;
    TIMING_LOGGING_LEVEL level_;
};

}  // namespace ZPA

#endif
