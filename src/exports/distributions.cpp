// Probability distributions and their inverses. Arguments come by pointer;
// every export but NormDist_head clears its error parameter, stores the code
// there and returns 0, and a non-zero code makes the result NaN. A null
// argument pointer reads as NaN (or as 0 degrees of freedom).
#include "frame/export.hpp"
#include "jqanlys.h"
#include "stats/distributions.hpp"

using namespace jq;

namespace {

double value(const double* p) { return p ? *p : std::numeric_limits<double>::quiet_NaN(); }
int32_t value(const int32_t* p) { return p ? *p : 0; }

// The routine writes only on success; the result is NaN otherwise.
template <class F> int32_t distribution(double* result, int32_t* error, F f) {
  if (error) *error = kOk;
  double r = 0;
  const int32_t code = f(&r);
  if (result) *result = code == kOk ? r : std::numeric_limits<double>::quiet_NaN();
  if (error) *error = code;
  return 0;
}

}  // namespace

JQ_EXPORT int32_t NormDist_head(const double* x, double* p) {
  if (p) *p = stats::normal_cdf(value(x));
  return 0;
}

JQ_EXPORT int32_t TDist_head(const double* t, const int32_t* nu, double* p, int32_t* error) {
  return distribution(p, error, [&](double* r) { return stats::t_cdf(value(t), value(nu), r); });
}

JQ_EXPORT int32_t FDist_head(const double* f, const int32_t* nu1, const int32_t* nu2, double* p, int32_t* error) {
  return distribution(p, error, [&](double* r) { return stats::f_cdf(value(f), value(nu1), value(nu2), r); });
}

JQ_EXPORT int32_t ChiSquare_head(const double* x, const int32_t* nu, double* p, int32_t* error) {
  // A missing degrees-of-freedom argument must not pass as the accepted 0.
  return distribution(p, error, [&](double* r) { return stats::chi_square_cdf(value(x), nu ? *nu : -1, r); });
}

JQ_EXPORT int32_t InvNdist_head(const double* p, double* x, int32_t* error) {
  return distribution(x, error, [&](double* r) { return stats::normal_inverse(value(p), r); });
}

JQ_EXPORT int32_t InvTdist_head(const double* p, const int32_t* nu, double* t, int32_t* error) {
  return distribution(t, error, [&](double* r) { return stats::t_inverse(value(p), value(nu), r); });
}

JQ_EXPORT int32_t InvFDist_head(const double* p, const int32_t* nu1, const int32_t* nu2, double* f, int32_t* error) {
  return distribution(f, error, [&](double* r) { return stats::f_inverse(value(p), value(nu1), value(nu2), r); });
}

JQ_EXPORT int32_t InvChiSquare_head(const double* p, const int32_t* nu, double* x, int32_t* error) {
  return distribution(x, error, [&](double* r) { return stats::chi_square_inverse(value(p), value(nu), r); });
}
