// The elements that a mask selects, next to each other.
#ifndef ZPA_PRIMITIVES_COPYSELECTED_H
#define ZPA_PRIMITIVES_COPYSELECTED_H

#include <cstddef>

namespace ZPA {

// Copies the elements whose mask element is not zero, and returns how many. `selected` has room for `count`.
// Every element is written and most are overwritten: a branch would be guessed wrong half of the time.
template <typename T, typename Mask>
std::ptrdiff_t CopySelected(T const* row, Mask const* mask, std::ptrdiff_t count, T* selected) {
    std::ptrdiff_t found = 0;
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        selected[found] = row[x];
        found += mask[x] != 0;
    }
    return found;
}

}  // namespace ZPA

#endif
