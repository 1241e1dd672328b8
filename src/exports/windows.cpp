// Window exports: each applies a window in place to a real or complex signal.
#include <limits>

#include "frame/export.hpp"
#include "jqanlys.h"
#include "windows/windows.hpp"

using namespace jq;

namespace {

// Runs a window routine on the signal in place; an empty signal is -20003 and
// any failure empties the signal.
template <class T, class F> int32_t in_place(JQHandle x, F routine) {
  Array1<T> s(x);
  Out<T> o(x);
  Outputs out(o);
  if (s.empty()) return out.fail(kEmptyInput);
  return out.finish(routine(s.data(), s.size()));
}

// The older forms: the code goes to the error argument, the result is 0.
template <class F> int32_t in_place_reported(JQHandle x, int32_t* error, F routine) {
  if (error) *error = kOk;
  const int32_t code = in_place<double>(x, routine);
  if (error) *error = code;
  return 0;
}

int32_t report_constants(int32_t code, const win::Constants& c, JQWindowConstants* record) {
  if (record) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    record->enbw = code < 0 ? nan : c.enbw;
    record->cg = code < 0 ? nan : c.cg;
  }
  return code;
}

// The window as samples (via fill), optionally divided by its mean, applied
// to the signal; the constants of the unscaled window go to the record.
template <class T, class Fill>
int32_t through_samples(JQHandle x, bool unit_gain, JQWindowConstants* record, bool stored, const win::Constants& kept,
                        Fill fill) {
  win::Constants c{};
  const int32_t code = in_place<T>(x, [&](T* p, int32_t n) {
    Scratch<double> w;
    if (w.allocate(n) != kOk) return int32_t{kNoMemory};
    if (int32_t rc = fill(w.data(), n)) return rc;
    if (stored)
      c = kept;
    else if (record)
      win::measure(w.data(), n, &c);
    if (unit_gain) win::normalise_gain(w.data(), n);
    win::apply_samples(p, w.data(), n);
    return int32_t{kOk};
  });
  return report_constants(code, c, record);
}

// A window chosen by code, periodic or symmetric, scaled or not.
template <class T>
int32_t by_code(JQHandle x, int32_t code, double p, bool symmetric, bool unit_gain, JQWindowConstants* record) {
  win::Constants kept{};
  const bool stored = win::stored_constants(code, &kept);
  if (!unit_gain && !record) {
    return in_place<T>(x, [&](T* s, int32_t n) {
      return symmetric ? win::symmetric(s, n, code, p) : win::by_code(s, n, code, p);
    });
  }
  return through_samples<T>(x, unit_gain, record, stored, kept,
                            [&](double* w, int32_t n) { return win::samples(w, n, code, p, symmetric); });
}

template <class T> int32_t generalised(JQHandle x, JQHandle coefficients, bool unit_gain, JQWindowConstants* record) {
  Array1<const double> a(coefficients);
  const int32_t terms = a.empty() ? 0 : a.size();
  auto fill = [&](double* w, int32_t n) {
    std::fill(w, w + n, 1.0);
    return win::generalised_cosine(w, n, a.data(), terms);
  };
  if (!unit_gain) {
    return in_place<T>(x, [&](T* s, int32_t n) { return win::generalised_cosine(s, n, a.data(), terms); });
  }
  return through_samples<T>(x, true, record, false, win::Constants{}, fill);
}

template <class T> int32_t all_cosine(T* s, int32_t n, int32_t code) {
  const double* a = nullptr;
  const int32_t terms = win::cosine_terms(code, &a);
  return win::generalised_cosine(s, n, a, terms);
}

template <class T> int32_t all_windows(JQHandle x, int32_t code, double p, int32_t symmetric, int32_t unit_gain) {
  return by_code<T>(x, code, win::default_parameter(code, p), symmetric != 0, unit_gain != 0, nullptr);
}

}  // namespace

// The real and the complex variant of an export from one body, in which s
// is the signal's data and n its count.
#define JQ_WINDOW_PAIR(Name, CxName, Params, Body)                                                         \
  JQ_EXPORT int32_t Name Params { return in_place<double>(x, [&](auto* s, int32_t n) { return Body; }); } \
  JQ_EXPORT int32_t CxName Params { return in_place<cdouble>(x, [&](auto* s, int32_t n) { return Body; }); }
// The same for helpers that take the signal's handle: fn<T> Args.
#define JQ_HANDLE_PAIR(Name, CxName, Params, fn, Args)   \
  JQ_EXPORT int32_t Name Params { return fn<double> Args; } \
  JQ_EXPORT int32_t CxName Params { return fn<cdouble> Args; }

JQ_HANDLE_PAIR(AllWinH, CxAllWinH, (JQHandle x, int32_t code, double parameter, int32_t symmetric, int32_t unit_gain),
               all_windows, (x, code, parameter, symmetric, unit_gain))
JQ_HANDLE_PAIR(SymmWinH, CxSymmWinH, (JQHandle x, int32_t code, double parameter), by_code,
               (x, code, parameter, true, false, nullptr))
JQ_HANDLE_PAIR(ScaledWinH, CxScaledWinH, (JQHandle x, int32_t code, double parameter, JQWindowConstants* constants),
               by_code, (x, code, win::default_parameter(code, parameter), false, true, constants))
JQ_HANDLE_PAIR(GenCosWinH, CxGenCosWinH, (JQHandle x, JQHandle coefficients), generalised,
               (x, coefficients, false, nullptr))
JQ_HANDLE_PAIR(ScaledGenCosWinH, ScaledCxGenCosWinH,
               (JQHandle x, JQHandle coefficients, JQWindowConstants* constants), generalised,
               (x, coefficients, true, constants))

JQ_WINDOW_PAIR(AllCosWinH, CxAllCosWinH, (JQHandle x, int32_t code), all_cosine(s, n, code))
JQ_WINDOW_PAIR(KaiserH, CxKaiserH, (JQHandle x, double beta), win::kaiser(s, n, beta))
JQ_WINDOW_PAIR(GaussWinH, CxGaussWinH, (JQHandle x, double sigma), win::gaussian(s, n, sigma))
JQ_WINDOW_PAIR(DolChebyWinH, CxDolChebyWinH, (JQHandle x, double sidelobe_db),
               win::dolph_chebyshev(s, n, win::level_ratio(sidelobe_db), false))
JQ_WINDOW_PAIR(TriangleWinH, CxTriangleWinH, (JQHandle x), win::triangle(s, n))
JQ_WINDOW_PAIR(BartHannWinH, CxBartHannWinH, (JQHandle x), win::bartlett_hann(s, n))
JQ_WINDOW_PAIR(BohmanWinH, CxBohmanWinH, (JQHandle x), win::bohman(s, n))
JQ_WINDOW_PAIR(ParzenWinH, CxParzenWinH, (JQHandle x), win::parzen(s, n))
JQ_WINDOW_PAIR(WelchWinH, CxWelchWinH, (JQHandle x), win::welch(s, n))
JQ_WINDOW_PAIR(CosTaperedH, CxCosTaperedH, (JQHandle x, double ratio), win::cosine_tapered(s, n, ratio))
JQ_WINDOW_PAIR(ExpWinH, CxExpWinH, (JQHandle x, double final_value), win::exponential(s, n, final_value))
JQ_WINDOW_PAIR(ForceWinH, CxForceWinH, (JQHandle x, double duty_percent), win::force(s, n, duty_percent))

JQ_EXPORT int32_t TriangleWin(JQHandle x, int32_t* error) {
  return in_place_reported(x, error, [](double* s, int32_t n) { return win::triangle(s, n); });
}

JQ_EXPORT int32_t Kaiser_Bessel(JQHandle x, double* beta, int32_t* error) {
  return in_place_reported(x, error, [&](double* s, int32_t n) { return win::kaiser(s, n, *beta); });
}

JQ_EXPORT int32_t CosTapered(JQHandle x, double* ratio, int32_t* error) {
  return in_place_reported(x, error, [&](double* s, int32_t n) { return win::cosine_tapered(s, n, *ratio); });
}

JQ_EXPORT int32_t ExpWindCIN(JQHandle x, double* final_value, int32_t* error) {
  return in_place_reported(x, error, [&](double* s, int32_t n) { return win::exponential(s, n, *final_value); });
}

JQ_EXPORT int32_t ForceWindCIN(JQHandle x, double* duty_percent, int32_t* error) {
  return in_place_reported(x, error, [&](double* s, int32_t n) { return win::force(s, n, *duty_percent); });
}

JQ_EXPORT int32_t WinConstByNameH(int32_t n, int32_t code, double parameter, JQWindowConstants* constants) {
  win::Constants c{};
  return report_constants(win::constants_by_code(n, code, parameter, &c), c, constants);
}

JQ_EXPORT int32_t WinConstByNameH_2016(int32_t n, int32_t code, double parameter, JQWindowConstants* constants) {
  return WinConstByNameH(n, code, win::default_parameter(code, parameter), constants);
}

JQ_EXPORT int32_t NumWinConstH(JQHandle window, JQWindowConstants* constants) {
  Array1<const double> w(window);
  win::Constants c{};
  return report_constants(win::measure(w.data(), w.size(), &c), c, constants);
}
