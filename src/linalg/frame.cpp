#include "linalg/frame.hpp"

#include <atomic>
#include <cmath>
#include <cstring>

namespace jq::linalg {
namespace {
std::atomic<int64_t> g_live{0};

template <class T> int32_t transpose(const T* src, int32_t rows, int32_t cols, T* dst) {
  if (rows < 1 || cols < 1) return kEmptyInput;
  if (int32_t rc = ready()) return rc;
  if (!dst) {
    Buffer<T> tmp;
    if (tmp.allocate(int64_t{rows} * cols)) return kNoMemory;
    std::memcpy(tmp.data(), src, sizeof(T) * rows * static_cast<size_t>(cols));
    return transpose(tmp.data(), rows, cols, const_cast<T*>(src));
  }
  // Column j of the source becomes row j of the destination.
  for (int32_t j = 0; j < cols; ++j) Blas<T>::copy(rows, src + j, cols, dst + static_cast<size_t>(j) * rows, 1);
  return kOk;
}

bool bad(double v) { return !(v < 1.7976931348623157e308) || !(v > -1.7976931348623e308); }
}  // namespace

int64_t live_buffers() { return g_live.load(); }

void* buffer_alloc(size_t bytes) {
  if (scratch_injected_failure()) return nullptr;
  void* p = JQ_CALL(MKL_malloc, bytes ? bytes : 1, 32);
  if (p) g_live.fetch_add(1);
  return p;
}

void buffer_free(void* p) {
  if (!p) return;
  JQ_CALL(MKL_free, p);
  g_live.fetch_sub(1);
}

int32_t transpose_matrix(const double* src, int32_t rows, int32_t cols, double* dst) {
  return transpose(src, rows, cols, dst);
}
int32_t transpose_matrix(const cdouble* src, int32_t rows, int32_t cols, cdouble* dst) {
  return transpose(src, rows, cols, dst);
}

int32_t copy_matrix(const double* src, int64_t count, double* dst) {
  if (count < 1) return kEmptyInput;
  std::memcpy(dst, src, sizeof(double) * static_cast<size_t>(count));
  return kOk;
}
int32_t copy_matrix(const cdouble* src, int64_t count, cdouble* dst) {
  if (count < 1) return kEmptyInput;
  std::memcpy(dst, src, sizeof(cdouble) * static_cast<size_t>(count));
  return kOk;
}

bool has_non_finite(const double* x, int64_t count) {
  for (int64_t i = 0; i < count; ++i)
    if (bad(x[i])) return true;
  return false;
}
bool has_non_finite(const cdouble* x, int64_t count) {
  return count > 0 && has_non_finite(reinterpret_cast<const double*>(x), 2 * count);
}

}  // namespace jq::linalg
