// Power and cross spectra of generated tones.
#include <cmath>
#include <complex>

#include "demo.hpp"

namespace demo {

void spectra(void* lib) {
  auto spectrum = JQ_DEMO_GET(lib, SpectrumH);
  auto cross = JQ_DEMO_GET(lib, CrossSpectrumH);
  const double kPi = 3.141592653589793;

  const int n = 1000;
  jqrt::Array<double> x(n), s(n), c(n);
  for (int i = 0; i < n; ++i) {
    const double t = i / 1000.0;
    x[i] = std::sin(2 * kPi * 50 * t) + 0.3 * std::sin(2 * kPi * 120 * t);
    s[i] = std::sin(2 * kPi * 50 * t);
    c[i] = std::cos(2 * kPi * 50 * t);
  }
  double mean_square = 0;
  for (int i = 0; i < n; ++i) mean_square += x[i] * x[i] / n;

  section("Power spectrum of sin(2 pi 50 t) + 0.3 sin(2 pi 120 t), 1000 samples at 1 kHz");
  jqrt::Slot slot;
  const int32_t code = spectrum(x.h(), slot.get());
  double total = 0;
  for (int k = 0; k < n; ++k) total += x[k];
  std::printf("  bins above 1e-9 of the two-sided spectrum (1 Hz apart, upper half negative):\n");
  for (int k = 0; k < n; ++k)
    if (x[k] > 1e-9)
      std::printf("  bin %4d (%+5d Hz)  power %.6f  -> amplitude %.6f\n", k, k <= n / 2 ? k : k - n, x[k],
                  std::sqrt(4 * x[k]));
  std::printf("  sum of all bins %.6f, mean square of the signal %.6f (code %d)\n", total, mean_square, code);

  section("Cross spectrum of sin and cos at 50 Hz");
  jqrt::Array<std::complex<double>> sc;
  jqrt::Slot cross_slot;
  const int32_t cc = cross(s.h(), c.h(), sc.h(), cross_slot.get());
  const std::complex<double> b = sc[50];
  std::printf("  bin 50: %.6f %+.6fi, phase %.1f degrees (code %d)\n", b.real(), b.imag(),
              std::arg(b) * 180 / kPi, cc);
  jqrt::Array<double> four{1, 2, 3, 4}, five{1, 2, 3, 4, 5};
  const int32_t mismatch = cross(four.h(), five.h(), sc.h(), cross_slot.get());
  std::printf("  signals of 4 and 5 samples: code %d, output of %d elements\n", mismatch, sc.size());
  jqrt_dispose_context();
}

}  // namespace demo
