// Goodness of fit by its closed forms, and confidence and prediction bounds
// against the closed forms with scipy's t quantiles.
#include <cmath>
#include <limits>

#include "jqanlys.h"
#include "support.hpp"
#include "support/checks.hpp"

namespace {
#include "oracle.inc"

using jqrt::Array;
using jqtest::Rejection;
constexpr int kN = 40;

TEST(Goodness, ClosedFormsAndMarkers) {
  const Array<double> y{1, 2, 4, 3, 5}, f{1.5, 2, 3, 3.5, 4.5}, w{1, 2, 1, 0.5, 1};
  double sse, r2, rmse;
  ASSERT_EQ(GoodnessOfFit_head(y.h(), f.h(), Array<double>().h(), 2, &sse, &r2, &rmse), 0);
  EXPECT_DOUBLE_EQ(sse, 0.25 + 0 + 1 + 0.25 + 0.25);
  EXPECT_DOUBLE_EQ(r2, 1 - 1.75 / 10.0);
  EXPECT_DOUBLE_EQ(rmse, std::sqrt(1.75 / 2));
  // Weights scale both sums; the mean stays the plain one.
  ASSERT_EQ(GoodnessOfFit_head(y.h(), f.h(), w.h(), 0, &sse, &r2, &rmse), 0);
  EXPECT_DOUBLE_EQ(sse, 0.25 + 1 + 0.125 + 0.25);
  EXPECT_DOUBLE_EQ(r2, 1 - 1.625 / (4 + 2 * 1 + 1 + 0 + 4));
  EXPECT_DOUBLE_EQ(rmse, std::sqrt(1.625 / 3));  // dof 0 means n - 2
  const Array<double> c{2, 2, 2}, c_fit{2, 2, 2}, off{2, 2, 2.5};
  ASSERT_EQ(GoodnessOfFit_head(c.h(), c_fit.h(), Array<double>().h(), 1, &sse, &r2, &rmse), 0);
  EXPECT_EQ(r2, 1.0);
  ASSERT_EQ(GoodnessOfFit_head(c.h(), off.h(), Array<double>().h(), 1, &sse, &r2, &rmse), 0);
  EXPECT_EQ(r2, std::numeric_limits<double>::infinity());

  const Array<double> one{1}, none;
  const struct {
    const Array<double>*y, *f, *w;
    int32_t dof, code;
  } bad[] = {{&none, &none, &none, 0, -20003}, {&y, &c, &none, 0, -20002}, {&y, &f, &c, 0, -20002},
             {&one, &one, &none, 0, -20006}, {&y, &f, &none, 5, -20052}};
  for (const auto& b : bad) {
    SCOPED_TRACE(b.code);
    EXPECT_EQ(GoodnessOfFit_head(b.y->h(), b.f->h(), b.w->h(), b.dof, &sse, &r2, &rmse), b.code);
    EXPECT_TRUE(std::isnan(sse) && std::isnan(r2) && std::isnan(rmse));
  }
}

TEST(Bounds, PolynomialMatchesClosedForms) {
  const auto x = ft::arr(poly_x, kN), y = ft::arr(bnd_y, kN), w = ft::arr(poly_w, kN), c = ft::arr(bnd_c, 4);
  const Array<double> none;
  const struct {
    bool predict;
    const Array<double>* w;
    const double* want;
  } cases[] = {{false, &none, bnd_conf_u}, {true, &none, bnd_pred_u}, {false, &w, bnd_conf_w}, {true, &w, bnd_pred_w}};
  for (const auto& k : cases) {
    SCOPED_TRACE(k.want == bnd_conf_u ? "conf" : k.want == bnd_pred_u ? "pred" : "weighted");
    Array<double> lo, up;
    const auto fn = k.predict ? PredBndPoly_head : ConfBndPoly_head;
    ASSERT_EQ(fn(x.h(), y.h(), k.w->h(), c.h(), 0.95, lo.h(), up.h()), 0);
    ASSERT_EQ(lo.size(), kN);
    for (int i = 0; i < kN; ++i) {
      const double f = bnd_c[0] + x[i] * (bnd_c[1] + x[i] * (bnd_c[2] + x[i] * bnd_c[3]));
      // The t quantile is bisected to a width of 1e-4.
      EXPECT_NEAR(up[i] - f, k.want[i], 3e-5 * k.want[i]);
      EXPECT_NEAR(f - lo[i], k.want[i], 3e-5 * k.want[i]);
    }
  }
}

TEST(Bounds, CurveMembersUseTheirLinearForms) {
  // The logarithmic curve is linear in ln x: its bounds are the straight
  // line's on ln x, and it returns the coefficients of its own fit.
  const auto x = ft::arr(curve_x, 30), y = ft::arr(log_y, 30);
  Array<double> lnx(30);
  for (int i = 0; i < 30; ++i) lnx[i] = std::log(x[i]);
  Array<double> coef, lo, up, lo2, up2;
  const Array<double> none;
  ASSERT_EQ(PredBndLog_head(x.h(), y.h(), none.h(), 0.9, coef.h(), lo.h(), up.h()), 0);
  EXPECT_LT(ft::rel_error(coef.data(), log_c, 2), 1e-12);
  ASSERT_EQ(PredBndLinear_head(lnx.h(), y.h(), none.h(), coef[1], coef[0], 0.9, lo2.h(), up2.h()), 0);
  for (int i = 0; i < 30; ++i) EXPECT_NEAR(lo[i], lo2[i], 1e-12);
  // Exponential: coefficients of the fit, bounds around the fitted curve.
  const auto ey = ft::arr(exp_y, 30);
  ASSERT_EQ(ConfBndExp_head(x.h(), ey.h(), none.h(), 0.95, coef.h(), lo.h(), up.h()), 0);
  EXPECT_LT(ft::rel_error(coef.data(), exp_c, 2), 1e-8);
  for (int i = 0; i < 30; ++i) EXPECT_NEAR(0.5 * (lo[i] + up[i]), exp_c[0] * std::exp(exp_c[1] * x[i]), 1e-8);
}

TEST(Bounds, Rejections) {
  const Array<double> x{1, 2, 3, 4}, y{1, 2, 3, 5}, y3{1, 2, 3}, c{1, 1}, none, nan{1, NAN, 1, 1}, neg{-1, 2, 3, 4};
  std::vector<Rejection> cases = {
      {"lengths", -20002, [&](uint8_t** o) { Array<double> u; return PredBndPoly_head(x.h(), y3.h(), none.h(), c.h(), 0.9, o, u.h()); }},
      {"no coefficients", -20003, [&](uint8_t** o) { Array<double> u; return PredBndPoly_head(x.h(), y.h(), none.h(), none.h(), 0.9, o, u.h()); }},
      {"level 1", -20053, [&](uint8_t** o) { Array<double> u; return ConfBndPoly_head(x.h(), y.h(), none.h(), c.h(), 1.0, o, u.h()); }},
      {"level NaN", -20053, [&](uint8_t** o) { Array<double> u; return ConfBndLinear_head(x.h(), y.h(), none.h(), 1, 1, NAN, o, u.h()); }},
      {"weights NaN", -20068, [&](uint8_t** o) { Array<double> u; return ConfBndPoly_head(x.h(), y.h(), nan.h(), c.h(), 0.5, o, u.h()); }},
      {"no degrees of freedom", -20052, [&](uint8_t** o) { Array<double> u; const Array<double> c4{1, 1, 1, 1}; return ConfBndPoly_head(x.h(), y.h(), none.h(), c4.h(), 0.5, o, u.h()); }},
      {"second resize", -20001, [&](uint8_t** o) { Array<double> u; return ConfBndPoly_head(x.h(), y.h(), none.h(), c.h(), 0.5, u.h(), o); }, 2},
      {"power, x domain", -20027, [&](uint8_t** o) { Array<double> u, k; return PredBndPower_head(neg.h(), y.h(), none.h(), 0.5, k.h(), o, u.h()); }},
      {"exp, one point", -20006, [&](uint8_t** o) { Array<double> u, k; const Array<double> one{1}; return PredBndExp_head(one.h(), one.h(), none.h(), 0.5, k.h(), o, u.h()); }},
  };
  jqtest::expect_rejections<double>(cases);
}

}  // namespace
