// The window family through its exports, against scipy.signal.windows and
// closed forms, with every check and its emptied signal.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <vector>

#include "frame/scratch.hpp"
#include "jqanlys.h"
#include "jqrt.hpp"
#include "support/checks.hpp"
#include "window_oracle.inc"

namespace {

using cd = std::complex<double>;
using jqtest::nan;

jqrt::Array<double> ones(int n) { return jqrt::Array<double>(std::vector<double>(n, 1.0)); }

// The export that applies one periodic window with its own parameter.
int32_t own_export(JQHandle h, int32_t code, double p) {
  switch (code) {
    case 30:
      return TriangleWinH(h);
    case 31:
      return BartHannWinH(h);
    case 32:
      return BohmanWinH(h);
    case 33:
      return ParzenWinH(h);
    case 34:
      return WelchWinH(h);
    case 60:
      return KaiserH(h, p);
    case 61:
      return DolChebyWinH(h, p);
    case 62:
      return GaussWinH(h, p);
    default:
      return AllCosWinH(h, code);
  }
}

bool is_nan(const JQWindowConstants& c) { return std::isnan(c.enbw) && std::isnan(c.cg); }

}  // namespace

TEST(WindowOracle, EveryWindowMatchesScipyPeriodicAndSymmetric) {
  int checked = 0;
  for (const oracle::WindowCase& c : oracle::kWindows) {
    SCOPED_TRACE(testing::Message() << "code " << c.code << " p " << c.param << " n " << c.n
                                    << (c.symmetric ? " symmetric" : " periodic"));
    jqrt::Array<double> x = ones(c.n);
    ASSERT_EQ(c.symmetric ? SymmWinH(x.h(), c.code, c.param) : own_export(x.h(), c.code, c.param), 0);
    ASSERT_EQ(x.size(), c.n);
    for (int i = 0; i < c.n; ++i) EXPECT_NEAR(x[i], c.w[i], 1e-12) << "sample " << i;
    // The complex twin scales both parts by the same real window.
    jqrt::Array<cd> z(std::vector<cd>(c.n, cd(1.0, -2.0)));
    ASSERT_EQ(c.symmetric ? CxSymmWinH(z.h(), c.code, c.param) : CxAllWinH(z.h(), c.code, c.param, 0, 0), 0);
    if (c.code == 61 && c.param == 0.0 && !c.symmetric) continue;  // AllWinH defaults a 0 dB level
    for (int i = 0; i < c.n; ++i) {
      EXPECT_EQ(z[i].real(), x[i]);
      EXPECT_EQ(z[i].imag(), -2.0 * x[i]);
    }
    ++checked;
  }
  EXPECT_GT(checked, 300);
}

TEST(WindowOracle, LongDolphChebyshevAndSingleSamples) {
  // A direct cosine sum over 1000 samples, 100 dB: symmetric about the centre,
  // peak exactly 1, and the end samples far below the centre.
  jqrt::Array<double> x = ones(1001);
  ASSERT_EQ(SymmWinH(x.h(), 61, 100.0), 0);
  EXPECT_EQ(x[500], 1.0);
  for (int i = 0; i < 500; ++i) EXPECT_NEAR(x[i], x[1000 - i], 1e-13);
  EXPECT_LT(x[0], 0.01);
  for (int32_t code : {1, 30, 60, 61, 62, 99}) {
    jqrt::Array<double> one{3.5};
    EXPECT_EQ(SymmWinH(one.h(), code, 2.0), 0);
    EXPECT_EQ(one.values(), std::vector<double>{3.5});
  }
}

TEST(WindowFailures, ChecksEmptyTheSignalAndNaNTheConstants) {
  using jqtest::Rejection;
  std::vector<Rejection> cases;
  for (int32_t code : {-1, 10, 12, 29, 35, 59, 63, 1000}) {
    cases.push_back({"AllWinH, unknown code", -20061, [code](uint8_t** x) { return AllWinH(x, code, 1.0, 0, 0); }});
    cases.push_back({"SymmWinH, unknown code", -20061, [code](uint8_t** x) { return SymmWinH(x, code, 1.0); }});
    cases.push_back({"ScaledWinH, unknown code", -20061, [code](uint8_t** x) {
                       JQWindowConstants k{0, 0};
                       const int32_t r = ScaledWinH(x, code, 1.0, &k);
                       return is_nan(k) ? r : 1;
                     }});
    JQWindowConstants k{0, 0};
    EXPECT_EQ(WinConstByNameH(8, code, 1.0, &k), -20061);
    EXPECT_TRUE(is_nan(k));
  }
  jqrt::Array<double> none;
  cases.push_back({"a window without coefficients", -20061, [](uint8_t** x) { return AllCosWinH(x, 30); }});
  cases.push_back({"no coefficients", -20061, [&](uint8_t** x) { return GenCosWinH(x, none.h()); }});
  using Fn = int32_t (*)(JQHandle);
  for (Fn f : {+[](JQHandle h) { return AllWinH(h, 1, 0, 0, 0); }, +[](JQHandle h) { return SymmWinH(h, 1, 0); },
               +[](JQHandle h) { return KaiserH(h, 1); }, +[](JQHandle h) { return DolChebyWinH(h, 60); },
               +[](JQHandle h) { return TriangleWinH(h); }, +[](JQHandle h) { return WelchWinH(h); },
               +[](JQHandle h) { return ExpWinH(h, 0.5); }, +[](JQHandle h) { return ForceWinH(h, 50); },
               +[](JQHandle h) { return CosTaperedH(h, 0.5); }, +[](JQHandle h) { return AllCosWinH(h, 1); }})
    cases.push_back({"negative count", -20003, [f](uint8_t** x) { return f(jqtest::with_count(x, -3)); }});
  cases.push_back({"Kaiser_Bessel, negative count", -20003, [](uint8_t** x) {
                     int32_t err = 0;
                     double beta = 3;
                     return jqtest::reported(Kaiser_Bessel(jqtest::with_count(x, -3), &beta, &err), err);
                   }});
  for (double bad : {0.0, -1.0, nan()})
    cases.push_back({"exponential, final value", -20027, [bad](uint8_t** x) { return ExpWinH(x, bad); }});
  cases.push_back(
      {"exponential, one sample", -20006, [](uint8_t** x) { return ExpWinH(jqtest::with_count(x, 1), 0.5); }});
  cases.push_back({"exponential, in/out form", -20027, [](uint8_t** x) {
                     int32_t err = 0;
                     double fin = -2;
                     return jqtest::reported(ExpWindCIN(x, &fin, &err), err);
                   }});
  cases.push_back({"force, one sample", -20006, [](uint8_t** x) {
                     int32_t err = 0;
                     double duty = 50;
                     return jqtest::reported(ForceWindCIN(jqtest::with_count(x, 1), &duty, &err), err);
                   }});
  cases.push_back({"failed scratch", -20001, [](uint8_t** x) {
                     JQWindowConstants k{1, 1};
                     jq::fail_scratch_allocation(1);
                     const int32_t r = ScaledWinH(x, 1, 0.0, &k);
                     jq::fail_scratch_allocation(0);
                     return is_nan(k) ? r : 1;
                   }});
  jqtest::expect_rejections<double>(cases);
  jqtest::expect_rejections<cd>(
      {{"complex, empty", -20003, [](uint8_t** z) { return CxBohmanWinH(jqtest::with_count(z, 0)); }}});
  JQWindowConstants k{};
  EXPECT_EQ(WinConstByNameH(0, 1, 0, &k), -20003);
  EXPECT_TRUE(is_nan(k));
  jqrt::Array<double> empty;
  k = {};
  EXPECT_EQ(NumWinConstH(empty.h(), &k), -20003);
  EXPECT_TRUE(is_nan(k));
}

TEST(WindowConstants, StoredForCoefficientWindowsMeasuredOtherwise) {
  JQWindowConstants k{};
  ASSERT_EQ(WinConstByNameH(3, 4, 0, &k), 0);
  EXPECT_EQ(k.cg, 0.42659071367) << "the rounded value, not the window's own a0";
  // The triangle of 8: 0, 1/4, ..., 1, ..., 1/4: sum 4, sum of squares 2.75.
  ASSERT_EQ(WinConstByNameH(8, 30, 0, &k), 0);
  EXPECT_DOUBLE_EQ(k.cg, 0.5);
  EXPECT_DOUBLE_EQ(k.enbw, 8 * 2.75 / 16);
  // The 2016 form replaces a NaN Kaiser beta by its default; the older one measures NaN.
  ASSERT_EQ(WinConstByNameH_2016(64, 60, nan(), &k), 0);
  JQWindowConstants d{};
  ASSERT_EQ(WinConstByNameH(64, 60, 0.5, &d), 0);
  EXPECT_EQ(k.enbw, d.enbw);
  ASSERT_EQ(WinConstByNameH(64, 60, nan(), &k), 0);
  EXPECT_TRUE(std::isnan(k.cg));

  // The measured constants of a long coefficient window agree with the stored
  // ones to their printed precision; this catches a wrong coefficient.
  for (int32_t code : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 11}) {
    SCOPED_TRACE(code);
    jqrt::Array<double> x = ones(4096);
    ASSERT_EQ(AllCosWinH(x.h(), code), 0);
    JQWindowConstants m{}, s{};
    ASSERT_EQ(NumWinConstH(x.h(), &m), 0);
    ASSERT_EQ(WinConstByNameH(4096, code, 0, &s), 0);
    EXPECT_NEAR(m.enbw, s.enbw, 2e-6 * s.enbw);  // code 11 is stored to 1.2e-6
    EXPECT_NEAR(m.cg, s.cg, 1e-10);
  }
  // Fixed-shape windows converge to their published constants.
  for (auto [code, enbw, cg] : {std::tuple{31, 1.45584787, 0.5},
                                {32, 1.78574087544, 0.40528473457},
                                {33, 1.91746031746, 0.375},
                                {34, 1.2, 0.66666667}}) {
    SCOPED_TRACE(code);
    JQWindowConstants m{};
    ASSERT_EQ(WinConstByNameH(100000, code, 0, &m), 0);
    EXPECT_NEAR(m.enbw, enbw, 1e-4);
    EXPECT_NEAR(m.cg, cg, 1e-4);
  }
}

TEST(WindowScaling, ScaledWindowsHaveUnitMeanAndReportTheirConstants) {
  const int64_t live = jqrt_live_blocks();
  {
    jqrt::Array<double> x = ones(16);
    JQWindowConstants k{};
    ASSERT_EQ(ScaledWinH(x.h(), 1, 0, &k), 0);
    EXPECT_EQ(k.enbw, 1.5);
    EXPECT_EQ(k.cg, 0.5);
    double s = 0;
    for (double v : x.values()) s += v;
    EXPECT_NEAR(s / 16, 1.0, 1e-15);
    EXPECT_NEAR(x[8], 2.0, 1e-15);

    // A measured window: the record equals the constants of the plain window.
    jqrt::Array<double> plain = ones(50), scaled = ones(50);
    ASSERT_EQ(KaiserH(plain.h(), 6.0), 0);
    ASSERT_EQ(ScaledWinH(scaled.h(), 60, 6.0, &k), 0);
    JQWindowConstants m{};
    ASSERT_EQ(NumWinConstH(plain.h(), &m), 0);
    EXPECT_DOUBLE_EQ(k.enbw, m.enbw);
    EXPECT_DOUBLE_EQ(k.cg, m.cg);
    for (int i = 0; i < 50; ++i) EXPECT_NEAR(scaled[i], plain[i] / m.cg, 1e-14);

    // AllWinH's options reproduce SymmWinH and ScaledWinH.
    jqrt::Array<cd> a(std::vector<cd>(9, cd(1, 1))), b(std::vector<cd>(9, cd(1, 1)));
    ASSERT_EQ(CxAllWinH(a.h(), 33, 0, 1, 0), 0);
    ASSERT_EQ(CxSymmWinH(b.h(), 33, 0), 0);
    EXPECT_EQ(a.values(), b.values());
    jqrt::Array<double> c = ones(9), d = ones(9);
    ASSERT_EQ(AllWinH(c.h(), 62, -1, 0, 1), 0);
    ASSERT_EQ(CxScaledWinH(a.h(), 62, 0.2, &k), 0);
    ASSERT_EQ(ScaledWinH(d.h(), 62, 0.2, &k), 0);
    EXPECT_EQ(c.values(), d.values());
    // The default step: a NaN level is 60 dB.
    jqrt::Array<double> e = ones(20), f = ones(20);
    ASSERT_EQ(AllWinH(e.h(), 61, nan(), 0, 0), 0);
    ASSERT_EQ(DolChebyWinH(f.h(), 60.0), 0);
    EXPECT_EQ(e.values(), f.values());

    // Coefficients from the host: Hann's equal the code's window.
    jqrt::Array<double> g = ones(12), h = ones(12), coeffs{0.5, 0.5};
    ASSERT_EQ(GenCosWinH(g.h(), coeffs.h()), 0);
    ASSERT_EQ(AllCosWinH(h.h(), 1), 0);
    EXPECT_EQ(g.values(), h.values());
    ASSERT_EQ(ScaledGenCosWinH(g.h(), coeffs.h(), &k), 0);
    EXPECT_NEAR(k.enbw, 1.5, 1e-14);
    EXPECT_NEAR(k.cg, 0.5, 1e-15);
    jqrt::Array<cd> z(std::vector<cd>(12, cd(0, 1)));
    ASSERT_EQ(ScaledCxGenCosWinH(z.h(), coeffs.h(), &k), 0);
    EXPECT_NEAR(z[6].imag(), 2.0, 1e-15);
  }
  EXPECT_EQ(jqrt_live_blocks(), live);
}

TEST(ParameterWindows, ExponentialForceTaperAndDefaults) {
  jqrt::Array<double> x = ones(5);
  ASSERT_EQ(ExpWinH(x.h(), 0.0625), 0);
  const double e[] = {1, 0.5, 0.25, 0.125, 0.0625};
  for (int i = 0; i < 5; ++i) EXPECT_NEAR(x[i], e[i], 1e-16);

  // Force: duty 50 of 5 keeps round(2.5) = 3; the rest are zero in both parts.
  jqrt::Array<cd> z(std::vector<cd>(5, cd(-1, 2)));
  ASSERT_EQ(CxForceWinH(z.h(), 50), 0);
  EXPECT_EQ(z.values(), (std::vector<cd>{cd(-1, 2), cd(-1, 2), cd(-1, 2), 0, 0}));
  for (auto [duty, kept] : {std::pair{150.0, 4}, {-5.0, 0}, {nan(), 0}, {1e300, 4}}) {
    jqrt::Array<double> f = ones(4);
    ASSERT_EQ(ForceWinH(f.h(), duty), 0);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(f[i], i < kept ? 1.0 : 0.0) << duty;
  }

  // Cosine taper of ratio 0.5 over 10: m = round(2.5) = 3; a ratio of 1 or
  // more is Hann, one that keeps no sample leaves the signal alone.
  jqrt::Array<double> t = ones(10);
  ASSERT_EQ(CosTaperedH(t.h(), 0.5), 0);
  const double want[] = {0, 0.25, 0.75, 1, 1, 1, 1, 0.75, 0.25, 0};
  for (int i = 0; i < 10; ++i) EXPECT_NEAR(t[i], want[i], 1e-15);
  jqrt::Array<double> u = ones(6), hann = ones(6);
  int32_t err = 9;
  double r = 1.5;
  EXPECT_EQ(CosTapered(u.h(), &r, &err), 0);
  EXPECT_EQ(err, 0);
  AllCosWinH(hann.h(), 1);
  EXPECT_EQ(u.values(), hann.values());
  for (double keep : {0.0, -1.0, nan(), 0.1}) {
    jqrt::Array<cd> v(std::vector<cd>(6, cd(2, 3)));
    ASSERT_EQ(CxCosTaperedH(v.h(), keep), 0);
    EXPECT_EQ(v.values(), std::vector<cd>(6, cd(2, 3)));
  }

  // Welch (no scipy twin) in closed form; the older triangle and Kaiser
  // exports; a Gaussian sigma of zero or below is 0.2.
  jqrt::Array<double> t5 = ones(5), t5h = ones(5), w = ones(8);
  err = 9;
  ASSERT_EQ(TriangleWin(t5.h(), &err), 0);
  EXPECT_EQ(err, 0);
  ASSERT_EQ(TriangleWinH(t5h.h()), 0);
  EXPECT_EQ(t5.values(), t5h.values());
  ASSERT_EQ(WelchWinH(w.h()), 0);
  for (int i = 0; i < 8; ++i) EXPECT_NEAR(w[i], 1 - std::pow((i - 4) / 4.0, 2), 1e-16);
  jqrt::Array<double> k = ones(6);
  double beta = 5;
  ASSERT_EQ(Kaiser_Bessel(k.h(), &beta, &err), 0);
  EXPECT_NEAR(k[0], 1 / 27.239871823604442, 1e-15);
  EXPECT_EQ(k[3], 1.0);
  jqrt::Array<double> g0 = ones(7), g1 = ones(7);
  GaussWinH(g0.h(), 0);
  GaussWinH(g1.h(), 0.2);
  EXPECT_EQ(g0.values(), g1.values());
}
