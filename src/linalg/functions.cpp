#include "linalg/functions.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "linalg/decompose.hpp"
#include "linalg/dense.hpp"
#include "linalg/structured.hpp"

namespace jq::linalg {
namespace {

template <class T> void identity(T* a, int32_t n) {
  std::fill(a, a + int64_t{n} * n, T(0.0));
  for (int32_t i = 0; i < n; ++i) a[static_cast<size_t>(i) * n + i] = 1.0;
}

template <class T> double one_norm(const T* a, int32_t n) {
  double best = 0;
  for (int32_t j = 0; j < n; ++j) {
    double s = 0;
    for (int32_t i = 0; i < n; ++i) s += std::abs(a[static_cast<size_t>(i) * n + j]);
    best = std::max(best, s);
  }
  return best;
}

}  // namespace

template <class T> int32_t matrix_exp(const T* a, int32_t n, T* e) {
  if (int32_t rc = ready()) return rc;
  static constexpr double b[14] = {64764752532480000.0, 32382376266240000.0, 7771770303897600.0,
                                   1187353796428800.0,  129060195264000.0,   10559470521600.0,
                                   670442572800.0,      33522128640.0,       1323241920.0,
                                   40840800.0,          960960.0,            16380.0,
                                   182.0,               1.0};
  const int64_t nn = int64_t{n} * n;
  Buffer<T> s, a2, a4, a6, u, v, t, w;
  for (Buffer<T>* x : {&s, &a2, &a4, &a6, &u, &v, &t, &w})
    if (x->allocate(nn)) return kNoMemory;
  // Scale so that the 1-norm is within the approximant's reach.
  const double norm = one_norm(a, n);
  const int32_t squarings = norm > 5.371920351148152 ? static_cast<int32_t>(std::ceil(std::log2(norm / 5.371920351148152))) : 0;
  std::memcpy(static_cast<void*>(s.data()), a, sizeof(T) * nn);
  Blas<T>::scal(static_cast<I>(nn), std::ldexp(1.0, -squarings), s.data(), 1);
  Blas<T>::gemm(n, n, n, s.data(), n, s.data(), n, a2.data(), n);
  Blas<T>::gemm(n, n, n, a2.data(), n, a2.data(), n, a4.data(), n);
  Blas<T>::gemm(n, n, n, a2.data(), n, a4.data(), n, a6.data(), n);
  // t = b13 A6 + b11 A4 + b9 A2; w = A6 t + b7 A6 + b5 A4 + b3 A2 + b1 I; U = A w.
  // t = b12 A6 + b10 A4 + b8 A2; V = A6 t + b6 A6 + b4 A4 + b2 A2 + b0 I.
  auto combine = [&](T* out, double c6, double c4, double c2, double c0) {
    std::fill(out, out + nn, T(0.0));
    Blas<T>::axpy(static_cast<I>(nn), c6, a6.data(), out);
    Blas<T>::axpy(static_cast<I>(nn), c4, a4.data(), out);
    Blas<T>::axpy(static_cast<I>(nn), c2, a2.data(), out);
    for (int32_t i = 0; i < n; ++i) out[static_cast<size_t>(i) * n + i] += c0;
  };
  combine(t.data(), b[13], b[11], b[9], 0);
  Blas<T>::gemm(n, n, n, a6.data(), n, t.data(), n, w.data(), n);
  combine(t.data(), b[7], b[5], b[3], b[1]);
  Blas<T>::axpy(static_cast<I>(nn), 1.0, t.data(), w.data());
  Blas<T>::gemm(n, n, n, s.data(), n, w.data(), n, u.data(), n);
  combine(t.data(), b[12], b[10], b[8], 0);
  Blas<T>::gemm(n, n, n, a6.data(), n, t.data(), n, v.data(), n);
  combine(t.data(), b[6], b[4], b[2], b[0]);
  Blas<T>::axpy(static_cast<I>(nn), 1.0, t.data(), v.data());
  // e = (V - U)^-1 (V + U), then squared back.
  std::memcpy(static_cast<void*>(t.data()), v.data(), sizeof(T) * nn);
  Blas<T>::axpy(static_cast<I>(nn), -1.0, u.data(), t.data());
  Blas<T>::axpy(static_cast<I>(nn), 1.0, u.data(), v.data());
  if (int32_t rc = inverse_lu(t.data(), n, w.data())) return rc == kSingular ? kNoConvergence : rc;
  Blas<T>::gemm(n, n, n, w.data(), n, v.data(), n, s.data(), n);
  for (int32_t k = 0; k < squarings; ++k) {
    Blas<T>::gemm(n, n, n, s.data(), n, s.data(), n, t.data(), n);
    std::swap_ranges(s.data(), s.data() + nn, t.data());
  }
  std::memcpy(static_cast<void*>(e), s.data(), sizeof(T) * nn);
  return kOk;
}

template <class T> int32_t matrix_power(const T* a, int32_t n, int32_t p, T* r) {
  if (int32_t rc = ready()) return rc;
  const int64_t nn = int64_t{n} * n;
  Buffer<T> base, acc, tmp;
  if (base.allocate(nn) || acc.allocate(nn) || tmp.allocate(nn)) return kNoMemory;
  if (p < 0) {
    if (int32_t rc = inverse_lu(a, n, base.data())) return rc;
  } else {
    std::memcpy(static_cast<void*>(base.data()), a, sizeof(T) * nn);
  }
  // |p| as unsigned, so that INT32_MIN is handled too.
  uint32_t e = p < 0 ? 0u - static_cast<uint32_t>(p) : static_cast<uint32_t>(p);
  identity(acc.data(), n);
  while (e) {
    if (e & 1u) {
      Blas<T>::gemm(n, n, n, acc.data(), n, base.data(), n, tmp.data(), n);
      std::swap_ranges(acc.data(), acc.data() + nn, tmp.data());
    }
    e >>= 1;
    if (e) {
      Blas<T>::gemm(n, n, n, base.data(), n, base.data(), n, tmp.data(), n);
      std::swap_ranges(base.data(), base.data() + nn, tmp.data());
    }
  }
  std::memcpy(static_cast<void*>(r), acc.data(), sizeof(T) * nn);
  return kOk;
}

template <class T> int32_t matrix_sqrt(const T* a, int32_t n, cdouble* x) {
  if (int32_t rc = ready()) return rc;
  const int64_t nn = int64_t{n} * n;
  Buffer<cdouble> c, z, w, work, root, tmp;
  Buffer<double> rwork;
  Scratch<I> bwork;
  if (c.allocate(nn) || z.allocate(nn) || w.allocate(n) || root.allocate(nn) || tmp.allocate(nn) ||
      rwork.allocate(n) || bwork.allocate(n))
    return kNoMemory;
  // Column-major complex copy of A.
  for (int32_t i = 0; i < n; ++i)
    for (int32_t j = 0; j < n; ++j) c[static_cast<size_t>(j) * n + i] = a[static_cast<size_t>(i) * n + j];
  I info = 0, sdim = 0;
  const I minus1 = -1;
  cdouble query = 0.0;
  JQ_CALL(zgees, "V", "N", nullptr, &n, c.data(), &n, &sdim, w.data(), z.data(), &n, &query, &minus1, rwork.data(),
          bwork.data(), &info);
  const I lwork = std::max<I>(static_cast<I>(query.real()), 1);
  if (work.allocate(lwork)) return kNoMemory;
  JQ_CALL(zgees, "V", "N", nullptr, &n, c.data(), &n, &sdim, w.data(), z.data(), &n, work.data(), &lwork, rwork.data(),
          bwork.data(), &info);
  if (info > 0) return kNoConvergence;
  // Upper triangular R with R R = T, column by column (column-major).
  auto t = [&](int32_t i, int32_t j) { return c[static_cast<size_t>(j) * n + i]; };
  auto r = [&](int32_t i, int32_t j) -> cdouble& { return root[static_cast<size_t>(j) * n + i]; };
  std::fill(root.data(), root.data() + nn, cdouble(0.0));
  for (int32_t j = 0; j < n; ++j) {
    r(j, j) = std::sqrt(t(j, j));
    for (int32_t i = j - 1; i >= 0; --i) {
      cdouble s = t(i, j);
      for (int32_t k = i + 1; k < j; ++k) s -= r(i, k) * r(k, j);
      const cdouble d = r(i, i) + r(j, j);
      r(i, j) = d == cdouble(0.0) ? cdouble(0.0) : s / d;
    }
  }
  // X = Z R Z^H, formed column-major and read back row-major.
  const cdouble one = 1.0, zero = 0.0;
  JQ_CALL(cblas_zgemm, kColMajor, kNoTrans, kNoTrans, n, n, n, &one, z.data(), n, root.data(), n, &zero, tmp.data(), n);
  JQ_CALL(cblas_zgemm, kColMajor, kNoTrans, kConjTrans, n, n, n, &one, tmp.data(), n, z.data(), n, &zero, root.data(), n);
  from_column_major(root.data(), n, n, n, x);
  return kOk;
}

int32_t matrix_sqrt_real(const double* a, int32_t n, double* x) {
  if (int32_t rc = ready()) return rc;
  const int64_t nn = int64_t{n} * n;
  Buffer<double> s, z;
  Buffer<cdouble> root;
  if (s.allocate(nn) || z.allocate(nn) || root.allocate(nn)) return kNoMemory;
  // The real eigenvalues are the 1 x 1 blocks of the real Schur form, exactly.
  if (int32_t rc = schur(a, n, s.data(), z.data())) return rc;
  for (int32_t k = 0; k < n; ++k) {
    const bool alone = (k == 0 || s[static_cast<size_t>(k) * n + k - 1] == 0) &&
                       (k == n - 1 || s[static_cast<size_t>(k + 1) * n + k] == 0);
    if (alone && s[static_cast<size_t>(k) * n + k] < 0) return kNonPositiveLog;
  }
  if (int32_t rc = matrix_sqrt(a, n, root.data())) return rc;
  // Real in exact arithmetic: what is left of the imaginary part is rounding.
  for (int64_t i = 0; i < nn; ++i) x[i] = root[i].real();
  return kOk;
}

template <class T> int32_t from_eigen(const T* values, const T* v, int32_t n, T* a) {
  if (int32_t rc = ready()) return rc;
  const int64_t nn = int64_t{n} * n;
  Buffer<T> inv, w;
  if (inv.allocate(nn) || w.allocate(nn)) return kNoMemory;
  if (int32_t rc = inverse_lu(v, n, inv.data())) return rc;
  // W = V diag(values): column j of V scaled by values[j].
  std::memcpy(static_cast<void*>(w.data()), v, sizeof(T) * nn);
  for (int32_t j = 0; j < n; ++j) Blas<T>::scal(n, values[j], w.data() + j, n);
  Blas<T>::gemm(n, n, n, w.data(), n, inv.data(), n, a, n);
  return kOk;
}

template <class T> int32_t matrix_log(const T* a, int32_t n, cdouble* l) {
  if (int32_t rc = ready()) return rc;
  Buffer<cdouble> values, v;
  if (values.allocate(n) || v.allocate(int64_t{n} * n)) return kNoMemory;
  if (int32_t rc = eigen(a, n, values.data(), v.data())) return rc;
  for (int32_t i = 0; i < n; ++i) {
    if (values[i] == cdouble(0.0)) return kNonPositiveLog;
    values[i] = std::log(values[i]);
  }
  return from_eigen(values.data(), v.data(), n, l);
}

#define JQ_INSTANTIATE(T)                                               \
  template int32_t matrix_exp(const T*, int32_t, T*);                   \
  template int32_t matrix_power(const T*, int32_t, int32_t, T*);        \
  template int32_t matrix_sqrt(const T*, int32_t, cdouble*);           \
  template int32_t from_eigen(const T*, const T*, int32_t, T*);         \
  template int32_t matrix_log(const T*, int32_t, cdouble*);
JQ_INSTANTIATE(double)
JQ_INSTANTIATE(cdouble)

}  // namespace jq::linalg
