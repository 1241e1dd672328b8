#include "measure/levels.hpp"

#include <emmintrin.h>

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
// find them (a NaN is never taken unless it is x[0]). maxpd/minpd compute
// exactly v > m ? v : m and v < m ? v : m, here over eight independent lanes.
Extremes extremes(const double* x, int32_t n) {
  const __m128d first = _mm_set1_pd(x[0]);
  __m128d hi[4] = {first, first, first, first}, lo[4] = {first, first, first, first};
  int32_t i = 1;
  for (; i + 8 <= n; i += 8)
    for (int k = 0; k < 4; ++k) {
      const __m128d v = _mm_loadu_pd(x + i + 2 * k);
      hi[k] = _mm_max_pd(v, hi[k]);
      lo[k] = _mm_min_pd(v, lo[k]);
    }
  double h[8], l[8];
  for (int k = 0; k < 4; ++k) {
    _mm_storeu_pd(h + 2 * k, hi[k]);
    _mm_storeu_pd(l + 2 * k, lo[k]);
  }
  Extremes e{x[0], x[0]};
  for (int k = 0; k < 8; ++k) {
    if (h[k] > e.max) e.max = h[k];
    if (l[k] < e.min) e.min = l[k];
  }
  for (; i < n; ++i) {
    if (x[i] > e.max) e.max = x[i];
    if (x[i] < e.min) e.min = x[i];
  }
  // Lanes may disagree on which zero came first.
  if (e.max == 0) e.max = first_equal(x, n, 0.0);
  if (e.min == 0) e.min = first_equal(x, n, 0.0);
  return e;
}

// Equal bins between min and max: bin trunc((x - min) * (1 / width)), clamped
// to [0, bins - 1] so that the maximum falls in the last bin. Clamping before
// the conversion sends NaN to bin 0 and never overflows.
struct Binning {
  double min, inv_width;
  int32_t bins;
  int32_t operator()(double v) const {
    const double t = (v - min) * inv_width;
    return t >= bins - 1 ? bins - 1 : t >= 1 ? static_cast<int32_t>(t) : 0;
  }
  // The same for four samples: maxpd takes 0 for NaN, minpd the last bin.
  void four(const double* x, int32_t* k) const {
    const __m128d m = _mm_set1_pd(min), s = _mm_set1_pd(inv_width), zero = _mm_setzero_pd(),
                  last = _mm_set1_pd(bins - 1);
    auto two = [&](const double* p) {
      const __m128d t = _mm_mul_pd(_mm_sub_pd(_mm_loadu_pd(p), m), s);
      return _mm_cvttpd_epi32(_mm_min_pd(_mm_max_pd(t, zero), last));
    };
    _mm_storeu_si128(reinterpret_cast<__m128i*>(k), _mm_unpacklo_epi64(two(x), two(x + 2)));
  }
};

// Up to this many bins the samples are counted into four interleaved local
// histograms, so that runs of samples in one bin (a flat state) do not wait
// on each other's increments.
constexpr int32_t kLocalBins = 1024;

void fill_histogram(const double* x, int32_t n, const Binning& bin, int32_t* counts) {
  const int32_t bins = bin.bins;
  int32_t i = 0, k[4];
  if (bins <= kLocalBins) {
    int32_t local[4][kLocalBins];
    for (auto& l : local) std::fill(l, l + bins, 0);
    for (; i + 4 <= n; i += 4) {
      bin.four(x + i, k);
      for (int j = 0; j < 4; ++j) ++local[j][k[j]];
    }
    for (int32_t b = 0; b < bins; ++b) counts[b] = local[0][b] + local[1][b] + local[2][b] + local[3][b];
  } else {
    // Too many bins for local copies: four samples of one bin (a flat state)
    // are counted with one increment instead of four dependent ones.
    std::fill(counts, counts + bins, 0);
    for (; i + 4 <= n; i += 4) {
      bin.four(x + i, k);
      if ((k[0] == k[1]) & (k[1] == k[2]) & (k[2] == k[3])) {
        counts[k[0]] += 4;
      } else {
        for (int j = 0; j < 4; ++j) ++counts[k[j]];
      }
    }
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
    fill_histogram(x, n, Binning{e.min, 1 / w, bins}, counts);
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
