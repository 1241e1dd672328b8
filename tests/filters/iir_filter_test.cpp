// IIR filtering through its exports: against lfilter and sosfilt, blocks and
// single samples against one call, the flags, the flush of tiny values, zero
// phase, and every rejection with what it empties.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <complex>
#include <functional>
#include <vector>

#include "frame/scratch.hpp"
#include "iir_oracle.inc"
#include "jqanlys.h"
#include "jqrt.hpp"
#include "support/checks.hpp"

namespace {

using cd = std::complex<double>;
using Arr = jqrt::Array<double>;
using CArr = jqrt::Array<cd>;
constexpr int N = oracle::kSignalLength;

template <size_t K> Arr arr(const double (&v)[K]) { return Arr(std::vector<double>(v, v + K)); }
template <size_t K> CArr carr(const double (&v)[K]) {
  std::vector<cd> c(K / 2);
  for (size_t i = 0; i < K / 2; ++i) c[i] = cd(v[2 * i], v[2 * i + 1]);
  return CArr(c);
}
std::vector<double> signal(int from = 0, int to = N) { return {oracle::kSignal + from, oracle::kSignal + to}; }
std::vector<cd> csignal(int from = 0, int to = N) {
  std::vector<cd> c;
  for (int i = from; i < to; ++i) c.emplace_back(oracle::kSignalRe[i], oracle::kSignalIm[i]);
  return c;
}

template <class T> void expect_near(const std::vector<T>& y, const double* re, const double* im, double tol) {
  ASSERT_EQ(y.size(), size_t(N));
  for (int i = 0; i < N; ++i) {
    EXPECT_NEAR(std::real(y[i]), re[i], tol) << i;
    if (im) {
      EXPECT_NEAR(std::imag(y[i]), im[i], tol) << i;
    }
  }
}

// Filters a signal through `run` (one call per block, flag = continue after
// the first) and returns the concatenated output.
template <class T>
std::vector<T> in_blocks(const std::vector<T>& x, const std::vector<int>& cuts,
                         const std::function<void(jqrt::Array<T>&, bool first)>& run) {
  std::vector<T> out;
  for (size_t k = 0; k + 1 < cuts.size(); ++k) {
    jqrt::Array<T> part(std::vector<T>(x.begin() + cuts[k], x.begin() + cuts[k + 1]));
    run(part, k == 0);
    const auto v = part.values();
    out.insert(out.end(), v.begin(), v.end());
  }
  return out;
}

const std::vector<int> kWhole = {0, N}, kPieces = {0, 1, 37, 38, 150, N};

}  // namespace

TEST(IirFilter, EveryFormMatchesScipyAndBlocksEqualOneCall) {
  Arr a = arr(oracle::kDirectA), b = arr(oracle::kDirectB);
  Arr sa = arr(oracle::kSosA), sb = arr(oracle::kSosB), qa = arr(oracle::kQuadA), qb = arr(oracle::kQuadB);
  const auto x = signal();
  const auto xc = csignal();
  struct Case {
    const char* what;
    std::function<std::vector<double>(const std::vector<int>&)> real;
    std::function<std::vector<cd>(const std::vector<int>&)> cx;
    const double *re, *im;
  };
  Arr fs, rs, st;
  CArr cfs, crs, cst;
  int32_t err;
  const uint8_t go = 1, restart = 0;
  std::vector<Case> cases = {
      {"IIR_Filter", [&](auto& cuts) {
         return in_blocks<double>(x, cuts, [&](Arr& p, bool first) {
           EXPECT_EQ(IIR_Filter(p.h(), a.h(), b.h(), fs.h(), rs.h(), first ? restart : go, &err), 0);
           EXPECT_EQ(err, 0);
         });
       }, nullptr, oracle::kDirectOut, nullptr},
      {"IIR_Filter_OneState", [&](auto& cuts) {
         return in_blocks<double>(x, cuts, [&](Arr& p, bool first) {
           EXPECT_EQ(IIR_Filter_OneState(p.h(), a.h(), b.h(), st.h(), first ? restart : go), 0);
           EXPECT_EQ(st.size(), 3 + 2);
         });
       }, nullptr, oracle::kDirectOut, nullptr},
      {"IIR_Filter2 second order", [&](auto& cuts) {
         int32_t top = 0;
         return in_blocks<double>(x, cuts, [&](Arr& p, bool first) {
           EXPECT_EQ(IIR_Filter2(p.h(), &top, sa.h(), sb.h(), st.h(), first ? restart : go, &err), 0);
           EXPECT_EQ(err, 0);
         });
       }, nullptr, oracle::kSosOut, nullptr},
      {"IIR_Filter2 fourth order", [&](auto& cuts) {
         int32_t top = 1;
         return in_blocks<double>(x, cuts, [&](Arr& p, bool first) {
           EXPECT_EQ(IIR_Filter2(p.h(), &top, qa.h(), qb.h(), st.h(), first ? restart : go, &err), 0);
         });
       }, nullptr, oracle::kSosOut, nullptr},
      {"IIR_Filter2 three and seven sections (the odd one apart)", [&](auto& cuts) {
         int32_t top = 0;
         std::vector<double> out;
         for (int k : {3, 7}) {
           Arr ak(std::vector<double>(sa.data(), sa.data() + 2 * k)), bk(std::vector<double>(sb.data(), sb.data() + 3 * k));
           const auto y = in_blocks<double>(x, cuts, [&](Arr& p, bool first) {
             EXPECT_EQ(IIR_Filter2(p.h(), &top, ak.h(), bk.h(), st.h(), first ? restart : go, &err), 0);
           });
           out.insert(out.end(), y.begin(), y.end());
         }
         return out;
       }, nullptr, nullptr, nullptr},
      {"CxSigIIR_Filter", nullptr, [&](auto& cuts) {
         return in_blocks<cd>(xc, cuts, [&](CArr& p, bool first) {
           EXPECT_EQ(CxSigIIR_Filter(p.h(), a.h(), b.h(), cfs.h(), crs.h(), first ? restart : go, &err), 0);
         });
       }, oracle::kDirectCxRe, oracle::kDirectCxIm},
      {"CxSigIIR_Filter_OneState", nullptr, [&](auto& cuts) {
         return in_blocks<cd>(xc, cuts, [&](CArr& p, bool first) {
           EXPECT_EQ(CxSigIIR_Filter_OneState(p.h(), a.h(), b.h(), cst.h(), first ? restart : go), 0);
         });
       }, oracle::kDirectCxRe, oracle::kDirectCxIm},
      {"CxSigIIR_Filter2", nullptr, [&](auto& cuts) {
         int32_t top = 0;
         return in_blocks<cd>(xc, cuts, [&](CArr& p, bool first) {
           EXPECT_EQ(CxSigIIR_Filter2(p.h(), &top, sa.h(), sb.h(), cst.h(), first ? restart : go, &err), 0);
         });
       }, oracle::kSosCxRe, oracle::kSosCxIm},
  };
  // Point by point, each structure: flag 1 restarts on the first sample, 0 carries on.
  for (int32_t structure : {0, 1, 2, 3}) {
    Arr& ra = structure == 0 ? sa : structure == 1 ? qa : a;
    Arr& rb = structure == 0 ? sb : structure == 1 ? qb : b;
    const double* want = structure < 2 ? oracle::kSosOut : oracle::kDirectOut;
    cases.push_back({"IIR_Filter_PtbyPt", [&, structure](auto&) {
                       std::vector<double> y = x;
                       for (int i = 0; i < N; ++i)
                         EXPECT_EQ(IIR_Filter_PtbyPt(&y[i], structure, ra.h(), rb.h(), st.h(), i == 0), 0);
                       return y;
                     }, nullptr, want, nullptr});
    cases.push_back({"CxSigIIR_Filter_PtbyPt", nullptr, [&, structure](auto&) {
                       std::vector<cd> y = xc;
                       for (int i = 0; i < N; ++i)
                         EXPECT_EQ(CxSigIIR_Filter_PtbyPt(reinterpret_cast<double*>(&y[i]), structure, ra.h(), rb.h(),
                                                          cst.h(), i == 0), 0);
                       return y;
                     }, structure < 2 ? oracle::kSosCxRe : oracle::kDirectCxRe,
                     structure < 2 ? oracle::kSosCxIm : oracle::kDirectCxIm});
  }
  // Structure 3 with forward coefficients ignores the reverse ones: it is the
  // FIR of the forward array, as structure 2 with no reverse array.
  cases[cases.size() - 2].re = cases.back().re = nullptr;
  Arr none, st2, st3;
  std::vector<double> fir = x, fir3 = x;
  for (int i = 0; i < N; ++i) {
    ASSERT_EQ(IIR_Filter_PtbyPt(&fir[i], 2, none.h(), b.h(), st2.h(), i == 0), 0);
    ASSERT_EQ(IIR_Filter_PtbyPt(&fir3[i], 3, a.h(), b.h(), st3.h(), i == 0), 0);
  }
  EXPECT_EQ(fir3, fir);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    if (c.real) {
      const auto whole = c.real(kWhole);
      if (c.re) expect_near(whole, c.re, nullptr, 1e-12);
      EXPECT_EQ(c.real(kPieces), whole);
    } else {
      const auto whole = c.cx(kWhole);
      if (c.re) expect_near(whole, c.re, c.im, 1e-12);
      EXPECT_EQ(c.cx(kPieces), whole);
    }
  }
}

TEST(IirFilter, ComplexCoefficientsMatchLfilterAndContinue) {
  CArr a = carr(oracle::kCxA), b = carr(oracle::kCxB), fs, rs;
  const auto xc = csignal();
  auto run = [&](const std::vector<int>& cuts) {
    return in_blocks<cd>(xc, cuts, [&](CArr& p, bool first) { EXPECT_EQ(CxIIR_Filter_H(p.h(), a.h(), b.h(), fs.h(), rs.h(), !first), 0); });
  };
  const auto whole = run(kWhole);
  expect_near(whole, oracle::kCxOutRe, oracle::kCxOutIm, 1e-12);
  EXPECT_EQ(run(kPieces), whole);
  // A real signal through complex coefficients: complex output, real input history.
  Arr x(signal()), f;
  CArr y, r;
  EXPECT_EQ(CxIIRReSig_Filter_H(x.h(), a.h(), b.h(), f.h(), r.h(), 0, y.h()), 0);
  expect_near(y.values(), oracle::kCxReSigRe, oracle::kCxReSigIm, 1e-12);
  EXPECT_EQ(x.values(), signal());
  EXPECT_EQ(f.size(), 2);
  EXPECT_EQ(f[1], x[N - 1]);
}

TEST(IirFilter, FlagsStateLayoutsAndPassThrough) {
  Arr a = arr(oracle::kDirectA), b = arr(oracle::kDirectB), sa = arr(oracle::kSosA), sb = arr(oracle::kSosB);
  int32_t err, top = 0;
  // The direct-form histories are oldest first: the forward one ends with
  // the last input, the one-array form puts the reverse history after it.
  Arr x(signal()), fs, rs, one;
  ASSERT_EQ(IIR_Filter(x.h(), a.h(), b.h(), fs.h(), rs.h(), 0, &err), 0);
  EXPECT_EQ(fs.values(), signal(N - 3, N));
  EXPECT_EQ(rs.values(), std::vector<double>(x.data() + N - 2, x.data() + N));
  Arr x1(signal());
  ASSERT_EQ(IIR_Filter_OneState(x1.h(), a.h(), b.h(), one.h(), 0), 0);
  std::vector<double> joined = fs.values();
  joined.insert(joined.end(), rs.data(), rs.data() + 2);
  EXPECT_EQ(one.values(), joined);
  // Any flag other than 1 restarts a block export; any other than 0 restarts point by point.
  Arr x2(signal()), x3(signal());
  ASSERT_EQ(IIR_Filter(x2.h(), a.h(), b.h(), fs.h(), rs.h(), 7, &err), 0);
  EXPECT_EQ(x2.values(), x.values());
  Arr st;
  ASSERT_EQ(IIR_Filter2(x3.h(), &top, sa.h(), sb.h(), st.h(), 0, &err), 0);
  double first = oracle::kSignal[0], again = oracle::kSignal[0];
  ASSERT_EQ(IIR_Filter_PtbyPt(&first, 0, sa.h(), sb.h(), st.h(), 2), 0);
  EXPECT_EQ(first, x3[0]);
  ASSERT_EQ(IIR_Filter_PtbyPt(&again, 0, sa.h(), sb.h(), st.h(), 0), 0);
  EXPECT_NE(again, x3[0]);
  // A cascade's state is newest first: after one impulse the first section holds {w0, 0}.
  Arr imp{1.0}, s2;
  ASSERT_EQ(IIR_Filter2(imp.h(), &top, sa.h(), sb.h(), s2.h(), 0, &err), 0);
  EXPECT_EQ(s2[0], 1.0);
  EXPECT_EQ(s2[1], 0.0);
  // Both coefficient arrays empty: untouched, no error; {1} alone passes the signal through.
  Arr none_a, none_b, one_b{1.0}, y(signal()), z(signal());
  err = 5;
  EXPECT_EQ(IIR_Filter(y.h(), none_a.h(), none_b.h(), fs.h(), rs.h(), 0, &err), 0);
  EXPECT_EQ(err, 0);
  EXPECT_EQ(IIR_Filter2(y.h(), &top, none_a.h(), none_b.h(), st.h(), 0, &err), 0);
  EXPECT_EQ(y.values(), signal());
  EXPECT_EQ(IIR_Filter(z.h(), none_a.h(), one_b.h(), fs.h(), rs.h(), 0, &err), 0);
  EXPECT_EQ(z.values(), signal());
  EXPECT_EQ(fs.size(), 0);
}

TEST(IirFilter, DecayingValuesBecomeExactZerosNotSubnormals) {
  // One section (and its direct form) with a pole at 1/2: an impulse decays
  // by halves, through the subnormal range, which must come out as zeros.
  Arr a{-0.5, 0.0}, b{1.0, 0.0, 0.0}, da{1.0, -0.5}, db{1.0};
  std::vector<double> impulse(1200, 0.0);
  impulse[0] = 1;
  Arr x(impulse), y(impulse), s, fs, rs;
  int32_t err, top = 0;
  ASSERT_EQ(IIR_Filter2(x.h(), &top, a.h(), b.h(), s.h(), 0, &err), 0);
  ASSERT_EQ(IIR_Filter(y.h(), da.h(), db.h(), fs.h(), rs.h(), 0, &err), 0);
  for (const Arr* out : {&x, &y}) {
    for (int i = 0; i < 1200; ++i) EXPECT_TRUE((*out)[i] == 0 || std::fabs((*out)[i]) >= DBL_MIN) << i;
    EXPECT_EQ((*out)[1021], 2 * DBL_MIN);
    EXPECT_EQ((*out)[1022], 0.0);  // the smallest normal itself is flushed
  }
  EXPECT_EQ(s[0], 0.0);
  EXPECT_EQ(rs[0], 0.0);
}

TEST(IirFilter, ZeroPhaseMatchesPaddedForwardBackwardRuns) {
  Arr a = arr(oracle::kDirectA), b = arr(oracle::kDirectB), sa = arr(oracle::kSosA), sb = arr(oracle::kSosB);
  Arr x(signal()), y(signal()), s1, s2, f1, r1, f2, r2;
  ASSERT_EQ(zeroPhaseCascadeFiltH(x.h(), 0, sa.h(), sb.h(), s1.h(), s2.h(), 0), 0);
  expect_near(x.values(), oracle::kZeroPhaseCascade, nullptr, 1e-12);
  ASSERT_EQ(zeroPhaseFiltH(y.h(), a.h(), b.h(), f1.h(), r1.h(), f2.h(), r2.h(), 0), 0);
  expect_near(y.values(), oracle::kZeroPhaseDirect, nullptr, 1e-12);
  EXPECT_EQ(s2.size(), sa.size());
  EXPECT_EQ(r2.size(), 2);
}

TEST(IirFilter, RejectionsEmptyTheSignalAndTheStatesTheySay) {
  using R = jqtest::Rejection;
  Arr a = arr(oracle::kDirectA), b = arr(oracle::kDirectB), sa = arr(oracle::kSosA), sb = arr(oracle::kSosB);
  Arr none, odd{0.1, 0.2, 0.3};
  // The fresh output from the helper has 3 elements; these exports filter it in place.
  int32_t top0 = 0, top2 = 2;
  auto err_of = [](auto call) {
    int32_t e = 9;
    const int32_t r = call(&e);
    return jqtest::reported(r, e);
  };
  // IIR_Filter on the given coefficients; a forward state of `held` samples
  // must come back empty.
  auto direct = [&](Arr& ra, Arr& rb, int held = 0, bool empty = false) {
    return [&, held, empty](uint8_t** x) {
      Arr fs(held), rs;
      const int32_t code = err_of([&](int32_t* e) {
        return IIR_Filter(empty ? jqtest::with_count(x, 0) : x, ra.h(), rb.h(), fs.h(), rs.h(), 1, e);
      });
      EXPECT_EQ(fs.size(), 0);
      return code;
    };
  };
  auto cascade = [&](int32_t* top, Arr& ra, Arr& rb) {
    return [&, top](uint8_t** x) {
      Arr s;
      return err_of([&](int32_t* e) { return IIR_Filter2(x, top, ra.h(), rb.h(), s.h(), 1, e); });
    };
  };
  jqtest::expect_rejections<double>({
      R{"IIR_Filter empty signal", -20003, direct(a, b, 0, true)},
      R{"IIR_Filter reverse only", -20008, direct(a, none)},
      R{"IIR_Filter state resize", -20001, direct(a, b, 1), 1},
      R{"IIR_Filter2 topology", -20061, cascade(&top2, sa, sb)},
      R{"IIR_Filter2 one array", -20008, cascade(&top0, sa, none)},
      R{"IIR_Filter2 lengths", -20066, cascade(&top0, odd, sb)},
      R{"IIR_Filter2 state resize", -20001, cascade(&top0, sa, sb), 1},
      R{"OneState reverse only (state emptied too)", -20008, [&](uint8_t** x) {
          Arr s(4);
          const int32_t code = IIR_Filter_OneState(x, a.h(), none.h(), s.h(), 1);
          EXPECT_EQ(s.size(), 0);
          return code;
        }},
      R{"OneState empty signal", -20003, [&](uint8_t** x) {
          Arr s;
          return IIR_Filter_OneState(jqtest::with_count(x, -4), a.h(), b.h(), s.h(), 1);
        }},
      R{"CxIIRReSig resize of the output", -20001, [&](uint8_t** y) {
          CArr ca{cd(1, 0)}, cb{cd(0.5, 0.5)}, r;
          Arr xs(signal(0, 8)), f;
          const int32_t code = CxIIRReSig_Filter_H(xs.h(), ca.h(), cb.h(), f.h(), r.h(), 0, y);
          EXPECT_EQ(xs.size(), 0);
          return code;
        }, 1},
      R{"zero phase scratch", -20001, [&](uint8_t** x) {
          Arr s1, s2;
          jq::fail_scratch_allocation(1);
          const int32_t code = zeroPhaseCascadeFiltH(x, 0, sa.h(), sb.h(), s1.h(), s2.h(), 0);
          jq::fail_scratch_allocation(0);
          return code;
        }},
      R{"zero phase one array", -20008, [&](uint8_t** x) {
          Arr f1, r1, f2, r2;
          return zeroPhaseFiltH(x, a.h(), none.h(), f1.h(), r1.h(), f2.h(), r2.h(), 0);
        }},
  });
  // Point by point: the sample becomes 0 and the state empty.
  for (int32_t structure : {-1, 4, 0, 2}) {
    SCOPED_TRACE(structure);
    double v = 3;
    Arr s(5);
    const int32_t want = structure == 0 ? -20066 : structure == 2 ? -20008 : -20061;
    EXPECT_EQ(IIR_Filter_PtbyPt(&v, structure, structure == 0 ? odd.h() : a.h(), structure == 0 ? sb.h() : none.h(), s.h(), 0), want);
    EXPECT_EQ(v, 0.0);
    EXPECT_EQ(s.size(), 0);
  }
}

TEST(IirFilter, RealAndComplexPathsAgreeBitForBit) {
  // Equal-length polynomials take the real filter's unrolled path; the same
  // signal as the real part of a complex one takes the general path. a0 = 1
  // skips the division, 1.5 does not.
  for (double a0 : {1.0, 1.5}) {
    SCOPED_TRACE(a0);
    Arr a{a0, -1.2, 0.9, -0.3, 0.05}, b{0.1, 0.2, 0.3, 0.2, 0.1}, fs, rs;
    CArr cfs, crs;
    int32_t err;
    // Long enough to cross the filter's internal chunks.
    std::vector<double> x;
    for (int k = 0; k < 25; ++k) x.insert(x.end(), oracle::kSignal, oracle::kSignal + N);
    const int n = static_cast<int>(x.size());
    std::vector<cd> xc(x.begin(), x.end());
    const auto real = in_blocks<double>(x, {0, 1, 37, 2500, 4099, n}, [&](Arr& p, bool first) {
      ASSERT_EQ(IIR_Filter(p.h(), a.h(), b.h(), fs.h(), rs.h(), !first, &err), 0);
    });
    const auto cx = in_blocks<cd>(xc, {0, n}, [&](CArr& p, bool) {
      ASSERT_EQ(CxSigIIR_Filter(p.h(), a.h(), b.h(), cfs.h(), crs.h(), 0, &err), 0);
    });
    for (int i = 0; i < n; ++i) {
      EXPECT_EQ(real[i], cx[i].real()) << i;
      EXPECT_EQ(cx[i].imag(), 0.0) << i;
    }
  }
}
