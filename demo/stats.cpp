// Descriptive statistics of a generated sine.
#include <cmath>
#include <string>

#include "demo.hpp"

namespace demo {

void statistics(void* lib) {
  auto mean = JQ_DEMO_GET(lib, Mean_head);
  auto rms = JQ_DEMO_GET(lib, RMS_head);
  auto hist = JQ_DEMO_GET(lib, histgran_head);

  const int n = 1000;
  jqrt::Array<double> x(n);
  for (int i = 0; i < n; ++i) x[i] = 0.5 + 2.0 * std::sin(2 * 3.141592653589793 * 50.0 * i / 1000.0);
  section("Descriptive statistics of 0.5 + 2 sin(2 pi 50 t), 1000 samples at 1 kHz");
  double m = 0, r = 0;
  int32_t err = 0;
  mean(x.h(), &m, &err);
  std::printf("  mean  %10.6f   (expected 0.5, code %d)\n", m, err);
  rms(x.h(), &r, &err);
  std::printf("  rms   %10.6f   (expected %.6f, code %d)\n", r, std::sqrt(0.25 + 2.0), err);
  jqrt::Array<double> empty;
  mean(empty.h(), &m, &err);
  std::printf("  mean of an empty array: %f with code %d\n", m, err);

  section("Histogram of the same signal, 8 intervals");
  jqrt::Array<int32_t> counts;
  jqrt::Array<double> centres;
  int32_t k = 8;
  hist(x.h(), &k, counts.h(), centres.h(), &err);
  for (int i = 0; i < counts.size(); ++i) {
    std::printf("  %+7.3f | %-40s %d\n", centres[i], std::string(counts[i] / 5, '#').c_str(), counts[i]);
  }
  std::printf("  code %d\n", err);
}

}  // namespace demo
