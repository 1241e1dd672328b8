// The FFT entry points on plain arrays: cutting or zero-extending the input,
// the full spectrum from the half-complex one, the shifted layout, and the
// 2-D transforms. Tables come from the caller.
#pragma once
#include <cstdint>

#include "frame/handles.hpp"
#include "transforms/fft.hpp"

namespace jq::fft {

// Forward real FFT of `size` samples taken from x[start ...]; samples past
// the n available are zeros. out holds `size` complex values.
int32_t forward_real(const FFTTable* t, const double* x, int32_t n, int32_t start, int32_t size, bool shift,
                     cdouble* out);
// The same for complex data. Samples outside x[0 .. n-1] read as zeros.
int32_t forward_complex(const FFTTable* t, const cdouble* x, int32_t n, int32_t start, int32_t size, bool shift,
                        cdouble* out);
// Inverse complex FFT of n bins, optionally given in the shifted layout.
int32_t inverse_complex(const FFTTable* t, const cdouble* X, int32_t n, bool shifted, cdouble* out);
// Inverse FFT of the spectrum of a real signal: only bins 0 .. n/2 are read.
int32_t inverse_real(const FFTTable* t, const cdouble* X, int32_t n, bool shifted, double* out);

// Rotates a spectrum of n bins into the shifted layout (zero frequency at
// n/2), or back.
void shift_spectrum(cdouble* x, int32_t n);
void unshift_spectrum(cdouble* x, int32_t n);

// 2-D forward FFT of the block of `in` (in_rows x in_cols, real or complex)
// starting at (row0, col0), cut or zero-extended to rows x cols.
// row_table has length cols, col_table length rows.
int32_t forward_2d(const FFTTable* row_table, const FFTTable* col_table, const double* in_real,
                   const cdouble* in_complex, int32_t in_rows, int32_t in_cols, int32_t row0, int32_t col0,
                   int32_t rows, int32_t cols, bool shift, cdouble* out);
// 2-D inverse FFT of rows x cols bins into complex or real output.
int32_t inverse_2d(const FFTTable* row_table, const FFTTable* col_table, const cdouble* X, int32_t rows,
                   int32_t cols, bool shifted, cdouble* out_complex, double* out_real);

}  // namespace jq::fft
