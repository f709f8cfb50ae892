// Measures of images and buffers, counts of a value, standard scores, and inversions.
#ifndef ZPA_BASICS_STATISTICS_H
#define ZPA_BASICS_STATISTICS_H

#include <Basics/CoreTypes.h>

/// @file
/// All run to completion on the caller's thread, in one pass over the pixels, and keep nothing; different
/// images may be worked on at once. Checks are made in the order in which the codes are listed, and a failed
/// one leaves outputs as they were. All return 999, "Unexpected exception.", where an exception was caught,
/// as it is when counts cannot be allocated.
///
/// Operations on images share one rule for the pixels that they work on, told by three optional arguments:
/// - `roi`: a rectangle inside the image; null for the whole image.
/// - `mask`: an image of type eByte and of any size, whose pixels select where they are not zero; null
///   selects all.
/// - `maskOrigin`: where in the mask the rectangle begins, null for (0, 0): mask pixel (maskOrigin.x + i,
///   maskOrigin.y + j) governs pixel (roi.x + i, roi.y + j).
///
/// What this rule refuses is called "the region" below, and is, in this order:
/// - 3  "The rectangular ROI was empty."
/// - 3  "The rectangular ROI was out of bounds in the input image."
/// - 2  "The mask had a NULL buffer pointer."
/// - 3  "The rectangular ROI was out of bounds in the mask."
/// - 7  Rows of the mask or image overlap (a stride below the width, or a negative one): "The mask's rows
///      overlap." or "The image's rows overlap." Reading such rows of 8 bits per pixel or less, of positive
///      stride, is possible.

namespace ZPA {

/// Smallest and largest pixel, mean, and standard deviation.
///
/// The deviation is that of the whole population, sqrt(sum of squares / count - mean * mean), in extended
/// precision. The square of an integer pixel is made in 32 bits and read as a signed number, so that pixels
/// from 46341 on spoil the deviation of a 16-bit image, even to not-a-number; its mean is exact. Sums of
/// eDouble pixels are rounded to extended precision pixel by pixel. Not-a-number is neither smallest nor
/// largest.
///
/// With no pixel selected, mean and deviation are 0, and the range is that from which the search starts: from
/// the largest value of the type to 0, or to the most negative one for eDouble. That of eInt16 too is 32767
/// to 0, so that an image of negative pixels alone reports a maximum of 0.
///
/// @param image       eByte, eInt16, eUInt16 or eDouble.
/// @param roi         See the file's head.
/// @param mask        See the file's head.
/// @param maskOrigin  See the file's head.
/// @param min         Out; each of the four may be null. What is not asked for is not computed.
/// @param max         Out.
/// @param mean        Out.
/// @param stdDev      Out.
///
/// @retval 0  Done.
/// @retval 7  "The mask must be of type eByte."
/// @retval 6  "The input image type is not supported"
/// @retval 2  "The input image had a NULL buffer pointer."
/// @retval 3,2,7  The region.
ZPA_C_API SOLVANE_RETURNCODE CalculateImageStats(ImageAttributes image, Rectangle const* roi,
                                                 ImageAttributes const* mask, APOINT const* maskOrigin,
                                                 double* min, double* max, double* mean, double* stdDev);

/// The same for elements of a buffer, with two differences: minimum and maximum both start at 0, so that the
/// minimum of an unsigned type is always 0, and without `mean` the deviation is 0.
///
/// @param buffer  eByte, eUInt16, eSingle or eDouble.
/// @param start   The first index; null for 0.
/// @param end     The index behind the last one; null for the buffer's size. An empty range gives 0 in all
///                outputs.
/// @param min     Out; each of the four may be null.
/// @param max     Out.
/// @param mean    Out.
/// @param stdDev  Out.
///
/// @retval 0  Done.
/// @retval 6  "The input image type is not supported"
/// @retval 2  "The input image had a NULL buffer pointer."
/// @retval 3  "The range of indices was out of bounds in the input buffer."
ZPA_C_API SOLVANE_RETURNCODE CalculateBufferStats(BufferAttributes buffer, int const* start, int const* end,
                                                  double* min, double* max, double* mean, double* stdDev);

/// How many of the selected pixels have a value, and how many have not.
///
/// @param image           eByte, eInt16 or eUInt16.
/// @param roi             See the file's head.
/// @param mask            See the file's head.
/// @param maskOrigin      See the file's head.
/// @param n               The value. One that no pixel can have is never matched.
/// @param targetCount     Out; one of the two may be null. Its low 32 bits, if there are more.
/// @param notTargetCount  Out.
///
/// @retval 0  Done.
/// @retval 6  "The mask must be of type eByte."
/// @retval 6  "The input image must be of type eByte or eUInt16." (though eInt16 is served).
/// @retval 2  "Both of the output pointers were NULL."
/// @retval 2  "Both output pointers point to same count location."
/// @retval 2  "The input image had a NULL buffer pointer."
/// @retval 3,2,7  The region.
ZPA_C_API SOLVANE_RETURNCODE ImageCountOfN(ImageAttributes image, Rectangle const* roi,
                                           ImageAttributes const* mask, APOINT const* maskOrigin, int n,
                                           int* targetCount, int* notTargetCount);

/// The same for each row of the rectangle: element k is the count for its row k.
///
/// @param image           eByte or eUInt16.
/// @param roi             See the file's head.
/// @param mask            See the file's head.
/// @param maskOrigin      See the file's head.
/// @param n               The value.
/// @param targetCount     In and out; one of the two may be null. A descriptor without a buffer gets one of
///                        type eUInt32, with as many elements as there are rows. It belongs to the caller,
///                        who frees it with FreePixels or `delete[]`. A buffer that the caller gives has that
///                        type, and room for that many; elements beyond are not touched.
/// @param notTargetCount  In and out.
///
/// @retval 0    Done.
/// @retval 6    "The mask must be of type eByte."
/// @retval 6    "The input image must be of type eByte or eUInt16."
/// @retval 2    "Both of the output pointers were NULL."
/// @retval 2    The buffers are one: "Both output pointers point to same count location."
/// @retval 2    "The input image had a NULL buffer pointer."
/// @retval 3,2,7  The region.
/// @retval 6,7  A buffer of another type, or too short: "There is a problem with the count of target output
///              buffer." or, of the other, "There is a problem with the count of not target output buffer."
ZPA_C_API SOLVANE_RETURNCODE RowCountOfN(ImageAttributes image, Rectangle const* roi,
                                         ImageAttributes const* mask, APOINT const* maskOrigin, int n,
                                         BufferAttributes* targetCount, BufferAttributes* notTargetCount);

/// The same for each column of the rectangle. Arguments and codes as those of RowCountOfN.
ZPA_C_API SOLVANE_RETURNCODE ColumnCountOfN(ImageAttributes image, Rectangle const* roi,
                                            ImageAttributes const* mask, APOINT const* maskOrigin, int n,
                                            BufferAttributes* targetCount, BufferAttributes* notTargetCount);

/// Standard scores: each selected pixel becomes (pixel - mean) / deviation, with the mean and deviation that
/// CalculateImageStats gives for the same arguments. A deviation of 0 makes all scores 0.
///
/// The scores of an integer image are cut toward zero to 32 bits, and stored by their low bits: small numbers
/// around 0, the negative ones wrapped. What has no such number, as where the deviation is not a number, is
/// stored as 0.
///
/// @param image       eByte, eUInt16 or eDouble.
/// @param roi         See the file's head.
/// @param mask        See the file's head.
/// @param maskOrigin  See the file's head.
/// @param output      Receives elements of the input's type where the INPUT has them: by the input's stride,
///                    whatever its own. Other pixels keep their values. It may be the input.
///
/// @retval 0  Done.
/// @retval 7  "The mask must be of type eByte."
/// @retval 6  "The input image type is not supported"
/// @retval 2  "The input image had a NULL buffer pointer."
/// @retval 3,2,7  The region.
/// @retval 2  `output` or its buffer is null: "The output image had a NULL buffer pointer."
/// @retval 7  Narrower elements, or no room by the input's stride: "The output image is too small."
ZPA_C_API SOLVANE_RETURNCODE NormalizeImage(ImageAttributes image, Rectangle const* roi,
                                            ImageAttributes const* mask, APOINT const* maskOrigin,
                                            ImageAttributes* output);

/// The same for elements of a buffer, with the mean and deviation that CalculateBufferStats gives.
///
/// @param buffer  eByte, eUInt16, eSingle or eDouble.
/// @param start   The first index; null for 0.
/// @param end     The index behind the last one; null for the buffer's size.
/// @param output  Of the same size; receives elements of the buffer's type. Others keep their values. It may
///                be the buffer.
///
/// @retval 0  Done.
/// @retval 2  `output` is null: "The output buffer had a NULL buffer pointer."
/// @retval 7  "Input and Output buffers must be of the same size"
/// @retval 6  "The input image type is not supported"
/// @retval 2  "The input image had a NULL buffer pointer."
/// @retval 3  "The range of indices was out of bounds in the input buffer."
/// @retval 2  "The output buffer had a NULL buffer pointer."
/// @retval 7  "The output buffer's elements are too small."
ZPA_C_API SOLVANE_RETURNCODE NormalizeBuffer(BufferAttributes buffer, int const* start, int const* end,
                                             BufferAttributes* output);

/// Turns grey values round: each selected pixel becomes pixel ^ (2^b - 1), where b is the image's bits per
/// pixel, modulo 32. Bits above b stay: at 12 bits 0 becomes 4095, and 5000 becomes 5000 ^ 4095.
///
/// @param image       eByte or eUInt16.
/// @param roi         See the file's head.
/// @param mask        See the file's head.
/// @param maskOrigin  See the file's head.
/// @param output      Written by the INPUT's stride, whatever its own. Other pixels keep their values. It may
///                    be the input.
///
/// @retval 0  Done.
/// @retval 2  "Ouput pointer is null"
/// @retval 7  The types differ, or height * stride does: "The output and input images must be of the same
///            type and type"
/// @retval 7  "The mask must be of type eByte."
/// @retval 6  "The input image must be of type eByte or eUInt16."
/// @retval 2  "The input image had a NULL buffer pointer."
/// @retval 3,2,7  The region.
/// @retval 2  "The output image had a NULL buffer pointer."
/// @retval 7  No room by the input's stride, or rows that overlap: the text of the types.
ZPA_C_API SOLVANE_RETURNCODE InvertGray(ImageAttributes image, Rectangle const* roi,
                                        ImageAttributes const* mask, APOINT const* maskOrigin,
                                        ImageAttributes* output);

/// Negates a binary mask: each selected pixel becomes 1 if it is 0, and else 0. Here a mask pixel selects
/// where it is exactly 1: one of 255 does not.
///
/// Arguments and codes as those of InvertGray, but for the mask's type:
///
/// @retval 6  "The mask must be of type eByte."
ZPA_C_API SOLVANE_RETURNCODE InvertMaskImage(ImageAttributes image, Rectangle const* roi,
                                             ImageAttributes const* mask, APOINT const* maskOrigin,
                                             ImageAttributes* output);

}  // namespace ZPA

#endif
