// Noise statistics: each distribution's sample mean and variance beside the
// values it should have, and a riffle of ten numbers.
#include <cmath>

#include "demo.hpp"

namespace demo {
namespace {

template <class T> void row(const char* name, const jqrt::Array<T>& y, int32_t code, double mean, double var) {
  const int n = y.size();
  double m = 0, v = 0;
  for (int i = 0; i < n; ++i) m += y[i];
  m /= n;
  for (int i = 0; i < n; ++i) v += (y[i] - m) * (y[i] - m);
  v /= n - 1;
  std::printf("  %-30s mean %9.4f (%9.4f)   variance %9.4f (%9.4f)   code %d\n", name, m, mean, v, var, code);
}

}  // namespace

void noise(void* lib) {
  auto white_fn = JQ_DEMO_GET(lib, white);
  auto gauss_fn = JQ_DEMO_GET(lib, Gauss);
  auto gamma_fn = JQ_DEMO_GET(lib, GammaNoiseH);
  auto poisson_fn = JQ_DEMO_GET(lib, PoissonNoiseH);
  auto binomial_fn = JQ_DEMO_GET(lib, BinomialNoiseH);
  auto riffle_fn = JQ_DEMO_GET(lib, RiffleIntNum2012_head);

  section("Noise, 100000 samples each: sample mean and variance (expected in brackets)");
  JQRandomState st{0, 0, 0};
  JQGaussSpare spare{0, 0.0};
  JQBinomialCache cache{};
  jqrt::Array<double> y;
  jqrt::Array<uint32_t> k;
  int32_t n = 100000, seed = 1234, cont = -1, err = 0;
  double amp = 2.0, sd = 0.5;
  white_fn(y.h(), &n, &amp, &seed, &err, &st);
  row("uniform white, amplitude 2", y, err, 0.0, amp * amp / 3);
  gauss_fn(y.h(), &n, &sd, &cont, &err, &st, &spare);
  row("Gaussian white, sd 0.5", y, err, 0.0, sd * sd);
  row("gamma, order 3", y, gamma_fn(y.h(), n, 3, -1, &st), 3, 3);
  row("gamma, order 9 (rejection)", y, gamma_fn(y.h(), n, 9, -1, &st), 9, 9);
  row("Poisson, mean 4", y, poisson_fn(y.h(), n, 4.0, -1, &st), 4, 4);
  row("Poisson, mean 60 (rejection)", y, poisson_fn(y.h(), n, 60.0, -1, &st), 60, 60);
  row("binomial, 20 trials, p 0.3", k, binomial_fn(k.h(), n, 20, 0.3, -1, &st, &cache), 6, 4.2);
  row("binomial, 200 trials, p 0.8", k, binomial_fn(k.h(), n, 200, 0.8, -1, &st, &cache), 160, 32);
  const int32_t rejected = poisson_fn(y.h(), n, -1.0, -1, &st);
  std::printf("  Poisson with mean -1: code %d, output emptied to %d samples\n", rejected, y.size());

  auto period_fn = JQ_DEMO_GET(lib, PeriodNoise);
  int32_t np = 1024;
  double pa = 0.1;
  period_fn(&np, &pa, &cont, y.h(), &err, &st);
  // 511 harmonics below Nyquist, each of power pa^2 / 2; the sample variance divides by n - 1.
  row("periodic, 1024 samples, 0.1 each", y, err, 0.0, 511 * pa * pa / 2 * 1024 / 1023);

  jqrt::Array<int32_t> idx;
  const int32_t code = riffle_fn(idx.h(), 10, 42, &st, 1);
  std::printf("  riffle of 0..9, seed 42:");
  for (int i = 0; i < idx.size(); ++i) std::printf(" %d", idx[i]);
  std::printf("   code %d\n", code);
}

}  // namespace demo
