// How a path falls apart into folder, stem and extension.
#ifndef ZPA_SOURCE_INTERNAL_PATH_H
#define ZPA_SOURCE_INTERNAL_PATH_H

#include <string_view>

namespace ZPA {

template <typename Char> struct PathParts {
    std::basic_string_view<Char> folder;     // with the separator that ends it
    std::basic_string_view<Char> stem;       // the name up to its last dot
    std::basic_string_view<Char> extension;  // the last dot and what follows
};

// "/", "\" and the colon of a drive end a folder on every platform, since names travel between them.
template <typename Char> PathParts<Char> SplitPath(std::basic_string_view<Char> path) {
    std::size_t name = 0;
    if (path.size() >= 2 && path[1] == Char(':')) name = 2;
    for (std::size_t i = name; i < path.size(); ++i)
        if (path[i] == Char('/') || path[i] == Char('\\')) name = i + 1;
    std::basic_string_view<Char> const file = path.substr(name);
    std::size_t const dot = file.rfind(Char('.'));
    std::size_t const stem = dot == file.npos ? file.size() : dot;
    return {path.substr(0, name), file.substr(0, stem), file.substr(stem)};
}

}  // namespace ZPA

#endif
