// Newton-Cotes integration through its exports: sums built from scipy's
// Newton-Cotes weights, polynomials each rule integrates exactly, and the
// rejections with a NaN result.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "frame/scratch.hpp"
#include "jqanlys.h"
#include "jqrt.hpp"

namespace {

struct Integral {
  int rule, n;
  double h;
  const double* y;
  double expect;
};
struct Integral2 {
  int rows, cols, rule;
  double dx, dy;
  const double* y;
  double expect;
};

#include "integration_oracle.inc"

using Export1 = int32_t (*)(JQArrF64, double, int32_t, double*);

TEST(IntegrationOracle, EveryRuleAndRemainder) {
  for (const Integral& c : kIntegrals) {
    SCOPED_TRACE(testing::Message() << "rule " << c.rule << " n " << c.n);
    jqrt::Array<double> y(std::vector<double>(c.y, c.y + c.n));
    for (Export1 f : {Export1(NumerIntegration_head), Export1(NumerIntegration_2017_head)})
      for (double h : {c.h, -c.h}) {
        double r = 0;
        EXPECT_EQ(f(y.h(), h, c.rule, &r), 0);
        EXPECT_NEAR(r, c.expect, 1e-14);
      }
  }
}

TEST(IntegrationOracle, TwoDimensions) {
  for (const Integral2& c : kIntegrals2) {
    auto y = jqrt::Array2<double>(c.rows, c.cols);
    std::copy_n(c.y, c.rows * c.cols, y.data());
    double r = 0;
    EXPECT_EQ(NumerIntegration2D_2017_head(y.h(), c.dx, c.dy, c.rule, &r), 0);
    EXPECT_NEAR(r, c.expect, 1e-14);
  }
}

// Planes stacked as rows: a trilinear function is exact under every rule.
TEST(Integration, ThreeDimensionsStackPlanes) {
  const int planes = 5, rows = 6, cols = 9;
  auto y = jqrt::Array2<double>(planes * rows, cols);
  for (int p = 0; p < planes; ++p)
    for (int r = 0; r < rows; ++r)
      for (int c = 0; c < cols; ++c) y.data()[(p * rows + r) * cols + c] = 1 + 0.5 * p + 0.25 * r - c * 0.125;
  // Over [0,4] x [0,5] x [0,8] (unit spacing): volume 160 times the mean value.
  const double exact = 160 * (1 + 0.5 * 2 + 0.25 * 2.5 - 0.125 * 4);
  for (int32_t rule = 0; rule < 4; ++rule) {
    double r = 0;
    EXPECT_EQ(NumerIntegration3D_head(y.h(), planes, 1.0, -1.0, 1.0, rule, &r), 0);
    EXPECT_NEAR(r, exact, 1e-12) << rule;
  }
}

TEST(IntegrationRejections, CodesAndNaN) {
  jqrt::Array<double> empty, three{1, 2, 3}, negative{1, 2};
  negative.set_dims(-3);
  auto m = jqrt::Array2<double>(4, 5);
  jqrt::Array2<double> m_empty;
  struct Case {
    const char* what;
    int32_t code;
    std::function<int32_t(double*)> call;
  };
  const Case cases[] = {
      {"2017 empty", -20003, [&](double* r) { return NumerIntegration_2017_head(empty.h(), 1, 9, r); }},
      {"older empty", -20008, [&](double* r) { return NumerIntegration_head(empty.h(), 1, 0, r); }},
      {"negative count", -20008, [&](double* r) { return NumerIntegration_head(negative.h(), 1, 0, r); }},
      {"null handle", -20003, [&](double* r) { return NumerIntegration_2017_head(nullptr, 1, 0, r); }},
      {"rule", -20061, [&](double* r) { return NumerIntegration_head(three.h(), 1, 4, r); }},
      {"negative rule", -20061, [&](double* r) { return NumerIntegration_2017_head(three.h(), 1, -1, r); }},
      {"too few", -20008, [&](double* r) { return NumerIntegration_head(three.h(), 1, 2, r); }},
      {"2-D empty", -20003, [&](double* r) { return NumerIntegration2D_2017_head(m_empty.h(), 1, 1, 0, r); }},
      {"2-D rule", -20061, [&](double* r) { return NumerIntegration2D_head(m.h(), 1, 1, INT32_MAX, r); }},
      {"2-D rows", -20008, [&](double* r) { return NumerIntegration2D_head(m.h(), 1, 1, 3, r); }},
      {"3-D planes", -20008, [&](double* r) { return NumerIntegration3D_head(m.h(), 3, 1, 1, 1, 0, r); }},
      {"3-D no planes", -20008, [&](double* r) { return NumerIntegration3D_2017_head(m.h(), 0, 1, 1, 1, 0, r); }},
      {"3-D too few", -20008, [&](double* r) { return NumerIntegration3D_head(m.h(), 2, 1, 1, 1, 1, r); }},
      {"scratch", -20001, [&](double* r) {
         jq::fail_scratch_allocation(1);
         const int32_t code = NumerIntegration2D_head(m.h(), 1, 1, 0, r);
         jq::fail_scratch_allocation(0);
         return code;
       }},
  };
  for (const Case& c : cases) {
    double r = 0;
    EXPECT_EQ(c.call(&r), c.code) << c.what;
    EXPECT_TRUE(std::isnan(r)) << c.what;
  }
}

}  // namespace
