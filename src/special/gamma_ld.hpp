// Extended-precision pieces of the gamma family, for the routines here that
// build on them.
#pragma once

namespace jq::special {

constexpr long double kHalfLn2Pi = 0.918938533204672741780329736405617639861L;

// Gamma(x) for 0 < x < 1700 (finite in long double).
long double gamma_ld(long double x);
// ln Gamma(a) and ln B(a, b) for positive arguments; extended precision
// while the arguments stay below 1700.
long double ln_gamma_ld(double a);
// ln Gamma(1 + a) for 0 <= a < 1, accurate relative to its small size.
long double ln_gamma_1p_ld(long double a);
long double ln_beta_ld(double a, double b);
// ln Gamma(x) - ((x - 1/2) ln x - x + ln sqrt(2 pi)), for x >= 100.
long double stirling_correction(long double x);

}  // namespace jq::special
