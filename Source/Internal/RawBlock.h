// How blocks of memory get into raw files.
#ifndef ZPA_SOURCE_INTERNAL_RAWBLOCK_H
#define ZPA_SOURCE_INTERNAL_RAWBLOCK_H

#include <Basics/CoreTypes.h>

#include <cstdint>

namespace ZPA {

// dumpRaw for blocks of any size.
[[nodiscard]] SOLVANE_RETURNCODE WriteBlock(void const* data, std::uint64_t bytes, char const* path);

}  // namespace ZPA

#endif
