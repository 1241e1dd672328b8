#include "measure/threshold_peaks.hpp"

#include "frame/errors.hpp"

namespace jq::measure {
namespace {

// Index of the first sample at or after i for which `stop` holds, or n.
// Four samples are tested per step before falling back to one at a time.
template <class Stop> int64_t scan(const double* x, int64_t i, int64_t n, Stop stop) {
  for (; i + 4 <= n; i += 4)
    if (stop(x[i]) | stop(x[i + 1]) | stop(x[i + 2]) | stop(x[i + 3])) break;
  while (i < n && !stop(x[i])) ++i;
  return i;
}

}  // namespace

int32_t threshold_peaks(const double* x, int32_t n, double threshold, int32_t width, int32_t* indices,
                        int32_t* count) {
  *count = 0;
  if (n < 1) return kEmptyInput;
  if (width < 1 || width >= n) return kIndexOutsideRange;
  // "Below" is threshold > x, so a NaN sample starts or extends a run.
  auto below = [threshold](double v) { return threshold > v; };
  auto not_below = [threshold](double v) { return !(threshold > v); };
  int32_t found = 0;
  for (int64_t i = 0; i < n;) {
    const int64_t start = scan(x, i, n, not_below);
    if (start >= n) break;
    const int64_t end = scan(x, start, n, below);
    if (end - start >= width) indices[found++] = static_cast<int32_t>(start);
    i = end + 1;  // past the sample that ended the run
  }
  *count = found;
  return kOk;
}

}  // namespace jq::measure
