// Checks of arguments that numerical routines share.
#ifndef ZPA_SOURCE_INTERNAL_ARGUMENTS_H
#define ZPA_SOURCE_INTERNAL_ARGUMENTS_H

#include "Source/Internal/Frame.h"

namespace ZPA {

// Reports a null pointer with code 2; true if there is one.
template <typename... Pointers> bool AnyNull(Message message, Pointers const*... pointers) {
    if (((pointers != nullptr) && ...)) return false;
    Report(SOLVANE_NULL_POINTER, message);
    return true;
}

}  // namespace ZPA

#endif
