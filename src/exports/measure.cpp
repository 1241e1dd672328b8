// Measurements: state levels of two-state waveforms and the threshold peak
// detector.
#include <algorithm>
#include <cstdint>

#include "frame/export.hpp"
#include "frame/instance.hpp"
#include "jqanlys.h"
#include "measure/levels.hpp"
#include "measure/threshold_peaks.hpp"

using namespace jq;

namespace {

// Histogram buffers beyond this many bins are refused as memory that cannot
// be obtained: far more bins than any record has samples, and a clear of
// gigabytes on every call.
constexpr int32_t kMaxBins = 1 << 24;

// The histogram counts of a call site: kept in the host's slot, or for the
// call only when the host gave no slot.
int32_t histogram_buffer(JQSlot slot, int32_t bins, bool idp, Scratch<int32_t>& local, int32_t** counts) {
  if (bins > kMaxBins) return kNoMemory;
  if (!slot) {
    if (local.allocate(static_cast<size_t>(bins)) != kOk) return kNoMemory;
    *counts = local.data();
    return kOk;
  }
  MeasurementInstance* m = nullptr;
  if (reserve_measurement_values(slot, bins, idp, &m) != kOk) return kNoMemory;
  *counts = m->values;
  return kOk;
}

// StateLevels and its _IDP twin differ only in how the histogram block is
// kept. The bin count is checked before the block is touched; every failure
// leaves the three levels at 0.
int32_t state_levels(JQArrF64 waveform, double dt, int32_t method, int32_t bins, JQSlot slot, double* high,
                     double* low, double* amplitude, int32_t both, bool idp) {
  measure::Levels r;
  int32_t code = kBadBinCount;
  if (bins >= 1) {
    Scratch<int32_t> local;
    int32_t* counts = nullptr;
    code = histogram_buffer(slot, bins, idp, local, &counts);
    if (code == kOk) {
      Array1<const double> xs(waveform);
      code = measure::state_levels(xs.data(), xs.size(), dt, method, bins, counts, both, &r);
    }
  }
  if (high) *high = r.high;
  if (low) *low = r.low;
  if (amplitude) *amplitude = r.amplitude;
  return code;
}

}  // namespace

JQ_EXPORT int32_t StateLevels(JQArrF64 waveform, double, double dt, int32_t method, int32_t bins, JQSlot instance,
                              double* high, double* low, double* amplitude, int32_t both_peaks) {
  return state_levels(waveform, dt, method, bins, instance, high, low, amplitude, both_peaks, false);
}

JQ_EXPORT int32_t StateLevels_IDP(JQArrF64 waveform, double, double dt, int32_t method, int32_t bins,
                                  JQSlot instance, double* high, double* low, double* amplitude, int32_t both_peaks) {
  return state_levels(waveform, dt, method, bins, instance, high, low, amplitude, both_peaks, true);
}

// Reports through the error argument, except that a width outside
// [1, n - 1] (every empty signal included) is also the result.
JQ_EXPORT int32_t PeakDetector(JQArrF64 x, double* threshold, int32_t* width, JQArrI32 indices, int32_t* count,
                               int32_t* error) {
  Array1<const double> xs(x);
  Out<int32_t> idx(indices);
  Outputs out(idx);
  if (count) *count = 0;
  if (error) *error = kOk;
  const int32_t n = xs.size();
  const int32_t w = width ? *width : 0;
  if (!threshold || w < 1 || w >= n) {
    out.report(kIndexOutsideRange, error);
    return kIndexOutsideRange;
  }
  // The most runs that fit: each but the last is followed by a sample below.
  const int64_t most = std::min<int64_t>(n / w + 1, INT32_MAX);
  if (!out.size(idx, static_cast<int32_t>(most))) return out.report(kNoMemory, error);
  int32_t found = 0;
  const int32_t code = measure::threshold_peaks(xs.data(), n, *threshold, w, idx.data(), &found);
  if (!out.size(idx, found)) return out.report(kNoMemory, error);
  if (count) *count = found;
  return out.report(code, error);
}
