#include "linalg/basic.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "linalg/dense.hpp"
#include "linalg/svd.hpp"

namespace jq::linalg {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

// Largest sum of magnitudes along columns (by_rows false) or rows.
template <class T> double largest_sum(const T* a, int32_t m, int32_t n, bool by_rows) {
  double best = 0;
  const int32_t outer = by_rows ? m : n, inner = by_rows ? n : m;
  for (int32_t i = 0; i < outer; ++i) {
    double s = 0;
    for (int32_t j = 0; j < inner; ++j) s += std::abs(by_rows ? a[static_cast<size_t>(i) * n + j] : a[static_cast<size_t>(j) * n + i]);
    best = std::max(best, s);
  }
  return best;
}

template <class T> int32_t largest_singular_value(const T* a, int32_t m, int32_t n, double* smax, double* smin) {
  Buffer<double> s;
  if (s.allocate(std::min(m, n))) return kNoMemory;
  if (int32_t rc = singular_values(a, m, n, s.data())) return rc;
  *smax = s[0];
  if (smin) *smin = s[std::min(m, n) - 1];
  return kOk;
}

}  // namespace

template <class T> int32_t matrix_norm(const T* a, int32_t m, int32_t n, int32_t type, double* norm) {
  if (int32_t rc = ready()) return rc;
  switch (type) {
    case 0:
      return largest_singular_value(a, m, n, norm, nullptr);
    case 1:
      *norm = largest_sum(a, m, n, false);
      return kOk;
    case 2:
      *norm = Blas<T>::nrm2(m * n, a);
      return kOk;
    default:
      *norm = largest_sum(a, m, n, true);
      return kOk;
  }
}

template <class T> int32_t condition_number(const T* a, int32_t m, int32_t n, int32_t type, double* cond) {
  if (int32_t rc = ready()) return rc;
  if (type == 0) {
    double smax, smin;
    if (int32_t rc = largest_singular_value(a, m, n, &smax, &smin)) return rc;
    *cond = smin == 0 ? kInf : smax / smin;
    return kOk;
  }
  Buffer<T> inv;
  if (inv.allocate(int64_t{n} * n)) return kNoMemory;
  const int32_t rc = inverse_lu(a, n, inv.data());
  if (rc == kSingular) {
    *cond = kInf;
    return kOk;
  }
  if (rc) return rc;
  double na, ni;
  matrix_norm(a, n, n, type, &na);
  matrix_norm(inv.data(), n, n, type, &ni);
  *cond = na * ni;
  return kOk;
}

template <class T> int32_t matrix_rank(const T* a, int32_t m, int32_t n, double tol, int32_t* rank) {
  *rank = -1;
  if (int32_t rc = ready()) return rc;
  const int32_t k = std::min(m, n);
  Buffer<double> s;
  if (s.allocate(k)) return kNoMemory;
  if (int32_t rc = singular_values(a, m, n, s.data())) return rc;
  if (tol < 0) tol = default_tolerance(m, n, s[0]);
  *rank = static_cast<int32_t>(std::count_if(s.data(), s.data() + k, [tol](double v) { return v > tol; }));
  return kOk;
}

template <class T> T trace(const T* a, int32_t m, int32_t n) {
  T s = 0.0;
  for (int32_t i = 0; i < std::min(m, n); ++i) s += a[static_cast<size_t>(i) * n + i];
  return s;
}

template <class T> int32_t outer_product(const T* x, int32_t m, const T* y, int32_t n, T* r) {
  if (int32_t rc = ready()) return rc;
  Blas<T>::gemm(m, n, 1, x, 1, y, n, r, n);
  return kOk;
}

template <class T> int32_t kronecker(const T* a, int32_t r1, int32_t c1, const T* b, int32_t r2, int32_t c2, T* r) {
  if (int32_t rc = ready()) return rc;
  const size_t cols = static_cast<size_t>(c1) * c2;
  std::memset(static_cast<void*>(r), 0, sizeof(T) * cols * r1 * r2);
  // Row (i, k) of the result is a_ij times row k of B, for each block column j.
  for (int32_t i = 0; i < r1; ++i)
    for (int32_t k = 0; k < r2; ++k) {
      T* row = r + (static_cast<size_t>(i) * r2 + k) * cols;
      for (int32_t j = 0; j < c1; ++j)
        Blas<T>::axpy(c2, a[static_cast<size_t>(i) * c1 + j], b + static_cast<size_t>(k) * c2, row + static_cast<size_t>(j) * c2);
    }
  return kOk;
}

template <class T> int32_t vector_norm(T* x, int32_t n, double p, bool normalize, double* norm) {
  if (int32_t rc = ready()) return rc;
  double v;
  if (std::isinf(p)) {
    v = std::abs(x[0]);
    for (int32_t i = 1; i < n; ++i) v = p > 0 ? std::max(v, std::abs(x[i])) : std::min(v, std::abs(x[i]));
  } else if (p == 1) {
    v = 0;
    for (int32_t i = 0; i < n; ++i) v += std::abs(x[i]);
  } else if (p == 2) {
    v = Blas<T>::nrm2(n, x);
  } else {
    long double s = 0;
    for (int32_t i = 0; i < n; ++i) s += std::pow(static_cast<long double>(std::abs(x[i])), static_cast<long double>(p));
    v = static_cast<double>(std::pow(s, 1.0L / p));
  }
  *norm = v;
  if (normalize && v != 0) Blas<T>::scal(n, 1.0 / v, x, 1);
  return kOk;
}

#define JQ_INSTANTIATE(T)                                                                           \
  template int32_t matrix_norm(const T*, int32_t, int32_t, int32_t, double*);                       \
  template int32_t condition_number(const T*, int32_t, int32_t, int32_t, double*);                  \
  template int32_t matrix_rank(const T*, int32_t, int32_t, double, int32_t*);                       \
  template T trace(const T*, int32_t, int32_t);                                                     \
  template int32_t outer_product(const T*, int32_t, const T*, int32_t, T*);                         \
  template int32_t kronecker(const T*, int32_t, int32_t, const T*, int32_t, int32_t, T*);           \
  template int32_t vector_norm(T*, int32_t, double, bool, double*);
JQ_INSTANTIATE(double)
JQ_INSTANTIATE(cdouble)

}  // namespace jq::linalg
