// 2-D convolution and correlation. Both compute the full result (into the
// output itself for the full size, else into scratch) and copy out the part
// the size mode asks for. A correlation is a convolution with the kernel
// turned by half a turn and conjugated.
#include <algorithm>

#include "frame/errors.hpp"
#include "frame/scratch.hpp"
#include "sigops/convolution.hpp"
#include "sigops/kernels.hpp"
#include "transforms/entry.hpp"
#include "transforms/shared_table.hpp"

namespace jq::sig {
namespace {

double conj_of(double v) { return v; }
cdouble conj_of(cdouble v) { return std::conj(v); }

template <class T> void direct_full(const T* x, Shape2 xs, const T* k, Shape2 ks, T* out, int32_t out_cols) {
  std::fill(out, out + static_cast<size_t>(xs.rows + ks.rows - 1) * out_cols, T());
  for (int32_t i = 0; i < xs.rows; ++i)
    for (int32_t j = 0; j < xs.cols; ++j) {
      const T v = x[static_cast<size_t>(i) * xs.cols + j];
      for (int32_t r = 0; r < ks.rows; ++r)
        axpy(v, k + static_cast<size_t>(r) * ks.cols, ks.cols, out + static_cast<size_t>(i + r) * out_cols + j);
    }
}

template <class T>
int32_t frequency_full(const T* x, Shape2 xs, const T* k, Shape2 ks, T* out, Shape2 full) {
  const int64_t R = transform_length(full.rows), C = transform_length(full.cols);
  if (R == 0 || C == 0) return kNoMemory;
  const size_t cells = static_cast<size_t>(R) * static_cast<size_t>(C);
  Scratch<cdouble> s;
  if (cells > SIZE_MAX / 2 || s.allocate(2 * cells)) return kNoMemory;
  cdouble *a = s.data(), *b = a + cells;
  fft::SharedTable rows(static_cast<uint32_t>(C)), cols(static_cast<uint32_t>(R));
  if (!rows.get() || !cols.get()) return kNoMemory;
  const int32_t r32 = static_cast<int32_t>(R), c32 = static_cast<int32_t>(C);
  auto forward = [&](const T* in, Shape2 sh, cdouble* o) {
    if constexpr (std::is_same_v<T, double>)
      return fft::forward_2d(rows.get(), cols.get(), in, nullptr, sh.rows, sh.cols, 0, 0, r32, c32, false, o);
    else
      return fft::forward_2d(rows.get(), cols.get(), nullptr, in, sh.rows, sh.cols, 0, 0, r32, c32, false, o);
  };
  if (int32_t rc = forward(x, xs, a)) return rc;
  if (int32_t rc = forward(k, ks, b)) return rc;
  multiply_complex(a, b, a, cells);
  if (int32_t rc = fft::inverse_2d(rows.get(), cols.get(), a, r32, c32, false, b, nullptr)) return rc;
  for (int32_t i = 0; i < full.rows; ++i)
    for (int32_t j = 0; j < full.cols; ++j) {
      const cdouble v = b[static_cast<size_t>(i) * C + j];
      if constexpr (std::is_same_v<T, double>)
        out[static_cast<size_t>(i) * full.cols + j] = v.real();
      else
        out[static_cast<size_t>(i) * full.cols + j] = v;
    }
  return kOk;
}

template <class T> int32_t full_result(const T* x, Shape2 xs, const T* k, Shape2 ks, T* out, Shape2 full, int32_t method) {
  // Single rows take the 1-D routines, which need no 2-D spectra.
  if (xs.rows == 1 && ks.rows == 1) return convolve(x, xs.cols, k, ks.cols, out, method);
  if (method == kDirect) {
    direct_full(x, xs, k, ks, out, full.cols);
    return kOk;
  }
  return frequency_full(x, xs, k, ks, out, full);
}

}  // namespace

Shape2 output_shape(Shape2 x, Shape2 y, int32_t mode) {
  const int64_t rows = int64_t{x.rows} + y.rows - 1, cols = int64_t{x.cols} + y.cols - 1;
  switch (mode) {
    case kFull:
      if (rows > INT32_MAX || cols > INT32_MAX) return {0, 0};
      return {static_cast<int32_t>(rows), static_cast<int32_t>(cols)};
    case kSame:
      return x;
    case kValid:
      if (x.rows < y.rows || x.cols < y.cols) return {0, 0};
      return {x.rows - y.rows + 1, x.cols - y.cols + 1};
    default:
      return {0, 0};
  }
}

template <class T>
int32_t convolve_2d(const T* x, Shape2 xs, const T* y, Shape2 ys, T* out, int32_t mode, int32_t method,
                    bool correlation) {
  const Shape2 full = output_shape(xs, ys, kFull), part = output_shape(xs, ys, mode);
  if (full.rows == 0 || part.rows == 0) return kNoMemory;
  const size_t kernel_cells = static_cast<size_t>(ys.rows) * ys.cols;
  Scratch<T> turned;
  const T* k = y;
  if (correlation) {
    if (turned.allocate(kernel_cells)) return kNoMemory;
    for (size_t i = 0; i < kernel_cells; ++i) turned[i] = conj_of(y[kernel_cells - 1 - i]);
    k = turned.data();
  }
  Scratch<T> whole;
  T* target = out;
  if (mode != kFull) {
    if (whole.allocate(static_cast<size_t>(full.rows) * full.cols)) return kNoMemory;
    target = whole.data();
  }
  if (method != kDirect && method != kFrequency) return kBadSelector;
  if (int32_t rc = full_result(x, xs, k, ys, target, full, method)) return rc;
  if (mode == kFull) return kOk;
  // "same" centres x's size on the full result the way a kernel of even size
  // leans: towards the start for a convolution, the end for a correlation.
  int32_t r0 = ys.rows - 1, c0 = ys.cols - 1;
  if (mode == kSame) {
    r0 = correlation ? ys.rows / 2 : (ys.rows - 1) / 2;
    c0 = correlation ? ys.cols / 2 : (ys.cols - 1) / 2;
  }
  for (int32_t i = 0; i < part.rows; ++i) {
    const T* src = target + static_cast<size_t>(i + r0) * full.cols + c0;
    std::copy(src, src + part.cols, out + static_cast<size_t>(i) * part.cols);
  }
  return kOk;
}

template int32_t convolve_2d<double>(const double*, Shape2, const double*, Shape2, double*, int32_t, int32_t, bool);
template int32_t convolve_2d<cdouble>(const cdouble*, Shape2, const cdouble*, Shape2, cdouble*, int32_t, int32_t,
                                      bool);

}  // namespace jq::sig
