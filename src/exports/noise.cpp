// Noise generators and riffles. The generator state, the Gaussian spare and
// the binomial cache are host blocks, read and written in place; a call
// that fails its checks leaves them untouched.
#include <cmath>

#include "frame/export.hpp"
#include "generation/noise.hpp"
#include "generation/period_noise.hpp"
#include "jqanlys.h"

using namespace jq;
using gen::RandomState;

static_assert(sizeof(JQRandomState) == sizeof(RandomState));
static_assert(sizeof(JQGaussSpare) == sizeof(gen::GaussSpare));
static_assert(sizeof(JQBinomialCache) == sizeof(gen::BinomialCache));
static_assert(offsetof(JQBinomialCache, n_old) == offsetof(gen::BinomialCache, n_old));

namespace {

RandomState& state_of(JQRandomState* s) { return *reinterpret_cast<RandomState*>(s); }

// A seed of 0 or more restarts the stream (0 itself leaves it unchanged).
RandomState& restart(JQRandomState* s, int32_t seed) {
  RandomState& st = state_of(s);
  if (seed >= 0) gen::random_seed(seed, st);
  return st;
}

int32_t read_or_zero(const int32_t* p) { return p ? *p : 0; }

// The shared frame of white, Gauss and PeriodNoise: the code goes to the
// error parameter; the result is the host's status after a failed resize,
// else 0 (or, for a generator that can fail, its code).
template <class Fill> int32_t sample_export(JQHandle h, const int32_t* n, int32_t* error, bool ok, Fill fill) {
  Out<double> out(h);
  Outputs outs(out);
  if (error) *error = kOk;
  const int32_t count = read_or_zero(n);
  if (count < 1) return outs.report(kEmptyInput, error);
  if (!ok) return outs.report(kBadSelector, error);
  if (!outs.size(out, count)) return outs.report(kNoMemory, error);
  const int32_t code = fill(out.data(), count);
  outs.report(code, error);
  return code;
}

// The shared frame of the H exports: a parameter check, then the count.
template <class T, class Fill> int32_t noise_export(JQHandle h, int32_t n, bool params_ok, Fill fill) {
  Out<T> out(h);
  Outputs outs(out);
  if (!params_ok) return outs.finish(kBadSelector);
  if (n < 1) return outs.finish(kEmptyInput);
  if (!outs.size(out, n)) return outs.finish(kNoMemory);
  fill(out.data());
  return kOk;
}

int32_t riffle_numbers(JQHandle h, int32_t n, int32_t seed, JQRandomState* state, int32_t method) {
  Out<int32_t> idx(h);
  Outputs outs(idx);
  if (n < 1) return outs.finish(kEmptyInput);
  if (!state) return outs.finish(kBadSelector);
  if (!outs.size(idx, n)) return outs.finish(kNoMemory);
  gen::index_ramp(idx.data(), n);
  gen::riffle<int32_t>(nullptr, idx.data(), n, method, restart(state, seed));
  return kOk;
}

template <class T> int32_t riffle_array(JQHandle array, JQHandle index, int32_t seed, JQRandomState* state, int32_t method) {
  const int32_t n = Array1<T>(array).size();
  Out<T> data(array);
  Out<int32_t> idx(index);
  Outputs outs(data, idx);
  if (n < 1) return outs.finish(kEmptyInput);
  if (!state) return outs.finish(kBadSelector);
  if (!outs.size(idx, n)) return outs.finish(kNoMemory);
  gen::index_ramp(idx.data(), n);
  gen::riffle<T>(data.data(), idx.data(), n, method, restart(state, seed));
  return kOk;
}

}  // namespace

JQ_EXPORT int32_t white(JQHandle out, int32_t* n, double* amplitude, int32_t* seed, int32_t* error,
                        JQRandomState* state) {
  return sample_export(out, n, error, state && amplitude && seed, [&](double* y, int32_t count) {
    gen::white_noise(y, count, *amplitude, restart(state, *seed));
    return kOk;
  });
}

JQ_EXPORT int32_t Gauss(JQHandle out, int32_t* n, double* sd, int32_t* seed, int32_t* error, JQRandomState* state,
                        JQGaussSpare* spare) {
  return sample_export(out, n, error, state && sd && seed && spare, [&](double* y, int32_t count) {
    auto& sp = *reinterpret_cast<gen::GaussSpare*>(spare);
    // Only a positive seed restarts, and a restart forgets the spare.
    if (*seed > 0) {
      gen::random_seed(*seed, state_of(state));
      sp.flag = 0;
      sp.spare = 0.0;
    }
    gen::gauss_noise(y, count, *sd, state_of(state), sp);
    return kOk;
  });
}

JQ_EXPORT int32_t PeriodNoise(int32_t* n, double* amplitude, int32_t* seed, JQHandle out, int32_t* error,
                              JQRandomState* state) {
  return sample_export(out, n, error, state && amplitude && seed, [&](double* y, int32_t count) {
    return gen::period_noise(y, count, *amplitude, *seed, state_of(state));
  });
}

JQ_EXPORT int32_t GammaNoiseH(JQHandle out, int32_t n, int32_t order, int32_t seed, JQRandomState* state) {
  return noise_export<double>(out, n, order >= 1 && state, [&](double* y) {
    gen::gamma_noise(y, n, order, restart(state, seed));
  });
}

JQ_EXPORT int32_t PoissonNoiseH(JQHandle out, int32_t n, double mean, int32_t seed, JQRandomState* state) {
  // A NaN or infinite mean would keep the rejection loop from ever accepting.
  return noise_export<double>(out, n, mean >= 0 && std::isfinite(mean) && state, [&](double* y) {
    gen::poisson_noise(y, n, mean, restart(state, seed));
  });
}

JQ_EXPORT int32_t BinomialNoiseH(JQHandle out, int32_t n, int32_t trials, double p, int32_t seed,
                                 JQRandomState* state, JQBinomialCache* cache) {
  const bool ok = trials >= 0 && p >= 0 && p <= 1 && state && cache;
  return noise_export<uint32_t>(out, n, ok, [&](uint32_t* y) {
    gen::binomial_noise(y, n, trials, p, restart(state, seed), *reinterpret_cast<gen::BinomialCache*>(cache));
  });
}

JQ_EXPORT int32_t RiffleIntNum2012_head(JQHandle out, int32_t n, int32_t seed, JQRandomState* state, int32_t method) {
  return riffle_numbers(out, n, seed, state, method);
}
JQ_EXPORT int32_t RiffleIntNum_head(JQHandle out, int32_t n, int32_t seed, JQRandomState* state) {
  return riffle_numbers(out, n, seed, state, 0);
}
JQ_EXPORT int32_t RiffleArrayDBL2012_head(JQHandle array, JQHandle index, int32_t seed, JQRandomState* state,
                                          int32_t method) {
  return riffle_array<double>(array, index, seed, state, method);
}
JQ_EXPORT int32_t RiffleArrayDBL_head(JQHandle array, JQHandle index, int32_t seed, JQRandomState* state) {
  return riffle_array<double>(array, index, seed, state, 0);
}
JQ_EXPORT int32_t RiffleArrayCDB2012_head(JQHandle array, JQHandle index, int32_t seed, JQRandomState* state,
                                          int32_t method) {
  return riffle_array<cdouble>(array, index, seed, state, method);
}
JQ_EXPORT int32_t RiffleArrayCDB_head(JQHandle array, JQHandle index, int32_t seed, JQRandomState* state) {
  return riffle_array<cdouble>(array, index, seed, state, 0);
}
JQ_EXPORT int32_t RiffleArrayInt2012_head(JQHandle array, JQHandle index, int32_t seed, JQRandomState* state,
                                          int32_t method) {
  return riffle_array<int32_t>(array, index, seed, state, method);
}
JQ_EXPORT int32_t RiffleArrayInt_head(JQHandle array, JQHandle index, int32_t seed, JQRandomState* state) {
  return riffle_array<int32_t>(array, index, seed, state, 0);
}
