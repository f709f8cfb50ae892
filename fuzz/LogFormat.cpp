// Formats of log lines: any text without values, and any conversion with the value that it asks for.
#include <Basics/Logging.h>

#include "support/Input.h"
#include "support/Limits.h"

using namespace ZPA;

namespace {

// Characters of a wide text in a block of its exact size.
class Wide {
public:
    explicit Wide(std::string const& bytes)
        : text_(static_cast<wchar_t*>(std::malloc((bytes.size() + 1) * sizeof(wchar_t)))) {
        for (std::size_t i = 0; i < bytes.size(); ++i) text_[i] = static_cast<unsigned char>(bytes[i]);
        text_[bytes.size()] = 0;
    }
    ~Wide() { std::free(text_); }
    Wide(Wide const&) = delete;
    Wide& operator=(Wide const&) = delete;
    wchar_t const* Get() const { return text_; }

private:
    wchar_t* text_;
};

template <typename... Values> void LogAll(Fuzz::Input& input, wchar_t const* format, Values... values) {
    Fuzz::LimitedMemory const little(1 << 20, input.Seldom(4) ? input.Choice(3) : -1);
    switch (input.Choice(6)) {
        case 0:
            ZPA_Logging::LogError(L"folder/file.cpp", 1, 4, format, values...);
            return;
        case 1:
            ZPA_Logging::LogWarning(nullptr, -1, eLogImage, format, values...);
            return;
        case 2:
            ZPA_Logging::LogInfo(ZPA_LOG_HERE, static_cast<LogCategory>(input.Number(0, 23)), format,
                                 values...);
            return;
        case 3:
            ZPA_Logging::LogDebug(ZPA_LOG_HERE, static_cast<LogCategory>(input.Number(0, 23)), format,
                                  values...);
            return;
        case 4: {
            EntryExitLogging const scope(L"name", static_cast<LogCategory>(input.Number(0, 23)), format,
                                         values...);
            return;
        }
        default:
            CodeBlockTimer const timer(static_cast<TIMING_LOGGING_LEVEL>(input.Choice(3)), format, values...);
    }
}

// Values for the stars of width and precision go ahead of the conversion's own.
template <typename Value> void LogStarred(Fuzz::Input& input, wchar_t const* format, int stars, Value value) {
    int const first = input.Number(-20, 600), second = input.Number(-20, 600);
    if (stars == 0) LogAll(input, format, value);
    if (stars == 1) LogAll(input, format, first, value);
    if (stars == 2) LogAll(input, format, first, second, value);
}

// One conversion of a type, between two texts.
void LogConversion(Fuzz::Input& input) {
    std::string const ahead = input.Text(static_cast<std::size_t>(input.Choice(8)));
    std::string format;
    for (char const c : ahead) format += c == '%' ? '_' : c;
    format += '%';
    static constexpr char const* kFlags[] = {"", "-", "+", " ", "#", "0", "-0", "+#0", "-+ #0"};
    format += input.OneOf(kFlags);
    int stars = 0;
    static constexpr char const* kWidths[] = {"", "*", "1", "20", "600", "99999999999", "0007"};
    std::string const width = input.OneOf(kWidths);
    static constexpr char const* kPrecisions[] = {"", ".", ".*", ".0", ".3", ".600", ".99999999999"};
    std::string const precision = input.OneOf(kPrecisions);
    stars = (width == "*") + (precision == ".*");
    format += width + precision;

    struct Kind {
        char const* length;
        char const* letters;
        enum { kInt, kLong, kLongLong, kSize, kDouble, kLongDouble, kWide, kNarrow, kPointer } values;
    };
    static constexpr Kind kKinds[] = {
        {"", "diuoxXcC", Kind::kInt},
        {"h", "diuoxXcC", Kind::kInt},
        {"hh", "diuoxX", Kind::kInt},
        {"I32", "diuoxX", Kind::kInt},
        {"l", "diuoxX", Kind::kLong},
        {"ll", "diuoxX", Kind::kLongLong},
        {"I64", "diuoxX", Kind::kLongLong},
        {"I", "diuoxX", Kind::kSize},
        {"z", "diuoxX", Kind::kSize},
        {"t", "diuoxX", Kind::kSize},
        {"j", "diuoxX", Kind::kLong},
        {"", "eEfFgGaA", Kind::kDouble},
        {"L", "eEfFgGaA", Kind::kLongDouble},
        {"", "s", Kind::kWide},
        {"l", "sS", Kind::kWide},
        {"w", "s", Kind::kWide},
        {"", "S", Kind::kNarrow},
        {"h", "sS", Kind::kNarrow},
        {"", "pn", Kind::kPointer},
    };
    Kind const& kind = input.OneOf(kKinds);
    format += kind.length;
    format +=
        kind.letters[static_cast<std::size_t>(input.Choice(static_cast<int>(std::strlen(kind.letters))))];
    format += "|";
    Wide const wide(format);
    std::string const text = input.Text(static_cast<std::size_t>(input.Choice(64)));
    bool const null = input.Seldom(16);
    switch (kind.values) {
        case Kind::kInt:
            return LogStarred(input, wide.Get(), stars, input.Bits<int>());
        case Kind::kLong:
            return LogStarred(input, wide.Get(), stars, input.Bits<long>());
        case Kind::kLongLong:
            return LogStarred(input, wide.Get(), stars, input.Bits<long long>());
        case Kind::kSize:
            return LogStarred(input, wide.Get(), stars, input.Bits<std::size_t>());
        case Kind::kDouble:
            return LogStarred(input, wide.Get(), stars, input.Real());
        case Kind::kLongDouble:
            return LogStarred(input, wide.Get(), stars, static_cast<long double>(input.Real()));
        case Kind::kWide: {
            Wide const value(text);
            return LogStarred(input, wide.Get(), stars, null ? nullptr : value.Get());
        }
        case Kind::kNarrow:
            return LogStarred(input, wide.Get(), stars, null ? nullptr : text.c_str());
        case Kind::kPointer:
            return LogStarred(input, wide.Get(), stars, static_cast<void const*>(&input));
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::ListenToAll();
    Fuzz::SwitchLog(true);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    Fuzz::Input input(bytes, size);
    int const choice = input.Byte();
    if (choice & 1) {
        for (int i = 0; i < 8 && !input.IsEmpty(); ++i) LogConversion(input);
        return 0;
    }
    // A label is the one format that nobody gives values for.
    unsigned char pixel = 0;
    Wide const label(input.Rest());
    ZPA_Logging::LogDump({choice & 4 ? eByte : eUInt16, &pixel, choice, 1, 1, 8, 0}, label.Get());
    return 0;
}
