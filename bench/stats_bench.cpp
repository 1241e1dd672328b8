// Per-point and fixed-arithmetic costs of the statistics exports, beside the
// fastest plain code doing the same arithmetic:
// - InvNdist_head over 10^6 probabilities, one call per point (the export is
//   scalar), reported per point; bench/stats_bench.py sets it beside
//   scipy.special.ndtri's per-point cost on the same points.
// - Mean_head over 10^7 samples against a bare left-to-right loop: the sum's
//   order is fixed, so one add depends on the one before and neither can be
//   vectorised.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

#include "jqanlys.h"
#include "jqrt.hpp"

namespace {

std::vector<double> uniform(int n, uint32_t seed) {
  std::mt19937_64 g(seed);
  std::uniform_real_distribution<double> u(0.0, 1.0);
  std::vector<double> v(n);
  for (double& x : v) x = u(g);
  return v;
}

void BM_InvNdistPerPoint(benchmark::State& state) {
  const std::vector<double> p = uniform(1000000, 7);
  double x, sum = 0;
  int32_t err;
  for (auto _ : state) {
    for (const double& q : p) {
      InvNdist_head(&q, &x, &err);
      sum += x;
    }
  }
  benchmark::DoNotOptimize(sum);
  state.SetItemsProcessed(state.iterations() * int64_t(p.size()));
}

void BM_MeanExport(benchmark::State& state) {
  jqrt::Array<double> x(uniform(10000000, 11));
  double m;
  int32_t err;
  for (auto _ : state) {
    Mean_head(x.h(), &m, &err);
    benchmark::DoNotOptimize(m);
  }
}

void BM_LeftToRightLoop(benchmark::State& state) {
  const std::vector<double> x = uniform(10000000, 11);
  for (auto _ : state) {
    double s = 0;
    for (double v : x) s += v;
    benchmark::DoNotOptimize(s / x.size());
  }
}

}  // namespace

BENCHMARK(BM_InvNdistPerPoint)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_MeanExport)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_LeftToRightLoop)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK_MAIN();
