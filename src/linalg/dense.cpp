#include "linalg/dense.hpp"

#include <cstring>
#include <limits>

namespace jq::linalg {
namespace {

template <class T> T nan_of() { return T(std::numeric_limits<double>::quiet_NaN()); }
template <> cdouble nan_of<cdouble>() {
  const double q = std::numeric_limits<double>::quiet_NaN();
  return {q, q};
}

// Large products run in bands of rows of A, as the blocking of the original
// module favoured.
constexpr int32_t kBand = 1530;

template <class T> void gemm_banded(const T* a, int32_t m, int32_t k, const T* b, int32_t n, T* r) {
  if (m >= kBand + 1 && k >= 257 && n >= 3) {
    int32_t row = 0;
    for (; row + kBand <= m; row += kBand)
      Blas<T>::gemm(kBand, n, k, a + static_cast<size_t>(row) * k, k, b, n, r + static_cast<size_t>(row) * n, n);
    if (row < m)
      Blas<T>::gemm(m - row, n, k, a + static_cast<size_t>(row) * k, k, b, n, r + static_cast<size_t>(row) * n, n);
    return;
  }
  Blas<T>::gemm(m, n, k, a, k, b, n, r, n);
}

// Copies into a fresh buffer; the aligned variants of the products use it.
template <class T> int32_t aligned_copy(const T* src, int64_t count, Buffer<T>& out) {
  if (out.allocate(count)) return kNoMemory;
  std::memcpy(out.data(), src, sizeof(T) * static_cast<size_t>(count));
  return kOk;
}

template <class T> int32_t lu_pivot_sign(const I* ipiv, int32_t n) {
  int32_t swaps = 0;
  for (int32_t i = 0; i < n; ++i) swaps += ipiv[i] != i + 1;
  return swaps % 2 ? -1 : 1;
}

}  // namespace

template <class T> int32_t to_column_major(const T* a, int32_t rows, int32_t cols, Buffer<T>& out, int32_t ld) {
  if (out.allocate(int64_t{ld} * cols)) return kNoMemory;
  if (ld == rows) return transpose_matrix(a, rows, cols, out.data());
  for (int32_t j = 0; j < cols; ++j) Blas<T>::copy(rows, a + j, cols, out.data() + static_cast<size_t>(j) * ld, 1);
  return kOk;
}

template <class T> void from_column_major(const T* buf, int32_t ld, int32_t rows, int32_t cols, T* a) {
  for (int32_t i = 0; i < rows; ++i) Blas<T>::copy(cols, buf + i, ld, a + static_cast<size_t>(i) * cols, 1);
}

template <class T> int32_t determinant(const T* a, int32_t n, int32_t type, T* det) {
  // Whatever the type, a 2 x 2 determinant is formed directly.
  if (n == 2) {
    *det = a[0] * a[3] - a[1] * a[2];
    return kOk;
  }
  if (type == kLowerTriangular || type == kUpperTriangular) {
    T p = 1.0;
    for (int32_t i = 0; i < n; ++i) p *= a[static_cast<size_t>(i) * n + i];
    *det = p;
    return kOk;
  }
  if (int32_t rc = ready()) return rc;
  Buffer<T> c;
  if (aligned_copy(a, int64_t{n} * n, c)) return kNoMemory;
  I info = 0;
  if (type == kPositiveDefinite) {
    Blas<T>::potrf('L', n, c.data(), n, &info);
    if (info > 0) {
      *det = 0.0;
      return kNotPosDef;
    }
    T p = 1.0;
    for (int32_t i = 0; i < n; ++i) p *= c[static_cast<size_t>(i) * n + i];
    *det = p * p;
    return kOk;
  }
  Scratch<I> ipiv;
  if (ipiv.allocate(n)) return kNoMemory;
  Blas<T>::getrf(n, n, c.data(), n, ipiv.data(), &info);
  if (info > 0) {
    *det = 0.0;
    return kOk;
  }
  T p = 1.0;
  for (int32_t i = 0; i < n; ++i) p *= c[static_cast<size_t>(i) * n + i];
  *det = p * static_cast<double>(lu_pivot_sign<T>(ipiv.data(), n));
  return kOk;
}

template <class T>
int32_t matrix_product(const T* a, int32_t m, int32_t k, const T* b, int32_t n, T* r, bool aligned) {
  const size_t count = static_cast<size_t>(m) * n;
  if (k == 0) {
    for (size_t i = 0; i < count; ++i) r[i] = nan_of<T>();
    return kOk;
  }
  if (int32_t rc = ready()) return rc;
  std::memset(static_cast<void*>(r), 0, sizeof(T) * count);
  if (!aligned) {
    gemm_banded(a, m, k, b, n, r);
    return kOk;
  }
  Buffer<T> ab, bb, rb;
  if (aligned_copy(a, int64_t{m} * k, ab) || aligned_copy(b, int64_t{k} * n, bb) || aligned_copy(r, count, rb))
    return kNoMemory;
  gemm_banded(ab.data(), m, k, bb.data(), n, rb.data());
  std::memcpy(static_cast<void*>(r), rb.data(), sizeof(T) * count);
  return kOk;
}

template <class T> int32_t matrix_vector(const T* a, int32_t m, int32_t n, const T* x, T* y, bool aligned) {
  if (int32_t rc = ready()) return rc;
  if (!aligned) {
    Blas<T>::gemv(m, n, a, x, y);
    return kOk;
  }
  Buffer<T> ab, xb, yb;
  if (aligned_copy(a, int64_t{m} * n, ab) || aligned_copy(x, n, xb) || yb.allocate(m)) return kNoMemory;
  Blas<T>::gemv(m, n, ab.data(), xb.data(), yb.data());
  std::memcpy(static_cast<void*>(y), yb.data(), sizeof(T) * static_cast<size_t>(m));
  return kOk;
}

// LAPACK inverts the transpose of the row-major data, and the transpose of
// that inverse, read row-major, is the inverse itself.
template <class T> int32_t inverse_lu(const T* a, int32_t n, T* inv) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> c;
  Scratch<I> ipiv;
  if (aligned_copy(a, int64_t{n} * n, c) || ipiv.allocate(n)) return kNoMemory;
  I info = 0;
  Blas<T>::getrf(n, n, c.data(), n, ipiv.data(), &info);
  if (info > 0) return kSingular;
  T query = 0.0;
  Blas<T>::getri(n, c.data(), n, ipiv.data(), &query, -1, &info);
  Buffer<T> work;
  const I lwork = std::max<I>(static_cast<I>(std::real(query)), n);
  if (work.allocate(lwork)) return kNoMemory;
  Blas<T>::getri(n, c.data(), n, ipiv.data(), work.data(), lwork, &info);
  if (info > 0) return kSingular;
  std::memcpy(static_cast<void*>(inv), c.data(), sizeof(T) * static_cast<size_t>(n) * n);
  return kOk;
}

template <class T> int32_t solve_lu(const T* a, int32_t n, const T* b, int32_t k, T* x) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> ac, bc;
  Scratch<I> ipiv;
  if (to_column_major(a, n, n, ac, n) || to_column_major(b, n, k, bc, n) || ipiv.allocate(n)) return kNoMemory;
  I info = 0;
  Blas<T>::gesv(n, k, ac.data(), n, ipiv.data(), bc.data(), n, &info);
  if (info > 0) return kSingular;
  from_column_major(bc.data(), n, n, k, x);
  return kOk;
}

#define JQ_INSTANTIATE(T)                                                                               \
  template int32_t to_column_major(const T*, int32_t, int32_t, Buffer<T>&, int32_t);                    \
  template void from_column_major(const T*, int32_t, int32_t, int32_t, T*);                             \
  template int32_t determinant(const T*, int32_t, int32_t, T*);                                         \
  template int32_t matrix_product(const T*, int32_t, int32_t, const T*, int32_t, T*, bool);             \
  template int32_t matrix_vector(const T*, int32_t, int32_t, const T*, T*, bool);                       \
  template int32_t inverse_lu(const T*, int32_t, T*);                                                   \
  template int32_t solve_lu(const T*, int32_t, const T*, int32_t, T*);
JQ_INSTANTIATE(double)
JQ_INSTANTIATE(cdouble)

}  // namespace jq::linalg
