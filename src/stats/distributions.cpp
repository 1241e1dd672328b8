#include "stats/distributions.hpp"

#include <cmath>
#include <limits>

#include "frame/errors.hpp"
#include "special/gamma.hpp"

namespace jq::stats {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kWidth = 0.0001;  // every inverse stops at this bracket width

bool is_probability(double p) { return p >= 0 && p <= 1; }  // false for NaN

// The t and F distributions without argument checks, for the bisections.
//
// Both are I(x; a, b) at x = nu / (nu + t^2) (or its F counterpart), whose
// complement is I(y; b, a) at y = 1 - x. Whichever of x and y is the smaller
// is formed directly, so that neither tail loses digits to 1 - x.
double t_prob(double t, int32_t nu) {
  if (t == 0) return 0.5;
  const double v = nu, t2 = t * t;
  double q;  // P(T <= -|t|)
  if (t2 < v) {
    q = 0.5 - 0.5 * special::beta_inc(0.5, 0.5 * v, t2 / (v + t2));
  } else {
    // Past 1e154 t^2 overflows, and nu / t^2 is formed as (nu / |t|) / |t|.
    const double x = std::isinf(t2) ? v / std::fabs(t) / std::fabs(t) : v / (v + t2);
    q = 0.5 * special::beta_inc(0.5 * v, 0.5, x);
  }
  return t < 0 ? q : 1 - q;
}

double f_prob(double f, int32_t nu1, int32_t nu2) {
  if (f <= 0) return 0;
  const double a = nu1, b = nu2, w = a * f;
  if (std::isinf(w)) return 1;
  if (w <= b) return special::beta_inc(0.5 * a, 0.5 * b, w / (w + b));
  return 1 - special::beta_inc(0.5 * b, 0.5 * a, b / (w + b));
}

double chi_square_prob(double x, int32_t nu) { return x <= 0 ? 0 : special::gamma_p(0.5 * nu, 0.5 * x); }

// Bisection to kWidth on [lo, hi]: the lower end moves to the midpoint while
// the CDF there is below p. Returns the lower end.
template <class Cdf> double bisect(double p, double lo, double hi, Cdf cdf) {
  while (hi - lo > kWidth) {
    const double m = 0.5 * (lo + hi);
    if (p > cdf(m)) lo = m;
    else hi = m;
  }
  return lo;
}

}  // namespace

double normal_cdf(double x) {
  const double z = std::fabs(x);
  const double t = 1 / (1 + 0.33267 * z);
  const double q = 0.3989422 * std::exp(-z * z / 2) * t * (0.4361836 + t * (-0.1201676 + 0.937298 * t));
  return x >= 0 ? 1 - q : q;
}

int32_t normal_inverse(double p, double* x) {
  if (!is_probability(p)) return kNotInUnitInterval;
  if (p == 0) return *x = -kInf, kOk;
  if (p == 1) return *x = kInf, kOk;
  const double s = std::sqrt(-2 * std::log(p >= 0.5 ? 1 - p : p));
  const double r = (2.515517 + 0.802853 * s + 0.010328 * s * s) / (1 + 1.432788 * s + 0.189269 * s * s + 0.001308 * s * s * s);
  *x = p >= 0.5 ? s - r : r - s;
  return kOk;
}

int32_t t_cdf(double t, int32_t nu, double* result) {
  if (nu < 1) return kDegreesOfFreedom;
  if (std::isnan(t)) return kNonFiniteData;
  *result = t_prob(t, nu);
  return kOk;
}

int32_t f_cdf(double f, int32_t nu1, int32_t nu2, double* result) {
  if (nu1 < 1 || nu2 < 1) return kDegreesOfFreedom;
  if (std::isnan(f)) return kNonFiniteData;
  *result = f_prob(f, nu1, nu2);
  return kOk;
}

int32_t chi_square_cdf(double x, int32_t nu, double* result) {
  if (nu < 0) return kDegreesOfFreedom;  // nu = 0 is a point mass at 0, accepted here
  *result = chi_square_prob(x, nu);
  return kOk;
}

int32_t t_inverse(double p, int32_t nu, double* result) {
  if (nu < 1) return kDegreesOfFreedom;
  if (!is_probability(p)) return kNotInUnitInterval;
  if (p == 0) return *result = -kInf, kOk;
  if (p == 1) return *result = kInf, kOk;
  *result = bisect(p, -10000, 10000, [nu](double m) { return t_prob(m, nu); });
  return kOk;
}

int32_t f_inverse(double p, int32_t nu1, int32_t nu2, double* result) {
  if (nu1 < 1 || nu2 < 1) return kDegreesOfFreedom;
  if (!is_probability(p)) return kNotInUnitInterval;
  if (p == 0) return *result = 0, kOk;
  if (p == 1) return *result = kInf, kOk;
  *result = bisect(p, 1e-6, 10000, [nu1, nu2](double m) { return f_prob(m, nu1, nu2); });
  return kOk;
}

int32_t chi_square_inverse(double p, int32_t nu, double* result) {
  if (!is_probability(p)) return kNotInUnitInterval;
  if (nu < 1) return kDegreesOfFreedom;
  if (p == 0) return *result = 0, kOk;
  if (p == 1) return *result = kInf, kOk;
  // The CDF reaches 1 in double precision a few standard deviations past nu,
  // so for p < 1 the bound stops growing by about nu + 5000 at the latest.
  double hi = 5000;
  while (chi_square_prob(hi, nu) < p) hi += 5000;
  *result = bisect(p, 0, hi, [nu](double m) { return chi_square_prob(m, nu); });
  return kOk;
}

}  // namespace jq::stats
