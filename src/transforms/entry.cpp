#include "transforms/entry.hpp"

#include <algorithm>
#include <cstring>

#include "frame/errors.hpp"
#include "frame/scratch.hpp"

namespace jq::fft {
namespace {

double* re_of(cdouble* p) { return reinterpret_cast<double*>(p); }
const double* re_of(const cdouble* p) { return reinterpret_cast<const double*>(p); }

// Turns a half-complex spectrum held in the real slots of `out` into the
// full complex spectrum, in place.
void expand_half_complex(cdouble* out, int32_t n) {
  double* d = re_of(out);
  d[1] = 0;
  for (int32_t k = 1; k < n - k; ++k) {
    const double re = d[2 * k], im = d[2 * (n - k)];
    d[2 * k + 1] = im;
    d[2 * (n - k)] = re;
    d[2 * (n - k) + 1] = -im;
  }
  if (n % 2 == 0) d[n + 1] = 0;
}

}  // namespace

void shift_spectrum(cdouble* x, int32_t n) { std::rotate(x, x + (n - n / 2), x + n); }
void unshift_spectrum(cdouble* x, int32_t n) { std::rotate(x, x + n / 2, x + n); }

int32_t forward_real(const FFTTable* t, const double* x, int32_t n, int32_t start, int32_t size, bool shift,
                     cdouble* out) {
  Scratch<double> padded;
  const double* src = x + start;
  if (size > n - start) {
    if (padded.allocate(static_cast<size_t>(size)) != kOk) return kNoMemory;
    std::fill(padded.data(), padded.data() + size, 0.0);
    std::copy(x + start, x + n, padded.data());
    src = padded.data();
  }
  if (int32_t rc = ExecuteRealFFT(t, src, re_of(out), 1, 2, size)) return rc;
  expand_half_complex(out, size);
  if (shift) shift_spectrum(out, size);
  return kOk;
}

int32_t forward_complex(const FFTTable* t, const cdouble* x, int32_t n, int32_t start, int32_t size, bool shift,
                        cdouble* out) {
  Scratch<cdouble> padded;
  const cdouble* src = x + start;
  if (start < 0 || size > n - start) {
    if (padded.allocate(static_cast<size_t>(size)) != kOk) return kNoMemory;
    for (int32_t i = 0; i < size; ++i) {
      const int64_t j = static_cast<int64_t>(start) + i;
      padded[i] = j >= 0 && j < n ? x[j] : cdouble();
    }
    src = padded.data();
  }
  if (int32_t rc = ExecuteComplexFFT(t, re_of(src), re_of(src) + 1, re_of(out), re_of(out) + 1, 2, 2, size))
    return rc;
  if (shift) shift_spectrum(out, size);
  return kOk;
}

int32_t inverse_complex(const FFTTable* t, const cdouble* X, int32_t n, bool shifted, cdouble* out) {
  Scratch<cdouble> rotated;
  if (shifted) {
    if (rotated.allocate(static_cast<size_t>(n)) != kOk) return kNoMemory;
    std::copy(X + n / 2, X + n, rotated.data());
    std::copy(X, X + n / 2, rotated.data() + (n - n / 2));
    X = rotated.data();
  }
  return ExecuteInverseComplexFFT(t, re_of(X), re_of(X) + 1, re_of(out), re_of(out) + 1, 2, 2, n);
}

int32_t inverse_real(const FFTTable* t, const cdouble* X, int32_t n, bool shifted, double* out) {
  Scratch<double> hc;
  if (hc.allocate(static_cast<size_t>(n)) != kOk) return kNoMemory;
  const int32_t zero = shifted ? n / 2 : 0;
  auto bin = [&](int32_t k) { return X[(zero + k) % n]; };
  hc[0] = bin(0).real();
  for (int32_t k = 1; k < n - k; ++k) {
    hc[k] = bin(k).real();
    hc[n - k] = bin(k).imag();
  }
  if (n % 2 == 0) hc[n / 2] = bin(n / 2).real();
  return ExecuteInverseRealFFT(t, hc.data(), out, 1, 1, n);
}

namespace {

// Transforms every row, then every column, of a rows x cols complex array
// in place, through one line of scratch.
int32_t transform_lines(const FFTTable* row_table, const FFTTable* col_table, cdouble* a, int32_t rows,
                        int32_t cols, bool inverse) {
  Scratch<cdouble> line;
  if (line.allocate(static_cast<size_t>(std::max(rows, cols))) != kOk) return kNoMemory;
  auto run = [inverse](const FFTTable* t, const cdouble* in, cdouble* o, ptrdiff_t os, int32_t n) {
    auto f = inverse ? ExecuteInverseComplexFFT : ExecuteComplexFFT;
    return f(t, re_of(in), re_of(in) + 1, re_of(o), re_of(o) + 1, 2, os, n);
  };
  for (int32_t r = 0; r < rows; ++r) {
    cdouble* row = a + static_cast<size_t>(r) * cols;
    std::copy(row, row + cols, line.data());
    if (int32_t rc = run(row_table, line.data(), row, 2, cols)) return rc;
  }
  for (int32_t c = 0; c < cols; ++c) {
    for (int32_t r = 0; r < rows; ++r) line[r] = a[static_cast<size_t>(r) * cols + c];
    if (int32_t rc = run(col_table, line.data(), a + c, 2 * static_cast<ptrdiff_t>(cols), rows)) return rc;
  }
  return kOk;
}

void shift_2d(cdouble* a, int32_t rows, int32_t cols, bool forward) {
  for (int32_t r = 0; r < rows; ++r) {
    cdouble* row = a + static_cast<size_t>(r) * cols;
    forward ? shift_spectrum(row, cols) : unshift_spectrum(row, cols);
  }
  const size_t total = static_cast<size_t>(rows) * cols;
  const size_t by = static_cast<size_t>(forward ? rows - rows / 2 : rows / 2) * cols;
  std::rotate(a, a + by, a + total);
}

}  // namespace

int32_t forward_2d(const FFTTable* row_table, const FFTTable* col_table, const double* in_real,
                   const cdouble* in_complex, int32_t in_rows, int32_t in_cols, int32_t row0, int32_t col0,
                   int32_t rows, int32_t cols, bool shift, cdouble* out) {
  for (int32_t r = 0; r < rows; ++r) {
    cdouble* o = out + static_cast<size_t>(r) * cols;
    const int32_t sr = row0 + r;
    const int32_t avail = sr < in_rows ? std::min(cols, in_cols - col0) : 0;
    const size_t at = static_cast<size_t>(sr) * in_cols + col0;
    for (int32_t c = 0; c < avail; ++c) o[c] = in_real ? cdouble(in_real[at + c], 0.0) : in_complex[at + c];
    std::fill(o + avail, o + cols, cdouble());
  }
  if (int32_t rc = transform_lines(row_table, col_table, out, rows, cols, false)) return rc;
  if (shift) shift_2d(out, rows, cols, true);
  return kOk;
}

int32_t inverse_2d(const FFTTable* row_table, const FFTTable* col_table, const cdouble* X, int32_t rows,
                   int32_t cols, bool shifted, cdouble* out_complex, double* out_real) {
  const size_t total = static_cast<size_t>(rows) * cols;
  Scratch<cdouble> work;
  cdouble* a = out_complex;
  if (!a) {
    if (work.allocate(total) != kOk) return kNoMemory;
    a = work.data();
  }
  std::copy(X, X + total, a);
  if (shifted) shift_2d(a, rows, cols, false);
  if (int32_t rc = transform_lines(row_table, col_table, a, rows, cols, true)) return rc;
  if (out_real)
    for (size_t i = 0; i < total; ++i) out_real[i] = a[i].real();
  return kOk;
}

}  // namespace jq::fft
