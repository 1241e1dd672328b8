// The matrix frame shared by the linear-algebra exports and by every other
// subsystem that needs dense linear algebra (fitting, geometry).
//
// Host matrices are row-major; LAPACK wants column-major. A row-major m x n
// matrix is, byte for byte, the column-major n x m matrix of its transpose,
// so transpose_matrix is the one conversion in both directions. Square
// problems whose answer does not care (a determinant) or transposes back
// (an inverse) hand the row-major data to LAPACK as it stands.
//
// Every routine here takes plain pointers and counts, returns 0 or a negative
// error code, and never sees a host handle. Work arrays handed to BLAS/LAPACK
// are Buffer<T>s: 32-byte-aligned blocks from the module's allocator, always
// released on scope exit. Small integer work arrays come from Scratch<T>.
#pragma once
#include <complex>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "frame/errors.hpp"
#include "frame/scratch.hpp"
#include "linalg/lapack.hpp"

namespace jq::linalg {

constexpr double kEps = 2.220446049250313e-16;

// kOk when the module is loaded and bound, else kNoMemory: without the module
// nothing can be computed, and the host is told as for a failed allocation.
inline int32_t ready() { return routines() ? kOk : kNoMemory; }

// Live module blocks, for tests: every Buffer is freed on every path.
int64_t live_buffers();

// A 32-byte-aligned work array from the module's allocator.
template <class T> class Buffer {
 public:
  Buffer() = default;
  ~Buffer() { release(); }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;
  // 0 or kNoMemory; the module must be ready.
  int32_t allocate(int64_t n);
  T* data() const { return p_; }
  T& operator[](size_t i) const { return p_[i]; }

 private:
  void release();
  T* p_ = nullptr;
};

void* buffer_alloc(size_t bytes);
void buffer_free(void* p);

template <class T> int32_t Buffer<T>::allocate(int64_t n) {
  release();
  if (n < 0 || static_cast<uint64_t>(n) > SIZE_MAX / sizeof(T)) return kNoMemory;
  p_ = static_cast<T*>(buffer_alloc(static_cast<size_t>(n) * sizeof(T)));
  return p_ ? kOk : kNoMemory;
}
template <class T> void Buffer<T>::release() {
  buffer_free(p_);
  p_ = nullptr;
}

// Writes the cols x rows transpose of a rows x cols matrix; with a null
// destination transposes in place through a temporary. kEmptyInput when a
// dimension is below 1.
int32_t transpose_matrix(const double* src, int32_t rows, int32_t cols, double* dst);
int32_t transpose_matrix(const cdouble* src, int32_t rows, int32_t cols, cdouble* dst);
// Plain copy of count elements; kEmptyInput when count is below 1.
int32_t copy_matrix(const double* src, int64_t count, double* dst);
int32_t copy_matrix(const cdouble* src, int64_t count, cdouble* dst);
// True when an element is NaN, infinite, the largest double, or at or below
// -1.7976931348623e308 (a bound a little inside the most negative double:
// the asymmetry is deliberate). A count below 1 is false. Complex data are
// checked part by part.
bool has_non_finite(const double* x, int64_t count);
bool has_non_finite(const cdouble* x, int64_t count);

// The min(rows, cols) singular values of a row-major matrix, descending.
int32_t singular_values(const double* a, int32_t rows, int32_t cols, double* values);
int32_t singular_values(const cdouble* a, int32_t rows, int32_t cols, double* values);

// The work size a LAPACK workspace query returned (in its first element),
// at least at_least.
template <class T> I workspace(T query, int64_t at_least = 1) {
  const double q = std::real(query);
  return static_cast<I>(q > static_cast<double>(at_least) ? q : static_cast<double>(at_least));
}

// OpenBLAS's complex matrix-vector kernels load a strided vector four
// elements at a time and may read up to three strides past its end (LQ
// factorizations apply reflectors stored along rows this way). Blocks handed
// to them carry this many leading dimensions of slack, so that the read stays
// inside the block.
constexpr int64_t kStrideSlack = 4;

// Complex conjugate, the identity for real data.
template <class T> T conj_of(T x) {
  if constexpr (std::is_same_v<T, double>)
    return x;
  else
    return std::conj(x);
}

// Default tolerance of rank and pseudo-inverse decisions.
inline double default_tolerance(int32_t rows, int32_t cols, double smax) {
  return static_cast<double>(rows > cols ? rows : cols) * smax * kEps;
}

}  // namespace jq::linalg
