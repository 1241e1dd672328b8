// Curve-fitting exports. Most return their status; the Coef members store it
// in a trailing argument. On an error every array output is emptied and
// every scalar output (coefficients, MSE, goodness figures) reads NaN.
#include <cmath>
#include <limits>

#include "fitting/bounds.hpp"
#include "fitting/lsq.hpp"
#include "fitting/robust.hpp"
#include "frame/export.hpp"
#include "jqanlys.h"
#include "linalg/frame.hpp"

using namespace jq;
using namespace jq::fit;

namespace {

using In = Array1<const double>;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// How a fit is solved: plain least squares, or a robust scheme with its
// tolerance and iteration limit.
struct FitScheme {
  fit::Scheme kind = kLeastSquares;
  double tol = 0.0;
  int32_t max_iter = 0;
};

bool non_finite(const In& a) { return linalg::has_non_finite(a.data(), a.size()); }
// Weights given or not: count 0, or the point count.
bool bad_weights(const In& w, int32_t n) { return w.size() != 0 && w.size() != n; }
const double* weights_or_null(const In& w) { return w.size() > 0 ? w.data() : nullptr; }

// Sets the scalar outputs to NaN when the code is an error; returns the code.
template <class... D> int32_t scalars(int32_t code, D*... s) {
  if (code < 0) ((s ? (void)(*s = kNaN) : (void)0), ...);
  return code;
}

// Shared checks of a data set (X, Y, optional weights): lengths, then the
// minimum count, then finiteness.
int32_t data_checks(const In& x, const In& y, const In& w, int32_t min_n, int32_t short_code) {
  if (x.size() != y.size() || bad_weights(w, y.size())) return kLengthMismatch;
  if (y.size() < min_n) return short_code;
  return non_finite(x) || non_finite(y) || non_finite(w) ? kNonFiniteMatrix : kOk;
}

// --- straight line -------------------------------------------------------

int32_t line_checks(const In& x, const In& y, const In& w) {
  if (x.size() != y.size() || bad_weights(w, y.size())) return kLengthMismatch;
  if (y.size() < 2) return kFewerThan2;
  if (w.size() == 0) return kOk;
  int32_t zeros = 0;
  for (int32_t i = 0; i < w.size(); ++i) {
    if (std::isnan(w[i])) return kNonFiniteMatrix;
    zeros += w[i] == 0.0;
  }
  // Only exactly n - 1 zeros is refused; all zeros pass, as they always have.
  return zeros == y.size() - 1 ? kAllButOneWeightZero : kOk;
}

int32_t line_export(Handle yh, Handle xh, Handle wh, Handle fit, double* slope, double* intercept, double* mse) {
  In y(yh), x(xh), w(wh);
  Out<double> f(fit);
  Outputs out(f);
  int32_t code = line_checks(x, y, w);
  if (!code && !out.size(f, y.size())) code = kNoMemory;
  double b = kNaN, c = kNaN, e = kNaN;
  if (!code) code = line_fit(x.data(), y.data(), weights_or_null(w), y.size(), &b, &c, f.data(), &e);
  if (slope) *slope = b;
  if (intercept) *intercept = c;
  if (mse) *mse = e;
  return scalars(out.finish(code), slope, intercept, mse);
}

int32_t line_coef_export(Handle yh, Handle xh, Handle wh, double* slope, double* intercept, int32_t* status) {
  In y(yh), x(xh), w(wh);
  int32_t code = line_checks(x, y, w);
  double b = kNaN, c = kNaN;
  if (!code) code = line_fit(x.data(), y.data(), weights_or_null(w), y.size(), &b, &c, nullptr, nullptr);
  if (slope) *slope = b;
  if (intercept) *intercept = c;
  if (status) *status = scalars(code, slope, intercept);
  return 0;
}

// --- polynomial ----------------------------------------------------------

int32_t poly_export(Handle xh, Handle yh, int32_t order, Handle wh, int32_t method, Handle idx, Handle vals,
                    Handle fit, Handle coef, double* mse, FitScheme scheme = {}) {
  In x(xh), y(yh), w(wh), v(vals);
  Array1<const int32_t> k(idx);
  Out<double> f(fit), c(coef);
  Outputs out(f, c);
  const int32_t n = y.size();
  int32_t code = x.size() != n || bad_weights(w, n) || k.size() != v.size() ? kLengthMismatch : kOk;
  if (!code && order < 0) code = kNegativeOrder;
  if (!code && int64_t{n} <= int64_t{order} - std::max(k.size(), 0)) code = kFewerPointsThanCoefs;
  if (!code && (non_finite(x) || non_finite(y) || non_finite(w) || non_finite(v))) code = kNonFiniteMatrix;
  if (!code && order >= 0x7FFFFFFF) code = kNoMemory;
  if (!code && (!out.size(f, n) || !out.size(c, order + 1))) code = kNoMemory;
  Scratch<double> fixed;
  if (!code && k.size() > 0) {
    if (fixed.allocate(size_t(order) + 1)) {
      code = kNoMemory;
    } else {
      for (int32_t p = 0; p <= order; ++p) fixed[p] = kNaN;
      // Indices outside 0..order are ignored.
      for (int32_t i = 0; i < k.size(); ++i)
        if (k[i] >= 0 && k[i] <= order) fixed[k[i]] = v[i];
    }
  }
  double e = kNaN;
  if (!code) {
    const DesignSolve solve = [&](const double* a, int32_t rows, int32_t cols, const double* yr, const double* wr,
                                  double* cr) {
      // The curve comes from the whole polynomial afterwards; a plain solve
      // needs no fit of its own.
      if (scheme.kind == kLeastSquares)
        return solve_least_squares(a, rows, cols, yr, wr, method, cr, nullptr, nullptr, nullptr);
      Scratch<double> fr;
      double er;
      if (fr.allocate(rows)) return int32_t{kNoMemory};
      return design_fit(scheme.kind, a, rows, cols, yr, wr, method, scheme.tol, scheme.max_iter, cr, fr.data(), &er,
                        nullptr);
    };
    code = poly_fit(x.data(), y.data(), weights_or_null(w), n, order, fixed.data(), solve, c.data(), f.data(), &e);
    if (code == kOk && k.size() > 0 && order > 25) code = kWarnHighOrder;
  }
  if (mse) *mse = e;
  return scalars(out.finish(code), mse);
}

// --- general linear ------------------------------------------------------

int32_t general_export(Handle design, Handle yh, Handle wh, int32_t method, Handle fit, Handle coef, double* mse,
                       Handle cov, FitScheme scheme = {}) {
  Array2<const double> a(design);
  In y(yh), w(wh);
  Out<double> f(fit), c(coef);
  Out2<double> v(cov);
  Outputs out(f, c, v);
  const int32_t n = y.size(), m = a.cols();
  int32_t code = a.rows() != n || bad_weights(w, n) ? kLengthMismatch : kOk;
  if (!code && m < 1) code = kBadOrder;
  if (!code && n < m) code = kFewerPointsThanCoefs;
  if (!code && (method < 0 || method > 6)) code = kBadSelector;
  if (!code && (linalg::has_non_finite(a.data(), int64_t{n} * m) || non_finite(y) || non_finite(w)))
    code = kNonFiniteMatrix;
  if (!code && (!out.size(f, n) || !out.size(c, m) || !out.size(v, m, m))) code = kNoMemory;
  double e = kNaN;
  if (!code)
    code = design_fit(scheme.kind, a.data(), n, m, y.data(), weights_or_null(w), method, scheme.tol, scheme.max_iter,
                      c.data(), f.data(), &e, v.data());
  if (mse) *mse = e;
  return scalars(out.finish(code), mse);
}

// --- exponential, power, logarithmic --------------------------------------

// Standard deviations become weights 1/sigma^2, a zero deviation weight 1.
int32_t deviations_to_weights(const In& sd, Scratch<double>& w) {
  if (sd.size() < 1) return kOk;
  if (w.allocate(sd.size())) return kNoMemory;
  for (int32_t i = 0; i < sd.size(); ++i) w[i] = sd[i] == 0.0 ? 1.0 : 1.0 / (sd[i] * sd[i]);
  return kOk;
}

// Scalar coefficient outputs of a curve: two, or three for the Gaussian.
struct Coefs {
  double* p[3];
  void set(const double* v) {
    for (double* q : p)
      if (q) *q = *v++;
  }
  int32_t nan_on(int32_t code) { return scalars(code, p[0], p[1], p[2]); }
};

// Fits after the checks; fit has room for every point. sd holds standard
// deviations (weights 1/sd^2) or, for the Gaussian, weights.
int32_t curve_run(Curve kind, const In& y, const In& x, const In& sd, double* fit, Coefs out, double* mse) {
  Scratch<double> w;
  const bool weights = kind == kGaussian;
  int32_t code = weights ? kOk : deviations_to_weights(sd, w);
  double p[3] = {kNaN, kNaN, kNaN}, e = kNaN;
  if (!code)
    code = curve_fit(kind, x.data(), y.data(), weights ? weights_or_null(sd) : w.data(), y.size(), 1e-10, p, fit, &e);
  out.set(p);
  if (mse) *mse = e;
  scalars(code, mse);
  return out.nan_on(code);
}

// Checks of a curve's data: the Gaussian needs more than 3 points.
int32_t curve_checks(Curve kind, const In& x, const In& y, const In& w) {
  return kind == kGaussian ? data_checks(x, y, w, 4, kFewerThan4) : data_checks(x, y, w, 2, kFewerThan2);
}

int32_t curve_export(Curve kind, Handle yh, Handle xh, Handle sdh, Handle fit, Coefs coefs, double* mse) {
  In y(yh), x(xh), sd(sdh);
  Out<double> f(fit);
  Outputs out(f);
  int32_t code = curve_checks(kind, x, y, sd);
  if (!code && !out.size(f, y.size())) code = kNoMemory;
  if (code) {
    scalars(code, mse);
    return coefs.nan_on(out.fail(code));
  }
  return out.finish(curve_run(kind, y, x, sd, f.data(), coefs, mse));
}

int32_t curve_coef_export(Curve kind, Handle yh, Handle xh, Handle sdh, Coefs coefs, int32_t* status) {
  In y(yh), x(xh), sd(sdh);
  int32_t code = curve_checks(kind, x, y, sd);
  Scratch<double> fit;
  if (!code && fit.allocate(y.size())) code = kNoMemory;
  code = code ? coefs.nan_on(code) : curve_run(kind, y, x, sd, fit.data(), coefs, nullptr);
  if (status) *status = code;
  return 0;
}

// --- robust straight lines and curves ---------------------------------------

// Robust straight line: the design [1, x] through the robust scheme.
int32_t robust_line_export(Handle yh, Handle xh, Handle wh, FitScheme scheme, Handle fit, double* slope,
                           double* intercept, double* mse) {
  In y(yh), x(xh), w(wh);
  Out<double> f(fit);
  Outputs out(f);
  const int32_t n = y.size();
  int32_t code = data_checks(x, y, w, 2, kFewerThan2);
  if (!code && !out.size(f, n)) code = kNoMemory;
  Scratch<double> a;
  if (!code && a.allocate(size_t(n) * 2)) code = kNoMemory;
  double c[2] = {kNaN, kNaN}, e = kNaN;
  if (!code) {
    for (int32_t i = 0; i < n; ++i) {
      a[2 * size_t(i)] = 1.0;
      a[2 * size_t(i) + 1] = x[i];
    }
    code = design_fit(scheme.kind, a.data(), n, 2, y.data(), weights_or_null(w), kQr1, scheme.tol, scheme.max_iter,
                      c, f.data(), &e, nullptr);
  }
  if (slope) *slope = c[1];
  if (intercept) *intercept = c[0];
  if (mse) *mse = e;
  return scalars(out.finish(code), slope, intercept, mse);
}

// A curve through a scheme: plain, LAR or bisquare around the curve fit, or
// around the bounded fit when lo and hi are given. The bisquare leverages
// come from the model's Jacobian at the first fit.
int32_t curve_scheme_export(Curve kind, Handle yh, Handle xh, Handle wh, const double* lo, const double* hi,
                            FitScheme scheme, Handle fit, Coefs coefs, double* mse, int32_t code = kOk) {
  In y(yh), x(xh), w(wh);
  Out<double> f(fit);
  Outputs out(f);
  const int32_t n = y.size(), m = curve_params(kind);
  if (!code) code = curve_checks(kind, x, y, w);
  if (!code && !out.size(f, n)) code = kNoMemory;
  double c[3] = {kNaN, kNaN, kNaN}, e = kNaN;
  if (!code) {
    const WeightedSolve solve = [&](const double* wt, double* cc, double* ff, double* ee, double*) {
      return lo ? bounded_fit(kind, x.data(), y.data(), wt, n, lo, hi, cc, ff, ee)
                : curve_fit(kind, x.data(), y.data(), wt, n, 1e-10, cc, ff, ee);
    };
    const DesignAt jacobian = [&](const double* cc, double* d) {
      for (int32_t i = 0; i < n; ++i) curve_gradient(kind, x[i], cc, d + size_t(i) * m);
      return int32_t{kOk};
    };
    const double* w0 = weights_or_null(w);
    if (scheme.kind == kLar)
      code = lar_fit(n, m, y.data(), w0, scheme.tol, scheme.max_iter, -1.0, solve, c, f.data(), &e, nullptr);
    else if (scheme.kind == kBisquare)
      code = bisquare_fit(n, m, y.data(), w0, scheme.tol, scheme.max_iter, jacobian, solve, c, f.data(), &e, nullptr);
    else
      code = solve(w0, c, f.data(), &e, nullptr);
  }
  coefs.set(c);
  if (mse) *mse = e;
  scalars(code, mse);
  return coefs.nan_on(out.finish(code));
}

int32_t robust_curve_export(Curve kind, Handle yh, Handle xh, Handle wh, FitScheme scheme, Handle fit, Coefs coefs,
                            double* mse) {
  return curve_scheme_export(kind, yh, xh, wh, nullptr, nullptr, scheme, fit, coefs, mse);
}

// Bounded curves: one interval [lower_k, upper_k] per coefficient, checked
// after the data: counts (-20002), NaN (-20068), lower above upper (-20061).
int32_t bounded_export(Curve kind, Handle yh, Handle xh, Handle wh, Handle lower, Handle upper, FitScheme scheme,
                       Handle fit, Coefs coefs, double* mse) {
  In lo(lower), hi(upper), y(yh), x(xh), w(wh);
  const int32_t m = curve_params(kind);
  int32_t code = curve_checks(kind, x, y, w);
  if (!code && (lo.size() != m || hi.size() != m)) code = kLengthMismatch;
  for (int32_t k = 0; !code && k < m; ++k) {
    if (std::isnan(lo[k]) || std::isnan(hi[k])) code = kNonFiniteMatrix;
    else if (lo[k] > hi[k]) code = kBadSelector;
  }
  return curve_scheme_export(kind, yh, xh, wh, code ? nullptr : lo.data(), code ? nullptr : hi.data(), scheme, fit,
                             coefs, mse, code);
}

// --- goodness of fit and bounds -------------------------------------------

int32_t goodness_export(Handle yh, Handle fh, Handle wh, int32_t dof, double* sse, double* r2, double* rmse) {
  In y(yh), f(fh), w(wh);
  const int32_t n = y.size();
  int32_t code = n < 1 ? kEmptyInput : f.size() != n || bad_weights(w, n) ? kLengthMismatch : kOk;
  if (!code && n < 2) code = kFewerThan2;
  if (!code && dof >= n) code = kBadDegreesOfFreedom;
  double e = kNaN, r = kNaN, q = kNaN;
  if (!code) goodness_of_fit(y.data(), f.data(), weights_or_null(w), n, dof, &e, &r, &q);
  if (sse) *sse = e;
  if (r2) *r2 = r;
  if (rmse) *rmse = q;
  return scalars(code, sse, r2, rmse);
}

// Checks shared by the bound exports, in order: lengths, the coefficient
// count (when the caller gives coefficients), the level, finite weights.
int32_t bounds_checks(const In& x, const In& y, const In& w, int32_t coefs, double level) {
  if (x.size() != y.size() || bad_weights(w, y.size())) return kLengthMismatch;
  if (coefs < 1 || y.size() < 1) return kEmptyInput;
  if (!(level > 0.0 && level < 1.0)) return kNotInUnitInterval;
  return non_finite(w) ? kNonFiniteMatrix : kOk;
}

// Builds the n x m design (or Jacobian) and the fitted curve, then the bounds.
template <class Build>
int32_t bounds_run(const In& x, const In& y, const In& w, int32_t m, double level, bool predict, double* lo,
                   double* up, Build build) {
  const int32_t n = y.size();
  Scratch<double> a, f;
  if (a.allocate(size_t(n) * m) || f.allocate(n)) return kNoMemory;
  if (const int32_t c = build(a.data(), f.data())) return c;
  return fit_bounds(a.data(), n, m, y.data(), f.data(), weights_or_null(w), level, predict, lo, up);
}

int32_t poly_bounds_export(Handle xh, Handle yh, Handle wh, const double* c, int32_t m, double level, bool predict,
                           Handle lower, Handle upper) {
  In x(xh), y(yh), w(wh);
  Out<double> lo(lower), up(upper);
  Outputs out(lo, up);
  int32_t code = bounds_checks(x, y, w, m, level);
  if (!code && (!out.size(lo, y.size()) || !out.size(up, y.size()))) code = kNoMemory;
  if (code) return out.fail(code);
  return out.finish(bounds_run(x, y, w, m, level, predict, lo.data(), up.data(), [&](double* a, double* f) -> int32_t {
    vandermonde(x.data(), x.size(), m - 1, a);
    for (int32_t i = 0; i < x.size(); ++i) f[i] = poly_eval(c, m - 1, x[i]);
    return kOk;
  }));
}

int32_t poly_bounds(Handle x, Handle y, Handle w, Handle coef, double level, bool predict, Handle lo, Handle up) {
  In c(coef);
  return poly_bounds_export(x, y, w, c.data(), c.size(), level, predict, lo, up);
}

int32_t line_bounds(Handle x, Handle y, Handle w, double slope, double intercept, double level, bool predict,
                    Handle lo, Handle up) {
  const double c[2] = {intercept, slope};
  return poly_bounds_export(x, y, w, c, 2, level, predict, lo, up);
}

// The curve is fitted first; its Jacobian at the optimum is the design.
int32_t curve_bounds(Curve kind, Handle xh, Handle yh, Handle wh, double level, bool predict, Handle coef,
                     Handle lower, Handle upper) {
  In x(xh), y(yh), w(wh);
  Out<double> co(coef), lo(lower), up(upper);
  Outputs out(co, lo, up);
  const int32_t m = curve_params(kind);
  int32_t code = bounds_checks(x, y, w, m, level);
  if (!code) code = curve_checks(kind, x, y, w);
  if (!code && (!out.size(co, m) || !out.size(lo, y.size()) || !out.size(up, y.size()))) code = kNoMemory;
  if (code) return out.fail(code);
  return out.finish(bounds_run(x, y, w, m, level, predict, lo.data(), up.data(), [&](double* a, double* f) -> int32_t {
    const int32_t c = curve_fit(kind, x.data(), y.data(), weights_or_null(w), y.size(), 1e-10, co.data(), f, nullptr);
    if (c < 0) return c;
    for (int32_t i = 0; i < x.size(); ++i) curve_gradient(kind, x[i], co.data(), a + size_t(i) * m);
    return kOk;
  }));
}

// --- outlier removal ------------------------------------------------------

// Marks the points to drop (mask), then writes the kept ones. The checks
// come first: lengths (-20002), empty data (-20003), then `pick`'s own.
template <class Pick>
int32_t remove_export(Handle xh, Handle yh, Handle xo, Handle yo, Handle mask, int32_t code, Pick pick) {
  In x(xh), y(yh);
  Out<double> ox(xo), oy(yo);
  Out<uint8_t> om(mask);
  Outputs out(ox, oy, om);
  const int32_t n = y.size();
  if (!code) code = x.size() != n ? kLengthMismatch : n < 1 ? kEmptyInput : kOk;
  if (!code && !out.size(om, n)) code = kNoMemory;
  if (code) return out.fail(code);
  uint8_t* drop = om.data();
  pick(x.data(), y.data(), n, drop);
  int32_t kept = 0;
  for (int32_t i = 0; i < n; ++i) kept += drop[i] == 0;
  if (!out.size(ox, kept) || !out.size(oy, kept)) return out.fail(kNoMemory);
  for (int32_t i = 0, k = 0; i < n; ++i) {
    if (drop[i]) continue;
    ox.data()[k] = x[i];
    oy.data()[k++] = y[i];
  }
  return kOk;
}

}  // namespace

JQ_EXPORT int32_t LinFit_head(Handle y, Handle x, Handle w, Handle fit, double* slope, double* intercept,
                              double* mse) {
  return line_export(y, x, w, fit, slope, intercept, mse);
}
JQ_EXPORT int32_t LinFitCoef_head(Handle y, Handle x, double* slope, double* intercept, int32_t* status) {
  return line_coef_export(y, x, nullptr, slope, intercept, status);
}
JQ_EXPORT int32_t LinFitCoef80_head(Handle y, Handle x, Handle w, double* slope, double* intercept,
                                    int32_t* status) {
  return line_coef_export(y, x, w, slope, intercept, status);
}

JQ_EXPORT int32_t PolyFit_head(Handle x, Handle y, int32_t order, int32_t method, Handle fit, Handle coef,
                               double* mse) {
  return poly_export(x, y, order, nullptr, method, nullptr, nullptr, fit, coef, mse);
}
JQ_EXPORT int32_t PolyFit80_head(Handle x, Handle y, int32_t order, int32_t method, Handle idx, Handle vals,
                                 Handle fit, Handle coef, double* mse) {
  return poly_export(x, y, order, nullptr, method, idx, vals, fit, coef, mse);
}
JQ_EXPORT int32_t PolyFit81_head(Handle x, Handle y, int32_t order, Handle w, int32_t method, Handle idx,
                                 Handle vals, Handle fit, Handle coef, double* mse) {
  return poly_export(x, y, order, w, method, idx, vals, fit, coef, mse);
}

JQ_EXPORT int32_t GenLSFit_head(Handle design, Handle y, int32_t method, Handle fit, Handle coef, double* mse,
                                Handle cov) {
  return general_export(design, y, nullptr, method, fit, coef, mse, cov);
}
JQ_EXPORT int32_t GenLSFit80_head(Handle design, Handle y, Handle w, int32_t method, Handle fit, Handle coef,
                                  double* mse, Handle cov) {
  return general_export(design, y, w, method, fit, coef, mse, cov);
}

JQ_EXPORT int32_t ExpFit_head(Handle y, Handle x, Handle fit, double* a, double* b, double* mse) {
  return curve_export(kExponential, y, x, nullptr, fit, {a, b, nullptr}, mse);
}
JQ_EXPORT int32_t ExpFit80_head(Handle y, Handle x, Handle sd, Handle fit, double* a, double* b, double* mse) {
  return curve_export(kExponential, y, x, sd, fit, {a, b, nullptr}, mse);
}
JQ_EXPORT int32_t ExpFitCoef_head(Handle y, Handle x, double* a, double* b, int32_t* status) {
  return curve_coef_export(kExponential, y, x, nullptr, {a, b, nullptr}, status);
}
JQ_EXPORT int32_t ExpFitCoef80_head(Handle y, Handle x, Handle sd, double* a, double* b, int32_t* status) {
  return curve_coef_export(kExponential, y, x, sd, {a, b, nullptr}, status);
}
JQ_EXPORT int32_t PowerFit_head(Handle y, Handle x, Handle fit, double* a, double* b, double* mse) {
  return curve_export(kPower, y, x, nullptr, fit, {a, b, nullptr}, mse);
}
JQ_EXPORT int32_t PowerFitCoef_head(Handle y, Handle x, double* a, double* b, int32_t* status) {
  return curve_coef_export(kPower, y, x, nullptr, {a, b, nullptr}, status);
}
JQ_EXPORT int32_t LogFit_head(Handle y, Handle x, Handle fit, double* a, double* b, double* mse) {
  return curve_export(kLogarithmic, y, x, nullptr, fit, {a, b, nullptr}, mse);
}
JQ_EXPORT int32_t LogFitCoef_head(Handle y, Handle x, double* a, double* b, int32_t* status) {
  return curve_coef_export(kLogarithmic, y, x, nullptr, {a, b, nullptr}, status);
}

JQ_EXPORT int32_t GoodnessOfFit_head(Handle y, Handle fit, Handle w, int32_t dof, double* sse, double* r2,
                                     double* rmse) {
  return goodness_export(y, fit, w, dof, sse, r2, rmse);
}

JQ_EXPORT int32_t ConfBndPoly_head(Handle x, Handle y, Handle w, Handle coef, double level, Handle lo, Handle up) {
  return poly_bounds(x, y, w, coef, level, false, lo, up);
}
JQ_EXPORT int32_t PredBndPoly_head(Handle x, Handle y, Handle w, Handle coef, double level, Handle lo, Handle up) {
  return poly_bounds(x, y, w, coef, level, true, lo, up);
}
JQ_EXPORT int32_t ConfBndLinear_head(Handle x, Handle y, Handle w, double slope, double intercept, double level,
                                     Handle lo, Handle up) {
  return line_bounds(x, y, w, slope, intercept, level, false, lo, up);
}
JQ_EXPORT int32_t PredBndLinear_head(Handle x, Handle y, Handle w, double slope, double intercept, double level,
                                     Handle lo, Handle up) {
  return line_bounds(x, y, w, slope, intercept, level, true, lo, up);
}
JQ_EXPORT int32_t ConfBndExp_head(Handle x, Handle y, Handle w, double level, Handle coef, Handle lo, Handle up) {
  return curve_bounds(kExponential, x, y, w, level, false, coef, lo, up);
}
JQ_EXPORT int32_t PredBndExp_head(Handle x, Handle y, Handle w, double level, Handle coef, Handle lo, Handle up) {
  return curve_bounds(kExponential, x, y, w, level, true, coef, lo, up);
}
JQ_EXPORT int32_t ConfBndPower_head(Handle x, Handle y, Handle w, double level, Handle coef, Handle lo, Handle up) {
  return curve_bounds(kPower, x, y, w, level, false, coef, lo, up);
}
JQ_EXPORT int32_t PredBndPower_head(Handle x, Handle y, Handle w, double level, Handle coef, Handle lo, Handle up) {
  return curve_bounds(kPower, x, y, w, level, true, coef, lo, up);
}
JQ_EXPORT int32_t ConfBndLog_head(Handle x, Handle y, Handle w, double level, Handle coef, Handle lo, Handle up) {
  return curve_bounds(kLogarithmic, x, y, w, level, false, coef, lo, up);
}
JQ_EXPORT int32_t PredBndLog_head(Handle x, Handle y, Handle w, double level, Handle coef, Handle lo, Handle up) {
  return curve_bounds(kLogarithmic, x, y, w, level, true, coef, lo, up);
}

JQ_EXPORT int32_t GenLARFit_head(Handle design, Handle y, Handle w, int32_t method, double tol, int32_t max_iter,
                                 Handle fit, Handle coef, double* mse, Handle cov) {
  return general_export(design, y, w, method, fit, coef, mse, cov, {kLar, tol, max_iter});
}
JQ_EXPORT int32_t GenBisquareFit_head(Handle design, Handle y, int32_t method, double tol, int32_t max_iter,
                                      Handle fit, Handle coef, double* mse, Handle cov) {
  return general_export(design, y, nullptr, method, fit, coef, mse, cov, {kBisquare, tol, max_iter});
}
JQ_EXPORT int32_t GenBisquareFit_Weight_head(Handle design, Handle y, Handle w, int32_t method, double tol,
                                             int32_t max_iter, Handle fit, Handle coef, double* mse, Handle cov) {
  return general_export(design, y, w, method, fit, coef, mse, cov, {kBisquare, tol, max_iter});
}
JQ_EXPORT int32_t LARPolyFit_head(Handle x, Handle y, int32_t order, Handle w, int32_t method, Handle idx,
                                  Handle vals, double tol, int32_t max_iter, Handle fit, Handle coef, double* mse) {
  return poly_export(x, y, order, w, method, idx, vals, fit, coef, mse, {kLar, tol, max_iter});
}
JQ_EXPORT int32_t BiPolyFit_head(Handle x, Handle y, int32_t order, Handle w, int32_t method, Handle idx,
                                 Handle vals, double tol, int32_t max_iter, Handle fit, Handle coef, double* mse) {
  return poly_export(x, y, order, w, method, idx, vals, fit, coef, mse, {kBisquare, tol, max_iter});
}
JQ_EXPORT int32_t LARLinearFit_head(Handle y, Handle x, Handle w, double tol, int32_t max_iter, Handle fit,
                                    double* slope, double* intercept, double* mse) {
  return robust_line_export(y, x, w, {kLar, tol, max_iter}, fit, slope, intercept, mse);
}
JQ_EXPORT int32_t BiLinearFit_head(Handle y, Handle x, Handle w, double tol, int32_t max_iter, Handle fit,
                                   double* slope, double* intercept, double* mse) {
  return robust_line_export(y, x, w, {kBisquare, tol, max_iter}, fit, slope, intercept, mse);
}
JQ_EXPORT int32_t LARExpFit_head(Handle y, Handle x, Handle w, double tol, int32_t max_iter, Handle fit, double* a,
                                 double* b, double* mse) {
  return robust_curve_export(kExponential, y, x, w, {kLar, tol, max_iter}, fit, {a, b, nullptr}, mse);
}
JQ_EXPORT int32_t BiExpFit_head(Handle y, Handle x, Handle w, double tol, int32_t max_iter, Handle fit, double* a,
                                double* b, double* mse) {
  return robust_curve_export(kExponential, y, x, w, {kBisquare, tol, max_iter}, fit, {a, b, nullptr}, mse);
}
JQ_EXPORT int32_t LARPowerFit_head(Handle y, Handle x, Handle w, double tol, int32_t max_iter, Handle fit, double* a,
                                   double* b, double* mse) {
  return robust_curve_export(kPower, y, x, w, {kLar, tol, max_iter}, fit, {a, b, nullptr}, mse);
}
JQ_EXPORT int32_t BiPowerFit_head(Handle y, Handle x, Handle w, double tol, int32_t max_iter, Handle fit, double* a,
                                  double* b, double* mse) {
  return robust_curve_export(kPower, y, x, w, {kBisquare, tol, max_iter}, fit, {a, b, nullptr}, mse);
}
JQ_EXPORT int32_t LARLogFit_head(Handle y, Handle x, Handle w, double tol, int32_t max_iter, Handle fit, double* a,
                                 double* b, double* mse) {
  return robust_curve_export(kLogarithmic, y, x, w, {kLar, tol, max_iter}, fit, {a, b, nullptr}, mse);
}
JQ_EXPORT int32_t BiLogFit_head(Handle y, Handle x, Handle w, double tol, int32_t max_iter, Handle fit, double* a,
                                double* b, double* mse) {
  return robust_curve_export(kLogarithmic, y, x, w, {kBisquare, tol, max_iter}, fit, {a, b, nullptr}, mse);
}

JQ_EXPORT int32_t GaussianPeakFit_head(Handle y, Handle x, Handle w, Handle fit, double* amplitude, double* centre,
                                       double* sigma, double* mse) {
  return curve_export(kGaussian, y, x, w, fit, {amplitude, centre, sigma}, mse);
}
JQ_EXPORT int32_t GaussianPeakFitCoef_head(Handle y, Handle x, Handle w, double* amplitude, double* centre,
                                           double* sigma, int32_t* status) {
  return curve_coef_export(kGaussian, y, x, w, {amplitude, centre, sigma}, status);
}
JQ_EXPORT int32_t LARGaussFit_head(Handle y, Handle x, Handle w, double tol, int32_t max_iter, Handle fit,
                                   double* amplitude, double* centre, double* sigma, double* mse) {
  return robust_curve_export(kGaussian, y, x, w, {kLar, tol, max_iter}, fit, {amplitude, centre, sigma}, mse);
}
JQ_EXPORT int32_t BiGaussFit_head(Handle y, Handle x, Handle w, double tol, int32_t max_iter, Handle fit,
                                  double* amplitude, double* centre, double* sigma, double* mse) {
  return robust_curve_export(kGaussian, y, x, w, {kBisquare, tol, max_iter}, fit, {amplitude, centre, sigma}, mse);
}
JQ_EXPORT int32_t ConfBndGauss_head(Handle x, Handle y, Handle w, double level, Handle coef, Handle lo, Handle up) {
  return curve_bounds(kGaussian, x, y, w, level, false, coef, lo, up);
}
JQ_EXPORT int32_t PredBndGauss_head(Handle x, Handle y, Handle w, double level, Handle coef, Handle lo, Handle up) {
  return curve_bounds(kGaussian, x, y, w, level, true, coef, lo, up);
}

JQ_EXPORT int32_t BoundLinearFit_head(Handle y, Handle x, Handle w, Handle lower, Handle upper, Handle fit,
                                      double* slope, double* intercept, double* mse) {
  return bounded_export(kLine, y, x, w, lower, upper, {}, fit, {slope, intercept, nullptr}, mse);
}
JQ_EXPORT int32_t BoundLinearFitLAR_head(Handle y, Handle x, Handle w, Handle lower, Handle upper, double tol,
                                         int32_t max_iter, Handle fit, double* slope, double* intercept,
                                         double* mse) {
  return bounded_export(kLine, y, x, w, lower, upper, {kLar, tol, max_iter}, fit, {slope, intercept, nullptr}, mse);
}
JQ_EXPORT int32_t BoundLinearFitBi_head(Handle y, Handle x, Handle w, Handle lower, Handle upper, double tol,
                                        int32_t max_iter, Handle fit, double* slope, double* intercept, double* mse) {
  return bounded_export(kLine, y, x, w, lower, upper, {kBisquare, tol, max_iter}, fit, {slope, intercept, nullptr},
                        mse);
}
JQ_EXPORT int32_t BoundExpFit_head(Handle y, Handle x, Handle w, Handle lower, Handle upper, Handle fit, double* a,
                                   double* b, double* mse) {
  return bounded_export(kExponential, y, x, w, lower, upper, {}, fit, {a, b, nullptr}, mse);
}
JQ_EXPORT int32_t BoundPowerFit_head(Handle y, Handle x, Handle w, Handle lower, Handle upper, Handle fit, double* a,
                                     double* b, double* mse) {
  return bounded_export(kPower, y, x, w, lower, upper, {}, fit, {a, b, nullptr}, mse);
}
JQ_EXPORT int32_t BoundLogFit_head(Handle y, Handle x, Handle w, Handle lower, Handle upper, Handle fit, double* a,
                                   double* b, double* mse) {
  return bounded_export(kLogarithmic, y, x, w, lower, upper, {}, fit, {a, b, nullptr}, mse);
}
JQ_EXPORT int32_t BoundGaussianFit_head(Handle y, Handle x, Handle w, Handle lower, Handle upper, Handle fit,
                                        double* amplitude, double* centre, double* sigma, double* mse) {
  return bounded_export(kGaussian, y, x, w, lower, upper, {}, fit, {amplitude, centre, sigma}, mse);
}

JQ_EXPORT int32_t RmvOutlierRng_head(Handle x, Handle y, double low, double high, Handle x_out, Handle y_out,
                                     Handle removed) {
  const int32_t code = std::isnan(low) || std::isnan(high) ? kNonFiniteMatrix : low > high ? kBadSelector : kOk;
  return remove_export(x, y, x_out, y_out, removed, code, [&](const double*, const double* yv, int32_t n, uint8_t* d) {
    for (int32_t i = 0; i < n; ++i) d[i] = !(yv[i] >= low && yv[i] <= high);
  });
}

JQ_EXPORT int32_t RmvOutlierIndx_head(Handle x, Handle y, Handle indices, Handle x_out, Handle y_out,
                                      Handle removed) {
  Array1<const int32_t> idx(indices);
  return remove_export(x, y, x_out, y_out, removed, kOk, [&](const double*, const double*, int32_t n, uint8_t* d) {
    for (int32_t i = 0; i < n; ++i) d[i] = 0;
    for (int32_t k = 0; k < idx.size(); ++k)  // indices outside the data are ignored
      if (idx[k] >= 0 && idx[k] < n) d[idx[k]] = 1;
  });
}
