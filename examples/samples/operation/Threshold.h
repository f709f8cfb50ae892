// Limits of brightness. The sample of docs/adding-an-operation.md.
#ifndef ZPA_BASICS_THRESHOLD_H
#define ZPA_BASICS_THRESHOLD_H

#include <Basics/CoreTypes.h>

namespace ZPA {

// [sample]
/// Marks the pixels that are as bright as a limit, or brighter: 1 in the output, and else 0.
///
/// Strides are honoured; padding is neither read nor written. Cost: one pass at the speed of memory, on the
/// caller's thread.
///
/// @param image   eByte or eUInt16. Read only.
/// @param limit   Compared whole: one above 255 marks no eByte pixel, one of 0 or less marks all.
/// @param output  In and out. With pixels: eByte, in the image's size and in memory of its own. With a null
///                pixel pointer it becomes an eByte image of 8 bits per pixel without padding, with the image's
///                pixel spacing; its pixels belong to the caller, who frees them with FreePixels or `delete[]`.
///
/// @retval 0    Done.
/// @retval 2    "Threshold(): Null pointer."
/// @retval 6    "Threshold(): The image type is not supported."
/// @retval 7    "Threshold(): The output image has another type or size."
/// @retval 7    "Threshold(): Rows overlap."
/// @retval 999  A width or height below 1 where an output is created, or no memory: "Unexpected exception."
ZPA_C_API SOLVANE_RETURNCODE Threshold(ImageAttributes image, int limit, ImageAttributes* output);
// [sample]

}  // namespace ZPA

#endif
