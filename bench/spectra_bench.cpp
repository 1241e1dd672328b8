// What SpectrumH costs on top of the transform it is built on, at n = 1024:
// the export with its call site's table already cached (host handle,
// validation, per-call table reference, scratch, scaling) against the bare
// real FFT into a scratch array held by the caller. Both copy the signal in
// first, since SpectrumH overwrites it.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "jqanlys.h"
#include "jqrt.hpp"
#include "transforms/fft.hpp"

namespace {

constexpr int kN = 1024;

std::vector<double> signal() {
  std::vector<double> x(kN);
  for (int i = 0; i < kN; ++i) x[i] = std::sin(0.37 * i) + 0.25 * std::cos(1.9 * i);
  return x;
}

void BM_ExecuteRealFFT(benchmark::State& state) {
  const std::vector<double> x = signal();
  std::vector<double> in(kN), out(kN);
  jq::fft::FFTTable* t = jq::fft::create_table(kN);
  for (auto _ : state) {
    std::memcpy(in.data(), x.data(), kN * sizeof(double));
    jq::fft::ExecuteRealFFT(t, in.data(), out.data(), 1, 1, kN);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  jq::fft::destroy_table(t);
}
BENCHMARK(BM_ExecuteRealFFT);

void BM_SpectrumH(benchmark::State& state) {
  const std::vector<double> x = signal();
  jqrt::Array<double> h(kN);
  jqrt::Slot slot;
  SpectrumH(h.h(), slot.get());  // builds and caches the call site's table
  for (auto _ : state) {
    std::memcpy(h.data(), x.data(), kN * sizeof(double));
    benchmark::DoNotOptimize(SpectrumH(h.h(), slot.get()));
    benchmark::ClobberMemory();
  }
  jqrt_dispose_context();
}
BENCHMARK(BM_SpectrumH);

// Prints the usual table, then SpectrumH's time as a multiple of the bare FFT's.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    // The median of repetitions when there are any, else the single run.
    for (const Run& r : runs) {
      const bool median = r.run_type == Run::RT_Aggregate && r.aggregate_name == "median";
      if (median || (r.run_type == Run::RT_Iteration && !times_.count(r.run_name.function_name)))
        times_[r.run_name.function_name] = {r.GetAdjustedRealTime(), r.GetAdjustedCPUTime()};
    }
  }
  void Finalize() override {
    ConsoleReporter::Finalize();
    const auto fft = times_.find("BM_ExecuteRealFFT"), spectrum = times_.find("BM_SpectrumH");
    if (fft == times_.end() || spectrum == times_.end()) return;
    const auto [fr, fc] = fft->second;
    const auto [sr, sc] = spectrum->second;
    std::printf("SpectrumH / ExecuteRealFFT at n = %d: %.3f real time, %.3f CPU time "
                "(overhead %.0f ns real, %.0f ns CPU per call)\n", kN, sr / fr, sc / fc, sr - fr, sc - fc);
  }

 private:
  std::map<std::string, std::pair<double, double>> times_;  // real, CPU
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
