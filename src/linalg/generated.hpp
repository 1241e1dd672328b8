// Matrices made from a few parameters: the special forms, a constant fill,
// the autocorrelation matrix of a vector. Row-major, T double or cdouble.
#pragma once
#include <cstdint>

#include "linalg/frame.hpp"

namespace jq::linalg {

// The kinds of special matrix, as scipy.linalg and numpy make them.
enum SpecialKind : int32_t {
  kIdentity = 0,      // rows x cols, ones on the diagonal
  kDiagonal = 1,      // x on the diagonal, len(x) square
  kToeplitz = 2,      // first column x, first row y (none: conj(x))
  kHankel = 3,        // first column x, last row y (none: zeros)
  kVandermonde = 4,   // len(x) x cols, decreasing powers of x
  kHilbert = 5,       // rows square, 1 / (i + j + 1)
  kInvHilbert = 6,    // the inverse of the Hilbert matrix, from its closed form
  kCirculant = 7,     // first column x, len(x) square
  kPascal = 8,        // rows square, binomial(i + j, i)
  kCompanion = 9,     // of the polynomial x[0] z^(n-1) + ... + x[n-1]
  kSpecialKinds = 10
};

// The shape of a special matrix: kBadSelector for an unknown kind, then
// kEmptyInput when a size it uses is below 1 or a vector it needs is empty,
// kFewerThan2 for a companion of one coefficient. ny is 0 when y is absent.
int32_t special_shape(int32_t kind, int32_t rows, int32_t cols, int32_t nx, int32_t ny, int32_t* out_rows,
                      int32_t* out_cols);
// Fills the matrix special_shape gave; kBadSelector for a companion whose
// leading coefficient is 0.
template <class T>
int32_t special_matrix(int32_t kind, const T* x, int32_t nx, const T* y, int32_t ny, int32_t rows, int32_t cols, T* m);

// order x order autocorrelation matrix of x (n): R[i][j] = r[i - j] and
// R[j][i] = conj(r[i - j]) for i >= j, with the biased estimate
// r[k] = (1/n) sum_t x[t + k] conj(x[t]) (0 at lags of n and beyond).
template <class T> int32_t autocorrelation_matrix(const T* x, int32_t n, int32_t order, T* r);

}  // namespace jq::linalg
