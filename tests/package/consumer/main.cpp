// Uses the installed library through its public headers only: the power
// spectrum of a tone peaks in the tone's bin, and the mean of a record is
// reported through the trailing error argument.
#include <cmath>
#include <cstdio>

#include "jqanlys.h"
#include "jqrt.hpp"

int main() {
  const int n = 64, bin = 5;
  jqrt::Array<double> x(n);
  for (int i = 0; i < n; ++i) x[i] = std::cos(2 * M_PI * bin * i / n);
  void* slot = nullptr;
  int32_t code = SpectrumH_IDP(x.h(), &slot);
  TransformUnreserveProc(&slot);
  // A unit cosine puts a quarter of its power in each of bins k and n - k.
  const bool spectrum_ok = code == 0 && x.size() == n && std::fabs(x[bin] - 0.25) < 1e-12 &&
                           std::fabs(x[n - bin] - 0.25) < 1e-12 && std::fabs(x[0]) < 1e-12;

  jqrt::Array<double> y{1, 2, 3, 6};
  double mean = 0;
  int32_t error = -1;
  Mean_head(y.h(), &mean, &error);
  const bool mean_ok = error == 0 && mean == 3;

  jqrt::Array<double> empty;
  Mean_head(empty.h(), &mean, &error);
  const bool empty_ok = error == -20003 && std::isnan(mean);

  std::printf("spectrum %s, mean %s, empty input %s, live blocks %lld\n", spectrum_ok ? "ok" : "WRONG",
              mean_ok ? "ok" : "WRONG", empty_ok ? "ok" : "WRONG", static_cast<long long>(jqrt_live_blocks()));
  return spectrum_ok && mean_ok && empty_ok && jqrt_live_blocks() == 3 ? 0 : 1;
}
