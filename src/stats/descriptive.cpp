#include "stats/descriptive.hpp"

#include <cmath>

#include "frame/errors.hpp"

namespace jq::stats {

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

int32_t histogram(const double* x, int32_t n, int32_t k, int32_t* counts, double* centres) {
  if (n < 1 || k < 1) return kEmptyInput;
  // The maximum moves only for elements that did not lower the minimum, so a
  // NaN-free pass finds both in one scan.
  double lo = x[0], hi = x[0];
  for (int32_t i = 1; i < n; ++i) {
    if (x[i] < lo) lo = x[i];
    else if (x[i] > hi) hi = x[i];
  }
  if (lo > hi) return kHistogramRange;
  for (int32_t i = 0; i < k; ++i) counts[i] = 0;
  if (lo == hi) {
    for (int32_t i = 0; i < k; ++i) centres[i] = lo;
    counts[k - 1] = n;
    return kOk;
  }
  const double w = (hi - lo) / k;
  double c = lo + w / 2;
  for (int32_t i = 0; i < k; ++i, c += w) centres[i] = c;
  const double scale = k / (hi - lo);
  for (int32_t i = 0; i < n; ++i) {
    const double pos = std::floor((x[i] - lo) * scale);
    if (pos >= 0 && pos < k) {
      ++counts[static_cast<int32_t>(pos)];
    } else if (x[i] == hi) {
      ++counts[k - 1];
    }
  }
  return kOk;
}

}  // namespace jq::stats
