// What primitives answer, and the shapes they take.
#ifndef ZPA_PRIMITIVES_STATUS_H
#define ZPA_PRIMITIVES_STATUS_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace ZPA {

// 0 is success, anything else a failure.
enum Status : int {
    kDone = 0,
    kBadSize = -5,
    kBadArgument = -6,
    kNullPointer = -8,
    kNoMemory = -9,
    kBadIndex = -11,
    kNoPrimitive = -12,
    kEmptyMask = -33,
    kAnchorOutside = -34,
};

struct Size {
    int width;
    int height;
};

// Rows of an image: a pointer and a step in bytes; rows[y] is the start of row y.
template <typename T> struct Rows {
    T* first;
    std::ptrdiff_t step;

    T* operator[](std::ptrdiff_t y) const {
        using Byte = std::conditional_t<std::is_const_v<T>, unsigned char const, unsigned char>;
        return reinterpret_cast<T*>(reinterpret_cast<Byte*>(first) + y * step);
    }
};

}  // namespace ZPA

#endif
