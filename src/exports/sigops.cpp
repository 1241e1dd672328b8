// Convolution, correlation and deconvolution exports, 1-D and 2-D.
#include <cstdint>

#include "frame/export.hpp"
#include "jqanlys.h"
#include "sigops/convolution.hpp"

using namespace jq;
using sig::Shape2;

namespace {

int32_t read_or_zero(const int32_t* p) { return p ? *p : 0; }

// A 1-D array reads as a single row.
template <class T, int D> Shape2 shape_of(JQHandle h) {
  if constexpr (D == 1)
    return {1, Array1<const T>(h).size()};
  else
    return {Array2<const T>(h).rows(), Array2<const T>(h).cols()};
}
template <class T, int D> const T* data_of(JQHandle h) {
  if constexpr (D == 1)
    return Array1<const T>(h).data();
  else
    return Array2<const T>(h).data();
}

// The checks and sizing every product export shares: both inputs hold data,
// the size mode is known and fits the inputs, the output takes its size; then
// compute(x, x shape, y, y shape, output). Returns the code.
template <class T, int D, class Compute>
int32_t product(Outputs& outs, Out<T, D>& o, JQHandle x, JQHandle y, int32_t mode, Compute compute) {
  const Shape2 xs = shape_of<T, D>(x), ys = shape_of<T, D>(y);
  if (xs.rows < 1 || xs.cols < 1 || ys.rows < 1 || ys.cols < 1) return kEmptyInput;
  if (mode < sig::kFull || mode > sig::kValid) return kBadSelector;
  const Shape2 os = sig::output_shape(xs, ys, mode);
  if (os.rows == 0) return mode == sig::kValid ? kSizeMismatch : kNoMemory;  // else longer than a host array
  bool sized;
  if constexpr (D == 1)
    sized = outs.size(o, os.cols);
  else
    sized = outs.size(o, os.rows, os.cols);
  if (!sized) return kNoMemory;
  return compute(data_of<T, D>(x), xs, data_of<T, D>(y), ys, o.data());
}

// The real 1-D products: full size, code reported through the error argument.
template <class Compute> int32_t full_1d(JQHandle x, JQHandle y, JQHandle out, int32_t* error, Compute compute) {
  Out<double> o(out);
  Outputs outs(o);
  if (error) *error = kOk;
  const int32_t code = product(outs, o, x, y, sig::kFull, [&](const double* a, Shape2 as, const double* b,
                                                             Shape2 bs, double* r) {
    return compute(a, as.cols, b, bs.cols, r);
  });
  return outs.report(code, error);
}

template <class T>
int32_t product_2d(JQHandle x, JQHandle y, JQHandle out, int32_t mode, int32_t method, bool correlation) {
  Out2<T> o(out);
  Outputs outs(o);
  return outs.finish(product(outs, o, x, y, mode, [&](const T* a, Shape2 as, const T* b, Shape2 bs, T* r) {
    return sig::convolve_2d(a, as, b, bs, r, mode, method, correlation);
  }));
}

int32_t auto_correlation(JQHandle x, int32_t normalisation, int32_t* error) {
  Array1<double> xs(x);
  Out<double> o(x);
  Outputs outs(o);
  if (error) *error = kOk;
  const int32_t n = xs.size();
  if (n < 1) return outs.report(kEmptyInput, error);
  // The signal's values stay in place when the host grows the block.
  if (2 * int64_t{n} - 1 > INT32_MAX || !outs.size(o, 2 * n - 1)) return outs.report(kNoMemory, error);
  return outs.report(sig::autocorrelate(o.data(), n, normalisation), error);
}

}  // namespace

JQ_EXPORT int32_t Convolution(JQArrF64 x, JQArrF64 y, JQArrF64 out, int32_t* method, int32_t* error) {
  const int32_t mth = read_or_zero(method);
  return full_1d(x, y, out, error, [&](const double* a, int32_t n, const double* b, int32_t m, double* o) {
    return sig::convolve(a, n, b, m, o, mth);
  });
}

JQ_EXPORT int32_t Rxy80(JQArrF64 x, JQArrF64 y, JQArrF64 out, int32_t* method, int32_t normalisation,
                        int32_t* error) {
  const int32_t mth = read_or_zero(method);
  return full_1d(x, y, out, error, [&](const double* a, int32_t n, const double* b, int32_t m, double* o) {
    return sig::correlate(a, n, b, m, o, mth, normalisation);
  });
}

JQ_EXPORT int32_t Rxy(JQArrF64 x, JQArrF64 y, JQArrF64 out, int32_t* method, int32_t* error) {
  return Rxy80(x, y, out, method, sig::kNone, error);
}

JQ_EXPORT int32_t AutoCorrelation80(JQArrF64 x, int32_t normalisation, int32_t* error) {
  return auto_correlation(x, normalisation, error);
}

JQ_EXPORT int32_t AutoCorrelation(JQArrF64 x, int32_t* error) { return auto_correlation(x, sig::kNone, error); }

JQ_EXPORT int32_t Deconvolution(JQArrF64 y, JQArrF64 x, int32_t* error) {
  constexpr int32_t kMaxLength = 0x800000;
  Array1<double> ys(y);
  Array1<const double> xs(x);
  Out<double> q(y);
  Outputs outs(q);
  if (error) *error = kOk;
  const int32_t n = ys.size(), m = xs.size();
  int32_t code = kOk;
  if (n > kMaxLength || m > kMaxLength)
    code = kTooLarge;
  else if (n < 1 || m < 1)
    code = kEmptyInput;
  else if (n - m + 1 < 1)
    code = kSizeMismatch;
  else if ((code = sig::deconvolve(ys.data(), n, xs.data(), m)) == kOk && !outs.size(q, n - m + 1))
    code = kNoMemory;
  outs.report(code, error);
  return code;
}

JQ_EXPORT int32_t CxConvolution(JQArrC128 x, JQArrC128 y, JQArrC128 out, int32_t method, int32_t size_mode,
                                int32_t* error) {
  Out<cdouble> o(out);
  Outputs outs(o);
  if (error) *error = kOk;
  const int32_t code = product(outs, o, x, y, size_mode, [&](const cdouble* a, Shape2 as, const cdouble* b,
                                                              Shape2 bs, cdouble* r) {
    return sig::convolve_2d(a, as, b, bs, r, size_mode, method, false);
  });
  outs.report(code, error);
  return code;
}

JQ_EXPORT int32_t Convolve_2DH(JQMatF64 x, JQMatF64 y, JQMatF64 out, int32_t size_mode, int32_t method) {
  return product_2d<double>(x, y, out, size_mode, method, false);
}
JQ_EXPORT int32_t CxConvolve_2DH(JQMatC128 x, JQMatC128 y, JQMatC128 out, int32_t size_mode, int32_t method) {
  return product_2d<cdouble>(x, y, out, size_mode, method, false);
}
JQ_EXPORT int32_t Correlation_2DH(JQMatF64 x, JQMatF64 y, JQMatF64 out, int32_t size_mode, int32_t method) {
  return product_2d<double>(x, y, out, size_mode, method, true);
}
JQ_EXPORT int32_t CxCorrelation_2DH(JQMatC128 x, JQMatC128 y, JQMatC128 out, int32_t size_mode, int32_t method) {
  return product_2d<cdouble>(x, y, out, size_mode, method, true);
}
