// The work memory that filters ask for, where it passes the address space.
#include "primitives/Filter.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>

namespace ZPA {
namespace {

// The bytes of the first kernel's bands, and of the second kernel's elements, pass 64 bits.
TEST(FilterPrimitive, HasNoMemoryForWorkBeyondTheAddressSpace) {
    for (Size const kernelSize : {Size{3, INT_MAX}, {INT_MAX, INT_MAX}}) {
        std::uint64_t bytes = 0;
        EXPECT_EQ(ippiFilterGetBufSize_64f_C1R(kernelSize, INT_MAX, &bytes), kDone);
        EXPECT_EQ(bytes, UINT64_MAX);
        float const pixel = 0;
        float result = 0;
        EXPECT_EQ(ippiFilter_32f_C1R(&pixel, 4, &result, 4, {INT_MAX, 1}, &pixel, kernelSize, 0, 0),
                  kNoMemory);
    }
}

}  // namespace
}  // namespace ZPA
