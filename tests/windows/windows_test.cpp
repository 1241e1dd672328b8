// The window family through its exports, against scipy.signal.windows.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <vector>

#include "jqanlys.h"
#include "jqrt.hpp"
#include "support/oracle.hpp"
#include "window_oracle.inc"

namespace {

using cd = std::complex<double>;

jqrt::Array<double> ones(int n) { return jqrt::Array<double>(std::vector<double>(n, 1.0)); }

// The export that applies one periodic window with its own parameter.
int32_t own_export(JQHandle h, int32_t code, double p) {
  switch (code) {
    case 30: return TriangleWinH(h);
    case 31: return BartHannWinH(h);
    case 32: return BohmanWinH(h);
    case 33: return ParzenWinH(h);
    case 34: return WelchWinH(h);
    case 60: return KaiserH(h, p);
    case 61: return DolChebyWinH(h, p);
    case 62: return GaussWinH(h, p);
    default: return AllCosWinH(h, code);
  }
}

void expect_emptied(const jqrt::Array<double>& x) { EXPECT_EQ(x.size(), 0); }

void expect_nan(const JQWindowConstants& c) {
  EXPECT_TRUE(std::isnan(c.enbw));
  EXPECT_TRUE(std::isnan(c.cg));
}

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

TEST(WindowOracle, LongDolphChebyshevStaysAccurate) {
  // A direct cosine sum over 1000 samples, 100 dB: symmetric about the centre,
  // peak exactly 1, and the end samples far below the centre.
  jqrt::Array<double> x = ones(1001);
  ASSERT_EQ(SymmWinH(x.h(), 61, 100.0), 0);
  EXPECT_EQ(x[500], 1.0);
  for (int i = 0; i < 500; ++i) EXPECT_NEAR(x[i], x[1000 - i], 1e-13);
  EXPECT_LT(x[0], 0.01);
}

TEST(SymmetricWindows, HannOfFiveAndSingleSamples) {
  jqrt::Array<double> x = ones(5);
  ASSERT_EQ(SymmWinH(x.h(), 1, 0.0), 0);
  const double want[] = {0, 0.5, 1, 0.5, 0};
  for (int i = 0; i < 5; ++i) EXPECT_NEAR(x[i], want[i], 1e-15);
  for (int32_t code : {1, 30, 60, 61, 62, 99}) {
    jqrt::Array<double> one{3.5};
    EXPECT_EQ(SymmWinH(one.h(), code, 2.0), 0);
    EXPECT_EQ(one.values(), std::vector<double>{3.5});
  }
}

TEST(WindowCodes, UnknownCodesAndEmptySignalsEmptyTheSignal) {
  for (int32_t code : {-1, 10, 12, 29, 35, 59, 63, 1000}) {
    SCOPED_TRACE(code);
    jqrt::Array<double> a = ones(4), b = ones(4), c = ones(4);
    EXPECT_EQ(AllWinH(a.h(), code, 1.0, 0, 0), -20061);
    EXPECT_EQ(SymmWinH(b.h(), code, 1.0), -20061);
    JQWindowConstants k{0, 0};
    EXPECT_EQ(ScaledWinH(c.h(), code, 1.0, &k), -20061);
    expect_emptied(a);
    expect_emptied(b);
    expect_emptied(c);
    expect_nan(k);
    k = {0, 0};
    EXPECT_EQ(WinConstByNameH(8, code, 1.0, &k), -20061);
    expect_nan(k);
  }
  jqrt::Array<double> d = ones(4);
  EXPECT_EQ(AllCosWinH(d.h(), 30), -20061);  // a window without coefficients
  expect_emptied(d);
  jqrt::Array<double> e = ones(4), none;
  EXPECT_EQ(GenCosWinH(e.h(), none.h()), -20061);
  expect_emptied(e);

  auto empty = [] {
    jqrt::Array<double> x(3);
    x.set_dims(-3);
    return x;
  };
  using Fn = int32_t (*)(JQHandle);
  for (Fn f : {+[](JQHandle h) { return AllWinH(h, 1, 0, 0, 0); }, +[](JQHandle h) { return SymmWinH(h, 1, 0); },
               +[](JQHandle h) { return KaiserH(h, 1); }, +[](JQHandle h) { return DolChebyWinH(h, 60); },
               +[](JQHandle h) { return TriangleWinH(h); }, +[](JQHandle h) { return WelchWinH(h); },
               +[](JQHandle h) { return ExpWinH(h, 0.5); }, +[](JQHandle h) { return ForceWinH(h, 50); },
               +[](JQHandle h) { return CosTaperedH(h, 0.5); }, +[](JQHandle h) { return AllCosWinH(h, 1); }}) {
    jqrt::Array<double> x = empty();
    EXPECT_EQ(f(x.h()), -20003);
    expect_emptied(x);
  }
  jqrt::Array<cd> z;
  EXPECT_EQ(CxBohmanWinH(z.h()), -20003);
  int32_t err = 0;
  jqrt::Array<double> x = empty();
  double beta = 3;
  EXPECT_EQ(Kaiser_Bessel(x.h(), &beta, &err), 0);
  EXPECT_EQ(err, -20003);
  expect_emptied(x);
}

TEST(WindowConstants, StoredForCoefficientWindowsMeasuredOtherwise) {
  JQWindowConstants k{};
  ASSERT_EQ(WinConstByNameH(3, 2, 0, &k), 0);
  EXPECT_EQ(k.enbw, 1.362826);
  EXPECT_EQ(k.cg, 0.54);
  ASSERT_EQ(WinConstByNameH(3, 4, 0, &k), 0);
  EXPECT_EQ(k.cg, 0.42659071367);
  // The triangle of 8: 0, 1/4, ..., 1, ..., 1/4: sum 4, sum of squares 2.75.
  ASSERT_EQ(WinConstByNameH(8, 30, 0, &k), 0);
  EXPECT_DOUBLE_EQ(k.cg, 0.5);
  EXPECT_DOUBLE_EQ(k.enbw, 8 * 2.75 / 16);
  EXPECT_EQ(WinConstByNameH(0, 1, 0, &k), -20003);
  expect_nan(k);
  // The 2016 form replaces a NaN Kaiser beta by its default; the older one measures NaN.
  ASSERT_EQ(WinConstByNameH_2016(64, 60, jqtest::nan(), &k), 0);
  JQWindowConstants d{};
  ASSERT_EQ(WinConstByNameH(64, 60, 0.5, &d), 0);
  EXPECT_EQ(k.enbw, d.enbw);
  ASSERT_EQ(WinConstByNameH(64, 60, jqtest::nan(), &k), 0);
  EXPECT_TRUE(std::isnan(k.cg));

  jqrt::Array<double> empty;
  EXPECT_EQ(NumWinConstH(empty.h(), &k), -20003);
  expect_nan(k);
}

TEST(WindowConstants, MeasuredValuesApproachTheStoredOnes) {
  // Coefficient windows: the measured constants of a long window agree with
  // the stored ones to their printed precision; this catches a wrong coefficient.
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
  const struct {
    int32_t code;
    double enbw, cg;
  } fixed[] = {{31, 1.45584787, 0.5}, {32, 1.78574087544, 0.40528473457}, {33, 1.91746031746, 0.375},
               {34, 1.2, 0.66666667}};
  for (const auto& f : fixed) {
    SCOPED_TRACE(f.code);
    JQWindowConstants m{};
    ASSERT_EQ(WinConstByNameH(100000, f.code, 0, &m), 0);
    EXPECT_NEAR(m.enbw, f.enbw, 1e-4);
    EXPECT_NEAR(m.cg, f.cg, 1e-4);
  }
}

TEST(WindowScaling, ScaledWindowsHaveUnitMeanAndReportTheirConstants) {
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
  ASSERT_EQ(AllWinH(e.h(), 61, jqtest::nan(), 0, 0), 0);
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

TEST(ParameterWindows, ExponentialForceAndCosineTaper) {
  jqrt::Array<double> x = ones(5);
  ASSERT_EQ(ExpWinH(x.h(), 0.0625), 0);
  const double e[] = {1, 0.5, 0.25, 0.125, 0.0625};
  for (int i = 0; i < 5; ++i) EXPECT_NEAR(x[i], e[i], 1e-16);
  for (double bad : {0.0, -1.0, jqtest::nan()}) {
    jqrt::Array<double> y = ones(5);
    EXPECT_EQ(ExpWinH(y.h(), bad), -20027);
    expect_emptied(y);
  }
  jqrt::Array<double> one = ones(1);
  EXPECT_EQ(ExpWinH(one.h(), 0.5), -20006);
  expect_emptied(one);
  int32_t err = 0;
  double fin = -2;
  jqrt::Array<double> y = ones(4);
  EXPECT_EQ(ExpWindCIN(y.h(), &fin, &err), 0);
  EXPECT_EQ(err, -20027);
  expect_emptied(y);

  // Force: duty 50 of 5 keeps round(2.5) = 3; the rest are zero in both parts.
  jqrt::Array<cd> z(std::vector<cd>(5, cd(-1, 2)));
  ASSERT_EQ(CxForceWinH(z.h(), 50), 0);
  EXPECT_EQ(z.values(), (std::vector<cd>{cd(-1, 2), cd(-1, 2), cd(-1, 2), 0, 0}));
  for (auto [duty, kept] : {std::pair{150.0, 4}, {-5.0, 0}, {jqtest::nan(), 0}, {1e300, 4}}) {
    jqrt::Array<double> f = ones(4);
    ASSERT_EQ(ForceWinH(f.h(), duty), 0);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(f[i], i < kept ? 1.0 : 0.0) << duty;
  }
  double duty = 50;
  jqrt::Array<double> g = ones(1);
  EXPECT_EQ(ForceWindCIN(g.h(), &duty, &err), 0);
  EXPECT_EQ(err, -20006);

  // Cosine taper of ratio 0.5 over 10: m = round(2.5) = 3.
  jqrt::Array<double> t = ones(10);
  ASSERT_EQ(CosTaperedH(t.h(), 0.5), 0);
  const double want[] = {0, 0.25, 0.75, 1, 1, 1, 1, 0.75, 0.25, 0};
  for (int i = 0; i < 10; ++i) EXPECT_NEAR(t[i], want[i], 1e-15);
  jqrt::Array<double> u = ones(6), hann = ones(6);
  double r = 1.5;
  EXPECT_EQ(CosTapered(u.h(), &r, &err), 0);
  EXPECT_EQ(err, 0);
  AllCosWinH(hann.h(), 1);
  EXPECT_EQ(u.values(), hann.values());
  for (double keep : {0.0, -1.0, jqtest::nan(), 0.1}) {
    jqrt::Array<cd> v(std::vector<cd>(6, cd(2, 3)));
    ASSERT_EQ(CxCosTaperedH(v.h(), keep), 0);
    EXPECT_EQ(v.values(), std::vector<cd>(6, cd(2, 3)));
  }
}

TEST(FixedWindows, TriangleWelchAndKaiserClosedForms) {
  jqrt::Array<double> t = ones(5);
  int32_t err = 9;
  ASSERT_EQ(TriangleWin(t.h(), &err), 0);
  EXPECT_EQ(err, 0);
  EXPECT_EQ(t.values(), (std::vector<double>{0, 0.4, 0.8, 0.8, 0.4}));
  jqrt::Array<double> w = ones(8);
  ASSERT_EQ(WelchWinH(w.h()), 0);
  for (int i = 0; i < 8; ++i) EXPECT_NEAR(w[i], 1 - std::pow((i - 4) / 4.0, 2), 1e-16);
  // Kaiser with beta 0 is the rectangle; the end sample is 1 / I0(beta).
  jqrt::Array<double> k0 = ones(6), k = ones(6);
  ASSERT_EQ(KaiserH(k0.h(), 0), 0);
  EXPECT_EQ(k0.values(), std::vector<double>(6, 1.0));
  double beta = 5;
  ASSERT_EQ(Kaiser_Bessel(k.h(), &beta, &err), 0);
  EXPECT_NEAR(k[0], 1 / 27.239871823604442, 1e-15);
  EXPECT_EQ(k[3], 1.0);
  // Gaussian: a sigma of zero or below is 0.2.
  jqrt::Array<double> g0 = ones(7), g1 = ones(7);
  GaussWinH(g0.h(), 0);
  GaussWinH(g1.h(), 0.2);
  EXPECT_EQ(g0.values(), g1.values());
  EXPECT_NEAR(g1[0], std::exp(-0.5 * std::pow(3 / 1.4, 2)), 1e-16);
}

TEST(Windows, LeaveNoBlocksBehind) {
  const int64_t before = jqrt_live_blocks();
  {
    jqrt::Array<double> x = ones(33);
    JQWindowConstants k{};
    ScaledWinH(x.h(), 61, 80, &k);
    SymmWinH(x.h(), 99, 0);
    AllWinH(x.h(), 1, 0, 1, 1);
  }
  EXPECT_EQ(jqrt_live_blocks(), before);
}
