#include "linalg/decompose.hpp"

#include <algorithm>
#include <cstring>

#include "linalg/dense.hpp"

namespace jq::linalg {
namespace {

// Zeroes the strictly upper (or lower) triangle of a row-major n x n matrix.
template <class T> void zero_triangle(T* a, int32_t n, bool upper) {
  for (int32_t i = 0; i < n; ++i)
    for (int32_t j = 0; j < n; ++j)
      if (upper ? j > i : j < i) a[static_cast<size_t>(i) * n + j] = 0.0;
}

}  // namespace

template <class T> int32_t lu(T* a, int32_t m, int32_t n, int32_t* pivots, int32_t* parity) {
  if (int32_t rc = ready()) return rc;
  // A leading dimension padded to 16 elements keeps every column aligned.
  const int32_t ld = (m + 15) / 16 * 16, k = std::min(m, n);
  Buffer<T> c;
  Scratch<I> ipiv;
  if (to_column_major(a, m, n, c, ld) || ipiv.allocate(k)) return kNoMemory;
  I info = 0;
  Blas<T>::getrf(m, n, c.data(), ld, ipiv.data(), &info);
  from_column_major(c.data(), ld, m, n, a);
  *parity = 0;
  for (int32_t i = 0; i < m; ++i) {
    pivots[i] = i < k ? ipiv[i] - 1 : i;
    if (pivots[i] != i) *parity ^= 1;
  }
  return info > 0 ? kWarnSingularLU : kOk;
}

// LAPACK sees the row-major data as A^T = conj(A); its upper factor U
// (A^T = U^H U) read back row-major is the lower factor L = U^T of A.
template <class T> int32_t cholesky_factor(const T* a, int32_t n, Buffer<T>& c) {
  if (int32_t rc = ready()) return rc;
  if (c.allocate(int64_t{n} * n)) return kNoMemory;
  std::memcpy(static_cast<void*>(c.data()), a, sizeof(T) * static_cast<size_t>(n) * n);
  I info = 0;
  Blas<T>::potrf('U', n, c.data(), n, &info);
  return info > 0 ? kNotPosDef : kOk;
}

template <class T> int32_t cholesky(const T* a, int32_t n, T* l) {
  Buffer<T> c;
  if (int32_t rc = cholesky_factor(a, n, c)) return rc;
  std::memcpy(static_cast<void*>(l), c.data(), sizeof(T) * static_cast<size_t>(n) * n);
  zero_triangle(l, n, true);
  return kOk;
}

template <class T> int32_t inverse_cholesky(const T* a, int32_t n, T* inv) {
  Buffer<T> c;
  if (int32_t rc = cholesky_factor(a, n, c)) return rc;
  I info = 0;
  Blas<T>::potri('U', n, c.data(), n, &info);
  if (info > 0) return kSingular;
  // The inverse stands in the lower triangle of the row-major view.
  for (int32_t i = 0; i < n; ++i)
    for (int32_t j = 0; j <= i; ++j) {
      const T v = c[static_cast<size_t>(i) * n + j];
      inv[static_cast<size_t>(i) * n + j] = v;
      inv[static_cast<size_t>(j) * n + i] = conj_of(v);
    }
  return kOk;
}

template <class T> int32_t solve_cholesky(const T* a, int32_t n, const T* b, int32_t k, T* x) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> ac, bc;
  if (to_column_major(a, n, n, ac, n) || to_column_major(b, n, k, bc, n)) return kNoMemory;
  I info = 0;
  Blas<T>::posv('L', n, k, ac.data(), n, bc.data(), n, &info);
  if (info > 0) return kNotPosDef;
  from_column_major(bc.data(), n, n, k, x);
  return kOk;
}

// A row-major lower triangle is the column-major upper triangle of A^T, and
// inv(A^T) read back row-major is inv(A).
template <class T> int32_t inverse_triangular(const T* a, int32_t n, bool lower, T* inv) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> c;
  if (c.allocate(int64_t{n} * n)) return kNoMemory;
  std::memcpy(static_cast<void*>(c.data()), a, sizeof(T) * static_cast<size_t>(n) * n);
  I info = 0;
  Blas<T>::trtri(lower ? 'U' : 'L', 'N', n, c.data(), n, &info);
  if (info > 0) return kSingular;
  std::memcpy(static_cast<void*>(inv), c.data(), sizeof(T) * static_cast<size_t>(n) * n);
  zero_triangle(inv, n, lower);
  return kOk;
}

template <class T> int32_t qr(const T* a, int32_t m, int32_t n, T* q, T* r, int32_t* pivots) {
  if (int32_t rc = ready()) return rc;
  const int32_t k = std::min(m, n);
  Buffer<T> c, tau, work;
  Buffer<double> rwork;
  I info = 0;
  T query = 0.0;
  if (tau.allocate(k)) return kNoMemory;
  if (!pivots) {
    // Unpivoted: the LQ factorization of the row-major data (A^T = L Q')
    // is A = Q'^T L^T, so R and Q are read straight from the row-major view.
    if (c.allocate(int64_t{m} * n + kStrideSlack * n)) return kNoMemory;
    std::memcpy(static_cast<void*>(c.data()), a, sizeof(T) * static_cast<size_t>(m) * n);
    Blas<T>::gelqf(n, m, c.data(), n, tau.data(), &query, -1, &info);
    if (work.allocate(workspace(query))) return kNoMemory;
    Blas<T>::gelqf(n, m, c.data(), n, tau.data(), work.data(), workspace(query), &info);
    for (int32_t i = 0; i < k; ++i)
      for (int32_t j = 0; j < n; ++j) r[static_cast<size_t>(i) * n + j] = j < i ? T(0.0) : c[static_cast<size_t>(i) * n + j];
    Blas<T>::orglq(k, m, k, c.data(), n, tau.data(), &query, -1, &info);
    if (work.allocate(workspace(query))) return kNoMemory;
    Blas<T>::orglq(k, m, k, c.data(), n, tau.data(), work.data(), workspace(query), &info);
    for (int32_t i = 0; i < m; ++i)
      std::memcpy(static_cast<void*>(q + static_cast<size_t>(i) * k), c.data() + static_cast<size_t>(i) * n, sizeof(T) * k);
    return kOk;
  }
  Scratch<I> jpvt;
  if (to_column_major(a, m, n, c, m) || jpvt.allocate(n) || rwork.allocate(2 * int64_t{n})) return kNoMemory;
  std::fill(jpvt.data(), jpvt.data() + n, 0);
  Blas<T>::geqp3(m, n, c.data(), m, jpvt.data(), tau.data(), &query, -1, rwork.data(), &info);
  if (work.allocate(workspace(query))) return kNoMemory;
  Blas<T>::geqp3(m, n, c.data(), m, jpvt.data(), tau.data(), work.data(), workspace(query), rwork.data(), &info);
  for (int32_t i = 0; i < k; ++i)
    for (int32_t j = 0; j < n; ++j) r[static_cast<size_t>(i) * n + j] = j < i ? T(0.0) : c[static_cast<size_t>(j) * m + i];
  for (int32_t j = 0; j < n; ++j) pivots[j] = jpvt[j] - 1;
  Blas<T>::orgqr(m, k, k, c.data(), m, tau.data(), &query, -1, &info);
  if (work.allocate(workspace(query))) return kNoMemory;
  Blas<T>::orgqr(m, k, k, c.data(), m, tau.data(), work.data(), workspace(query), &info);
  from_column_major(c.data(), m, m, k, q);
  return kOk;
}

void unpack_pairs(const double* vr, const double* wi, int32_t n, cdouble* v) {
  for (int32_t j = 0; j < n; ++j) {
    const double* re = vr + static_cast<size_t>(j) * n;
    for (int32_t i = 0; i < n; ++i) {
      if (wi[j] == 0)
        v[static_cast<size_t>(i) * n + j] = re[i];
      else if (wi[j] > 0)
        v[static_cast<size_t>(i) * n + j] = {re[i], re[i + n]};
      else
        v[static_cast<size_t>(i) * n + j] = {re[i - n], -re[i]};
    }
  }
}

template <class T> int32_t eigen(const T* a, int32_t n, cdouble* values, cdouble* v) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> c, vr, work;
  I info = 0;
  T query = 0.0;
  const I one = 1, minus1 = -1;
  if (to_column_major(a, n, n, c, n) || vr.allocate(int64_t{n} * n)) return kNoMemory;
  if constexpr (std::is_same_v<T, double>) {
    Buffer<double> wr, wi;
    if (wr.allocate(n) || wi.allocate(n)) return kNoMemory;
    JQ_CALL(dgeev, "N", "V", &n, c.data(), &n, wr.data(), wi.data(), nullptr, &one, vr.data(), &n, &query, &minus1, &info);
    if (work.allocate(workspace(query))) return kNoMemory;
    const I lwork = workspace(query);
    JQ_CALL(dgeev, "N", "V", &n, c.data(), &n, wr.data(), wi.data(), nullptr, &one, vr.data(), &n, work.data(), &lwork, &info);
    if (info > 0) return kNoConvergence;
    for (int32_t j = 0; j < n; ++j) values[j] = {wr[j], wi[j]};
    unpack_pairs(vr.data(), wi.data(), n, v);
  } else {
    Buffer<double> rwork;
    if (rwork.allocate(2 * int64_t{n})) return kNoMemory;
    JQ_CALL(zgeev, "N", "V", &n, c.data(), &n, values, nullptr, &one, vr.data(), &n, &query, &minus1, rwork.data(), &info);
    const I lwork = workspace(query);
    if (work.allocate(lwork)) return kNoMemory;
    JQ_CALL(zgeev, "N", "V", &n, c.data(), &n, values, nullptr, &one, vr.data(), &n, work.data(), &lwork, rwork.data(), &info);
    if (info > 0) return kNoConvergence;
    from_column_major(vr.data(), n, n, n, v);
  }
  return kOk;
}

template <class T> int32_t eigen_symmetric(const T* a, int32_t n, double* values, T* v) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> c, work;
  Buffer<double> w, rwork;
  Scratch<I> iwork;
  if (to_column_major(a, n, n, c, n) || w.allocate(n)) return kNoMemory;
  T query = 0.0;
  double rquery = 0;
  I iquery = 0, info = 0;
  Blas<T>::syevd(n, c.data(), w.data(), &query, -1, &rquery, -1, &iquery, -1, &info);
  const I lwork = workspace(query), lrwork = std::max<I>(static_cast<I>(rquery), 1), liwork = std::max<I>(iquery, 1);
  if (work.allocate(lwork) || rwork.allocate(lrwork) || iwork.allocate(liwork)) return kNoMemory;
  Blas<T>::syevd(n, c.data(), w.data(), work.data(), lwork, rwork.data(), lrwork, iwork.data(), liwork, &info);
  if (info > 0) return kNoConvergence;
  std::memcpy(values, w.data(), sizeof(double) * n);
  from_column_major(c.data(), n, n, n, v);
  return kOk;
}

#define JQ_INSTANTIATE(T)                                                     \
  template int32_t lu(T*, int32_t, int32_t, int32_t*, int32_t*);              \
  template int32_t cholesky(const T*, int32_t, T*);                           \
  template int32_t inverse_cholesky(const T*, int32_t, T*);                   \
  template int32_t solve_cholesky(const T*, int32_t, const T*, int32_t, T*);  \
  template int32_t inverse_triangular(const T*, int32_t, bool, T*);           \
  template int32_t qr(const T*, int32_t, int32_t, T*, T*, int32_t*);          \
  template int32_t eigen(const T*, int32_t, cdouble*, cdouble*);              \
  template int32_t eigen_symmetric(const T*, int32_t, double*, T*);
JQ_INSTANTIATE(double)
JQ_INSTANTIATE(cdouble)

}  // namespace jq::linalg
