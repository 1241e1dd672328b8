// Eight threads at once through the state the library shares or keeps per
// call site: the process-wide FFT table list (every thread asks for the same
// lengths from its own call sites, and for tables of its own), transform and
// measurement instances, plain and _IDP (one slot per thread), and the noise
// generators (one generator state per thread). Each result must equal the one computed alone first;
// run under ThreadSanitizer, no access may race.
//
//   jqthreads [seconds]
#include <atomic>
#include <chrono>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "jqanlys.h"
#include "jqrt.hpp"

namespace {

constexpr int kThreads = 8;
using cd = std::complex<double>;

// What one round computes, compared bit for bit with the lone round.
struct Round {
  std::vector<cd> fft64, fft60;
  std::vector<double> spectrum, noise;
  std::vector<uint32_t> binomial;
  double levels[2][3] = {};
  bool operator==(const Round& o) const {
    return fft64 == o.fft64 && fft60 == o.fft60 && spectrum == o.spectrum && noise == o.noise &&
           binomial == o.binomial && std::memcmp(levels, o.levels, sizeof levels) == 0;
  }
};

std::vector<double> signal(int n) {
  std::vector<double> x(n);
  for (int i = 0; i < n; ++i) x[i] = std::sin(0.3 * i) + 0.1 * i;
  return x;
}

// One thread's call sites; they outlive the rounds, as a host's do.
struct Sites {
  void* fft_plain = nullptr;  // clean-up registered with the host
  void* fft_idp = nullptr;
  void* spectrum_idp = nullptr;
  void* levels_plain = nullptr;  // clean-up registered with the host
  void* levels_idp = nullptr;
  JQRandomState state{};
  JQBinomialCache cache{};

  ~Sites() {
    TransformUnreserveProc(&fft_idp);
    TransformUnreserveProc(&spectrum_idp);
    MeasurementUnreserveProc(&levels_idp);
  }
};

bool round_of(Sites& s, int seed, Round* r) {
  jqrt::Array<double> x(signal(64)), x60(signal(60));
  jqrt::Array<cd> y, y60;
  if (ReKWFFTH80(x.h(), y.h(), &s.fft_plain, 0, 64, 0) != 0) return false;
  // A length the thread also builds and drops directly, while others use it.
  if (ReKWFFTH80_IDP(x60.h(), y60.h(), &s.fft_idp, 0, 60, 0) != 0) return false;
  JQFFTTable* t = create_kwfft_table(60);
  destroy_kwfft_table(t);
  jqrt::Array<double> power(signal(64));
  if (SpectrumH_IDP(power.h(), &s.spectrum_idp) != 0) return false;
  jqrt::Array<double> noise;
  int32_t n = 32, seed_arg = seed, error = 0;
  double amplitude = 1;
  if (white(noise.h(), &n, &amplitude, &seed_arg, &error, &s.state) != 0 || error != 0) return false;
  jqrt::Array<uint32_t> binomial;
  if (BinomialNoiseH(binomial.h(), 16, 20, 0.3, seed, &s.state, &s.cache) != 0) return false;
  // A square wave: two clear states, histogram method.
  std::vector<double> square(200);
  for (int i = 0; i < 200; ++i) square[i] = (i / 25) % 2 ? 2.5 : -0.5;
  jqrt::Array<double> wave(square);
  double* lv = r->levels[0];
  if (StateLevels(wave.h(), 0, 1, 0, 64, &s.levels_plain, &lv[0], &lv[1], &lv[2], 0) < 0) return false;
  lv = r->levels[1];
  if (StateLevels_IDP(wave.h(), 0, 1, 0, 64, &s.levels_idp, &lv[0], &lv[1], &lv[2], 0) < 0) return false;
  r->fft64 = y.values();
  r->fft60 = y60.values();
  r->spectrum = power.values();
  r->noise = noise.values();
  r->binomial = binomial.values();
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const double seconds = argc > 1 ? std::atof(argv[1]) : 3.0;
  Round alone;
  {
    Sites s;
    if (!round_of(s, 7, &alone)) {
      std::puts("the lone round failed");
      return 1;
    }
  }
  jqrt_dispose_context();

  std::atomic<bool> stop{false};
  std::atomic<int> bad{0};
  std::atomic<long> rounds{0};
  std::vector<std::thread> threads;
  for (int k = 0; k < kThreads; ++k) {
    threads.emplace_back([&] {
      Sites s;
      while (!stop.load()) {
        Round r;
        if (!round_of(s, 7, &r) || !(r == alone)) ++bad;
        ++rounds;
      }
    });
  }
  std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
  stop.store(true);
  for (auto& t : threads) t.join();
  jqrt_dispose_context();
  std::printf("%d threads, %ld rounds, %d wrong\n", kThreads, rounds.load(), bad.load());
  return bad.load() == 0 && rounds.load() >= kThreads ? 0 : 1;
}
