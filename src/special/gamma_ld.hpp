// Extended-precision pieces of the gamma family, for the routines here that
// build on them.
#pragma once

namespace jq::special {

// Gamma(x) for 0 < x < 1700 (finite in long double).
long double gamma_ld(long double x);
// ln Gamma(a) and ln B(a, b) for positive arguments; extended precision
// while the arguments stay below 1700.
long double ln_gamma_ld(double a);
long double ln_beta_ld(double a, double b);

}  // namespace jq::special
