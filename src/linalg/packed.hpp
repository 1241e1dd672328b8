// Packed (compact) triangular storage: the lower triangle of an n x n
// row-major matrix, row after row, in n (n + 1) / 2 elements. Read by
// LAPACK's packed routines as the upper triangle stored by columns, it is
// the transpose of that triangle, which is how the routines below use it.
// T double or cdouble; inputs already validated.
#pragma once
#include <cstdint>

#include "linalg/frame.hpp"

namespace jq::linalg {

// n for a packed length, or -1 when the length is not n (n + 1) / 2.
int32_t packed_order(int32_t length);
void pack_lower(const double* a, int32_t n, double* p);
void pack_lower(const cdouble* a, int32_t n, cdouble* p);
// The full Hermitian matrix of a packed lower triangle (upper = conj(lower)).
template <class T> void unpack_hermitian(const T* p, int32_t n, T* a);

// Packed lower Cholesky factor L (A = L L^H) of a positive definite matrix.
template <class T> int32_t cholesky_packed(const T* a, int32_t n, T* l);
// X (n x k) solving A X = B from A's packed Cholesky factor.
template <class T> int32_t cholesky_packed_solve(const T* l, int32_t n, const T* b, int32_t k, T* x);
// A's full inverse from its packed Cholesky factor.
template <class T> int32_t cholesky_packed_inverse(const T* l, int32_t n, T* inv);
// X solving L X = B for a packed lower triangular L; kSingular for a zero
// on its diagonal.
template <class T> int32_t triangular_packed_solve(const T* l, int32_t n, const T* b, int32_t k, T* x);
// The packed inverse of a packed lower triangular matrix.
template <class T> int32_t triangular_packed_inverse(const T* l, int32_t n, T* inv);

}  // namespace jq::linalg
