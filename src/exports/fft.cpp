// FFT exports: tables, 1-D and 2-D transforms, and the _IDP instance release.
#include "frame/export.hpp"
#include "jqanlys.h"
#include "transforms/entry.hpp"
#include "transforms/fft.hpp"
#include "transforms/lease.hpp"

using namespace jq;
using namespace jq::fft;

// The public header keeps the table opaque.
JQ_EXPORT JQFFTTable* create_kwfft_table(uint32_t n) { return reinterpret_cast<JQFFTTable*>(create_table(n)); }
JQ_EXPORT void destroy_kwfft_table(JQFFTTable* table) { destroy_table(reinterpret_cast<FFTTable*>(table)); }
JQ_EXPORT int32_t TransformUnreserveProc(JQSlot instance) { return ReleaseTransformInstance(instance); }

namespace {

int32_t re_fft(JQHandle x, JQHandle spectrum, TableSource src, int32_t start, int32_t size, bool shift) {
  Array1<const double> xs(x);
  Out<cdouble> y(spectrum);
  Outputs out(y);
  const int32_t n = xs.size();
  if (n < 1) return out.fail(kEmptyInput);
  if (start < 0 || start >= n) return out.fail(kIndexBeyond);
  if (size < 1) return out.fail(kBadTransformLength);
  FFTTable* t = nullptr;
  if (int32_t rc = src.get(0, size, &t)) return out.fail(rc);
  if (!out.size(y, size)) return out.fail(kNoMemory);
  return out.finish(forward_real(t, xs.data(), n, start, size, shift, y.data()));
}

// The start index is deliberately not checked against the input here.
int32_t cx_fft(JQHandle x, JQHandle spectrum, TableSource src, int32_t start, int32_t size, bool shift) {
  Array1<const cdouble> xs(x);
  Out<cdouble> y(spectrum);
  Outputs out(y);
  const int32_t n = xs.size();
  if (n < 1) return out.fail(kEmptyInput);
  if (size < 1) return out.fail(kBadTransformLength);
  FFTTable* t = nullptr;
  if (int32_t rc = src.get(0, size, &t)) return out.fail(rc);
  if (!out.size(y, size)) return out.fail(kNoMemory);
  return out.finish(forward_complex(t, xs.data(), n, start, size, shift, y.data()));
}

// The two 1-D inverses differ only in their output: complex, or real for
// spectra of real signals.
template <class T>
int32_t inverse_1d(JQHandle spectrum, JQHandle x, TableSource& src, bool shifted,
                   int32_t (*run)(const FFTTable*, const cdouble*, int32_t, bool, T*)) {
  Array1<const cdouble> X(spectrum);
  Out<T> y(x);
  Outputs out(y);
  const int32_t n = X.size();
  if (n < 1) return out.fail(kEmptyInput);
  FFTTable* t = nullptr;
  if (int32_t rc = src.get(0, n, &t)) return out.fail(rc);
  if (!out.size(y, n)) return out.fail(kNoMemory);
  return out.finish(run(t, X.data(), n, shifted, y.data()));
}

int32_t inv_cx_fft(JQHandle spectrum, JQHandle x, TableSource src, bool shifted) {
  return inverse_1d<cdouble>(spectrum, x, src, shifted, inverse_complex);
}

int32_t inv_re_fft(JQHandle spectrum, JQHandle x, TableSource src, bool shifted) {
  return inverse_1d<double>(spectrum, x, src, shifted, inverse_real);
}

// The half-complex forms size the output before getting the table.
int32_t half_complex(JQHandle in, JQHandle result, TableSource src, bool inverse) {
  Array1<const double> xs(in);
  Out<double> y(result);
  Outputs out(y);
  const int32_t n = xs.size();
  if (n < 1) return out.fail(kEmptyInput);
  if (!out.size(y, n)) return out.fail(kNoMemory);
  FFTTable* t = nullptr;
  if (int32_t rc = src.get(0, n, &t)) return out.fail(rc);
  auto run = inverse ? ExecuteInverseRealFFT : ExecuteRealFFT;
  return out.finish(run(t, xs.data(), y.data(), 1, 1, n));
}

template <class T>
int32_t fft_2d(JQHandle x, int32_t row0, int32_t col0, int32_t rows, int32_t cols, bool shift, JQHandle spectrum,
               TableSource src) {
  Array2<const T> in(x);
  Out2<cdouble> y(spectrum);
  Outputs out(y);
  if (in.empty()) return out.fail(kEmptyInput);
  if (row0 < 0 || col0 < 0 || row0 >= in.rows() || col0 >= in.cols()) return out.fail(kIndexBeyond);
  if (rows < 1 || cols < 1) return out.fail(kSizeMismatch);
  if (static_cast<int64_t>(rows) * cols > INT32_MAX) return out.fail(kNoMemory);
  FFTTable *row_table = nullptr, *col_table = nullptr;
  if (int32_t rc = src.get(0, cols, &row_table)) return out.fail(rc);
  if (int32_t rc = src.get(1, rows, &col_table)) return out.fail(rc);
  if (!out.size(y, rows, cols)) return out.fail(kNoMemory);
  const double* real = nullptr;
  const cdouble* complex = nullptr;
  if constexpr (std::is_same_v<T, double>) real = in.data();
  else complex = in.data();
  return out.finish(
      forward_2d(row_table, col_table, real, complex, in.rows(), in.cols(), row0, col0, rows, cols, shift, y.data()));
}

template <class T> int32_t inv_fft_2d(JQHandle spectrum, bool shifted, JQHandle x, TableSource src) {
  Array2<const cdouble> X(spectrum);
  Out2<T> y(x);
  Outputs out(y);
  if (X.empty()) return out.fail(kEmptyInput);
  const int32_t rows = X.rows(), cols = X.cols();
  if (static_cast<int64_t>(rows) * cols > INT32_MAX) return out.fail(kNoMemory);
  FFTTable *row_table = nullptr, *col_table = nullptr;
  if (int32_t rc = src.get(0, cols, &row_table)) return out.fail(rc);
  if (int32_t rc = src.get(1, rows, &col_table)) return out.fail(rc);
  if (!out.size(y, rows, cols)) return out.fail(kNoMemory);
  cdouble* complex = nullptr;
  double* real = nullptr;
  if constexpr (std::is_same_v<T, double>) real = y.data();
  else complex = y.data();
  return out.finish(inverse_2d(row_table, col_table, X.data(), rows, cols, shifted, complex, real));
}

}  // namespace

// ---- 1-D ---------------------------------------------------------------------

JQ_EXPORT int32_t ReKWFFTH80(JQHandle x, JQHandle spectrum, JQSlot instance, int32_t start, int32_t fft_size,
                             uint8_t shift) {
  return re_fft(x, spectrum, TableSource::plain(instance), start, fft_size, shift);
}
JQ_EXPORT int32_t ReKWFFTH80_IDP(JQHandle x, JQHandle spectrum, JQSlot instance, int32_t start, int32_t fft_size,
                                 uint8_t shift) {
  return re_fft(x, spectrum, TableSource::idp(instance), start, fft_size, shift);
}
JQ_EXPORT int32_t ReKWFFTH(JQHandle x, JQHandle spectrum, JQSlot instance) {
  return ReKWFFTH80(x, spectrum, instance, 0, Array1<const double>(x).size(), 0);
}

JQ_EXPORT int32_t CxKWFFTH80(JQHandle x, JQHandle spectrum, JQSlot instance, int32_t start, int32_t fft_size,
                             uint8_t shift) {
  return cx_fft(x, spectrum, TableSource::plain(instance), start, fft_size, shift);
}
JQ_EXPORT int32_t CxKWFFTH80_IDP(JQHandle x, JQHandle spectrum, JQSlot instance, int32_t start, int32_t fft_size,
                                 uint8_t shift) {
  return cx_fft(x, spectrum, TableSource::idp(instance), start, fft_size, shift);
}
JQ_EXPORT int32_t CxKWFFTH(JQHandle x, JQHandle spectrum, JQSlot instance) {
  return CxKWFFTH80(x, spectrum, instance, 0, Array1<const cdouble>(x).size(), 0);
}

JQ_EXPORT int32_t InvCxKWFFTH80(JQHandle spectrum, JQHandle x, JQSlot instance, uint8_t shifted) {
  return inv_cx_fft(spectrum, x, TableSource::plain(instance), shifted);
}
JQ_EXPORT int32_t InvCxKWFFTH80_IDP(JQHandle spectrum, JQHandle x, JQSlot instance, uint8_t shifted) {
  return inv_cx_fft(spectrum, x, TableSource::idp(instance), shifted);
}
JQ_EXPORT int32_t InvCxKWFFTH(JQHandle spectrum, JQHandle x, JQSlot instance) {
  return InvCxKWFFTH80(spectrum, x, instance, 0);
}

JQ_EXPORT int32_t InvReKWFFTH80(JQHandle spectrum, JQHandle x, JQSlot instance, uint8_t shifted) {
  return inv_re_fft(spectrum, x, TableSource::plain(instance), shifted);
}
JQ_EXPORT int32_t InvReKWFFTH80_IDP(JQHandle spectrum, JQHandle x, JQSlot instance, uint8_t shifted) {
  return inv_re_fft(spectrum, x, TableSource::idp(instance), shifted);
}
JQ_EXPORT int32_t InvReKWFFTH(JQHandle spectrum, JQHandle x, JQSlot instance) {
  return InvReKWFFTH80(spectrum, x, instance, 0);
}

JQ_EXPORT int32_t ReKWFFTHCH(JQHandle x, JQHandle spectrum, JQSlot instance) {
  return half_complex(x, spectrum, TableSource::plain(instance), false);
}
JQ_EXPORT int32_t ReKWFFTHCH_IDP(JQHandle x, JQHandle spectrum, JQSlot instance) {
  return half_complex(x, spectrum, TableSource::idp(instance), false);
}
JQ_EXPORT int32_t InvReKWFFTHCH(JQHandle spectrum, JQHandle x, JQSlot instance) {
  return half_complex(spectrum, x, TableSource::plain(instance), true);
}
JQ_EXPORT int32_t InvReKWFFTHCH_IDP(JQHandle spectrum, JQHandle x, JQSlot instance) {
  return half_complex(spectrum, x, TableSource::idp(instance), true);
}

// ---- 2-D ---------------------------------------------------------------------

JQ_EXPORT int32_t CxFFT2D_H(JQHandle x, int32_t row_offset, int32_t col_offset, int32_t rows, int32_t cols,
                            uint8_t shift, JQHandle spectrum, JQSlot row_instance, JQSlot col_instance) {
  return fft_2d<cdouble>(x, row_offset, col_offset, rows, cols, shift, spectrum,
                         TableSource::plain(row_instance, col_instance));
}
JQ_EXPORT int32_t CxFFT2D_H_IDP(JQHandle x, int32_t row_offset, int32_t col_offset, int32_t rows, int32_t cols,
                                uint8_t shift, JQHandle spectrum, JQSlot instance) {
  return fft_2d<cdouble>(x, row_offset, col_offset, rows, cols, shift, spectrum, TableSource::idp(instance));
}
JQ_EXPORT int32_t ReFFT2D_H(JQHandle x, int32_t row_offset, int32_t col_offset, int32_t rows, int32_t cols,
                            uint8_t shift, JQHandle spectrum, JQSlot row_instance, JQSlot col_instance) {
  return fft_2d<double>(x, row_offset, col_offset, rows, cols, shift, spectrum,
                        TableSource::plain(row_instance, col_instance));
}
JQ_EXPORT int32_t ReFFT2D_H_IDP(JQHandle x, int32_t row_offset, int32_t col_offset, int32_t rows, int32_t cols,
                                uint8_t shift, JQHandle spectrum, JQSlot instance) {
  return fft_2d<double>(x, row_offset, col_offset, rows, cols, shift, spectrum, TableSource::idp(instance));
}
JQ_EXPORT int32_t CxInvFFT2D_H(JQHandle spectrum, uint8_t shifted, JQHandle x, JQSlot row_instance,
                               JQSlot col_instance) {
  return inv_fft_2d<cdouble>(spectrum, shifted, x, TableSource::plain(row_instance, col_instance));
}
JQ_EXPORT int32_t CxInvFFT2D_H_IDP(JQHandle spectrum, uint8_t shifted, JQHandle x, JQSlot instance) {
  return inv_fft_2d<cdouble>(spectrum, shifted, x, TableSource::idp(instance));
}
JQ_EXPORT int32_t ReInvFFT2D_H(JQHandle spectrum, uint8_t shifted, JQHandle x, JQSlot row_instance,
                               JQSlot col_instance) {
  return inv_fft_2d<double>(spectrum, shifted, x, TableSource::plain(row_instance, col_instance));
}
JQ_EXPORT int32_t ReInvFFT2D_H_IDP(JQHandle spectrum, uint8_t shifted, JQHandle x, JQSlot instance) {
  return inv_fft_2d<double>(spectrum, shifted, x, TableSource::idp(instance));
}
