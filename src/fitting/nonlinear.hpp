// Levenberg-Marquardt for the nonlinear curve models (exponential, power,
// Gaussian peak): minimises sum |w_i| (y_i - f(x_i; p))^2 over p.
#pragma once
#include <cstdint>
#include <functional>

namespace jq::fit {

// Writes the model's value at x and its derivatives by each parameter.
using Model = std::function<double(double x, const double* p, double* grad)>;

// Refines p (count params, at most 8) from its start. The damped normal
// equations (J^T W J + lambda diag(J^T W J)) d = J^T W r are solved through
// the LU solver; lambda grows tenfold until a step lowers the SSE and
// shrinks tenfold after one does. Stops when every parameter moves by at
// most tol relative (or the SSE stalls), after 200 steps at most. 0, or
// kNoMemory. With lo and hi (both or neither) every trial point is clipped
// into the box [lo, hi] (projected steps), so p stays inside it.
int32_t levenberg_marquardt(const Model& f, const double* x, const double* y, const double* w, int32_t n,
                            int32_t params, double tol, double* p, const double* lo = nullptr,
                            const double* hi = nullptr);

}  // namespace jq::fit
