/* Linear algebra: matrix products, determinants, inverses and solvers over
 * the BLAS/LAPACK module the library loads at start-up.
 *
 * Matrices are 2-D handles, row-major; vectors are 1-D handles. Every export
 * here stores its status in the trailing `status` argument (0, a negative
 * error or a positive warning) and returns 0, or the host's own status when
 * resizing an output failed (the status is then -20001). On an error every
 * output array is emptied and every scalar output reads NaN. Without the
 * BLAS/LAPACK module the exports report -20001.
 *
 * Checks, in order: an input with a dimension below 1 (-20003); a matrix
 * that must be square is not (-20040); inner dimensions of a product, or the
 * rows of a right-hand-side matrix, do not match (-20039); a right-hand-side
 * vector of the wrong length (-20002); a selector out of range (-20061); an
 * input holding NaN, an infinity or the largest magnitude (-20068). Solvers
 * report a singular matrix as -20041. Cx exports take complex matrices and
 * call the complex routines of the same names. */
#ifndef JQANLYS_LINALG_H
#define JQANLYS_LINALG_H
#ifdef __cplusplus
extern "C" {
#endif

/* A complex scalar: real part, then imaginary part. */
typedef struct JQComplex {
  double re;
  double im;
} JQComplex;

/* R = A * B. An inner dimension of 0 gives rows(A) x columns(B) NaNs; an
 * empty outer dimension an empty R. aligned != 0 computes through aligned
 * copies of the operands (same result). */
JQ_API int32_t MatrixMul_head(JQ_IN JQMatF64 a, JQ_IN JQMatF64 b, JQ_OUT JQMatF64 r, JQ_OUT int32_t* status);
JQ_API int32_t MatrixMulAligned_head(JQ_IN JQMatF64 a, JQ_IN JQMatF64 b, JQ_OUT JQMatF64 r, int32_t aligned, JQ_OUT int32_t* status);
JQ_API int32_t AxBCxCIN(JQ_IN JQMatC128 a, JQ_IN JQMatC128 b, JQ_OUT JQMatC128 r, JQ_OUT int32_t* status);
JQ_API int32_t AxBCxAlignedCIN(JQ_IN JQMatC128 a, JQ_IN JQMatC128 b, JQ_OUT JQMatC128 r, int32_t aligned, JQ_OUT int32_t* status);

/* Determinant. Matrix type: 0 general, 1 positive definite (not positive
 * definite: determinant 0 and -20071), 2 lower and 3 upper triangular (the
 * product of the diagonal). A 2 x 2 matrix is always a11*a22 - a12*a21. A
 * singular general matrix gives 0 with status 0. */
JQ_API int32_t Determinant_head(JQ_IN JQMatF64 a, int32_t type, JQ_OUT double* determinant, JQ_OUT int32_t* status);
JQ_API int32_t CxDeterminant_head(JQ_IN JQMatC128 a, int32_t type, JQ_OUT JQComplex* determinant, JQ_OUT int32_t* status);

/* Inverse of a square matrix through LU. */
JQ_API int32_t InvMatrixLUDri_head(JQ_IN JQMatF64 a, JQ_OUT JQMatF64 inverse, JQ_OUT int32_t* status);
JQ_API int32_t CxInvMatrixLUDri_head(JQ_IN JQMatC128 a, JQ_OUT JQMatC128 inverse, JQ_OUT int32_t* status);

/* A x = b (vector) and A X = B (matrix) for a square A, through LU. */
JQ_API int32_t EqsByLUDri_head(JQ_IN JQMatF64 a, JQ_IN JQArrF64 b, JQ_OUT JQArrF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxEqsByLUDri_head(JQ_IN JQMatC128 a, JQ_IN JQArrC128 b, JQ_OUT JQArrC128 x, JQ_OUT int32_t* status);
JQ_API int32_t EqsSetByLUDri_head(JQ_IN JQMatF64 a, JQ_IN JQMatF64 b, JQ_OUT JQMatF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxEqsSetByLUDri_head(JQ_IN JQMatC128 a, JQ_IN JQMatC128 b, JQ_OUT JQMatC128 x, JQ_OUT int32_t* status);

#ifdef __cplusplus
}
#endif
#endif
