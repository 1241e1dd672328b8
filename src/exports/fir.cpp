// FIR design, FIR and multirate filtering, least-squares smoothing and the
// running median.
#include <algorithm>
#include <cmath>
#include <limits>

#include "filters/fir.hpp"
#include "frame/export.hpp"
#include "jqanlys.h"

using namespace jq;

namespace {

constexpr int32_t kMaxFactor = 0x800000;

template <class T> T value_of(const T* p, T fallback) { return p ? *p : fallback; }
double value_of(const double* p) { return value_of(p, std::numeric_limits<double>::quiet_NaN()); }

// A float64 signal filtered in place by run(data, n), the code as the
// result; an empty signal or a failure leaves it empty.
template <class Run> int32_t in_place(JQHandle x, Run run) {
  Array1<double> s(x);
  Out<double> o(x);
  Outputs outs(o);
  if (s.empty()) return outs.fail(kEmptyInput);
  return outs.finish(run(s.data(), s.size()));
}

int32_t median_in_place(JQHandle x, int32_t left, int32_t right) {
  return in_place(x, [&](double* p, int32_t n) { return fir::running_median(p, n, left, right < 0 ? left : right); });
}

// The point-by-point multirate filter. Mode 0 filters, 1 decimates, 2
// interpolates and 3 does both; the output, the history and both counts are
// emptied on failure.
template <class S>
int32_t multirate_export(JQHandle x, JQHandle y, JQHandle state, JQHandle coefficients, int32_t mode,
                         int32_t decimation, int32_t interpolation, uint8_t reset, int32_t* count, int32_t* phase) {
  Array1<const S> xs(x);
  Array1<const double> h(coefficients);
  Array1<S> st(state);
  Out<S> yo(y), so(state);
  Outputs outs(yo, so);
  auto fail = [&](int32_t code) {
    if (count) *count = 0;
    if (phase) *phase = 0;
    return outs.fail(code);
  };
  if (mode < 0 || mode > 3) return fail(kBadSelector);
  const int32_t down = mode == 1 || mode == 3 ? decimation : 1;
  const int32_t up = mode == 2 || mode == 3 ? interpolation : 1;
  if (down < 1 || up < 1) return fail(kBadOrder);
  if (down > kMaxFactor || up > kMaxFactor) return fail(kTooLarge);
  if (h.empty()) return fail(kEmptyInput);
  if (xs.empty()) return fail(kEmptyInput);

  const int32_t n = xs.size(), k = h.size();
  const int64_t hist = fir::history_length(k, up);
  int32_t ph = value_of(phase, 0);
  const bool fresh = reset || st.size() != hist || ph < 0 || ph >= down;
  if (fresh) ph = 0;
  const int64_t m = fir::output_count(n, up, down, ph);
  if (m > std::numeric_limits<int32_t>::max()) return fail(kNoMemory);

  // The output and the state must be distinct arrays; an input that shares
  // its block with either is copied before they are resized.
  if (y && y == state) return fail(kSizeMismatch);
  Scratch<S> xcopy;
  Scratch<double> hcopy;
  const S* in = xs.data();
  const double* taps = h.data();
  auto keep = [](auto& copy, auto*& p, int32_t len) {
    if (copy.allocate(len) != kOk) return false;
    std::copy(p, p + len, copy.data());
    p = copy.data();
    return true;
  };
  if ((x == y || x == state) && !keep(xcopy, in, n)) return fail(kNoMemory);
  if ((coefficients == y || coefficients == state) && !keep(hcopy, taps, k)) return fail(kNoMemory);
  if (st.size() != hist && !outs.size(so, static_cast<int32_t>(hist))) return fail(kNoMemory);
  if (fresh) std::fill(so.data(), so.data() + hist, S{});
  if (!outs.size(yo, static_cast<int32_t>(m))) return fail(kNoMemory);
  const int32_t code = fir::multirate<S>(in, n, taps, k, up, down, ph, so.data(), yo.data());
  if (code < 0) return fail(code);
  if (count) *count = static_cast<int32_t>(m);
  if (phase) *phase = fir::next_phase(n, up, down, ph);
  return code;
}

// The narrowband design from the exports' scalar arguments; the factor used
// is written back.
int32_t narrow(const double* fs, const double* fpass, const double* fstop, const double* ripple,
               const double* attenuation, const int32_t* type, int32_t* factor, fir::Narrow* d) {
  const int32_t code = fir::narrow_design(value_of(fs), value_of(fpass), value_of(fstop), value_of(ripple),
                                          value_of(attenuation), value_of(type, 0), value_of(factor, 0), d);
  if (code == kOk && factor) *factor = d->factor;
  return code;
}

// A signal narrowband-filtered in place; the code goes to the error output.
template <class S>
int32_t narrow_filter_export(JQHandle x, const double* fs, const double* fpass, const double* fstop,
                             const double* ripple, const double* attenuation, const int32_t* type, int32_t* factor,
                             int32_t* error) {
  Array1<S> s(x);
  Out<S> o(x);
  Outputs outs(o);
  if (error) *error = kOk;
  if (s.empty()) return outs.report(kEmptyInput, error);
  fir::Narrow d;
  int32_t code = narrow(fs, fpass, fstop, ripple, attenuation, type, factor, &d);
  if (code == kOk) code = fir::narrow_filter(reinterpret_cast<double*>(s.data()), s.size(), sizeof(S) / 8, d);
  return outs.report(code, error);
}

}  // namespace

JQ_EXPORT int32_t FIRNarrowCoef_head(double* fs, double* passband, double* stopband, double* ripple,
                                     double* attenuation, int32_t* type, int32_t* factor, JQHandle model,
                                     JQHandle interpolator, int32_t* error) {
  Out<double> m(model), i(interpolator);
  Outputs outs(m, i);
  if (error) *error = kOk;
  fir::Narrow d;
  if (int32_t code = narrow(fs, passband, stopband, ripple, attenuation, type, factor, &d))
    return outs.report(code, error);
  if (!outs.size(m, d.model_taps) || !outs.size(i, d.interpolator_taps)) return outs.report(kNoMemory, error);
  std::copy(d.model.data(), d.model.data() + d.model_taps, m.data());
  std::copy(d.interpolator.data(), d.interpolator.data() + d.interpolator_taps, i.data());
  return outs.report(kOk, error);
}

JQ_EXPORT int32_t FIRnarrowFilter_head(JQHandle x, double* fs, double* passband, double* stopband, double* ripple,
                                       double* attenuation, int32_t* type, int32_t* factor, int32_t* error) {
  return narrow_filter_export<double>(x, fs, passband, stopband, ripple, attenuation, type, factor, error);
}

JQ_EXPORT int32_t CxSigFIRnarrowFilter_head(JQHandle x, double* fs, double* passband, double* stopband,
                                            double* ripple, double* attenuation, int32_t* type, int32_t* factor,
                                            int32_t* error) {
  return narrow_filter_export<cdouble>(x, fs, passband, stopband, ripple, attenuation, type, factor, error);
}

JQ_EXPORT int32_t Parks(int32_t* taps, double* fs, JQHandle bands, int32_t* type, JQHandle coefficients,
                        double* deviation, int32_t* iterations, int32_t* error) {
  // The band records are the rows of a matrix of four columns.
  Array2<const double> b(bands);
  const int32_t nb = b.cols() == 4 && b.rows() > 0 ? b.rows() : 0;
  const auto* records = reinterpret_cast<const fir::Band*>(b.data());
  Out<double> c(coefficients);
  Outputs outs(c);
  if (error) *error = kOk;
  const double rate = value_of(fs);
  bool infinite = std::isinf(rate);
  for (int64_t i = 0; i < int64_t{nb} * 4; ++i) infinite = infinite || std::isinf(b.data()[i]);
  auto fail = [&](int32_t code) {
    if (deviation) *deviation = std::numeric_limits<double>::quiet_NaN();
    return outs.report(code, error);
  };
  if (infinite) return fail(kDesignFailed);
  if (deviation) *deviation = std::numeric_limits<double>::quiet_NaN();
  const int32_t n = value_of(taps, 0);
  if (n < 1) return fail(kBadOrder);
  if (nb < 1) return fail(kBadCutoff);
  if (!outs.size(c, n)) return fail(kNoMemory);
  double achieved = std::numeric_limits<double>::quiet_NaN();
  const int32_t code =
      fir::remez(n, rate, records, nb, value_of(type, 0), value_of(iterations, 0), c.data(), &achieved);
  // The achieved deviation is reported also when the exchange ran out of iterations.
  if (deviation) *deviation = achieved;
  outs.report(code, error);
  return code == kNoMemory ? 2 : 0;
}

JQ_EXPORT int32_t FIRCoefs(double* fs, double* fl, double* fh, int32_t* taps, JQHandle coefficients, int32_t* type,
                           int32_t* error) {
  Out<double> c(coefficients);
  Outputs outs(c);
  if (error) *error = kOk;
  // The type is clamped and written back, deliberately.
  const int32_t t = std::clamp(value_of(type, 0), 0, 3);
  if (type) *type = t;
  const int32_t n = value_of(taps, 0);
  if (n < 1) return outs.report(kBadOrder, error);
  if (!outs.size(c, n)) return outs.report(kNoMemory, error);
  return outs.report(fir::ideal_coefficients(value_of(fs), value_of(fl), value_of(fh), n, t, c.data()), error);
}

JQ_EXPORT int32_t MedianFilterCIN(JQHandle x, int32_t* rank, int32_t* error) {
  const int32_t r = value_of(rank, -1);
  const int32_t code = median_in_place(x, r, r);
  if (error) *error = code;
  return 0;
}

JQ_EXPORT int32_t MedianFilter81_H(JQHandle x, int32_t left, int32_t right) { return median_in_place(x, left, right); }

#define JQ_MULTIRATE(Name, S)                                                                                   \
  JQ_EXPORT int32_t Name(JQHandle x, JQHandle y, JQHandle state, JQHandle coefficients, int32_t mode,           \
                         int32_t decimation, int32_t interpolation, uint8_t reset, int32_t* count, int32_t* phase) { \
    return multirate_export<S>(x, y, state, coefficients, mode, decimation, interpolation, reset, count, phase); \
  }
JQ_MULTIRATE(ppMultiRateFIRH_DBL, double)
JQ_MULTIRATE(ppMultiRateFIRH_SGL, float)
JQ_MULTIRATE(ppMultiRateFIRH_CDB, cdouble)
JQ_MULTIRATE(ppMultiRateFIRH_CSG, cfloat)

JQ_EXPORT int32_t SavitzkyGolayCoefH(int32_t side_points, int32_t order, JQHandle coefficients) {
  Out<double> c(coefficients);
  Outputs outs(c);
  if (int32_t code = fir::savgol_check(side_points, order)) return outs.fail(code);
  if (!outs.size(c, 2 * side_points + 1)) return outs.fail(kNoMemory);
  return outs.finish(fir::savgol_coefficients(side_points, order, c.data()));
}

JQ_EXPORT int32_t SavitzkyGolayFiltH(JQHandle x, int32_t side_points, int32_t order) {
  return in_place(x, [&](double* p, int32_t n) { return fir::savgol_filter(p, n, side_points, order, p); });
}
