// Shared by the fitting tests: host arrays from oracle data and relative
// comparisons.
#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "jqrt.hpp"

namespace ft {

inline jqrt::Array<double> arr(const double* v, int n) { return jqrt::Array<double>(std::vector<double>(v, v + n)); }

// Largest difference relative to the largest expected magnitude.
inline double rel_error(const double* got, const double* want, int n) {
  double scale = 1e-300, err = 0;
  for (int i = 0; i < n; ++i) scale = std::max(scale, std::fabs(want[i]));
  for (int i = 0; i < n; ++i) err = std::max(err, std::fabs(got[i] - want[i]));
  return err / scale;
}

}  // namespace ft
