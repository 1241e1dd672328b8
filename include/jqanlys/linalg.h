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

/* Transpose; trace (sum of the diagonal of any shape). */
JQ_API int32_t Transpose_head(JQ_IN JQMatF64 a, JQ_OUT JQMatF64 t, JQ_OUT int32_t* status);
JQ_API int32_t CxTranspose_head(JQ_IN JQMatC128 a, JQ_OUT JQMatC128 t, JQ_OUT int32_t* status);
JQ_API int32_t Trace_head(JQ_IN JQMatF64 a, JQ_OUT double* trace, JQ_OUT int32_t* status);
JQ_API int32_t CxTrace_head(JQ_IN JQMatC128 a, JQ_OUT JQComplex* trace, JQ_OUT int32_t* status);

/* Matrix norm and condition number. Type: 0 the 2-norm, 1 the 1-norm, 2 the
 * Frobenius norm, 3 the infinity norm. The condition number of type 0 takes
 * any shape (sigma_max / sigma_min, +infinity when sigma_min is 0); types
 * 1-3 need a square matrix and give +infinity, status 0, when it is singular. */
JQ_API int32_t Norm_head(JQ_IN JQMatF64 a, int32_t type, JQ_OUT double* norm, JQ_OUT int32_t* status);
JQ_API int32_t CxNorm_head(JQ_IN JQMatC128 a, int32_t type, JQ_OUT double* norm, JQ_OUT int32_t* status);
JQ_API int32_t CondNumber_head(JQ_IN JQMatF64 a, int32_t type, JQ_OUT double* cond, JQ_OUT int32_t* status);
JQ_API int32_t CxCondNumber_head(JQ_IN JQMatC128 a, int32_t type, JQ_OUT double* cond, JQ_OUT int32_t* status);

/* Numerical rank and pseudo-inverse (columns x rows): singular values above
 * the tolerance count; a negative tolerance means
 * max(rows, columns) * sigma_max * 2.220446049250313e-16. The rank reads -1
 * on an error. */
JQ_API int32_t Rank_head(JQ_IN JQMatF64 a, double tolerance, JQ_OUT int32_t* rank, JQ_OUT int32_t* status);
JQ_API int32_t CxRank_head(JQ_IN JQMatC128 a, double tolerance, JQ_OUT int32_t* rank, JQ_OUT int32_t* status);
JQ_API int32_t PseudoInverse_head(JQ_IN JQMatF64 a, double tolerance, JQ_OUT JQMatF64 pinv, JQ_OUT int32_t* status);
JQ_API int32_t CxPseudoInverse_head(JQ_IN JQMatC128 a, double tolerance, JQ_OUT JQMatC128 pinv, JQ_OUT int32_t* status);

/* Dot product (complex: sum of x[i] * y[i], unconjugated), outer product
 * x * y^T and Kronecker product. */
JQ_API int32_t DotProduct_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_OUT double* dot, JQ_OUT int32_t* status);
JQ_API int32_t DotprodCx(JQ_IN JQArrC128 x, JQ_IN JQArrC128 y, JQ_OUT JQComplex* dot, JQ_OUT int32_t* status);
JQ_API int32_t OuterProd_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_OUT JQMatF64 r, JQ_OUT int32_t* status);
JQ_API int32_t OuterProdCx_head(JQ_IN JQArrC128 x, JQ_IN JQArrC128 y, JQ_OUT JQMatC128 r, JQ_OUT int32_t* status);
JQ_API int32_t KroneckerProd_H(JQ_IN JQMatF64 a, JQ_IN JQMatF64 b, JQ_OUT JQMatF64 r, JQ_OUT int32_t* status);
JQ_API int32_t CxKroneckerProd_H(JQ_IN JQMatC128 a, JQ_IN JQMatC128 b, JQ_OUT JQMatC128 r, JQ_OUT int32_t* status);

/* y = A x (a negative dimension: -20004) and y = x^T A (through the matrix
 * product: a length of x other than rows(A) is -20039). */
JQ_API int32_t AxVect_head(JQ_IN JQMatF64 a, JQ_IN JQArrF64 x, JQ_OUT JQArrF64 y, JQ_OUT int32_t* status);
JQ_API int32_t AxVectAligned_head(JQ_IN JQMatF64 a, JQ_IN JQArrF64 x, JQ_OUT JQArrF64 y, int32_t aligned, JQ_OUT int32_t* status);
JQ_API int32_t AxVectorCx(JQ_IN JQMatC128 a, JQ_IN JQArrC128 x, JQ_OUT JQArrC128 y, JQ_OUT int32_t* status);
JQ_API int32_t AxVectorCxAligned(JQ_IN JQMatC128 a, JQ_IN JQArrC128 x, JQ_OUT JQArrC128 y, int32_t aligned, JQ_OUT int32_t* status);
JQ_API int32_t vectxA_head(JQ_IN JQArrF64 x, JQ_IN JQMatF64 a, JQ_OUT JQArrF64 y, JQ_OUT int32_t* status);
JQ_API int32_t vectxAAligned_head(JQ_IN JQArrF64 x, JQ_IN JQMatF64 a, JQ_OUT JQArrF64 y, int32_t aligned, JQ_OUT int32_t* status);
JQ_API int32_t CxVectxA_head(JQ_IN JQArrC128 x, JQ_IN JQMatC128 a, JQ_OUT JQArrC128 y, JQ_OUT int32_t* status);
JQ_API int32_t CxVectxAAligned_head(JQ_IN JQArrC128 x, JQ_IN JQMatC128 a, JQ_OUT JQArrC128 y, int32_t aligned, JQ_OUT int32_t* status);

/* Vector p-norm: p = +infinity the largest magnitude, -infinity the
 * smallest, p NaN -20068, p = 0 -20141. normalize != 0 divides the vector
 * by a non-zero norm in place. */
JQ_API int32_t vectorNormH(JQ_INOUT JQArrF64 x, double p, int32_t normalize, JQ_OUT double* norm, JQ_OUT int32_t* status);
JQ_API int32_t CxVectorNormH(JQ_INOUT JQArrC128 x, double p, int32_t normalize, JQ_OUT double* norm, JQ_OUT int32_t* status);

/* LU with partial pivoting in place: unit L below the diagonal, U on and
 * above. pivots: rows 0-based indices (rows past min(rows, columns) hold
 * their own index); parity 1 for an odd number of interchanges. An exactly
 * zero pivot gives the warning 20003 with the factors. */
JQ_API int32_t LU_head(JQ_INOUT JQMatF64 a, JQ_OUT JQArrI32 pivots, JQ_OUT int32_t* parity, JQ_OUT int32_t* status);
JQ_API int32_t CxLU_head(JQ_INOUT JQMatC128 a, JQ_OUT JQArrI32 pivots, JQ_OUT int32_t* parity, JQ_OUT int32_t* status);

/* Cholesky factor L (A = L L^H, lower triangular) and inverses of positive
 * definite matrices (not positive definite: -20071), inverse of a
 * triangular matrix (type 0 lower, 1 upper; the other triangle is ignored). */
JQ_API int32_t FullCholesky_head(JQ_IN JQMatF64 a, JQ_OUT JQMatF64 l, JQ_OUT int32_t* status);
JQ_API int32_t CxFullCholesky_head(JQ_IN JQMatC128 a, JQ_OUT JQMatC128 l, JQ_OUT int32_t* status);
JQ_API int32_t InvMatrixChoDri_head(JQ_IN JQMatF64 a, JQ_OUT JQMatF64 inverse, JQ_OUT int32_t* status);
JQ_API int32_t CxInvMatrixChoDri_head(JQ_IN JQMatC128 a, JQ_OUT JQMatC128 inverse, JQ_OUT int32_t* status);
/* The Prealloc form writes into an inverse that already holds n x n
 * elements without resizing it (other shapes are resized). */
JQ_API int32_t PreallocInvMatrixChoDri_H(JQ_IN JQMatF64 a, JQ_INOUT JQMatF64 inverse, JQ_OUT int32_t* status);
JQ_API int32_t CxPreallocInvMatrixChoDri_H(JQ_IN JQMatC128 a, JQ_INOUT JQMatC128 inverse, JQ_OUT int32_t* status);
JQ_API int32_t InvMatrixTriDri_head(JQ_IN JQMatF64 a, int32_t type, JQ_OUT JQMatF64 inverse, JQ_OUT int32_t* status);
JQ_API int32_t CxInvMatrixTriDri_head(JQ_IN JQMatC128 a, int32_t type, JQ_OUT JQMatC128 inverse, JQ_OUT int32_t* status);

/* QR: A = Q R with Q rows x k (orthonormal columns), R k x columns upper
 * triangular, k = min(rows, columns). QRDecH pivots the columns: A P = Q R,
 * pivots[j] the 0-based original column at position j. */
JQ_API int32_t qrd_head(JQ_IN JQMatF64 a, JQ_OUT JQMatF64 q, JQ_OUT JQMatF64 r, JQ_OUT int32_t* status);
JQ_API int32_t Cxqrd_head(JQ_IN JQMatC128 a, JQ_OUT JQMatC128 q, JQ_OUT JQMatC128 r, JQ_OUT int32_t* status);
JQ_API int32_t QRDecH(JQ_IN JQMatF64 a, JQ_OUT JQMatF64 q, JQ_OUT JQMatF64 r, JQ_OUT JQArrI32 pivots, JQ_OUT int32_t* status);
JQ_API int32_t CxQRDecH(JQ_IN JQMatC128 a, JQ_OUT JQMatC128 q, JQ_OUT JQMatC128 r, JQ_OUT JQArrI32 pivots, JQ_OUT int32_t* status);

/* Singular value decomposition A = U S V^H, singular values descending.
 * SVD_head: U rows x k, S k values, V columns x k. SVDEx_head: U rows x rows,
 * S a rows x columns matrix, V columns x columns. SVDS_head: the values. */
JQ_API int32_t SVD_head(JQ_IN JQMatF64 a, JQ_OUT JQMatF64 u, JQ_OUT JQArrF64 s, JQ_OUT JQMatF64 v, JQ_OUT int32_t* status);
JQ_API int32_t CxSVD_head(JQ_IN JQMatC128 a, JQ_OUT JQMatC128 u, JQ_OUT JQArrF64 s, JQ_OUT JQMatC128 v, JQ_OUT int32_t* status);
JQ_API int32_t SVDEx_head(JQ_IN JQMatF64 a, JQ_OUT JQMatF64 u, JQ_OUT JQMatF64 s, JQ_OUT JQMatF64 v, JQ_OUT int32_t* status);
JQ_API int32_t CxSVDEx_head(JQ_IN JQMatC128 a, JQ_OUT JQMatC128 u, JQ_OUT JQMatF64 s, JQ_OUT JQMatC128 v, JQ_OUT int32_t* status);
JQ_API int32_t SVDS_head(JQ_IN JQMatF64 a, JQ_OUT JQArrF64 s, JQ_OUT int32_t* status);
JQ_API int32_t CxSVDS_head(JQ_IN JQMatC128 a, JQ_OUT JQArrF64 s, JQ_OUT int32_t* status);

/* Generalized SVD of A (m x n) and B (p x n), with r the rank of [A; B]:
 * A = U C X and B = V S X, U (m x m) and V (p x p) unitary, C (m x r) and
 * S (p x r) real diagonal with C^T C + S^T S = I, X (r x n). Column counts
 * differ: -20039; no convergence: -20062. */
JQ_API int32_t GSVD_head(JQ_IN JQMatF64 a, JQ_IN JQMatF64 b, JQ_OUT JQMatF64 u, JQ_OUT JQMatF64 v, JQ_OUT JQMatF64 c, JQ_OUT JQMatF64 s, JQ_OUT JQMatF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxGSVD_head(JQ_IN JQMatC128 a, JQ_IN JQMatC128 b, JQ_OUT JQMatC128 u, JQ_OUT JQMatC128 v, JQ_OUT JQMatF64 c, JQ_OUT JQMatF64 s, JQ_OUT JQMatC128 x, JQ_OUT int32_t* status);

/* Eigenvalues and right eigenvectors (columns, unit 2-norm) of a general
 * matrix, complex for real input too; of a symmetric (Hermitian) matrix,
 * values ascending. No convergence: -20062. */
JQ_API int32_t EigenValueVector_head(JQ_IN JQMatF64 a, JQ_OUT JQArrC128 values, JQ_OUT JQMatC128 vectors, JQ_OUT int32_t* status);
JQ_API int32_t CxEigenValueVector_head(JQ_IN JQMatC128 a, JQ_OUT JQArrC128 values, JQ_OUT JQMatC128 vectors, JQ_OUT int32_t* status);
JQ_API int32_t SymEvectorEvalue_head(JQ_IN JQMatF64 a, JQ_OUT JQArrF64 values, JQ_OUT JQMatF64 vectors, JQ_OUT int32_t* status);
JQ_API int32_t CxSymEvectorEvalue_head(JQ_IN JQMatC128 a, JQ_OUT JQArrF64 values, JQ_OUT JQMatC128 vectors, JQ_OUT int32_t* status);

/* Positive definite systems through Cholesky. */
JQ_API int32_t EqsByCholeskyDri_head(JQ_IN JQMatF64 a, JQ_IN JQArrF64 b, JQ_OUT JQArrF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxEqsByCholeskyDri_head(JQ_IN JQMatC128 a, JQ_IN JQArrC128 b, JQ_OUT JQArrC128 x, JQ_OUT int32_t* status);
JQ_API int32_t EqsSetByCholeskyDri_head(JQ_IN JQMatF64 a, JQ_IN JQMatF64 b, JQ_OUT JQMatF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxEqsSetByCholeskyDri_head(JQ_IN JQMatC128 a, JQ_IN JQMatC128 b, JQ_OUT JQMatC128 x, JQ_OUT int32_t* status);

/* Minimum-norm least-squares solutions of A x = b for any shape. A tolerance
 * below 0 means machine epsilon (relative to sigma_max). A rank-deficient
 * system gives the warning 20001, which the GenLinEqs forms (not the SVD
 * ones) turn into 0. GenLinEqsbySVD2011_head always decomposes A itself.
 * GenLinEqs2010_head returns its status and fills the solution and the
 * singular values of A. Complex forms always decompose A. */
JQ_API int32_t GenLinEqs_head(JQ_IN JQMatF64 a, JQ_IN JQArrF64 b, JQ_OUT JQArrF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxGenLinEqs_head(JQ_IN JQMatC128 a, JQ_IN JQArrC128 b, JQ_OUT JQArrC128 x, JQ_OUT int32_t* status);
JQ_API int32_t GenLinEqs82_head(JQ_IN JQMatF64 a, JQ_IN JQArrF64 b, double tolerance, JQ_OUT JQArrF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxGenLinEqs82_head(JQ_IN JQMatC128 a, JQ_IN JQArrC128 b, double tolerance, JQ_OUT JQArrC128 x, JQ_OUT int32_t* status);
JQ_API int32_t GenLinEqsbySVD2011_head(JQ_IN JQMatF64 a, JQ_IN JQArrF64 b, double tolerance, JQ_OUT JQArrF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxGenLinEqsbySVD2011_head(JQ_IN JQMatC128 a, JQ_IN JQArrC128 b, double tolerance, JQ_OUT JQArrC128 x, JQ_OUT int32_t* status);
JQ_API int32_t GenLinEqs2010_head(JQ_IN JQMatF64 a, JQ_IN JQArrF64 b, double tolerance, JQ_OUT JQArrF64 x, JQ_OUT JQArrF64 singular_values);
JQ_API int32_t CxGenLinEqs2010_head(JQ_IN JQMatC128 a, JQ_IN JQArrC128 b, double tolerance, JQ_OUT JQArrC128 x, JQ_OUT JQArrF64 singular_values);
JQ_API int32_t EqsSetBySVDDri_head(JQ_IN JQMatF64 a, JQ_IN JQMatF64 b, JQ_OUT JQMatF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxEqsSetBySVDDri_head(JQ_IN JQMatC128 a, JQ_IN JQMatC128 b, JQ_OUT JQMatC128 x, JQ_OUT int32_t* status);
JQ_API int32_t EqsSetBySVDDri82_head(JQ_IN JQMatF64 a, JQ_IN JQMatF64 b, double tolerance, JQ_OUT JQMatF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxEqsSetBySVDDri82_head(JQ_IN JQMatC128 a, JQ_IN JQMatC128 b, double tolerance, JQ_OUT JQMatC128 x, JQ_OUT int32_t* status);

/* Solve and inverse from LU factors and 0-based pivots as LU_head returns
 * them (a pivot outside [i, n): -20061). */
JQ_API int32_t LULinEqs_head(JQ_IN JQMatF64 lu, JQ_IN JQArrI32 pivots, JQ_IN JQArrF64 b, JQ_OUT JQArrF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxLULinEqs_head(JQ_IN JQMatC128 lu, JQ_IN JQArrI32 pivots, JQ_IN JQArrC128 b, JQ_OUT JQArrC128 x, JQ_OUT int32_t* status);
JQ_API int32_t LUInvMatrix_head(JQ_IN JQMatF64 lu, JQ_IN JQArrI32 pivots, JQ_OUT JQMatF64 inverse, JQ_OUT int32_t* status);
JQ_API int32_t CxLUInvMatrix_head(JQ_IN JQMatC128 lu, JQ_IN JQArrI32 pivots, JQ_OUT JQMatC128 inverse, JQ_OUT int32_t* status);

/* Tridiagonal systems: sub-diagonal (n - 1), diagonal (n), super-diagonal
 * (n - 1); a vector or a matrix of right-hand sides. */
JQ_API int32_t TriDiagEqsByLU_head(JQ_IN JQArrF64 sub, JQ_IN JQArrF64 diag, JQ_IN JQArrF64 super, JQ_IN JQArrF64 b, JQ_OUT JQArrF64 x, JQ_OUT int32_t* status);
JQ_API int32_t TriDiagEqsSetByLU_head(JQ_IN JQArrF64 sub, JQ_IN JQArrF64 diag, JQ_IN JQArrF64 super, JQ_IN JQMatF64 b, JQ_OUT JQMatF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxTriDiagEqsByLU_head(JQ_IN JQArrC128 sub, JQ_IN JQArrC128 diag, JQ_IN JQArrC128 super, JQ_IN JQArrC128 b, JQ_OUT JQArrC128 x, JQ_OUT int32_t* status);
JQ_API int32_t CxTriDiagEqsSetByLU_head(JQ_IN JQArrC128 sub, JQ_IN JQArrC128 diag, JQ_IN JQArrC128 super, JQ_IN JQMatC128 b, JQ_OUT JQMatC128 x, JQ_OUT int32_t* status);
/* Tridiagonal LU with partial pivoting: multipliers l (n - 1), U's diagonal
 * d (n), its first and second superdiagonals u (n - 1) and u2 (n - 2),
 * 0-based pivots (n); an exactly zero pivot gives the warning 20003. */
JQ_API int32_t TriDiagLU_head(JQ_IN JQArrF64 sub, JQ_IN JQArrF64 diag, JQ_IN JQArrF64 super, JQ_OUT JQArrF64 l, JQ_OUT JQArrF64 d, JQ_OUT JQArrF64 u, JQ_OUT JQArrF64 u2, JQ_OUT JQArrI32 pivots, JQ_OUT int32_t* status);
JQ_API int32_t CxTriDiagLU_head(JQ_IN JQArrC128 sub, JQ_IN JQArrC128 diag, JQ_IN JQArrC128 super, JQ_OUT JQArrC128 l, JQ_OUT JQArrC128 d, JQ_OUT JQArrC128 u, JQ_OUT JQArrC128 u2, JQ_OUT JQArrI32 pivots, JQ_OUT int32_t* status);

/* Property tests of a square matrix: result 1 or 0 (-1 on an error).
 * Symmetric (Hermitian) within n * eps * the largest magnitude; positive
 * definite: symmetric with every eigenvalue above 0; semi-definite: none
 * below -n * eps * the largest eigenvalue magnitude. */
JQ_API int32_t CheckSym_head(JQ_IN JQMatF64 a, JQ_OUT int32_t* result, JQ_OUT int32_t* status);
JQ_API int32_t CxCheckSym_head(JQ_IN JQMatC128 a, JQ_OUT int32_t* result, JQ_OUT int32_t* status);
JQ_API int32_t CheckPosdef_head(JQ_IN JQMatF64 a, JQ_OUT int32_t* result, JQ_OUT int32_t* status);
JQ_API int32_t CxCheckPosdef_head(JQ_IN JQMatC128 a, JQ_OUT int32_t* result, JQ_OUT int32_t* status);
JQ_API int32_t CheckPosSemiDef_head(JQ_IN JQMatF64 a, JQ_OUT int32_t* result, JQ_OUT int32_t* status);
JQ_API int32_t CxCheckPosSemiDef_head(JQ_IN JQMatC128 a, JQ_OUT int32_t* result, JQ_OUT int32_t* status);

/* Hessenberg form A = Q H Q^H; Schur form A = Z S Z^H (real data: S quasi
 * upper triangular with 2 x 2 blocks for complex pairs); characteristic
 * polynomial det(x I - A), coefficients constant first, leading 1. */
JQ_API int32_t Hessenberg_head(JQ_IN JQMatF64 a, JQ_OUT JQMatF64 h, JQ_OUT JQMatF64 q, JQ_OUT int32_t* status);
JQ_API int32_t CxHessenberg_head(JQ_IN JQMatC128 a, JQ_OUT JQMatC128 h, JQ_OUT JQMatC128 q, JQ_OUT int32_t* status);
JQ_API int32_t Schur_head(JQ_IN JQMatF64 a, JQ_OUT JQMatF64 s, JQ_OUT JQMatF64 z, JQ_OUT int32_t* status);
JQ_API int32_t CxSchur_head(JQ_IN JQMatC128 a, JQ_OUT JQMatC128 s, JQ_OUT JQMatC128 z, JQ_OUT int32_t* status);
/* Schur form with the diagonal block at row `from` moved to row `to`
 * (0-based; a 2 x 2 block moves whole; outside the matrix: -20061; a swap
 * too ill-conditioned to make: -20062). */
JQ_API int32_t Schur80_head(JQ_IN JQMatF64 a, int32_t from, int32_t to, JQ_OUT JQMatF64 s, JQ_OUT JQMatF64 z, JQ_OUT int32_t* status);
JQ_API int32_t CxSchur80_head(JQ_IN JQMatC128 a, int32_t from, int32_t to, JQ_OUT JQMatC128 s, JQ_OUT JQMatC128 z, JQ_OUT int32_t* status);
JQ_API int32_t MatrixCharacteristicPoly_head(JQ_IN JQMatF64 a, JQ_OUT JQArrF64 coefficients, JQ_OUT int32_t* status);
JQ_API int32_t CxMatrixCharacteristicPoly_head(JQ_IN JQMatC128 a, JQ_OUT JQArrC128 coefficients, JQ_OUT int32_t* status);

/* Matrix functions of a square matrix: the exponential (scaling and
 * squaring with a degree-13 Pade approximant), an integer power (negative:
 * of the inverse, -20041 when there is none), the principal square root
 * (complex, through the complex Schur form). */
JQ_API int32_t MatrixExp_head(JQ_IN JQMatF64 a, JQ_OUT JQMatF64 e, JQ_OUT int32_t* status);
JQ_API int32_t CxMatrixExp_head(JQ_IN JQMatC128 a, JQ_OUT JQMatC128 e, JQ_OUT int32_t* status);
JQ_API int32_t MatrixPower_head(JQ_IN JQMatF64 a, int32_t p, JQ_OUT JQMatF64 r, JQ_OUT int32_t* status);
JQ_API int32_t CxMatrixPower_head(JQ_IN JQMatC128 a, int32_t p, JQ_OUT JQMatC128 r, JQ_OUT int32_t* status);
JQ_API int32_t MatrixSqrt_head(JQ_IN JQMatF64 a, JQ_OUT JQMatC128 x, JQ_OUT int32_t* status);
JQ_API int32_t CxMatrixSqrt_head(JQ_IN JQMatC128 a, JQ_OUT JQMatC128 x, JQ_OUT int32_t* status);
/* The principal square root with the status as the result. The real form
 * gives a real root, which exists when no eigenvalue of A lies on the
 * negative real axis (one does: -20027); the complex form always has one. */
JQ_API int32_t MatrixSqrtH(JQ_IN JQMatF64 a, JQ_OUT JQMatF64 x);
JQ_API int32_t CxMatrixSqrtH(JQ_IN JQMatC128 a, JQ_OUT JQMatC128 x);
/* Principal logarithm of a diagonalizable matrix, through its
 * eigendecomposition (a zero eigenvalue: -20027); the matrix V diag(values)
 * V^-1 of given eigenvalues and eigenvectors (columns; V singular: -20041). */
JQ_API int32_t MatrixLn_head(JQ_IN JQMatF64 a, JQ_OUT JQMatC128 l, JQ_OUT int32_t* status);
JQ_API int32_t CxMatrixLn_head(JQ_IN JQMatC128 a, JQ_OUT JQMatC128 l, JQ_OUT int32_t* status);
JQ_API int32_t CreateMatrixFromEVs_head(JQ_IN JQArrF64 values, JQ_IN JQMatF64 vectors, JQ_OUT JQMatF64 a, JQ_OUT int32_t* status);
JQ_API int32_t CxCreateMatrixFromEVs_head(JQ_IN JQArrC128 values, JQ_IN JQMatC128 vectors, JQ_OUT JQMatC128 a, JQ_OUT int32_t* status);

/* Packed storage: the lower triangle of an n x n matrix, row after row, in
 * n (n + 1) / 2 elements (a length that is not such a number: -20002).
 * Unpacking gives the full symmetric (Hermitian) matrix. The H forms return
 * their status. Cholesky_head packs the lower factor L (A = L L^H), which
 * CholeskyLinEqs_head and Cholesky_InvMatrix_head take; the triangular
 * solvers and Tri_InvMatrix_head take a packed lower triangular matrix. */
JQ_API int32_t Matrix_to_Compact_head(JQ_IN JQMatF64 a, JQ_OUT JQArrF64 packed, JQ_OUT int32_t* status);
JQ_API int32_t CxMatrix_to_Compact_head(JQ_IN JQMatC128 a, JQ_OUT JQArrC128 packed, JQ_OUT int32_t* status);
JQ_API int32_t Compact_to_Matrix_head(JQ_IN JQArrF64 packed, JQ_OUT JQMatF64 a, JQ_OUT int32_t* status);
JQ_API int32_t CxCompact_to_Matrix_head(JQ_IN JQArrC128 packed, JQ_OUT JQMatC128 a, JQ_OUT int32_t* status);
JQ_API int32_t MatrixToCompact_H(JQ_IN JQMatF64 a, JQ_OUT JQArrF64 packed);
JQ_API int32_t CxMatrixToCompact_H(JQ_IN JQMatC128 a, JQ_OUT JQArrC128 packed);
JQ_API int32_t CompactToMatrix_H(JQ_IN JQArrF64 packed, JQ_OUT JQMatF64 a);
JQ_API int32_t CxCompactToMatrix_H(JQ_IN JQArrC128 packed, JQ_OUT JQMatC128 a);
JQ_API int32_t Cholesky_head(JQ_IN JQMatF64 a, JQ_OUT JQArrF64 factor, JQ_OUT int32_t* status);
JQ_API int32_t CxCholesky_head(JQ_IN JQMatC128 a, JQ_OUT JQArrC128 factor, JQ_OUT int32_t* status);
JQ_API int32_t CholeskyLinEqs_head(JQ_IN JQArrF64 factor, JQ_IN JQArrF64 b, JQ_OUT JQArrF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxCholeskyLinEqs_head(JQ_IN JQArrC128 factor, JQ_IN JQArrC128 b, JQ_OUT JQArrC128 x, JQ_OUT int32_t* status);
JQ_API int32_t Cholesky_InvMatrix_head(JQ_IN JQArrF64 factor, JQ_OUT JQMatF64 inverse, JQ_OUT int32_t* status);
JQ_API int32_t CxCholesky_InvMatrix_head(JQ_IN JQArrC128 factor, JQ_OUT JQMatC128 inverse, JQ_OUT int32_t* status);
JQ_API int32_t TriLinEqs_head(JQ_IN JQArrF64 l, JQ_IN JQArrF64 b, JQ_OUT JQArrF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxTriLinEqs_head(JQ_IN JQArrC128 l, JQ_IN JQArrC128 b, JQ_OUT JQArrC128 x, JQ_OUT int32_t* status);
JQ_API int32_t TriEqsSetDri_head(JQ_IN JQArrF64 l, JQ_IN JQMatF64 b, JQ_OUT JQMatF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxTriEqsSetDri_head(JQ_IN JQArrC128 l, JQ_IN JQMatC128 b, JQ_OUT JQMatC128 x, JQ_OUT int32_t* status);
JQ_API int32_t Tri_InvMatrix_head(JQ_IN JQArrF64 l, JQ_OUT JQArrF64 inverse, JQ_OUT int32_t* status);
JQ_API int32_t CxTri_InvMatrix_head(JQ_IN JQArrC128 l, JQ_OUT JQArrC128 inverse, JQ_OUT int32_t* status);

/* Sylvester A X + X B = C (A m x m, B n x n, C m x n) and Lyapunov
 * A X + X A^H = C equations, by the Schur forms; A and -B sharing an
 * eigenvalue: -20041. */
JQ_API int32_t Sylvester_head(JQ_IN JQMatF64 a, JQ_IN JQMatF64 b, JQ_IN JQMatF64 c, JQ_OUT JQMatF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxSylvester_head(JQ_IN JQMatC128 a, JQ_IN JQMatC128 b, JQ_IN JQMatC128 c, JQ_OUT JQMatC128 x, JQ_OUT int32_t* status);
JQ_API int32_t Lyapunov_head(JQ_IN JQMatF64 a, JQ_IN JQMatF64 c, JQ_OUT JQMatF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxLyapunov_head(JQ_IN JQMatC128 a, JQ_IN JQMatC128 c, JQ_OUT JQMatC128 x, JQ_OUT int32_t* status);
/* op(A) X + sign X op(B) = C, op(M) = M with trans 0 and M^H with trans 1,
 * sign 1 or -1 (other values: -20061); no unique solution: -20041. */
JQ_API int32_t Sylvester81_head(JQ_IN JQMatF64 a, JQ_IN JQMatF64 b, JQ_IN JQMatF64 c, int32_t trans_a, int32_t trans_b, int32_t sign, JQ_OUT JQMatF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxSylvester81_head(JQ_IN JQMatC128 a, JQ_IN JQMatC128 b, JQ_IN JQMatC128 c, int32_t trans_a, int32_t trans_b, int32_t sign, JQ_OUT JQMatC128 x, JQ_OUT int32_t* status);
/* Lyapunov equations in both conventions, continuous and discrete: type 0
 * A X + X A^H = Q (as Lyapunov_head), 1 A^H X + X A = Q, 2 A X A^H - X + Q = 0,
 * 3 A^H X A - X + Q = 0 (other types: -20061). No unique solution (an
 * eigenvalue pair with l_i + conj(l_j) = 0, discrete: l_i conj(l_j) = 1):
 * -20041. */
JQ_API int32_t Lyapunov85_head(JQ_IN JQMatF64 a, JQ_IN JQMatF64 q, int32_t type, JQ_OUT JQMatF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxLyapunov85_head(JQ_IN JQMatC128 a, JQ_IN JQMatC128 q, int32_t type, JQ_OUT JQMatC128 x, JQ_OUT int32_t* status);

/* Banded systems: the full square A, of which kl sub-diagonals and ku
 * super-diagonals are used (negative: -20004). */
JQ_API int32_t BandEqsDriH(JQ_IN JQMatF64 a, int32_t kl, int32_t ku, JQ_IN JQArrF64 b, JQ_OUT JQArrF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxBandEqsDriH(JQ_IN JQMatC128 a, int32_t kl, int32_t ku, JQ_IN JQArrC128 b, JQ_OUT JQArrC128 x, JQ_OUT int32_t* status);
JQ_API int32_t BandEqsSetDriH(JQ_IN JQMatF64 a, int32_t kl, int32_t ku, JQ_IN JQMatF64 b, JQ_OUT JQMatF64 x, JQ_OUT int32_t* status);
JQ_API int32_t CxBandEqsSetDriH(JQ_IN JQMatC128 a, int32_t kl, int32_t ku, JQ_IN JQMatC128 b, JQ_OUT JQMatC128 x, JQ_OUT int32_t* status);

/* Balancing B = D^-1 P^T A P D (job 0 none, 1 permute, 2 scale, 3 both):
 * scale holds the permutations and factors as LAPACK's balancing encodes
 * them, ilo..ihi (0-based) the rows and columns not isolated. EigenVBack_head
 * turns eigenvectors of B (columns, in place; side 0 right, 1 left) into
 * those of A with the same job, scale, ilo and ihi. */
JQ_API int32_t MatrixBalance_head(JQ_IN JQMatF64 a, int32_t job, JQ_OUT JQMatF64 b, JQ_OUT JQArrF64 scale, JQ_OUT int32_t* ilo, JQ_OUT int32_t* ihi, JQ_OUT int32_t* status);
JQ_API int32_t CxMatrixBalance_head(JQ_IN JQMatC128 a, int32_t job, JQ_OUT JQMatC128 b, JQ_OUT JQArrF64 scale, JQ_OUT int32_t* ilo, JQ_OUT int32_t* ihi, JQ_OUT int32_t* status);
JQ_API int32_t EigenVBack_head(JQ_INOUT JQMatF64 vectors, JQ_IN JQArrF64 scale, int32_t ilo, int32_t ihi, int32_t job, int32_t side, JQ_OUT int32_t* status);
JQ_API int32_t CxEigenVBack_head(JQ_INOUT JQMatC128 vectors, JQ_IN JQArrF64 scale, int32_t ilo, int32_t ihi, int32_t job, int32_t side, JQ_OUT int32_t* status);

/* Generalized Schur form of a pair of n x n matrices: A = Q S Z^H,
 * B = Q T Z^H with Q, Z unitary, T upper triangular and S upper triangular
 * (real data: quasi upper triangular, a 2 x 2 block for each complex pair);
 * the generalized eigenvalues are alpha / beta, beta real and not negative
 * (0: infinite). B of another size: -20070; no convergence: -20062.
 * QZ_head uses LAPACK's driver (which balances the pair first). The other
 * forms take the steps themselves: an LQ factorization of B's data
 * triangularises B, then Hessenberg-triangular reduction and QZ iteration;
 * there T's diagonal is real and not negative wherever S's block is 1 x 1,
 * and alpha and beta are S's and T's diagonal elements. */
JQ_API int32_t QZ_head(JQ_IN JQMatF64 a, JQ_IN JQMatF64 b, JQ_OUT JQMatF64 s, JQ_OUT JQMatF64 t, JQ_OUT JQMatF64 q, JQ_OUT JQMatF64 z, JQ_OUT JQArrC128 alpha, JQ_OUT JQArrF64 beta, JQ_OUT int32_t* status);
JQ_API int32_t CxQZ_head(JQ_IN JQMatC128 a, JQ_IN JQMatC128 b, JQ_OUT JQMatC128 s, JQ_OUT JQMatC128 t, JQ_OUT JQMatC128 q, JQ_OUT JQMatC128 z, JQ_OUT JQArrC128 alpha, JQ_OUT JQArrF64 beta, JQ_OUT int32_t* status);
/* The form with the diagonal block at row `from` moved to row `to`
 * (0-based; a 2 x 2 block moves whole; outside the matrix: -20061; a swap
 * too ill-conditioned to make: -20062). */
JQ_API int32_t QZ80_head(JQ_IN JQMatF64 a, JQ_IN JQMatF64 b, int32_t from, int32_t to, JQ_OUT JQMatF64 s, JQ_OUT JQMatF64 t, JQ_OUT JQMatF64 q, JQ_OUT JQMatF64 z, JQ_OUT JQArrC128 alpha, JQ_OUT JQArrF64 beta, JQ_OUT int32_t* status);
JQ_API int32_t CxQZ80_head(JQ_IN JQMatC128 a, JQ_IN JQMatC128 b, int32_t from, int32_t to, JQ_OUT JQMatC128 s, JQ_OUT JQMatC128 t, JQ_OUT JQMatC128 q, JQ_OUT JQMatC128 z, JQ_OUT JQArrC128 alpha, JQ_OUT JQArrF64 beta, JQ_OUT int32_t* status);
/* The form sorted so that the selected eigenvalues come first, each group
 * in its order (as scipy.linalg.ordqz): sort 0 none, 1 real part below 0,
 * 2 real part above 0, 3 modulus below 1, 4 modulus above 1 (an infinite
 * eigenvalue counts only there); others: -20061. selected: how many were
 * put first (a pair counts 2), -1 on an error. */
JQ_API int32_t TmiQZ_head(JQ_IN JQMatF64 a, JQ_IN JQMatF64 b, int32_t sort, JQ_OUT JQMatF64 s, JQ_OUT JQMatF64 t, JQ_OUT JQMatF64 q, JQ_OUT JQMatF64 z, JQ_OUT JQArrC128 alpha, JQ_OUT JQArrF64 beta, JQ_OUT int32_t* selected, JQ_OUT int32_t* status);
JQ_API int32_t CxTmiQZ_head(JQ_IN JQMatC128 a, JQ_IN JQMatC128 b, int32_t sort, JQ_OUT JQMatC128 s, JQ_OUT JQMatC128 t, JQ_OUT JQMatC128 q, JQ_OUT JQMatC128 z, JQ_OUT JQArrC128 alpha, JQ_OUT JQArrF64 beta, JQ_OUT int32_t* selected, JQ_OUT int32_t* status);
/* Generalized eigenvalues alpha / beta (beta real, not negative; 0:
 * infinite) of A x = lambda B x and the right eigenvectors as unit-length
 * columns. */
JQ_API int32_t GenEigenEx_head(JQ_IN JQMatF64 a, JQ_IN JQMatF64 b, JQ_OUT JQArrC128 alpha, JQ_OUT JQArrF64 beta, JQ_OUT JQMatC128 vectors, JQ_OUT int32_t* status);
JQ_API int32_t CxGenEigenEx_head(JQ_IN JQMatC128 a, JQ_IN JQMatC128 b, JQ_OUT JQArrC128 alpha, JQ_OUT JQArrF64 beta, JQ_OUT JQMatC128 vectors, JQ_OUT int32_t* status);

/* Generated matrices. SpecialMatrix_head kinds (an unknown kind: -20061,
 * checked first; a size it uses below 1 or a vector it needs empty:
 * -20003): 0 identity, rows x cols; 1 diagonal from x; 2 Toeplitz, first
 * column x, first row y (y empty: conj(x)); 3 Hankel, first column x, last
 * row y (y[0] unused; y empty: zeros); 4 Vandermonde, len(x) x cols,
 * decreasing powers; 5 Hilbert and 6 its inverse, rows x rows; 7 circulant,
 * first column x; 8 symmetric Pascal, rows x rows; 9 companion of the
 * polynomial with coefficients x, highest first (fewer than 2: -20006; a
 * leading 0: -20061). Sizes a kind does not use are ignored. */
JQ_API int32_t SpecialMatrix_head(int32_t kind, int32_t rows, int32_t cols, JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_OUT JQMatF64 m, JQ_OUT int32_t* status);
JQ_API int32_t CxSpecialMatrix_head(int32_t kind, int32_t rows, int32_t cols, JQ_IN JQArrC128 x, JQ_IN JQArrC128 y, JQ_OUT JQMatC128 m, JQ_OUT int32_t* status);
/* rows x cols, every element the value (re + i im). */
JQ_API int32_t InitialMatrixH(int32_t rows, int32_t cols, double value, JQ_OUT JQMatF64 m, JQ_OUT int32_t* status);
JQ_API int32_t CxInitialMatrixH(int32_t rows, int32_t cols, double re, double im, JQ_OUT JQMatC128 m, JQ_OUT int32_t* status);
/* order x order autocorrelation matrix of x (n values), Hermitian Toeplitz:
 * R[i][j] = r[i - j] for i >= j with the biased estimate
 * r[k] = (1/n) sum_t x[t + k] conj(x[t]), 0 at lags of n and beyond. */
JQ_API int32_t AutoCorrMtrxH(JQ_IN JQArrF64 x, int32_t order, JQ_OUT JQMatF64 r, JQ_OUT int32_t* status);
JQ_API int32_t CxAutoCorrMtrxH(JQ_IN JQArrC128 x, int32_t order, JQ_OUT JQMatC128 r, JQ_OUT int32_t* status);

#ifdef __cplusplus
}
#endif
#endif
