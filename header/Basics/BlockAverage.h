// Reduction of an image by a whole factor: means of blocks, and plain samples.
#ifndef ZPA_BASICS_BLOCKAVERAGE_H
#define ZPA_BASICS_BLOCKAVERAGE_H

#include <Basics/CoreTypes.h>

/// @file
/// The functions on means replace every block of `factor` by `factor` pixels by its mean. Images are given by
/// a pointer: `height` rows of `width` elements, without padding between them. Columns and rows behind the
/// last whole block are not read. The caller owns both images; nothing is kept or allocated. The output may
/// begin where the input begins, as every block is read before its mean is written. Cost: one pass over the
/// input, on the caller's thread.
///
/// Their rules, with the name that each is listed with in front of the texts. Refusals are tried in this
/// order, and the output stays as it was:
///
/// - 2, a pointer is null: "... - NULL pointer(s)."
/// - 3, `factor` is below 1: "... - subsample factor < 1."
/// - 999, `outputWidth` is not `width / factor`, or `outputHeight` not `height / factor`:
///   "... - Incorrect SS w x h passed in = %d x %d."

namespace ZPA {

/// The mean of every block in 32-bit integers, truncated: 1, 1, 1 and 2 give 1.
///
/// The sum over a block of more than 181 by 181 pixels can pass 31 bits. It then wraps around to negative
/// values, and the low 16 bits of its quotient are stored; blockAverageDownSample_ushort has no such limit.
/// Texts begin with "blockAverageDownSample()".
///
/// @param input         Read only.
/// @param output        Written whole: `outputHeight` rows of `outputWidth` elements.
/// @param width         Pixels in a row of the input.
/// @param height        Rows of the input.
/// @param outputWidth   `width / factor`.
/// @param outputHeight  `height / factor`.
/// @param factor        Pixels of a block each way, at least 1.
/// @return 0, or a refusal as listed above.
ZPA_C_API SOLVANE_RETURNCODE blockAverage(unsigned short* input, unsigned short* output, int width,
                                          int height, int outputWidth, int outputHeight, int factor);

/// The mean of every block, for `unsigned short`, `short` and `double`.
///
/// Sums of integers are exact and means truncated toward zero: -1, -1, -1 and -2 give -1. Doubles are added
/// row by row in extended precision (`long double`). Where neighbours have few digits or are of like size, as in
/// most images, whole numbers that give the same are added instead: other doubles take up to twice as long, and up
/// to four times beside a code. Texts begin with "blockAverageDownSampleTemplate()".
///
/// @param input         Read only.
/// @param output        Written whole: `outputHeight` rows of `outputWidth` elements.
/// @param width         Pixels in a row of the input.
/// @param height        Rows of the input.
/// @param outputWidth   `width / factor`.
/// @param outputHeight  `height / factor`.
/// @param factor        Pixels of a block each way, at least 1.
/// @return 0, or a refusal as listed above.
template <typename T>
ZPA_TEMPLATE_API SOLVANE_RETURNCODE blockAverageDownSampleTemplate(T* input, T* output, int width, int height,
                                                                   int outputWidth, int outputHeight,
                                                                   int factor);

/// blockAverageDownSampleTemplate for `unsigned short`, under a plain name.
ZPA_C_API SOLVANE_RETURNCODE blockAverageDownSample_ushort(unsigned short* input, unsigned short* output,
                                                           int width, int height, int outputWidth,
                                                           int outputHeight, int factor);
/// blockAverageDownSampleTemplate for `short`, under a plain name.
ZPA_C_API SOLVANE_RETURNCODE blockAverageDownSample_short(short* input, short* output, int width, int height,
                                                          int outputWidth, int outputHeight, int factor);
/// blockAverageDownSampleTemplate for `double`, under a plain name.
ZPA_C_API SOLVANE_RETURNCODE blockAverageDownSample_double(double* input, double* output, int width,
                                                           int height, int outputWidth, int outputHeight,
                                                           int factor);

/// The mean of every block's pixels that are not `code`, for `unsigned short`, `short` and `double`.
///
/// A caller marks pixels that shall not count by giving them a reserved value, the code. A block without any
/// other pixel gives the code, so that the mark survives. A code that is not a number equals no pixel. Means
/// are made as in blockAverageDownSampleTemplate; one may happen to be the code. Texts begin with
/// "blockAverageDownSampleCodedMaskTemplate()".
///
/// @param input         Read only.
/// @param output        Written whole: `outputHeight` rows of `outputWidth` elements.
/// @param width         Pixels in a row of the input.
/// @param height        Rows of the input.
/// @param outputWidth   `width / factor`.
/// @param outputHeight  `height / factor`.
/// @param factor        Pixels of a block each way, at least 1.
/// @param code          The value of the pixels to leave out.
/// @return 0, or a refusal as listed above.
template <typename T>
ZPA_TEMPLATE_API SOLVANE_RETURNCODE blockAverageDownSampleCodedMaskTemplate(T* input, T* output, int width,
                                                                            int height, int outputWidth,
                                                                            int outputHeight, int factor,
                                                                            T code);

/// blockAverageDownSampleCodedMaskTemplate for `unsigned short`, under a plain name.
ZPA_C_API SOLVANE_RETURNCODE blockAverageDownSampleCodedMask_ushort(unsigned short* input,
                                                                    unsigned short* output, int width,
                                                                    int height, int outputWidth,
                                                                    int outputHeight, int factor,
                                                                    unsigned short code);
/// blockAverageDownSampleCodedMaskTemplate for `short`, under a plain name.
ZPA_C_API SOLVANE_RETURNCODE blockAverageDownSampleCodedMask_short(short* input, short* output, int width,
                                                                   int height, int outputWidth,
                                                                   int outputHeight, int factor, short code);
/// blockAverageDownSampleCodedMaskTemplate for `double`, under a plain name.
ZPA_C_API SOLVANE_RETURNCODE blockAverageDownSampleCodedMask_double(double* input, double* output, int width,
                                                                    int height, int outputWidth,
                                                                    int outputHeight, int factor,
                                                                    double code);

/// Takes every `factor`-th pixel of every `factor`-th row, without filtering.
///
/// Output (x, y) is source (columnOffset + x * factor, rowOffset + y * factor). Elements are copied as 16-bit
/// units, whatever the types say; types and the destination's stride only tell how much memory there is. Cost: one
/// pass over the samples, on the caller's thread.
///
/// @param source        A 16-bit image. Its stride in 16-bit units; 0 stands for its width. Rows may overlap.
/// @param destination   In and out. Becomes an eUInt16 image of width / factor by height / factor pixels
///                      without padding, with the source's bits per pixel and `factor` times its pixel
///                      spacing. With a null pixel pointer, pixels are allocated; they belong to the caller,
///                      who frees them with FreePixels or `delete[]`. Else its width times height must hold
///                      the output. It may begin where the source begins, if that has rows that do not overlap.
/// @param factor        At least 1, and below the source's width and height.
/// @param rowOffset     The first row, from 0 to factor - 1.
/// @param columnOffset  The first column, from 0 to factor - 1.
///
/// @retval 0  Done.
/// @retval 2  A pointer is null: "subsample(): Null pointer(s)."
/// @retval 4  No pixels, or a width or height below 1: "subsample(): Invalid source image."
/// @retval 3  "subsample(): Invalid subsample factor."
/// @retval 3  "subsample(): Invalid row or col offset(s)."
/// @retval 1  No memory: "subsample(): Memory allocation failed for %d bytes."
/// @retval 3  "subsample(): Destination buffer too small."
/// @retval 6  Samples lie beyond the memory of a source of 8-bit elements: "subsample(): The source image is
///            not a 16-bit image."
/// @retval 7  A source of wider elements has a negative stride: "subsample(): The source image's rows overlap."
/// @retval 7  The output is larger than the memory of a destination of 8-bit elements: "subsample(): The
///            destination image is not a 16-bit image."
/// @retval 7  It is larger than that of wider elements in rows that overlap: "subsample(): The destination
///            image's rows overlap."
ZPA_C_API SOLVANE_RETURNCODE subsample(ImageAttributes const* source, ImageAttributes* destination,
                                       int factor, int rowOffset, int columnOffset);

/// @cond The instantiations that the library holds.
#define ZPA_FOR_BLOCK_AVERAGE_ELEMENTS_(apply) apply(unsigned short) apply(short) apply(double)

#define ZPA_DECLARED_ELSEWHERE_(T)                                                                         \
    extern template SOLVANE_RETURNCODE blockAverageDownSampleTemplate<T>(T*, T*, int, int, int, int, int); \
    extern template SOLVANE_RETURNCODE blockAverageDownSampleCodedMaskTemplate<T>(T*, T*, int, int, int,   \
                                                                                  int, int, T);
ZPA_FOR_BLOCK_AVERAGE_ELEMENTS_(ZPA_DECLARED_ELSEWHERE_)
#undef ZPA_DECLARED_ELSEWHERE_
/// @endcond

}  // namespace ZPA

#endif
