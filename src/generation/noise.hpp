// Noise of several distributions and random permutations, all drawn from
// the host-owned generator state. Each routine fills n >= 1 samples; the
// exports validate and size the outputs first.
#pragma once
#include <cstddef>
#include <cstdint>
#include <utility>

#include "generation/random.hpp"

namespace jq::gen {

// A standard normal deviate kept from the last polar pair, unscaled.
struct GaussSpare {
  int32_t flag;
  double spare;
};
static_assert(offsetof(GaussSpare, spare) == 8);

// The n- and p-dependent values of the binomial rejection method.
struct BinomialCache {
  double p_old, q, ln_p, ln_q, n_old_f, ln_gamma_n1;
  int32_t n_old;
};
static_assert(offsetof(BinomialCache, n_old) == 48);

void white_noise(double* out, int32_t n, double amplitude, RandomState& st);
void gauss_noise(double* out, int32_t n, double sd, RandomState& st, GaussSpare& spare);
void gamma_noise(double* out, int32_t n, int32_t order, RandomState& st);
void poisson_noise(double* out, int32_t n, double mean, RandomState& st);
void binomial_noise(uint32_t* out, int32_t n, int32_t trials, double p, RandomState& st, BinomialCache& cache);

// Fills idx with 0..n-1.
void index_ramp(int32_t* idx, int32_t n);

// Shuffles idx (and data, when given) with the same swaps. Method 0 is the
// early shuffle that swaps each position with one drawn from all n; any
// other method is the unbiased shuffle from the top down.
template <class T> void riffle(T* data, int32_t* idx, int32_t n, int32_t method, RandomState& st) {
  auto swap_at = [&](int32_t i, int32_t j) {
    if (data) std::swap(data[i], data[j]);
    std::swap(idx[i], idx[j]);
  };
  // u < 1 keeps j below its bound; the clamp only guards against rounding.
  auto draw = [&](int32_t bound) {
    const auto j = static_cast<int32_t>(random_uniform(st) * bound);
    return j < bound ? j : bound - 1;
  };
  if (method != 0) {
    for (int32_t i = n - 1; i >= 1; --i) swap_at(i, draw(i + 1));
  } else {
    for (int32_t i = 0; i < n; ++i) swap_at(i, draw(n));
  }
}

}  // namespace jq::gen
