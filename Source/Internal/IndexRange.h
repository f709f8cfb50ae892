// Which elements of a buffer an operation works on.
#ifndef ZPA_SOURCE_INTERNAL_INDEXRANGE_H
#define ZPA_SOURCE_INTERNAL_INDEXRANGE_H

#include <cstddef>

#include "Source/Internal/Frame.h"

namespace ZPA {

// The elements from *start, or 0, up to but without *end, or the buffer's size; none where the end is not
// behind the start.
class IndexRange {
public:
    // Logs what is refused, and returns its code: a buffer without elements, or a range that leaves it.
    [[nodiscard]] SOLVANE_RETURNCODE Resolve(BufferAttributes const& buffer, int const* start,
                                             int const* end) {
        if (!buffer.buffer) return Fail(SOLVANE_NULL_POINTER, L"The input image had a NULL buffer pointer.");
        std::ptrdiff_t const first = start ? *start : 0, last = end ? *end : buffer.size;
        if (first >= last) return SOLVANE_OK;
        if (first < 0 || last > buffer.size)
            return Fail(SOLVANE_OUT_OF_RANGE, L"The range of indices was out of bounds in the input buffer.");
        first_ = first;
        count_ = last - first;
        return SOLVANE_OK;
    }
    std::ptrdiff_t First() const { return first_; }
    std::ptrdiff_t Count() const { return count_; }

private:
    std::ptrdiff_t first_ = 0;
    std::ptrdiff_t count_ = 0;
};

}  // namespace ZPA

#endif
