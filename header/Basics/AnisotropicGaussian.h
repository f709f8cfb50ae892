// Smoothing with an oriented elliptical Gaussian, and the transposing of images.
#ifndef ZPA_BASICS_ANISOTROPICGAUSSIAN_H
#define ZPA_BASICS_ANISOTROPICGAUSSIAN_H

#include <Basics/CoreTypes.h>

namespace ZPA {

/// Smooths an image with an oriented elliptical Gaussian, and takes derivatives along its axes.
///
/// `sigmaU` lies along the axis u, which the angle turns from x toward y; `sigmaV` lies along v, square to
/// it. As y runs down, positive angles turn clockwise on the screen:
///
///         angle 0              angle 30
///
///       +-----> x, u         +-----> x
///       |                    | \_
///       |                    |   \_ u = (cos 30, sin 30)
///       v                    v
///       y, v                 y
///
/// The Gaussian is made of two recursive passes, so the cost does not depend on the sigmas: one along the
/// direction (shear, 1), which interpolates linearly between neighbouring columns, and one along x. With
/// d = u^2 sin^2 + v^2 cos^2 of the angle, their sigmas are sqrt(d) and u v / sqrt(d), and the shear is
/// (u^2 - v^2) sin cos / d columns a row. A pass whose sigma is 0.45 or less, or is not a number, is left
/// out; both are where neither `sigmaU` nor `sigmaV` is above 0.45. A sigma of exactly 0 takes the pass along
/// x away, whatever the other sigma: TO SMOOTH ALONG ONE AXIS ONLY, give the other one 0.01. Where the whole
/// shear over the image's height is below half a column, the first pass runs plainly along y. The image goes on
/// beyond its borders as its outermost pixels do; a uniform image stays uniform up to rounding. For sigmas of 3
/// and more, and ratios up to 4, the response to one bright pixel is that of the true Gaussian within 5 % of its
/// peak, or 6.2 % where both are below 5.
///
/// Then the central difference along u is taken `derivativeOrderU` times, and that along v `derivativeOrderV`
/// times: half of what the next pixel has more than the one before, across and down, weighted with the axis'
/// direction. At the border the pixel itself stands for the missing one.
///
/// Pixels that are not finite spread over their row and column, and further. Negative sigmas count as
/// positive ones. All arithmetic is in double precision and gives the same bits on every instruction set.
/// Where a bright pixel stands in large areas of exact zeros, its fading traces become denormal numbers,
/// which take several times as long.
///
/// Sources: L. van Vliet, I. Young and P. Verbeek, "Recursive Gaussian derivative filters" (1998); I. Young,
/// L. van Vliet and M. van Ginkel, "Recursive Gabor filtering" (2002), for the coefficients; B. Triggs and
/// M. Sdika, "Boundary conditions for Young - van Vliet recursive filtering" (2006); J.-M. Geusebroek, A.
/// Smeulders and J. van de Weijer, "Fast anisotropic Gauss filtering" (2003), for the two passes.
///
/// Runs on the caller's thread. The work memory is that of one double image at most, where the input is not
/// an eDouble image without padding or the output none, and some megabytes.
///
/// @param input             eByte, eInt16, eUInt16 or eDouble.
/// @param output            In and out. With pixels: any of these types, in the input's size; integers are
///                          rounded and wrap around as CopyPixels tells. It may be the input. With a null
///                          pixel pointer it becomes an eDouble image of 64 bits per pixel without padding,
///                          with the input's pixel spacing; its pixels belong to the caller, who frees them
///                          with FreePixels or `delete[]`.
/// @param sigmaU            Standard deviation along u, in pixels.
/// @param sigmaV            Standard deviation along v, in pixels.
/// @param angleDegrees      From x to u, toward y.
/// @param derivativeOrderU  How often to take the difference along u.
/// @param derivativeOrderV  How often to take the difference along v.
///
/// @retval 0    Done.
/// @retval 2    "The input image had a NULL buffer pointer."
/// @retval 6    "The input image must be of type eByte, eUInt16, or eDouble." (eInt16 is served, too.)
/// @retval 2    "The output ImageAttributes pointer was NULL."
/// @retval 7    "The output image is the wrong size."
/// @retval 6    "The output image must be of type eByte, eUInt16, or eDouble."
/// @retval 7    "The input image's rows overlap.", "The output image's rows overlap."
/// @retval 999  A width or height below 1, no memory, or an exception: "Unexpected exception."
ZPA_C_API SOLVANE_RETURNCODE AnisotropicGaussian(ImageAttributes input, ImageAttributes* output,
                                                 double sigmaU, double sigmaV, double angleDegrees,
                                                 unsigned char derivativeOrderU,
                                                 unsigned char derivativeOrderV);

/// Writes source pixel (x, y) to destination pixel (y, x).
///
/// Cost: one pass, in blocks that suit the cache, on the caller's thread. Padding is neither read nor
/// written.
///
/// @param source       Any of the element types.
/// @param destination  Written: pixels of the source's type in memory of their own, as wide as the source is
///                     high, and as high as it is wide. The descriptor stays as it is.
///
/// @retval 0  Done.
/// @retval 2  "The source image had a NULL buffer pointer."
/// @retval 2  The pointer or its pixels: "The destination image pointer was NULL."
/// @retval 6  "The source image type is not supported."
/// @retval 6  "The source and destination images have different types."
/// @retval 7  "The destination image is the wrong size."
/// @retval 7  "The source image's rows overlap.", "The destination image's rows overlap."
/// @retval 4  "The source and destination images share memory."
ZPA_C_API SOLVANE_RETURNCODE TransposeImage(ImageAttributes source, ImageAttributes* destination);

}  // namespace ZPA

#endif
