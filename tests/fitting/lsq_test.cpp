// Least-squares fits against numpy and scipy, over every method code, and
// the rejections of the fit exports.
#include <cmath>

#include "jqanlys.h"
#include "support.hpp"
#include "support/checks.hpp"

namespace {
#include "oracle.inc"

using jqrt::Array;
using jqrt::Array2;
using jqtest::Rejection;
constexpr int kN = 40;

TEST(LeastSquares, PolynomialsMatchPolyfitForEveryMethod) {
  const auto x = ft::arr(poly_x, kN), w = ft::arr(poly_w, kN);
  const Array<int32_t> idx{0, 99};  // 99 lies outside the order and is ignored
  const Array<double> vals{0.5, 7.0};
  for (const PolyCase& c : kPoly) {
    const auto y = ft::arr(c.y, kN);
    for (int32_t method = 0; method <= 6; ++method) {
      SCOPED_TRACE(std::string(c.name) + " method " + std::to_string(method));
      Array<double> fit, coef;
      double mse = 0;
      const Array<double> none;
      const Array<int32_t> no_idx;
      ASSERT_EQ(PolyFit81_head(x.h(), y.h(), c.order, c.weighted ? w.h() : none.h(), method, no_idx.h(), none.h(),
                               fit.h(), coef.h(), &mse),
                0);
      ASSERT_EQ(coef.size(), c.order + 1);
      ASSERT_EQ(fit.size(), kN);
      EXPECT_LT(ft::rel_error(coef.data(), c.coef, c.order + 1), method >= 4 ? 1e-9 : 1e-12);
      EXPECT_NEAR(mse, c.mse[0], 1e-10 * c.mse[0]);
      ASSERT_EQ(PolyFit81_head(x.h(), y.h(), c.order, c.weighted ? w.h() : none.h(), method, idx.h(), vals.h(),
                               fit.h(), coef.h(), &mse),
                0);
      EXPECT_EQ(coef[0], 0.5);
      EXPECT_LT(ft::rel_error(coef.data(), c.fixed, c.order + 1), method >= 4 ? 1e-9 : 1e-12);
      if (!c.weighted && method == 1) {
        Array<double> fit2, coef2;
        double mse2;
        ASSERT_EQ(PolyFit_head(x.h(), y.h(), c.order, 1, fit2.h(), coef2.h(), &mse2), 0);
        Array<double> fit3, coef3;
        ASSERT_EQ(PolyFit_head(x.h(), y.h(), c.order, 3, fit3.h(), coef3.h(), &mse2), 0);
        EXPECT_EQ(coef2.values(), coef3.values());  // the QR codes compute the same thing
        ASSERT_EQ(PolyFit80_head(x.h(), y.h(), c.order, 2, idx.h(), vals.h(), fit3.h(), coef3.h(), &mse2), 0);
        EXPECT_LT(ft::rel_error(coef3.data(), c.fixed, c.order + 1), 1e-12);
      }
    }
  }
}

TEST(LeastSquares, ExactAndMinimalPolynomials) {
  // Order 2 through 3 points is exact; with the constant fixed 2 points do.
  const Array<double> x{0, 1, 2}, y{1, 2, 5}, x2{1, 2}, y2{2, 5};
  Array<double> fit, coef;
  double mse;
  ASSERT_EQ(PolyFit_head(x.h(), y.h(), 2, 0, fit.h(), coef.h(), &mse), 0);
  EXPECT_NEAR(coef[0], 1, 1e-14);
  EXPECT_NEAR(coef[1], 0, 1e-14);
  EXPECT_NEAR(coef[2], 1, 1e-14);
  const Array<int32_t> idx{0};
  const Array<double> one{1.0};
  ASSERT_EQ(PolyFit80_head(x2.h(), y2.h(), 2, 1, idx.h(), one.h(), fit.h(), coef.h(), &mse), 0);
  EXPECT_NEAR(coef[2], 1, 1e-14);
  EXPECT_NEAR(mse, 0, 1e-28);
  // Every coefficient fixed: nothing to solve, the curve is the polynomial.
  const Array<int32_t> all{0, 1};
  const Array<double> vals{3, -1};
  ASSERT_EQ(PolyFit80_head(x2.h(), y2.h(), 1, 0, all.h(), vals.h(), fit.h(), coef.h(), &mse), 0);
  EXPECT_EQ(fit.values(), (std::vector<double>{2, 1}));
  EXPECT_EQ(mse, (0.0 + 16.0) / 2);
}

TEST(LeastSquares, GeneralDesignWithCovariance) {
  const auto a = [] {
    Array2<double> m(30, 4);
    for (int i = 0; i < 120; ++i) m[i] = gen_a[i];
    return m;
  }();
  const auto y = ft::arr(gen_y, 30), w = ft::arr(gen_w, 30);
  for (int32_t method = 0; method <= 6; ++method) {
    SCOPED_TRACE(method);
    Array<double> fit, coef;
    Array2<double> cov;
    double mse;
    ASSERT_EQ(GenLSFit_head(a.h(), y.h(), method, fit.h(), coef.h(), &mse, cov.h()), 0);
    EXPECT_LT(ft::rel_error(coef.data(), gen_c, 4), 1e-11);
    ASSERT_EQ(cov.rows(), 4);
    EXPECT_LT(ft::rel_error(cov.data(), gen_cov, 16), 1e-11);
    ASSERT_EQ(GenLSFit80_head(a.h(), y.h(), w.h(), method, fit.h(), coef.h(), &mse, cov.h()), 0);
    EXPECT_LT(ft::rel_error(coef.data(), gen_cw, 4), 1e-11);
    EXPECT_LT(ft::rel_error(cov.data(), gen_covw, 16), 1e-11);
  }
  // A repeated column: the cut-off SVD drops it and warns; the minimum-norm
  // solution matches numpy's pseudo-inverse.
  Array2<double> d(30, 5);
  for (int i = 0; i < 150; ++i) d[i] = defic_a[i];
  Array<double> fit, coef;
  Array2<double> cov;
  double mse;
  EXPECT_EQ(GenLSFit_head(d.h(), y.h(), 6, fit.h(), coef.h(), &mse, cov.h()), 20001);
  EXPECT_LT(ft::rel_error(coef.data(), defic_c, 5), 1e-10);
  EXPECT_EQ(GenLSFit_head(d.h(), y.h(), 5, fit.h(), coef.h(), &mse, cov.h()), -20071);
  EXPECT_EQ(coef.size(), 0);
  EXPECT_TRUE(std::isnan(mse));
}

TEST(LeastSquares, StraightLineAndCurves) {
  const auto x = ft::arr(line_x, 25), y = ft::arr(line_y, 25), w = ft::arr(line_w, 25);
  double b, c, mse;
  int32_t st = 1;
  Array<double> fit;
  ASSERT_EQ(LinFit_head(y.h(), x.h(), Array<double>().h(), fit.h(), &b, &c, &mse), 0);
  EXPECT_NEAR(b, line_c[0], 1e-12);
  EXPECT_NEAR(c, line_c[1], 1e-12);
  EXPECT_EQ(LinFitCoef80_head(y.h(), x.h(), w.h(), &b, &c, &st), 0);
  EXPECT_EQ(st, 0);
  EXPECT_NEAR(b, line_cw[0], 1e-12);
  EXPECT_NEAR(c, line_cw[1], 1e-12);
  // Three points with two zero weights are refused; three zeros pass.
  const Array<double> x3{0, 1, 2}, y3{1, 3, 5}, w2{0, 0, 1}, w3{0, 0, 0};
  EXPECT_EQ(LinFitCoef80_head(y3.h(), x3.h(), w2.h(), &b, &c, &st), 0);
  EXPECT_EQ(st, -20141);
  EXPECT_TRUE(std::isnan(b) && std::isnan(c));
  EXPECT_EQ(LinFitCoef80_head(y3.h(), x3.h(), w3.h(), &b, &c, &st), 0);
  EXPECT_EQ(st, 0);

  const auto cx = ft::arr(curve_x, 30), ey = ft::arr(exp_y, 30), sd = ft::arr(exp_sd, 30);
  const auto py = ft::arr(pow_y, 30), gy = ft::arr(log_y, 30);
  double a;
  ASSERT_EQ(ExpFit_head(ey.h(), cx.h(), fit.h(), &a, &b, &mse), 0);
  EXPECT_LT(ft::rel_error(&a, exp_c, 1) + ft::rel_error(&b, exp_c + 1, 1), 1e-8);
  ASSERT_EQ(ExpFitCoef80_head(ey.h(), cx.h(), sd.h(), &a, &b, &st), 0);
  EXPECT_EQ(st, 0);
  EXPECT_LT(ft::rel_error(&a, exp_cw, 1) + ft::rel_error(&b, exp_cw + 1, 1), 1e-8);
  ASSERT_EQ(PowerFit_head(py.h(), cx.h(), fit.h(), &a, &b, &mse), 0);
  EXPECT_LT(ft::rel_error(&a, pow_c, 1) + ft::rel_error(&b, pow_c + 1, 1), 1e-8);
  ASSERT_EQ(LogFitCoef_head(gy.h(), cx.h(), &a, &b, &st), 0);
  EXPECT_LT(ft::rel_error(&a, log_c, 1) + ft::rel_error(&b, log_c + 1, 1), 1e-12);
  // A zero deviation weighs its point as 1.
  Array<double> sd0(30), w1(30);
  for (int i = 0; i < 30; ++i) sd0[i] = i == 3 ? 0.0 : exp_sd[i];
  double a0, b0;
  ASSERT_EQ(ExpFitCoef80_head(ey.h(), cx.h(), sd0.h(), &a0, &b0, &st), 0);
  EXPECT_NE(a0, a);
}

TEST(LeastSquares, GaussianPeakReachesScipysOptimum) {
  const auto x = ft::arr(gauss_x, 40), y = ft::arr(gauss_y, 40), w = ft::arr(gauss_w, 40);
  double c[3], mse;
  int32_t st = 1;
  ASSERT_EQ(GaussianPeakFitCoef_head(y.h(), x.h(), w.h(), &c[0], &c[1], &c[2], &st), 0);
  EXPECT_EQ(st, 0);
  EXPECT_LT(ft::rel_error(c, gauss_c, 3), 1e-8);
  // A negative peak is the mirror image.
  Array<double> neg(40), fit;
  for (int i = 0; i < 40; ++i) neg[i] = -gauss_y[i];
  ASSERT_EQ(GaussianPeakFit_head(neg.h(), x.h(), w.h(), fit.h(), &c[0], &c[1], &c[2], &mse), 0);
  EXPECT_NEAR(c[0], -gauss_c[0], 1e-8);
  EXPECT_NEAR(c[2], gauss_c[2], 1e-8);
  const Array<double> three{1, 2, 1};
  ASSERT_EQ(GaussianPeakFit_head(three.h(), three.h(), Array<double>().h(), fit.h(), &c[0], &c[1], &c[2], &mse),
            -20069);
  EXPECT_TRUE(std::isnan(c[0]) && std::isnan(c[2]) && std::isnan(mse));
  // Bounds around the fitted peak: centred on it, wider for a new observation.
  Array<double> coef, lo, up, plo, pup;
  ASSERT_EQ(ConfBndGauss_head(x.h(), y.h(), w.h(), 0.95, coef.h(), lo.h(), up.h()), 0);
  ASSERT_EQ(PredBndGauss_head(x.h(), y.h(), w.h(), 0.95, coef.h(), plo.h(), pup.h()), 0);
  EXPECT_LT(ft::rel_error(coef.data(), gauss_c, 3), 1e-8);
  for (int i = 0; i < 40; ++i) {
    const double u = (gauss_x[i] - gauss_c[1]) / gauss_c[2], f = gauss_c[0] * std::exp(-0.5 * u * u);
    EXPECT_NEAR(0.5 * (lo[i] + up[i]), f, 1e-7);
    EXPECT_GT(pup[i] - plo[i], up[i] - lo[i]);
  }
}

TEST(LeastSquares, ExtremeArgumentsAndWarnings) {
  Array<double> x(30), y(30);
  for (int i = 0; i < 30; ++i) {
    x[i] = -1 + i / 14.5;
    y[i] = std::cos(3 * x[i]);
  }
  Array<double> fit, coef;
  double mse;
  // A constrained polynomial above order 25 warns and keeps its outputs.
  const Array<int32_t> idx{0};
  const Array<double> one{1.0};
  EXPECT_EQ(PolyFit80_head(x.h(), y.h(), 26, 0, idx.h(), one.h(), fit.h(), coef.h(), &mse), 20031);
  EXPECT_EQ(coef.size(), 27);
  EXPECT_EQ(coef[0], 1.0);
  EXPECT_LT(mse, 1e-6);
  EXPECT_EQ(PolyFit_head(x.h(), y.h(), INT32_MIN, 0, fit.h(), coef.h(), &mse), -20103);
  EXPECT_EQ(PolyFit_head(x.h(), y.h(), INT32_MAX, 0, fit.h(), coef.h(), &mse), -20037);
  EXPECT_EQ(coef.size(), 0);
  // The largest double is refused as non-finite; huge finite data do not crash.
  Array<double> big(30);
  for (int i = 0; i < 30; ++i) big[i] = i == 4 ? 1.7976931348623157e308 : 1e300;
  EXPECT_EQ(PolyFit_head(x.h(), big.h(), 2, 1, fit.h(), coef.h(), &mse), -20068);
  double s, c;
  big[4] = 1e308;
  EXPECT_EQ(LinFit_head(big.h(), x.h(), Array<double>().h(), fit.h(), &s, &c, &mse), 0);
  // Iteration limits at their extremes end on convergence or at once.
  Array2<double> d(30, 2);
  for (int i = 0; i < 30; ++i) {
    d[2 * i] = 1;
    d[2 * i + 1] = x[i];
  }
  Array2<double> cov;
  for (int32_t limit : {INT32_MIN, 0, INT32_MAX}) {
    EXPECT_EQ(GenLARFit_head(d.h(), y.h(), Array<double>().h(), 0, -1, limit, fit.h(), coef.h(), &mse, cov.h()), 0);
    EXPECT_EQ(GenBisquareFit_head(d.h(), y.h(), 0, -1, limit, fit.h(), coef.h(), &mse, cov.h()), 0);
  }
}

TEST(LeastSquares, Rejections) {
  const Array<double> x{0, 1, 2, 3}, y{1, 2, 3, 5}, y3{1, 2, 3}, w2{1, 2}, neg{1, -2, 3, 4}, nan{1, NAN, 2, 3};
  const Array<int32_t> i1{0}, none_i;
  const Array<double> none;
  Array2<double> d(4, 2), d5(3, 4);
  for (int i = 0; i < 8; ++i) d[i] = i;
  double s = 0, c = 0, e = 0;
  auto poly = [&](const Array<double>& xx, const Array<double>& yy, int32_t order, int32_t method,
                  const Array<double>& ww, const Array<int32_t>& ii, const Array<double>& vv, int fail = 0) {
    return Rejection{"", 0, [&, order, method](uint8_t** o) {
                       Array<double> f;
                       return PolyFit81_head(xx.h(), yy.h(), order, ww.h(), method, ii.h(), vv.h(), f.h(), o, &e);
                     }, fail};
  };
  std::vector<Rejection> cases = {
      {"line, lengths", -20002, [&](uint8_t** o) { return LinFit_head(y3.h(), x.h(), none.h(), o, &s, &c, &e); }},
      {"line, weights", -20002, [&](uint8_t** o) { return LinFit_head(y.h(), x.h(), w2.h(), o, &s, &c, &e); }},
      {"line, one point", -20006, [&](uint8_t** o) { const Array<double> one{1}; return LinFit_head(one.h(), one.h(), none.h(), o, &s, &c, &e); }},
      {"line, NaN weight", -20068, [&](uint8_t** o) { return LinFit_head(y.h(), x.h(), nan.h(), o, &s, &c, &e); }},
      {"line, resize", -20001, [&](uint8_t** o) { return LinFit_head(y.h(), x.h(), none.h(), o, &s, &c, &e); }, 1},
      {"general, rows", -20002, [&](uint8_t** o) { Array<double> f; Array2<double> v; return GenLSFit_head(d.h(), y3.h(), 0, f.h(), o, &e, v.h()); }},
      {"general, no columns", -20021, [&](uint8_t** o) { Array<double> f; Array2<double> v, z(4, 0); return GenLSFit_head(z.h(), y.h(), 0, f.h(), o, &e, v.h()); }},
      {"general, too few rows", -20037, [&](uint8_t** o) { Array<double> f; Array2<double> v; return GenLSFit_head(d5.h(), y3.h(), 0, f.h(), o, &e, v.h()); }},
      {"general, method", -20061, [&](uint8_t** o) { Array<double> f; Array2<double> v; return GenLSFit_head(d.h(), y.h(), 7, f.h(), o, &e, v.h()); }},
      {"general, NaN", -20068, [&](uint8_t** o) { Array<double> f; Array2<double> v; return GenLSFit80_head(d.h(), y.h(), nan.h(), 0, f.h(), o, &e, v.h()); }},
      {"general, third resize", -20001, [&](uint8_t** o) { Array<double> f; Array2<double> v; return GenLSFit_head(d.h(), y.h(), 0, f.h(), o, &e, v.h()); }, 3},
      {"exp, negative data", -20027, [&](uint8_t** o) { double a, b; return ExpFit_head(neg.h(), x.h(), o, &a, &b, &e); }},
      {"power, x at 0", -20027, [&](uint8_t** o) { double a, b; return PowerFit_head(y.h(), x.h(), o, &a, &b, &e); }},
      {"log, one point", -20006, [&](uint8_t** o) { double a, b; const Array<double> one{1}; return LogFit_head(one.h(), one.h(), o, &a, &b, &e); }},
  };
  Rejection p[] = {poly(x, y3, 1, 0, none, none_i, none), poly(x, y, 1, 0, w2, none_i, none),
                   poly(x, y, 1, 0, none, i1, none), poly(x, y, -1, 0, none, none_i, none),
                   poly(x, y, 4, 0, none, none_i, none), poly(x, y, 2, 7, none, none_i, none),
                   poly(x, nan, 1, 0, none, none_i, none), poly(x, y, 1, 0, none, none_i, none, 2),
                   poly(x, y, 0x7FFFFFFF, 0, none, none_i, none), poly(x, y, 1, 5, neg, none_i, none)};
  const int32_t codes[] = {-20002, -20002, -20002, -20103, -20037, -20061, -20068, -20001, -20037, 0};
  for (int i = 0; i < 9; ++i) {
    p[i].what = "polynomial";
    p[i].code = codes[i];
    cases.push_back(p[i]);
  }
  jqtest::expect_rejections<double>(cases);
  int32_t st = 0;
  EXPECT_EQ(LinFitCoef_head(y3.h(), x.h(), &s, &c, &st), 0);
  EXPECT_EQ(st, -20002);
  EXPECT_TRUE(std::isnan(s) && std::isnan(c));
  EXPECT_EQ(ExpFitCoef_head(neg.h(), x.h(), &s, &c, &st), 0);
  EXPECT_EQ(st, -20027);
  EXPECT_TRUE(std::isnan(s));
}

}  // namespace
