// Robust fits by iteratively reweighted least squares: least absolute
// residual (LAR) and Tukey's bisquare. The weighted solve is a callback, so
// that the same iteration serves a design matrix and the nonlinear curves:
//   int32_t solve(const double* w, double* coef, double* fit, double* mse, double* cov)
// writes the coefficients, the fit (n), its weighted MSE and, when cov is
// not null, the covariance factor; it returns 0, a warning or an error.
#pragma once
#include <cstdint>
#include <functional>

namespace jq::fit {

using WeightedSolve = std::function<int32_t(const double* w, double* coef, double* fit, double* mse, double* cov)>;

// The robust iteration: n points, m coefficients, data y, the caller's
// weights w0 (null: all 1), tolerance (<= 0: 0.0001), iteration limit.
// The LAR threshold ends the iteration when a residual measure falls to it
// (-1 disables it). Outputs as for the solve; cov may be null.
int32_t lar_fit(int32_t n, int32_t m, const double* y, const double* w0, double tol, int32_t max_iter,
                double threshold, const WeightedSolve& solve, double* coef, double* fit, double* mse, double* cov);
// Bisquare: design is the n x m matrix whose hat-matrix diagonal gives the
// leverages (for a curve, its Jacobian at the first fit; built by the
// callback after the first solve, may be called once).
using DesignAt = std::function<int32_t(const double* coef, double* design)>;
int32_t bisquare_fit(int32_t n, int32_t m, const double* y, const double* w0, double tol, int32_t max_iter,
                     const DesignAt& design, const WeightedSolve& solve, double* coef, double* fit, double* mse,
                     double* cov);

enum Scheme : int32_t { kLeastSquares, kLar, kBisquare };

// A design problem (row-major n x m) fitted by a scheme around the
// least-squares core with the method code; fit (n) is required, cov may be
// null.
int32_t design_fit(Scheme scheme, const double* a, int32_t n, int32_t m, const double* y, const double* w,
                   int32_t method, double tol, int32_t max_iter, double* coef, double* fit, double* mse, double* cov);

}  // namespace jq::fit
