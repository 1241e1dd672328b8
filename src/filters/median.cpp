// Running median over a window of l samples to the left and r to the right,
// with zeros outside the signal. The window is a sorted buffer: each step
// finds the leaving and the entering value by binary search and shifts only
// the values between their two places, so a step costs O(log w) compares
// and a move no longer than the distance between the two values' ranks.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "filters/fir.hpp"
#include "frame/errors.hpp"
#include "frame/scratch.hpp"

namespace jq::fir {

namespace {

// A total order that puts NaN after every number, so that a window holding
// NaNs stays sorted and its NaNs can be found again to be removed.
inline bool before(double a, double b) { return a < b || (!std::isnan(a) && std::isnan(b)); }

inline size_t rank_of(const double* w, size_t count, double v) {
  return static_cast<size_t>(std::lower_bound(w, w + count, v, before) - w);
}

inline double middle(const double* w, size_t count) {
  return count % 2 ? w[count / 2] : (w[count / 2 - 1] + w[count / 2]) / 2;
}

// Replaces one copy of `out` in the sorted window by `in`, keeping it sorted.
inline void replace(double* w, size_t count, double out, double in) {
  size_t i = rank_of(w, count, out);
  if (i >= count) i = count - 1;  // cannot happen for a value the window holds
  if (before(out, in)) {
    // Shift the values in (out, in) one place down.
    size_t j = rank_of(w, count, in);
    std::memmove(w + i, w + i + 1, (j - i - 1) * sizeof(double));
    w[j - 1] = in;
  } else {
    size_t j = rank_of(w, i, in);
    std::memmove(w + j + 1, w + j, (i - j) * sizeof(double));
    w[j] = in;
  }
}

}  // namespace

int32_t running_median(double* x, int32_t n, int32_t l, int32_t r) {
  if (n < 1) return kEmptyInput;
  if (l < 0 || r < 0) return kNegativeSize;
  if (n <= r) return kSizeMismatch;
  if (l == 0 && r == 0) return kOk;
  const int64_t w = int64_t{l} + 1 + r;
  // Every window holds at least w - n padding zeros. Once they fill the
  // middle place(s) of the sorted window whatever the samples are, the
  // output is all zeros and the (possibly enormous) window need not be built.
  if (w - n >= w / 2 + 1) {
    std::fill(x, x + n, 0.0);
    return kOk;
  }
  Scratch<double> window, left;
  if (window.allocate(static_cast<size_t>(w)) != kOk) return kNoMemory;
  // The last l inputs, which the in-place output overwrites before they
  // leave the window.
  if (left.allocate(static_cast<size_t>(l)) != kOk) return kNoMemory;
  double* s = window.data();
  const size_t count = static_cast<size_t>(w);
  std::fill(s, s + l, 0.0);
  std::copy(x, x + r + 1, s + l);
  std::sort(s, s + count, before);
  std::fill(left.data(), left.data() + l, 0.0);

  // left[] is circular: the slot of input k - 1 - l (a padding zero while
  // k <= l) is the slot where input k - 1 is kept.
  size_t slot = 0;
  double previous = x[0];
  x[0] = middle(s, count);
  for (int32_t k = 1; k < n; ++k) {
    double leaving;
    if (l > 0) {
      leaving = left[slot];
      left[slot] = previous;
      slot = slot + 1 == static_cast<size_t>(l) ? 0 : slot + 1;
    } else {
      leaving = previous;
    }
    const int64_t e = int64_t{k} + r;
    const double entering = e < n ? x[e] : 0.0;
    replace(s, count, leaving, entering);
    previous = x[k];
    x[k] = middle(s, count);
  }
  return kOk;
}

}  // namespace jq::fir
