#include "fitting/robust.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "fitting/bounds.hpp"
#include "fitting/lsq.hpp"
#include "frame/errors.hpp"
#include "frame/scratch.hpp"
#include "linalg/frame.hpp"

namespace jq::fit {

namespace {

constexpr double kDefaultTol = 0.0001;

// Median of n values through a scratch copy; NaN when any value is NaN.
double median(const double* v, int32_t n, double* work) {
  for (int32_t i = 0; i < n; ++i) {
    if (std::isnan(v[i])) return v[i];
    work[i] = v[i];
  }
  const int32_t h = n / 2;
  std::nth_element(work, work + h, work + n);
  const double hi = work[h];
  if (n % 2) return hi;
  return 0.5 * (*std::max_element(work, work + h) + hi);
}

// R = sum |(f - y) w0|.
double residual_measure(const double* y, const double* f, const double* w0, int32_t n) {
  double r = 0.0;
  for (int32_t i = 0; i < n; ++i) r += std::fabs((f[i] - y[i]) * (w0 ? w0[i] : 1.0));
  return r;
}

// Reweighting can settle into a dither of its last bits (or, for LAR, an
// oscillation between fits) that never repeats exactly and never meets a
// tight tolerance. Past this many iterations nothing but that dither moves,
// so the fits stop there instead of running a caller's limit of billions.
constexpr int32_t kIterationCeiling = 10000;

}  // namespace

int32_t lar_fit(int32_t n, int32_t m, const double* y, const double* w0, double tol, int32_t max_iter,
                double threshold, const WeightedSolve& solve, double* coef, double* fit, double* mse, double* cov) {
  if (n < m) return kFewerPointsThanCoefs;
  if (!(tol > 0.0)) tol = kDefaultTol;
  Scratch<double> init, wa, wb, r, work;
  if (init.allocate(n) || wa.allocate(n) || wb.allocate(n) || r.allocate(n) || work.allocate(n)) return kNoMemory;
  for (int32_t i = 0; i < n; ++i) init[i] = w0 ? w0[i] : 1.0;
  double e = 0.0;
  int32_t code = solve(init.data(), coef, fit, &e, nullptr);
  if (code < 0) return code;
  const double r0 = residual_measure(y, fit, w0, n);
  double r_prev = 2.0 * r0, r_cur = r0;
  const double* w_prev = init.data();
  const double* w_cur = init.data();
  max_iter = std::min(max_iter, kIterationCeiling);
  for (int32_t k = 0;; ++k) {
    if (k > 0 && (k >= max_iter || std::fabs(r_prev - r_cur) <= tol * r_prev || r_prev <= threshold ||
                  r_cur <= threshold))
      break;
    for (int32_t i = 0; i < n; ++i) r[i] = std::fabs(y[i] - fit[i]);
    double s = 0.01 * median(r.data(), n, work.data());
    if (std::isnan(s)) return kNonFiniteData;
    if (s == 0.0) s = 1e-7;
    double* w_new = w_cur == wa.data() ? wb.data() : wa.data();
    for (int32_t i = 0; i < n; ++i) w_new[i] = init[i] / std::max(s, r[i]);
    code = solve(w_new, coef, fit, &e, nullptr);
    if (code < 0) return code;
    w_prev = w_cur;
    w_cur = w_new;
    r_prev = r_cur;
    r_cur = residual_measure(y, fit, w0, n);
  }
  // The smallest measure wins; on a tie the earlier fit.
  const double* best = w_cur;
  double r_best = r_cur;
  if (r_prev <= r_best) {
    best = w_prev;
    r_best = r_prev;
  }
  if (r0 <= r_best) best = init.data();
  return solve(best, coef, fit, mse, cov);
}

int32_t bisquare_fit(int32_t n, int32_t m, const double* y, const double* w0, double tol, int32_t max_iter,
                     const DesignAt& design, const WeightedSolve& solve, double* coef, double* fit, double* mse,
                     double* cov) {
  if (n < m) return kFewerPointsThanCoefs;
  if (!(tol > 0.0)) tol = kDefaultTol;
  Scratch<double> init, w, adj, u, dev, work, old;
  if (init.allocate(n) || w.allocate(n) || adj.allocate(n) || u.allocate(n) || dev.allocate(n) ||
      work.allocate(n) || old.allocate(m))
    return kNoMemory;
  for (int32_t i = 0; i < n; ++i) init[i] = w0 ? w0[i] : 1.0;
  double e = 0.0;
  int32_t code = solve(init.data(), coef, fit, &e, nullptr);
  if (code < 0) return code;
  if (!std::isfinite(e)) return kNonFiniteMatrix;

  // Leverages of the design; a lone point (leverage near 1) takes a capped
  // adjustment factor.
  {
    Scratch<double> x;
    if (x.allocate(size_t(n) * size_t(m))) return kNoMemory;
    if (const int32_t c = design(coef, x.data())) return c;
    if (const int32_t c = leverages(x.data(), n, m, nullptr, adj.data())) return c;
    for (int32_t i = 0; i < n; ++i) {
      const double d = adj[i] > 0.9999 ? 1.0 - 0.9999 : 1.0 - adj[i];
      adj[i] = std::sqrt((w0 ? std::fabs(w0[i]) : 1.0) / d);
    }
  }

  // The fits of the two previous iterations. The weights of an iteration
  // depend only on the fit before it, so a fit seen one or two iterations
  // earlier means the iteration has reached a fixed point or a two-cycle and
  // can only repeat itself until the iteration limit: the result at that
  // limit is known then, and a tiny tolerance cannot keep the loop running
  // for billions of solves.
  Scratch<double> back1, back2;
  if (back1.allocate(n) || back2.allocate(n)) return kNoMemory;
  const size_t fit_bytes = sizeof(double) * size_t(n);
  bool last_round = false;
  max_iter = std::min(max_iter, kIterationCeiling);
  const double* last = init.data();
  for (int32_t iter = 0; iter < max_iter && !(e <= tol * 0.0001); ) {
    std::memcpy(back2.data(), back1.data(), fit_bytes);
    std::memcpy(back1.data(), fit, fit_bytes);
    for (int32_t i = 0; i < n; ++i) u[i] = (y[i] - fit[i]) * adj[i];
    const double med = median(u.data(), n, work.data());
    for (int32_t i = 0; i < n; ++i) dev[i] = std::fabs(u[i] - med);
    double mad = median(dev.data(), n, work.data());
    if (std::isnan(mad)) return kNonFiniteData;
    if (mad == 0.0) {
      // Fallback spread: the mean absolute deviation from the median.
      double s = 0.0;
      for (int32_t i = 0; i < n; ++i) s += dev[i];
      mad = s / n;
      if (mad == 0.0) break;
    }
    int32_t zeros = 0;
    for (int32_t i = 0; i < n; ++i) {
      const double t = u[i] * 0.6745 / (4.685 * mad);
      const double b = std::fabs(t) < 1.0 ? (1.0 - t * t) * (1.0 - t * t) : 0.0;
      w[i] = w0 ? b * std::fabs(w0[i]) : b;
      zeros += w[i] == 0.0;
    }
    if (zeros >= n - m) return kRobustFailed;
    std::memcpy(old.data(), coef, sizeof(double) * size_t(m));
    code = solve(w.data(), coef, fit, &e, nullptr);
    if (code < 0) return code;
    if (!std::isfinite(e)) return kRobustFailed;
    last = w.data();
    ++iter;
    if (last_round) break;
    if (iter >= 2 && std::memcmp(fit, back1.data(), fit_bytes) == 0) break;
    if (iter >= 3 && std::memcmp(fit, back2.data(), fit_bytes) == 0) {
      // A two-cycle: the state at the limit is this one or the next.
      if ((max_iter - iter) % 2 == 0) break;
      last_round = true;
      continue;
    }
    if (iter < 2) continue;
    bool settled = true;
    for (int32_t j = 0; j < m && settled; ++j) settled = std::fabs(coef[j] - old[j]) <= tol * std::fabs(coef[j]);
    if (settled) break;
  }
  // The outputs of the last weights, covariance included.
  return solve(last, coef, fit, mse, cov);
}

int32_t design_fit(Scheme scheme, const double* a, int32_t n, int32_t m, const double* y, const double* w,
                   int32_t method, double tol, int32_t max_iter, double* coef, double* fit, double* mse, double* cov) {
  if (scheme == kLeastSquares) return solve_least_squares(a, n, m, y, w, method, coef, cov, fit, mse);
  if (m < 1) return kBadOrder;
  if (method < 0 || method > 6) return kBadSelector;
  const WeightedSolve solve = [&](const double* wt, double* c, double* f, double* e, double* v) {
    return solve_least_squares(a, n, m, y, wt, method, c, v, f, e);
  };
  if (scheme == kLar) return lar_fit(n, m, y, w, tol, max_iter, -1.0, solve, coef, fit, mse, cov);
  const DesignAt design = [&](const double*, double* x) {
    std::memcpy(x, a, sizeof(double) * size_t(n) * size_t(m));
    return int32_t{kOk};
  };
  return bisquare_fit(n, m, y, w, tol, max_iter, design, solve, coef, fit, mse, cov);
}

}  // namespace jq::fit
