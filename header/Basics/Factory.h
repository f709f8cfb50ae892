// Images and buffers made from one line of text.
#ifndef ZPA_BASICS_FACTORY_H
#define ZPA_BASICS_FACTORY_H

#include <Basics/CoreTypes.h>
#include <Basics/SmartPointer.h>

/// @file
/// A factory id is a word and decimal numbers, set apart by dots:
///
/// - "image.", then type code, width, height, stride, bits per pixel and pixel spacing, as in
///   "image.8.640.480.0.12.0". Types: eSByte, eByte, eInt16, eUInt16 and eDouble.
/// - "buffer.", then type code and size, as in "buffer.14.256". Types: those of images, and eInt32.
///
/// Dots in a row count as one. A number is read as far as it goes: white space, a sign, digits; without
/// digits it is 0, and one that 32 bits cannot hold becomes the nearest that they can. Numbers may be missing
/// at the end, and what follows the last one is ignored. The factory keeps nothing, and any thread may use
/// it.

namespace ZPA {

/// Makes an image or a buffer whose zeroed elements belong to it.
///
/// eSByte elements are `char`: the object is a ZPA_Image<char> or ZPA_Buffer<char>. An image's stride of 0
/// stands for its width.
///
/// @param factoryId  What to make.
/// @param object     Out: the object, which the caller holds through a ZPA_Ptr or deletes; null on every
///                   failure.
///
/// @retval 0    Done.
/// @retval 2    A pointer is null: "Null pointer(s)."
/// @retval 4    Neither word begins the id: "Unknown factoryid (`id`)."
/// @retval 4    Width, height or size is 0 or missing: "image factoryid (`id`) is invalid." or
///              "buffer factoryid (`id`) is invalid."
/// @retval 4    Another type: "Unknown image datatype in factoryid (`id`)." or
///              "Unknown buffer datatype in factoryid (`id`)."
/// @retval 999  A negative number where ZPA_Image or ZPA_Buffer takes none, a stride below the width of more
///              than 8 bits, or no memory: "Unexpected exception."
ZPA_C_API SOLVANE_RETURNCODE ZPA_CreateEx(char const* factoryId, ISolvane_Object** object);

/// Makes an image or a buffer as ZPA_CreateEx does.
/// @return the object, or null where ZPA_CreateEx fails.
ZPA_C_API ISolvane_Object* ZPA_Create(char const* factoryId);

/// Reads the numbers of an image's factory id. Any word may stand ahead of them.
///
/// @param factoryId   The id.
/// @param attributes  In and out: fields whose numbers are missing stay, as does `buffer`.
///
/// @retval 0  Done; nothing is checked.
/// @retval 2  A pointer is null; nothing is logged.
ZPA_C_API SOLVANE_RETURNCODE ParseImageFactoryString(char const* factoryId, ImageAttributes* attributes);

/// Reads the numbers of a buffer's factory id. Any word may stand ahead of them.
///
/// @param factoryId   The id.
/// @param attributes  In and out: fields whose numbers are missing stay, as does `buffer`.
///
/// @retval 0  Done; nothing is checked.
/// @retval 2  A pointer is null; nothing is logged.
ZPA_C_API SOLVANE_RETURNCODE ParseBufferFactoryString(char const* factoryId, BufferAttributes* attributes);

}  // namespace ZPA

#endif
