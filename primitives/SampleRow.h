// Samples of a row at even distances.
#ifndef ZPA_PRIMITIVES_SAMPLEROW_H
#define ZPA_PRIMITIVES_SAMPLEROW_H

#include <cstddef>
#include <cstdint>

namespace ZPA {

// samples[i] becomes row[offset + i * step], offset being from 0 to step - 1. Of the row, step * count
// elements may be read. The samples may begin where the row begins, or before.
void SampleRow(std::uint16_t const* row, int step, int offset, std::uint16_t* samples, std::ptrdiff_t count);

}  // namespace ZPA

#endif
