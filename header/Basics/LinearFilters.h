// Linear filters: a kernel over an image, a causal filter along a buffer, and standard kernels.
#ifndef ZPA_BASICS_LINEARFILTERS_H
#define ZPA_BASICS_LINEARFILTERS_H

#include <Basics/CoreTypes.h>

namespace ZPA {

/// Convolves a region of an image with a kernel.
///
/// With a kernel of kw by kh elements, each pixel (x, y) of the region becomes the sum of kernel(i, j) *
/// source(x + r - i, y + b - j) over the kernel, where r = kw - kw / 2 - 1 and b = kh - kh / 2 - 1 (integer
/// quotients): the kernel is turned by 180 degrees over a window that reaches kw / 2 pixels to the left and r
/// to the right, kh / 2 up and b down. The region keeps clear of the image's edges by as much, so nothing is
/// padded.
///
/// Integer images. The sum of products is exact, divided by the divisor and cut toward zero, then saturated to
/// the element's range. Sums of more than 63 bits, which take a kernel of tens of thousands of elements, wrap
/// around.
///
/// Real images. Products are added in the order of the window's pixels, row by row, in the element's own
/// type, by fused multiply-adds where the processor has them: machines with them agree to the bit, others
/// within rounding. A kernel of about 5 by 5 or more that is the product of a column and a row, but for a few
/// roundings, is applied as two passes, whose error bound is no larger unless a row's sum passes the type's
/// range on the way. What is not a number, or infinite, follows the rules of floating point.
///
/// Cost: kw * kh multiply-adds a pixel, or about kw + kh for a kernel that is the product of a column and a
/// row, such as a Gaussian. Large images are shared among the threads of the OpenMP runtime; results do not
/// depend on their number. Work memory is some rows, for each thread.
///
/// @param source             Read only: eByte, eInt16, eUInt16, eSingle or eDouble.
/// @param roi                The region, in the source; null for the largest one that the kernel allows.
/// @param destination        In and out. Only the region is written. With pixels: of the source's type, or one
///                           with wider elements, whose bytes then are those of the source's type; it may not
///                           be the source, nor overlap what is read. With a null pixel pointer: it becomes an
///                           image of the source's type, bits per pixel and pixel spacing, just large enough
///                           for the region at its place, zero elsewhere; its pixels belong to the caller, who
///                           frees them with FreePixels or `delete[]`. A refusal that stands below "The ROI
///                           was out of bounds in the source image." leaves a descriptor without pixels filled
///                           in, its pixel pointer null.
/// @param destinationOrigin  Where in the destination the region begins; null for (0, 0).
/// @param kernel             Read only. Integer images: eInt32. Real images: elements of the image's own type;
///                           others of no smaller size are taken for such.
/// @param divisor            Of integer images; null for 1. Real images do not look at it.
///
/// @retval 0    Done.
/// @retval 6    A type that no image has: "Unsupported image datatype."
/// @retval 2    "The source buffer pointer was NULL."
/// @retval 2    "The destination image pointer was NULL or pointed to the source."
/// @retval 2    "The kernel buffer pointer was NULL."
/// @retval 6    An image of integers: "The kernel was not an integer kernel."
/// @retval 3    The region has no pixels, or there is none as the kernel is larger than the image: "The
///              supplied ROI was empty."
/// @retval 3    The region or the kernel over it leaves the source: "The ROI was out of bounds in the source
///              image."
/// @retval 3    "The ROI was out of bounds in the destination image."
/// @retval 3    "The destination stride was less than the destination width."
/// @retval 7    "The source image's rows overlap."
/// @retval 7    "The destination image's elements are narrower than the source's."
/// @retval 6    Elements smaller than those of a real image: "The kernel was not a real kernel."
/// @retval 7    "The kernel's rows overlap."
/// @retval 1    No work memory for an eDouble image: "Filter2D: Memory allocation failed for %d bytes."
/// @retval 6    eSByte, eInt32 or eUInt32: "ippiFilterInt() is unsupported for this data type."
/// @retval 5    A divisor of 0 (-6), a kernel of no size (-5), no work memory (-9): "ippiFilterInt() failed.
///              The error code was %d"; of real images: "ippiFilterReal() failed. The error code was %d".
/// @retval 999  No memory for the destination or the kernel, or an exception: "Unexpected exception."
ZPA_C_API SOLVANE_RETURNCODE Filter2D(ImageAttributes source, Rectangle const* roi,
                                      ImageAttributes* destination, APOINT const* destinationOrigin,
                                      ImageAttributes kernel, int const* divisor);

/// Filters a buffer by weights that look at an element and those before it:
/// output[i] = input[i] * filter[0] + input[i - 1] * filter[1] + ...
///
/// The first elements use what there is before them, without padding and without scaling up. Products and
/// sums are made in extended precision (`long double`), in this order. For integer elements the sum is cut
/// toward zero to a signed 32-bit integer, 0x80000000 standing for what has none, and stored by its low bits:
/// nothing saturates, so 300 is 44 in a byte, and eUInt32 elements above 2147483647 are stored as 0x80000000.
/// Cost: a product for each element and weight, on the caller's thread.
///
/// @param input   Read only, unless it is the output: any element type.
/// @param filter  Weights: eSingle elements. Others of 32 bits and more are taken for such.
/// @param output  In and out. Null: the result replaces the input. With a buffer of the input's type and at
///                least its length: that is written, and elements beyond are left; it may be the input's, and
///                may overlap neither that otherwise nor the filter. WITH A BUFFER OF ANOTHER TYPE, OR SHORTER:
///                THAT BUFFER IS FREED (as FreePixels does), the caller's own memory included, even where it is
///                the input's. Then, and with a null buffer, type and length become those of the input, and a
///                new buffer is made, which belongs to the caller, who frees it with FreePixels or `delete[]`.
///
/// @retval 0    Done.
/// @retval 6    "Unsupported image datatype."
/// @retval 4    "The input buffer is NULL."
/// @retval 4    "The filter buffer is NULL."
/// @retval 6    Elements of less than 32 bits: "The filter was not a float filter."
/// @retval 1    No memory: "FilterBufferSimple: Memory allocation failed for %d bytes." An output that was to
///              be freed is freed, its pointer null.
/// @retval 999  "Unexpected exception."
ZPA_C_API SOLVANE_RETURNCODE FilterBufferSimple(BufferAttributes input, BufferAttributes filter,
                                                BufferAttributes* output);

/// The core of FilterBufferSimple, for T of `char`, `unsigned char`, `short`, `unsigned short`, `int`,
/// `unsigned int`, `float` and `double`: the input's elements are taken for T. An input of smaller elements is
/// refused, after the null pointers, with 7, "The elements of the input buffer are too narrow." A buffer that
/// is made has room for elements of the input's type. What a log callback throws passes through.
template <typename T>
ZPA_API SOLVANE_RETURNCODE template_FilterBufferSimple(BufferAttributes input, BufferAttributes filter,
                                                       BufferAttributes* output);

/// Fills an image with a standard kernel.
///
/// - "average": every element is 1 / (width * height).
/// - "gaussian": exp(-((x - cx)^2 + (y - cy)^2) / (2 sigma^2)) about the image's centre, divided by the sum of
///   all, so that the kernel sums to 1. Values below 2.2204e-16 of the largest are 0. `parameter` is sigma, in
///   elements; 0.5 if it is below 2.2204e-16. Where all values underflow, all are 0.
/// - "laplacian": 3 by 3. With a = `parameter`, held to 0 to 1, the corners are a / (a + 1), the edges
///   (1 - a) / (a + 1), and the centre is -4 / (a + 1).
/// - "sobel": 3 by 3, 1 2 1 over 0 0 0 over -1 -2 -1: Filter2D with it gives how fast an image grows from row
///   to row, downwards positive being above. Its transpose does so along rows.
///
/// THE KERNELS OF 3 BY 3 ARE WRITTEN AS NINE CONSECUTIVE ELEMENTS, whatever width and stride say; the others
/// honour the stride. Nothing is allocated.
///
/// @param kernel     Written: eDouble.
/// @param kind       One of the four names.
/// @param parameter  What the kind makes of it, if anything.
///
/// @retval 0  Done.
/// @retval 4  "The input buffer is NULL."
/// @retval 4  "Input image are not double type."
/// @retval 6  Any other `kind`, or null; nothing is logged.
/// @retval 7  "laplacian" and "sobel": height times stride is below 9: "The kernel image is too small."
/// @retval 7  "average" and "gaussian": a stride below the width: "The kernel's rows overlap."
/// @retval 999  A log callback threw.
ZPA_C_API SOLVANE_RETURNCODE fspecial(ImageAttributes kernel, char const* kind, double parameter);

}  // namespace ZPA

#endif
