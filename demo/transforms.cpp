// An FFT round trip of a two-tone signal (its power spectrum is in spectra.cpp).
#include <algorithm>
#include <cmath>
#include <complex>

#include "demo.hpp"

namespace demo {

void transforms(void* lib) {
  auto fft = JQ_DEMO_GET(lib, ReKWFFTH);
  auto ifft = JQ_DEMO_GET(lib, InvReKWFFTH);

  // 1 V at 50 Hz and 0.25 V at 120 Hz, 1000 samples at 1 kHz: both tones
  // fall on bins, so |X| is nA/2 there.
  const int n = 1000;
  const double two_pi = 6.283185307179586;
  jqrt::Array<double> x(n);
  for (int i = 0; i < n; ++i) x[i] = std::sin(two_pi * 50 * i / 1000.0) + 0.25 * std::sin(two_pi * 120 * i / 1000.0);
  section("Forward and inverse FFT of sin(2 pi 50 t) + 0.25 sin(2 pi 120 t), 1000 points (10 x 10 x 10)");
  jqrt::Array<std::complex<double>> X;
  jqrt::Array<double> back;
  void *f = nullptr, *b = nullptr;
  fft(x.h(), X.h(), &f);
  ifft(X.h(), back.h(), &b);
  double worst = 0;
  for (int i = 0; i < n; ++i) worst = std::max(worst, std::abs(back[i] - x[i]));
  std::printf("  |X[50]| = %.3f (expected 500), |X[120]| = %.3f (expected 125)\n", std::abs(X[50]), std::abs(X[120]));
  std::printf("  largest round-trip error %.2e\n", worst);
  jqrt_dispose_context();
}

}  // namespace demo
