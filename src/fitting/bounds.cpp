#include "fitting/bounds.hpp"

#include <cmath>
#include <limits>

#include "frame/errors.hpp"
#include "linalg/frame.hpp"
#include "linalg/lapack.hpp"
#include "linalg/svd.hpp"
#include "special/gamma.hpp"

namespace jq::fit {

void goodness_of_fit(const double* y, const double* f, const double* w, int32_t n, int32_t dof, double* sse,
                     double* r2, double* rmse) {
  if (dof < 1) dof = n - 2;
  double mean = 0.0;
  for (int32_t i = 0; i < n; ++i) mean += y[i];
  mean /= n;  // plain mean, also with weights
  double e = 0.0, t = 0.0;
  for (int32_t i = 0; i < n; ++i) {
    const double wi = w ? w[i] : 1.0, r = y[i] - f[i], d = y[i] - mean;
    e += wi * r * r;
    t += wi * d * d;
  }
  *sse = e;
  *rmse = std::sqrt(e / dof);
  // A constant y leaves no variation to explain: 1 for an exact fit, else
  // +infinity as a marker.
  *r2 = t != 0.0 ? 1.0 - e / t : e == 0.0 ? 1.0 : std::numeric_limits<double>::infinity();
}

namespace {

double t_cdf(double t, double dof) {
  const double tail = 0.5 * special::beta_inc(dof / 2.0, 0.5, dof / (dof + t * t));
  return t < 0 ? tail : 1.0 - tail;
}

}  // namespace

int32_t t_quantile(double p, double dof, double* t) {
  if (!(dof >= 1.0)) return kBadDegreesOfFreedom;
  if (!(p >= 0.0 && p <= 1.0)) return kNotInUnitInterval;
  if (p == 0.0 || p == 1.0) {
    *t = p == 0.0 ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
    return kOk;
  }
  double lo = -10000.0, hi = 10000.0;
  while (hi - lo > 0.0001) {
    const double mid = 0.5 * (lo + hi);
    (t_cdf(mid, dof) < p ? lo : hi) = mid;
  }
  *t = 0.5 * (lo + hi);
  return kOk;
}

int32_t leverages(const double* a, int32_t n, int32_t m, const double* w, double* h) {
  if (const int32_t c = linalg::ready()) return c;
  linalg::Buffer<double> aw, normal, k;
  const int64_t nm = int64_t{n} * m;
  if (aw.allocate(nm) || normal.allocate(int64_t{m} * m) || k.allocate(int64_t{m} * m)) return kNoMemory;
  for (int64_t i = 0; i < nm; ++i) aw[i] = a[i] * (w ? w[i / m] : 1.0);
  linalg::Blas<double>::gemm_t(linalg::kTrans, linalg::kNoTrans, m, m, n, a, m, aw.data(), m, normal.data(), m);
  if (const int32_t c = linalg::pseudo_inverse(normal.data(), m, m, -1.0, k.data())) return c;
  for (int32_t i = 0; i < n; ++i) {
    const double* ai = a + size_t(i) * m;
    double s = 0.0;
    for (int32_t p = 0; p < m; ++p) {
      double kp = 0.0;
      for (int32_t q = 0; q < m; ++q) kp += k[size_t(p) * m + q] * ai[q];
      s += ai[p] * kp;
    }
    h[i] = s;
  }
  return kOk;
}

int32_t fit_bounds(const double* a, int32_t n, int32_t m, const double* y, const double* f, const double* w,
                   double level, bool predict, double* lower, double* upper) {
  double t = 0.0;
  if (const int32_t c = t_quantile(1.0 - (1.0 - level) / 2.0, double(n) - m, &t)) return c;
  double sse = 0.0;
  for (int32_t i = 0; i < n; ++i) sse += (w ? w[i] : 1.0) * (y[i] - f[i]) * (y[i] - f[i]);
  const double s2 = sse / (double(n) - m);
  // The leverages go into upper first, then the bounds over them.
  if (const int32_t c = leverages(a, n, m, w, upper)) return c;
  for (int32_t i = 0; i < n; ++i) {
    const double obs = predict ? (w ? 1.0 / std::fabs(w[i]) : 1.0) : 0.0;
    const double d = t * std::sqrt(s2 * (obs + upper[i]));
    lower[i] = f[i] - d;
    upper[i] = f[i] + d;
  }
  return kOk;
}

}  // namespace jq::fit
