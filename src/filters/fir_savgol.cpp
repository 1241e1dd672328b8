// Savitzky-Golay smoothing: least-squares polynomial fits over a sliding
// window of 2m + 1 points.
//
// The fit is the orthogonal projection onto the polynomials of degree p
// sampled on the window, whatever basis spans them. The basis used here is
// orthonormal on the window's own points, built by the three-term (Lanczos)
// recurrence from the constant vector, so that no normal equations of
// monomials, which are badly conditioned for long windows, are ever formed.
// The recurrence keeps three vectors; the smoothing weights and the edge fits
// accumulate as it goes, in O(window * order) operations.
#include <algorithm>
#include <cmath>

#include "filters/fir.hpp"
#include "frame/errors.hpp"
#include "frame/scratch.hpp"

namespace jq::fir {

namespace {

constexpr int64_t kMaxWindow = 0x800000;

double dot(const double* a, const double* b, int64_t n) {
  double s = 0;
  for (int64_t i = 0; i < n; ++i) s += a[i] * b[i];
  return s;
}

// Calls visit(q) with the orthonormal basis vectors q_0 .. q_p over the
// points (i - m) / m, i = 0 .. 2m, in turn.
template <class Visit> int32_t basis(int32_t m, int32_t p, Visit visit) {
  const int64_t n = 2 * int64_t{m} + 1;
  Scratch<double> s;
  if (s.allocate(static_cast<size_t>(3 * n)) != kOk) return kNoMemory;
  double* prev = s.data();
  double* cur = prev + n;
  double* next = cur + n;
  const double scale = m > 0 ? 1.0 / m : 1.0;
  std::fill(prev, prev + n, 0.0);
  std::fill(cur, cur + n, 1.0 / std::sqrt(static_cast<double>(n)));
  double beta = 0;
  for (int32_t j = 0;; ++j) {
    visit(static_cast<const double*>(cur));
    if (j == p) break;
    for (int64_t i = 0; i < n; ++i) next[i] = (i - m) * scale * cur[i] - beta * prev[i];
    // Removing both neighbours again (the second pass of classical
    // Gram-Schmidt) keeps the vectors orthogonal to working precision.
    for (int pass = 0; pass < 2; ++pass) {
      const double a = dot(next, cur, n), b = dot(next, prev, n);
      for (int64_t i = 0; i < n; ++i) next[i] -= a * cur[i] + b * prev[i];
    }
    beta = std::sqrt(dot(next, next, n));
    if (!(beta > 0)) return kOk;  // the window's points span no further degree
    for (int64_t i = 0; i < n; ++i) next[i] /= beta;
    std::swap(prev, cur);
    std::swap(cur, next);
  }
  return kOk;
}

}  // namespace

int32_t savgol_check(int32_t m, int32_t p) {
  if (m < 0) return kNegativeSize;
  if (2 * int64_t{m} + 1 > kMaxWindow) return kTooLarge;
  if (p < 0) return kNegativeSize;
  if (p > 2 * int64_t{m}) return kBadSelector;
  return kOk;
}

int32_t savgol_coefficients(int32_t m, int32_t p, double* c) {
  if (int32_t code = savgol_check(m, p)) return code;
  const int64_t n = 2 * int64_t{m} + 1;
  std::fill(c, c + n, 0.0);
  return basis(m, p, [&](const double* q) {
    const double qm = q[m];
    for (int64_t i = 0; i < n; ++i) c[i] += q[i] * qm;
  });
}

int32_t savgol_filter(const double* x, int32_t len, int32_t m, int32_t p, double* y) {
  if (len < 1) return kEmptyInput;
  if (int32_t code = savgol_check(m, p)) return code;
  const int64_t n = 2 * int64_t{m} + 1;
  if (len < n) return kSizeMismatch;
  // In place, the smoothing still reads the original samples.
  Scratch<double> original;
  if (x == y) {
    if (original.allocate(static_cast<size_t>(len)) != kOk) return kNoMemory;
    std::copy(x, x + len, original.data());
    x = original.data();
  }
  Scratch<double> c;
  if (c.allocate(static_cast<size_t>(n)) != kOk) return kNoMemory;
  std::fill(c.data(), c.data() + n, 0.0);
  // The first and last m outputs are the polynomials fitted to the first and
  // the last window, evaluated where those outputs sit.
  const double* tail = x + len - n;
  std::fill(y, y + m, 0.0);
  std::fill(y + len - m, y + len, 0.0);
  const int32_t code = basis(m, p, [&](const double* q) {
    const double qm = q[m], head_coef = dot(q, x, n), tail_coef = dot(q, tail, n);
    for (int64_t i = 0; i < n; ++i) c[i] += q[i] * qm;
    for (int64_t i = 0; i < m; ++i) {
      y[i] += head_coef * q[i];
      y[len - m + i] += tail_coef * q[m + 1 + i];
    }
  });
  if (code != kOk) return code;
  correlate(x, len - 2 * int64_t{m}, c.data(), static_cast<int32_t>(n), 1, y + m);
  return kOk;
}

}  // namespace jq::fir
