#include "fitting/nonlinear.hpp"

#include <cmath>

#include "frame/errors.hpp"
#include "linalg/dense.hpp"

namespace jq::fit {

namespace {

constexpr int32_t kMaxParams = 8;

double sse_of(const Model& f, const double* x, const double* y, const double* w, int32_t n, const double* p) {
  double g[kMaxParams], s = 0.0;
  for (int32_t i = 0; i < n; ++i) {
    const double r = y[i] - f(x[i], p, g);
    s += (w ? std::fabs(w[i]) : 1.0) * r * r;
  }
  return s;
}

}  // namespace

int32_t levenberg_marquardt(const Model& f, const double* x, const double* y, const double* w, int32_t n,
                            int32_t params, double tol, double* p, const double* lo, const double* hi) {
  const int32_t m = params;
  if (m < 1 || m > kMaxParams) return kBadOrder;
  if (const int32_t c = linalg::ready()) return c;
  double sse = sse_of(f, x, y, w, n, p), lambda = 1e-3;
  double g[kMaxParams], jtj[kMaxParams * kMaxParams], jtr[kMaxParams], damped[kMaxParams * kMaxParams];
  double step[kMaxParams], trial[kMaxParams];
  for (int it = 0; it < 200 && std::isfinite(sse); ++it) {
    for (int32_t k = 0; k < m * m; ++k) jtj[k] = 0.0;
    for (int32_t k = 0; k < m; ++k) jtr[k] = 0.0;
    for (int32_t i = 0; i < n; ++i) {
      const double wi = w ? std::fabs(w[i]) : 1.0, r = y[i] - f(x[i], p, g);
      for (int32_t a = 0; a < m; ++a) {
        jtr[a] += wi * g[a] * r;
        for (int32_t b = 0; b < m; ++b) jtj[a * m + b] += wi * g[a] * g[b];
      }
    }
    // A coefficient at a bound that the descent direction pushes outward is
    // held there for this step (an active set), so the others move freely.
    bool held[kMaxParams] = {};
    for (int32_t a = 0; lo && a < m; ++a)
      held[a] = (p[a] <= lo[a] && jtr[a] < 0.0) || (p[a] >= hi[a] && jtr[a] > 0.0);
    bool moved = false;
    for (int tries = 0; tries < 40 && !moved; ++tries, lambda *= 10.0) {
      for (int32_t k = 0; k < m * m; ++k) damped[k] = jtj[k];
      for (int32_t a = 0; a < m; ++a) damped[a * m + a] *= 1.0 + lambda;
      for (int32_t a = 0; a < m; ++a) {
        if (!held[a]) continue;
        for (int32_t b = 0; b < m; ++b) damped[a * m + b] = damped[b * m + a] = 0.0;
        damped[a * m + a] = 1.0;
      }
      double rhs[kMaxParams];
      for (int32_t a = 0; a < m; ++a) rhs[a] = held[a] ? 0.0 : jtr[a];
      const int32_t code = linalg::solve_lu(damped, m, rhs, 1, step);
      if (code == kNoMemory) return code;
      if (code != kOk) continue;
      for (int32_t a = 0; a < m; ++a) {
        trial[a] = p[a] + step[a];
        if (lo) trial[a] = std::fmin(std::fmax(trial[a], lo[a]), hi[a]);
        step[a] = trial[a] - p[a];
      }
      const double next = sse_of(f, x, y, w, n, trial);
      if (!(std::isfinite(next) && next <= sse)) continue;
      bool settled = sse - next <= tol * tol * sse;
      bool small = true;
      for (int32_t a = 0; a < m; ++a) small = small && std::fabs(step[a]) <= tol * std::fabs(trial[a]);
      for (int32_t a = 0; a < m; ++a) p[a] = trial[a];
      sse = next;
      lambda = std::fmax(lambda * 0.1, 1e-12) / 10.0;  // the loop's increment undoes the extra tenth
      moved = true;
      if (settled || small) return kOk;
    }
    if (!moved) return kOk;
  }
  return kOk;
}

}  // namespace jq::fit
