#include "linalg/generated.hpp"

#include <algorithm>
#include <cmath>

namespace jq::linalg {
namespace {

// binomial(n, k) by the multiplicative formula: exact while it fits in a
// double's mantissa (each partial product is an integer).
double binomial(int64_t n, int64_t k) {
  double r = 1;
  for (int64_t t = 1; t <= k && std::isfinite(r); ++t) r = r * static_cast<double>(n - k + t) / static_cast<double>(t);
  return r;
}

template <class T> T& at(T* m, int32_t cols, int32_t i, int32_t j) { return m[static_cast<size_t>(i) * cols + j]; }

// The closed form of the inverse Hilbert matrix (0-based):
// (-1)^(i+j) (i+j+1) C(n+i, n-j-1) C(n+j, n-i-1) C(i+j, i)^2, each binomial
// carried along j from the one before, so that a row costs O(n).
template <class T> void inverse_hilbert(int32_t n, T* m) {
  for (int32_t i = 0; i < n; ++i) {
    double c1 = binomial(int64_t{n} + i, n - 1), c2 = binomial(n, i + 1), c3 = 1;
    for (int32_t j = 0; j <= i; ++j) {
      const double v = ((i + j) % 2 ? -1.0 : 1.0) * (i + j + 1) * c1 * c2 * c3 * c3;
      at(m, n, i, j) = at(m, n, j, i) = v;
      c1 = c1 * (n - 1 - j) / (i + j + 2);
      c2 = c2 * (int64_t{n} + j + 1) / (i + j + 2);
      c3 = c3 * (i + j + 1) / (j + 1);
    }
  }
}

}  // namespace

int32_t special_shape(int32_t kind, int32_t rows, int32_t cols, int32_t nx, int32_t ny, int32_t* out_rows,
                      int32_t* out_cols) {
  *out_rows = *out_cols = 0;
  if (kind < 0 || kind >= kSpecialKinds) return kBadSelector;
  int32_t r = nx, c = nx;
  switch (kind) {
    case kIdentity: r = rows, c = cols; break;
    case kToeplitz:
    case kHankel: c = ny > 0 ? ny : nx; break;
    case kVandermonde: c = cols; break;
    case kHilbert:
    case kInvHilbert:
    case kPascal: r = c = rows; break;
    case kCompanion:
      if (nx == 1) return kFewerThan2;
      r = c = nx - 1;
      break;
    default: break;
  }
  if (r < 1 || c < 1) return kEmptyInput;
  *out_rows = r, *out_cols = c;
  return kOk;
}

template <class T>
int32_t special_matrix(int32_t kind, const T* x, int32_t nx, const T* y, int32_t ny, int32_t rows, int32_t cols, T* m) {
  std::fill(m, m + int64_t{rows} * cols, T(0.0));
  switch (kind) {
    case kIdentity:
      for (int32_t i = 0; i < std::min(rows, cols); ++i) at(m, cols, i, i) = 1.0;
      break;
    case kDiagonal:
      for (int32_t i = 0; i < rows; ++i) at(m, cols, i, i) = x[i];
      break;
    case kToeplitz:
      // x[0] wins on the diagonal.
      for (int32_t i = 0; i < rows; ++i)
        for (int32_t j = 0; j < cols; ++j) at(m, cols, i, j) = i >= j ? x[i - j] : ny > 0 ? y[j - i] : conj_of(x[j - i]);
      break;
    case kHankel:
      // x, then y from its second element, read along the anti-diagonals.
      for (int32_t i = 0; i < rows; ++i)
        for (int32_t j = 0; j < cols; ++j) {
          const int64_t k = int64_t{i} + j;
          at(m, cols, i, j) = k < nx ? x[k] : ny > 0 ? y[k - nx + 1] : T(0.0);
        }
      break;
    case kVandermonde:
      for (int32_t i = 0; i < rows; ++i) {
        at(m, cols, i, cols - 1) = 1.0;
        for (int32_t j = cols - 2; j >= 0; --j) at(m, cols, i, j) = at(m, cols, i, j + 1) * x[i];
      }
      break;
    case kHilbert:
      for (int32_t i = 0; i < rows; ++i)
        for (int32_t j = 0; j < cols; ++j) at(m, cols, i, j) = 1.0 / (static_cast<double>(i) + j + 1);
      break;
    case kInvHilbert: inverse_hilbert(rows, m); break;
    case kCirculant:
      for (int32_t i = 0; i < rows; ++i)
        for (int32_t j = 0; j < cols; ++j) at(m, cols, i, j) = x[(i - j + rows) % rows];
      break;
    case kPascal:
      // Pascal's rule keeps every element an exact sum while it fits.
      for (int32_t i = 0; i < rows; ++i)
        for (int32_t j = 0; j < cols; ++j)
          at(m, cols, i, j) = i == 0 || j == 0 ? T(1.0) : at(m, cols, i - 1, j) + at(m, cols, i, j - 1);
      break;
    case kCompanion:
      if (x[0] == T(0.0)) return kBadSelector;
      for (int32_t j = 0; j < cols; ++j) at(m, cols, 0, j) = -x[j + 1] / x[0];
      for (int32_t i = 1; i < rows; ++i) at(m, cols, i, i - 1) = 1.0;
      break;
    default: return kBadSelector;
  }
  return kOk;
}

template <class T> int32_t autocorrelation_matrix(const T* x, int32_t n, int32_t order, T* r) {
  if (int32_t rc = ready()) return rc;
  const int32_t lags = std::min(n, order);
  // Lag k: sum_t conj(x[t]) x[t + k] / n, then down its diagonal.
  for (int32_t k = 0; k < order; ++k) {
    const T v = k < lags ? Blas<T>::dotc(n - k, x, x + k) / static_cast<double>(n) : T(0.0);
    for (int32_t i = k; i < order; ++i) {
      at(r, order, i, i - k) = v;
      at(r, order, i - k, i) = conj_of(v);
    }
  }
  return kOk;
}

#define JQ_INSTANTIATE(T)                                                                                  \
  template int32_t special_matrix(int32_t, const T*, int32_t, const T*, int32_t, int32_t, int32_t, T*); \
  template int32_t autocorrelation_matrix(const T*, int32_t, int32_t, T*);
JQ_INSTANTIATE(double)
JQ_INSTANTIATE(cdouble)

}  // namespace jq::linalg
