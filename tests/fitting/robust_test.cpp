// Robust fits against the reweighting iterations written out in numpy, the
// exact-data shortcut, and the robust rejections.
#include <cmath>

#include "jqanlys.h"
#include "support.hpp"
#include "support/checks.hpp"

namespace {
#include "oracle.inc"

using jqrt::Array;
using jqrt::Array2;
using jqtest::Rejection;
constexpr int kN = 30;

TEST(Robust, IterationsMatchTheirModels) {
  const auto x = ft::arr(rob_x, kN), y = ft::arr(rob_y, kN), w = ft::arr(rob_w, kN);
  Array2<double> a(kN, 3);
  for (int i = 0; i < kN; ++i)
    for (int j = 0; j < 3; ++j) a[i * 3 + j] = std::pow(rob_x[i], j);
  const Array<double> none;
  const Array<int32_t> no_idx;
  const struct {
    const char* name;
    bool bisquare;
    const Array<double>* w;
    const double *c, *mse;
  } cases[] = {{"LAR", false, &none, rob_lar_c, rob_lar_mse},
               {"LAR weighted", false, &w, rob_larw_c, rob_larw_mse},
               {"bisquare", true, &none, rob_bi_c, rob_bi_mse},
               {"bisquare weighted", true, &w, rob_biw_c, rob_biw_mse}};
  for (const auto& k : cases) {
    for (int32_t method : {0, 1, 4}) {
      SCOPED_TRACE(std::string(k.name) + " method " + std::to_string(method));
      Array<double> fit, coef;
      Array2<double> cov;
      double mse;
      int32_t code;
      if (!k.bisquare)
        code = GenLARFit_head(a.h(), y.h(), k.w->h(), method, 1e-6, 50, fit.h(), coef.h(), &mse, cov.h());
      else if (k.w == &none)
        code = GenBisquareFit_head(a.h(), y.h(), method, 1e-6, 50, fit.h(), coef.h(), &mse, cov.h());
      else
        code = GenBisquareFit_Weight_head(a.h(), y.h(), k.w->h(), method, 1e-6, 50, fit.h(), coef.h(), &mse, cov.h());
      ASSERT_EQ(code, 0);
      EXPECT_LT(ft::rel_error(coef.data(), k.c, 3), 1e-7);
      EXPECT_NEAR(mse, k.mse[0], 1e-6 * k.mse[0]);
      EXPECT_EQ(cov.rows(), 3);
      // The polynomial members reach the same scheme through their design.
      Array<double> pfit, pcoef;
      double pmse;
      const auto fn = k.bisquare ? BiPolyFit_head : LARPolyFit_head;
      ASSERT_EQ(fn(x.h(), y.h(), 2, k.w->h(), method, no_idx.h(), none.h(), 1e-6, 50, pfit.h(), pcoef.h(), &pmse), 0);
      EXPECT_LT(ft::rel_error(pcoef.data(), k.c, 3), 1e-7);
    }
  }
}

TEST(Robust, ExactDataAndOutlierResistance) {
  // A line through its points: the LAR measure is 0 at once and the fit stays exact.
  const Array<double> x{0, 1, 2, 3, 4}, y{1, 3, 5, 7, 9}, none;
  Array<double> fit;
  double s, c, mse;
  ASSERT_EQ(LARLinearFit_head(y.h(), x.h(), none.h(), 0, 10, fit.h(), &s, &c, &mse), 0);
  EXPECT_NEAR(s, 2.0, 1e-14);
  EXPECT_NEAR(c, 1.0, 1e-14);
  ASSERT_EQ(BiLinearFit_head(y.h(), x.h(), none.h(), 0, 10, fit.h(), &s, &c, &mse), 0);
  EXPECT_NEAR(s, 2.0, 1e-14);
  // One wild point barely moves the robust lines, unlike least squares.
  Array<double> xs(20), ys(20);
  for (int i = 0; i < 20; ++i) {
    xs[i] = i;
    ys[i] = 0.5 * i + 2 + 0.01 * std::sin(i * 1.7);
  }
  ys[7] = 40;
  for (auto fn : {LARLinearFit_head, BiLinearFit_head}) {
    ASSERT_EQ(fn(ys.h(), xs.h(), none.h(), 1e-8, 100, fit.h(), &s, &c, &mse), 0);
    EXPECT_NEAR(s, 0.5, 2e-3);
    EXPECT_NEAR(c, 2.0, 2e-2);
  }
  // Exponential, power and logarithmic members: the same resistance.
  Array<double> cx(20), ey(20), py(20), ly(20);
  for (int i = 0; i < 20; ++i) {
    cx[i] = 0.2 + 0.1 * i;
    ey[i] = 3 * std::exp(-0.7 * cx[i]) * (1 + 0.001 * std::sin(3.1 * i));
    py[i] = 2 * std::pow(cx[i], 1.5) * (1 + 0.001 * std::cos(2.3 * i));
    ly[i] = 1 + 0.5 * std::log(cx[i]) + 0.001 * std::sin(5.0 * i);
  }
  ey[5] *= 3;
  py[11] *= 0.2;
  ly[3] += 5;
  double a, b;
  for (auto fn : {LARExpFit_head, BiExpFit_head}) {
    ASSERT_EQ(fn(ey.h(), cx.h(), none.h(), 1e-8, 100, fit.h(), &a, &b, &mse), 0);
    EXPECT_NEAR(a, 3.0, 0.02);
    EXPECT_NEAR(b, -0.7, 0.01);
  }
  for (auto fn : {LARPowerFit_head, BiPowerFit_head}) {
    ASSERT_EQ(fn(py.h(), cx.h(), none.h(), 1e-8, 100, fit.h(), &a, &b, &mse), 0);
    EXPECT_NEAR(a, 2.0, 0.02);
    EXPECT_NEAR(b, 1.5, 0.01);
  }
  // A Gaussian peak with one spike keeps its shape.
  Array<double> gy(30), gx(30);
  for (int i = 0; i < 30; ++i) {
    gx[i] = -3 + 0.25 * i;
    gy[i] = 2 * std::exp(-0.5 * std::pow((gx[i] - 0.5) / 0.8, 2)) + 0.002 * std::sin(4.1 * i);
  }
  gy[20] += 1.5;
  for (auto fn : {LARGaussFit_head, BiGaussFit_head}) {
    double p[3];
    ASSERT_EQ(fn(gy.h(), gx.h(), none.h(), 1e-8, 100, fit.h(), &p[0], &p[1], &p[2], &mse), 0);
    EXPECT_NEAR(p[0], 2.0, 0.01);
    EXPECT_NEAR(p[1], 0.5, 0.01);
    EXPECT_NEAR(p[2], 0.8, 0.01);
  }
  for (auto fn : {LARLogFit_head, BiLogFit_head}) {
    ASSERT_EQ(fn(ly.h(), cx.h(), none.h(), 1e-8, 100, fit.h(), &a, &b, &mse), 0);
    EXPECT_NEAR(a, 1.0, 0.01);
    EXPECT_NEAR(b, 0.5, 0.01);
  }
}

TEST(Bounded, BoxesMatchScipy) {
  const auto x = ft::arr(line_x, 25), y = ft::arr(line_y, 25), w = ft::arr(line_w, 25);
  const Array<double> lo{0.0, -1.0}, hi{1.4, 5.0};
  Array<double> fit;
  double s, c, mse;
  ASSERT_EQ(BoundLinearFit_head(y.h(), x.h(), w.h(), lo.h(), hi.h(), fit.h(), &s, &c, &mse), 0);
  EXPECT_NEAR(s, bline_c[0], 1e-10);
  EXPECT_NEAR(c, bline_c[1], 1e-10);
  // Wide boxes change nothing: the free optimum stands.
  const Array<double> wide_lo{-INFINITY, -INFINITY}, wide_hi{INFINITY, INFINITY};
  ASSERT_EQ(BoundLinearFitLAR_head(y.h(), x.h(), Array<double>().h(), wide_lo.h(), wide_hi.h(), 0, 30, fit.h(), &s,
                                   &c, &mse),
            0);
  double s2, c2;
  ASSERT_EQ(LARLinearFit_head(y.h(), x.h(), Array<double>().h(), 0, 30, fit.h(), &s2, &c2, &mse), 0);
  EXPECT_NEAR(s, s2, 1e-9);
  EXPECT_NEAR(c, c2, 1e-8);
  ASSERT_EQ(BoundLinearFitBi_head(y.h(), x.h(), w.h(), lo.h(), hi.h(), 0, 30, fit.h(), &s, &c, &mse), 0);
  EXPECT_LE(s, 1.4);
  const auto cx = ft::arr(curve_x, 30), ey = ft::arr(exp_y, 30);
  const Array<double> elo{0.0, -0.7}, ehi{10.0, 0.0};
  double a, b;
  ASSERT_EQ(BoundExpFit_head(ey.h(), cx.h(), Array<double>().h(), elo.h(), ehi.h(), fit.h(), &a, &b, &mse), 0);
  EXPECT_NEAR(a, bexp_c[0], 1e-7);
  EXPECT_NEAR(b, bexp_c[1], 1e-7);
  const Array<double> bad_lo{1.0, 0.0}, bad_hi{0.0, 1.0}, nan_lo{NAN, 0.0}, three{0, 0, 0};
  EXPECT_EQ(BoundLogFit_head(ey.h(), cx.h(), Array<double>().h(), bad_lo.h(), bad_hi.h(), fit.h(), &a, &b, &mse),
            -20061);
  EXPECT_TRUE(std::isnan(a) && std::isnan(mse) && fit.size() == 0);
  EXPECT_EQ(BoundPowerFit_head(ey.h(), cx.h(), Array<double>().h(), nan_lo.h(), ehi.h(), fit.h(), &a, &b, &mse),
            -20068);
  EXPECT_EQ(BoundGaussianFit_head(ey.h(), cx.h(), Array<double>().h(), elo.h(), three.h(), fit.h(), &a, &b, &c,
                                  &mse),
            -20002);
}

TEST(Outliers, RangeAndIndices) {
  const Array<double> x{0, 1, 2, 3, 4}, y{1, 50, 2, NAN, -3};
  Array<double> xo, yo;
  Array<uint8_t> mask;
  ASSERT_EQ(RmvOutlierRng_head(x.h(), y.h(), -5, 10, xo.h(), yo.h(), mask.h()), 0);
  EXPECT_EQ(xo.values(), (std::vector<double>{0, 2, 4}));
  EXPECT_EQ(yo.values(), (std::vector<double>{1, 2, -3}));
  EXPECT_EQ(mask.values(), (std::vector<uint8_t>{0, 1, 0, 1, 0}));
  const Array<int32_t> idx{4, 0, 9, -1, 0};
  ASSERT_EQ(RmvOutlierIndx_head(x.h(), y.h(), idx.h(), xo.h(), yo.h(), mask.h()), 0);
  EXPECT_EQ(xo.values(), (std::vector<double>{1, 2, 3}));
  const Array<double> y4{1, 2, 3, 4}, none;
  std::vector<Rejection> cases = {
      {"lengths", -20002, [&](uint8_t** o) { Array<double> a; Array<uint8_t> m; return RmvOutlierRng_head(x.h(), y4.h(), 0, 1, a.h(), o, m.h()); }},
      {"empty", -20003, [&](uint8_t** o) { Array<double> a; Array<uint8_t> m; return RmvOutlierIndx_head(none.h(), none.h(), idx.h(), a.h(), o, m.h()); }},
      {"range", -20061, [&](uint8_t** o) { Array<double> a; Array<uint8_t> m; return RmvOutlierRng_head(x.h(), y.h(), 2, 1, a.h(), o, m.h()); }},
      {"resize", -20001, [&](uint8_t** o) { Array<double> a; Array<uint8_t> m; return RmvOutlierRng_head(x.h(), y.h(), 0, 1, a.h(), o, m.h()); }, 3},
  };
  jqtest::expect_rejections<double>(cases);
}

TEST(Robust, Rejections) {
  const Array<double> x{1, 2, 3, 4}, y{1, 2, 3, 5}, y3{1, 2, 3}, none, nan{1, NAN, 1, 1}, neg{-1, 2, 3, 4};
  Array2<double> d(4, 2), wide(2, 3);
  for (int i = 0; i < 8; ++i) d[i] = i % 2 ? i : 1;
  const Array<double> y2{1, 2};
  double s, c, e;
  std::vector<Rejection> cases = {
      {"LAR, too few rows", -20037, [&](uint8_t** o) { Array<double> f; Array2<double> v; return GenLARFit_head(wide.h(), y2.h(), none.h(), 0, 0, 5, f.h(), o, &e, v.h()); }},
      {"LAR, method", -20061, [&](uint8_t** o) { Array<double> f; Array2<double> v; return GenLARFit_head(d.h(), y.h(), none.h(), 9, 0, 5, f.h(), o, &e, v.h()); }},
      {"bisquare, NaN", -20068, [&](uint8_t** o) { Array<double> f; Array2<double> v; return GenBisquareFit_head(d.h(), nan.h(), 0, 0, 5, f.h(), o, &e, v.h()); }},
      {"bisquare, weights", -20002, [&](uint8_t** o) { Array<double> f; Array2<double> v; return GenBisquareFit_Weight_head(d.h(), y.h(), y3.h(), 0, 0, 5, f.h(), o, &e, v.h()); }},
      {"bisquare, resize", -20001, [&](uint8_t** o) { Array<double> f; Array2<double> v; return GenBisquareFit_head(d.h(), y.h(), 0, 0, 5, f.h(), o, &e, v.h()); }, 2},
      {"line, one point", -20006, [&](uint8_t** o) { const Array<double> one{1}; return LARLinearFit_head(one.h(), one.h(), none.h(), 0, 5, o, &s, &c, &e); }},
      {"line, lengths", -20002, [&](uint8_t** o) { return BiLinearFit_head(y3.h(), x.h(), none.h(), 0, 5, o, &s, &c, &e); }},
      {"exp, sign", -20027, [&](uint8_t** o) { return BiExpFit_head(neg.h(), x.h(), none.h(), 0, 5, o, &s, &c, &e); }},
      {"poly, order", -20103, [&](uint8_t** o) { Array<double> f; const Array<int32_t> ni; return BiPolyFit_head(x.h(), y.h(), -1, none.h(), 0, ni.h(), none.h(), 0, 5, f.h(), o, &e); }},
  };
  jqtest::expect_rejections<double>(cases);
  // Two wild ends make four of six points fall beyond the bisquare cut-off:
  // too few keep weight for a line.
  const Array<double> fx{0, 1, 2, 3, 4, 5}, fy{64.9, -1.0, 0.6, -0.1, 1.8, 62.0};
  Array<double> fit;
  s = c = e = 0;
  const int32_t code = BiLinearFit_head(fy.h(), fx.h(), none.h(), 1e-12, 100, fit.h(), &s, &c, &e);
  EXPECT_TRUE(std::isnan(s) && std::isnan(e) && fit.size() == 0);
  EXPECT_EQ(code, -20116);
}

}  // namespace
