// Local contrast normalisation.
#ifndef ZPA_BASICS_HOMOFILTER_H
#define ZPA_BASICS_HOMOFILTER_H

#include <Basics/CoreTypes.h>

namespace ZPA {

/// Flattens an image: every pixel becomes its distance from the local mean in units of the local standard
/// deviation, and the whole is then brought to zero mean and unit variance.
///
/// The local mean and variance are those under a Gaussian window (AnisotropicGaussian with `sigma` both
/// ways). All arithmetic is in double precision. Nothing guards against a deviation of zero: where an image
/// is perfectly flat the quotient is infinite or not a number, which goes on into the mean and variance of
/// the whole, so that ONE FLAT AREA CAN TURN THE WHOLE RESULT INTO NOT-A-NUMBER. That is no failure.
///
/// Integer outputs are rounded and wrap around as CopyPixels tells; as most results lie between -3 and 3,
/// eDouble is what most callers want.
///
/// Cost: about one and a half times that of two calls of AnisotropicGaussian, on the caller's thread; the two
/// divisions and the root of every pixel make the half. The work memory is one double image, another one
/// where the input is not an eDouble image without padding, another one where the output is not, or shares
/// memory with the input, and some megabytes.
///
/// @param input   eByte, eUInt16 or eDouble.
/// @param sigma   Standard deviation of the window, in pixels.
/// @param output  In and out. With pixels: any of these types, in the input's size; it may be the input.
///                With a null pixel pointer it becomes an eDouble image of 64 bits per pixel without padding,
///                with the input's pixel spacing; its pixels belong to the caller, who frees them with
///                FreePixels or `delete[]`.
///
/// @retval 0    Done.
/// @retval 2    "The input image had a NULL buffer pointer."
/// @retval 6    "The input image must be of type eByte, eUInt16, or eDouble."
/// @retval 2    "The output ImageAttributes pointer was NULL."
/// @retval 7    "The output image is the wrong size."
/// @retval 6    "The output image must be of type eByte, eUInt16, or eDouble."
/// @retval 7    "The input image's rows overlap.", "The output image's rows overlap."
/// @retval 999  A width or height below 1, no memory, or an exception: "Unexpected exception."
ZPA_C_API SOLVANE_RETURNCODE HomoFilter(ImageAttributes input, double sigma, ImageAttributes* output);

}  // namespace ZPA

#endif
