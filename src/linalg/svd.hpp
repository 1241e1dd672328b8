// Singular value decompositions and what is built on them: norms, rank,
// condition numbers, the pseudo-inverse and least-squares solutions.
// Row-major data, T double or cdouble; callers have validated the inputs.
#pragma once
#include <cstdint>

#include "linalg/frame.hpp"

namespace jq::linalg {

// A = U diag(s) V^H for a row-major m x n matrix, k = min(m, n), s
// descending. job 'N': values only; 'S': U is m x k and vh k x n; 'A': U is
// m x m and vh n x n. kNoConvergence when LAPACK gives up.
template <class T> int32_t svd(const T* a, int32_t m, int32_t n, char job, double* s, T* u, T* vh);

// Moore-Penrose pseudo-inverse (n x m); tol < 0 means the default.
template <class T> int32_t pseudo_inverse(const T* a, int32_t m, int32_t n, double tol, T* pinv);

// Least-squares minimum-norm solution X (n x k) of A X = B (B m x k).
// kWarnRankDeficient when A's effective rank is below min(m, n). tol <= 0
// (for the LAPACK path: < 0) means machine epsilon. The explicit SVD path is
// taken when the size rule below picks it or when forced (always for complex
// data, whose LAPACK driver the module does not carry).
template <class T>
int32_t least_squares(const T* a, int32_t m, int32_t n, const T* b, int32_t k, double tol, bool force_svd, T* x);
bool least_squares_by_svd(int32_t m, int32_t n);

// Generalized SVD of A (m x n) and B (p x n): A = U C X and B = V S X with U
// (m x m) and V (p x p) unitary, C (m x r) and S (p x r) real and diagonal
// (C^T C + S^T S = I) and X = [0 R] Q^H (r x n), r the rank of [A; B]. The
// rank is known only once factored, so the caller sizes its outputs between
// factor() and write().
template <class T> class Gsvd {
 public:
  // kNoConvergence when LAPACK's Jacobi iteration gives up.
  int32_t factor(const T* a, int32_t m, const T* b, int32_t p, int32_t n);
  int32_t rank() const { return k_ + l_; }
  // kNoMemory when its work array cannot be had.
  int32_t write(T* u, T* v, double* c, double* s, T* x);

 private:
  int32_t m_ = 0, p_ = 0, n_ = 0;
  I k_ = 0, l_ = 0;
  Buffer<T> a_, b_, u_, v_, q_;
  Buffer<double> alpha_, beta_;
};

}  // namespace jq::linalg
