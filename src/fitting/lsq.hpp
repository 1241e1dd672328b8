// Least-squares core of the fits: one solver with method codes, and the
// models built on it (straight line, polynomial with fixed coefficients,
// exponential, power and logarithmic curves).
//
// Routines take plain pointers; callers have checked lengths and finiteness.
// Weights are used by absolute value; a null weight pointer means all 1.
#pragma once
#include <cstdint>
#include <functional>

namespace jq::fit {

// Method codes of solve_least_squares.
enum Method : int32_t { kSvd = 0, kQr1 = 1, kQr2 = 2, kQr3 = 3, kNormalLu = 4, kNormalCholesky = 5, kSvdCutoff = 6 };

// (1/n) sum |w_i| (y_i - f_i)^2, evaluated as |w|((y - 2f) y + f^2).
double weighted_mse(const double* y, const double* f, const double* w, int64_t n);

// Coefficients c (cols) minimising sum |w_i| (y_i - (A c)_i)^2 for a
// row-major rows x cols design A. Optional outputs (null to skip): the
// covariance factor (cols x cols, unscaled), the best fit A c (rows) and its
// weighted MSE (both or neither). kWarnRankDeficient when singular values
// were dropped.
int32_t solve_least_squares(const double* a, int32_t rows, int32_t cols, const double* y, const double* w,
                            int32_t method, double* coef, double* cov, double* fit, double* mse);

// Straight line by weighted sums; mse (may be null) uses the caller's weights.
int32_t line_fit(const double* x, const double* y, const double* w, int32_t n, double* slope, double* intercept,
                 double* fit, double* mse);

// Solves a weighted design problem (rows x cols, data y) for its coefficients.
using DesignSolve =
    std::function<int32_t(const double* a, int32_t rows, int32_t cols, const double* y, const double* w, double* c)>;
// The plain least-squares DesignSolve of a method code.
DesignSolve least_squares_solver(int32_t method);

// Polynomial of the given order; fixed (order + 1 entries, NaN = free) holds
// the coefficients the caller fixed. The free ones come from solve on the
// design of their powers and y less the fixed terms. fit (n) and coef
// (order + 1) are written; mse is the weighted MSE of the whole curve.
int32_t poly_fit(const double* x, const double* y, const double* w, int32_t n, int32_t order, const double* fixed,
                 const DesignSolve& solve, double* coef, double* fit, double* mse);
// Row-major n x (order + 1) design of powers x^0 .. x^order.
void vandermonde(const double* x, int64_t n, int32_t order, double* a);
double poly_eval(const double* c, int32_t order, double x);

// Curve models: y = a e^(b x), y = a x^b, y = a + b ln x (coefficients a, b)
// and the Gaussian peak y = a e^(-((x - c)/s)^2 / 2) (a, c, s).
// kLine, y = p0 x + p1, serves the bounded fits only.
enum Curve : int32_t { kExponential, kPower, kLogarithmic, kGaussian, kLine };
inline int32_t curve_params(Curve kind) { return kind == kGaussian ? 3 : 2; }
// The model's value at x; its derivatives by each coefficient go to g.
double curve_gradient(Curve kind, double x, const double* p, double* g);
// Fits a curve: a start from a linear form (ln|y| against x or ln x; the
// logarithmic curve is linear; ln y as a parabola near the peak), refined
// by Levenberg-Marquardt to relative tolerance tol (<= 0: 1e-12).
// kNonPositiveLog when the data leave the model's domain. p receives
// curve_params(kind) coefficients; fit (n) and mse (may be null) follow.
int32_t curve_fit(Curve kind, const double* x, const double* y, const double* w, int32_t n, double tol, double* p,
                  double* fit, double* mse);

// A curve with each coefficient held in [lo_k, hi_k] (lo_k <= hi_k, infinite
// ends allowed). The straight line y = p0 x + p1 (kind kLine) is solved
// exactly: the best of the unconstrained solution, the four edges and the
// four corners of the box. The other curves start from their unbounded fit
// clipped into the box and refine by projected Levenberg-Marquardt.
int32_t bounded_fit(Curve kind, const double* x, const double* y, const double* w, int32_t n, const double* lo,
                    const double* hi, double* p, double* fit, double* mse);

}  // namespace jq::fit
