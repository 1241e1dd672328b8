// jqdemo: a small host program. It loads the analysis library at run time,
// binds it to the project's host runtime and runs a few blocks on a
// generated signal, printing a readable report.
#include <cmath>
#include <cstdio>
#include <string>

#include "jqanlys.h"
#include "jqrt.hpp"
#include "loader.hpp"

namespace {

template <class Fn> Fn get(void* lib, const char* name) {
  auto f = reinterpret_cast<Fn>(demo::find_export(lib, name));
  if (!f) {
    std::fprintf(stderr, "jqdemo: the library lacks %s\n", name);
    std::exit(1);
  }
  return f;
}

void section(const char* title) { std::printf("\n== %s ==\n", title); }

}  // namespace

int main() {
  std::string why;
  void* lib = demo::open_library(why);
  if (!lib) {
    std::fprintf(stderr, "jqdemo: %s\n", why.c_str());
    return 1;
  }
  auto mean = get<decltype(&Mean_head)>(lib, "Mean_head");
  auto rms = get<decltype(&RMS_head)>(lib, "RMS_head");
  auto hist = get<decltype(&histgran_head)>(lib, "histgran_head");

  // A 50 Hz sine of amplitude 2 with a 0.5 offset, sampled at 1 kHz.
  const int n = 1000;
  jqrt::Array<double> x(n);
  for (int i = 0; i < n; ++i) x[i] = 0.5 + 2.0 * std::sin(2 * M_PI * 50.0 * i / 1000.0);
  std::printf("jqdemo: %d samples of 0.5 + 2 sin(2 pi 50 t), fs = 1 kHz\n", n);

  section("Descriptive statistics");
  double m = 0, r = 0;
  int32_t err = 0;
  mean(x.h(), &m, &err);
  std::printf("  mean  %10.6f   (expected 0.5, code %d)\n", m, err);
  rms(x.h(), &r, &err);
  std::printf("  rms   %10.6f   (expected %.6f, code %d)\n", r, std::sqrt(0.25 + 2.0), err);
  jqrt::Array<double> empty;
  mean(empty.h(), &m, &err);
  std::printf("  mean of an empty array: %f with code %d\n", m, err);

  section("Histogram, 8 intervals");
  jqrt::Array<int32_t> counts;
  jqrt::Array<double> centres;
  int32_t k = 8;
  hist(x.h(), &k, counts.h(), centres.h(), &err);
  for (int i = 0; i < counts.size(); ++i) {
    std::printf("  %+7.3f | %-40s %d\n", centres[i], std::string(counts[i] / 5, '#').c_str(), counts[i]);
  }
  std::printf("  code %d\n", err);
  return 0;
}
