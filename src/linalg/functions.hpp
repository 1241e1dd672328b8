// Matrix functions of a square n x n row-major matrix.
#pragma once
#include <cstdint>

#include "linalg/frame.hpp"

namespace jq::linalg {

// e^A by scaling and squaring with the degree-13 Pade approximant.
template <class T> int32_t matrix_exp(const T* a, int32_t n, T* e);
// A^p for any integer p by repeated squaring (negative p through A's
// inverse; kSingular when it has none; p = 0 gives I).
template <class T> int32_t matrix_power(const T* a, int32_t n, int32_t p, T* r);
// The principal square root through the complex Schur form A = Z T Z^H:
// the upper triangular root of T, then Z R Z^H.
template <class T> int32_t matrix_sqrt(const T* a, int32_t n, cdouble* x);
// The same for a real matrix whose principal root is real, that is, with no
// eigenvalue on the negative real axis (kNonPositiveLog otherwise).
int32_t matrix_sqrt_real(const double* a, int32_t n, double* x);

// V diag(values) V^-1 (n x n); kSingular when V has no inverse.
template <class T> int32_t from_eigen(const T* values, const T* v, int32_t n, T* a);
// The principal logarithm through the eigendecomposition A = V diag(l) V^-1
// (A diagonalizable); kNonPositiveLog for a zero eigenvalue.
template <class T> int32_t matrix_log(const T* a, int32_t n, cdouble* l);

}  // namespace jq::linalg
