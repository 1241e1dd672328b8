// The FFT engine's real and complex transforms beside FFTW (plans made with
// FFTW_ESTIMATE and FFTW_MEASURE outside the timed loop). After the runs a
// table of time ratios (engine / FFTW) is printed. The per-call cost of
// SpectrumH is measured by spectra_bench.cpp.
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "transforms/fft.hpp"

using namespace jq::fft;

namespace {

const int kLengths[] = {16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192, 16384, 32768, 65536,
                        1000, 1920, 3000, 10000, 1009};

std::vector<double> signal(int n) {
  std::vector<double> x(n);
  for (int i = 0; i < n; ++i) x[i] = std::sin(0.37 * i) + 0.1 * std::cos(1.9 * i);
  return x;
}

void engine_real(benchmark::State& st) {
  const int n = static_cast<int>(st.range(0));
  FFTTable* t = create_table(n);
  auto x = signal(n);
  std::vector<double> y(n);
  for (auto _ : st) {
    ExecuteRealFFT(t, x.data(), y.data(), 1, 1, n);
    benchmark::DoNotOptimize(y.data());
  }
  destroy_table(t);
}

void engine_complex(benchmark::State& st) {
  const int n = static_cast<int>(st.range(0));
  FFTTable* t = create_table(n);
  auto xr = signal(n), xi = signal(n);
  std::vector<double> yr(n), yi(n);
  for (auto _ : st) {
    ExecuteComplexFFT(t, xr.data(), xi.data(), yr.data(), yi.data(), 1, 1, n);
    benchmark::DoNotOptimize(yr.data());
  }
  destroy_table(t);
}

// Interleaved complex data, as the exports pass it (strides of 2).
void engine_complex_interleaved(benchmark::State& st) {
  const int n = static_cast<int>(st.range(0));
  FFTTable* t = create_table(n);
  auto x = signal(2 * n);
  std::vector<double> y(2 * n);
  for (auto _ : st) {
    ExecuteComplexFFT(t, x.data(), x.data() + 1, y.data(), y.data() + 1, 2, 2, n);
    benchmark::DoNotOptimize(y.data());
  }
  destroy_table(t);
}

template <unsigned Flags> void fftw_real(benchmark::State& st) {
  const int n = static_cast<int>(st.range(0));
  double* in = fftw_alloc_real(n);
  fftw_complex* out = fftw_alloc_complex(n / 2 + 1);
  fftw_plan p = fftw_plan_dft_r2c_1d(n, in, out, Flags);
  auto x = signal(n);
  std::copy(x.begin(), x.end(), in);
  for (auto _ : st) {
    fftw_execute(p);
    benchmark::DoNotOptimize(out);
  }
  fftw_destroy_plan(p);
  fftw_free(in);
  fftw_free(out);
}

template <unsigned Flags> void fftw_complex_(benchmark::State& st) {
  const int n = static_cast<int>(st.range(0));
  fftw_complex* in = fftw_alloc_complex(n);
  fftw_complex* out = fftw_alloc_complex(n);
  fftw_plan p = fftw_plan_dft_1d(n, in, out, FFTW_FORWARD, Flags);
  auto x = signal(2 * n);
  std::copy(x.begin(), x.end(), reinterpret_cast<double*>(in));
  for (auto _ : st) {
    fftw_execute(p);
    benchmark::DoNotOptimize(out);
  }
  fftw_destroy_plan(p);
  fftw_free(in);
  fftw_free(out);
}

void lengths(benchmark::internal::Benchmark* b) {
  for (int n : kLengths) b->Arg(n);
}

BENCHMARK(engine_real)->Apply(lengths);
BENCHMARK(fftw_real<FFTW_ESTIMATE>)->Name("fftw_real_estimate")->Apply(lengths);
BENCHMARK(fftw_real<FFTW_MEASURE>)->Name("fftw_real_measure")->Apply(lengths);
BENCHMARK(engine_complex)->Apply(lengths);
BENCHMARK(engine_complex_interleaved)->Apply(lengths);
BENCHMARK(fftw_complex_<FFTW_ESTIMATE>)->Name("fftw_complex_estimate")->Apply(lengths);
BENCHMARK(fftw_complex_<FFTW_MEASURE>)->Name("fftw_complex_measure")->Apply(lengths);

// Collects times per (benchmark, length) for the ratio table.
class Collector : public benchmark::ConsoleReporter {
 public:
  std::map<std::string, std::map<int, double>> times;
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& r : runs) {
      const std::string name = r.benchmark_name();
      const auto slash = name.rfind('/');
      if (slash == std::string::npos || r.iterations == 0) continue;
      times[name.substr(0, slash)][std::stoi(name.substr(slash + 1))] = r.GetAdjustedCPUTime();
    }
    ConsoleReporter::ReportRuns(runs);
  }
};

double median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  const size_t m = v.size() / 2;
  return v.size() % 2 ? v[m] : (v[m - 1] + v[m]) / 2;
}

void print_table(Collector& c) {
  struct Col {
    const char* title;
    const char* engine;
    const char* fftw;
  };
  const Col cols[] = {{"real/est", "engine_real", "fftw_real_estimate"},
                      {"real/meas", "engine_real", "fftw_real_measure"},
                      {"cx/est", "engine_complex", "fftw_complex_estimate"},
                      {"cx/meas", "engine_complex", "fftw_complex_measure"},
                      {"cx2/est", "engine_complex_interleaved", "fftw_complex_estimate"}};
  std::printf("\nCPU time ratios, engine / FFTW (below 1: the engine is faster)\n%8s", "n");
  for (const Col& col : cols) std::printf(" %10s", col.title);
  std::printf("\n");
  std::vector<std::vector<double>> all(std::size(cols));
  for (int n : kLengths) {
    std::printf("%8d", n);
    for (size_t i = 0; i < std::size(cols); ++i) {
      const double r = c.times[cols[i].engine][n] / c.times[cols[i].fftw][n];
      all[i].push_back(r);
      std::printf(" %10.2f", r);
    }
    std::printf("\n");
  }
  std::printf("%8s", "median");
  for (auto& v : all) std::printf(" %10.2f", median(v));
  std::printf("\n%8s", "max");
  for (auto& v : all) std::printf(" %10.2f", *std::max_element(v.begin(), v.end()));
  std::printf("\n(cx2: the engine on interleaved data with strides of 2, as the exports call it)\n");
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Collector c;
  benchmark::RunSpecifiedBenchmarks(&c);
  print_table(c);
  benchmark::Shutdown();
  return 0;
}
