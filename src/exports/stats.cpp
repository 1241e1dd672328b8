// Descriptive statistics and histograms. The scalar exports clear their error
// parameter, store the routine's code there and return 0; a negative code
// makes the result NaN, while the warning of MSE_head travels with a valid
// result.
#include <algorithm>

#include "frame/export.hpp"
#include "jqanlys.h"
#include "stats/descriptive.hpp"

using namespace jq;

namespace {

// Shape of every scalar statistic of one float64 array.
template <class F> int32_t scalar_of(JQHandle x, double* result, int32_t* error, F f) {
  if (error) *error = kOk;
  Array1<const double> xs(x);
  double r = 0;
  const int32_t code = f(xs.data(), xs.size(), &r);
  if (result && code >= 0) *result = r;
  return report_scalar(code, result, error);
}

}  // namespace

JQ_EXPORT int32_t Mean_head(JQHandle x, double* mean, int32_t* error) {
  return scalar_of(x, mean, error, stats::mean);
}

JQ_EXPORT int32_t RMS_head(JQHandle x, double* rms, int32_t* error) {
  return scalar_of(x, rms, error, stats::rms);
}

JQ_EXPORT int32_t Median_head(JQHandle x, double* median, int32_t* error) {
  return scalar_of(x, median, error, stats::median);
}

JQ_EXPORT int32_t Moment_head(JQHandle x, int32_t* order, double* moment, int32_t* error) {
  const int32_t k = order ? *order : 0;
  return scalar_of(x, moment, error, [k](const double* v, int32_t n, double* r) { return stats::moment(v, n, k, r); });
}

JQ_EXPORT int32_t MSE_head(JQHandle x, JQHandle y, double* mse, int32_t* error) {
  Array1<const double> ys(y);
  return scalar_of(x, mse, error,
                   [&ys](const double* v, int32_t n, double* r) { return stats::mse(v, n, ys.data(), ys.size(), r); });
}

JQ_EXPORT int32_t CxRMS_head(JQHandle x, double* rms) {
  Array1<const cdouble> xs(x);
  double r = 0;
  const int32_t code = stats::cx_rms(xs.data(), xs.size(), &r);
  if (rms) *rms = r;
  report_scalar(code, rms, nullptr);
  return code;
}

JQ_EXPORT int32_t ModeH(JQHandle x, int32_t intervals, JQHandle modes) {
  Array1<const double> xs(x);
  Out<double> m(modes);
  Outputs out(m);
  Scratch<double> found;
  int32_t count = 0;
  const int32_t code = stats::modes(xs.data(), xs.size(), intervals, found, &count);
  if (code < 0) return out.finish(code);
  if (!out.size(m, count)) return out.finish(kNoMemory);
  std::copy(found.data(), found.data() + count, m.data());
  return code;
}

JQ_EXPORT int32_t histgran_head(JQHandle x, int32_t* intervals, JQHandle counts, JQHandle centres, int32_t* error) {
  if (error) *error = kOk;
  Array1<const double> xs(x);
  Out<int32_t> c(counts);
  Out<double> m(centres);
  Outputs out(c, m);
  const int32_t k = intervals ? *intervals : 0;
  if (xs.empty() || k < 1) return out.report(kEmptyInput, error);
  if (!out.size(c, k) || !out.size(m, k)) return out.report(kNoMemory, error);
  return out.report(stats::histogram(xs.data(), xs.size(), k, c.data(), m.data()), error);
}

JQ_EXPORT int32_t GenHistH(JQHandle x, JQHandle edges, JQHandle counts) {
  Array1<const double> xs(x), es(edges);
  Out<int32_t> c(counts);
  Outputs out(c);
  if (xs.empty()) return out.finish(kEmptyInput);
  if (const int32_t code = stats::check_edges(es.data(), es.size()); code != kOk) return out.finish(code);
  if (!out.size(c, es.size() - 1)) return out.finish(kNoMemory);
  stats::histogram_edges(xs.data(), xs.size(), es.data(), es.size(), c.data());
  return kOk;
}

JQ_EXPORT int32_t Contingency_head(JQHandle table, double* statistic, int32_t* error) {
  if (error) *error = kOk;
  Array2<const double> t(table);
  double r = 0;
  const int32_t code = t.empty() ? kEmptyInput : stats::contingency(t.data(), t.rows(), t.cols(), &r);
  if (statistic && code == kOk) *statistic = r;
  return report_scalar(code, statistic, error);
}
