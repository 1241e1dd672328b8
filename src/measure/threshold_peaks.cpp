#include "measure/threshold_peaks.hpp"

#include <emmintrin.h>

#include <bit>

#include "frame/errors.hpp"

namespace jq::measure {
namespace {

// Bit j is set when x[j] is not below the threshold (!(threshold > x[j]), so
// a NaN sample sets it), for j < count <= 64.
uint64_t not_below_bits(const double* x, int count, __m128d threshold) {
  uint64_t bits = 0;
  int j = 0;
  auto pair = [&](int k) {
    return static_cast<uint64_t>(_mm_movemask_pd(_mm_cmpngt_pd(threshold, _mm_loadu_pd(x + k))));
  };
  for (; j + 8 <= count; j += 8)
    bits |= (pair(j) | pair(j + 2) << 2 | pair(j + 4) << 4 | pair(j + 6) << 6) << j;
  const double t = _mm_cvtsd_f64(threshold);
  for (; j < count; ++j) bits |= uint64_t{!(t > x[j])} << j;
  return bits;
}

}  // namespace

// The samples are turned into 64-bit masks and each run's ends are found by
// counting zeros, so the cost per sample does not depend on how often the
// signal crosses the threshold. Stepping past the sample that ends a run
// changes nothing, since that sample is below the threshold: the runs are
// the maximal ones.
int32_t threshold_peaks(const double* x, int32_t n, double threshold, int32_t width, int32_t* indices,
                        int32_t* count) {
  *count = 0;
  if (n < 1) return kEmptyInput;
  if (width < 1 || width >= n) return kIndexOutsideRange;
  const __m128d t = _mm_set1_pd(threshold);
  int32_t found = 0;
  bool in_run = false;
  int64_t start = 0;
  for (int64_t base = 0; base < n; base += 64) {
    const int valid = n - base < 64 ? static_cast<int>(n - base) : 64;
    const uint64_t up = not_below_bits(x + base, valid, t);
    // Bits past the last sample are clear, so a run reaching it ends there.
    for (int pos = 0; pos < 64;) {
      const uint64_t ahead = ~uint64_t{0} << pos;
      const uint64_t next = (in_run ? ~up : up) & ahead;
      if (!next) break;
      pos = std::countr_zero(next);
      if (in_run && base + pos - start >= width) indices[found++] = static_cast<int32_t>(start);
      if (!in_run) start = base + pos;
      in_run = !in_run;
    }
  }
  if (in_run && n - start >= width) indices[found++] = static_cast<int32_t>(start);
  *count = found;
  return kOk;
}

}  // namespace jq::measure
