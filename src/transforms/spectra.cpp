#include "transforms/spectra.hpp"

#include <cstddef>
#include <optional>

#include "frame/errors.hpp"
#include "frame/scratch.hpp"
#include "transforms/fft.hpp"
#include "transforms/shared_table.hpp"

namespace jq::fft {
namespace {

// What one call works with: its own reference to the shared table of length
// n, and `arrays` scratch arrays of n values each, one after another.
class Work {
 public:
  int32_t prepare(int32_t n, size_t arrays) {
    n_ = n;
    own_.emplace(static_cast<uint32_t>(n));
    if (!table()) return kNoMemory;
    return arrays ? scratch_.allocate(arrays * static_cast<size_t>(n)) : kOk;
  }
  const FFTTable* table() const { return own_ ? own_->get() : nullptr; }
  double* array(size_t i) const { return scratch_.data() + i * static_cast<size_t>(n_); }

  // The complex FFT of interleaved x into the split arrays re and im.
  int32_t complex_fft(const cdouble* x, size_t re, size_t im) const {
    const double* parts = reinterpret_cast<const double*>(x);
    return ExecuteComplexFFT(table(), parts, parts + 1, array(re), array(im), 2, 1, n_);
  }

 private:
  std::optional<SharedTable> own_;  // a table for this call only
  Scratch<double> scratch_;
  int32_t n_ = 0;
};

inline double reciprocal_square(int32_t n) { return 1.0 / (static_cast<double>(n) * n); }

}  // namespace

int32_t power_spectrum(double* x, int32_t n) {
  if (n == 1) {
    x[0] *= x[0];
    return kOk;
  }
  Work w;
  if (int32_t rc = w.prepare(n, 1)) return rc;
  const double* X = w.array(0);
  if (int32_t rc = ExecuteRealFFT(w.table(), x, w.array(0), 1, 1, n)) return rc;
  const double s = reciprocal_square(n);
  x[0] = X[0] * X[0] * s;
  for (int32_t k = 1; k <= (n - 1) / 2; ++k) x[k] = x[n - k] = (X[k] * X[k] + X[n - k] * X[n - k]) * s;
  if (n % 2 == 0) x[n / 2] = X[n / 2] * X[n / 2] * s;
  return kOk;
}

int32_t power_spectrum(const cdouble* x, int32_t n, double* out) {
  Work w;
  if (int32_t rc = w.prepare(n, 2)) return rc;
  if (int32_t rc = w.complex_fft(x, 0, 1)) return rc;
  const double *re = w.array(0), *im = w.array(1);
  const double s = reciprocal_square(n);
  for (int32_t k = 0; k < n; ++k) out[k] = (re[k] * re[k] + im[k] * im[k]) * s;
  return kOk;
}

// Both half-complex spectra go straight into the output, x's into the real
// slots and y's into the imaginary ones; each bin pair k, n-k is then read
// and replaced by the product and its conjugate.
int32_t cross_spectrum(const double* x, const double* y, int32_t n, cdouble* out) {
  if (n == 1) {
    out[0] = cdouble(x[0] * y[0], 0.0);
    return kOk;
  }
  Work w;
  if (int32_t rc = w.prepare(n, 0)) return rc;
  double* o = reinterpret_cast<double*>(out);
  if (int32_t rc = ExecuteRealFFT(w.table(), x, o, 1, 2, n)) return rc;
  if (int32_t rc = ExecuteRealFFT(w.table(), y, o + 1, 1, 2, n)) return rc;
  const double s = reciprocal_square(n);
  out[0] = cdouble(o[0] * o[1] * s, 0.0);
  for (ptrdiff_t k = 1; k <= (n - 1) / 2; ++k) {  // 2(n-k) would overflow int32 for n above 2^30
    const double xr = o[2 * k], yr = o[2 * k + 1];
    const double xi = o[2 * (n - k)], yi = o[2 * (n - k) + 1];
    const double re = (xr * yr + xi * yi) * s, im = (xr * yi - xi * yr) * s;
    out[k] = cdouble(re, im);
    out[n - k] = cdouble(re, -im);
  }
  if (n % 2 == 0) out[n / 2] = cdouble(o[n] * o[n + 1] * s, 0.0);
  return kOk;
}

// Scratch of 4n values: real and imaginary parts of X, then of Y.
int32_t cross_spectrum(const cdouble* x, const cdouble* y, int32_t n, cdouble* out) {
  Work w;
  if (int32_t rc = w.prepare(n, 4)) return rc;
  if (int32_t rc = w.complex_fft(x, 0, 1)) return rc;
  if (int32_t rc = w.complex_fft(y, 2, 3)) return rc;
  const double *xr = w.array(0), *xi = w.array(1), *yr = w.array(2), *yi = w.array(3);
  const double s = reciprocal_square(n);
  for (int32_t k = 0; k < n; ++k)
    out[k] = cdouble((xr[k] * yr[k] + xi[k] * yi[k]) * s, (xr[k] * yi[k] - xi[k] * yr[k]) * s);
  return kOk;
}

}  // namespace jq::fft
