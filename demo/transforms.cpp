// Power spectrum of a two-tone signal and an FFT round trip.
#include <cmath>
#include <string>

#include "demo.hpp"

namespace demo {

void transforms(void* lib) {
  auto spectrum = JQ_DEMO_GET(lib, SpectrumH);
  auto fft = JQ_DEMO_GET(lib, ReKWFFTH);
  auto ifft = JQ_DEMO_GET(lib, InvReKWFFTH);

  // 1 V at 50 Hz and 0.25 V at 120 Hz, 1000 samples at 1 kHz: both tones
  // fall on bins, so each shows as two bins of (A/2)^2 in the two-sided
  // spectrum.
  const int n = 1000;
  const double two_pi = 6.283185307179586;
  jqrt::Array<double> x(n);
  for (int i = 0; i < n; ++i) x[i] = std::sin(two_pi * 50 * i / 1000.0) + 0.25 * std::sin(two_pi * 120 * i / 1000.0);
  jqrt::Array<double> original(x.values());

  section("Two-sided power spectrum of sin(2 pi 50 t) + 0.25 sin(2 pi 120 t), 1000 samples at 1 kHz");
  void* slot = nullptr;
  int32_t code = spectrum(x.h(), &slot);
  double total = 0;
  for (int k = 0; k < n; ++k) total += x[k];
  for (int k = 0; k <= n / 2; ++k) {
    if (x[k] < 1e-12) continue;
    std::printf("  %4d Hz  %-40s %.6f\n", k, std::string(static_cast<size_t>(x[k] * 160), '#').c_str(), x[k]);
  }
  std::printf("  total power %.6f (mean square of the signal: %.6f), code %d\n", total, 0.5 + 0.03125, code);

  section("Forward and inverse FFT of the same signal, 1000 points (10 x 10 x 10)");
  jqrt::Array<std::complex<double>> X;
  jqrt::Array<double> back;
  void *f = nullptr, *b = nullptr;
  fft(original.h(), X.h(), &f);
  ifft(X.h(), back.h(), &b);
  double worst = 0;
  for (int i = 0; i < n; ++i) worst = std::max(worst, std::abs(back[i] - original[i]));
  std::printf("  |X[50]| = %.3f (expected 500), |X[120]| = %.3f (expected 125)\n", std::abs(X[50]), std::abs(X[120]));
  std::printf("  largest round-trip error %.2e\n", worst);
  jqrt_dispose_context();
}

}  // namespace demo
