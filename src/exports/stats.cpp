// Descriptive statistics and histograms.
#include "frame/export.hpp"
#include "jqanlys.h"
#include "stats/descriptive.hpp"

using namespace jq;

JQ_EXPORT int32_t Mean_head(JQHandle x, double* mean, int32_t* error) {
  Array1<const double> xs(x);
  return report_scalar(stats::mean(xs.data(), xs.size(), mean), mean, error);
}

JQ_EXPORT int32_t RMS_head(JQHandle x, double* rms, int32_t* error) {
  Array1<const double> xs(x);
  return report_scalar(stats::rms(xs.data(), xs.size(), rms), rms, error);
}

JQ_EXPORT int32_t histgran_head(JQHandle x, int32_t* intervals, JQHandle counts, JQHandle centres, int32_t* error) {
  Array1<const double> xs(x);
  Out<int32_t> c(counts);
  Out<double> m(centres);
  Outputs out(c, m);
  const int32_t k = *intervals;
  if (xs.empty() || k < 1) return out.report(kEmptyInput, error);
  if (!out.size(c, k) || !out.size(m, k)) return out.report(kNoMemory, error);
  return out.report(stats::histogram(xs.data(), xs.size(), k, c.data(), m.data()), error);
}
