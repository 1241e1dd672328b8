// Cumulative distribution functions of the normal, Student t, F and
// chi-square distributions and their inverses. The normal pair are fixed
// rational approximations; the others rest on the regularized incomplete
// beta and gamma functions, and their inverses bisect to a fixed absolute
// width and return the lower end of the final bracket.
#pragma once
#include <cstdint>

namespace jq::stats {

// P(Z <= x) by a rational approximation (absolute error about 1e-5).
double normal_cdf(double x);
// x with P(Z <= x) = p by a rational approximation; p outside [0, 1] (or NaN)
// gives kNotInUnitInterval.
int32_t normal_inverse(double p, double* x);

// Each returns kOk or its code and leaves *result alone on failure.
int32_t t_cdf(double t, int32_t nu, double* result);
int32_t f_cdf(double f, int32_t nu1, int32_t nu2, double* result);
int32_t chi_square_cdf(double x, int32_t nu, double* result);
int32_t t_inverse(double p, int32_t nu, double* result);
int32_t f_inverse(double p, int32_t nu1, int32_t nu2, double* result);
int32_t chi_square_inverse(double p, int32_t nu, double* result);

}  // namespace jq::stats
