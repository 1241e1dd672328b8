// Periodic random noise: every harmonic of the record length at one
// amplitude with a random phase, synthesised by the inverse real FFT.
#include "generation/period_noise.hpp"

#include <cmath>

#include "frame/scratch.hpp"
#include "transforms/shared_table.hpp"

namespace jq::gen {

int32_t period_noise(double* out, int32_t n, double amplitude, int32_t seed, RandomState& st) {
  Scratch<double> re, im;
  if (re.allocate(n) != kOk || im.allocate(n) != kOk) return kNoMemory;
  if (seed >= 0) random_seed(seed, st);
  re[0] = im[0] = 0.0;
  int32_t m = (n - 1) / 2;
  if (n % 2 == 0) {
    re[n / 2] = im[n / 2] = 0.0;
    m = n / 2 - 1;
  }
  const double c = n * amplitude * 0.5;
  for (int32_t k = 1; k <= m; ++k) {
    // The phase is the integer itself, in radians, not scaled to 2 pi.
    const double phi = static_cast<double>(random_phase_int(st));
    re[k] = re[n - k] = c * std::cos(phi);
    im[k] = c * std::sin(phi);
    im[n - k] = -c * std::sin(phi);
  }
  if (n == 1) {
    out[0] = re[0];
    return kOk;
  }
  // Half-complex layout, packed in re: the upper half holds the imaginary
  // parts of the lower bins, which are those of the upper bins negated.
  for (int32_t j = n / 2 + 1; j < n; ++j) re[j] = -im[j];
  const fft::SharedTable table(static_cast<uint32_t>(n));
  if (!table.get()) return kNoMemory;
  return fft::ExecuteInverseRealFFT(table.get(), re.data(), out, 1, 1, n);
}

}  // namespace jq::gen
