// Type names as a person writes them, alike with every compiler.
#ifndef ZPA_SOURCE_INTERNAL_TYPENAME_H
#define ZPA_SOURCE_INTERNAL_TYPENAME_H

#include <string>
#include <typeinfo>

namespace ZPA {

// "unsigned short", "ZPA::ZPA_Image<unsigned short>".
std::string TypeName(std::type_info const& type);

}  // namespace ZPA

#endif
