// Hilbert and Hartley transform exports: in place on the host's signal.
#include "frame/export.hpp"
#include "jqanlys.h"
#include "transforms/hilbert.hpp"
#include "transforms/lease.hpp"

using namespace jq;
using namespace jq::fft;

namespace {

// The instance keeps the table of length n alive between calls; the routine
// takes its own reference for the call. On failure the signal is emptied.
int32_t in_place(int32_t (*transform)(double*, int32_t, bool), bool inverse, JQHandle signal, TableSource src) {
  Array1<double> x(signal);
  Out<double> y(signal);
  Outputs out(y);
  const int32_t n = x.size();
  if (n < 1) return out.fail(kEmptyInput);
  FFTTable* t = nullptr;
  if (int32_t rc = src.get(0, n, &t)) return out.fail(rc);
  return out.finish(transform(x.data(), n, inverse));
}

}  // namespace

JQ_EXPORT int32_t FastHilbertTransformH(JQHandle x, JQSlot instance) {
  return in_place(hilbert, false, x, TableSource::plain(instance));
}
JQ_EXPORT int32_t FastHilbertTransformH_IDP(JQHandle x, JQSlot instance) {
  return in_place(hilbert, false, x, TableSource::idp(instance));
}
JQ_EXPORT int32_t InvFastHilbertTransformH(JQHandle x, JQSlot instance) {
  return in_place(hilbert, true, x, TableSource::plain(instance));
}
JQ_EXPORT int32_t InvFastHilbertTransformH_IDP(JQHandle x, JQSlot instance) {
  return in_place(hilbert, true, x, TableSource::idp(instance));
}
JQ_EXPORT int32_t FHTH(JQHandle x, JQSlot instance) { return in_place(hartley, false, x, TableSource::plain(instance)); }
JQ_EXPORT int32_t FHTH_IDP(JQHandle x, JQSlot instance) { return in_place(hartley, false, x, TableSource::idp(instance)); }
JQ_EXPORT int32_t InvFHTH(JQHandle x, JQSlot instance) { return in_place(hartley, true, x, TableSource::plain(instance)); }
JQ_EXPORT int32_t InvFHTH_IDP(JQHandle x, JQSlot instance) {
  return in_place(hartley, true, x, TableSource::idp(instance));
}
