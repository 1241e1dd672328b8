// Linear convolution, correlation and deconvolution of sequences, 1-D and
// 2-D, by a direct sum or in the frequency domain. The caller picks the
// method; both give the same values up to rounding.
#pragma once
#include <cstdint>

#include "frame/handles.hpp"

namespace jq::sig {

enum Method : int32_t { kDirect = 0, kFrequency = 1 };
enum Normalisation : int32_t { kNone = 0, kUnbiased = 1, kBiased = 2 };

// Smallest length >= n whose prime factors are all in {2, 3, ..., 43}
// except 23; 0 when no such length fits in int32.
int64_t transform_length(int64_t n);

// Full convolution, n + m - 1 values. A method other than direct or
// frequency leaves out unwritten and returns 0.
int32_t convolve(const double* x, int32_t n, const double* y, int32_t m, double* out, int32_t method);
int32_t convolve(const cdouble* x, int32_t n, const cdouble* y, int32_t m, cdouble* out, int32_t method);

// Cross-correlation, n + m - 1 lags: lag 0 pairs the last sample of x with
// the first of y. -20061 for an unknown normalisation.
int32_t correlate(const double* x, int32_t n, const double* y, int32_t m, double* out, int32_t method,
                  int32_t normalisation);
// Auto-correlation of the n values at x, 2n - 1 lags written from x on
// (x must hold room for them), in the frequency domain.
int32_t autocorrelate(double* x, int32_t n, int32_t normalisation);

// The quotient q (n - m + 1 values) of y (n values) by x (m values), so that
// y = q * x for exact inputs; q overwrites the front of y.
int32_t deconvolve(double* y, int32_t n, const double* x, int32_t m);

// 2-D convolution and correlation of x (r1 x c1) with y (r2 x c2), row-major.
// Size modes: 0 the full (r1 + r2 - 1) x (c1 + c2 - 1) result, 1 the central
// r1 x c1 part, 2 only the part where y lies wholly inside x
// ((r1 - r2 + 1) x (c1 - c2 + 1)). Correlation slides y over x, conjugated
// for complex data. out must hold the size mode_rows/mode_cols give.
enum SizeMode : int32_t { kFull = 0, kSame = 1, kValid = 2 };
struct Shape2 {
  int32_t rows, cols;
};
// The output shape of a mode; {0, 0} when the mode cannot apply.
Shape2 output_shape(Shape2 x, Shape2 y, int32_t mode);
template <class T>
int32_t convolve_2d(const T* x, Shape2 xs, const T* y, Shape2 ys, T* out, int32_t mode, int32_t method,
                    bool correlation);

}  // namespace jq::sig
