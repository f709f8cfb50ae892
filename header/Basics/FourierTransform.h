// Fourier transforms of complex and real sequences, correlation and convolution.
#ifndef ZPA_BASICS_FOURIERTRANSFORM_H
#define ZPA_BASICS_FOURIERTRANSFORM_H

#include <Basics/Export.h>

/// @file
/// Complex arrays of n points are 2n reals: element 2k is the real part of point k, element 2k + 1 the
/// imaginary part, from index 0 on. Numbers of points are powers of two; with any other number nothing is
/// done and nothing reported, and what is in the arrays means nothing. The transform with sign +1 is
///
///     X[k] = sum over j of x[j] exp(+2 pi i j k / n)
///
/// without a factor; with sign -1 it is the sum with exp(-2 pi i j k / n), divided by n. One after the other
/// gives back the input. (Many texts have the signs the other way round: there, X is the conjugate for real
/// input.) Other signs are errors of the caller: the arrays stay safe, the result means nothing.
///
/// All run on the caller's thread and keep nothing between calls. Work space comes from the stack for about
/// 256 points and less, else from the heap: about the size of the data. The transforms themselves never fail;
/// without memory they take a slower way. The same input gives the same bits on every machine. The relative
/// error (root mean square) of a million points is below 1e-15 in double and 2e-7 in float; sines are made in
/// double precision for both. Cost: n log n, with memory passed over twice.
///
/// A null pointer is reported with code 2 and the function's name, as in "FFT(): Null pointer.", and nothing
/// is done.
///
/// The method: a sequence is cut into a rectangle of nearly equal sides, whose columns and rows are
/// transformed in turn (W. M. Gentleman, G. Sande, "Fast Fourier transforms for fun and profit", 1966; D. H.
/// Bailey, "FFTs in external or hierarchical memory", 1990), with radix 8 and 4 inside.
///
/// Filtering a column of 2048 real values, which are 1024 complex points, in its spectrum, where only its 16
/// lowest frequencies stay:
///
/// @code{.cpp}
/// ZPA::realFFT_DBL(column, 1024, 1);  // column[2k], column[2k + 1]: frequency k
/// for (int k = 16; k < 1024; ++k) column[2 * k] = column[2 * k + 1] = 0;
/// column[1] = 0;                       // the highest frequency, in the place of 0's imaginary part
/// ZPA::realFFT_DBL(column, 1024, -1);  // filtered, in the scale it had
/// @endcode

namespace ZPA {

/// Transforms complex points in place.
/// @param data  2n reals.
/// @param n     The number of points, a power of two; a single one stays as it is.
/// @param sign  +1: the transform, without a factor. -1: the inverse, divided by n.
ZPA_C_API void FFT(float* data, int n, int sign);
/// FFT in double precision, with the same arguments.
ZPA_C_API void FFT_DBL(double* data, int n, int sign);

/// Transforms a square of complex points in place: each row, and then each column, as FFT_DBL does.
/// @param data  n rows of n points, row after row: 2 n n reals.
/// @param n     The side, a power of two.
/// @param sign  +1: without a factor. -1: the inverse, divided by n once for the rows and once for the
///              columns.
ZPA_C_API void FFT2d_DBL(double* data, int n, int sign);

/// Transforms 2n real values to n + 1 frequencies, of which the first and the last are real, and back.
///
/// The spectrum is in the data's place: frequency k from 1 to n - 1 as real part 2k and imaginary part 2k +
/// 1, frequency 0 (the sum of all values) as element 0, and frequency n, the highest, as element 1.
/// Frequencies above n would be the conjugates of those below. The inverse gives back the values without
/// another factor.
///
/// @param data  2n reals.
/// @param n     HALF the number of values, as many complex points: a power of two.
/// @param sign  1: the transform. Any other value: the inverse.
ZPA_C_API void realFFT(float* data, int n, int sign);
/// realFFT in double precision, with the same arguments.
ZPA_C_API void realFFT_DBL(double* data, int n, int sign);

/// Two transforms of real values at the cost of one: with sign +1, without a factor.
/// @param data1  n reals.
/// @param data2  n reals.
/// @param fft1   Out: the n points of the first one's spectrum, both halves. Must not overlap the inputs.
/// @param fft2   Out: the second one's. Must not overlap the inputs or `fft1`.
/// @param n      The number of values of each, a power of two.
ZPA_C_API void realFFT2(float const* data1, float const* data2, float* fft1, float* fft2, int n);
/// realFFT2 in double precision, with the same arguments.
ZPA_C_API void realFFT2_DBL(double const* data1, double const* data2, double* fft1, double* fft2, int n);

/// The inverse of realFFT2: from two spectra to their real values, divided by n.
/// @param fft1  n points. OVERWRITTEN.
/// @param fft2  n points, left as they were.
/// @param out1  Out: n reals; may be `fft1`.
/// @param out2  Out: n reals.
/// @param n     The number of points of each, a power of two.
ZPA_C_API void realIFFT2(float* fft1, float const* fft2, float* out1, float* out2, int n);
/// realIFFT2 in double precision, with the same arguments.
ZPA_C_API void realIFFT2_DBL(double* fft1, double const* fft2, double* out1, double* out2, int n);

/// Correlates two real sequences as if each went on for ever:
///
///     ans[lag] = sum over j of data1[j] data2[(j + lag) mod n], divided by n / 2
///
/// The spectrum of `data1` is the one that is conjugated: many texts have the lag the other way round.
/// correl_DBL has NO division by n / 2. For one value each, both give the product of the two.
///
/// @param data1  n reals.
/// @param data2  n reals.
/// @param n      A power of two.
/// @param ans    Out: n reals; may be one of the inputs.
/// @param work   2n reals that are overwritten, or null, to have them allocated for the call. If that fails
///               it is logged with code 1 as "correl(): Memory allocation failed for ... bytes.", and `ans`
///               is left as it was.
ZPA_C_API void correl(float const* data1, float const* data2, int n, float* ans, float* work);
/// Correlates two real sequences, without a factor: correl in double precision, times n / 2.
///
/// It allocates 2n reals for the call. If that fails it is logged with code 1 as "correl_DBL(): Memory
/// allocation failed for ... bytes.", and `ans` is left as it was.
///
/// @param data1  n reals.
/// @param data2  n reals.
/// @param n      A power of two.
/// @param ans    Out: n reals; may be one of the inputs.
ZPA_C_API void correl_DBL(double const* data1, double const* data2, int n, double* ans);

/// Convolves n real values with a filter, as if they went on for ever. For one value: the product of the two.
/// @param filter  n reals: the filter's spectrum, as realFFT_DBL(filter, n / 2, 1) leaves it. Read only.
/// @param data    n reals, replaced by the result, which has no further factor.
/// @param n       A power of two.
ZPA_C_API void convlv_DBL(double const* filter, double* data, int n);

}  // namespace ZPA

#endif
