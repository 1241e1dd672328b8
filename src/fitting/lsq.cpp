#include "fitting/lsq.hpp"

#include <cmath>
#include <limits>

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

// Solution and covariance through the SVD of the weighted design; singular
// values at or below the cut-off are dropped.
int32_t by_svd(const double* a, I m, I n, const double* y, bool cutoff, double* coef, double* cov) {
  Buffer<double> u, vh, s, z;
  if (u.allocate(int64_t{m} * n) || vh.allocate(int64_t{n} * n) || s.allocate(n) || z.allocate(n)) return kNoMemory;
  if (const int32_t c = linalg::svd(a, m, n, 'S', s.data(), u.data(), vh.data())) return c;
  const double t = cutoff ? static_cast<double>(m) * s[0] * linalg::kEps : 0.0;
  JQ_CALL(cblas_dgemv, linalg::kRowMajor, linalg::kTrans, m, n, 1.0, u.data(), n, y, 1, 0.0, z.data(), 1);
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

// QR of A through the LQ factorization of its transpose, which is the
// row-major data read column-major: A^T = L Q, so A = Q^T L^T and
// c = L^-T (Q y).
int32_t by_qr(double* at, I m, I n, const double* y, double* coef, double* cov) {
  Buffer<double> tau, l, z, work;
  if (tau.allocate(n) || l.allocate(int64_t{n} * n) || z.allocate(n) || work.allocate(1)) return kNoMemory;
  I info = 0, lwork = -1;
  double query = 0.0;
  JQ_CALL(dgelqf, &n, &m, at, &n, tau.data(), &query, &lwork, &info);
  double query2 = 0.0;
  JQ_CALL(dorglq, &n, &m, &n, at, &n, tau.data(), &query2, &lwork, &info);
  lwork = static_cast<I>(std::fmax(std::fmax(query, query2), double(n)));
  if (work.allocate(lwork)) return kNoMemory;
  JQ_CALL(dgelqf, &n, &m, at, &n, tau.data(), work.data(), &lwork, &info);
  for (I j = 0; j < n; ++j)
    for (I i = 0; i < n; ++i) l[size_t(j) * n + i] = i >= j ? at[size_t(j) * n + i] : 0.0;  // column-major L
  JQ_CALL(dorglq, &n, &m, &n, at, &n, tau.data(), work.data(), &lwork, &info);
  // Q (n x m column-major) is Q^T row-major m x n: z = Q y.
  JQ_CALL(cblas_dgemv, linalg::kRowMajor, linalg::kTrans, m, n, 1.0, at, n, y, 1, 0.0, z.data(), 1);
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

double curve_eval(Curve kind, double a, double b, double x) {
  switch (kind) {
    case kExponential: return a * std::exp(b * x);
    case kPower: return a * std::pow(x, b);
    default: return a + b * std::log(x);
  }
}

namespace {

// Sum of weighted squared residuals of a curve.
double curve_sse(Curve kind, const double* x, const double* y, const double* w, int32_t n, double a, double b) {
  double s = 0.0;
  for (int32_t i = 0; i < n; ++i) {
    const double r = y[i] - curve_eval(kind, a, b, x[i]);
    s += (w ? std::fabs(w[i]) : 1.0) * r * r;
  }
  return s;
}

// Levenberg-Marquardt on the two coefficients: the damped normal equations
// (J^T W J + lambda diag) d = J^T W r, the damping raised until a step lowers
// the SSE and lowered after each success. Stops when the SSE or the
// coefficients change by no more than tol relative (or the SSE stalls).
void refine(Curve kind, const double* x, const double* y, const double* w, int32_t n, double tol, double& a,
            double& b) {
  double sse = curve_sse(kind, x, y, w, n, a, b), lambda = 1e-3;
  for (int it = 0; it < 200 && std::isfinite(sse); ++it) {
    double g11 = 0, g12 = 0, g22 = 0, r1 = 0, r2 = 0;
    for (int32_t i = 0; i < n; ++i) {
      // Derivatives by a and by b.
      double ja, jb;
      if (kind == kExponential) {
        ja = std::exp(b * x[i]);
        jb = a * x[i] * ja;
      } else {
        ja = std::pow(x[i], b);
        jb = a * std::log(x[i]) * ja;
      }
      const double wi = w ? std::fabs(w[i]) : 1.0, r = y[i] - a * ja;
      g11 += wi * ja * ja;
      g12 += wi * ja * jb;
      g22 += wi * jb * jb;
      r1 += wi * ja * r;
      r2 += wi * jb * r;
    }
    bool moved = false;
    for (int tries = 0; tries < 40; ++tries) {
      const double d11 = g11 * (1 + lambda), d22 = g22 * (1 + lambda), det = d11 * d22 - g12 * g12;
      const double da = (r1 * d22 - r2 * g12) / det, db = (d11 * r2 - g12 * r1) / det;
      const double na = a + da, nb = b + db, nsse = curve_sse(kind, x, y, w, n, na, nb);
      if (std::isfinite(nsse) && nsse <= sse) {
        // A small SSE change alone does not mean the coefficients settled.
        const bool done = sse - nsse <= tol * tol * sse ||
                          (std::fabs(da) <= tol * std::fabs(na) && std::fabs(db) <= tol * std::fabs(nb));
        a = na;
        b = nb;
        sse = nsse;
        lambda = std::fmax(lambda * 0.1, 1e-12);
        moved = true;
        if (done) return;
        break;
      }
      lambda *= 10.0;
    }
    if (!moved) return;
  }
}

}  // namespace

int32_t curve_fit(Curve kind, const double* x, const double* y, const double* w, int32_t n, double tol, double* a,
                  double* b, double* fit, double* mse) {
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
  double c[2];
  const int32_t code = solve_least_squares(design.data(), n, 2, rhs.data(), w, kQr1, c, nullptr, nullptr, nullptr);
  if (code < 0) return code;
  *a = log_y ? sign * std::exp(c[0]) : c[0];
  *b = c[1];
  if (kind != kLogarithmic) refine(kind, x, y, w, n, tol > 0.0 ? tol : 1e-12, *a, *b);
  if (fit) {
    for (int32_t i = 0; i < n; ++i) fit[i] = curve_eval(kind, *a, *b, x[i]);
    if (mse) *mse = weighted_mse(y, fit, w, n);
  }
  return code;
}

}  // namespace jq::fit
