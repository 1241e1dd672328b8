// IIR designs through their exports: frequency responses against scipy,
// section order and padding, the fourth-order conversions, and every check.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <vector>

#include "filters/iir_design.hpp"
#include "iir_oracle.inc"
#include "jqanlys.h"
#include "jqrt.hpp"
#include "support/checks.hpp"

namespace {

using cd = std::complex<double>;
using Arr = jqrt::Array<double>;

struct Design {
  int32_t family, type, order, topology;
  double fs, fl, fh, ripple, atten;
};

// Calls the family's export; topology < 0 picks the form without one.
int32_t design(const Design& s, uint8_t** rev, uint8_t** fwd, int32_t* err) {
  double fs = s.fs, fl = s.fl, fh = s.fh, r = s.ripple, a = s.atten;
  int32_t n = s.order, t = s.type, top = s.topology;
  const bool own = top < 0;
  switch (s.family) {
    case 0:
      return own ? BWCoefs(&fs, &fl, &fh, &n, &t, rev, fwd, err) : BWCoefs90(&fs, &fl, &fh, &n, &t, top, rev, fwd, err);
    case 1:
      return own ? ChebyshevCoefs(&fs, &fl, &fh, &r, &n, &t, rev, fwd, err)
                 : ChebyshevCoefs90(&fs, &fl, &fh, &r, &n, &t, top, rev, fwd, err);
    case 2:
      return own ? InvChebyshevCoefs(&fs, &fl, &fh, &a, &n, &t, rev, fwd, err)
                 : InvChebyshevCoefs90(&fs, &fl, &fh, &a, &n, &t, top, rev, fwd, err);
    case 3:
      return own ? EllipticCoefs(&fs, &fl, &fh, &r, &a, &n, &t, rev, fwd, err)
                 : EllipticCoefs90(&fs, &fl, &fh, &r, &a, &n, &t, top, rev, fwd, err);
    default:
      return own ? BesselCoefs(&fs, &fl, &fh, &n, &t, rev, fwd, err)
                 : BesselCoefs90(&fs, &fl, &fh, &n, &t, top, rev, fwd, err);
  }
}

// The cascade's response at w (radians per sample).
cd response(const Arr& a, const Arr& b, int m, double w) {
  const cd z1 = std::polar(1.0, -w);
  cd h = 1;
  for (int k = 0; k < a.size() / m; ++k) {
    cd num = 0, den = 0, p = 1;
    for (int i = 0; i <= m; ++i, p *= z1) {
      num += b[(m + 1) * k + i] * p;
      den += (i == 0 ? 1.0 : a[m * k + i - 1]) * p;
    }
    h *= num / den;
  }
  return h;
}

}  // namespace

TEST(IirDesign, ResponsesMatchScipyInEveryFamilyTypeAndTopology) {
  for (const oracle::DesignCase& c : oracle::kDesigns) {
    SCOPED_TRACE(testing::Message() << "family " << c.family << " type " << c.type << " order " << c.order
                                    << " topology " << c.topology);
    const Design s{c.family, c.type, c.order, c.topology, c.fs, c.fl, c.fh, c.ripple, c.atten};
    Arr a, b;
    int32_t err = 1;
    ASSERT_EQ(design(s, a.h(), b.h(), &err), 0);
    ASSERT_EQ(err, 0);
    const bool band = c.type >= 2;
    const int m = c.topology == 1 ? 4 : 2;
    const int64_t ns = (c.order + 1) / 2;
    const int64_t sections = c.topology == 1 ? (band ? ns : (ns + 1) / 2) : (band ? 2 * ns : ns);
    ASSERT_EQ(a.size(), m * sections);
    ASSERT_EQ(b.size(), (m + 1) * sections);
    double peak = 0, worst = 0;
    for (int i = 0; i < oracle::kFreqCount; ++i) peak = std::max(peak, std::abs(cd(c.re[i], c.im[i])));
    for (int i = 0; i < oracle::kFreqCount; ++i)
      worst = std::max(worst, std::abs(response(a, b, m, oracle::kFreqs[i]) - cd(c.re[i], c.im[i])) / peak);
    EXPECT_LT(worst, 5e-11);
    // An odd lowpass/highpass order starts with a first-order section padded
    // with exact zeros, alone in its slot.
    if (c.order % 2 && !band && (c.topology == 0 || ns % 2)) {
      for (int j = 1; j < m; ++j) EXPECT_EQ(a[j], 0.0);
      for (int j = 2; j <= m; ++j) EXPECT_EQ(b[j], 0.0);
    }
    if (c.order % 2 && band && c.topology == 1) {
      for (double v : {a[2], a[3], b[3], b[4]}) EXPECT_EQ(v, 0.0);
    }
    // Butterworth and Chebyshev sections run from the real pole through the
    // pairs nearest the unit circle inwards.
    for (int k = 0; k < c.nradii; ++k) {
      const double r = (c.order % 2 && k == 0) ? std::fabs(a[0]) : std::sqrt(a[2 * k + 1]);
      EXPECT_NEAR(r, c.radii[k], 1e-13) << "section " << k;
    }
    // The form without topology gives the natural one's coefficients.
    if (c.topology == (band ? 1 : 0)) {
      Arr a2, b2;
      Design own = s;
      own.topology = -1;
      ASSERT_EQ(design(own, a2.h(), b2.h(), &err), 0);
      EXPECT_EQ(a2.values(), a.values());
      EXPECT_EQ(b2.values(), b.values());
    }
  }
}

TEST(IirDesign, FourthOrderSectionsAreProductsOfSecondOrderOnes) {
  // Lowpass orders 3 and 5: the design in second-order sections, multiplied in pairs after an odd
  // count's lone first section, is exactly the fourth-order design.
  for (int32_t order : {3, 5, 6}) {
    SCOPED_TRACE(order);
    Arr a2, b2, a4, b4;
    int32_t err;
    ASSERT_EQ(design({0, 0, order, 0, 100, 10, 0, 0, 0}, a2.h(), b2.h(), &err), 0);
    ASSERT_EQ(design({0, 0, order, 1, 100, 10, 0, 0, 0}, a4.h(), b4.h(), &err), 0);
    const int64_t ns = (order + 1) / 2, m = (ns + 1) / 2;
    std::vector<double> ra(4 * m), rb(5 * m);
    ASSERT_EQ(jq::iir::to_fourth_order(ns, a2.data(), b2.data(), 4 * m, ra.data(), 5 * m, rb.data()), 0);
    EXPECT_EQ(a4.values(), ra);
    EXPECT_EQ(b4.values(), rb);
  }
  // The quartic factorisation behind the band split reproduces its input,
  // including close root pairs.
  const double e[][4] = {{-3.2, 4.1, -2.5, 0.64}, {-3.999, 5.997, -3.997, 0.999}, {0.5, 0.3, 0.1, 0.2}};
  for (const auto& q : e) {
    double c[2], d[2];
    ASSERT_TRUE(jq::iir::factor_quartic(q, c, d));
    EXPECT_NEAR(c[0] + d[0], q[0], 1e-14);
    EXPECT_NEAR(c[1] + c[0] * d[0] + d[1], q[1], 1e-14);
    EXPECT_NEAR(c[0] * d[1] + c[1] * d[0], q[2], 1e-14);
    EXPECT_NEAR(c[1] * d[1], q[3], 1e-14);
  }
  const double none[4] = {0.5, 0.2, 0, 0};
  double c[2], d[2];
  EXPECT_FALSE(jq::iir::factor_quartic(none, c, d));
}

TEST(IirDesign, RejectionsInValidationOrderLeaveBothArraysEmpty) {
  const double nan = jqtest::nan();
  using R = jqtest::Rejection;
  auto call = [](Design s) {
    return [s](uint8_t** out) {
      Arr fwd(4);
      int32_t err = 7;
      const int32_t code = jqtest::reported(design(s, out, fwd.h(), &err), err);
      EXPECT_EQ(fwd.size(), 0);
      return code;
    };
  };
  jqtest::expect_rejections<double>({
      R{"order 0", -20021, call({0, 0, 0, 0, 100, 10, 0, 0, 0})},
      R{"negative order", -20021, call({3, 2, -5, 0, 100, 10, 20, 1, 40})},
      R{"fl 0", -20023, call({0, 0, 2, 0, 100, 0, 0, 0, 0})},
      R{"band edges reversed", -20023, call({0, 2, 2, 1, 100, 20, 10, 0, 0})},
      R{"fs NaN", -20023, call({1, 0, 2, 0, nan, 10, 0, 1, 0})},
      R{"lowpass fl at Nyquist", -20023, call({0, 0, 2, 0, 100, 50, 0, 0, 0})},
      R{"band edge above Nyquist", -20020, call({0, 2, 2, 1, 100, 10, 60, 0, 0})},
      R{"Chebyshev ripple 0", -20024, call({1, 0, 2, 0, 100, 10, 0, 0, 0})},
      R{"inverse Chebyshev attenuation before Nyquist", -20025, call({2, 2, 2, 1, 100, 10, 60, 0, -3})},
      R{"elliptic attenuation 0", -20025, call({3, 0, 2, 0, 100, 10, 0, 1, 0})},
      R{"elliptic attenuation below ripple", -20028, call({3, 0, 2, 0, 100, 10, 0, 3, 3})},
      R{"type 4", -20061, call({4, 4, 2, 0, 100, 10, 20, 0, 0})},
      R{"topology 2", -20061, call({0, 0, 2, 2, 100, 10, 0, 0, 0})},
      R{"Bessel order 201", -20061, call({4, 0, 201, 0, 100, 10, 0, 0, 0})},
      R{"reverse resize fails", -20001, call({0, 0, 4, 0, 100, 10, 0, 0, 0}), 1},
      R{"forward resize fails", -20001, call({3, 3, 4, 0, 100, 10, 20, 1, 40}), 2},
      R{"order beyond any array", -20001, call({0, 2, INT32_MAX, 0, 100, 10, 20, 0, 0})},
  });
  // A bandpass edge exactly at Nyquist is accepted.
  Arr a, b;
  int32_t err = 1;
  EXPECT_EQ(design({0, 2, 3, 1, 100, 10, 50, 0, 0}, a.h(), b.h(), &err), 0);
  EXPECT_EQ(err, 0);
}
