#include "integration/newton_cotes.hpp"

#include <algorithm>
#include <cmath>

#include "frame/errors.hpp"
#include "frame/scratch.hpp"

namespace jq::integ {

int32_t check_rule(int32_t rule, int32_t points) {
  if (rule < kTrapezoid || rule > kBode) return kBadSelector;
  return points < rule + 2 ? kSizeMismatch : kOk;
}

namespace {

// The small rules over the last few samples, shared by the remainders.
double trapezoid_last(const double* y, ptrdiff_t s, double h) { return h * (y[0] + y[s]) / 2; }
double simpson_last(const double* y, ptrdiff_t s, double h) { return h * (y[0] + 4 * y[s] + y[2 * s]) / 3; }
double simpson38_last(const double* y, ptrdiff_t s, double h) {
  return 3 * h / 8 * (y[0] + 3 * y[s] + 3 * y[2 * s] + y[3 * s]);
}

double trapezoid(const double* y, int32_t n, ptrdiff_t s, double h) {
  double interior = 0;
  for (int32_t i = 1; i < n - 1; ++i) interior += y[i * s];
  return h * ((y[0] + y[(n - 1) * s]) / 2 + interior);
}

// Whole panels of `width` intervals from the start; the rest is left to the
// caller. Each panel's weighted sum is accumulated, then scaled once.
template <int Width>
double panels(const double* y, int32_t panel_count, ptrdiff_t s, const double (&w)[Width + 1]) {
  double sum = 0;
  for (int32_t p = 0; p < panel_count; ++p) {
    const double* q = y + static_cast<ptrdiff_t>(p) * Width * s;
    double v = 0;
    for (int k = 0; k <= Width; ++k) v += w[k] * q[k * s];
    sum += v;
  }
  return sum;
}

}  // namespace

double integrate(const double* y, int32_t n, ptrdiff_t s, double h, int32_t rule) {
  h = std::fabs(h);
  const int32_t intervals = n - 1;
  auto tail = [&](int32_t samples_back) { return y + static_cast<ptrdiff_t>(n - 1 - samples_back) * s; };
  switch (rule) {
    case kTrapezoid:
      return trapezoid(y, n, s, h);
    case kSimpson: {
      static constexpr double w[] = {1, 4, 1};
      double r = h / 3 * panels<2>(y, intervals / 2, s, w);
      if (intervals % 2) r += trapezoid_last(tail(1), s, h);
      return r;
    }
    case kSimpson38: {
      static constexpr double w[] = {3, 9, 9, 3};
      double r = panels<3>(y, intervals / 3, s, w) * (h * 0.125);
      if (intervals % 3 == 1) r += trapezoid_last(tail(1), s, h);
      if (intervals % 3 == 2) r += simpson_last(tail(2), s, h);
      return r;
    }
    default: {
      static constexpr double w[] = {14, 64, 24, 64, 14};
      double r = panels<4>(y, intervals / 4, s, w) * (h / 45);
      if (intervals % 4 == 1) r += trapezoid_last(tail(1), s, h);
      if (intervals % 4 == 2) r += simpson_last(tail(2), s, h);
      if (intervals % 4 == 3) r += simpson38_last(tail(3), s, h);
      return r;
    }
  }
}

int32_t integrate_2d(const double* y, int32_t rows, int32_t cols, double h_row, double h_col, int32_t rule,
                     double* result) {
  if (int32_t rc = check_rule(rule, rows < cols ? rows : cols)) return rc;
  Scratch<double> line;
  if (line.allocate(static_cast<size_t>(rows))) return kNoMemory;
  for (int32_t r = 0; r < rows; ++r) line[r] = integrate(y + static_cast<size_t>(r) * cols, cols, 1, h_col, rule);
  *result = integrate(line.data(), rows, 1, h_row, rule);
  return kOk;
}

int32_t integrate_3d(const double* y, int32_t planes, int32_t rows, int32_t cols, double h_plane, double h_row,
                     double h_col, int32_t rule, double* result) {
  if (int32_t rc = check_rule(rule, std::min({planes, rows, cols}))) return rc;
  Scratch<double> area;
  if (area.allocate(static_cast<size_t>(planes))) return kNoMemory;
  const size_t plane_cells = static_cast<size_t>(rows) * cols;
  for (int32_t p = 0; p < planes; ++p)
    if (int32_t rc = integrate_2d(y + p * plane_cells, rows, cols, h_row, h_col, rule, &area[p])) return rc;
  *result = integrate(area.data(), planes, 1, h_plane, rule);
  return kOk;
}

}  // namespace jq::integ
