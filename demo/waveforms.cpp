// Continuous waveforms: two calls that continue one another through the kept phase.
#include "demo.hpp"

namespace demo {

void waveforms(void* lib) {
  auto sine = JQ_DEMO_GET(lib, SineWaveCIN);
  auto square = JQ_DEMO_GET(lib, SquareWaveCIN);

  section("Sine and square waves, 1/16 cycle per sample, in two calls of 12 samples");
  double a = 1, f = 1.0 / 16, phase = 0, duty = 25;
  int32_t n = 12, err = 0;
  for (int call = 0; call < 2; ++call) {
    jqrt::Array<double> y;
    const double entry = phase;
    sine(y.h(), &n, &a, &f, &phase, &err);
    std::printf("  sine   from %6.1f deg:", entry);
    for (int i = 0; i < y.size(); ++i) std::printf(" %+5.2f", y[i]);
    std::printf("  -> phase %5.1f (code %d)\n", phase, err);
  }
  jqrt::Array<double> s;
  phase = 0;
  square(s.h(), &n, &a, &f, &phase, &duty, &err);
  std::printf("  square, duty 25%%:        ");
  for (int i = 0; i < s.size(); ++i) std::printf(" %+5.2f", s[i]);
  std::printf("\n");
}

}  // namespace demo
