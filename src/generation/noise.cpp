// White, Gaussian, gamma, Poisson and binomial noise.
#include "generation/noise.hpp"

#include <cmath>

#include "special/gamma.hpp"

namespace jq::gen {
namespace {

constexpr double kPi = 3.141592653589793;

// A candidate of the rejection methods under a Lorentzian: y = tan(pi u),
// redrawn until sq * y + centre lies in [0, upper); returns its floor.
double lorentz_candidate(RandomState& st, double sq, double centre, double upper, double& y) {
  double e;
  do {
    y = std::tan(kPi * random_uniform(st));
    e = sq * y + centre;
  } while (e < 0.0 || e >= upper);
  return std::floor(e);
}

}  // namespace

void white_noise(double* out, int32_t n, double amplitude, RandomState& st) {
  const double span = 2.0 * amplitude;
  for (int32_t i = 0; i < n; ++i) out[i] = (random_uniform(st) - 0.5) * span;
}

// The polar method; the second deviate of each pair waits, unscaled, in the
// host's spare block, so a stream split over calls stays one stream.
void gauss_noise(double* out, int32_t n, double sd, RandomState& st, GaussSpare& spare) {
  for (int32_t i = 0; i < n; ++i) {
    double sample;
    if (spare.flag == 0) {
      double a, b, r;
      do {
        a = 2.0 * random_uniform(st) - 1.0;
        b = 2.0 * random_uniform(st) - 1.0;
        r = b * b + a * a;
        // A zeroed state draws a = b = -1 forever; it yields zeros instead.
      } while ((r >= 1.0 || r == 0.0) && !random_stuck(st));
      const double f = r >= 1.0 || r == 0.0 ? 0.0 : std::sqrt(-2.0 * std::log(r) / r);
      sample = f * b;
      spare.spare = f * a;
    } else {
      sample = spare.spare;
    }
    out[i] = sample * sd;
    spare.flag = spare.flag == 0 ? 1 : 0;
  }
}

void gamma_noise(double* out, int32_t n, int32_t order, RandomState& st) {
  if (order < 6) {
    for (int32_t i = 0; i < n; ++i) {
      double x = 1.0;
      for (int32_t j = 0; j < order; ++j) x *= random_uniform(st);
      out[i] = -std::log(x);
    }
    return;
  }
  const double am = order - 1.0;
  const double s = std::sqrt(2.0 * am + 1.0);
  for (int32_t i = 0; i < n; ++i) {
    double x;
    for (;;) {
      const double a = 2.0 * random_uniform(st) - 1.0;
      const double b = 2.0 * random_uniform(st) - 1.0;
      // A zeroed state draws a = b = -1 forever; give the mode instead.
      if (random_stuck(st)) {
        x = am;
        break;
      }
      if (a * a + b * b > 1.0) continue;
      const double y = b / a;
      x = s * y + am;
      if (x <= 0.0) continue;
      const double e = (1.0 + y * y) * std::exp(am * std::log(x / am) - s * y);
      if (random_uniform(st) > e) continue;
      break;
    }
    out[i] = x;
  }
}

void poisson_noise(double* out, int32_t n, double mean, RandomState& st) {
  if (mean < 12.0) {
    const double g = std::exp(-mean);
    for (int32_t i = 0; i < n; ++i) {
      int64_t k = -1;
      double t = 1.0;
      do {
        ++k;
        t *= random_uniform(st);
      } while (t > g);
      out[i] = static_cast<double>(k);
    }
    return;
  }
  // 2 * mean overflows for the largest means; an infinite sq would make
  // every candidate infinite and the candidate loop endless.
  const double sq = std::isfinite(2.0 * mean) ? std::sqrt(2.0 * mean) : std::sqrt(2.0) * std::sqrt(mean);
  const double ln_mean = std::log(mean);
  const double g = mean * ln_mean - special::ln_gamma(mean + 1.0);
  for (int32_t i = 0; i < n; ++i) {
    double e, t;
    do {
      double y;
      e = lorentz_candidate(st, sq, mean, HUGE_VAL, y);
      t = 0.9 * (1.0 + y * y) * std::exp(e * ln_mean - special::ln_gamma(e + 1.0) - g);
    } while (random_uniform(st) > t);
    out[i] = e;
  }
}

void binomial_noise(uint32_t* out, int32_t n, int32_t trials, double p, RandomState& st, BinomialCache& cache) {
  const double pp = p <= 0.5 ? p : 1.0 - p;
  const double mu = trials * pp;
  const double nf = trials;
  if (trials >= 25 && mu >= 1.0) {
    if (trials != cache.n_old) {
      cache.n_old_f = nf;
      cache.ln_gamma_n1 = special::ln_gamma(nf + 1.0);
      cache.n_old = trials;
    }
    if (pp != cache.p_old) {
      cache.q = 1.0 - pp;
      cache.ln_p = std::log(pp);
      cache.ln_q = std::log(cache.q);
      cache.p_old = pp;
    }
  }
  const double g = std::exp(-mu);
  for (int32_t i = 0; i < n; ++i) {
    double count = 0.0;
    if (trials < 25) {
      for (int32_t j = 0; j < trials; ++j)
        if (random_uniform(st) < pp) count += 1.0;
    } else if (mu < 1.0) {
      double t = 1.0;
      int32_t j = 0;
      do {
        t *= random_uniform(st);
        if (t < g) break;
        ++j;
      } while (j <= trials);
      count = j < trials ? j : trials;
    } else {
      const double sq = std::sqrt(2.0 * mu * cache.q);
      double e, t;
      do {
        double y;
        e = lorentz_candidate(st, sq, mu, cache.n_old_f + 1.0, y);
        t = 1.2 * sq * (1.0 + y * y) *
            std::exp(cache.ln_gamma_n1 - special::ln_gamma(e + 1.0) - special::ln_gamma(cache.n_old_f - e + 1.0) +
                     e * cache.ln_p + (cache.n_old_f - e) * cache.ln_q);
      } while (random_uniform(st) > t);
      count = e;
    }
    out[i] = static_cast<uint32_t>(pp != p ? nf - count : count);
  }
}

void index_ramp(int32_t* idx, int32_t n) {
  int32_t i = 0;
  for (; i + 8 <= n; i += 8)
    for (int32_t k = 0; k < 8; ++k) idx[i + k] = i + k;
  for (; i < n; ++i) idx[i] = i;
}

}  // namespace jq::gen
