// Any logical function of two images, as a truth table.
#ifndef ZPA_BASICS_LOGICALPIXELOP_H
#define ZPA_BASICS_LOGICALPIXELOP_H

#include <Basics/CoreTypes.h>

namespace ZPA {

/// output(x, y) = table[(first(x, y) is not zero) + 2 * (second(x, y) is not zero)].
///
/// The table's bytes may have any value: {0, 0, 0, 1} is a logical and, {0, 1, 1, 0} an exclusive or, {0, 1,
/// 0, 0} first-and-not-second, and {0, 0, 0, 200} paints 200 where both are set. A byte is written as it is
/// to any output, never negative. Strides are honoured; padding is not touched.
///
/// Cost: one pass, at the speed of memory where all three elements have one size. On the caller's thread.
///
/// @param first   eByte, eInt16, eUInt16, eInt32 or eUInt32. Floating-point images are refused here;
///                template_LogicalPixelOp takes them.
/// @param second  The same types, which need not be that of the first.
/// @param table   Four bytes; read only.
/// @param output  In and out: the same types; a type of 0 stands for the first image's. With a null pixel
///                pointer an image of that type is created, with stride equal to width, the bits of the type,
///                and the first image's pixel spacing; it belongs to the caller, who frees it with FreePixels
///                or `delete[]`. May have the pixels and stride of an input whose elements have its size, and
///                may not overlap an input otherwise.
///
/// @retval 0    Done.
/// @retval 2    "The output image pointer was NULL."
/// @retval 6    "The first image type is not supported."
/// @retval 6    "The second image type is not supported."
/// @retval 6    "The output image type is not supported."
/// @retval 4    "At least one of the two input image buffers is NULL."
/// @retval 7    "The two input images have different dimensions."
/// @retval 7    "The output image dimensions are different than the input."
/// @retval 2    "The truth table pointer was NULL."
/// @retval 7    "The first image's rows overlap." A stride below the width, with more than one row; likewise
///              "second image" and "output image". Reading an image of 8 bits per pixel or less, of positive
///              stride, is possible.
/// @retval 999  "Unexpected exception." An output that cannot be created, as one without pixels.
ZPA_C_API SOLVANE_RETURNCODE LogicalPixelOp(ImageAttributes first, ImageAttributes second,
                                            unsigned char* table, ImageAttributes* output);

/// The core of LogicalPixelOp for elements of known types, which the descriptors' types do not choose: T1 of
/// `signed char`, `unsigned char`, `short`, `unsigned short`, `int`, `unsigned int`, `float` and `double`; T2
/// and T3, the output's, of `unsigned char`, `short`, `unsigned short`, `int` and `unsigned int`. Of floating
/// point, 0 and -0 are zero; denormals and not-a-number are not. Failures from the fourth line on, a null
/// output with 2 after them, and:
///
/// @retval 7  "The elements of the first image are too narrow." A descriptor of smaller elements than T1;
///            likewise for the others.
template <typename T1, typename T2, typename T3>
ZPA_API SOLVANE_RETURNCODE template_LogicalPixelOp(ImageAttributes first, ImageAttributes second,
                                                   unsigned char* table, ImageAttributes* output);

}  // namespace ZPA

#endif
