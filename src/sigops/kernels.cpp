#include "sigops/kernels.hpp"

#include <algorithm>
#include <cstddef>

namespace jq::sig {

void axpy(double a, const double* y, int32_t m, double* o) {
  for (int32_t j = 0; j < m; ++j) o[j] += a * y[j];
}

// Plain arithmetic on the parts: the library's complex product would also
// run its recovery of infinities on every term.
void axpy(cdouble a, const cdouble* y, int32_t m, cdouble* o) {
  const double ar = a.real(), ai = a.imag();
  const double* yd = reinterpret_cast<const double*>(y);
  double* od = reinterpret_cast<double*>(o);
  for (int32_t j = 0; j < m; ++j) {
    const double yr = yd[2 * j], yi = yd[2 * j + 1];
    od[2 * j] += ar * yr - ai * yi;
    od[2 * j + 1] += ar * yi + ai * yr;
  }
}

template <class T> static void convolve_rows(const T* x, int32_t n, const T* y, int32_t m, T* out) {
  std::fill(out, out + (static_cast<size_t>(n) + m - 1), T());
  for (int32_t i = 0; i < n; ++i) axpy(x[i], y, m, out + i);
}

void direct_convolve(const double* x, int32_t n, const double* y, int32_t m, double* out) {
  convolve_rows(x, n, y, m, out);
}
void direct_convolve(const cdouble* x, int32_t n, const cdouble* y, int32_t m, cdouble* out) {
  convolve_rows(x, n, y, m, out);
}

void direct_correlate(const double* x, int32_t n, const double* y, int32_t m, double* out) {
  std::fill(out, out + (static_cast<size_t>(n) + m - 1), 0.0);
  const double* last = x + (n - 1);
  for (int32_t j = 0; j < m; ++j) {
    const double yj = y[j];
    double* o = out + j;
    for (int32_t k = 0; k < n; ++k) o[k] += last[-k] * yj;
  }
}

void multiply_half_complex(const double* a, const double* b, double* p, int32_t L) {
  p[0] = a[0] * b[0];
  for (int32_t k = 1; k < L - k; ++k) {
    const double ar = a[k], ai = a[L - k], br = b[k], bi = b[L - k];
    p[k] = ar * br - ai * bi;
    p[L - k] = ar * bi + ai * br;
  }
  if (L % 2 == 0) p[L / 2] = a[L / 2] * b[L / 2];
}

void multiply_complex(const cdouble* a, const cdouble* b, cdouble* p, size_t L) {
  const double* ad = reinterpret_cast<const double*>(a);
  const double* bd = reinterpret_cast<const double*>(b);
  double* pd = reinterpret_cast<double*>(p);
  for (size_t k = 0; k < L; ++k) {
    const double ar = ad[2 * k], ai = ad[2 * k + 1], br = bd[2 * k], bi = bd[2 * k + 1];
    pd[2 * k] = ar * br - ai * bi;
    pd[2 * k + 1] = ar * bi + ai * br;
  }
}

}  // namespace jq::sig
