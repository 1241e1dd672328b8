// The matrix and vector members that need no factorization of their own:
// norms, condition numbers, rank, outer and Kronecker products, vector
// p-norms. Row-major data, T double or cdouble; inputs already validated.
#pragma once
#include <cstdint>

#include "linalg/frame.hpp"

namespace jq::linalg {

// Norm types: 0 the 2-norm (largest singular value), 1 largest column sum of
// magnitudes, 2 Frobenius, 3 largest row sum of magnitudes.
template <class T> int32_t matrix_norm(const T* a, int32_t m, int32_t n, int32_t type, double* norm);
// Type 0: sigma_max / sigma_min of any shape (+inf when sigma_min is 0);
// types 1-3 (square only): norm(A) norm(A^-1), +inf for a singular A.
template <class T> int32_t condition_number(const T* a, int32_t m, int32_t n, int32_t type, double* cond);
// Singular values above tol (< 0: the default tolerance).
template <class T> int32_t matrix_rank(const T* a, int32_t m, int32_t n, double tol, int32_t* rank);
template <class T> T trace(const T* a, int32_t m, int32_t n);
// r (m x n) = x y^T.
template <class T> int32_t outer_product(const T* x, int32_t m, const T* y, int32_t n, T* r);
// r ((r1 r2) x (c1 c2)) = A (r1 x c1) kron B (r2 x c2).
template <class T> int32_t kronecker(const T* a, int32_t r1, int32_t c1, const T* b, int32_t r2, int32_t c2, T* r);
// p-norm of a vector (p = +-inf: largest / smallest magnitude); with
// normalize and a non-zero norm, x is divided by it in place. p is not 0 or NaN.
template <class T> int32_t vector_norm(T* x, int32_t n, double p, bool normalize, double* norm);

}  // namespace jq::linalg
