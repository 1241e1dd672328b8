// Numeric integration exports: one float64 result, NaN on failure, the code
// returned. The 2017 forms reject empty samples first; the older ones see an
// empty array as too few points for the rule.
#include "frame/export.hpp"
#include "integration/newton_cotes.hpp"
#include "jqanlys.h"

using namespace jq;

namespace {

int32_t finish(int32_t code, double value, double* result) {
  if (result) *result = value;
  report_scalar(code, result, nullptr);
  return code;
}

// 2-D and 3-D samples arrive as one matrix; planes stack its rows.
int32_t integrate_matrix(JQHandle samples, int32_t planes, double dx, double dy, double dz, int32_t method,
                         double* result, bool reject_empty) {
  Array2<const double> a(samples);
  double value = 0;
  if (reject_empty && a.empty()) return finish(kEmptyInput, value, result);
  // The rule first; the sizes of each dimension are checked once known.
  if (int32_t rc = integ::check_rule(method, INT32_MAX)) return finish(rc, value, result);
  if (a.empty() || planes < 1 || a.rows() % planes) return finish(kSizeMismatch, value, result);
  const int32_t rows = a.rows() / planes;
  const int32_t rc = planes == 1 ? integ::integrate_2d(a.data(), rows, a.cols(), dy, dx, method, &value)
                                 : integ::integrate_3d(a.data(), planes, rows, a.cols(), dz, dy, dx, method, &value);
  return finish(rc, value, result);
}

int32_t integrate_1d(JQHandle samples, double spacing, int32_t method, double* result, bool reject_empty) {
  Array1<const double> y(samples);
  if (reject_empty && y.empty()) return finish(kEmptyInput, 0, result);
  const int32_t n = y.size() < 0 ? 0 : y.size();
  if (int32_t rc = integ::check_rule(method, n)) return finish(rc, 0, result);
  return finish(kOk, integ::integrate(y.data(), n, 1, spacing, method), result);
}

}  // namespace

JQ_EXPORT int32_t NumerIntegration_head(JQArrF64 samples, double spacing, int32_t method, double* result) {
  return integrate_1d(samples, spacing, method, result, false);
}
JQ_EXPORT int32_t NumerIntegration_2017_head(JQArrF64 samples, double spacing, int32_t method, double* result) {
  return integrate_1d(samples, spacing, method, result, true);
}
JQ_EXPORT int32_t NumerIntegration2D_head(JQMatF64 samples, double dx, double dy, int32_t method, double* result) {
  return integrate_matrix(samples, 1, dx, dy, 0, method, result, false);
}
JQ_EXPORT int32_t NumerIntegration2D_2017_head(JQMatF64 samples, double dx, double dy, int32_t method,
                                               double* result) {
  return integrate_matrix(samples, 1, dx, dy, 0, method, result, true);
}
JQ_EXPORT int32_t NumerIntegration3D_head(JQMatF64 samples, int32_t planes, double dx, double dy, double dz,
                                          int32_t method, double* result) {
  return integrate_matrix(samples, planes, dx, dy, dz, method, result, false);
}
JQ_EXPORT int32_t NumerIntegration3D_2017_head(JQMatF64 samples, int32_t planes, double dx, double dy, double dz,
                                               int32_t method, double* result) {
  return integrate_matrix(samples, planes, dx, dy, dz, method, result, true);
}
