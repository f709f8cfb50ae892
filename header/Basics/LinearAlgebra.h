// Vectors, matrices, systems of linear equations and singular values.
#ifndef ZPA_BASICS_LINEARALGEBRA_H
#define ZPA_BASICS_LINEARALGEBRA_H

#include <Basics/CoreTypes.h>

/// @file
/// Two conventions live side by side, and each routine belongs to one of them.
///
/// Offset: an offset vector is a pointer `v` of which `v[nl]` to `v[nh]` are valid, an offset matrix a
/// pointer `m` to row pointers `m[nrl]` to `m[nrh]`, each valid from `ncl` to `nch`. The routines that take
/// them begin at 1: alloc_vector, alloc_matrix, delete_vector, delete_matrix, svdcmp, svbksb (float) and
/// dsvdcmp_DBL (double).
///
/// Flat: vectors begin at 0; a matrix is one block of rows, element (i, j) at `i * n + j`; all in double.
/// Note that ludcmp, lubksb and sollequ work in double too: the routines with _DBL in their names differ in
/// their messages and in where their work space comes from, not in precision.
///
/// All run on the caller's thread, keep nothing between calls, throw nothing, and give the same bits on every
/// machine. A null pointer is reported with code 2 and the routine's name, as in "ludcmp(): Null pointer.",
/// and a size below 1 does nothing. Numbers that are not numbers give results that are not numbers.

namespace ZPA {

/// Allocates an offset vector, not initialised. One element more than needed is allocated: `nl` is the
/// second.
/// @param nl  The first index, 1 by custom.
/// @param nh  The last index; nl - 1 for no elements.
/// @return the vector, to be freed with delete_vector; null if there is no memory, or `nh` is below nl - 1:
///         code 1, "alloc_vector(): Memory allocation failed for ... bytes."
ZPA_C_API float* alloc_vector(int nl, int nh);
/// Frees an offset vector; null is ignored.
/// @param v   From alloc_vector.
/// @param nl  As given to alloc_vector.
ZPA_C_API void delete_vector(float* v, int nl);

/// Allocates an offset matrix, not initialised, whose rows lie in one block one behind the other: `m[i + 1]`
/// is `m[i]` plus the columns.
/// @param nrl  The first row.
/// @param nrh  The last row; nrl - 1 for none.
/// @param ncl  The first column.
/// @param nch  The last column; ncl - 1 for none.
/// @return the matrix, to be freed with delete_matrix; null if there is no memory, or a last index is lower:
///         code 1, "alloc_matrix(): Memory allocation failed for ... bytes." If there was memory for the row
///         pointers and not for the elements, the row pointers are NOT released.
ZPA_C_API float** alloc_matrix(int nrl, int nrh, int ncl, int nch);
/// Frees an offset matrix; null is ignored.
/// @param m    From alloc_matrix. Its first row pointer must be the one that it came with.
/// @param nrl  As given to alloc_matrix.
/// @param nrh  Not needed.
/// @param ncl  As given to alloc_matrix.
ZPA_C_API void delete_matrix(float** m, int nrl, int nrh, int ncl);

/// out[i] = a[i] - b[i]
/// @param a    n elements.
/// @param b    n elements.
/// @param n    Their number.
/// @param out  n elements; may be `a` or `b`.
/// @return `out`
ZPA_C_API double* vvdiff(double const* a, double const* b, int n, double* out);

/// The inner product of two vectors of n elements; 0 if there are none, or a pointer is null.
ZPA_C_API double viprod(double const* a, double const* b, int n);

/// y = a x
/// @param a        rows * columns elements.
/// @param x        `columns` elements.
/// @param y        Out: `rows` elements. Must overlap neither.
/// @param rows     Rows of the matrix.
/// @param columns  Columns of the matrix; if there are none, y becomes zero.
ZPA_C_API void mvmul(double const* a, double const* x, double* y, int rows, int columns);

/// The square root of a * a + b * b, without overflow or underflow of the squares.
ZPA_C_API float pythag(float a, float b);
/// pythag in double precision, with the same arguments.
ZPA_C_API double dpythag_DBL(double a, double b);

/// Factors a square matrix into triangles (Crout's method; L. Fox, "An Introduction to Numerical Linear
/// Algebra", 1964), with partial pivoting by elements scaled to the largest of their row.
///
/// Work space comes from the stack for up to 64 rows, else from the heap. Cost: 2/3 n^3 operations.
///
/// Neither failure is told to the caller but in the log; `indx` and `d` are left as they were. A row of
/// zeros: code 999, "ludcmp() - Singular matrix."; `a` is left unchanged. No memory: code 1, "ludcmp():
/// Memory allocation failed for ... bytes." A matrix that turns out to be singular later is NOT reported: a
/// pivot of zero is replaced by 1e-20.
///
/// @param a     n * n elements, replaced: below the diagonal the lower triangle, whose diagonal is 1, and
///              from the diagonal on the upper one.
/// @param n     Rows and columns.
/// @param indx  Out: n numbers; in step j, rows j and indx[j] (0 and up) were exchanged.
/// @param d     Out: 1 for an even number of exchanges, else -1. The determinant is d times the diagonal's
///              product.
ZPA_C_API void ludcmp(double* a, int n, int* indx, double* d);
/// ludcmp with work space always from the heap, and another text for a row of zeros: code 999, "ludcmp_DBL():
/// singular matrix."
/// @param a     n * n elements, replaced as by ludcmp.
/// @param n     Rows and columns.
/// @param indx  Out: n numbers, as from ludcmp.
/// @param d     Out: as from ludcmp.
ZPA_C_API void ludcmp_DBL(double* a, int n, int* indx, double* d);

/// Solves a system of linear equations that ludcmp has factored.
/// @param a     n * n elements from ludcmp. Read only.
/// @param n     The number of unknowns.
/// @param indx  n numbers from ludcmp. One that is not from 0 to n - 1 is refused: code 3, "lubksb(): Row
///              index out of range."
/// @param b     n elements: the right-hand side, replaced by the solution.
ZPA_C_API void lubksb(double const* a, int n, int const* indx, double* b);
/// lubksb under another name.
/// Arguments and effects are the same.
ZPA_C_API void lubksb_DBL(double const* a, int n, int const* indx, double* b);

/// Solves a x = b. Up to 40 unknowns nothing is allocated.
///
/// The caller is NOT told of a singular matrix: ludcmp logs a row of zeros, and what is left in `b` means
/// nothing then, as where ludcmp logs that it has no memory. No memory for sollequ itself: code 1, "sollequ():
/// Memory allocation failed for ... bytes."; `b` is left unchanged.
///
/// @param a  n * n elements. DESTROYED.
/// @param n  The number of unknowns.
/// @param b  n elements: the right-hand side, replaced by the solution.
ZPA_C_API void sollequ(double* a, int n, double* b);
/// sollequ by way of ludcmp_DBL. No memory: "sollequ_DBL(): Memory allocation failed for ... bytes."
/// @param a  n * n elements. DESTROYED.
/// @param n  The number of unknowns.
/// @param b  n elements: the right-hand side, replaced by the solution.
ZPA_C_API void sollequ_DBL(double* a, int n, double* b);

/// Inverts a square matrix. Cost: 2 n^3 operations.
///
/// The caller is NOT told of a singular matrix: ludcmp_DBL logs a row of zeros, and what is left in `inverse`
/// means nothing then, as where ludcmp_DBL logs that it has no memory. No memory for invmatrix_DBL itself: code
/// 1, "invmatrix_DBL(): Memory allocation failed for ... bytes."; `inverse` is left unchanged.
///
/// @param a        n * n elements. DESTROYED.
/// @param inverse  Out: n * n elements. Must not overlap `a`.
/// @param n        Rows and columns.
ZPA_C_API void invmatrix_DBL(double* a, double* inverse, int n);

/// Takes a matrix apart into U diag(w) V-transposed, with columns of U and V that are orthogonal and of
/// length 1 (G. H. Golub, C. Reinsch, "Singular value decomposition and least squares solutions", 1970):
/// reduced to two diagonals by reflections, and then to one by implicit QR steps, at most 30 for each
/// singular value. Very large and very small matrices are scaled by a power of two for that.
///
/// Work space of m * n + n * n elements and a few more comes from the heap. Cost: about 4 m n^2 + 8 n^3
/// operations.
///
/// @param a  Offset matrix, rows 1 to m, columns 1 to n; replaced by U.
/// @param m  Rows. With fewer rows than columns, columns of U and singular values that there is no rank for
///           are zero.
/// @param n  Columns.
/// @param w  Out: offset vector, 1 to n: the singular values, none below zero, in no order. One beyond the
///           largest number, which elements near it may have, is infinite.
/// @param v  Out: offset matrix, 1 to n both ways: V, not its transpose.
///
/// @retval 0    Done, or nothing to do. A single column needs no steps, and is done whatever it holds.
/// @retval 2    "svdcmp(): Null pointer."
/// @retval 5    No memory for the work vector: "svdcmp():alloc_vector() for 'rv1' failed with params nl=%d,
///              nh=%d"
/// @retval 1    No memory for the rest: "svdcmp(): Memory allocation failed for ... bytes."
/// @retval 999  "svdcmp() - No convergence in 30 svdcmp iterations.", as with two columns or more in which an
///              entry is infinite or not a number. What was reached is left in `a`, `w` and `v`.
ZPA_C_API SOLVANE_RETURNCODE svdcmp(float** a, int m, int n, float* w, float** v);

/// svdcmp in double precision.
/// @param a  Offset matrix, rows 1 to m, columns 1 to n; replaced by U.
/// @param m  Rows.
/// @param n  Columns.
/// @param w  Out: offset vector, 1 to n: the singular values, none below zero, in no order.
/// @param v  Out: offset matrix, 1 to n both ways: V, not its transpose.
///
/// @retval 0    Done, or nothing to do.
/// @retval 2    "dsvdcmp_DBL(): Null pointer."
/// @retval 999  No memory: "svdcmp(): no enough memory."
/// @retval 999  "svdcmp(): no convergence in 30 svdcmp iterations." What was reached is left in `a`, `w` and
///              `v`.
ZPA_C_API SOLVANE_RETURNCODE dsvdcmp_DBL(double** a, int m, int n, double* w, double** v);

/// Solves a x = b, or comes as near as can be, with a matrix that svdcmp has taken apart: x = V diag(1/w)
/// U-transposed b. A singular value of zero counts as one without an inverse: set those to zero that are too
/// small to be trusted.
/// @param u  Offset matrix, rows 1 to m, columns 1 to n.
/// @param w  Offset vector, 1 to n.
/// @param v  Offset matrix, 1 to n both ways.
/// @param m  Rows.
/// @param n  Columns.
/// @param b  Offset vector, 1 to m. Read only.
/// @param x  Out: offset vector, 1 to n; may be `b`.
///
/// @retval 0  Done, or nothing to do.
/// @retval 2  "svbksb(): Null pointer."
/// @retval 5  No memory: "svbksb(): alloc_vector() for 'tmp' failed with params nl=%d, nh=%d"
ZPA_C_API SOLVANE_RETURNCODE svbksb(float** u, float* w, float** v, int m, int n, float* b, float* x);

}  // namespace ZPA

#endif
