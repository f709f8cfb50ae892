// From type codes to types.
#ifndef ZPA_SOURCE_INTERNAL_DISPATCH_H
#define ZPA_SOURCE_INTERNAL_DISPATCH_H

#include <Basics/CoreTypes.h>

namespace ZPA {

// The only table from C++ type to type code: a line per type. `long` counts where it has 32 bits; where it
// has 64, no element type has its size.
template <typename T> inline constexpr eTypeCode TypeCodeOf = eUnknown;
template <> inline constexpr eTypeCode TypeCodeOf<char> = eSByte;
template <> inline constexpr eTypeCode TypeCodeOf<signed char> = eSByte;
template <> inline constexpr eTypeCode TypeCodeOf<unsigned char> = eByte;
template <> inline constexpr eTypeCode TypeCodeOf<short> = eInt16;
template <> inline constexpr eTypeCode TypeCodeOf<unsigned short> = eUInt16;
template <> inline constexpr eTypeCode TypeCodeOf<int> = eInt32;
template <> inline constexpr eTypeCode TypeCodeOf<unsigned int> = eUInt32;
template <> inline constexpr eTypeCode TypeCodeOf<long> = sizeof(long) == 4 ? eInt32 : eUnknown;
template <> inline constexpr eTypeCode TypeCodeOf<unsigned long> = sizeof(long) == 4 ? eUInt32 : eUnknown;
template <> inline constexpr eTypeCode TypeCodeOf<float> = eSingle;
template <> inline constexpr eTypeCode TypeCodeOf<double> = eDouble;

template <typename T> struct Element { using type = T; };

// Runs core(Element<T>) for the served T that `type` names, or else otherwise().
template <typename... Served, typename Core, typename Otherwise>
[[nodiscard]] SOLVANE_RETURNCODE Dispatch(eTypeCode type, Core const& core, Otherwise const& otherwise) {
    SOLVANE_RETURNCODE code = SOLVANE_OK;
    bool const served = ((type == TypeCodeOf<Served> && (code = core(Element<Served>{}), true)) || ...);
    return served ? code : otherwise();
}

}  // namespace ZPA

#endif
