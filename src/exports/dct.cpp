// Cosine and sine transform exports, 1-D and 2-D, with their inverses.
#include "frame/export.hpp"
#include "jqanlys.h"
#include "transforms/dct.hpp"
#include "transforms/lease.hpp"

using namespace jq;
using namespace jq::fft;

namespace {

// The table a transform of length m runs on, from holder `which`.
int32_t get_table(TableSource& src, int which, Trig kind, int32_t m, FFTTable** t) {
  const int64_t length = trig_table_length(kind, m);
  if (length > INT32_MAX) return kNoMemory;
  return src.get(which, static_cast<uint32_t>(length), t);
}

// Forward transforms take a length (below 1: the input's count); inverses
// transform the whole input. The data pointer is read after the resize, so
// the host may pass one handle as input and output.
int32_t one_d(Trig kind, bool inverse, JQHandle x, JQHandle result, int32_t length, TableSource src) {
  Array1<const double> xs(x);
  Out<double> y(result);
  Outputs out(y);
  const int32_t n = xs.size();
  if (n < 1) return out.fail(kEmptyInput);
  const int32_t m = length < 1 ? n : length;
  if (!out.size(y, m)) return out.fail(kNoMemory);
  FFTTable* t = nullptr;
  if (int32_t rc = get_table(src, 0, kind, m, &t)) return out.fail(rc);
  return out.finish(trig_1d(kind, inverse, t, xs.data(), n, m, y.data()));
}

// Every row, then every column: the first holder serves the row length.
int32_t two_d(Trig kind, bool inverse, JQHandle x, JQHandle result, TableSource src) {
  Array2<const double> in(x);
  Out2<double> y(result);
  Outputs out(y);
  if (in.empty()) return out.fail(kEmptyInput);
  const int32_t rows = in.rows(), cols = in.cols();
  if (static_cast<int64_t>(rows) * cols > INT32_MAX) return out.fail(kNoMemory);
  if (!out.size(y, rows, cols)) return out.fail(kNoMemory);
  FFTTable *row_table = nullptr, *col_table = nullptr;
  if (int32_t rc = get_table(src, 0, kind, cols, &row_table)) return out.fail(rc);
  if (int32_t rc = get_table(src, 1, kind, rows, &col_table)) return out.fail(rc);
  return out.finish(trig_2d(kind, inverse, row_table, col_table, in.data(), rows, cols, y.data()));
}

constexpr Trig kCos = Trig::kCosine, kSin = Trig::kSine;

}  // namespace

// ---- 1-D ---------------------------------------------------------------------

JQ_EXPORT int32_t DCT_1DH(JQHandle x, JQHandle y, int32_t length, JQSlot instance) {
  return one_d(kCos, false, x, y, length, TableSource::plain(instance));
}
JQ_EXPORT int32_t DCT_1DH_IDP(JQHandle x, JQHandle y, int32_t length, JQSlot instance) {
  return one_d(kCos, false, x, y, length, TableSource::idp(instance));
}
JQ_EXPORT int32_t InvDCT_1DH(JQHandle y, JQHandle x, JQSlot instance) {
  return one_d(kCos, true, y, x, 0, TableSource::plain(instance));
}
JQ_EXPORT int32_t InvDCT_1DH_IDP(JQHandle y, JQHandle x, JQSlot instance) {
  return one_d(kCos, true, y, x, 0, TableSource::idp(instance));
}
JQ_EXPORT int32_t DST_1DH(JQHandle x, JQHandle y, int32_t length, JQSlot instance) {
  return one_d(kSin, false, x, y, length, TableSource::plain(instance));
}
JQ_EXPORT int32_t DST_1DH_IDP(JQHandle x, JQHandle y, int32_t length, JQSlot instance) {
  return one_d(kSin, false, x, y, length, TableSource::idp(instance));
}
JQ_EXPORT int32_t InvDST_1DH(JQHandle y, JQHandle x, JQSlot instance) {
  return one_d(kSin, true, y, x, 0, TableSource::plain(instance));
}
JQ_EXPORT int32_t InvDST_1DH_IDP(JQHandle y, JQHandle x, JQSlot instance) {
  return one_d(kSin, true, y, x, 0, TableSource::idp(instance));
}

// ---- 2-D ---------------------------------------------------------------------

JQ_EXPORT int32_t DCT_2DH(JQHandle x, JQHandle y, JQSlot row_instance, JQSlot col_instance) {
  return two_d(kCos, false, x, y, TableSource::plain(row_instance, col_instance));
}
JQ_EXPORT int32_t DCT_2DH_IDP(JQHandle x, JQHandle y, JQSlot instance) {
  return two_d(kCos, false, x, y, TableSource::idp(instance));
}
JQ_EXPORT int32_t InvDCT_2DH(JQHandle y, JQHandle x, JQSlot row_instance, JQSlot col_instance) {
  return two_d(kCos, true, y, x, TableSource::plain(row_instance, col_instance));
}
JQ_EXPORT int32_t InvDCT_2DH_IDP(JQHandle y, JQHandle x, JQSlot instance) {
  return two_d(kCos, true, y, x, TableSource::idp(instance));
}
JQ_EXPORT int32_t DST_2DH(JQHandle x, JQHandle y, JQSlot row_instance, JQSlot col_instance) {
  return two_d(kSin, false, x, y, TableSource::plain(row_instance, col_instance));
}
JQ_EXPORT int32_t DST_2DH_IDP(JQHandle x, JQHandle y, JQSlot instance) {
  return two_d(kSin, false, x, y, TableSource::idp(instance));
}
JQ_EXPORT int32_t InvDST_2DH(JQHandle y, JQHandle x, JQSlot row_instance, JQSlot col_instance) {
  return two_d(kSin, true, y, x, TableSource::plain(row_instance, col_instance));
}
JQ_EXPORT int32_t InvDST_2DH_IDP(JQHandle y, JQHandle x, JQSlot instance) {
  return two_d(kSin, true, y, x, TableSource::idp(instance));
}
