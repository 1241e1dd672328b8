#include "linalg/packed.hpp"

#include <cmath>
#include <cstring>

#include "linalg/dense.hpp"

namespace jq::linalg {
namespace {

template <class T> void conjugate(T* x, int64_t count) {
  if constexpr (!std::is_same_v<T, double>)
    for (int64_t i = 0; i < count; ++i) x[i] = std::conj(x[i]);
}

template <class T> void pack(const T* a, int32_t n, T* p) {
  for (int32_t i = 0; i < n; ++i)
    for (int32_t j = 0; j <= i; ++j) *p++ = a[static_cast<size_t>(i) * n + j];
}

template <class T> int32_t packed_copy(const T* p, int32_t n, Buffer<T>& out) {
  const int64_t len = int64_t{n} * (n + 1) / 2;
  if (out.allocate(len)) return kNoMemory;
  std::memcpy(static_cast<void*>(out.data()), p, sizeof(T) * static_cast<size_t>(len));
  return kOk;
}

}  // namespace

int32_t packed_order(int32_t length) {
  if (length < 1) return -1;
  const int64_t n = static_cast<int64_t>((std::sqrt(8.0 * length + 1) - 1) / 2 + 0.5);
  return n * (n + 1) / 2 == length ? static_cast<int32_t>(n) : -1;
}

void pack_lower(const double* a, int32_t n, double* p) { pack(a, n, p); }
void pack_lower(const cdouble* a, int32_t n, cdouble* p) { pack(a, n, p); }

template <class T> void unpack_hermitian(const T* p, int32_t n, T* a) {
  for (int32_t i = 0; i < n; ++i)
    for (int32_t j = 0; j <= i; ++j, ++p) {
      a[static_cast<size_t>(i) * n + j] = *p;
      a[static_cast<size_t>(j) * n + i] = conj_of(*p);
    }
}

// As for the full factor: the packing is conj(A)'s upper triangle, whose
// factor U (conj(A) = U^H U) packed is L = U^T row by row.
template <class T> int32_t cholesky_packed(const T* a, int32_t n, T* l) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> c;
  if (c.allocate(int64_t{n} * (n + 1) / 2)) return kNoMemory;
  pack(a, n, c.data());
  I info = 0;
  Blas<T>::pptrf(n, c.data(), &info);
  if (info > 0) return kNotPosDef;
  std::memcpy(static_cast<void*>(l), c.data(), sizeof(T) * static_cast<size_t>(n) * (n + 1) / 2);
  return kOk;
}

// The factor is conj(A)'s: conj(A) conj(X) = conj(B).
template <class T> int32_t cholesky_packed_solve(const T* l, int32_t n, const T* b, int32_t k, T* x) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> f, bc;
  if (packed_copy(l, n, f) || to_column_major(b, n, k, bc, n)) return kNoMemory;
  conjugate(bc.data(), int64_t{n} * k);
  I info = 0;
  Blas<T>::pptrs(n, k, f.data(), bc.data(), &info);
  conjugate(bc.data(), int64_t{n} * k);
  from_column_major(bc.data(), n, n, k, x);
  return kOk;
}

template <class T> int32_t cholesky_packed_inverse(const T* l, int32_t n, T* inv) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> f;
  if (packed_copy(l, n, f)) return kNoMemory;
  I info = 0;
  Blas<T>::pptri(n, f.data(), &info);
  if (info > 0) return kSingular;
  // The packing of inv(conj(A)) reads, row by row, as inv(A)'s lower triangle.
  unpack_hermitian(f.data(), n, inv);
  return kOk;
}

// The packing holds L^T as an upper triangle: L X = B is (L^T)^T X = B.
template <class T> int32_t triangular_packed_solve(const T* l, int32_t n, const T* b, int32_t k, T* x) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> bc;
  if (to_column_major(b, n, k, bc, n)) return kNoMemory;
  I info = 0;
  Blas<T>::tptrs(n, k, l, bc.data(), &info);
  if (info > 0) return kSingular;
  from_column_major(bc.data(), n, n, k, x);
  return kOk;
}

template <class T> int32_t triangular_packed_inverse(const T* l, int32_t n, T* inv) {
  if (int32_t rc = ready()) return rc;
  Buffer<T> f;
  if (packed_copy(l, n, f)) return kNoMemory;
  I info = 0;
  Blas<T>::tptri(n, f.data(), &info);
  if (info > 0) return kSingular;
  std::memcpy(static_cast<void*>(inv), f.data(), sizeof(T) * static_cast<size_t>(n) * (n + 1) / 2);
  return kOk;
}

#define JQ_INSTANTIATE(T)                                                               \
  template void unpack_hermitian(const T*, int32_t, T*);                                \
  template int32_t cholesky_packed(const T*, int32_t, T*);                              \
  template int32_t cholesky_packed_solve(const T*, int32_t, const T*, int32_t, T*);     \
  template int32_t cholesky_packed_inverse(const T*, int32_t, T*);                      \
  template int32_t triangular_packed_solve(const T*, int32_t, const T*, int32_t, T*);   \
  template int32_t triangular_packed_inverse(const T*, int32_t, T*);
JQ_INSTANTIATE(double)
JQ_INSTANTIATE(cdouble)

}  // namespace jq::linalg
