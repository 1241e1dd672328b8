// Solvers and forms that reuse a factorization or exploit a structure:
// solves and inverses from given LU factors, tridiagonal systems, property
// tests, Hessenberg and Schur forms, the characteristic polynomial.
// Row-major data, T double or cdouble; inputs already validated.
#pragma once
#include <cstdint>

#include "linalg/frame.hpp"

namespace jq::linalg {

// x solving A x = b from A's LU factors (as lu() leaves them) and 0-based
// pivots; kSingular for a zero on U's diagonal.
template <class T> int32_t lu_solve(const T* lu, const int32_t* pivots, int32_t n, const T* b, T* x);
// A's inverse from its LU factors and pivots.
template <class T> int32_t lu_inverse(const T* lu, const int32_t* pivots, int32_t n, T* inv);

// X (n x k) solving the tridiagonal system with sub-diagonal dl (n - 1),
// diagonal d (n) and super-diagonal du (n - 1); kSingular for a zero pivot.
// LU of a tridiagonal matrix with partial pivoting: multipliers l (n-1), U's
// diagonal m (n), first and second superdiagonals u (n-1), u2 (n-2) and the
// 0-based pivots. kWarnSingularLU with the factors kept on a zero pivot.
template <class T>
int32_t tridiagonal_lu(const T* dl, const T* d, const T* du, int32_t n, T* l, T* m, T* u, T* u2, int32_t* pivots);
template <class T>
int32_t tridiagonal_solve(const T* dl, const T* d, const T* du, int32_t n, const T* b, int32_t k, T* x);

// Symmetric (Hermitian) within n * eps * max|a|.
template <class T> bool is_symmetric(const T* a, int32_t n);
// Symmetric and positive definite (semi-definite: the smallest eigenvalue
// not below -n * eps * the largest magnitude).
template <class T> int32_t is_positive_definite(const T* a, int32_t n, bool semi, int32_t* result);

// A = Q H Q^H with H upper Hessenberg and Q unitary.
template <class T> int32_t hessenberg(const T* a, int32_t n, T* h, T* q);
// A = Z S Z^H: S quasi upper triangular (real data: 2 x 2 blocks for
// complex pairs) or upper triangular (complex data), Z unitary.
template <class T> int32_t schur(const T* a, int32_t n, T* s, T* z);
// The Schur form with the diagonal block at `from` moved to `to` (0-based;
// from < 0 moves nothing). kNoConvergence when a swap is refused.
template <class T> int32_t schur_moved(const T* a, int32_t n, int32_t from, int32_t to, T* s, T* z);
// Coefficients c[0..n] of det(x I - A), constant first, leading 1.
template <class T> int32_t characteristic_polynomial(const T* a, int32_t n, T* c);

// X (m x n) solving A X + X B = C (A m x m, B n x n) by the Schur forms of
// A and B; kSingular when A and -B share (or nearly share) an eigenvalue.
// adjoint_b solves A X + X B^H = C instead (Lyapunov: B = A).
template <class T> int32_t sylvester(const T* a, int32_t m, const T* b, int32_t n, bool adjoint_b, const T* c, T* x);
// op(A) X + X op(B) = C, or op(A) X - X op(B) = C with minus; op the
// conjugate transpose where asked.
template <class T>
int32_t sylvester_general(const T* a, int32_t m, const T* b, int32_t n, bool adjoint_a, bool adjoint_b, bool minus,
                          const T* c, T* x);
// Lyapunov equations of an n x n A: type 0 A X + X A^H = Q, 1 A^H X + X A = Q
// (continuous); 2 A X A^H - X + Q = 0, 3 A^H X A - X + Q = 0 (discrete,
// through the bilinear map). kSingular when the equation has no unique
// solution.
template <class T> int32_t lyapunov(const T* a, int32_t n, int32_t type, const T* q, T* x);

// X (n x k) solving A X = B for A with kl sub- and ku super-diagonals (the
// rest of the full matrix A is ignored).
template <class T> int32_t band_solve(const T* a, int32_t n, int32_t kl, int32_t ku, const T* b, int32_t k, T* x);

// Balancing: job 0 none, 1 permute, 2 scale, 3 both. B = D^-1 P^T A P D
// with the permutations and scaling factors in scale (LAPACK's encoding) and
// the rows and columns ilo..ihi (0-based) the ones not isolated.
template <class T>
int32_t balance(const T* a, int32_t n, int32_t job, T* b, double* scale, int32_t* ilo, int32_t* ihi);
// Back-transforms m eigenvectors (columns of the n x m v, in place) of a
// balanced matrix into those of the original: side 0 right, 1 left.
template <class T>
int32_t balance_back(T* v, int32_t n, int32_t m, const double* scale, int32_t ilo, int32_t ihi, int32_t job, int32_t side);

// Generalized eigenvalues alpha / beta of A x = lambda B x and the right
// eigenvectors (columns, unit length), through the real Schur pair.
int32_t generalized_eigen(const double* a, const double* b, int32_t n, cdouble* alpha, double* beta, cdouble* v);
int32_t generalized_eigen(const cdouble* a, const cdouble* b, int32_t n, cdouble* alpha, double* beta, cdouble* v);
// Generalized real Schur form of the pair (A, B) by LAPACK's driver:
// A = Q S Z^T, B = Q T Z^T with S quasi upper triangular, T upper
// triangular, Q and Z orthogonal; the generalized eigenvalues are
// alpha[j] / beta[j]. (pencil_schur takes the steps one by one.)
int32_t qz(const double* a, const double* b, int32_t n, double* s, double* t, double* q, double* z, cdouble* alpha,
           double* beta);

}  // namespace jq::linalg
