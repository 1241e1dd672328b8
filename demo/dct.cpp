// Cosine transform of a smooth ramp and Hilbert transform of a cosine.
#include <cmath>

#include "demo.hpp"

namespace demo {

void dct_hilbert(void* lib) {
  auto dct = JQ_DEMO_GET(lib, DCT_1DH_IDP);
  auto idct = JQ_DEMO_GET(lib, InvDCT_1DH_IDP);
  auto hilbert = JQ_DEMO_GET(lib, FastHilbertTransformH_IDP);
  auto unreserve = JQ_DEMO_GET(lib, TransformUnreserveProc);

  section("Orthonormal DCT of a ramp, 0 .. 1 in 16 samples: energy gathers in the first terms");
  const int n = 16;
  jqrt::Array<double> x(n), y, back;
  for (int i = 0; i < n; ++i) x[i] = i / (n - 1.0);
  // One instance per call site, as the host keeps them.
  void* sites[3] = {};
  int32_t code = dct(x.h(), y.h(), 0, &sites[0]);
  std::printf("  y[0..5] =");
  for (int k = 0; k < 6; ++k) std::printf(" %+.4f", y[k]);
  std::printf("   (code %d)\n", code);
  code = idct(y.h(), back.h(), &sites[1]);
  double worst = 0;
  for (int i = 0; i < n; ++i) worst = std::fmax(worst, std::fabs(back[i] - x[i]));
  std::printf("  inverse returns the ramp within %.1e (code %d)\n", worst, code);

  section("Hilbert transform of cos(2 pi 3 j/64): the matching sine");
  const int m = 64;
  jqrt::Array<double> s(m);
  for (int j = 0; j < m; ++j) s[j] = std::cos(2 * 3.141592653589793 * 3 * j / m);
  code = hilbert(s.h(), &sites[2]);
  worst = 0;
  for (int j = 0; j < m; ++j) worst = std::fmax(worst, std::fabs(s[j] - std::sin(2 * 3.141592653589793 * 3 * j / m)));
  std::printf("  largest distance from sin: %.1e (code %d)\n", worst, code);
  for (void*& site : sites) unreserve(&site);
}

}  // namespace demo
