// Connected regions: fills, and holes closed.
#ifndef ZPA_BASICS_REGIONS_H
#define ZPA_BASICS_REGIONS_H

#include <Basics/CoreTypes.h>

/// @file
/// Pixels are connected through their four neighbours if `connectivity` is 4, and through all eight for any
/// other value. Work memory, about half a byte a pixel, lives for the call. Checks are made in the order in
/// which the codes are listed.

namespace ZPA {

/// Replaces the pixel at the seed, and all pixels of its value that are connected with it, by another value.
///
/// Cost: proportional to the rows that the region reaches, whatever its shape; no recursion.
///
/// @param image         Changed in place: eByte or eUInt16.
/// @param seedX         Column of the seed.
/// @param seedY         Row of the seed.
/// @param newValue      Cut to the low bits of the image's type.
/// @param connectivity  4, or anything else for eight neighbours.
///
/// @retval 0  Done.
/// @retval 6  No element type at all: "Unsupported image datatype."
/// @retval 5  No size: "ippiFloodFillGetSize failed. code -5"
/// @retval 1  No memory: "template_FloodFill: Memory allocation failed for %%d bytes."
/// @retval 5  "ippiFloodFill_nCon failed. code %%d": -8 the pixels are null, -11 the seed lies outside, -12
/// the type is
///            neither eByte nor eUInt16.
/// @retval 7  The image's rows overlap: "The image's rows overlap."
ZPA_C_API SOLVANE_RETURNCODE FloodFill(ImageAttributes image, int seedX, int seedY, int newValue,
                                       int connectivity);

/// Closes the holes of a mask or of a labelled image: zeros that no path of zeros connects with the border.
///
/// A hole takes the value of the nearest pixel before it, in its row or at the end of an earlier one, that is
/// not zero: the value of a mask's foreground, or a label beside it. The largest value of the type (255 or
/// 65535) serves as a marker for the outside meanwhile: FOREGROUND OF THAT VALUE that is connected with the
/// border, directly or through the outside, is cleared.
///
/// Cost: a few passes over the image, however many holes there are.
///
/// @param image         Changed in place: eByte or eUInt16. Without width or height nothing is touched.
/// @param connectivity  Of the outside: 4, or anything else for eight neighbours.
///
/// @retval 0  Done.
/// @retval 6  "Unsupported image datatype."
/// @retval 2  "The input image had a NULL buffer pointer."
/// @retval 7  "The image's rows overlap."
/// @retval 5  A fill failed, as it does without memory; the log names the steps, the last with
/// "template_FloodBorderAreas
///            to % failed.". The image keeps what was done.
ZPA_C_API SOLVANE_RETURNCODE FillHoles(ImageAttributes image, int connectivity);

/// The core of FloodFill, for T of `unsigned char` and `unsigned short`. Narrower elements are refused with 7,
/// "The image's elements are too narrow.", after the rows; likewise by the two cores below. What a log callback
/// throws passes through all three.
template <typename T>
ZPA_API SOLVANE_RETURNCODE template_FloodFill(ImageAttributes image, int seedX, int seedY, T newValue,
                                              int connectivity);

/// The core of FillHoles, for T of `unsigned char` and `unsigned short`.
template <typename T> ZPA_API SOLVANE_RETURNCODE template_FillHoles(ImageAttributes image, int connectivity);

/// Replaces the pixels of value `background` on the border of an image, and those connected with them, by
/// `newValue`: what fills from the top and bottom pixel of each column, and then the left and right pixel of
/// each row, would do. For T of `unsigned char` and `unsigned short`.
///
/// @retval 0  Done, or the image has no width or height.
/// @retval 2  "The input image had a NULL buffer pointer."
/// @retval 7  "The image's rows overlap."
/// @retval 5  "FloodFill top border background failed."
template <typename T>
ZPA_API SOLVANE_RETURNCODE template_FloodBorderAreas(ImageAttributes image, T background, T newValue,
                                                     int connectivity);

}  // namespace ZPA

#endif
