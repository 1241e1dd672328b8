// Shared by the linear-algebra tests: host matrices from plain data, and
// comparisons that scale with the size of the values.
#pragma once
#include <gtest/gtest.h>

#include <complex>
#include <cstring>
#include <vector>

#include "jqrt.hpp"
#include "linalg/frame.hpp"

namespace lt {

using cd = std::complex<double>;

// A rows x cols host matrix of T filled from interleaved doubles.
template <class T> jqrt::Array2<T> matrix(const double* v, int rows, int cols) {
  jqrt::Array2<T> m(rows, cols);
  std::memcpy(static_cast<void*>(m.data()), v, sizeof(T) * rows * cols);
  return m;
}
template <class T> jqrt::Array<T> vector(const double* v, int n) {
  jqrt::Array<T> m(n);
  std::memcpy(static_cast<void*>(m.data()), v, sizeof(T) * n);
  return m;
}

// Largest element-wise difference relative to the largest expected magnitude.
template <class T> double rel_error(const T* got, const double* want, int n) {
  const T* w = reinterpret_cast<const T*>(want);
  double scale = 1e-300, err = 0;
  for (int i = 0; i < n; ++i) scale = std::max(scale, std::abs(w[i]));
  for (int i = 0; i < n; ++i) err = std::max(err, std::abs(got[i] - w[i]));
  return err / scale;
}

// Row-major product of plain arrays, for reconstructions.
template <class T> std::vector<T> mul(const T* a, const T* b, int m, int k, int n) {
  std::vector<T> r(m * n);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < n; ++j) {
      T s = 0.0;
      for (int t = 0; t < k; ++t) s += a[i * k + t] * b[t * n + j];
      r[i * n + j] = s;
    }
  return r;
}

// Every module block of a call is released, whatever the path.
struct NoBufferLeft {
  int64_t before = jq::linalg::live_buffers();
  ~NoBufferLeft() { EXPECT_EQ(jq::linalg::live_buffers(), before) << "a module buffer was left behind"; }
};

}  // namespace lt
