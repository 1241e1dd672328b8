// Power and cross spectrum exports.
#include "frame/export.hpp"
#include "jqanlys.h"
#include "transforms/fft.hpp"
#include "transforms/lease.hpp"
#include "transforms/spectra.hpp"

using namespace jq;
using namespace jq::fft;

namespace {

// The call site's table for n. The spectrum routines take their own
// reference per call; this one only keeps the table built between calls.
int32_t keep_table(TableSource& src, int32_t n) {
  FFTTable* t = nullptr;
  return src.get(0, static_cast<uint32_t>(n), &t);
}

// The result replaces the signal, which is also the output emptied on failure.
int32_t spectrum(JQHandle x, TableSource src) {
  Array1<double> xs(x);
  Out<double> y(x);
  Outputs out(y);
  const int32_t n = xs.size();
  if (n < 1) return out.fail(kEmptyInput);
  if (int32_t rc = keep_table(src, n)) return out.fail(rc);
  return out.finish(power_spectrum(xs.data(), n));
}

int32_t cx_spectrum(JQHandle x, JQHandle result, TableSource src) {
  Array1<const cdouble> xs(x);
  Out<double> y(result);
  Outputs out(y);
  const int32_t n = xs.size();
  if (n < 1) return out.fail(kEmptyInput);
  if (int32_t rc = keep_table(src, n)) return out.fail(rc);
  if (!out.size(y, n)) return out.fail(kNoMemory);
  return out.finish(power_spectrum(xs.data(), n, y.data()));
}

template <class T> int32_t cross(JQHandle x, JQHandle y, JQHandle result, TableSource src) {
  Array1<const T> xs(x), ys(y);
  Out<cdouble> s(result);
  Outputs out(s);
  if (xs.empty() || ys.empty()) return out.fail(kEmptyInput);
  if (xs.size() != ys.size()) return out.fail(kLengthMismatch);
  const int32_t n = xs.size();
  if (int32_t rc = keep_table(src, n)) return out.fail(rc);
  if (!out.size(s, n)) return out.fail(kNoMemory);
  return out.finish(cross_spectrum(xs.data(), ys.data(), n, s.data()));
}

}  // namespace

JQ_EXPORT int32_t SpectrumH(JQHandle x, JQSlot instance) { return spectrum(x, TableSource::plain(instance)); }
JQ_EXPORT int32_t SpectrumH_IDP(JQHandle x, JQSlot instance) { return spectrum(x, TableSource::idp(instance)); }

JQ_EXPORT int32_t CxSpectrumH(JQHandle x, JQHandle spectrum, JQSlot instance) {
  return cx_spectrum(x, spectrum, TableSource::plain(instance));
}
JQ_EXPORT int32_t CxSpectrumH_IDP(JQHandle x, JQHandle spectrum, JQSlot instance) {
  return cx_spectrum(x, spectrum, TableSource::idp(instance));
}

JQ_EXPORT int32_t CrossSpectrumH(JQHandle x, JQHandle y, JQHandle spectrum, JQSlot instance) {
  return cross<double>(x, y, spectrum, TableSource::plain(instance));
}
JQ_EXPORT int32_t CrossSpectrumH_IDP(JQHandle x, JQHandle y, JQHandle spectrum, JQSlot instance) {
  return cross<double>(x, y, spectrum, TableSource::idp(instance));
}

JQ_EXPORT int32_t CxCrossSpectrumH(JQHandle x, JQHandle y, JQHandle spectrum, JQSlot instance) {
  return cross<cdouble>(x, y, spectrum, TableSource::plain(instance));
}
JQ_EXPORT int32_t CxCrossSpectrumH_IDP(JQHandle x, JQHandle y, JQHandle spectrum, JQSlot instance) {
  return cross<cdouble>(x, y, spectrum, TableSource::idp(instance));
}
