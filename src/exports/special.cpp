// Gamma family and error functions: scalar in, scalar out through a pointer.
// No codes: a domain error gives NaN, an overflow +infinity.
#include <cmath>

#include "frame/export.hpp"
#include "jqanlys.h"
#include "special/gamma.hpp"

namespace sp = jq::special;

namespace {
inline void put(double* result, double v) {
  if (result) *result = v;
}
}  // namespace

JQ_EXPORT void JQ_Fact(int32_t n, double* result) { put(result, sp::factorial(n)); }
JQ_EXPORT void JQ_LnFact(int32_t n, double* result) { put(result, sp::ln_factorial(n)); }
JQ_EXPORT void JQ_Gamma(double x, double* result) { put(result, sp::gamma(x)); }
JQ_EXPORT void JQ_Gamma_85(double x, double* result) { put(result, sp::gamma(x)); }
JQ_EXPORT void JQ_LnGamma(double x, double* result) { put(result, sp::ln_gamma(x)); }
JQ_EXPORT void JQ_Stirling(double x, double* result) { put(result, sp::stirling(x)); }
JQ_EXPORT void JQ_Psi(double x, double* result) { put(result, sp::digamma(x)); }
JQ_EXPORT void JQ_GammaC(double a, double x, double* result) { put(result, sp::gamma_p(a, x)); }

JQ_EXPORT void JQ_Beta(double a, double b, double x, double* result) {
  put(result, std::isnan(x) ? sp::beta(a, b) : sp::beta_inc(a, b, x));
}

JQ_EXPORT void JQ_Beta_85(double a, double b, double x, int32_t selector, double* result) {
  put(result, selector == 1 ? sp::beta(a, b) : sp::beta_inc(a, b, x));
}

JQ_EXPORT void JQ_Erf(double x, double* result) { put(result, sp::erf(x)); }
JQ_EXPORT void JQ_ErfC(double x, double* result) { put(result, sp::erfc(x)); }
JQ_EXPORT void JQ_Dawson(double x, double* result) { put(result, sp::dawson(x)); }

JQ_EXPORT void JQ_Gauss(double x, double amplitude, double centre, double sigma, double* result) {
  put(result, sp::gauss(x, amplitude, centre, sigma));
}

// The newer form takes the width by magnitude: the curve depends on sigma^2.
JQ_EXPORT void JQ_Gauss_2011(double x, double amplitude, double centre, double sigma, double* result) {
  put(result, sp::gauss(x, amplitude, centre, std::fabs(sigma)));
}
