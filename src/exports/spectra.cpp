// Power and cross spectra.
#include "frame/export.hpp"
#include "jqanlys.h"
#include "transforms/lease.hpp"
#include "transforms/spectra.hpp"

using namespace jq;
using namespace jq::fft;

namespace {

// Keeps the call site's table of length n alive between calls.
int32_t keep_table(TableSource& src, int32_t n) {
  FFTTable* t = nullptr;
  return src.get(0, static_cast<uint32_t>(n), &t);
}

int32_t spectrum(JQHandle signal, TableSource src) {
  Out<double> x(signal);
  Outputs out(x);
  const int32_t n = Array1<double>(signal).size();
  if (n < 1) return out.fail(kEmptyInput);
  if (int32_t rc = keep_table(src, n)) return out.fail(rc);
  return out.finish(power_spectrum(x.data(), n));
}

int32_t cx_spectrum(JQHandle signal, JQHandle power, TableSource src) {
  Array1<const cdouble> xs(signal);
  Out<double> p(power);
  Outputs out(p);
  const int32_t n = xs.size();
  if (n < 1) return out.fail(kEmptyInput);
  if (int32_t rc = keep_table(src, n)) return out.fail(rc);
  if (!out.size(p, n)) return out.fail(kNoMemory);
  return out.finish(power_spectrum_complex(xs.data(), n, p.data()));
}

template <class T> int32_t cross(JQHandle x, JQHandle y, JQHandle cross, TableSource src) {
  Array1<const T> xs(x), ys(y);
  Out<cdouble> s(cross);
  Outputs out(s);
  if (xs.empty() || ys.empty()) return out.fail(kEmptyInput);
  const int32_t n = xs.size();
  if (ys.size() != n) return out.fail(kLengthMismatch);
  if (int32_t rc = keep_table(src, n)) return out.fail(rc);
  if (!out.size(s, n)) return out.fail(kNoMemory);
  if constexpr (std::is_same_v<T, double>) return out.finish(cross_spectrum(xs.data(), ys.data(), n, s.data()));
  else return out.finish(cross_spectrum_complex(xs.data(), ys.data(), n, s.data()));
}

}  // namespace

JQ_EXPORT int32_t SpectrumH(JQHandle signal, JQSlot instance) { return spectrum(signal, TableSource::plain(instance)); }
JQ_EXPORT int32_t SpectrumH_IDP(JQHandle signal, JQSlot instance) {
  return spectrum(signal, TableSource::idp(instance));
}
JQ_EXPORT int32_t CxSpectrumH(JQHandle signal, JQHandle power, JQSlot instance) {
  return cx_spectrum(signal, power, TableSource::plain(instance));
}
JQ_EXPORT int32_t CxSpectrumH_IDP(JQHandle signal, JQHandle power, JQSlot instance) {
  return cx_spectrum(signal, power, TableSource::idp(instance));
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
