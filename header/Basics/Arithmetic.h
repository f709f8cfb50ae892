// Arithmetic on whole images: image with image, image with a constant, and the matrix product.
#ifndef ZPA_BASICS_ARITHMETIC_H
#define ZPA_BASICS_ARITHMETIC_H

#include <Basics/CoreTypes.h>

/// @file
/// Pixels are combined one by one: result(x, y) = first(x, y) op second(x, y). Served are all element types,
/// and both operands have the same one.
///
/// What happens at the limits of an element is each operation's own: only Add of 8- and 16-bit images
/// saturates, everything else on integers wraps around. Integer quotients are cut toward zero. DIVIDING AN
/// INTEGER BY ZERO IS NOT GUARDED: the processor's fault (SIGFPE) ends the program, so the caller must not
/// pass zero. Floating point follows IEEE 754; its division by zero gives infinity or not-a-number.
///
/// The output. A null `output` means in place: the result replaces the pixels of the first operand. An output
/// with a null pixel pointer is created as ValidateImageBuffer does it, from the first operand, stride
/// included; it belongs to the caller, who frees it with FreePixels or `delete[]`, and is freed, with the
/// pointer null again, if the operation fails after that. An output with pixels must have the first operand's
/// width and height; its own stride is used, its type is neither compared nor changed, and its padding is not
/// touched. It may not have the pixels of the first operand, may have those of the second with the same
/// stride, and may not overlap an operand otherwise.
///
/// The templates are the cores of the operations, with the in-place flag as an argument; in place they ignore
/// `output`. All answer 0 when done, and otherwise, in this order:
///
/// - 4 "Input images have different dimensions."
/// - 4 "At least one input image is NULL." (a null pixel pointer); with a constant: "Input image can not be
///   NULL."
/// - 5 "Failed of ValidateImageBuffer when validate buffer of output image.", logged on top of the reason
/// - 7 "The elements of the first image are too narrow." An image whose type has smaller elements than those
///   worked on; likewise "second image" and "output image".
/// - 7 "The first image's rows overlap." A stride below the width, with more than one row; likewise for
///   the others. Reading an image of 8 bits per pixel or less, of positive stride, is possible.
/// - 999 "Unexpected exception."
///
/// Images of no width or height are done at once, except where a primitive refuses them. Cost: one pass at
/// the speed of memory for most. On the caller's thread, but for large images in Add and for the matrix
/// product, which use the threads of the OpenMP runtime. No state; different images may be worked on at once.

namespace ZPA {

/// first + second. 8-bit unsigned, 16-bit and 32-bit float images go to ipp_add, where integers saturate (200
/// + 100 is 255 in a byte); others go to template_add, where they wrap around.
///
/// @retval 0  Done.
/// @retval 4  "Input images are different datatypes."
/// @retval 6  "Unsupported image datatype."
/// Others as those of ipp_add and template_add.
ZPA_C_API SOLVANE_RETURNCODE Add(ImageAttributes first, ImageAttributes second, ImageAttributes* output);

/// first - second, wrapping around.
///
/// @retval 0    Done.
/// @retval 4    "Input images are different datatypes."
/// @retval 999  Any other type; nothing is logged.
/// Others as those of template_sub.
ZPA_C_API SOLVANE_RETURNCODE Sub(ImageAttributes first, ImageAttributes second, ImageAttributes* output);

/// first * second, pixel by pixel and wrapping around: EXCEPT that floating-point images with an output are
/// multiplied as matrices, by ipp_mul. Only in place are their pixels multiplied.
///
/// @retval 0  Done.
/// @retval 4  "Input images are different datatypes."
/// @retval 6  "Unsupported image datatype."
/// Others as those of template_mulp and ipp_mul.
ZPA_C_API SOLVANE_RETURNCODE MulP(ImageAttributes first, ImageAttributes second, ImageAttributes* output);

/// first / second. See above for zero divisors.
///
/// @retval 0    Done.
/// @retval 4    "Input images are different datatypes."
/// @retval 999  Any other type; nothing is logged.
/// Others as those of template_divp.
ZPA_C_API SOLVANE_RETURNCODE DivP(ImageAttributes first, ImageAttributes second, ImageAttributes* output);

/// The matrix product of two floating-point images, by ipp_mul.
///
/// @retval 0  Done.
/// @retval 4  "Input images are different datatypes."
/// @retval 6  "Unsupported image datatype."
/// @retval 6  `output` is null: "In place multipy not supportednow."
/// Others as those of ipp_mul.
ZPA_C_API SOLVANE_RETURNCODE Mul(ImageAttributes first, ImageAttributes second, ImageAttributes* output);

/// image + constant, wrapping around for all integer types (200 + 100 is 44 in a byte, unlike in Add).
///
/// @param image     The pixels, of any type.
/// @param constant  One value of the image's element type; read only.
/// @param output    The result; null to write it over the image.
///
/// @retval 0    Done.
/// @retval 4    A null constant: "ZPA::AddC(): nput data cannot be NULL." (sic)
/// @retval 999  Any other type; nothing is logged.
/// Others as those of template_addc.
ZPA_C_API SOLVANE_RETURNCODE AddC(ImageAttributes image, void* constant, ImageAttributes* output);

/// image - constant, wrapping around. As AddC, with "ZPA::SubC(): nput data cannot be NULL.".
ZPA_C_API SOLVANE_RETURNCODE SubC(ImageAttributes image, void* constant, ImageAttributes* output);

/// image * constant, pixel by pixel and wrapping around. As AddC, with "ZPA::MulC(): nput data cannot be
/// NULL.".
ZPA_C_API SOLVANE_RETURNCODE MulC(ImageAttributes image, void* constant, ImageAttributes* output);

/// image / constant. As AddC, with "ZPA::DivC(): nput data cannot be NULL."; see above for zero.
ZPA_C_API SOLVANE_RETURNCODE DivC(ImageAttributes image, void* constant, ImageAttributes* output);

/// The size of each pixel without its sign. The most negative integer has none of its width and stays: -128
/// in 8 bits. Not-a-number keeps its bits but for the sign.
///
/// Unsigned images are copied: nothing is done in place, and to an output one block of width * height pixels
/// is copied WITHOUT REGARD TO STRIDES, which is right only where neither image has padding.
///
/// @retval 0  Done.
/// @retval 6  "Abs not support input type."
/// @retval 4  "At least one input image is NULL."
/// Others as those of template_abs.
ZPA_C_API SOLVANE_RETURNCODE Abs(ImageAttributes image, ImageAttributes* output);

/// The saturating core of Add, for eByte, eInt16, eUInt16, and the plain one for eSingle. Takes its type from
/// the first image; failures as above, and:
///
/// @retval 5    Nothing to add (a width or height below 1): "Add(): ippiAdd. code -5"
/// @retval 5    The types of template_add: "Add(): ippiAdd. code -12"; any other: "Add(): ippiAdd. code -2"
/// @retval 999  "ipp_add(): Unexpected exception."
ZPA_C_API SOLVANE_RETURNCODE ipp_add(ImageAttributes first, ImageAttributes second, ImageAttributes* output,
                                     bool inPlace);

/// The matrix product first * second of images of type eSingle or eDouble: the sum over k of first(k, y) *
/// second(x, k). The output is as wide as the second image and as high as the first.
///
/// Every element is summed in the order of k in its own type, by fused multiply-adds where the processor has
/// them: it depends neither on the number of threads nor on the rest of the matrices. Memory for packed parts
/// of the images is taken for the time of the call, unless they are small.
///
/// STRIDES ARE IGNORED FOR eDouble: each of the three images is taken to have rows without padding.
///
/// @param first   The matrix on the left.
/// @param second  The matrix on the right.
/// @param output  In and out. With a null pixel pointer it becomes a copy of the second image's description
///                with the first one's height, with new pixels that belong to the caller; they are freed, and
///                the pointer is null again, if the operation fails after that. Its pixels lie apart from those
///                of the inputs: what overlaps them in part is not refused, and undefined.
///
/// @retval 0    Done.
/// @retval 4    The first width is not the second height: "Incorrect dimensions."
/// @retval 4    A null input: "At least one input image is NULL."
/// @retval 4    `output` is null, or has the pixels of an input: "Output is NULL and in-place operation not
///              supported"
/// @retval 1    The output cannot be allocated; its pixel pointer is null.
/// @retval 4    "Source and destination image must be same size."
/// @retval 6    "ipp_mul():Unsupported image datatype."
/// @retval 7    Elements too narrow or rows that overlap, as above, in any of the images.
/// @retval 5    "ipp_mul(): ipp_mul. code -5" where a width or height is below 1, and -9 without memory for
///              the packed parts.
/// @retval 999  "ipp_mul(): Unexpected exception."
ZPA_C_API SOLVANE_RETURNCODE ipp_mul(ImageAttributes first, ImageAttributes second, ImageAttributes* output);

/// The wrapping core of Add, for T of `char`, `int`, `unsigned int` and `double`.
template <typename T>
ZPA_API SOLVANE_RETURNCODE template_add(ImageAttributes first, ImageAttributes second,
                                        ImageAttributes* output, bool inPlace);

/// The core of Sub, for T of `char`, `unsigned char`, `short`, `unsigned short`, `int`, `unsigned int`,
/// `float` and `double`, as all below.
template <typename T>
ZPA_API SOLVANE_RETURNCODE template_sub(ImageAttributes first, ImageAttributes second,
                                        ImageAttributes* output, bool inPlace);

/// The product pixel by pixel, of all types.
template <typename T>
ZPA_API SOLVANE_RETURNCODE template_mulp(ImageAttributes first, ImageAttributes second,
                                         ImageAttributes* output, bool inPlace);

/// The core of DivP.
template <typename T>
ZPA_API SOLVANE_RETURNCODE template_divp(ImageAttributes first, ImageAttributes second,
                                         ImageAttributes* output, bool inPlace);

/// The core of AddC.
/// A null constant is refused after the other checks with 2, "The constant is NULL."
template <typename T>
ZPA_API SOLVANE_RETURNCODE template_addc(ImageAttributes image, T* constant, ImageAttributes* output,
                                         bool inPlace);

/// The core of SubC; arguments as those of template_addc.
template <typename T>
ZPA_API SOLVANE_RETURNCODE template_subc(ImageAttributes image, T* constant, ImageAttributes* output,
                                         bool inPlace);

/// The core of MulC; arguments as those of template_addc.
template <typename T>
ZPA_API SOLVANE_RETURNCODE template_mulpc(ImageAttributes image, T* constant, ImageAttributes* output,
                                          bool inPlace);

/// The core of DivC; arguments as those of template_addc.
template <typename T>
ZPA_API SOLVANE_RETURNCODE template_divpc(ImageAttributes image, T* constant, ImageAttributes* output,
                                          bool inPlace);

/// The core of Abs, for T of `char`, `short`, `int`, `float` and `double`.
/// @retval 4  "At least one input image is NULL."
/// Others as above.
template <typename T>
ZPA_API SOLVANE_RETURNCODE template_abs(ImageAttributes image, ImageAttributes* output, bool inPlace);

}  // namespace ZPA

#endif
