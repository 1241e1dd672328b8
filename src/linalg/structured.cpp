#include "linalg/structured.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "linalg/decompose.hpp"
#include "linalg/dense.hpp"

namespace jq::linalg {
// Forward substitution with the unit lower factor, then back substitution
// with the upper one, one row's dot product at a time.
template <class T> int32_t lu_solve(const T* lu, const int32_t* pivots, int32_t n, const T* b, T* x) {
  if (int32_t rc = ready()) return rc;
  std::memcpy(static_cast<void*>(x), b, sizeof(T) * n);
  for (int32_t i = 0; i < n; ++i) std::swap(x[i], x[pivots[i]]);
  for (int32_t i = 1; i < n; ++i) x[i] -= Blas<T>::dot(i, lu + static_cast<size_t>(i) * n, x);
  for (int32_t i = n - 1; i >= 0; --i) {
    const T* row = lu + static_cast<size_t>(i) * n;
    if (row[i] == T(0.0)) return kSingular;
    x[i] = (x[i] - Blas<T>::dot(n - 1 - i, row + i + 1, x + i + 1)) / row[i];
  }
  return kOk;
}

template <class T> int32_t lu_inverse(const T* lu, const int32_t* pivots, int32_t n, T* inv) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> c, work;
  Scratch<I> ipiv;
  if (to_column_major(lu, n, n, c, n) || ipiv.allocate(n)) return kNoMemory;
  for (int32_t i = 0; i < n; ++i) ipiv[i] = pivots[i] + 1;
  I info = 0;
  T query = 0.0;
  Blas<T>::getri(n, c.data(), n, ipiv.data(), &query, -1, &info);
  if (work.allocate(workspace(query))) return kNoMemory;
  Blas<T>::getri(n, c.data(), n, ipiv.data(), work.data(), workspace(query), &info);
  if (info > 0) return kSingular;
  from_column_major(c.data(), n, n, n, inv);
  return kOk;
}

namespace {

// dgttrf (zgttrf) on copies of the three diagonals; info > 0 on an exactly
// zero pivot.
template <class T> struct TridiagonalFactors {
  Buffer<T> l, m, u, u2;
  Scratch<I> ipiv;
  I info = 0;
  int32_t factor(const T* dl, const T* d, const T* du, int32_t n) {
    const int32_t off = std::max(n - 1, 1);
    if (l.allocate(off) || m.allocate(n) || u.allocate(off) || u2.allocate(std::max(n - 2, 1)) || ipiv.allocate(n))
      return kNoMemory;
    if (n > 1) {
      std::memcpy(static_cast<void*>(l.data()), dl, sizeof(T) * (n - 1));
      std::memcpy(static_cast<void*>(u.data()), du, sizeof(T) * (n - 1));
    }
    std::memcpy(static_cast<void*>(m.data()), d, sizeof(T) * n);
    if constexpr (std::is_same_v<T, double>)
      JQ_CALL(dgttrf, &n, l.data(), m.data(), u.data(), u2.data(), ipiv.data(), &info);
    else
      JQ_CALL(zgttrf, &n, l.data(), m.data(), u.data(), u2.data(), ipiv.data(), &info);
    return kOk;
  }
};

}  // namespace

template <class T>
int32_t tridiagonal_solve(const T* dl, const T* d, const T* du, int32_t n, const T* b, int32_t k, T* x) {
  if (int32_t rc = ready()) return rc;
  TridiagonalFactors<T> f;
  Buffer<T> bc;
  if (to_column_major(b, n, k, bc, n) || f.factor(dl, d, du, n)) return kNoMemory;
  if (f.info > 0) return kSingular;
  I info = 0;
  if constexpr (std::is_same_v<T, double>)
    JQ_CALL(dgttrs, "N", &n, &k, f.l.data(), f.m.data(), f.u.data(), f.u2.data(), f.ipiv.data(), bc.data(), &n, &info);
  else
    JQ_CALL(zgttrs, "N", &n, &k, f.l.data(), f.m.data(), f.u.data(), f.u2.data(), f.ipiv.data(), bc.data(), &n, &info);
  from_column_major(bc.data(), n, n, k, x);
  return kOk;
}

template <class T>
int32_t tridiagonal_lu(const T* dl, const T* d, const T* du, int32_t n, T* l, T* m, T* u, T* u2, int32_t* pivots) {
  if (int32_t rc = ready()) return rc;
  TridiagonalFactors<T> f;
  if (f.factor(dl, d, du, n)) return kNoMemory;
  if (n > 1) {
    std::memcpy(static_cast<void*>(l), f.l.data(), sizeof(T) * (n - 1));
    std::memcpy(static_cast<void*>(u), f.u.data(), sizeof(T) * (n - 1));
  }
  if (n > 2) std::memcpy(static_cast<void*>(u2), f.u2.data(), sizeof(T) * (n - 2));
  std::memcpy(static_cast<void*>(m), f.m.data(), sizeof(T) * n);
  for (int32_t i = 0; i < n; ++i) pivots[i] = f.ipiv[i] - 1;
  // An exactly zero pivot: the factors stand, as for a dense LU.
  return f.info > 0 ? kWarnSingularLU : kOk;
}

template <class T> bool is_symmetric(const T* a, int32_t n) {
  double big = 0;
  for (int64_t i = 0; i < int64_t{n} * n; ++i) big = std::max(big, std::abs(a[i]));
  const double tol = n * kEps * big;
  for (int32_t i = 0; i < n; ++i)
    for (int32_t j = 0; j <= i; ++j)
      if (std::abs(a[static_cast<size_t>(i) * n + j] - conj_of(a[static_cast<size_t>(j) * n + i])) > tol) return false;
  return true;
}

template <class T> int32_t is_positive_definite(const T* a, int32_t n, bool semi, int32_t* result) {
  *result = 0;
  if (!is_symmetric(a, n)) return kOk;
  Buffer<double> w;
  Buffer<T> v;
  if (int32_t rc = ready()) return rc;
  if (w.allocate(n) || v.allocate(int64_t{n} * n)) return kNoMemory;
  if (int32_t rc = eigen_symmetric(a, n, w.data(), v.data())) return rc;
  const double scale = std::max(std::abs(w[0]), std::abs(w[n - 1]));
  *result = semi ? w[0] >= -n * kEps * scale : w[0] > 0;
  return kOk;
}

template <class T> int32_t hessenberg(const T* a, int32_t n, T* h, T* q) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> c, tau, work;
  if (to_column_major(a, n, n, c, n) || tau.allocate(std::max(n - 1, 1))) return kNoMemory;
  I info = 0;
  T query = 0.0;
  Blas<T>::gehrd(n, c.data(), tau.data(), &query, -1, &info);
  if (work.allocate(workspace(query))) return kNoMemory;
  Blas<T>::gehrd(n, c.data(), tau.data(), work.data(), workspace(query), &info);
  from_column_major(c.data(), n, n, n, h);
  for (int32_t i = 2; i < n; ++i)
    for (int32_t j = 0; j < i - 1; ++j) h[static_cast<size_t>(i) * n + j] = 0.0;
  Blas<T>::orghr(n, c.data(), tau.data(), &query, -1, &info);
  if (work.allocate(workspace(query))) return kNoMemory;
  Blas<T>::orghr(n, c.data(), tau.data(), work.data(), workspace(query), &info);
  from_column_major(c.data(), n, n, n, q);
  return kOk;
}

template <class T> int32_t schur(const T* a, int32_t n, T* s, T* z) { return schur_moved(a, n, -1, -1, s, z); }

template <class T> int32_t schur_moved(const T* a, int32_t n, int32_t from, int32_t to, T* s, T* z) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> c, zc, w1, w2, work;
  Buffer<double> rwork;
  Scratch<I> bwork;
  if (to_column_major(a, n, n, c, n) || zc.allocate(int64_t{n} * n) || w1.allocate(n) || w2.allocate(n) ||
      rwork.allocate(n) || bwork.allocate(n))
    return kNoMemory;
  I info = 0, sdim = 0;
  const I minus1 = -1;
  T query = 0.0;
  auto run = [&](T* wk, const I* lwork) {
    if constexpr (std::is_same_v<T, double>)
      JQ_CALL(dgees, "V", "N", nullptr, &n, c.data(), &n, &sdim, w1.data(), w2.data(), zc.data(), &n, wk, lwork,
              bwork.data(), &info);
    else
      JQ_CALL(zgees, "V", "N", nullptr, &n, c.data(), &n, &sdim, w1.data(), zc.data(), &n, wk, lwork, rwork.data(),
              bwork.data(), &info);
  };
  run(&query, &minus1);
  const I lwork = workspace(query);
  if (work.allocate(lwork)) return kNoMemory;
  run(work.data(), &lwork);
  if (info > 0) return kNoConvergence;
  if (from >= 0 && from != to) {
    I first = from + 1, last = to + 1;
    if constexpr (std::is_same_v<T, double>) {
      // A 2x2 block moves whole; the work array holds one row.
      if (work.allocate(n)) return kNoMemory;
      JQ_CALL(dtrexc, "V", &n, c.data(), &n, zc.data(), &n, &first, &last, work.data(), &info);
    } else {
      JQ_CALL(ztrexc, "V", &n, c.data(), &n, zc.data(), &n, &first, &last, &info);
    }
    // A swap LAPACK rejects as too ill-conditioned leaves a form that is
    // still valid but not the one asked for.
    if (info > 0) return kNoConvergence;
  }
  from_column_major(c.data(), n, n, n, s);
  from_column_major(zc.data(), n, n, n, z);
  return kOk;
}

template <class T> int32_t characteristic_polynomial(const T* a, int32_t n, T* c) {
  Buffer<cdouble> values, vectors;
  if (int32_t rc = ready()) return rc;
  if (values.allocate(n) || vectors.allocate(int64_t{n} * n)) return kNoMemory;
  if (int32_t rc = eigen(a, n, values.data(), vectors.data())) return rc;
  // Multiply out (x - l_1)...(x - l_n), constant first.
  Buffer<cdouble> p;
  if (p.allocate(n + 1)) return kNoMemory;
  p[0] = 1.0;
  for (int32_t k = 0; k < n; ++k) {
    p[k + 1] = p[k];
    for (int32_t j = k; j > 0; --j) p[j] = p[j - 1] - values[k] * p[j];
    p[0] = -values[k] * p[0];
  }
  for (int32_t j = 0; j <= n; ++j) {
    if constexpr (std::is_same_v<T, double>)
      c[j] = p[j].real();
    else
      c[j] = p[j];
  }
  return kOk;
}

template <class T> int32_t sylvester(const T* a, int32_t m, const T* b, int32_t n, bool adjoint_b, const T* c, T* x) {
  if (int32_t rc = ready()) return rc;
  const int64_t mm = int64_t{m} * m, nn = int64_t{n} * n, mn = int64_t{m} * n;
  Buffer<T> s, u, t, v, f, g, sc, tc, bh;
  if (s.allocate(mm) || u.allocate(mm) || t.allocate(nn) || v.allocate(nn) || f.allocate(mn) || g.allocate(mn))
    return kNoMemory;
  const T* bb = b;
  if (adjoint_b) {
    if (bh.allocate(nn)) return kNoMemory;
    for (int32_t i = 0; i < n; ++i)
      for (int32_t j = 0; j < n; ++j) bh[static_cast<size_t>(i) * n + j] = conj_of(b[static_cast<size_t>(j) * n + i]);
    bb = bh.data();
  }
  // A = U S U^H, B = V T V^H; then S Y + Y T = U^H C V and X = U Y V^H.
  if (int32_t rc = schur(a, m, s.data(), u.data())) return rc;
  if (int32_t rc = schur(bb, n, t.data(), v.data())) return rc;
  Blas<T>::gemm_t(kConjTrans, kNoTrans, m, n, m, u.data(), m, c, n, g.data(), n);
  Blas<T>::gemm_t(kNoTrans, kNoTrans, m, n, n, g.data(), n, v.data(), n, f.data(), n);
  if (to_column_major(s.data(), m, m, sc, m) || to_column_major(t.data(), n, n, tc, n) ||
      to_column_major(f.data(), m, n, g, m))
    return kNoMemory;
  double scale = 1;
  I info = 0;
  Blas<T>::trsyl(m, n, sc.data(), tc.data(), g.data(), &scale, &info);
  if (info > 0) return kSingular;
  from_column_major(g.data(), m, m, n, f.data());
  Blas<T>::gemm_t(kNoTrans, kNoTrans, m, n, m, u.data(), m, f.data(), n, g.data(), n);
  Blas<T>::gemm_t(kNoTrans, kConjTrans, m, n, n, g.data(), n, v.data(), n, x, n);
  if (scale != 1) Blas<T>::scal(static_cast<I>(mn), 1.0 / scale, x, 1);
  return kOk;
}

namespace {
template <class T> void adjoint_into(const T* a, int32_t n, T* out) {
  for (int32_t i = 0; i < n; ++i)
    for (int32_t j = 0; j < n; ++j) out[static_cast<size_t>(i) * n + j] = conj_of(a[static_cast<size_t>(j) * n + i]);
}
}  // namespace

template <class T>
int32_t sylvester_general(const T* a, int32_t m, const T* b, int32_t n, bool adjoint_a, bool adjoint_b, bool minus,
                          const T* c, T* x) {
  if (int32_t rc = ready()) return rc;
  const int64_t nn = int64_t{n} * n;
  Buffer<T> ao, bo;
  const T *aa = a, *bb = b;
  if (adjoint_a) {
    if (ao.allocate(int64_t{m} * m)) return kNoMemory;
    adjoint_into(a, m, ao.data());
    aa = ao.data();
  }
  if (adjoint_b || minus) {
    if (bo.allocate(nn)) return kNoMemory;
    if (adjoint_b)
      adjoint_into(b, n, bo.data());
    else
      std::memcpy(static_cast<void*>(bo.data()), b, sizeof(T) * nn);
    // A X - X B = C is A X + X (-B) = C.
    if (minus) Blas<T>::scal(static_cast<I>(nn), -1.0, bo.data(), 1);
    bb = bo.data();
  }
  return sylvester(aa, m, bb, n, false, c, x);
}

template <class T> int32_t lyapunov(const T* a, int32_t n, int32_t type, const T* q, T* x) {
  if (int32_t rc = ready()) return rc;
  const int64_t nn = int64_t{n} * n;
  Buffer<T> ah, w, mi, bt, cm;
  const T* op = a;
  if (type & 1) {
    if (ah.allocate(nn)) return kNoMemory;
    adjoint_into(a, n, ah.data());
    op = ah.data();
  }
  if (type < 2) return sylvester(op, n, op, n, true, q, x);
  // Discrete: the bilinear map B = (A + I)^-1 (A - I) turns A X A^H - X + Q = 0
  // into B X + X B^H = -2 (A + I)^-1 Q (A + I)^-H. A + I singular means A has
  // the eigenvalue -1, and the discrete equation is singular too.
  if (w.allocate(nn) || mi.allocate(nn) || bt.allocate(nn) || cm.allocate(nn)) return kNoMemory;
  std::memcpy(static_cast<void*>(w.data()), op, sizeof(T) * nn);
  for (int32_t i = 0; i < n; ++i) w[static_cast<size_t>(i) * n + i] += 1.0;
  if (int32_t rc = inverse_lu(w.data(), n, mi.data())) return rc;
  for (int32_t i = 0; i < n; ++i) w[static_cast<size_t>(i) * n + i] -= 2.0;
  Blas<T>::gemm(n, n, n, mi.data(), n, w.data(), n, bt.data(), n);
  Blas<T>::gemm(n, n, n, mi.data(), n, q, n, w.data(), n);
  Blas<T>::gemm_t(kNoTrans, kConjTrans, n, n, n, w.data(), n, mi.data(), n, cm.data(), n);
  Blas<T>::scal(static_cast<I>(nn), -2.0, cm.data(), 1);
  return sylvester(bt.data(), n, bt.data(), n, true, cm.data(), x);
}

// LAPACK's band layout: column j of the band holds A(i, j) at row
// kl + ku + i - j, kl rows on top being room for the fill-in.
template <class T> int32_t band_solve(const T* a, int32_t n, int32_t kl, int32_t ku, const T* b, int32_t k, T* x) {
  if (int32_t rc = ready()) return rc;
  const int32_t ld = 2 * kl + ku + 1;
  Buffer<T> ab, bc;
  Scratch<I> ipiv;
  if (ab.allocate(int64_t{ld} * n) || ipiv.allocate(n) || to_column_major(b, n, k, bc, n)) return kNoMemory;
  std::fill(ab.data(), ab.data() + int64_t{ld} * n, T(0.0));
  for (int32_t j = 0; j < n; ++j)
    for (int32_t i = std::max(0, j - ku); i <= std::min(n - 1, j + kl); ++i)
      ab[static_cast<size_t>(j) * ld + kl + ku + i - j] = a[static_cast<size_t>(i) * n + j];
  I info = 0;
  Blas<T>::gbsv(n, kl, ku, k, ab.data(), ld, ipiv.data(), bc.data(), &info);
  if (info > 0) return kSingular;
  from_column_major(bc.data(), n, n, k, x);
  return kOk;
}

constexpr char kBalanceJobs[] = "NPSB";

template <class T>
int32_t balance(const T* a, int32_t n, int32_t job, T* b, double* scale, int32_t* ilo, int32_t* ihi) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> c;
  if (to_column_major(a, n, n, c, n)) return kNoMemory;
  I lo = 1, hi = n, info = 0;
  Blas<T>::gebal(kBalanceJobs[job], n, c.data(), &lo, &hi, scale, &info);
  from_column_major(c.data(), n, n, n, b);
  *ilo = lo - 1;
  *ihi = hi - 1;
  return kOk;
}

template <class T>
int32_t balance_back(T* v, int32_t n, int32_t m, const double* scale, int32_t ilo, int32_t ihi, int32_t job, int32_t side) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> c;
  if (to_column_major(v, n, m, c, n)) return kNoMemory;
  I info = 0;
  Blas<T>::gebak(kBalanceJobs[job], side ? 'L' : 'R', n, ilo + 1, ihi + 1, scale, m, c.data(), &info);
  from_column_major(c.data(), n, n, m, v);
  return kOk;
}

int32_t qz(const double* a, const double* b, int32_t n, double* s, double* t, double* q, double* z, cdouble* alpha,
           double* beta) {
  if (int32_t rc = ready()) return rc;
  const int64_t nn = int64_t{n} * n;
  Buffer<double> ac, bc, qc, zc, ar, ai, work;
  Scratch<I> bwork;
  if (to_column_major(a, n, n, ac, n) || to_column_major(b, n, n, bc, n) || qc.allocate(nn) || zc.allocate(nn) ||
      ar.allocate(n) || ai.allocate(n) || bwork.allocate(n))
    return kNoMemory;
  I sdim = 0, info = 0;
  const I minus1 = -1;
  double query = 0;
  JQ_CALL(dgges, "V", "V", "N", nullptr, &n, ac.data(), &n, bc.data(), &n, &sdim, ar.data(), ai.data(), beta,
          qc.data(), &n, zc.data(), &n, &query, &minus1, bwork.data(), &info);
  const I lwork = workspace(query);
  if (work.allocate(lwork)) return kNoMemory;
  JQ_CALL(dgges, "V", "V", "N", nullptr, &n, ac.data(), &n, bc.data(), &n, &sdim, ar.data(), ai.data(), beta,
          qc.data(), &n, zc.data(), &n, work.data(), &lwork, bwork.data(), &info);
  if (info > 0) return kNoConvergence;
  for (int32_t j = 0; j < n; ++j) alpha[j] = {ar[j], ai[j]};
  from_column_major(ac.data(), n, n, n, s);
  from_column_major(bc.data(), n, n, n, t);
  from_column_major(qc.data(), n, n, n, q);
  from_column_major(zc.data(), n, n, n, z);
  return kOk;
}

int32_t generalized_eigen(const double* a, const double* b, int32_t n, cdouble* alpha, double* beta, cdouble* v) {
  if (int32_t rc = ready()) return rc;
  const int64_t nn = int64_t{n} * n;
  Buffer<double> ac, bc, zc, ar, ai, work;
  Scratch<I> bwork;
  if (to_column_major(a, n, n, ac, n) || to_column_major(b, n, n, bc, n) || zc.allocate(nn) || ar.allocate(n) ||
      ai.allocate(n) || bwork.allocate(n))
    return kNoMemory;
  I sdim = 0, info = 0, used = 0;
  const I minus1 = -1, one = 1;
  double query = 0;
  JQ_CALL(dgges, "N", "V", "N", nullptr, &n, ac.data(), &n, bc.data(), &n, &sdim, ar.data(), ai.data(), beta, nullptr,
          &one, zc.data(), &n, &query, &minus1, bwork.data(), &info);
  const I lwork = std::max(workspace(query), 6 * n);
  if (work.allocate(lwork)) return kNoMemory;
  JQ_CALL(dgges, "N", "V", "N", nullptr, &n, ac.data(), &n, bc.data(), &n, &sdim, ar.data(), ai.data(), beta, nullptr,
          &one, zc.data(), &n, work.data(), &lwork, bwork.data(), &info);
  if (info > 0) return kNoConvergence;
  // Eigenvectors of the Schur pair, carried back through Z.
  JQ_CALL(dtgevc, "R", "B", nullptr, &n, ac.data(), &n, bc.data(), &n, nullptr, &one, zc.data(), &n, &n, &used,
          work.data(), &info);
  if (info != 0) return kNoConvergence;
  for (int32_t j = 0; j < n; ++j) alpha[j] = {ar[j], ai[j]};
  unpack_pairs(zc.data(), ai.data(), n, v);
  // Unit Euclidean length, as the ordinary eigenvectors.
  for (int32_t j = 0; j < n; ++j) {
    double norm = 0;
    for (int32_t i = 0; i < n; ++i) norm += std::norm(v[static_cast<size_t>(i) * n + j]);
    norm = std::sqrt(norm);
    if (norm > 0)
      for (int32_t i = 0; i < n; ++i) v[static_cast<size_t>(i) * n + j] /= norm;
  }
  return kOk;
}

// The module has no complex QZ driver, so the steps are taken one by one:
// B P = Q R with column pivoting, the pencil (Q^H A P, R) to Hessenberg-
// triangular form, QZ iteration, eigenvectors carried back through Z, and
// P undone on their rows.
int32_t generalized_eigen(const cdouble* a, const cdouble* b, int32_t n, cdouble* alpha, double* beta, cdouble* v) {
  if (int32_t rc = ready()) return rc;
  const int64_t nn = int64_t{n} * n;
  Buffer<cdouble> ac, bc, qc, h, zc, tau, bet, work;
  Buffer<double> rwork;
  Scratch<I> jpvt;
  if (to_column_major(a, n, n, ac, n) || to_column_major(b, n, n, bc, n) || qc.allocate(nn) || h.allocate(nn) ||
      zc.allocate(nn) || tau.allocate(n) || bet.allocate(n) || rwork.allocate(int64_t{2} * n) || jpvt.allocate(n))
    return kNoMemory;
  I info = 0;
  const I minus1 = -1, one = 1;
  cdouble query = 0.0;
  for (int32_t j = 0; j < n; ++j) jpvt[j] = 0;
  Blas<cdouble>::geqp3(n, n, bc.data(), n, jpvt.data(), tau.data(), &query, -1, rwork.data(), &info);
  I lwork = std::max(workspace(query), 2 * n);
  Blas<cdouble>::orgqr(n, n, n, qc.data(), n, tau.data(), &query, -1, &info);
  lwork = std::max(lwork, workspace(query));
  if (work.allocate(lwork)) return kNoMemory;
  Blas<cdouble>::geqp3(n, n, bc.data(), n, jpvt.data(), tau.data(), work.data(), lwork, rwork.data(), &info);
  std::memcpy(static_cast<void*>(qc.data()), bc.data(), sizeof(cdouble) * nn);
  Blas<cdouble>::orgqr(n, n, n, qc.data(), n, tau.data(), work.data(), lwork, &info);
  for (int32_t j = 0; j < n; ++j)
    for (int32_t i = j + 1; i < n; ++i) bc[static_cast<size_t>(j) * n + i] = 0.0;
  // zc holds A P for the moment, then Q^H A P goes to h.
  for (int32_t j = 0; j < n; ++j)
    std::memcpy(static_cast<void*>(zc.data() + static_cast<size_t>(j) * n), ac.data() + static_cast<size_t>(jpvt[j] - 1) * n,
                sizeof(cdouble) * n);
  const cdouble c1 = 1.0, c0 = 0.0;
  JQ_CALL(cblas_zgemm, kColMajor, kConjTrans, kNoTrans, n, n, n, &c1, qc.data(), n, zc.data(), n, &c0, h.data(), n);
  JQ_CALL(zgghrd, "N", "I", &n, &one, &n, h.data(), &n, bc.data(), &n, nullptr, &one, zc.data(), &n, &info);
  JQ_CALL(zhgeqz, "S", "N", "V", &n, &one, &n, h.data(), &n, bc.data(), &n, alpha, bet.data(), nullptr, &one,
          zc.data(), &n, &query, &minus1, rwork.data(), &info);
  const I lwork2 = workspace(query);
  if (lwork2 > lwork && work.allocate(lwork2)) return kNoMemory;
  JQ_CALL(zhgeqz, "S", "N", "V", &n, &one, &n, h.data(), &n, bc.data(), &n, alpha, bet.data(), nullptr, &one,
          zc.data(), &n, work.data(), &lwork2, rwork.data(), &info);
  if (info != 0) return kNoConvergence;
  I used = 0;
  if (lwork < 2 * n && work.allocate(2 * n)) return kNoMemory;
  JQ_CALL(ztgevc, "R", "B", nullptr, &n, h.data(), &n, bc.data(), &n, nullptr, &one, zc.data(), &n, &n, &used,
          work.data(), rwork.data(), &info);
  if (info != 0) return kNoConvergence;
  // beta real and non-negative, alpha turned with it.
  for (int32_t j = 0; j < n; ++j) {
    const double m = std::abs(bet[j]);
    const cdouble phase = m > 0 ? std::conj(bet[j]) / m : cdouble(1.0);
    alpha[j] *= phase;
    beta[j] = m;
  }
  for (int32_t j = 0; j < n; ++j) {
    const cdouble* y = zc.data() + static_cast<size_t>(j) * n;
    double norm = 0;
    for (int32_t i = 0; i < n; ++i) norm += std::norm(y[i]);
    norm = norm > 0 ? std::sqrt(norm) : 1.0;
    for (int32_t i = 0; i < n; ++i) v[static_cast<size_t>(jpvt[i] - 1) * n + j] = y[i] / norm;
  }
  return kOk;
}

#define JQ_INSTANTIATE(T)                                                                     \
  template int32_t lu_solve(const T*, const int32_t*, int32_t, const T*, T*);                 \
  template int32_t lu_inverse(const T*, const int32_t*, int32_t, T*);                         \
  template bool is_symmetric(const T*, int32_t);                                              \
  template int32_t is_positive_definite(const T*, int32_t, bool, int32_t*);                   \
  template int32_t hessenberg(const T*, int32_t, T*, T*);                                     \
  template int32_t schur(const T*, int32_t, T*, T*);                                          \
  template int32_t schur_moved(const T*, int32_t, int32_t, int32_t, T*, T*);                   \
  template int32_t characteristic_polynomial(const T*, int32_t, T*);                         \
  template int32_t sylvester(const T*, int32_t, const T*, int32_t, bool, const T*, T*);      \
  template int32_t band_solve(const T*, int32_t, int32_t, int32_t, const T*, int32_t, T*);     \
  template int32_t balance(const T*, int32_t, int32_t, T*, double*, int32_t*, int32_t*);         \
  template int32_t balance_back(T*, int32_t, int32_t, const double*, int32_t, int32_t, int32_t, int32_t); \
  template int32_t tridiagonal_lu(const T*, const T*, const T*, int32_t, T*, T*, T*, T*, int32_t*);                \
  template int32_t tridiagonal_solve(const T*, const T*, const T*, int32_t, const T*, int32_t, T*);                \
  template int32_t sylvester_general(const T*, int32_t, const T*, int32_t, bool, bool, bool, const T*, T*);      \
  template int32_t lyapunov(const T*, int32_t, int32_t, const T*, T*);
JQ_INSTANTIATE(double)
JQ_INSTANTIATE(cdouble)

}  // namespace jq::linalg
