// A windowed tone: a sine from the waveform generator, tapered by a window,
// and the window's constants.
#include <string>

#include "demo.hpp"

namespace demo {

void windows(void* lib) {
  auto sine = JQ_DEMO_GET(lib, SineWaveCIN);
  auto all_windows = JQ_DEMO_GET(lib, AllWinH);
  auto constants = JQ_DEMO_GET(lib, WinConstByNameH);

  section("A 3-cycle sine of 32 samples under a Hann window");
  double a = 1, f = 3.0 / 32, phase = 0;
  int32_t n = 32, err = 0;
  jqrt::Array<double> x;
  sine(x.h(), &n, &a, &f, &phase, &err);
  const int32_t rc = all_windows(x.h(), 1, 0.0, 0, 0);
  for (int i = 0; i < x.size(); ++i) {
    const int col = static_cast<int>((x[i] + 1) * 20 + 0.5);
    std::printf("  %2d %+6.3f |%s*\n", i, x[i], std::string(col, ' ').c_str());
  }
  std::printf("  code %d\n", rc);

  section("Window constants (equivalent noise bandwidth in bins, coherent gain)");
  const struct {
    int32_t code;
    double p;
    const char* name;
  } shown[] = {{1, 0, "Hann"}, {6, 0, "flat top"}, {60, 8.6, "Kaiser, beta 8.6"}, {61, 80, "Dolph-Chebyshev, 80 dB"}};
  for (const auto& w : shown) {
    JQWindowConstants k{};
    const int32_t code = constants(1024, w.code, w.p, &k);
    std::printf("  %-24s ENBW %.6f  CG %.6f  (code %d)\n", w.name, k.enbw, k.cg, code);
  }
}

}  // namespace demo
