// IIR design and filtering exports.
//
// Design: the code goes to the error argument and the result is 0 (or the
// host's status after a failed resize); on failure both coefficient arrays
// come back empty. Filtering keeps the filter's memory in state arrays the
// caller owns: an array whose length does not fit the coefficients is
// resized and starts from zeros; otherwise the flag says whether to carry on.
#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>

#include "filters/iir_design.hpp"
#include "filters/iir_filter.hpp"
#include "frame/export.hpp"
#include "jqanlys.h"

using namespace jq;
using namespace jq::iir;

namespace {

double value_or_nan(const double* p) { return p ? *p : std::numeric_limits<double>::quiet_NaN(); }
int32_t value_or_zero(const int32_t* p) { return p ? *p : 0; }
int64_t count(Handle h) { return std::max<int32_t>(Array1<const uint8_t>(h).size(), 0); }

// ---- design -----------------------------------------------------------------

int32_t design_export(Family family, const Figures& figures, const double* fs, const double* fl, const double* fh,
                      const int32_t* order, const int32_t* type, int32_t topology, JQHandle reverse,
                      JQHandle forward, int32_t* error) {
  if (error) *error = kOk;
  Out<double> rev(reverse), fwd(forward);
  Outputs outs(rev, fwd);
  const int32_t n = value_or_zero(order), t = value_or_zero(type);
  const Lengths len = coefficient_lengths(n, t, topology);
  if (len.reverse < 1 || len.forward < 1) return outs.report(kBadOrder, error);
  // Lengths beyond a host count fail as a refused resize would.
  if (len.forward > INT32_MAX) {
    outs.report(kNoMemory, error);
    return kNoMemory;
  }
  if (!outs.size(rev, static_cast<int32_t>(len.reverse)) || !outs.size(fwd, static_cast<int32_t>(len.forward)))
    return outs.report(kNoMemory, error);
  const DesignRequest r{t, n, len.reverse, rev.data(), len.forward, fwd.data(), topology};
  return outs.report(design(family, figures, r, value_or_nan(fs), value_or_nan(fl), value_or_nan(fh)), error);
}

Figures ripple(const double* r) { return {value_or_nan(r), 0}; }
Figures attenuation(const double* a) { return {0, value_or_nan(a)}; }
Figures both(const double* r, const double* a) { return {value_or_nan(r), value_or_nan(a)}; }

// ---- filter state -----------------------------------------------------------

// Resizes an array to no elements (its count reads 0 even if the host
// refuses). A null handle is already empty: resizing it would only make the
// host allocate a block the caller never sees.
template <class T> void empty_array(JQHandle h) {
  if (!h) return;
  Out<T> o(h);
  Outputs outs(o);
  outs.fail(kOk);
}

// After a failed call, empties each array (of the matching element type).
template <class... T, class... H> void empty_on_failure(int32_t code, H... arrays) {
  static_assert(sizeof...(T) == sizeof...(H));
  if (code < 0) (empty_array<T>(arrays), ...);
}

// How a filter call ended: its code and, after a failed resize, the host's status.
struct Status {
  int32_t code = kOk;
  int32_t host = 0;
};

// Resizes an array of the caller. A null handle cannot carry a new block
// back to the caller, so it is refused without asking the host.
template <class T> Status resize_array(Out<T>& o, int64_t n) {
  if (!o.handle()) return {kNoMemory, 0};
  if (int32_t h = host_resize(Out<T>::type_code, 1, o.slot(), static_cast<int32_t>(n), 0)) return {kNoMemory, h};
  return {};
}

// A state array of the caller: sized to fit, zeroed when fresh or asked to.
template <class T> class State {
 public:
  explicit State(JQHandle h) : out_(h) {}
  Status fit(int64_t n) {
    if (count(out_.handle()) == n) return {};
    fresh_ = true;
    // Two histories joined can outgrow a host count: refused as a resize would be.
    if (n > INT32_MAX) return {kNoMemory, 0};
    return resize_array(out_, n);
  }
  bool fresh() const { return fresh_; }
  void zero(int64_t n) { std::fill(data(), data() + n, T{}); }
  void empty() { empty_array<T>(out_.handle()); }
  T* data() const { return out_.data(); }

 private:
  Out<T> out_;
  bool fresh_ = false;
};

// Fits the states in order; the first that cannot be resized is emptied. All
// start from zeros when one was resized or when reset is asked for.
template <class... S> Status fit_states(bool reset, std::pair<S*, int64_t>... s) {
  Status st;
  auto fit = [&](auto* state, int64_t n) {
    if (st.code) return;
    if (const Status r = state->fit(n); r.code) {
      state->empty();
      st = r;
    }
  };
  (fit(s.first, s.second), ...);
  if (st.code) return st;
  if (reset || (s.first->fresh() || ...)) (s.first->zero(s.second), ...);
  return st;
}

// ---- direct form ------------------------------------------------------------

// Classifies the coefficients: 1 when both are empty (nothing to do), else the
// code (0 to filter).
int32_t classify(int64_t na, int64_t nb) {
  if (na == 0 && nb == 0) return 1;
  return nb == 0 ? kSizeMismatch : kOk;
}

// Direct form with separate states: X in place (or into Y for a real signal
// with complex coefficients).
template <class X, class C, class Y>
Status direct_two(JQHandle x, JQHandle y, JQHandle a, JQHandle b, JQHandle fstate, JQHandle rstate, bool reset) {
  Array1<X> xs(x);
  Array1<C> as(a), bs(b);
  const int64_t n = count(x), na = count(a), nb = count(b);
  if (n < 1) return {kEmptyInput};
  if (int32_t c = classify(na, nb)) return {c == 1 ? kOk : c};
  State<X> f(fstate);
  State<Y> r(rstate);
  // A missing reverse polynomial leaves its state alone.
  Status st = na > 0 ? fit_states(reset, std::pair{&f, nb - 1}, std::pair{&r, na - 1}) : fit_states(reset, std::pair{&f, nb - 1});
  if (st.code) return st;
  Y* out = reinterpret_cast<Y*>(xs.data());
  if constexpr (!std::is_same_v<X, Y>) {
    Out<Y> yo(y);
    if (const Status r = resize_array(yo, n); r.code) return r;
    out = yo.data();
  }
  return {direct_form<X, C, Y>(xs.data(), out, n, as.data(), na, bs.data(), nb, f.data(), na > 0 ? r.data() : nullptr)};
}

// Direct form with one state: the forward history, then the reverse one.
template <class T> Status direct_one(T* x, int64_t n, JQHandle a, JQHandle b, JQHandle state, bool reset, bool fir) {
  const int64_t nb = count(b), na = fir && nb > 0 ? 0 : count(a);
  if (int32_t c = classify(na, nb)) return {c == 1 ? kOk : c};
  State<T> s(state);
  const int64_t nf = nb - 1, len = nf + std::max<int64_t>(na - 1, 0);
  Status st = fit_states(reset, std::pair{&s, len});
  if (st.code) return st;
  return {direct_form<T, double, T>(x, x, n, Array1<const double>(a).data(), na, Array1<const double>(b).data(), nb,
                                    s.data(), s.data() + nf)};
}

// ---- cascades ---------------------------------------------------------------

int32_t order_of(int32_t topology) { return topology == 0 ? 2 : topology == 1 ? 4 : 0; }

// Checks the topology and the two arrays and fits the state; on success m and
// ns describe the cascade. done is set when there is nothing to filter.
template <class T>
Status cascade_setup(int32_t topology, JQHandle a, JQHandle b, State<T>& s, bool reset, int32_t* m, int64_t* ns,
                     bool* done) {
  *m = order_of(topology);
  if (*m == 0) return {kBadSelector};
  const int64_t na = count(a), nb = count(b);
  *ns = na > 0 ? na / *m : nb / (*m + 1);
  if (na == 0 && nb == 0) {
    *done = true;
    return {};
  }
  if (na == 0 || nb == 0) return {kSizeMismatch};
  Status st = fit_states(reset, std::pair{&s, *m * *ns});
  if (st.code) return st;
  if (na != *m * *ns || nb != (*m + 1) * *ns) return {kCoefficientLength};
  return {};
}

template <class T> Status cascade_block(T* x, int64_t n, int32_t topology, JQHandle a, JQHandle b, JQHandle state, bool reset) {
  State<T> s(state);
  int32_t m;
  int64_t ns;
  bool done = false;
  Status st = cascade_setup(topology, a, b, s, reset, &m, &ns, &done);
  if (st.code || done) return st;
  cascade(x, n, m, ns, Array1<const double>(a).data(), Array1<const double>(b).data(), s.data());
  return {};
}

// ---- reporting --------------------------------------------------------------

// Shape (b): the code in the error argument, the signal emptied on failure;
// the result is the host's status after a failed resize.
template <class T> int32_t report_error(const Status& st, JQHandle signal, int32_t* error) {
  if (error) *error = st.code;
  empty_on_failure<T>(st.code, signal);
  return st.code == kNoMemory ? st.host : 0;
}

// Block filtering in place with a kept cascade state.
template <class T> int32_t filter2(JQHandle x, const int32_t* topology, JQHandle a, JQHandle b, JQHandle state, uint8_t flag, int32_t* error) {
  if (error) *error = kOk;
  const int64_t n = count(x);
  const Status st = n < 1 ? Status{kEmptyInput}
                          : cascade_block(Array1<T>(x).data(), n, topology ? *topology : -1, a, b, state, flag != 1);
  return report_error<T>(st, x, error);
}

template <class T> int32_t filter_one_state(JQHandle x, JQHandle a, JQHandle b, JQHandle state, uint8_t flag) {
  const int64_t n = count(x);
  const Status st = n < 1 ? Status{kEmptyInput} : direct_one(Array1<T>(x).data(), n, a, b, state, flag != 1, false);
  empty_on_failure<T, T>(st.code, x, state);
  return st.code;
}

template <class T> int32_t filter_two_states(JQHandle x, JQHandle a, JQHandle b, JQHandle fstate, JQHandle rstate, uint8_t flag, int32_t* error) {
  if (error) *error = kOk;
  return report_error<T>(direct_two<T, double, T>(x, x, a, b, fstate, rstate, flag != 1), x, error);
}

// One sample through the structure's filter; a non-zero flag starts afresh.
template <class T> int32_t point_by_point(T* sample, int32_t structure, JQHandle a, JQHandle b, JQHandle state, uint8_t flag) {
  if (!sample) return kEmptyInput;
  const bool reset = flag != 0;
  Status st;
  if (structure == 0 || structure == 1)
    st = cascade_block(sample, 1, structure, a, b, state, reset);
  else if (structure == 2 || structure == 3)
    st = direct_one(sample, 1, a, b, state, reset, structure == 3);
  else
    st = {kBadSelector};
  empty_on_failure<T>(st.code, state);
  if (st.code < 0) *sample = T{};
  return st.code;
}

// Complex coefficients: separate states, the code as the result; the signal
// (or output) emptied on failure.
template <class X> int32_t complex_coefficients(JQHandle x, JQHandle y, JQHandle a, JQHandle b, JQHandle fstate, JQHandle rstate, uint8_t flag) {
  const Status st = direct_two<X, cdouble, cdouble>(x, y, a, b, fstate, rstate, flag != 1);
  // With complex data x is also the output; emptying it twice is harmless.
  empty_on_failure<X, cdouble>(st.code, x, y);
  return st.code;
}

// Zero phase: the signal in place, the code as the result.
template <class Run> int32_t zero_phase_export(JQHandle x, Run run) {
  const int64_t n = count(x);
  const Status st = n < 1 ? Status{kEmptyInput} : run(Array1<double>(x).data(), n);
  empty_on_failure<double>(st.code, x);
  return st.code;
}

}  // namespace

JQ_EXPORT int32_t BWCoefs90(double* fs, double* fl, double* fh, int32_t* order, int32_t* type, int32_t topology,
                            JQHandle reverse, JQHandle forward, int32_t* error) {
  return design_export(kButterworth, {}, fs, fl, fh, order, type, topology, reverse, forward, error);
}
JQ_EXPORT int32_t BWCoefs(double* fs, double* fl, double* fh, int32_t* order, int32_t* type, JQHandle reverse,
                          JQHandle forward, int32_t* error) {
  return BWCoefs90(fs, fl, fh, order, type, natural_topology(value_or_zero(type)), reverse, forward, error);
}
JQ_EXPORT int32_t ChebyshevCoefs90(double* fs, double* fl, double* fh, double* ripple_db, int32_t* order,
                                   int32_t* type, int32_t topology, JQHandle reverse, JQHandle forward, int32_t* error) {
  return design_export(kChebyshev, ripple(ripple_db), fs, fl, fh, order, type, topology, reverse, forward, error);
}
JQ_EXPORT int32_t ChebyshevCoefs(double* fs, double* fl, double* fh, double* ripple_db, int32_t* order, int32_t* type,
                                 JQHandle reverse, JQHandle forward, int32_t* error) {
  return ChebyshevCoefs90(fs, fl, fh, ripple_db, order, type, natural_topology(value_or_zero(type)), reverse, forward,
                          error);
}
JQ_EXPORT int32_t InvChebyshevCoefs90(double* fs, double* fl, double* fh, double* attenuation_db, int32_t* order,
                                      int32_t* type, int32_t topology, JQHandle reverse, JQHandle forward,
                                      int32_t* error) {
  return design_export(kInvChebyshev, attenuation(attenuation_db), fs, fl, fh, order, type, topology, reverse, forward,
                       error);
}
JQ_EXPORT int32_t InvChebyshevCoefs(double* fs, double* fl, double* fh, double* attenuation_db, int32_t* order,
                                    int32_t* type, JQHandle reverse, JQHandle forward, int32_t* error) {
  return InvChebyshevCoefs90(fs, fl, fh, attenuation_db, order, type, natural_topology(value_or_zero(type)), reverse,
                             forward, error);
}
JQ_EXPORT int32_t EllipticCoefs90(double* fs, double* fl, double* fh, double* ripple_db, double* attenuation_db,
                                  int32_t* order, int32_t* type, int32_t topology, JQHandle reverse, JQHandle forward,
                                  int32_t* error) {
  return design_export(kElliptic, both(ripple_db, attenuation_db), fs, fl, fh, order, type, topology, reverse, forward,
                       error);
}
JQ_EXPORT int32_t EllipticCoefs(double* fs, double* fl, double* fh, double* ripple_db, double* attenuation_db,
                                int32_t* order, int32_t* type, JQHandle reverse, JQHandle forward, int32_t* error) {
  return EllipticCoefs90(fs, fl, fh, ripple_db, attenuation_db, order, type, natural_topology(value_or_zero(type)),
                         reverse, forward, error);
}
JQ_EXPORT int32_t BesselCoefs90(double* fs, double* fl, double* fh, int32_t* order, int32_t* type, int32_t topology,
                                JQHandle reverse, JQHandle forward, int32_t* error) {
  return design_export(kBessel, {}, fs, fl, fh, order, type, topology, reverse, forward, error);
}
JQ_EXPORT int32_t BesselCoefs(double* fs, double* fl, double* fh, int32_t* order, int32_t* type, JQHandle reverse,
                              JQHandle forward, int32_t* error) {
  return BesselCoefs90(fs, fl, fh, order, type, natural_topology(value_or_zero(type)), reverse, forward, error);
}

JQ_EXPORT int32_t IIR_Filter(JQHandle x, JQHandle reverse, JQHandle forward, JQHandle fstate, JQHandle rstate,
                             uint8_t flag, int32_t* error) {
  return filter_two_states<double>(x, reverse, forward, fstate, rstate, flag, error);
}
JQ_EXPORT int32_t CxSigIIR_Filter(JQHandle x, JQHandle reverse, JQHandle forward, JQHandle fstate, JQHandle rstate,
                                  uint8_t flag, int32_t* error) {
  return filter_two_states<cdouble>(x, reverse, forward, fstate, rstate, flag, error);
}
JQ_EXPORT int32_t IIR_Filter_OneState(JQHandle x, JQHandle reverse, JQHandle forward, JQHandle state, uint8_t flag) {
  return filter_one_state<double>(x, reverse, forward, state, flag);
}
JQ_EXPORT int32_t CxSigIIR_Filter_OneState(JQHandle x, JQHandle reverse, JQHandle forward, JQHandle state,
                                           uint8_t flag) {
  return filter_one_state<cdouble>(x, reverse, forward, state, flag);
}
JQ_EXPORT int32_t IIR_Filter2(JQHandle x, int32_t* topology, JQHandle reverse, JQHandle forward, JQHandle state,
                              uint8_t flag, int32_t* error) {
  return filter2<double>(x, topology, reverse, forward, state, flag, error);
}
JQ_EXPORT int32_t CxSigIIR_Filter2(JQHandle x, int32_t* topology, JQHandle reverse, JQHandle forward, JQHandle state,
                                   uint8_t flag, int32_t* error) {
  return filter2<cdouble>(x, topology, reverse, forward, state, flag, error);
}
JQ_EXPORT int32_t IIR_Filter_PtbyPt(double* sample, int32_t structure, JQHandle reverse, JQHandle forward,
                                    JQHandle state, uint8_t flag) {
  return point_by_point(sample, structure, reverse, forward, state, flag);
}
JQ_EXPORT int32_t CxSigIIR_Filter_PtbyPt(double sample[2], int32_t structure, JQHandle reverse, JQHandle forward,
                                         JQHandle state, uint8_t flag) {
  return point_by_point(reinterpret_cast<cdouble*>(sample), structure, reverse, forward, state, flag);
}
JQ_EXPORT int32_t CxIIR_Filter_H(JQHandle x, JQHandle reverse, JQHandle forward, JQHandle fstate, JQHandle rstate,
                                 uint8_t flag) {
  return complex_coefficients<cdouble>(x, x, reverse, forward, fstate, rstate, flag);
}
JQ_EXPORT int32_t CxIIRReSig_Filter_H(JQHandle x, JQHandle reverse, JQHandle forward, JQHandle fstate,
                                      JQHandle rstate, uint8_t flag, JQHandle y) {
  return complex_coefficients<double>(x, y, reverse, forward, fstate, rstate, flag);
}

JQ_EXPORT int32_t zeroPhaseCascadeFiltH(JQHandle x, int32_t topology, JQHandle reverse, JQHandle forward,
                                        JQHandle state1, JQHandle state2, uint8_t flag) {
  return zero_phase_export(x, [&](double* p, int64_t n) -> Status {
    State<double> s1(state1), s2(state2);
    int32_t m;
    int64_t ns;
    bool done = false;
    Status st = cascade_setup(topology, reverse, forward, s1, flag != 1, &m, &ns, &done);
    if (st.code || done) return st;
    st = fit_states(flag != 1, std::pair{&s2, m * ns});
    if (st.code) return st;
    return {zero_phase_cascade(p, n, m, ns, Array1<const double>(reverse).data(), Array1<const double>(forward).data(),
                               s1.data(), s2.data())};
  });
}
JQ_EXPORT int32_t zeroPhaseFiltH(JQHandle x, JQHandle reverse, JQHandle forward, JQHandle fstate1, JQHandle rstate1,
                                 JQHandle fstate2, JQHandle rstate2, uint8_t flag) {
  return zero_phase_export(x, [&](double* p, int64_t n) -> Status {
    const int64_t na = count(reverse), nb = count(forward);
    if (int32_t c = classify(na, nb)) return {c == 1 ? kOk : c};
    State<double> f1(fstate1), r1(rstate1), f2(fstate2), r2(rstate2);
    const int64_t lr = std::max<int64_t>(na - 1, 0);
    const Status st = fit_states(flag != 1, std::pair{&f1, nb - 1}, std::pair{&r1, lr}, std::pair{&f2, nb - 1},
                                 std::pair{&r2, lr});
    if (st.code) return st;
    return {zero_phase_direct(p, n, Array1<const double>(reverse).data(), na, Array1<const double>(forward).data(), nb,
                              f1.data(), r1.data(), f2.data(), r2.data())};
  });
}
