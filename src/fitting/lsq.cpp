#include "fitting/lsq.hpp"

#include <cmath>
#include <limits>

#include "fitting/nonlinear.hpp"
#include "frame/scratch.hpp"
#include "linalg/dense.hpp"
#include "linalg/frame.hpp"
#include "linalg/lapack.hpp"
#include "linalg/svd.hpp"

namespace jq::fit {

using namespace linalg;  // JQ_CALL names the module's routines unqualified
using linalg::Buffer;
using linalg::I;

double weighted_mse(const double* y, const double* f, const double* w, int64_t n) {
  double s = 0.0;
  if (w) {
    for (int64_t i = 0; i < n; ++i) s += std::fabs(w[i]) * ((y[i] - 2.0 * f[i]) * y[i] + f[i] * f[i]);
  } else {
    for (int64_t i = 0; i < n; ++i) s += (y[i] - f[i]) * (y[i] - f[i]);
  }
  return s / static_cast<double>(n);
}

namespace {

// Q y for the LQ factor of dgelqf (k reflectors stored in the rows of the
// k x m column-major `at`, unit diagonal implied, the L part ignored): Q is
// H(k)...H(1) = I - V^T T^T V in the compact WY form, T from tau and the
// Gram matrix V V^T as dlarft builds it. One pass over the data gathers
// V V^T and V y together, so Q is never formed.
void apply_lq_q(const double* at, I k, I m, const double* tau, const double* y, double* z) {
  constexpr int kMax = 64;  // kWyMax
  double g[kMax * kMax] = {}, vy[kMax] = {}, v[kMax];
  auto add_column = [&](I j) {
    for (I r = 0; r < k; ++r) v[r] = r == j ? 1.0 : r > j ? 0.0 : at[size_t(j) * k + r];
    for (I r = 0; r < k; ++r) {
      if (v[r] == 0.0) continue;
      vy[r] += v[r] * y[j];
      for (I c = r; c < k; ++c) g[r * kMax + c] += v[r] * v[c];
    }
  };
  // Columns past the first k hold every reflector in full.
  for (I j = 0; j < k; ++j) add_column(j);
  for (int64_t j = k; j < m; ++j) {
    const double* col = at + j * k;
    const double yj = y[j];
    for (I r = 0; r < k; ++r) {
      const double vr = col[r];
      vy[r] += vr * yj;
      for (I c = r; c < k; ++c) g[r * kMax + c] += vr * col[c];
    }
  }
  // T upper triangular: T(0:i, i) = -tau_i T(0:i, 0:i) G(0:i, i).
  double t[kMax * kMax] = {};
  for (I i = 0; i < k; ++i) {
    for (I r = 0; r < i; ++r) {
      double s = 0.0;
      for (I c = r; c < i; ++c) s += t[r * kMax + c] * g[c * kMax + i];
      t[r * kMax + i] = -tau[i] * s;
    }
    t[i * kMax + i] = tau[i];
  }
  // u = T^T (V y); z = y(0:k) - V(:, 0:k)^T u.
  double u[kMax];
  for (I c = 0; c < k; ++c) {
    double s = 0.0;
    for (I r = 0; r <= c; ++r) s += t[r * kMax + c] * vy[r];
    u[c] = s;
  }
  for (I j = 0; j < k; ++j) {
    double s = 0.0;
    for (I r = 0; r <= j; ++r) s += (r == j ? 1.0 : at[size_t(j) * k + r]) * u[r];
    z[j] = y[j] - s;
  }
}

constexpr I kWyMax = 64;  // the most columns whose Q is applied in WY form

// LQ of the column-major view (A^T = L Q) and z = Q y; l receives L
// column-major. For at most kWyMax columns.
int32_t lq_and_qy(double* at, I m, I n, const double* y, double* l, double* z) {
  Buffer<double> tau, work;
  if (tau.allocate(n)) return kNoMemory;
  I info = 0, lwork = -1;
  double query = 0.0;
  JQ_CALL(dgelqf, &n, &m, at, &n, tau.data(), &query, &lwork, &info);
  lwork = static_cast<I>(std::fmax(query, double(n)));
  if (work.allocate(lwork)) return kNoMemory;
  JQ_CALL(dgelqf, &n, &m, at, &n, tau.data(), work.data(), &lwork, &info);
  for (I j = 0; j < n; ++j)
    for (I i = 0; i < n; ++i) l[size_t(j) * n + i] = i >= j ? at[size_t(j) * n + i] : 0.0;
  apply_lq_q(at, n, m, tau.data(), y, z);
  return kOk;
}

// QR of A through the LQ factorization of its transpose, which is the
// row-major data read column-major: A^T = L Q, so A = Q^T L^T and
// c = L^-T (Q y). Few columns apply Q to y in WY form; more form Q with
// dorglq.
int32_t by_qr(double* at, I m, I n, const double* y, double* coef, double* cov) {
  Buffer<double> l, z;
  if (l.allocate(int64_t{n} * n) || z.allocate(n)) return kNoMemory;
  if (n <= kWyMax) {
    if (const int32_t c = lq_and_qy(at, m, n, y, l.data(), z.data())) return c;
  } else {
    Buffer<double> tau, work;
    if (tau.allocate(n)) return kNoMemory;
    I info = 0, lwork = -1;
    double query = 0.0, query2 = 0.0;
    JQ_CALL(dgelqf, &n, &m, at, &n, tau.data(), &query, &lwork, &info);
    JQ_CALL(dorglq, &n, &m, &n, at, &n, tau.data(), &query2, &lwork, &info);
    lwork = static_cast<I>(std::fmax(std::fmax(query, query2), double(n)));
    if (work.allocate(lwork)) return kNoMemory;
    JQ_CALL(dgelqf, &n, &m, at, &n, tau.data(), work.data(), &lwork, &info);
    for (I j = 0; j < n; ++j)
      for (I i = 0; i < n; ++i) l[size_t(j) * n + i] = i >= j ? at[size_t(j) * n + i] : 0.0;  // column-major L
    JQ_CALL(dorglq, &n, &m, &n, at, &n, tau.data(), work.data(), &lwork, &info);
    // Q (n x m column-major) is Q^T row-major m x n: z = Q y.
    JQ_CALL(cblas_dgemv, linalg::kRowMajor, linalg::kTrans, m, n, 1.0, at, n, y, 1, 0.0, z.data(), 1);
  }
  for (I r = n - 1; r >= 0; --r) {  // L^T c = z, L^T[r][j] = L[j][r]
    double s = z[r];
    for (I j = r + 1; j < n; ++j) s -= l[size_t(r) * n + j] * coef[j];
    const double d = l[size_t(r) * n + r];
    if (d == 0.0) return kSingular;
    coef[r] = s / d;
  }
  if (!cov) return kOk;
  Buffer<double> rtr;
  if (rtr.allocate(int64_t{n} * n)) return kNoMemory;
  // R^T R = L L^T; L column-major is L^T row-major.
  Blas<double>::gemm_t(linalg::kTrans, linalg::kNoTrans, n, n, n, l.data(), n, l.data(), n, rtr.data(), n);
  return linalg::pseudo_inverse(rtr.data(), n, n, -1.0, cov);
}

// A tall design with few columns is first reduced to its triangular factor
// (A = Q^T R), whose SVD R = Ur S V^T is A's with U = Q^T Ur: the values and
// V are the same, and u_i^T y = (Ur^T Q y)_i. This is the reduction the SVD
// driver itself makes for tall matrices, without forming the long U.
int32_t by_svd(double* a, I m, I n, const double* y, bool cutoff, double* coef, double* cov) {
  Buffer<double> u, vh, s, z;
  const bool reduce = n <= kWyMax && m >= 2 * int64_t{n};
  if (u.allocate(reduce ? int64_t{n} * n : int64_t{m} * n) || vh.allocate(int64_t{n} * n) || s.allocate(n) ||
      z.allocate(n))
    return kNoMemory;
  if (reduce) {
    Buffer<double> r, qy;
    if (r.allocate(int64_t{n} * n) || qy.allocate(n)) return kNoMemory;
    if (const int32_t c = lq_and_qy(a, m, n, y, r.data(), qy.data())) return c;
    // r holds L column-major, which read row-major is R = L^T.
    if (const int32_t c = linalg::svd(r.data(), n, n, 'S', s.data(), u.data(), vh.data())) return c;
    JQ_CALL(cblas_dgemv, linalg::kRowMajor, linalg::kTrans, n, n, 1.0, u.data(), n, qy.data(), 1, 0.0, z.data(), 1);
  } else {
    if (const int32_t c = linalg::svd(a, m, n, 'S', s.data(), u.data(), vh.data())) return c;
    JQ_CALL(cblas_dgemv, linalg::kRowMajor, linalg::kTrans, m, n, 1.0, u.data(), n, y, 1, 0.0, z.data(), 1);
  }
  const double t = cutoff ? static_cast<double>(m) * s[0] * linalg::kEps : 0.0;
  int32_t code = kOk;
  for (I i = 0; i < n; ++i) {
    if (s[i] > t) {
      z[i] /= s[i];
      s[i] = 1.0 / s[i];
    } else {
      z[i] = s[i] = 0.0;
      code = kWarnRankDeficient;
    }
  }
  for (I j = 0; j < n; ++j) {
    double c = 0.0;
    for (I i = 0; i < n; ++i) c += z[i] * vh[size_t(i) * n + j];
    coef[j] = c;
  }
  if (cov) {
    for (I p = 0; p < n; ++p)
      for (I q = 0; q < n; ++q) {
        double c = 0.0;
        for (I i = 0; i < n; ++i) c += vh[size_t(i) * n + p] * vh[size_t(i) * n + q] * s[i] * s[i];
        cov[size_t(p) * n + q] = c;
      }
  }
  return code;
}

int32_t by_normal(const double* a, I m, I n, const double* y, bool cholesky, double* normal, double* coef,
                  double* cov) {
  Blas<double>::gemm_t(linalg::kTrans, linalg::kNoTrans, n, n, m, a, n, a, n, normal, n);
  JQ_CALL(cblas_dgemv, linalg::kRowMajor, linalg::kTrans, m, n, 1.0, a, n, y, 1, 0.0, coef, 1);
  if (cov) {
    if (const int32_t c = linalg::pseudo_inverse(normal, n, n, -1.0, cov)) return c;
  }
  I info = 0, one = 1;
  if (cholesky) {
    JQ_CALL(dposv, "L", &n, &one, normal, &n, coef, &n, &info);
    return info > 0 ? kNotPosDef : kOk;
  }
  Scratch<I> piv;
  if (piv.allocate(n)) return kNoMemory;
  JQ_CALL(dgesv, &n, &one, normal, &n, piv.data(), coef, &n, &info);
  return info > 0 ? kSingular : kOk;
}

}  // namespace

int32_t solve_least_squares(const double* a, int32_t rows, int32_t cols, const double* y, const double* w,
                            int32_t method, double* coef, double* cov, double* fit, double* mse) {
  if (cols < 1) return kBadOrder;
  if (rows < cols) return kFewerPointsThanCoefs;
  if (method < 0 || method > 6) return kBadSelector;
  if (const int32_t c = linalg::ready()) return c;
  Buffer<double> normal, aw, yw;
  if ((method == kNormalLu || method == kNormalCholesky) && normal.allocate(int64_t{cols} * cols)) return kNoMemory;
  const int64_t count = int64_t{rows} * cols;
  if (aw.allocate(count) || yw.allocate(rows)) return kNoMemory;
  for (int32_t i = 0; i < rows; ++i) {
    const double s = w ? std::sqrt(std::fabs(w[i])) : 1.0;
    const double* src = a + size_t(i) * cols;
    double* dst = aw.data() + size_t(i) * cols;
    for (int32_t j = 0; j < cols; ++j) dst[j] = src[j] * s;
    yw[i] = y[i] * s;
  }
  int32_t code;
  if (method == kSvd || method == kSvdCutoff)
    code = by_svd(aw.data(), rows, cols, yw.data(), method == kSvdCutoff, coef, cov);
  else if (method <= kQr3)
    code = by_qr(aw.data(), rows, cols, yw.data(), coef, cov);
  else
    code = by_normal(aw.data(), rows, cols, yw.data(), method == kNormalCholesky, normal.data(), coef, cov);
  if (code < 0 || !fit) return code;
  Blas<double>::gemv(rows, cols, a, coef, fit);
  if (mse) *mse = weighted_mse(y, fit, w, rows);
  return code;
}

int32_t line_fit(const double* x, const double* y, const double* w, int32_t n, double* slope, double* intercept,
                 double* fit, double* mse) {
  double s = 0, sx = 0, sy = 0, sxx = 0, sxy = 0;
  if (w) {
    double top = -1.0;
    for (int32_t i = 0; i < n; ++i) top = std::fmax(top, std::fabs(w[i]));
    for (int32_t i = 0; i < n; ++i) {
      const double wi = std::fabs(w[i]) / top, wx = wi * x[i];
      s += wi;
      sx += wx;
      sy += wi * y[i];
      sxx += wx * x[i];
      sxy += wx * y[i];
    }
  } else {
    for (int32_t i = 0; i < n; ++i) {
      sx += x[i];
      sy += y[i];
      sxx += x[i] * x[i];
      sxy += x[i] * y[i];
    }
    s = n;
  }
  const double b = (s * sxy - sx * sy) / (s * sxx - sx * sx);
  const double c = (sy - b * sx) / s;
  *slope = b;
  *intercept = c;
  if (fit) {
    for (int32_t i = 0; i < n; ++i) fit[i] = b * x[i] + c;
    if (mse) *mse = weighted_mse(y, fit, w, n);
  }
  return kOk;
}

void vandermonde(const double* x, int64_t n, int32_t order, double* a) {
  const int64_t m = int64_t{order} + 1;
  for (int64_t i = 0; i < n; ++i) {
    double p = 1.0;
    for (int64_t j = 0; j < m; ++j, p *= x[i]) a[i * m + j] = p;
  }
}

double poly_eval(const double* c, int32_t order, double x) {
  double v = c[order];
  for (int32_t k = order - 1; k >= 0; --k) v = v * x + c[k];
  return v;
}

DesignSolve least_squares_solver(int32_t method) {
  return [method](const double* a, int32_t rows, int32_t cols, const double* y, const double* w, double* c) {
    return solve_least_squares(a, rows, cols, y, w, method, c, nullptr, nullptr, nullptr);
  };
}

int32_t poly_fit(const double* x, const double* y, const double* w, int32_t n, int32_t order, const double* fixed,
                 const DesignSolve& solve, double* coef, double* fit, double* mse) {
  const int32_t m = order + 1;
  Scratch<int32_t> powers;
  if (powers.allocate(m)) return kNoMemory;
  int32_t free = 0;
  for (int32_t p = 0; p < m; ++p)
    if (!fixed || std::isnan(fixed[p])) powers[free++] = p;
  int32_t code = kOk;
  if (free > 0) {
    Scratch<double> a, yr, c;
    if (a.allocate(size_t(n) * free) || yr.allocate(n) || c.allocate(free)) return kNoMemory;
    for (int32_t i = 0; i < n; ++i) {
      double r = y[i], p = 1.0;
      int32_t col = 0;
      for (int32_t k = 0; k < m; ++k, p *= x[i]) {
        if (col < free && powers[col] == k)
          a[size_t(i) * free + col++] = p;
        else
          r -= fixed[k] * p;
      }
      yr[i] = r;
    }
    code = solve(a.data(), n, free, yr.data(), w, c.data());
    if (code < 0) return code;
    for (int32_t k = 0; k < free; ++k) coef[powers[k]] = c[k];
  }
  if (fixed)
    for (int32_t p = 0; p < m; ++p)
      if (!std::isnan(fixed[p])) coef[p] = fixed[p];
  for (int32_t i = 0; i < n; ++i) fit[i] = poly_eval(coef, order, x[i]);
  *mse = weighted_mse(y, fit, w, n);
  return code;
}

double curve_gradient(Curve kind, double x, const double* p, double* g) {
  switch (kind) {
    case kExponential:
      g[0] = std::exp(p[1] * x);
      g[1] = p[0] * x * g[0];
      return p[0] * g[0];
    case kPower:
      g[0] = std::pow(x, p[1]);
      g[1] = p[0] * std::log(x) * g[0];
      return p[0] * g[0];
    case kLogarithmic:
      g[0] = 1.0;
      g[1] = std::log(x);
      return p[0] + p[1] * g[1];
    case kLine:
      g[0] = x;
      g[1] = 1.0;
      return p[0] * x + p[1];
    default: {
      const double u = (x - p[1]) / p[2], e = std::exp(-0.5 * u * u);
      g[0] = e;
      g[1] = p[0] * e * u / p[2];
      g[2] = g[1] * u;
      return p[0] * e;
    }
  }
}

namespace {

// Caruana's start for a peak: ln|y| as a parabola over the points above 5%
// of the largest magnitude (weighted by y^2, which undoes the logarithm's
// stretching of small values); the moments of the data when that fails.
int32_t gauss_start(const double* x, const double* y, const double* w, int32_t n, double* p) {
  int32_t top = 0;
  for (int32_t i = 1; i < n; ++i)
    if (std::fabs(y[i]) > std::fabs(y[top])) top = i;
  const double sign = y[top] < 0 ? -1.0 : 1.0, floor = 0.05 * std::fabs(y[top]);
  Scratch<double> a, ly, wl;
  if (a.allocate(size_t(n) * 3) || ly.allocate(n) || wl.allocate(n)) return kNoMemory;
  int32_t k = 0;
  for (int32_t i = 0; i < n; ++i) {
    if (!(sign * y[i] > floor)) continue;
    a[3 * size_t(k)] = 1.0;
    a[3 * size_t(k) + 1] = x[i];
    a[3 * size_t(k) + 2] = x[i] * x[i];
    ly[k] = std::log(sign * y[i]);
    wl[k++] = y[i] * y[i] * (w ? std::fabs(w[i]) : 1.0);
  }
  double c[3] = {0, 0, 0};
  // Only a parabola that cannot be fitted falls back to the moments; memory
  // that cannot be had fails the fit.
  int32_t solved = kFewerPointsThanCoefs;
  if (k >= 3) solved = solve_least_squares(a.data(), k, 3, ly.data(), wl.data(), kQr1, c, nullptr, nullptr, nullptr);
  if (solved == kNoMemory) return kNoMemory;
  if (k >= 3 && solved >= 0 && c[2] < 0.0) {
    const double s2 = -0.5 / c[2];
    p[1] = c[1] * s2;
    p[2] = std::sqrt(s2);
    p[0] = sign * std::exp(c[0] + p[1] * p[1] / (2.0 * s2));
    if (std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2])) return kOk;
  }
  double lo = x[0], hi = x[0];
  for (int32_t i = 1; i < n; ++i) {
    lo = std::fmin(lo, x[i]);
    hi = std::fmax(hi, x[i]);
  }
  p[0] = y[top];
  p[1] = x[top];
  p[2] = hi > lo ? (hi - lo) / 4.0 : 1.0;
  return kOk;
}

}  // namespace

int32_t curve_fit(Curve kind, const double* x, const double* y, const double* w, int32_t n, double tol, double* p,
                  double* fit, double* mse) {
  const Model model = [kind](double xi, const double* q, double* g) { return curve_gradient(kind, xi, q, g); };
  if (!(tol > 0.0)) tol = 1e-12;
  int32_t code = kOk;
  if (kind == kGaussian) {
    code = gauss_start(x, y, w, n, p);
  } else {
    // The model's linear form: ln|y| against x or ln x, or y against ln x.
    const bool log_y = kind != kLogarithmic, log_x = kind != kExponential;
    const double sign = y[0] < 0 ? -1.0 : 1.0;
    for (int32_t i = 0; i < n; ++i) {
      if (log_x && !(x[i] > 0.0)) return kNonPositiveLog;
      if (log_y && !(y[i] * sign > 0.0)) return kNonPositiveLog;
    }
    Scratch<double> design, rhs;
    if (design.allocate(size_t(n) * 2) || rhs.allocate(n)) return kNoMemory;
    for (int32_t i = 0; i < n; ++i) {
      design[2 * size_t(i)] = 1.0;
      design[2 * size_t(i) + 1] = log_x ? std::log(x[i]) : x[i];
      rhs[i] = log_y ? std::log(y[i] * sign) : y[i];
    }
    code = solve_least_squares(design.data(), n, 2, rhs.data(), w, kQr1, p, nullptr, nullptr, nullptr);
    if (log_y) p[0] = sign * std::exp(p[0]);
  }
  if (code < 0) return code;
  if (kind != kLogarithmic) {
    if (const int32_t c = levenberg_marquardt(model, x, y, w, n, curve_params(kind), tol, p)) return c;
  }
  if (kind == kGaussian) p[2] = std::fabs(p[2]);
  if (fit) {
    double g[3];
    for (int32_t i = 0; i < n; ++i) fit[i] = curve_gradient(kind, x[i], p, g);
    if (mse) *mse = weighted_mse(y, fit, w, n);
  }
  return code;
}

namespace {

double clip(double v, double lo, double hi) { return std::fmin(std::fmax(v, lo), hi); }

double line_sse(const double* x, const double* y, const double* w, int32_t n, double a, double b) {
  double s = 0.0;
  for (int32_t i = 0; i < n; ++i) {
    const double r = y[i] - (a * x[i] + b);
    s += (w ? std::fabs(w[i]) : 1.0) * r * r;
  }
  return s;
}

// The straight line in a box: a convex quadratic, so its minimum is the free
// optimum when that is feasible, else on an edge (one coefficient at a
// bound, the other its clipped 1-D optimum) or a corner.
void bounded_line(const double* x, const double* y, const double* w, int32_t n, const double* lo, const double* hi,
                  double* p) {
  double s = 0, sx = 0, sy = 0, sxx = 0, sxy = 0;
  for (int32_t i = 0; i < n; ++i) {
    const double wi = w ? std::fabs(w[i]) : 1.0;
    s += wi;
    sx += wi * x[i];
    sy += wi * y[i];
    sxx += wi * x[i] * x[i];
    sxy += wi * x[i] * y[i];
  }
  double best = std::numeric_limits<double>::infinity();
  auto consider = [&](double a, double b) {
    if (!(a >= lo[0] && a <= hi[0] && b >= lo[1] && b <= hi[1])) return;
    const double e = line_sse(x, y, w, n, a, b);
    if (e < best) {
      best = e;
      p[0] = a;
      p[1] = b;
    }
  };
  const double det = s * sxx - sx * sx;
  if (det != 0.0) consider((s * sxy - sx * sy) / det, (sxx * sy - sx * sxy) / det);
  for (int k = 0; k < 2; ++k) {
    const double a = k ? hi[0] : lo[0], b = k ? hi[1] : lo[1];
    if (std::isfinite(a)) consider(a, s > 0 ? clip((sy - a * sx) / s, lo[1], hi[1]) : clip(0.0, lo[1], hi[1]));
    if (std::isfinite(b)) consider(sxx > 0 ? clip((sxy - b * sx) / sxx, lo[0], hi[0]) : clip(0.0, lo[0], hi[0]), b);
    for (int j = 0; j < 2; ++j) consider(a, j ? hi[1] : lo[1]);
  }
  if (!std::isfinite(best)) {  // nothing finite to compare: the clipped origin
    p[0] = clip(0.0, lo[0], hi[0]);
    p[1] = clip(0.0, lo[1], hi[1]);
  }
}

}  // namespace

int32_t bounded_fit(Curve kind, const double* x, const double* y, const double* w, int32_t n, const double* lo,
                    const double* hi, double* p, double* fit, double* mse) {
  if (kind == kLine) {
    bounded_line(x, y, w, n, lo, hi, p);
    for (int32_t i = 0; i < n; ++i) fit[i] = p[0] * x[i] + p[1];
  } else {
    const int32_t code = curve_fit(kind, x, y, w, n, 1e-10, p, nullptr, nullptr);
    if (code < 0) return code;
    const int32_t m = curve_params(kind);
    bool inside = true;
    for (int32_t k = 0; k < m; ++k) {
      const double c = clip(p[k], lo[k], hi[k]);
      inside = inside && c == p[k];
      p[k] = c;
    }
    if (!inside) {
      const Model model = [kind](double xi, const double* q, double* g) { return curve_gradient(kind, xi, q, g); };
      if (const int32_t c = levenberg_marquardt(model, x, y, w, n, m, 1e-10, p, lo, hi)) return c;
    }
    double g[3];
    for (int32_t i = 0; i < n; ++i) fit[i] = curve_gradient(kind, x[i], p, g);
  }
  if (mse) *mse = weighted_mse(y, fit, w, n);
  return kOk;
}

}  // namespace jq::fit
