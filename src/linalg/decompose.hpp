// Factorizations and the solvers and inverses built on them. Row-major data,
// T double or cdouble; callers have validated the inputs.
#pragma once
#include <cstdint>

#include "linalg/frame.hpp"

namespace jq::linalg {

// Real LAPACK eigenvectors (column-major, a complex pair as its real and
// imaginary columns j, j + 1, told apart by the sign of wi) as complex
// row-major columns.
void unpack_pairs(const double* vr, const double* wi, int32_t n, cdouble* v);

// LU with partial pivoting of an m x n matrix, in place: unit L below the
// diagonal, U on and above. pivots (m) are 0-based row indices, rows past
// min(m, n) their own index; parity is 1 for an odd number of interchanges.
// kWarnSingularLU when a pivot is exactly zero (the factors stand).
template <class T> int32_t lu(T* a, int32_t m, int32_t n, int32_t* pivots, int32_t* parity);

// Lower Cholesky factor L (A = L L^H) of a positive definite matrix, the
// upper triangle zero; kNotPosDef otherwise.
template <class T> int32_t cholesky(const T* a, int32_t n, T* l);
// Inverse of a positive definite matrix through its Cholesky factor.
template <class T> int32_t inverse_cholesky(const T* a, int32_t n, T* inv);
// X (n x k) solving A X = B for positive definite A.
template <class T> int32_t solve_cholesky(const T* a, int32_t n, const T* b, int32_t k, T* x);
// Inverse of a lower (or upper) triangular matrix; the other triangle of the
// input is ignored and zero in the result. kSingular for a zero diagonal.
template <class T> int32_t inverse_triangular(const T* a, int32_t n, bool lower, T* inv);

// A = Q R with Q m x k orthonormal columns and R k x n upper triangular,
// k = min(m, n). With pivots (n, 0-based) non-null the columns are pivoted:
// A P = Q R, |R| diagonal non-increasing.
template <class T> int32_t qr(const T* a, int32_t m, int32_t n, T* q, T* r, int32_t* pivots);

// Eigenvalues and right eigenvectors (the columns of v, unit 2-norm) of a
// general n x n matrix; values and vectors are complex for real data too.
template <class T> int32_t eigen(const T* a, int32_t n, cdouble* values, cdouble* v);
// Symmetric (Hermitian) eigenproblem: values ascending, vectors as columns.
template <class T> int32_t eigen_symmetric(const T* a, int32_t n, double* values, T* v);

}  // namespace jq::linalg
