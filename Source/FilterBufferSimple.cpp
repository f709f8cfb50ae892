// FilterBufferSimple: a causal filter, and what becomes of the output that it is given.
#include <Basics/LinearFilters.h>

#include <algorithm>
#include <memory>
#include <type_traits>

#include "Source/Internal/Convert.h"
#include "Source/Internal/Dispatch.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/Memory.h"
#include "Source/Platform/ExtendedPrecision.h"

namespace ZPA {
namespace {

template <typename T> T Stored(long double sum) {
    if constexpr (std::is_integral_v<T>)
        return static_cast<T>(TruncateToInt32(sum));
    else
        return static_cast<T>(sum);
}

// The weights from the newest element on, over `reach` elements back.
template <typename T> T FilteredElement(T const* newest, float const* weights, std::ptrdiff_t reach) {
    long double sum = 0;
    for (std::ptrdiff_t k = 0; k < reach; ++k) sum += static_cast<long double>(newest[-k]) * weights[k];
    return Stored<T>(sum);
}

template <typename T>
void FilterInto(T* output, T const* input, std::ptrdiff_t count, float const* weights, std::ptrdiff_t taps) {
    [[maybe_unused]] ExtendedPrecision const precision;  // the core is called without the frame too
    std::ptrdiff_t const ramp = std::min(count, taps - 1);
    std::ptrdiff_t i = 0;
    for (; i < ramp; ++i) output[i] = FilteredElement(input + i, weights, i + 1);
    for (; i < count; ++i) output[i] = FilteredElement(input + i, weights, taps);
}

}  // namespace

template <typename T>
SOLVANE_RETURNCODE template_FilterBufferSimple(BufferAttributes input, BufferAttributes filter,
                                               BufferAttributes* output) {
    if (!input.buffer) return Fail(SOLVANE_INVALID_ARGUMENT, L"The input buffer is NULL.");
    if (!filter.buffer) return Fail(SOLVANE_INVALID_ARGUMENT, L"The filter buffer is NULL.");
    if (SizeOfTypeCode(input.type) < int{sizeof(T)})
        return Fail(SOLVANE_SIZE_MISMATCH, L"The elements of the input buffer are too narrow.");
    if (SizeOfTypeCode(filter.type) < int{sizeof(float)})
        return Fail(SOLVANE_UNSUPPORTED_TYPE, L"The filter was not a float filter.");

    auto const filterInto = [&](void* to) {
        FilterInto(static_cast<T*>(to), static_cast<T const*>(input.buffer), input.size,
                   static_cast<float const*>(filter.buffer), std::max(filter.size, 0));
    };
    BufferAttributes const given = output ? *output : input;
    bool const serves = given.buffer && given.type == input.type && given.size >= input.size;
    bool const inPlace = serves && given.buffer == input.buffer;
    if (serves && !inPlace) {
        filterInto(given.buffer);
        return SOLVANE_OK;
    }

    // A buffer for the input's type, which may be wider than T.
    auto const perElement = static_cast<std::uint64_t>(SizeOfTypeCode(input.type)) / sizeof(T);
    std::uint64_t const count =
        input.size < 0 ? kNoSize : static_cast<std::uint64_t>(input.size) * perElement;
    std::unique_ptr<T[]> made(AllocateElements<T>(count));
    bool const hasMemory = made != nullptr;
    if (hasMemory) filterInto(made.get());
    if (!inPlace) {
        // Not before the filter has read: what goes may be the input.
        FreePixels(given.buffer);
        *output = BufferAttributes(input.type, made.release(), input.size);
    } else if (hasMemory) {
        std::copy_n(made.get(), input.size, static_cast<T*>(input.buffer));
    }
    return hasMemory ? SOLVANE_OK : FailMemory(L"FilterBufferSimple", BlockBytes(count, sizeof(T)));
}

#define ZPA_INSTANTIATE(T)                                                       \
    template ZPA_INSTANCE_API SOLVANE_RETURNCODE template_FilterBufferSimple<T>( \
        BufferAttributes, BufferAttributes, BufferAttributes*);
ZPA_INSTANTIATE(char)
ZPA_INSTANTIATE(unsigned char)
ZPA_INSTANTIATE(short)
ZPA_INSTANTIATE(unsigned short)
ZPA_INSTANTIATE(int)
ZPA_INSTANTIATE(unsigned int)
ZPA_INSTANTIATE(float)
ZPA_INSTANTIATE(double)
#undef ZPA_INSTANTIATE

SOLVANE_RETURNCODE FilterBufferSimple(BufferAttributes input, BufferAttributes filter,
                                      BufferAttributes* output) {
    return Guarded(L"ZPA::FilterBufferSimple", [&] {
        auto const core = [&](auto element) {
            return template_FilterBufferSimple<typename decltype(element)::type>(input, filter, output);
        };
        return Dispatch<char, unsigned char, short, unsigned short, int, unsigned int, float, double>(
            input.type, core, [] { return Fail(SOLVANE_UNSUPPORTED_TYPE, L"Unsupported image datatype."); });
    });
}

}  // namespace ZPA
