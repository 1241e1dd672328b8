// The gamma family, the beta functions and the error functions.
//
// Scalar routines shared by the special-function exports, the probability
// distributions and the noise generators. None of them reports a code: a
// domain error gives NaN and an overflow +infinity.
#pragma once
#include <cstdint>

namespace jq::special {

double factorial(int32_t n);
double ln_factorial(int32_t n);
// Natural log of the gamma function for x >= 0; every negative x gives NaN.
double ln_gamma(double x);
double gamma(double x);
// The short Stirling series for Gamma(x), x > 0.
double stirling(double x);
double digamma(double x);

// Regularized incomplete gamma functions P(a, x) and Q(a, x) = 1 - P(a, x),
// for a >= 0 and x >= 0; each is computed directly where it is small.
double gamma_p(double a, double x);
double gamma_q(double a, double x);

// Complete beta B(a, b) for a, b > 0.
double beta(double a, double b);
// Regularized incomplete beta I(x; a, b).
double beta_inc(double a, double b, double x);
// The same with y = 1 - x given alongside x, for callers that know the
// smaller of the two more accurately than 1 - x would give it. Near the mean
// a / (a + b) the continued fraction amplifies the error of x by up to
// ~sqrt(a + b), hence the extended precision.
double beta_inc(double a, double b, long double x, long double y);

double erf(double x);
double erfc(double x);
double dawson(double x);
// amplitude * exp(-((x - centre) / sigma)^2 / 2), sigma > 0.
double gauss(double x, double amplitude, double centre, double sigma);

}  // namespace jq::special
