#include "linalg/svd.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "linalg/dense.hpp"

namespace jq::linalg {
// The row-major data, read column-major, is A^T (n x m). Its decomposition
// U' S V'^H gives A = conj(V') S (conj U')^H, and LAPACK's column-major
// V'^H and U' read back row-major are exactly A's U and V^H.
template <class T> int32_t svd(const T* a, int32_t m, int32_t n, char job, double* s, T* u, T* vh) {
  if (int32_t rc = ready()) return rc;
  const int32_t k = std::min(m, n), big = std::max(m, n);
  const int32_t ucols = job == 'A' ? m : k, vrows = job == 'A' ? n : k;
  Buffer<T> c, ub, vb, work;
  Buffer<double> sb, rwork;
  Scratch<I> iwork;
  const bool vectors = job != 'N';
  int64_t lrwork = 0;
  if constexpr (!std::is_same_v<T, double>)
    lrwork = vectors ? std::max<int64_t>(5 * int64_t{k} * k + 5 * k, 2 * int64_t{big} * k + 2 * int64_t{k} * k + k)
                     : 7 * int64_t{k};
  if (c.allocate(int64_t{m} * n) || sb.allocate(k) || iwork.allocate(8 * static_cast<size_t>(k)) ||
      rwork.allocate(std::max<int64_t>(lrwork, 1)))
    return kNoMemory;
  if (vectors && (ub.allocate(int64_t{m} * ucols) || vb.allocate(int64_t{vrows} * n))) return kNoMemory;
  std::memcpy(static_cast<void*>(c.data()), a, sizeof(T) * static_cast<size_t>(m) * n);
  // LAPACK's U' is n x vrows (leading dimension n), its V'^H ucols x m.
  T* lu = vectors ? vb.data() : nullptr;
  T* lvt = vectors ? ub.data() : nullptr;
  const I ldu = n, ldvt = vectors ? ucols : 1;
  I info = 0;
  T query = 0.0;
  Blas<T>::gesdd(job, n, m, c.data(), n, sb.data(), lu, ldu, lvt, ldvt, &query, -1, rwork.data(), iwork.data(), &info);
  const I lwork = workspace(query, 1);
  if (work.allocate(lwork)) return kNoMemory;
  Blas<T>::gesdd(job, n, m, c.data(), n, sb.data(), lu, ldu, lvt, ldvt, work.data(), lwork, rwork.data(),
                 iwork.data(), &info);
  if (info > 0) return kNoConvergence;
  std::memcpy(s, sb.data(), sizeof(double) * k);
  if (vectors) {
    std::memcpy(static_cast<void*>(u), ub.data(), sizeof(T) * static_cast<size_t>(m) * ucols);
    std::memcpy(static_cast<void*>(vh), vb.data(), sizeof(T) * static_cast<size_t>(vrows) * n);
  }
  return kOk;
}

template <class T> int32_t singular_values_of(const T* a, int32_t rows, int32_t cols, double* values) {
  if (rows < 1 || cols < 1) return kEmptyInput;
  return svd<T>(a, rows, cols, 'N', values, nullptr, nullptr);
}
int32_t singular_values(const double* a, int32_t rows, int32_t cols, double* values) {
  return singular_values_of(a, rows, cols, values);
}
int32_t singular_values(const cdouble* a, int32_t rows, int32_t cols, double* values) {
  return singular_values_of(a, rows, cols, values);
}

// V S+ U^H: the rows of V^H are scaled by 1/sigma (or zeroed below the
// tolerance), then one product with both operands conjugate-transposed.
template <class T> int32_t pseudo_inverse(const T* a, int32_t m, int32_t n, double tol, T* pinv) {
  if (int32_t rc = ready()) return rc;
  const int32_t k = std::min(m, n);
  Buffer<T> u, vh;
  Buffer<double> s;
  if (u.allocate(int64_t{m} * k) || vh.allocate(int64_t{k} * n) || s.allocate(k)) return kNoMemory;
  if (int32_t rc = svd(a, m, n, 'S', s.data(), u.data(), vh.data())) return rc;
  if (tol < 0) tol = default_tolerance(m, n, s[0]);
  for (int32_t i = 0; i < k; ++i)
    Blas<T>::scal(n, s[i] > tol ? 1.0 / s[i] : 0.0, vh.data() + static_cast<size_t>(i) * n, 1);
  Blas<T>::gemm_t(kConjTrans, kConjTrans, n, m, k, vh.data(), n, u.data(), k, pinv, m);
  return kOk;
}

// Where the SVD of the matrix itself beats LAPACK's divide-and-conquer
// solver; the thresholds, the lone 208 included, are kept as they are.
bool least_squares_by_svd(int32_t m, int32_t n) {
  const int64_t mm = m, nn = n;
  return (m == 1 && n > 739) || (m >= 2 && n > m && nn > 66 * mm + 670 + (mm - 3) * (mm - 2)) ||
         (m == 208 && n >= m) || (n == 208 && m >= n);
}

namespace {

template <class T>
int32_t by_svd(const T* a, int32_t m, int32_t n, const T* b, int32_t nrhs, double tol, T* x) {
  const int32_t k = std::min(m, n);
  Buffer<T> u, vh, c;
  Buffer<double> s;
  if (u.allocate(int64_t{m} * k) || vh.allocate(int64_t{k} * n) || s.allocate(k) || c.allocate(int64_t{k} * nrhs))
    return kNoMemory;
  if (int32_t rc = svd(a, m, n, 'S', s.data(), u.data(), vh.data())) return rc;
  const double tau = static_cast<double>(std::max(m, n)) * s[0] * (tol > 0 ? tol : kEps);
  // C = U^H B, row i scaled by 1/sigma_i or dropped; X = V C.
  Blas<T>::gemm_t(kConjTrans, kNoTrans, k, nrhs, m, u.data(), k, b, nrhs, c.data(), nrhs);
  int32_t rank = 0;
  for (int32_t i = 0; i < k; ++i) {
    rank += s[i] > tau;
    Blas<T>::scal(nrhs, s[i] > tau ? 1.0 / s[i] : 0.0, c.data() + static_cast<size_t>(i) * nrhs, 1);
  }
  Blas<T>::gemm_t(kConjTrans, kNoTrans, n, nrhs, k, vh.data(), n, c.data(), nrhs, x, nrhs);
  return rank < k ? kWarnRankDeficient : kOk;
}

int32_t by_gelsd(const double* a, int32_t m, int32_t n, const double* b, int32_t nrhs, double tol, double* x) {
  const int32_t k = std::min(m, n), ldb = std::max(m, n);
  Buffer<double> ac, bc, s, work;
  if (to_column_major(a, m, n, ac, m) || bc.allocate(int64_t{ldb} * nrhs) || s.allocate(k)) return kNoMemory;
  for (int32_t j = 0; j < nrhs; ++j) Blas<double>::copy(m, b + j, nrhs, bc.data() + static_cast<size_t>(j) * ldb, 1);
  const double rcond = static_cast<double>(std::max(m, n)) * (tol < 0 ? kEps : tol);
  I rank = 0, info = 0, iquery = 0;
  double query = 0;
  const I minus1 = -1;
  JQ_CALL(dgelsd, &m, &n, &nrhs, ac.data(), &m, bc.data(), &ldb, s.data(), &rcond, &rank, &query, &minus1, &iquery,
          &info);
  const int32_t levels = static_cast<int32_t>(std::floor(std::log2(static_cast<double>(k))));
  Scratch<I> iwork;
  const I lwork = workspace(query, 1);
  if (work.allocate(lwork) ||
      iwork.allocate(static_cast<size_t>(std::max<int64_t>((3 * int64_t{levels} + 14) * k, iquery))))
    return kNoMemory;
  JQ_CALL(dgelsd, &m, &n, &nrhs, ac.data(), &m, bc.data(), &ldb, s.data(), &rcond, &rank, work.data(), &lwork,
          iwork.data(), &info);
  if (info > 0) return kNoConvergence;
  from_column_major(bc.data(), ldb, n, nrhs, x);
  return rank < k ? kWarnRankDeficient : kOk;
}

}  // namespace

template <class T>
int32_t least_squares(const T* a, int32_t m, int32_t n, const T* b, int32_t k, double tol, bool force_svd, T* x) {
  if (int32_t rc = ready()) return rc;
  if constexpr (std::is_same_v<T, double>)
    if (!force_svd && !least_squares_by_svd(m, n)) return by_gelsd(a, m, n, b, k, tol, x);
  return by_svd(a, m, n, b, k, tol, x);
}

template <class T> int32_t Gsvd<T>::factor(const T* a, int32_t m, const T* b, int32_t p, int32_t n) {
  if (int32_t rc = ready()) return rc;
  m_ = m, p_ = p, n_ = n;
  Buffer<T> work;
  Buffer<double> rwork;
  Scratch<I> iwork;
  const int64_t lwork = std::max({int64_t{3} * n, int64_t{m}, int64_t{p}}) + n;
  if (to_column_major(a, m, n, a_, m) || to_column_major(b, p, n, b_, p) || u_.allocate(int64_t{m} * m) ||
      v_.allocate(int64_t{p} * p) || q_.allocate(int64_t{n} * n) || alpha_.allocate(n) || beta_.allocate(n) ||
      work.allocate(lwork) || rwork.allocate(int64_t{2} * n) || iwork.allocate(n))
    return kNoMemory;
  I info = 0;
  if constexpr (std::is_same_v<T, double>)
    JQ_CALL(dggsvd, "U", "V", "Q", &m, &n, &p, &k_, &l_, a_.data(), &m, b_.data(), &p, alpha_.data(), beta_.data(),
            u_.data(), &m, v_.data(), &p, q_.data(), &n, work.data(), iwork.data(), &info);
  else
    JQ_CALL(zggsvd, "U", "V", "Q", &m, &n, &p, &k_, &l_, a_.data(), &m, b_.data(), &p, alpha_.data(), beta_.data(),
            u_.data(), &m, v_.data(), &p, q_.data(), &n, work.data(), rwork.data(), iwork.data(), &info);
  return info > 0 ? kNoConvergence : kOk;
}

// LAPACK leaves alpha = 1 for the first k pairs and alpha = 0, beta = 1 past
// row m, so both diagonals read straight off alpha and beta; R's rows past m
// stand in B.
template <class T> int32_t Gsvd<T>::write(T* u, T* v, double* c, double* s, T* x) {
  const int32_t r = rank(), m = m_, p = p_, n = n_, off = n - r;
  from_column_major(u_.data(), m, m, m, u);
  from_column_major(v_.data(), p, p, p, v);
  std::fill(c, c + int64_t{m} * r, 0.0);
  std::fill(s, s + int64_t{p} * r, 0.0);
  for (int32_t i = 0; i < std::min(m, r); ++i) c[int64_t{i} * r + i] = alpha_[i];
  for (int32_t i = k_; i < r; ++i) s[int64_t{i - k_} * r + i] = beta_[i];
  if (r == 0) return kOk;
  Buffer<T> rr;
  if (rr.allocate(int64_t{r} * r)) return kNoMemory;
  for (int32_t i = 0; i < r; ++i)
    for (int32_t j = 0; j < r; ++j) {
      const size_t col = static_cast<size_t>(off + j);
      rr[static_cast<size_t>(i) * r + j] =
          j < i ? T(0.0) : i < m ? a_[col * m + i] : b_[col * p + (i - k_)];
    }
  // Q's last r columns, column-major, read row-major are their transpose;
  // conjugated they are the Q^H the product needs.
  T* qs = q_.data() + static_cast<size_t>(off) * n;
  for (int64_t i = 0; i < int64_t{r} * n; ++i) qs[i] = conj_of(qs[i]);
  Blas<T>::gemm(r, n, r, rr.data(), r, qs, n, x, n);
  for (int64_t i = 0; i < int64_t{r} * n; ++i) qs[i] = conj_of(qs[i]);
  return kOk;
}

template class Gsvd<double>;
template class Gsvd<cdouble>;

#define JQ_INSTANTIATE(T)                                                                       \
  template int32_t svd(const T*, int32_t, int32_t, char, double*, T*, T*);                      \
  template int32_t pseudo_inverse(const T*, int32_t, int32_t, double, T*);                      \
  template int32_t least_squares(const T*, int32_t, int32_t, const T*, int32_t, double, bool, T*);
JQ_INSTANTIATE(double)
JQ_INSTANTIATE(cdouble)

}  // namespace jq::linalg
