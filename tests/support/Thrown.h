// What calls throw, as text.
#ifndef ZPA_TESTS_SUPPORT_THROWN_H
#define ZPA_TESTS_SUPPORT_THROWN_H

#include <string>
#include <type_traits>

namespace ZPA::Testing {

// The text of the exception that a call throws, which is of this type; empty if it throws none.
template <typename Exception, typename Call> std::string Thrown(Call const& call) {
    try {
        call();
    } catch (Exception const& exception) {
        if constexpr (std::is_same_v<Exception, char const*>)
            return exception;
        else
            return exception.what();
    }
    return "";
}

}  // namespace ZPA::Testing

#endif
