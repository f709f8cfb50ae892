// Histograms: how often each grey value occurs.
#ifndef ZPA_BASICS_HISTOGRAM_H
#define ZPA_BASICS_HISTOGRAM_H

#include <Basics/CoreTypes.h>

/// @file
/// A histogram is a buffer of type eUInt32. Where the caller gives a descriptor without a buffer, one of the
/// needed length is created; it belongs to the caller, who frees it with FreePixels or `delete[]`. A buffer
/// that the caller gives has at least that length; elements beyond are not touched. Nothing is kept, and
/// different images may be worked on at once. Checks are made in the order in which the codes are listed; a
/// failed one leaves the caller's counts as they were, and a descriptor without a buffer has none afterwards.
/// All return 999, "Unexpected exception.", where an exception was caught, as it is when there is no memory.
///
/// Which pixels are counted is told by `roi`, `mask` and `maskOrigin`, as in Basics/Statistics.h: a null
/// `roi` is the whole image, a null `mask` selects every pixel and else one that is not zero does, and
/// `maskOrigin`, null for (0, 0), is where in the mask the rectangle begins.

namespace ZPA {

/// Counts the pixels of each value from `minValue` to `maxValue`: element k counts the pixels of value
/// minValue + k. Others are not counted.
///
/// Cost: one pass over the pixels. Without a mask, large images are shared among the threads of the OpenMP
/// runtime.
///
/// @param image       eByte, eInt16 or eUInt16, of b bits per pixel.
/// @param roi         See the file's head.
/// @param mask        See the file's head. eByte, eUInt16 or eInt16.
/// @param maskOrigin  See the file's head.
/// @param minValue    Null for 0, or for 1 - 2^(b-1) if the image is eInt16: -32767 at 16 bits, so that
///                    -32768 is not counted.
/// @param maxValue    Null for 2^b - 1 by the low bits that the type holds, or for 2^(b-1) - 1 if the image
///                    is eInt16.
/// @param histogram   In and out: maxValue - minValue + 1 elements.
///
/// @retval 0  Done.
/// @retval 2  "The mask had a NULL buffer pointer."
/// @retval 2  "The histogram pointer was NULL."
/// @retval 6  "The histogram must be of type eUInt32."
/// @retval 6  "The input image must be of type eByte, eUInt16, or eInt16."
/// @retval 6  "The mask image must be of type eByte, eUInt16 or eInt16."
/// @retval 2  "The input image had a NULL buffer pointer."
/// @retval 3  "The rectangular ROI was empty."
/// @retval 3  "The rectangular ROI was out of bounds in the input image."
/// @retval 4  `maxValue` is below `minValue` or above 2^b - 1, or b is not in 1 to 31: "Illegal
///            minValue/maxValue."
/// @retval 7  "The histogram buffer is too small."
/// @retval 3  "The rectangular ROI was out of bounds in the mask."
/// @retval 7  "The mask's rows overlap." or "The image's rows overlap."
/// @retval 5  The counting itself failed for want of memory: "Failed in ippiHistogramEven_8u_C1R().", or the
///            name for the type.
ZPA_C_API SOLVANE_RETURNCODE GetIntegerHistogram(ImageAttributes image, Rectangle const* roi,
                                                 ImageAttributes const* mask, APOINT const* maskOrigin,
                                                 int const* minValue, int const* maxValue,
                                                 BufferAttributes* histogram);

/// Counts floating-point pixels in bins of equal width, the first of them centred on `minValue` and the last
/// on `maxValue`.
///
/// With w = (maxValue - minValue) / (binCount - 1) and start = minValue - w / 2, a pixel v counts in the bin
/// (v - start) / w, cut toward zero: so those less than w below start count in the first bin too. Others,
/// infinities and not-a-number are not counted. With equal limits, or a single bin, no pixel is. Cost: one
/// pass over the pixels, on the caller's thread.
///
/// @param image       eSingle or eDouble.
/// @param roi         See the file's head.
/// @param mask        See the file's head. eByte.
/// @param maskOrigin  See the file's head.
/// @param binCount    At least 1.
/// @param minValue    The centre of the first bin.
/// @param maxValue    The centre of the last one.
/// @param histogram   In and out: `binCount` elements.
///
/// @retval 0  Done.
/// @retval 2  "The mask had a NULL buffer pointer."
/// @retval 6  "The mask must be of type eByte."
/// @retval 2  "The histogram pointer was NULL."
/// @retval 6  "The histogram must be of type eUInt32."
/// @retval 6  "The input image must be of type eSingle or eDouble."
/// @retval 2  "The input image had a NULL buffer pointer."
/// @retval 3  "The rectangular ROI was empty."
/// @retval 3  "The rectangular ROI was out of bounds in the input image."
/// @retval 4  `maxValue` is below `minValue`: "minValue is less than maxValue." (sic)
/// @retval 4  "binCount must be >= 1."
/// @retval 7  "The histogram buffer is too small."
/// @retval 3  "The rectangular ROI was out of bounds in the mask."
/// @retval 7  "The mask's rows overlap." or "The image's rows overlap."
ZPA_C_API SOLVANE_RETURNCODE GetRealHistogram(ImageAttributes image, Rectangle const* roi,
                                              ImageAttributes const* mask, APOINT const* maskOrigin,
                                              int binCount, double minValue, double maxValue,
                                              BufferAttributes* histogram);

/// Smooths a histogram with a sampled Gaussian, in place.
///
/// Each element becomes the sum of the 2h + 1 elements around it, h = trunc(4 * sigma + 0.5), weighted by
/// 0.3989423215389252 / sigma * exp(-u * u / (2 * sigma * sigma)) at distance u. The weights are not scaled
/// to sum to 1; products and sums are rounded to float, in order. Cost: count * (2h + 1) products, on the
/// caller's thread.
///
/// @param histogram    In and out.
/// @param count        Its elements; below 1 nothing is done.
/// @param sigma        Above 0 and finite, in elements.
/// @param paddingMode  What stands beyond the ends: 0 the end elements, repeated; 1 the other end, wrapped
///                     round; any other value the elements mirrored about the end ones, which are not
///                     repeated. Where h passes `count` the histogram is wrapped or mirrored again and again.
///
/// @retval 0  Done.
/// @retval 2  "smooth() - NULL hist pointer."
/// @retval 4  "smooth() - sigma must be above 0 and finite."
ZPA_C_API SOLVANE_RETURNCODE smoothHistogram(float* histogram, int count, float sigma, int paddingMode);

}  // namespace ZPA

#endif
