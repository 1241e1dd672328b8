#include "stats/descriptive.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "frame/errors.hpp"

namespace jq::stats {
namespace {

constexpr double kEps = 2.220446049250313e-16;

// The run rule of the modes: b equals a, the first value of its run, when
// |a - b| <= |a| eps. Exact equality is tested first so that a run of
// infinities is a run too, and opposite infinities are never equal.
bool same(double a, double b) {
  const double d = std::fabs(a - b);
  return a == b || (std::isfinite(d) && d <= std::fabs(a) * kEps);
}

// One scan for the extremes. The maximum moves only for elements that did not
// lower the minimum; NaNs compare false and are passed over.
void extremes(const double* x, int32_t n, double* lo, double* hi) {
  double l = x[0], h = x[0];
  for (int32_t i = 1; i < n; ++i) {
    if (x[i] < l) l = x[i];
    else if (x[i] > h) h = x[i];
  }
  *lo = l;
  *hi = h;
}

// d^k by k - 1 multiplications, rounded at each step. The magnitudes of the
// partial powers depend only on |d|, so once one repeats (a fixed point near
// |d| = 1) or reaches 0 or infinity, the rest of the chain only flips the sign,
// and the loop stops early with the sign the remaining steps would give.
double repeated_power(double d, int32_t k) {
  if (std::isnan(d)) return d;
  double p = d;
  for (int64_t left = int64_t{k} - 1; left > 0;) {
    const double q = p * d;
    --left;
    if (std::fabs(q) == std::fabs(p) || q == 0 || std::isinf(q)) return (d < 0 && (left & 1)) ? -q : q;
    p = q;
  }
  return p;
}

// The bin of x among k equal intervals of [lo, hi], lo < hi: floor((x - lo) k
// / (hi - lo)), formed in that order; an index outside 0..k-1 is dropped (-1)
// unless x is the maximum itself, which belongs to the last bin. Where
// (x - lo) k could overflow, the same ratio is formed the other way round.
struct Bins {
  Bins(double l, double h, int32_t n) : lo(l), hi(h), range(h - l), kd(n), k(n), wide(std::isinf(range * kd)) {}
  int32_t operator()(double x) const {
    const double pos = wide ? (x - lo) / range * kd : (x - lo) * kd / range;
    if (pos >= 0 && pos < kd) return static_cast<int32_t>(pos);  // truncation is floor here
    return x == hi ? k - 1 : -1;
  }
  double lo, hi, range, kd;
  int32_t k;
  bool wide;
};

// NaNs after every number, so that sorting data holding them stays a strict
// weak order.
bool before(double a, double b) { return a < b || (!std::isnan(a) && std::isnan(b)); }

}  // namespace

int32_t mean(const double* x, int32_t n, double* result) {
  if (n < 1) return kEmptyInput;
  double s = 0.0;
  for (int32_t i = 0; i < n; ++i) s += x[i];
  *result = s / n;
  return kOk;
}

int32_t rms(const double* x, int32_t n, double* result) {
  if (n < 1) return kEmptyInput;
  double s = 0.0;
  for (int32_t i = 0; i < n; ++i) s += x[i] * x[i];
  *result = std::sqrt(s / n);
  return kOk;
}

int32_t cx_rms(const std::complex<double>* x, int32_t n, double* result) {
  if (n < 1) return kEmptyInput;
  const double* v = reinterpret_cast<const double*>(x);
  double s = 0.0;
  for (int64_t i = 0; i < 2 * int64_t{n}; i += 2) s += v[i] * v[i] + v[i + 1] * v[i + 1];
  *result = std::sqrt(s / n);
  return kOk;
}

int32_t mse(const double* x, int32_t nx, const double* y, int32_t ny, double* result) {
  if (nx < 1 || ny < 1) return kEmptyInput;
  const int32_t m = std::min(nx, ny);
  double s = 0.0;
  for (int32_t i = 0; i < m; ++i) s += (x[i] - 2 * y[i]) * x[i] + y[i] * y[i];
  *result = s / m;
  return nx == ny ? kOk : kWarnLengthMismatch;
}

int32_t moment(const double* x, int32_t n, int32_t k, double* result) {
  if (n < 1) return kEmptyInput;
  if (k < 1) return kBadOrder;
  double m;
  mean(x, n, &m);
  double s = 0.0;
  for (int32_t i = 0; i < n; ++i) s += repeated_power(x[i] - m, k);
  *result = s / n;
  return kOk;
}

// Median by sampling: two pivots taken from a sorted sample bracket the
// middle rank closely, so one pass over the data counts what lies below them
// and copies out only the few values between them, and the selection then
// runs on those. When the bracket misses the middle (a sample unlike the
// data, or heavy ties), the selection runs on a full copy instead.
int32_t median(const double* x, int32_t n, double* result) {
  if (n < 1) return kEmptyInput;
  Scratch<double> c;
  if (c.allocate(n) != kOk) return kNoMemory;
  double* v = c.data();
  const int64_t r2 = n / 2, r1 = (n & 1) ? r2 : r2 - 1;  // the ranks wanted
  constexpr int32_t kSample = 4096;
  if (n >= 16 * kSample) {
    double sample[kSample];
    for (int32_t i = 0; i < kSample; ++i) sample[i] = x[int64_t{n} * i / kSample + (i & 7)];
    std::sort(sample, sample + kSample, before);
    // +-3 standard deviations of the sample rank of the middle.
    const int32_t mid = kSample / 2, margin = 3 * 32 + 8;
    const double lo = sample[mid - margin], hi = sample[mid + margin];
    int64_t below = 0, between = 0;
    double below_max = -std::numeric_limits<double>::infinity();
    bool finite = true;
    // Branch-free: on data in random order each test is a coin toss. Every
    // value is stored at the end of the kept ones and kept only if between.
    constexpr double kNegInf = -std::numeric_limits<double>::infinity();
    for (int32_t i = 0; i < n; ++i) {
      const double e = x[i];
      finite &= std::isfinite(e);
      const bool low = e < lo;
      below += low;
      below_max = std::max(below_max, low ? e : kNegInf);
      v[between] = e;
      between += !low & (e <= hi);
    }
    if (!finite) return kNonFiniteData;
    // The rank below the middle of an even count is either kept too or the
    // largest value below the bracket.
    if (r2 >= below && r2 < below + between) {
      double* m2 = v + (r2 - below);
      std::nth_element(v, m2, v + between);
      const double b = *m2;
      const double a = r1 == r2 ? b : (r1 < below ? below_max : *std::max_element(v, m2));
      *result = r1 == r2 ? b : (a + b) * 0.5;
      return kOk;
    }
  } else {
    for (int32_t i = 0; i < n; ++i)
      if (!std::isfinite(x[i])) return kNonFiniteData;
  }
  std::copy(x, x + n, v);
  double* mid = v + r2;
  std::nth_element(v, mid, v + n);
  *result = (n & 1) ? *mid : (*std::max_element(v, mid) + *mid) * 0.5;
  return kOk;
}

int32_t modes(const double* x, int32_t n, int32_t intervals, Scratch<double>& out, int32_t* count) {
  *count = 0;
  if (n < 1) return kEmptyInput;
  if (intervals >= 1) {
    double lo, hi;
    extremes(x, n, &lo, &hi);
    if (same(lo, hi)) {
      if (out.allocate(1) != kOk) return kNoMemory;
      out[0] = lo;
      *count = 1;
      return kOk;
    }
    // The bins are counted by sorting the bin of every value, so the work and
    // memory follow the data, not the number of intervals.
    Scratch<int32_t> idx;
    if (idx.allocate(n) != kOk) return kNoMemory;
    const Bins bin(lo, hi, intervals);
    for (int32_t i = 0; i < n; ++i) idx[i] = bin(x[i]);
    std::sort(idx.data(), idx.data() + n);
    int32_t best = 0, runs = 0;
    for (int32_t i = 0, j; i < n; i = j) {
      for (j = i + 1; j < n && idx[j] == idx[i]; ++j) {
      }
      if (idx[i] < 0) continue;
      if (j - i > best) best = j - i, runs = 0;
      if (j - i == best) idx[runs++] = idx[i];  // behind the scan, like the exact modes
    }
    if (runs == 0) return kOk;
    if (out.allocate(runs) != kOk) return kNoMemory;
    // Every fullest bin is a mode, reported by its centre.
    const double w = (hi - lo) / intervals;
    for (int32_t i = 0; i < runs; ++i) out[i] = lo + w / 2 + idx[i] * w;
    *count = runs;
    return kOk;
  }
  if (n == 1) return kOk;  // a single value is deliberately no mode
  if (out.allocate(n) != kOk) return kNoMemory;
  double* v = out.data();
  std::copy(x, x + n, v);
  std::sort(v, v + n, before);
  if (same(v[0], v[n - 1])) {
    *count = 1;
    return kOk;
  }
  // Modes are written over the sorted data behind the scan: the list never
  // grows faster than the runs are consumed.
  int32_t best = 1;
  for (int32_t i = 0; i < n;) {
    int32_t j = i + 1;
    while (j < n && same(v[i], v[j])) ++j;
    const int32_t run = j - i;
    if (run > best) {
      best = run;
      v[0] = v[i];
      *count = 1;
    } else if (run == best && best > 1) {
      v[(*count)++] = v[i];
    }
    i = j;
  }
  return kOk;
}

int32_t histogram(const double* x, int32_t n, int32_t k, int32_t* counts, double* centres) {
  if (n < 1 || k < 1) return kEmptyInput;
  double lo, hi;
  extremes(x, n, &lo, &hi);
  if (lo > hi) return kHistogramRange;
  std::fill(counts, counts + k, 0);
  if (lo == hi) {
    std::fill(centres, centres + k, lo);
    counts[k - 1] = n;
    return kOk;
  }
  const double w = (hi - lo) / k;
  double c = lo + w / 2;
  for (int32_t i = 0; i < k; ++i, c += w) centres[i] = c;
  const Bins bin(lo, hi, k);
  for (int32_t i = 0; i < n; ++i) {
    const int32_t b = bin(x[i]);
    if (b >= 0) ++counts[b];
  }
  return kOk;
}

int32_t check_edges(const double* edges, int32_t m) {
  if (m < 2) return kFewerThan2;
  for (int32_t i = 1; i < m; ++i)
    if (!(edges[i] >= edges[i - 1])) return kNonPositiveSpacing;  // NaN edges fail too
  return kOk;
}

void histogram_edges(const double* x, int32_t n, const double* edges, int32_t m, int32_t* counts) {
  std::fill(counts, counts + (m - 1), 0);
  const double first = edges[0], last = edges[m - 1];
  for (int32_t i = 0; i < n; ++i) {
    const double v = x[i];
    if (!(v >= first && v <= last)) continue;
    // The first edge above v closes its interval; the last edge itself
    // belongs to the last interval.
    const int64_t b = std::upper_bound(edges, edges + m, v) - edges - 1;
    ++counts[b < m - 1 ? b : m - 2];
  }
}

int32_t contingency(const double* table, int32_t rows, int32_t cols, double* result) {
  if (rows < 1 || cols < 1) return kEmptyInput;
  const int64_t n = int64_t{rows} * cols;
  for (int64_t i = 0; i < n; ++i) {
    if (!std::isfinite(table[i])) return kNonFiniteData;
    if (table[i] < 0) return kNegativeSize;
  }
  Scratch<double> col;
  if (col.allocate(cols) != kOk) return kNoMemory;
  std::fill(col.data(), col.data() + cols, 0.0);
  double total = 0;
  for (int64_t i = 0; i < n; ++i) col[i % cols] += table[i];
  for (int32_t j = 0; j < cols; ++j) {
    if (col[j] == 0) return kBadSelector;
    total += col[j];
  }
  double stat = 0;
  for (int32_t r = 0; r < rows; ++r) {
    const double* row = table + int64_t{r} * cols;
    double row_total = 0;
    for (int32_t j = 0; j < cols; ++j) row_total += row[j];
    if (row_total == 0) return kBadSelector;
    for (int32_t j = 0; j < cols; ++j) {
      const double expected = row_total * col[j] / total, d = row[j] - expected;
      stat += d * d / expected;
    }
  }
  *result = stat;
  return kOk;
}

}  // namespace jq::stats
