#include "transforms/spectra.hpp"

#include "frame/errors.hpp"
#include "frame/scratch.hpp"
#include "transforms/fft.hpp"
#include "transforms/lease.hpp"

namespace jq::fft {
namespace {

// Interleaved complex arrays are handed to the executors as their real and
// imaginary parts with a stride of 2.
inline const double* parts(const cdouble* z) { return reinterpret_cast<const double*>(z); }
inline double* parts(cdouble* z) { return reinterpret_cast<double*>(z); }

inline double reciprocal_square(int32_t n) { return 1.0 / (static_cast<double>(n) * n); }

}  // namespace

int32_t power_spectrum(double* x, int32_t n) {
  if (n == 1) {
    x[0] *= x[0];
    return kOk;
  }
  TableSource own = TableSource::plain(nullptr);  // a reference for this call only
  FFTTable* t = nullptr;
  if (int32_t rc = own.get(0, n, &t)) return rc;
  Scratch<double> X;
  if (X.allocate(n)) return kNoMemory;
  if (int32_t rc = ExecuteRealFFT(t, x, X.data(), 1, 1, n)) return rc;
  const double s = reciprocal_square(n);
  x[0] = X[0] * X[0] * s;
  for (int32_t k = 1; k <= (n - 1) / 2; ++k) x[k] = x[n - k] = (X[k] * X[k] + X[n - k] * X[n - k]) * s;
  if (n % 2 == 0) x[n / 2] = X[n / 2] * X[n / 2] * s;
  return kOk;
}

int32_t power_spectrum(const cdouble* x, int32_t n, double* out) {
  TableSource own = TableSource::plain(nullptr);
  FFTTable* t = nullptr;
  if (int32_t rc = own.get(0, n, &t)) return rc;
  Scratch<double> X;
  if (X.allocate(2 * static_cast<size_t>(n))) return kNoMemory;
  double* re = X.data();
  double* im = re + n;
  if (int32_t rc = ExecuteComplexFFT(t, parts(x), parts(x) + 1, re, im, 2, 1, n)) return rc;
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
  TableSource own = TableSource::plain(nullptr);
  FFTTable* t = nullptr;
  if (int32_t rc = own.get(0, n, &t)) return rc;
  double* o = parts(out);
  if (int32_t rc = ExecuteRealFFT(t, x, o, 1, 2, n)) return rc;
  if (int32_t rc = ExecuteRealFFT(t, y, o + 1, 1, 2, n)) return rc;
  const double s = reciprocal_square(n);
  out[0] = cdouble(o[0] * o[1] * s, 0.0);
  for (int32_t k = 1; k <= (n - 1) / 2; ++k) {
    const double xr = o[2 * k], yr = o[2 * k + 1];
    const double xi = o[2 * (n - k)], yi = o[2 * (n - k) + 1];
    const double re = (xr * yr + xi * yi) * s, im = (xr * yi - xi * yr) * s;
    out[k] = cdouble(re, im);
    out[n - k] = cdouble(re, -im);
  }
  if (n % 2 == 0) out[n / 2] = cdouble(o[n] * o[n + 1] * s, 0.0);
  return kOk;
}

int32_t cross_spectrum(const cdouble* x, const cdouble* y, int32_t n, cdouble* out) {
  TableSource own = TableSource::plain(nullptr);
  FFTTable* t = nullptr;
  if (int32_t rc = own.get(0, n, &t)) return rc;
  Scratch<double> X;
  if (X.allocate(4 * static_cast<size_t>(n))) return kNoMemory;
  double* xr = X.data();
  double* xi = xr + n;
  double* yr = xi + n;
  double* yi = yr + n;
  if (int32_t rc = ExecuteComplexFFT(t, parts(x), parts(x) + 1, xr, xi, 2, 1, n)) return rc;
  if (int32_t rc = ExecuteComplexFFT(t, parts(y), parts(y) + 1, yr, yi, 2, 1, n)) return rc;
  const double s = reciprocal_square(n);
  for (int32_t k = 0; k < n; ++k)
    out[k] = cdouble((xr[k] * yr[k] + xi[k] * yi[k]) * s, (xr[k] * yi[k] - xi[k] * yr[k]) * s);
  return kOk;
}

}  // namespace jq::fft
