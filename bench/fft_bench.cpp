// The FFT exports beside FFTW 3 with FFTW_MEASURE plans (r2c for real input,
// dft_1d for complex input), plans made outside the timed loop. The real
// transform is timed through ReKWFFTHCH_IDP and the complex one through
// CxKWFFTH80_IDP, each with its call site's instance kept across calls, so
// the times include the exports' own work (validation, output resize). Each
// length runs three repetitions; the table compares median CPU times.
// The per-call cost of SpectrumH is measured by spectra_bench.cpp.
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "jqanlys.h"
#include "jqrt.hpp"

namespace {

// Powers of two, powers of ten, multiples of 1000, audio rates, a product of
// small primes, products of the primes without codelets (23, 47), primes
// whose p-1 is smooth or not, and twice such primes.
const int kLengths[] = {16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192, 16384, 32768, 65536, 131072, 262144,
                        524288, 1048576, 10, 100, 1000, 10000, 100000, 1000000, 2000, 3000, 5000, 7000, 9000,
                        44100, 48000, 30030, 46, 1081, 2209, 53, 97, 1009, 4801, 7919, 10007, 65537, 106, 2018,
                        15838, 20014};

std::vector<double> signal(int n) {
  std::vector<double> x(n);
  for (int i = 0; i < n; ++i) x[i] = std::sin(0.37 * i) + 0.1 * std::cos(1.9 * i);
  return x;
}

void export_real(benchmark::State& st) {
  const int n = static_cast<int>(st.range(0));
  jqrt::Array<double> x(n), y(n);
  const auto v = signal(n);
  std::copy(v.begin(), v.end(), x.data());
  jqrt::Slot slot;
  ReKWFFTHCH_IDP(x.h(), y.h(), slot.get());  // builds the call site's table
  for (auto _ : st) benchmark::DoNotOptimize(ReKWFFTHCH_IDP(x.h(), y.h(), slot.get()));
  TransformUnreserveProc(slot.get());
}

void export_complex(benchmark::State& st) {
  const int n = static_cast<int>(st.range(0));
  jqrt::Array<std::complex<double>> x(n), y(n);
  const auto v = signal(2 * n);
  for (int i = 0; i < n; ++i) x[i] = {v[2 * i], v[2 * i + 1]};
  jqrt::Slot slot;
  CxKWFFTH80_IDP(x.h(), y.h(), slot.get(), 0, n, 0);
  for (auto _ : st) benchmark::DoNotOptimize(CxKWFFTH80_IDP(x.h(), y.h(), slot.get(), 0, n, 0));
  TransformUnreserveProc(slot.get());
}

// FFTW keeps what it measured, so only the first plan of a length is costly.
void fftw_real(benchmark::State& st) {
  const int n = static_cast<int>(st.range(0));
  double* in = fftw_alloc_real(n);
  fftw_complex* out = fftw_alloc_complex(n / 2 + 1);
  fftw_plan p = fftw_plan_dft_r2c_1d(n, in, out, FFTW_MEASURE);
  const auto x = signal(n);
  std::copy(x.begin(), x.end(), in);
  for (auto _ : st) {
    fftw_execute(p);
    benchmark::DoNotOptimize(out);
  }
  fftw_destroy_plan(p);
  fftw_free(in);
  fftw_free(out);
}

void fftw_complex_(benchmark::State& st) {
  const int n = static_cast<int>(st.range(0));
  fftw_complex* in = fftw_alloc_complex(n);
  fftw_complex* out = fftw_alloc_complex(n);
  fftw_plan p = fftw_plan_dft_1d(n, in, out, FFTW_FORWARD, FFTW_MEASURE);
  const auto x = signal(2 * n);
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
  b->Repetitions(3)->ReportAggregatesOnly(true)->MinTime(0.05);
}

BENCHMARK(export_real)->Apply(lengths);
BENCHMARK(fftw_real)->Apply(lengths);
BENCHMARK(export_complex)->Apply(lengths);
BENCHMARK(fftw_complex_)->Name("fftw_complex")->Apply(lengths);

// Collects the median CPU time per (benchmark, length) for the ratio table.
class Collector : public benchmark::ConsoleReporter {
 public:
  std::map<std::string, std::map<int, double>> times;
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& r : runs) {
      if (r.run_type != Run::RT_Aggregate || r.aggregate_name != "median") continue;
      const std::string name = r.run_name.function_name;
      const std::string& arg = r.run_name.args;
      if (!arg.empty()) times[name][std::stoi(arg)] = r.GetAdjustedCPUTime();
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
    const char* ours;
    const char* peer;
  };
  const Col cols[] = {{"real", "export_real", "fftw_real"}, {"complex", "export_complex", "fftw_complex"}};
  std::printf("\nCPU time ratios, export / FFTW_MEASURE (below 1: the export is faster)\n%8s", "n");
  for (const Col& col : cols) std::printf(" %8s", col.title);
  std::printf("\n");
  std::vector<std::vector<double>> all(std::size(cols));
  for (int n : kLengths) {
    bool any = false;
    for (const Col& col : cols) any = any || (c.times[col.ours].count(n) && c.times[col.peer].count(n));
    if (!any) continue;
    std::printf("%8d", n);
    for (size_t i = 0; i < std::size(cols); ++i) {
      if (!c.times[cols[i].ours].count(n) || !c.times[cols[i].peer].count(n)) {
        std::printf(" %8s", "-");
        continue;
      }
      const double r = c.times[cols[i].ours][n] / c.times[cols[i].peer][n];
      all[i].push_back(r);
      std::printf(" %8.2f", r);
    }
    std::printf("\n");
  }
  std::printf("%8s", "median");
  for (auto& v : all) std::printf(" %8.2f", v.empty() ? 0.0 : median(v));
  std::printf("\n%8s", "max");
  for (auto& v : all) std::printf(" %8.2f", v.empty() ? 0.0 : *std::max_element(v.begin(), v.end()));
  std::printf("\n");
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Collector c;
  benchmark::RunSpecifiedBenchmarks(&c);
  print_table(c);
  jqrt_dispose_context();
  benchmark::Shutdown();
  return 0;
}
