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
// Both are I(x; a, b) at x = nu / (nu + t^2) (or its F counterpart). Its
// complement y = 1 - x is formed directly beside it, so that neither tail
// loses digits to 1 - x, and both in extended precision, where t^2 cannot
// overflow either.
double t_prob(double t, int32_t nu) {
  if (t == 0) return 0.5;
  const long double v = nu, t2 = static_cast<long double>(t) * t;
  long double x, y;
  if (std::isinf(t2)) {
    x = 0;
    y = 1;
  } else {
    x = v / (v + t2);
    y = t2 / (v + t2);
  }
  const double q = 0.5 * special::beta_inc(0.5 * nu, 0.5, x, y);  // P(T <= -|t|)
  return t < 0 ? q : 1 - q;
}

// 1 - I(x; nu2/2, nu1/2) = I(y; nu1/2, nu2/2) with y = nu1 f / (nu1 f + nu2).
double f_prob(double f, int32_t nu1, int32_t nu2) {
  if (f <= 0) return 0;
  if (std::isinf(f)) return 1;
  const long double a = nu1, b = nu2, w = a * f;  // finite: long double reaches 1e4932
  return special::beta_inc(0.5 * nu1, 0.5 * nu2, w / (w + b), b / (w + b));
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
  // The upper end is the first multiple of 5000 where the CDF reaches p. The
  // CDF grows with x, so that multiple is found by doubling and halving the
  // count of steps rather than by one step at a time, which for large nu
  // would take nu / 5000 evaluations. It is near nu + a few sqrt(nu), where
  // the CDF is 1 in double precision, so the doubling ends.
  const auto reaches = [&](int64_t k) { return chi_square_prob(5000.0 * k, nu) >= p; };
  int64_t below = 0, at = 1;  // the CDF is below p at 5000 below (0 stands for the start) and reaches it at 5000 at
  while (!reaches(at)) below = at, at *= 2;
  while (at - below > 1) {
    const int64_t m = below + (at - below) / 2;
    (reaches(m) ? at : below) = m;
  }
  const double hi = 5000.0 * at;
  *result = bisect(p, 0, hi, [nu](double m) { return chi_square_prob(m, nu); });
  return kOk;
}

}  // namespace jq::stats
