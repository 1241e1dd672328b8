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

// The 2-D spectra of real inputs keep only bins 0 .. C/2 of each row (the
// rest are their conjugates): rows take the real transform, then the kept
// columns the complex one. Rows past an input's end are zero and skipped.
class RealSpectra {
 public:
  RealSpectra(int32_t R, int32_t C) : R_(R), C_(C), H_(C / 2 + 1), rows_(static_cast<uint32_t>(C)),
                                      cols_(static_cast<uint32_t>(R)) {}

  int32_t prepare() {
    if (!rows_.get() || !cols_.get()) return kNoMemory;
    const size_t cells = static_cast<size_t>(R_) * H_;
    if (cells > SIZE_MAX / 2 || spectra_.allocate(2 * cells)) return kNoMemory;
    return lines_.allocate(4 * static_cast<size_t>(kGroup) * std::max(R_, C_));
  }
  cdouble* spectrum(int i) const { return spectra_.data() + static_cast<size_t>(i) * R_ * H_; }

  int32_t forward(const double* in, Shape2 sh, cdouble* out) {
    double *line = lines_.data(), *hc = line + C_;
    for (int32_t r = 0; r < R_; ++r) {
      cdouble* o = out + static_cast<size_t>(r) * H_;
      if (r >= sh.rows) {
        std::fill(o, o + H_, cdouble());
        continue;
      }
      std::copy(in + static_cast<size_t>(r) * sh.cols, in + static_cast<size_t>(r + 1) * sh.cols, line);
      std::fill(line + sh.cols, line + C_, 0.0);
      if (int32_t rc = fft::ExecuteRealFFT(rows_.get(), line, hc, 1, 1, C_)) return rc;
      o[0] = cdouble(hc[0], 0.0);
      for (int32_t k = 1; k < C_ - k; ++k) o[k] = cdouble(hc[k], hc[C_ - k]);
      if (C_ % 2 == 0) o[C_ / 2] = cdouble(hc[C_ / 2], 0.0);
    }
    return columns(out, false);
  }

  // The inverse of forward, the first `rows` x `cols` values into out.
  int32_t inverse(cdouble* spectrum, int32_t rows, int32_t cols, double* out) {
    if (int32_t rc = columns(spectrum, true)) return rc;
    double *hc = lines_.data(), *line = hc + C_;
    for (int32_t r = 0; r < rows; ++r) {
      const cdouble* s = spectrum + static_cast<size_t>(r) * H_;
      hc[0] = s[0].real();
      for (int32_t k = 1; k < C_ - k; ++k) {
        hc[k] = s[k].real();
        hc[C_ - k] = s[k].imag();
      }
      if (C_ % 2 == 0) hc[C_ / 2] = s[C_ / 2].real();
      if (int32_t rc = fft::ExecuteInverseRealFFT(rows_.get(), hc, line, 1, 1, C_)) return rc;
      std::copy(line, line + cols, out + static_cast<size_t>(r) * cols);
    }
    return kOk;
  }

 private:
  // Columns are gathered a cache line's worth at a time (kGroup complex
  // values per row), transformed in contiguous lines and scattered back.
  int32_t columns(cdouble* a, bool inverse) {
    auto f = inverse ? fft::ExecuteInverseComplexFFT : fft::ExecuteComplexFFT;
    cdouble* in = reinterpret_cast<cdouble*>(lines_.data());
    cdouble* done = in + static_cast<size_t>(kGroup) * R_;
    for (int32_t c0 = 0; c0 < H_; c0 += kGroup) {
      const int32_t g = std::min(kGroup, H_ - c0);
      for (int32_t r = 0; r < R_; ++r)
        for (int32_t j = 0; j < g; ++j) in[static_cast<size_t>(j) * R_ + r] = a[static_cast<size_t>(r) * H_ + c0 + j];
      for (int32_t j = 0; j < g; ++j) {
        const double* i = reinterpret_cast<const double*>(in + static_cast<size_t>(j) * R_);
        double* o = reinterpret_cast<double*>(done + static_cast<size_t>(j) * R_);
        if (int32_t rc = f(cols_.get(), i, i + 1, o, o + 1, 2, 2, R_)) return rc;
      }
      for (int32_t r = 0; r < R_; ++r)
        for (int32_t j = 0; j < g; ++j) a[static_cast<size_t>(r) * H_ + c0 + j] = done[static_cast<size_t>(j) * R_ + r];
    }
    return kOk;
  }

  static constexpr int32_t kGroup = 4;
  int32_t R_, C_, H_;
  fft::SharedTable rows_, cols_;
  Scratch<cdouble> spectra_;
  Scratch<double> lines_;
};

int32_t frequency_full(const double* x, Shape2 xs, const double* k, Shape2 ks, double* out, Shape2 full) {
  const int64_t R = transform_length(full.rows), C = transform_length(full.cols);
  if (R == 0 || C == 0) return kNoMemory;
  RealSpectra w(static_cast<int32_t>(R), static_cast<int32_t>(C));
  if (int32_t rc = w.prepare()) return rc;
  cdouble *a = w.spectrum(0), *b = w.spectrum(1);
  if (int32_t rc = w.forward(x, xs, a)) return rc;
  if (int32_t rc = w.forward(k, ks, b)) return rc;
  multiply_complex(a, b, a, static_cast<size_t>(R) * (C / 2 + 1));
  return w.inverse(a, full.rows, full.cols, out);
}

int32_t frequency_full(const cdouble* x, Shape2 xs, const cdouble* k, Shape2 ks, cdouble* out, Shape2 full) {
  const int64_t R = transform_length(full.rows), C = transform_length(full.cols);
  if (R == 0 || C == 0) return kNoMemory;
  const size_t cells = static_cast<size_t>(R) * static_cast<size_t>(C);
  Scratch<cdouble> s;
  if (cells > SIZE_MAX / 2 || s.allocate(2 * cells)) return kNoMemory;
  cdouble *a = s.data(), *b = a + cells;
  fft::SharedTable rows(static_cast<uint32_t>(C)), cols(static_cast<uint32_t>(R));
  if (!rows.get() || !cols.get()) return kNoMemory;
  const int32_t r32 = static_cast<int32_t>(R), c32 = static_cast<int32_t>(C);
  if (int32_t rc = fft::forward_2d(rows.get(), cols.get(), nullptr, x, xs.rows, xs.cols, 0, 0, r32, c32, false, a))
    return rc;
  if (int32_t rc = fft::forward_2d(rows.get(), cols.get(), nullptr, k, ks.rows, ks.cols, 0, 0, r32, c32, false, b))
    return rc;
  multiply_complex(a, b, a, cells);
  if (int32_t rc = fft::inverse_2d(rows.get(), cols.get(), a, r32, c32, false, b, nullptr)) return rc;
  for (int32_t i = 0; i < full.rows; ++i)
    std::copy(b + static_cast<size_t>(i) * C, b + static_cast<size_t>(i) * C + full.cols,
              out + static_cast<size_t>(i) * full.cols);
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
