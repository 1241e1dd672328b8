#include "transforms/hilbert.hpp"

#include "frame/errors.hpp"
#include "frame/scratch.hpp"
#include "transforms/fft.hpp"
#include "transforms/shared_table.hpp"

namespace jq::fft {
namespace {

// The half-complex spectrum of x in a new scratch array.
int32_t half_complex_spectrum(const double* x, int32_t n, const SharedTable& table, Scratch<double>& spectrum) {
  if (!table.get()) return kNoMemory;
  if (spectrum.allocate(static_cast<size_t>(n)) != kOk) return kNoMemory;
  return ExecuteRealFFT(table.get(), x, spectrum.data(), 1, 1, n);
}

int32_t hilbert_forward(double* x, int32_t n) {
  if (n == 1) {
    x[0] = 0.0;
    return kOk;
  }
  SharedTable table(n);
  Scratch<double> s;
  if (int32_t rc = half_complex_spectrum(x, n, table, s)) return rc;
  s[0] = 0.0;
  if (n % 2 == 0) s[n / 2] = 0.0;
  for (int32_t k = 1; k < n - k; ++k) {
    const double re = s[k], im = s[n - k];
    s[k] = im;
    s[n - k] = -re;
  }
  return ExecuteInverseRealFFT(table.get(), s.data(), x, 1, 1, n);
}

}  // namespace

// The inverse flips the forward result's signs, a single sample's 0 included.
int32_t hilbert(double* x, int32_t n, bool inverse) {
  if (int32_t rc = hilbert_forward(x, n)) return rc;
  if (inverse)
    for (int32_t j = 0; j < n; ++j) x[j] = -x[j];
  return kOk;
}

int32_t hartley(double* x, int32_t n, bool inverse) {
  if (n == 1) return kOk;
  SharedTable table(n);
  Scratch<double> s;
  if (int32_t rc = half_complex_spectrum(x, n, table, s)) return rc;
  const double scale = inverse ? 1.0 / n : 1.0;
  x[0] = s[0] * scale;
  for (int32_t k = 1; k < n - k; ++k) {
    const double re = s[k], im = s[n - k];
    x[k] = (re - im) * scale;
    x[n - k] = (re + im) * scale;
  }
  if (n % 2 == 0) x[n / 2] = s[n / 2] * scale;
  return kOk;
}

}  // namespace jq::fft
