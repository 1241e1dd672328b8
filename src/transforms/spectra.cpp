#include "transforms/spectra.hpp"

#include "frame/errors.hpp"
#include "frame/scratch.hpp"
#include "transforms/fft.hpp"

namespace jq::fft {
namespace {

// A reference to the shared table of length n for one call.
class CallTable {
 public:
  explicit CallTable(int32_t n) : t_(create_table(static_cast<uint32_t>(n))) {}
  ~CallTable() { destroy_table(t_); }
  CallTable(const CallTable&) = delete;
  CallTable& operator=(const CallTable&) = delete;
  const FFTTable* get() const { return t_; }

 private:
  FFTTable* t_;
};

double inverse_square(int32_t n) { return 1.0 / (static_cast<double>(n) * n); }

}  // namespace

int32_t power_spectrum(double* x, int32_t n) {
  if (n == 1) {
    x[0] *= x[0];
    return kOk;
  }
  CallTable t(n);
  Scratch<double> h;
  if (!t.get() || h.allocate(static_cast<size_t>(n)) != kOk) return kNoMemory;
  if (int32_t rc = ExecuteRealFFT(t.get(), x, h.data(), 1, 1, n)) return rc;
  const double s = inverse_square(n);
  x[0] = h[0] * h[0] * s;
  for (int32_t k = 1; k < n - k; ++k) x[k] = x[n - k] = (h[k] * h[k] + h[n - k] * h[n - k]) * s;
  if (n % 2 == 0) x[n / 2] = h[n / 2] * h[n / 2] * s;
  return kOk;
}

int32_t power_spectrum_complex(const cdouble* x, int32_t n, double* out) {
  CallTable t(n);
  Scratch<double> w;
  if (!t.get() || w.allocate(2 * static_cast<size_t>(n)) != kOk) return kNoMemory;
  const double* in = reinterpret_cast<const double*>(x);
  double *re = w.data(), *im = w.data() + n;
  if (int32_t rc = ExecuteComplexFFT(t.get(), in, in + 1, re, im, 2, 1, n)) return rc;
  const double s = inverse_square(n);
  for (int32_t k = 0; k < n; ++k) out[k] = (re[k] * re[k] + im[k] * im[k]) * s;
  return kOk;
}

int32_t cross_spectrum(const double* x, const double* y, int32_t n, cdouble* out) {
  double* d = reinterpret_cast<double*>(out);
  if (n == 1) {
    out[0] = cdouble(x[0] * y[0], 0.0);
    return kOk;
  }
  CallTable t(n);
  if (!t.get()) return kNoMemory;
  // Both half-complex spectra side by side: x's in the real slots, y's in
  // the imaginary ones.
  if (int32_t rc = ExecuteRealFFT(t.get(), x, d, 1, 2, n)) return rc;
  if (int32_t rc = ExecuteRealFFT(t.get(), y, d + 1, 1, 2, n)) return rc;
  const double s = inverse_square(n);
  out[0] = cdouble(d[0] * d[1] * s, 0.0);
  for (int32_t k = 1; k < n - k; ++k) {
    const double xr = d[2 * k], yr = d[2 * k + 1], xi = d[2 * (n - k)], yi = d[2 * (n - k) + 1];
    const cdouble v((xr * yr + xi * yi) * s, (xr * yi - xi * yr) * s);
    out[k] = v;
    out[n - k] = std::conj(v);
  }
  if (n % 2 == 0) out[n / 2] = cdouble(d[n] * d[n + 1] * s, 0.0);
  return kOk;
}

int32_t cross_spectrum_complex(const cdouble* x, const cdouble* y, int32_t n, cdouble* out) {
  CallTable t(n);
  Scratch<double> w;
  if (!t.get() || w.allocate(4 * static_cast<size_t>(n)) != kOk) return kNoMemory;
  double *xr = w.data(), *xi = xr + n, *yr = xi + n, *yi = yr + n;
  const double* a = reinterpret_cast<const double*>(x);
  const double* b = reinterpret_cast<const double*>(y);
  if (int32_t rc = ExecuteComplexFFT(t.get(), a, a + 1, xr, xi, 2, 1, n)) return rc;
  if (int32_t rc = ExecuteComplexFFT(t.get(), b, b + 1, yr, yi, 2, 1, n)) return rc;
  const double s = inverse_square(n);
  for (int32_t k = 0; k < n; ++k)
    out[k] = cdouble((xr[k] * yr[k] + xi[k] * yi[k]) * s, (xr[k] * yi[k] - xi[k] * yr[k]) * s);
  return kOk;
}

}  // namespace jq::fft
