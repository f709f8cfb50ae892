// Operations that copy, set, mask and compare pixels.
#ifndef ZPA_BASICS_PIXELOPERATIONS_H
#define ZPA_BASICS_PIXELOPERATIONS_H

#include <Basics/CoreTypes.h>

/// @file
/// All run to completion on the caller's thread and keep nothing; different images may be worked on at once.
/// Checks are made in the order in which the codes are listed, and a failed one leaves outputs as they were
/// unless it says otherwise. An image of more than one row whose stride is below its width (or is negative)
/// is refused after the listed checks with 7 and a text that names the image; reading one of 8 bits per pixel
/// or less, of positive stride, is possible. All image operations return 999, "Unexpected exception.", where
/// an exception was caught, as it is when an image cannot be allocated.

namespace ZPA {

/// Copies pixels, converting their type.
///
/// Source and destination each have one of the types eByte, eInt16, eUInt16, eInt32, eSingle, eDouble.
/// Integers become wider by their value and narrower by their low bits, without saturation: 300 becomes 44 in
/// a byte, -1 becomes 255. Integers become floating point by the nearest value. Floating point becomes
/// integer by rounding half away from zero to 32 bits (2.5 to 3, -2.5 to -3), and then by the low bits;
/// not-a-number, and what 32 bits cannot hold, count as 0x80000000, whose low bits are 0. Strides are
/// honoured; padding is neither read nor written.
///
/// Cost: one pass, at the speed of memory for most pairs. Large copies within one type use the threads of the
/// OpenMP runtime.
///
/// @param source       The pixels to copy.
/// @param destination  In and out. With a null pixel pointer an image is created: of the destination's type,
///                     or of the source's if that is 0, with stride equal to width, the bits of the type, and
///                     the source's pixel spacing. It belongs to the caller, who frees it with FreePixels or
///                     `delete[]`. A destination with pixels must have the source's width and height, and no
///                     pixel of it may lie in a pixel of the source.
///
/// @retval 0  Done.
/// @retval 2  `destination` is null: "The destination image pointer was NULL."
/// @retval 6  "The source image type is not supported." The destination's type may have been set.
/// @retval 6  "The destination image type is not supported."
/// @retval 2  "The source buffer pointer was NULL."
/// @retval 2  Working in place: "The destination image pointer pointed to the source."
/// @retval 7  "The destination was not the same size as the source."
/// @retval 5  Nothing to copy between images of one type other than eDouble (a width or height below 1):
///            "ippiCopy_8u_C1R() failed. The error code was -5", or the name for the type.
ZPA_C_API SOLVANE_RETURNCODE CopyPixels(ImageAttributes source, ImageAttributes* destination);

/// Sets the pixels of a rectangle, or those of them that a mask selects, to a value.
///
/// Mask pixel (maskOrigin.x + i, maskOrigin.y + j) governs pixel (roi.x + i, roi.y + j). Cost: one pass over
/// the rectangle.
///
/// @param roi          The rectangle; null for the whole image.
/// @param mask         Null, or an image of type eByte with the destination's width and height.
/// @param maskOrigin   Where in the mask the rectangle begins; null for (0, 0).
/// @param maskValue    Below 0: a mask pixel that is not zero selects. Else: one that equals `maskValue`
///                     selects; above 255 none does.
/// @param value        Truncated toward zero to 32 bits and cut to its low bits for integer types (3.9 sets
///                     3, -1 sets 65535), unlike the rounding of CopyPixels; what 32 bits cannot hold counts
///                     as 0x80000000, whose low bits are 0. Narrowed for eSingle.
/// @param destination  Changed in place: eByte, eUInt16, eSingle or eDouble.
///
/// @retval 0  Done.
/// @retval 6  "The mask must be of type eByte."
/// @retval 6  "The destination image type is not supported."
/// @retval 2  "The destination image had a NULL buffer pointer."
/// @retval 2  "The destination image and mask were different sizes."
/// @retval 3  "The rectangular ROI was empty."
/// @retval 3  "The rectangular ROI was out of bounds in the destination image."
/// @retval 2  "The mask had a NULL buffer pointer."
/// @retval 3  "The rectangular ROI was out of bounds in the mask."
ZPA_C_API SOLVANE_RETURNCODE SetPixels(Rectangle const* roi, ImageAttributes const* mask,
                                       APOINT const* maskOrigin, int maskValue, double value,
                                       ImageAttributes destination);

/// Makes a copy of an image with its stride and padding.
///
/// @param source       eByte, eUInt16 or eDouble.
/// @param destination  Out. Its pixel pointer must be null; all fields become those of the source, with
///                     pixels that belong to the caller, who frees them with FreePixels or `delete[]`. On any
///                     failure a pixel pointer that the caller left in it is FREED and set to null.
///
/// @retval 0    Done.
/// @retval 6    Other types; nothing is logged.
/// @retval 2    A null pointer, or a destination with pixels: "template_copy(): Null pointer."
/// @retval 1    No memory, or a negative size: "template_copy(): Null pointer."
/// @retval 999  "template_copy(): Unexpected exception."
ZPA_C_API SOLVANE_RETURNCODE copyImage(ImageAttributes source, ImageAttributes* destination);

/// Makes a copy of a buffer.
///
/// @param source       eUInt16.
/// @param destination  Out, and freed on failure, as with copyImage.
///
/// @retval 0    Done.
/// @retval 6    Other types; nothing is logged.
/// @retval 2    A null pointer, or a destination with elements: "template_copy(): Null pointer."
/// @retval 1    No memory, or a negative size: "template_copy(): Null pointer."
/// @retval 999  "template_copy(): Unexpected exception."
ZPA_C_API SOLVANE_RETURNCODE copyBuffer(BufferAttributes source, BufferAttributes* destination);

/// The core of copyImage, for T of `unsigned char`, `unsigned short` and `double`. It frees nothing on
/// failure, and refuses elements of another size than T with 7. What a log callback throws passes through.
template <typename T>
ZPA_TEMPLATE_API SOLVANE_RETURNCODE template_copy(ImageAttributes source, ImageAttributes* destination);

/// Clears every element of `image` whose element in `mask` is zero.
///
/// Both are walked as blocks of stride * height elements, so the padding of a row is masked too. The caller
/// owns both; nothing is allocated. Cost: one pass over the block.
///
/// @param image  Changed in place: eByte or eUInt16.
/// @param mask   eByte: zero clears, any other value keeps. Width, height and stride as those of `image`; may
///               be the same buffer.
///
/// @retval 0  Done.
/// @retval 4  Width, height or stride differ: "ApplyMask(): Image and mask cannot be different sizes."
/// @retval 4  "ApplyMask(): Mask must be unsigned char."
/// @retval 6  The image has other elements; nothing is logged.
/// @retval 2  "ApplyMask(): Null pointer."
/// @retval 3  "ApplyMask(): The image's size is negative."
ZPA_C_API SOLVANE_RETURNCODE ApplyMask(ImageAttributes image, ImageAttributes mask);

/// Whether two images show the same pixels. Padding does not count, and strides may differ.
///
/// @param first   eUInt16.
/// @param second  eUInt16.
///
/// @retval 0  They are equal.
/// @retval 5  They differ. An answer, not a failure: nothing is logged.
/// @retval 6  Other types; nothing is logged.
/// @retval 2  "template_compare(): Null pointer."
/// @retval 4  Widths or heights differ; nothing is logged.
ZPA_C_API SOLVANE_RETURNCODE compare(ImageAttributes first, ImageAttributes second);

/// The core of compare, for T of `unsigned short`; narrower elements are refused with 7. What a log callback
/// throws passes through.
template <typename T>
ZPA_TEMPLATE_API SOLVANE_RETURNCODE template_compare(ImageAttributes first, ImageAttributes second);

/// Whether two images agree, within a tolerance, at sampled pixels.
///
/// Samples are every `xDecimation`-th pixel of every `yDecimation`-th row of the area, from its corner on.
/// The area is where the rectangle and the mask meet; the mask lies over the image with its corner at
/// `maskOrigin` (here the origin is a place in the image, unlike in SetPixels), and a sample counts where its
/// mask pixel is not zero. The images agree if every difference is smaller than the tolerance: one that
/// equals it fails.
///
/// @param first           eByte, eInt16, eUInt16, eSingle or eDouble.
/// @param second          Of the same type and size.
/// @param roi             The rectangle; null for the whole image.
/// @param mask            Null, or an image of type eByte of any size.
/// @param maskOrigin      Where in the image the mask begins; null for (0, 0).
/// @param xDecimation     At least 1.
/// @param yDecimation     At least 1.
/// @param tolerance       Truncated toward zero for integer types: 1.5 asks for equality, and below 1 even
///                        equal images fail. 0 and less answers false at once; above 255 for eByte, or 65535
///                        for both 16-bit types, true at once, the region unseen.
/// @param pbIsEquivalent  Out.
///
/// @retval 0  Answered.
/// @retval 2  "The first image had a NULL buffer pointer."
/// @retval 2  "The second image had a NULL buffer pointer."
/// @retval 7  "The two input images have different sizes."
/// @retval 8  "The two input images must be of the same type."
/// @retval 6  "The mask must be of type eByte."
/// @retval 2  "The pbIsEquivalent pointer was NULL."
/// @retval 4  "The x and y decimation values must be >= 1."
/// @retval 6  "The image type is not supported." Not with a tolerance of 0 or less.
/// @retval 3  "The rectangular ROI was empty.", "The mask ROI was empty.", "The combined ROI was empty." or
///            "The ROI was out of bounds in the image."
/// @retval 2  "The mask had a NULL buffer pointer."
ZPA_C_API SOLVANE_RETURNCODE DecimateAndCompare(ImageAttributes first, ImageAttributes second,
                                                Rectangle const* roi, ImageAttributes const* mask,
                                                APOINT const* maskOrigin, int xDecimation, int yDecimation,
                                                double tolerance, bool* pbIsEquivalent);

/// Replaces output[i] by source[i + 1] - output[i], wrapping around, and the last element by 0.
///
/// The subtrahend is what the output held BEFORE the call: fill it with a copy of the source to get the
/// differences of neighbours. `output` may be the source itself, which gives the same.
///
/// @param source  eByte, eInt16 or eInt32.
/// @param output  In and out: type and length of the source.
///
/// @retval 0  Done.
/// @retval 2  `output` is null: "The output buffer pointer was NULL."
/// @retval 7  Lengths or types differ: "The output and input images must be of the same type and type"
/// @retval 7  Any other type: "Buffer type 16bit unsupported" (though eInt16 is served).
/// @retval 2  "The input or output buffer had a NULL pointer."
ZPA_C_API SOLVANE_RETURNCODE DiffBuffer(BufferAttributes source, BufferAttributes* output);

/// Sets pixels below `low` to `low`, and of the others those above `high` to `high`.
///
/// Limits beyond 16 bits compare whole, and are cut to their low 16 bits where they are stored. A null
/// pointer or a count below 1 does nothing.
ZPA_C_API void ClipImage(short* pixels, int count, int low, int high);

/// @cond The instantiations that the library holds.
extern template SOLVANE_RETURNCODE template_copy<unsigned char>(ImageAttributes, ImageAttributes*);
extern template SOLVANE_RETURNCODE template_copy<unsigned short>(ImageAttributes, ImageAttributes*);
extern template SOLVANE_RETURNCODE template_copy<double>(ImageAttributes, ImageAttributes*);
extern template SOLVANE_RETURNCODE template_compare<unsigned short>(ImageAttributes, ImageAttributes);
/// @endcond

}  // namespace ZPA

#endif
