// Goodness of fit and the confidence and prediction bounds of a fit.
#pragma once
#include <cstdint>

namespace jq::fit {

// SSE, R^2 and RMSE of a fit f to y with optional weights (used with their
// sign). dof below 1 means n - 2; the caller has checked dof < n.
void goodness_of_fit(const double* y, const double* f, const double* w, int32_t n, int32_t dof, double* sse,
                     double* r2, double* rmse);

// Student t quantile at probability p with dof degrees of freedom, by
// bisection on [-10000, 10000] to a width of 0.0001.
int32_t t_quantile(double p, double dof, double* t);

// Leverages h_i = a_i (A^T W A)^+ a_i^T of a row-major n x m design (the
// diagonal of the hat matrix; w null means no weights).
int32_t leverages(const double* a, int32_t n, int32_t m, const double* w, double* h);

// Half-widths of the bounds of a fit whose design (or Jacobian at the
// optimum) is the row-major n x m matrix a: confidence bounds of the curve,
// or with predict those of a new observation. f is the fitted curve; lower
// and upper receive f -+ the half-width.
int32_t fit_bounds(const double* a, int32_t n, int32_t m, const double* y, const double* f, const double* w,
                   double level, bool predict, double* lower, double* upper);

}  // namespace jq::fit
