// Mean filters over a rectangular window, plain and weighted by a mask.
#ifndef ZPA_BASICS_FLATTOPFILTER_H
#define ZPA_BASICS_FLATTOPFILTER_H

#include <Basics/CoreTypes.h>

/// @file
/// Every output pixel is the mean of the input over a window centred on it. At the image's edges the window
/// is cut off, and the mean is taken over the pixels that are left, so there is neither padding nor a bias.
///
/// Images are given by a pointer: `height` rows of `width` elements each, without padding between them. The
/// caller owns them; nothing is kept after the call. The work memory is a small multiple of `width`. Sums are
/// carried along from pixel to pixel, so the cost of a pixel does not depend on the window's size. All work
/// is done on the caller's thread.
///
/// The functions share these rules, with the name that each is listed with in front of the texts:
///
/// - `width`, `height`: at least 1 and not below the window's.
/// - `kernelWidth`, `kernelHeight`: the window's size, 3 or more. An even size is made odd by adding 1.
/// - `output` may not share memory with an input, since rows are written while earlier ones are still needed.
///
/// Refusals, in this order; the output stays as it was:
///
/// - 2, a pointer is null: "... - NULL pointer(s)."
/// - 3, a size of the window is 2 or less, or passes the image's: "... - invalid kernel size."
/// - 4, the output shares memory with the input: "... - input and output must be different buffers."
/// - 4, the output shares memory with the mask: "... - mask and output must be different buffers."
/// - 1, no work memory: "...: Memory allocation failed for %d bytes." The masked forms have cleared the
///   output.

namespace ZPA {

/// The mean over the window in 32-bit integers, truncated toward zero: the mean of 1, 1 and 2 is 1.
///
/// The fastest form. The sum over a window of more than 32768 pixels can pass 31 bits; it then wraps around
/// to negative values, and the low 16 bits of its quotient are stored. rect_flat_top_filtering_ushort has no
/// such limit. Texts begin with "rect_flat_top_filtering()".
///
/// @param input         Read only.
/// @param output        Written whole.
/// @param width         Pixels in a row.
/// @param height        Rows.
/// @param kernelWidth   Columns of the window.
/// @param kernelHeight  Rows of the window.
/// @return 0, or a refusal as listed above.
ZPA_C_API SOLVANE_RETURNCODE rectFlatTopFilter(unsigned short* input, unsigned short* output, int width,
                                               int height, int kernelWidth, int kernelHeight);

/// The mean over the window in double precision, for `unsigned short`, `short` and `double`.
///
/// Means of integers are truncated toward zero. For `double` the sums are carried along, first down the
/// columns and then across them, so that a pixel that is not finite, or much larger than the others, also
/// shows in the pixels to the right of its window and below it. Texts begin with
/// "rectFlatTopFilteringTemplate()".
///
/// @param input         Read only.
/// @param output        Written whole.
/// @param width         Pixels in a row.
/// @param height        Rows.
/// @param kernelWidth   Columns of the window.
/// @param kernelHeight  Rows of the window.
/// @return 0, or a refusal as listed above.
template <typename T>
ZPA_TEMPLATE_API SOLVANE_RETURNCODE rectFlatTopFilteringTemplate(T* input, T* output, int width, int height,
                                                                 int kernelWidth, int kernelHeight);

/// rectFlatTopFilteringTemplate for `unsigned short`, under a plain name.
ZPA_C_API SOLVANE_RETURNCODE rect_flat_top_filtering_ushort(unsigned short* input, unsigned short* output,
                                                            int width, int height, int kernelWidth,
                                                            int kernelHeight);
/// rectFlatTopFilteringTemplate for `short`, under a plain name.
ZPA_C_API SOLVANE_RETURNCODE rect_flat_top_filtering_short(short* input, short* output, int width, int height,
                                                           int kernelWidth, int kernelHeight);
/// rectFlatTopFilteringTemplate for `double`, under a plain name.
ZPA_C_API SOLVANE_RETURNCODE rect_flat_top_filtering_double(double* input, double* output, int width,
                                                            int height, int kernelWidth, int kernelHeight);

/// The weighted mean over the window in double precision, for `unsigned short`, `short` and `double`: the sum
/// of pixel times weight, divided by the sum of the weights.
///
/// A pixel whose weights sum to 0.01 or less becomes 0. Every other pixel gets a value, whatever its own
/// weight: pixels that are masked out are filled in from their neighbours. Means of integers are truncated
/// toward zero; where weights of both signs bring the mean out of the element's range, its low 16 bits are
/// stored, and 0 if it does not fit 32 bits. Texts begin with "rectFlatTopFilteringWithMaskTemplate()".
///
/// @param input         Read only.
/// @param output        Written whole.
/// @param mask          Read only: a signed 8-bit weight for each pixel, of any value, usually 0 and 1. May
///                      share memory with the input.
/// @param width         Pixels in a row.
/// @param height        Rows.
/// @param kernelWidth   Columns of the window.
/// @param kernelHeight  Rows of the window.
/// @return 0, or a refusal as listed above.
template <typename T>
ZPA_TEMPLATE_API SOLVANE_RETURNCODE rectFlatTopFilteringWithMaskTemplate(T* input, T* output, char* mask,
                                                                         int width, int height,
                                                                         int kernelWidth, int kernelHeight);

/// rectFlatTopFilteringWithMaskTemplate for `unsigned short`, under a plain name.
ZPA_C_API SOLVANE_RETURNCODE rectFlatTopFilteringWithMask_ushort(unsigned short* input,
                                                                 unsigned short* output, char* mask,
                                                                 int width, int height, int kernelWidth,
                                                                 int kernelHeight);
/// rectFlatTopFilteringWithMaskTemplate for `short`, under a plain name.
ZPA_C_API SOLVANE_RETURNCODE rectFlatTopFilteringWithMask_short(short* input, short* output, char* mask,
                                                                int width, int height, int kernelWidth,
                                                                int kernelHeight);
/// rectFlatTopFilteringWithMaskTemplate for `double`, under a plain name.
ZPA_C_API SOLVANE_RETURNCODE rectFlatTopFilteringWithMask_double(double* input, double* output, char* mask,
                                                                 int width, int height, int kernelWidth,
                                                                 int kernelHeight);

/// @cond The instantiations that the library holds.
#define ZPA_FOR_FLAT_TOP_ELEMENTS_(apply) apply(unsigned short) apply(short) apply(double)

#define ZPA_DECLARED_ELSEWHERE_(T)                                                                           \
    extern template SOLVANE_RETURNCODE rectFlatTopFilteringTemplate<T>(T*, T*, int, int, int, int);          \
    extern template SOLVANE_RETURNCODE rectFlatTopFilteringWithMaskTemplate<T>(T*, T*, char*, int, int, int, \
                                                                               int);
ZPA_FOR_FLAT_TOP_ELEMENTS_(ZPA_DECLARED_ELSEWHERE_)
#undef ZPA_DECLARED_ELSEWHERE_
/// @endcond

}  // namespace ZPA

#endif
