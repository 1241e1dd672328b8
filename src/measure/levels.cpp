#include "measure/levels.hpp"

#include <algorithm>

#include "frame/errors.hpp"

namespace jq::measure {
namespace {

struct Extremes {
  double max, min;
};

// The first sample that compares equal to v: a strict-comparison scan keeps
// the first of equal values, which only the sign of a zero can tell apart.
double first_equal(const double* x, int32_t n, double v) {
  for (int32_t i = 0; i < n; ++i)
    if (x[i] == v) return x[i];
  return v;
}

// Max and min with strict comparisons from x[0], as one sequential scan would
// find them (a NaN is never taken unless it is x[0]). Four lanes keep the
// comparisons independent.
Extremes extremes(const double* x, int32_t n) {
  double hi[4] = {x[0], x[0], x[0], x[0]}, lo[4] = {x[0], x[0], x[0], x[0]};
  int32_t i = 1;
  for (; i + 4 <= n; i += 4)
    for (int k = 0; k < 4; ++k) {
      const double v = x[i + k];
      hi[k] = v > hi[k] ? v : hi[k];
      lo[k] = v < lo[k] ? v : lo[k];
    }
  for (; i < n; ++i) {
    hi[0] = x[i] > hi[0] ? x[i] : hi[0];
    lo[0] = x[i] < lo[0] ? x[i] : lo[0];
  }
  Extremes e{hi[0], lo[0]};
  for (int k = 1; k < 4; ++k) {
    if (hi[k] > e.max) e.max = hi[k];
    if (lo[k] < e.min) e.min = lo[k];
  }
  // Lanes may disagree on which zero came first.
  if (e.max == 0) e.max = first_equal(x, n, 0.0);
  if (e.min == 0) e.min = first_equal(x, n, 0.0);
  return e;
}

// Equal bins between min and max; the maximum falls in the last bin. Indices
// are clamped before conversion, so NaN and infinite samples land in bin 0
// or the last bin instead of overflowing.
void fill_histogram(const double* x, int32_t n, double min, double inv_width, int32_t bins, int32_t* counts) {
  std::fill(counts, counts + bins, 0);
  const double last = bins - 1;
  auto bin = [&](double v) {
    const double t = (v - min) * inv_width;
    return t >= last ? bins - 1 : t >= 1 ? static_cast<int32_t>(t) : 0;
  };
  int32_t i = 0;
  for (; i + 4 <= n; i += 4) {
    const int32_t a = bin(x[i]), b = bin(x[i + 1]), c = bin(x[i + 2]), d = bin(x[i + 3]);
    ++counts[a];
    ++counts[b];
    ++counts[c];
    ++counts[d];
  }
  for (; i < n; ++i) ++counts[bin(x[i])];
}

struct Mode {
  int32_t bin = 0, count = 0;
};

// Both searches move away from the middle and take ties, so a tie goes to the
// bin farthest from the middle.
Mode low_mode(const int32_t* counts, int32_t bins) {
  Mode m;
  for (int32_t i = std::min(static_cast<int32_t>(0.4 * bins), bins - 1); i >= 0; --i)
    if (counts[i] >= m.count) m = {i, counts[i]};
  return m;
}

Mode high_mode(const int32_t* counts, int32_t bins) {
  Mode m;
  for (int32_t i = static_cast<int32_t>(0.6 * bins); i < bins; ++i)
    if (counts[i] >= m.count) m = {i, counts[i]};
  return m;
}

}  // namespace

int32_t state_levels(const double* x, int32_t n, double dt, int32_t method, int32_t bins, int32_t* counts,
                     int32_t both, Levels* out) {
  *out = Levels{};
  if (bins < 1) return kBadBinCount;
  if (n < 1 || !x) return kNoLevelSamples;
  if (!(dt > 0)) return kBadSampleInterval;
  if (static_cast<uint32_t>(both) >= 2) return kBadSelector;
  if (method != kHistogram && method != kPeak && method != kAutoHistogram) return kBadLevelMethod;

  const Extremes e = extremes(x, n);
  Levels r;
  r.range = e.max - e.min;
  r.high = e.max;
  r.low = e.min;
  r.method_used = method;
  int32_t code = kOk;
  if (method != kPeak) {
    if (!(r.range > 0)) return kConstantSignal;
    const double w = r.range / bins;
    fill_histogram(x, n, e.min, 1 / w, bins, counts);
    const Mode lo = low_mode(counts, bins), hi = high_mode(counts, bins);
    auto centre = [&](Mode m) { return e.min + w / 2 + m.bin * w; };
    // A mode is a real state only with at least 5 % of the samples.
    const double floor = 0.05 * n;
    const bool lo_ok = !(floor > lo.count), hi_ok = !(floor > hi.count);
    if (method == kHistogram) {
      r.low = centre(lo);
      r.high = centre(hi);
      if (!lo_ok || !hi_ok) code = kWarnWeakState;
    } else if (both == 0) {
      if (lo_ok) r.low = centre(lo);
      if (hi_ok) r.high = centre(hi);
    } else if (lo_ok && hi_ok) {
      r.low = centre(lo);
      r.high = centre(hi);
      r.method_used = kHistogram;
    }
  }
  r.amplitude = r.high - r.low;
  *out = r;
  return code;
}

}  // namespace jq::measure
