// Inner loops of the convolutions: direct sums and spectrum products.
#pragma once
#include <cstdint>

#include "frame/handles.hpp"

namespace jq::sig {

// o[j] += a y[j] for j < m.
void axpy(double a, const double* y, int32_t m, double* o);
void axpy(cdouble a, const cdouble* y, int32_t m, cdouble* o);

// out (n + m - 1 values) = x * y, summed with x outer and y inner.
void direct_convolve(const double* x, int32_t n, const double* y, int32_t m, double* out);
void direct_convolve(const cdouble* x, int32_t n, const cdouble* y, int32_t m, cdouble* out);
// out[j + k] accumulates x[n-1-k] y[j], y outer and x (from its end) inner.
void direct_correlate(const double* x, int32_t n, const double* y, int32_t m, double* out);

// p = a b bin by bin, for half-complex spectra of length L (real
// transforms) or complex spectra of L bins.
void multiply_half_complex(const double* a, const double* b, double* p, int32_t L);
// p += a b, half-complex.
void multiply_add_half_complex(const double* a, const double* b, double* p, int32_t L);
void multiply_complex(const cdouble* a, const cdouble* b, cdouble* p, size_t L);

}  // namespace jq::sig
