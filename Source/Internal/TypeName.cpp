// Type names as a person writes them, alike with every compiler.
#include "Source/Internal/TypeName.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace ZPA {

std::string TypeName(std::type_info const& type) {
    struct Free {
        void operator()(char* text) const { std::free(text); }
    };
    int status = 0;
    std::unique_ptr<char, Free> const name(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status));
    return status == 0 ? name.get() : type.name();
}

}  // namespace ZPA
