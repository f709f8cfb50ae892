// A message's format together with the line that wrote it.
#ifndef ZPA_SOURCE_INTERNAL_MESSAGE_H
#define ZPA_SOURCE_INTERNAL_MESSAGE_H

#include <cstddef>

namespace ZPA {

// Default arguments are evaluated where a Message is made: at the call that passes its text.
struct Message {
    Message(wchar_t const* text, char const* source = __builtin_FILE(), int at = __builtin_LINE())
        : format(text), file(source), line(at) {}
    wchar_t const* format;
    char const* file;
    int line;
};

// The name of a source file as wide text; its folder is of no interest to the log.
class WideFileName {
public:
    explicit WideFileName(char const* path) {
        char const* name = path;
        for (char const* at = path; *at; ++at)
            if (*at == '/' || *at == '\\') name = at + 1;
        std::size_t size = 0;
        for (; name[size] && size + 1 < kSize; ++size) text_[size] = static_cast<unsigned char>(name[size]);
        text_[size] = 0;
    }
    wchar_t const* Text() const { return text_; }

private:
    static constexpr std::size_t kSize = 64;
    wchar_t text_[kSize];
};

}  // namespace ZPA

#endif
