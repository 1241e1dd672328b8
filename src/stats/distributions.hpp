// Cumulative distribution functions of the normal, Student t, F and
// chi-square distributions and their inverses. The normal pair are fixed
// rational approximations; the others rest on the regularized incomplete
// beta and gamma functions, and their inverses bisect to a fixed absolute
// width and return the lower end of the final bracket.
#pragma once
#include <bit>
#include <cmath>
#include <cstdint>

#include "frame/errors.hpp"

namespace jq::stats {

// P(Z <= x) by a rational approximation (absolute error about 1e-5).
double normal_cdf(double x);
// x with P(Z <= x) = p by a rational approximation in s = sqrt(-2 ln q), q
// the smaller tail, its polynomials by Horner's rule; p outside [0, 1] (or
// NaN) gives kNotInUnitInterval. Inline: the export is called once per point.
inline int32_t normal_inverse(double p, double* x) {
  if (!(p >= 0 && p <= 1)) return kNotInUnitInterval;
  if (p == 0 || p == 1) return *x = p == 0 ? -HUGE_VAL : HUGE_VAL, kOk;
  // Without branches on the side of 0.5, which random probabilities would
  // mispredict half the time: min(p, 1 - p) is the tail, and r - s is
  // -(s - r) exactly. (At p = 0.5, s - r is slightly negative and stays so.)
  const double q = 1 - p, tail = p < q ? p : q;  // one minsd
  const double s = std::sqrt(-2 * std::log(tail));
  const double r = (2.515517 + s * (0.802853 + s * 0.010328)) / (1 + s * (1.432788 + s * (0.189269 + s * 0.001308)));
  const uint64_t below = uint64_t{p < 0.5} << 63;  // the sign bit, flipped below 0.5
  *x = std::bit_cast<double>(std::bit_cast<uint64_t>(s - r) ^ below);
  return kOk;
}

// Each returns kOk or its code and leaves *result alone on failure.
int32_t t_cdf(double t, int32_t nu, double* result);
int32_t f_cdf(double f, int32_t nu1, int32_t nu2, double* result);
int32_t chi_square_cdf(double x, int32_t nu, double* result);
int32_t t_inverse(double p, int32_t nu, double* result);
int32_t f_inverse(double p, int32_t nu1, int32_t nu2, double* result);
int32_t chi_square_inverse(double p, int32_t nu, double* result);

}  // namespace jq::stats
