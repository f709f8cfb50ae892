// The logging facade: which texts are made, where they go, and in which order the event log is used.
#include <Basics/Logging.h>

#include <atomic>
#include <climits>
#include <cstdarg>
#include <cwchar>
#include <memory>
#include <new>
#include <string_view>

#include "Source/Internal/FormatWide.h"
#include "Source/Internal/LogState.h"
#include "Source/Internal/Path.h"
#include "Source/Platform/Lock.h"

namespace ZPA {
namespace {

constexpr int kCategories = 23;
constexpr std::size_t kTextSize = 512;

constexpr auto kSourceKey = L"SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\ZPA";
constexpr auto kFilterKey = L"SYSTEM\\CurrentControlSet\\Services\\EventLog\\Application\\SOLVANE_IPL";
constexpr auto kTypesSupported = L"TypesSupported";

// One flag a category. Relaxed order is enough: setting flags belongs to set-up, and a line more or less is
// no fault.
using Flags = std::atomic<bool>[kCategories];
using Callback = std::atomic<LogCallback>;

// Where events go, and the source that is registered there.
struct Events {
    EventLog* log = &SystemEventLog();
    EventLog::Source source = nullptr;

    ~Events() { Deregister(); }
    void Deregister() {
        if (source) log->Deregister(source);
        source = nullptr;
    }
};

// All state of this file. It begins as zeros when the library loads. When it is unloaded the lock goes first,
// then the source.
struct State {
    Flags logFlags = {};
    Flags debugFlags = {};
    Events events;
    CriticalSection lock;
    Callback info{nullptr};
    Callback warning{nullptr};
    Callback error{nullptr};
    Callback debug{nullptr};
};
State state;

LogCallback Get(Callback const& callback) { return callback.load(std::memory_order_relaxed); }

bool IsSet(Flags const& flags, LogCategory category) {
    return category >= 0 && category < kCategories && flags[category].load(std::memory_order_relaxed);
}

SOLVANE_RETURNCODE Enable(Flags& flags, LogCategory category, bool enabled) {
    if (category < 0 || category > eLogAll)
        return ZPA_Logging::LogError(ZPA_LOG_HERE, SOLVANE_OUT_OF_RANGE, L"Invalid log category.");
    if (category != eLogAll) {
        flags[category].store(enabled, std::memory_order_relaxed);
        return SOLVANE_OK;
    }
    for (int each = 0; each < kCategories; ++each)
        if (each != 1 && each != eLogMemory && each != eLogDump)
            flags[each].store(enabled, std::memory_order_relaxed);
    return SOLVANE_OK;
}

// "name.ext(line)". Two parts that would not fit together give way to a shorter stem and a null extension,
// which prints as one.
void FormLocation(wchar_t* text, wchar_t const* source, int line) {
    constexpr std::size_t kPart = 256;
    constexpr std::size_t kLineSize = 13;
    constexpr std::size_t kShortStem = 242;
    text[0] = 0;
    if (!source) return;
    auto const parts = SplitPath(std::wstring_view(source));
    wchar_t stem[kPart] = {};
    wchar_t extension[kPart] = {};
    std::size_t const stemSize = parts.stem.copy(stem, kPart - 1);
    std::size_t const extensionSize = parts.extension.copy(extension, kPart - 1);
    bool const tooLong = stemSize + extensionSize + kLineSize > kTextSize;
    if (tooLong) stem[kShortStem] = 0;

    auto const print = [text](wchar_t const* format, ...) {
        std::va_list values;
        va_start(values, format);
        FormatWide(text, kTextSize, format, values);
        va_end(values);
    };
    print(L"%s%s(%d)", stem, tooLong ? nullptr : extension, line);
}

// The two texts of a message, on the stack of whoever logs.
struct Line {
    wchar_t location[kTextSize];
    wchar_t message[kTextSize];
};

// A null `values` stands for none.
void Form(Line& text, wchar_t const* source, int line, wchar_t const* format, std::va_list* values) {
    FormLocation(text.location, source, line);
    if (values)
        FormatWide(text.message, kTextSize, format, *values);
    else
        FormatWide(text.message, kTextSize, format);
}

void Deliver(LogCallback callback, Line const& text, int category) {
    AutoCriticalSection const guard(&state.lock);
    callback(text.location, category, text.message);
}

// Called with the lock held.
void RegisterSource(Events& events) {
    EventLog& log = *events.log;
    bool existed = false;
    EventLog::Key const key = log.CreateKey(kSourceKey, existed);
    if (key && !existed) {
        constexpr std::uint32_t kPathLimit = 0x1FFF;
        constexpr std::uint32_t kAllTypes = 7;
        wchar_t path[kPathLimit + 1];
        std::uint32_t const size = log.ModulePath(path, kPathLimit);
        // Characters where bytes are meant, which stores half the path; readers are used to it.
        log.SetText(key, L"EventMessageFile", path, size + 1);
        log.SetNumber(key, kTypesSupported, kAllTypes);
    }
    if (!events.source) events.source = log.RegisterSource(L"ZPA");
    if (key) log.CloseKey(key);
}

struct Event {
    EventType type;
    std::uint32_t filterBit;
    std::uint32_t id;
};
constexpr Event kError{EventType::Error, 1, 0xC0010002};
constexpr Event kWarning{EventType::Warning, 2, 0x40010001};

void WriteEvent(Event const& event, int category, wchar_t const* message) {
    Events& events = state.events;
    std::uint32_t types = 3;
    events.log->ReadValue(kFilterKey, kTypesSupported, types);
    AutoCriticalSection const guard(&state.lock);
    if (!events.source) RegisterSource(events);
    if ((types & event.filterBit) != 0 && events.source)
        events.log->Report(events.source, event.type, static_cast<std::uint16_t>(category), event.id,
                           message);
}

// Errors and warnings: to the callback, else to the event log.
void Report(Callback const& callback, Event const& event, int category, wchar_t const* source, int line,
            wchar_t const* format, std::va_list* values) {
    if (!format) return;
    Line text;
    Form(text, source, line, format, values);
    if (LogCallback const receiver = Get(callback))
        Deliver(receiver, text, category);
    else
        WriteEvent(event, category, text.message);
}

// Information and debugging: to the callback, if the category's flag is set.
void Tell(Callback const& callback, Flags const& flags, LogCategory category, wchar_t const* source, int line,
          wchar_t const* format, std::va_list* values) {
    LogCallback const receiver = Get(callback);
    if (!format || !receiver || !IsSet(flags, category)) return;
    Line text;
    Form(text, source, line, format, values);
    Deliver(receiver, text, category);
}

}  // namespace

void UseEventLog(EventLog& log) {
    state.events.Deregister();
    state.events.log = &log;
}

SOLVANE_RETURNCODE ZPA_Logging::LogError(wchar_t const* source, int line, int code, wchar_t const* format,
                                         ...) {
    std::va_list values;
    va_start(values, format);
    Report(state.error, kError, code, source, line, format, &values);
    va_end(values);
    return static_cast<SOLVANE_RETURNCODE>(code);
}

SOLVANE_RETURNCODE ZPA_Logging::LogWarning(wchar_t const* source, int line, LogCategory category,
                                           wchar_t const* format, ...) {
    std::va_list values;
    va_start(values, format);
    Report(state.warning, kWarning, category, source, line, format, &values);
    va_end(values);
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE ZPA_Logging::LogInfo(wchar_t const* source, int line, LogCategory category,
                                        wchar_t const* format, ...) {
    std::va_list values;
    va_start(values, format);
    Tell(state.info, state.logFlags, category, source, line, format, &values);
    va_end(values);
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE ZPA_Logging::LogDebug(wchar_t const* source, int line, LogCategory category,
                                         wchar_t const* format, ...) {
    std::va_list values;
    va_start(values, format);
    Tell(state.debug, state.debugFlags, category, source, line, format, &values);
    va_end(values);
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE ZPA_Logging::LogDump(ImageAttributes image, wchar_t const* label) {
    if (!label || !image.buffer || !IsDebugEnabled(eLogDump)) return SOLVANE_OK;
    wchar_t text[kTextSize];
    auto const print = [&text](wchar_t const* format, ...) {
        std::va_list values;
        va_start(values, format);
        FormatWide(text, kTextSize, format, values);
        va_end(values);
    };
    print(L"Image,%ls,%p,%d,%d,%ls", image.type == eByte ? L"eByte" : L"eUInt16", image.buffer, image.width,
          image.height, label);
    Tell(state.debug, state.debugFlags, eLogDump, ZPA_LOG_HERE, text, nullptr);
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE ZPA_Logging::EnableLog(LogCategory category, bool enabled) {
    return Enable(state.logFlags, category, enabled);
}

SOLVANE_RETURNCODE ZPA_Logging::EnableDebug(LogCategory category, bool enabled) {
    return Enable(state.debugFlags, category, enabled);
}

bool ZPA_Logging::IsLogEnabled(LogCategory category) {
    return Get(state.info) && IsSet(state.logFlags, category);
}

bool ZPA_Logging::IsDebugEnabled(LogCategory category) {
    return Get(state.debug) && IsSet(state.debugFlags, category);
}

SOLVANE_RETURNCODE ZPA_Logging::SetInfoCallback(LogCallback callback) {
    state.info = callback;
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE ZPA_Logging::SetWarningCallback(LogCallback callback) {
    state.warning = callback;
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE ZPA_Logging::SetErrorCallback(LogCallback callback) {
    state.error = callback;
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE ZPA_Logging::SetDebugCallback(LogCallback callback) {
    state.debug = callback;
    return SOLVANE_OK;
}

SOLVANE_RETURNCODE LogMemoryError(wchar_t const* source, int line, wchar_t const* context, int bytes) {
    return ZPA_Logging::LogError(source, line, SOLVANE_OUT_OF_MEMORY,
                                 L"%s: Memory allocation failed for %d bytes.", context, bytes);
}

EntryExitLogging::EntryExitLogging(wchar_t const* name, LogCategory category)
    : category_(category), name_(name) {
    if (ZPA_Logging::IsDebugEnabled(category_))
        ZPA_Logging::LogDebug(nullptr, 0, category_, L"Entering function %s", name_);
}

EntryExitLogging::EntryExitLogging(wchar_t const* name, LogCategory category, wchar_t const* format, ...)
    : category_(category), name_(name) {
    if (!ZPA_Logging::IsDebugEnabled(category_)) return;
    std::unique_ptr<wchar_t[]> details;
    if (format) {
        std::size_t const size = std::wcslen(format) + 1;
        details.reset(new (std::nothrow) wchar_t[size]);
        if (details) {
            std::va_list values;
            va_start(values, format);
            FormatWide(details.get(), size, format, values);
            va_end(values);
        } else {
            LogMemoryError(ZPA_LOG_HERE, L"EntryExitLogging constructor",
                           static_cast<int>(size * sizeof(wchar_t)));
        }
    }
    if (details)
        ZPA_Logging::LogDebug(nullptr, 0, category_, L"Entering function %s %s", name_, details.get());
    else
        ZPA_Logging::LogDebug(nullptr, 0, category_, L"Entering function %s", name_);
}

EntryExitLogging::~EntryExitLogging() {
    if (!ZPA_Logging::IsDebugEnabled(category_)) return;
    try {
        ZPA_Logging::LogDebug(nullptr, 0, category_, L"Exiting function %s", name_);
    } catch (...) {
        // A callback's exception must not end the process from here.
    }
}

CodeBlockTimer::CodeBlockTimer(TIMING_LOGGING_LEVEL level, wchar_t const* format, ...)
    : start_(0), level_(level) {
    if (format) {
        constexpr std::size_t kConversion = 512;
        std::size_t size = 1;
        for (wchar_t const* at = format; *at; ++at) size += *at == L'%' ? kConversion + 1 : 1;
        std::unique_ptr<wchar_t[]> const name(new (std::nothrow) wchar_t[size]);
        try {
            if (!name) throw std::bad_alloc();
            std::va_list values;
            va_start(values, format);
            FormatWide(name.get(), size, format, values);
            va_end(values);
            name_ = name.get();
        } catch (std::bad_alloc const&) {
            LogMemoryError(ZPA_LOG_HERE, L"CodeBlockTimer constructor",
                           static_cast<int>(size * sizeof(wchar_t)));
        }
    }
    start_ = std::clock();  // last, so that forming the name is not measured
}

CodeBlockTimer::CodeBlockTimer(CodeBlockTimer const&) = default;
CodeBlockTimer& CodeBlockTimer::operator=(CodeBlockTimer const&) = default;

CodeBlockTimer::~CodeBlockTimer() {
    double const seconds = static_cast<double>(std::clock() - start_) / CLOCKS_PER_SEC;
    constexpr auto kFormat = L"%s took %5.3lf seconds.";
    try {
        if (level_ == eTimingDebug)
            ZPA_Logging::LogDebug(ZPA_LOG_HERE, eLogTiming, kFormat, name_.c_str(), seconds);
        else
            ZPA_Logging::LogInfo(ZPA_LOG_HERE, eLogTiming, kFormat, name_.c_str(), seconds);
    } catch (...) {
        // A callback's exception must not end the process from here.
    }
}

}  // namespace ZPA
