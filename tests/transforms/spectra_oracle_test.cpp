// Power and cross spectra against numpy (awkward and prime lengths, both
// instance forms) and against closed forms: a tone's power in its bins,
// Parseval, and the identities linking the four exports.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <vector>

#include "jqanlys.h"
#include "jqrt.hpp"

namespace {

using cd = std::complex<double>;

struct SpectraCase {
  int n;
  const double* power;
  const double* cx_power;
  const double* cross;  // interleaved re, im
  const double* cx_cross;
};
#include "spectra_oracle.inc"

// The generator of tools/gen_spectra_oracle.py: exact doubles in [-1, 1).
struct Lcg {
  uint64_t s;
  double next() {
    s = s * 6364136223846793005ull + 1442695040888963407ull;
    return std::ldexp(static_cast<double>(s >> 11), -52) - 1.0;
  }
};

// Largest deviation from the oracle, relative to the oracle's largest value.
double deviation(const double* got, const double* want, size_t count) {
  double peak = 0, worst = 0;
  for (size_t i = 0; i < count; ++i) {
    peak = std::max(peak, std::abs(want[i]));
    worst = std::max(worst, std::abs(got[i] - want[i]));
  }
  return peak > 0 ? worst / peak : worst;
}

constexpr double kTolerance = 1e-14;

TEST(SpectraOracle, AllFourMatchNumpyInBothInstanceForms) {
  double worst = 0;
  for (const SpectraCase& c : kSpectraCases) {
    const int n = c.n;
    Lcg g{12345u + static_cast<uint64_t>(n)};
    jqrt::Array<double> x(n), y(n);
    jqrt::Array<cd> cx(n), cy(n);
    for (int i = 0; i < n; ++i) x[i] = g.next();
    for (int i = 0; i < n; ++i) y[i] = g.next();
    for (jqrt::Array<cd>* z : {&cx, &cy})
      for (int i = 0; i < n; ++i) {
        const double re = g.next();  // real part first, as the generator draws them
        (*z)[i] = cd(re, g.next());
      }
    for (bool idp : {false, true}) {
      SCOPED_TRACE(testing::Message() << "n = " << n << (idp ? ", _IDP" : ", plain"));
      jqrt::Slot s1, s2, s3, s4;
      jqrt::Array<double> power(x.values()), cx_power;
      jqrt::Array<cd> cross, cx_cross;
      ASSERT_EQ((idp ? SpectrumH_IDP : SpectrumH)(power.h(), s1.get()), 0);
      ASSERT_EQ((idp ? CxSpectrumH_IDP : CxSpectrumH)(cx.h(), cx_power.h(), s2.get()), 0);
      ASSERT_EQ((idp ? CrossSpectrumH_IDP : CrossSpectrumH)(x.h(), y.h(), cross.h(), s3.get()), 0);
      ASSERT_EQ((idp ? CxCrossSpectrumH_IDP : CxCrossSpectrumH)(cx.h(), cy.h(), cx_cross.h(), s4.get()), 0);
      ASSERT_EQ(power.size(), n);
      ASSERT_EQ(cx_power.size(), n);
      ASSERT_EQ(cross.size(), n);
      ASSERT_EQ(cx_cross.size(), n);
      const double d[] = {deviation(power.data(), c.power, n), deviation(cx_power.data(), c.cx_power, n),
                          deviation(reinterpret_cast<double*>(cross.data()), c.cross, 2 * n),
                          deviation(reinterpret_cast<double*>(cx_cross.data()), c.cx_cross, 2 * n)};
      for (double v : d) EXPECT_LE(v, kTolerance);
      worst = std::max({worst, d[0], d[1], d[2], d[3]});
      if (idp)
        for (jqrt::Slot* s : {&s1, &s2, &s3, &s4}) TransformUnreserveProc(s->get());
      else
        jqrt_dispose_context();
    }
  }
  RecordProperty("worst_relative_deviation", testing::PrintToString(worst));
  std::printf("worst deviation from numpy, relative to the peak bin: %.3g\n", worst);
}

TEST(SpectraClosedForms, DocumentedExamples) {
  jqrt::Slot slot;
  jqrt::Array<double> ones{1, 1, 1, 1}, three{3};
  ASSERT_EQ(SpectrumH(ones.h(), slot.get()), 0);
  EXPECT_EQ(ones.values(), (std::vector<double>{1, 0, 0, 0}));
  ASSERT_EQ(SpectrumH(three.h(), slot.get()), 0);
  EXPECT_EQ(three.values(), std::vector<double>{9});
  jqrt::Array<double> a{-2}, b{5};
  jqrt::Array<cd> s;
  ASSERT_EQ(CrossSpectrumH(a.h(), b.h(), s.h(), slot.get()), 0);
  EXPECT_EQ(s.values(), std::vector<cd>{cd(-10, 0)});
  jqrt_dispose_context();
}

// A cosine of amplitude A in bin f puts A^2/4 into bins f and n-f; a complex
// tone puts A^2 into bin f alone. The bins sum to the mean square (Parseval).
TEST(SpectraClosedForms, TonesAndParseval) {
  const double kPi = 3.141592653589793;
  for (int n : {3, 46, 53, 97, 1000, 1024}) {
    SCOPED_TRACE(n);
    const int f = n / 3 > 0 ? n / 3 : 1;
    const double A = 1.5;
    jqrt::Array<double> x(n), ms_real(n);
    jqrt::Array<cd> z(n);
    double mean_square = 0;
    for (int j = 0; j < n; ++j) {
      const double phase = 2 * kPi * static_cast<double>(f) * j / n;
      x[j] = A * std::cos(phase);
      z[j] = A * cd(std::cos(phase), std::sin(phase));
      mean_square += x[j] * x[j] / n;
    }
    jqrt::Slot s1, s2;
    jqrt::Array<double> zp;
    ASSERT_EQ(CxSpectrumH(z.h(), zp.h(), s2.get()), 0);
    ASSERT_EQ(SpectrumH(x.h(), s1.get()), 0);
    double sum = 0;
    for (int k = 0; k < n; ++k) {
      sum += x[k];
      const double want = (k == f || k == n - f) ? A * A / 4 : 0.0;
      EXPECT_NEAR(x[k], want, 1e-13) << "real, bin " << k;
      EXPECT_NEAR(zp[k], k == f ? A * A : 0.0, 1e-13) << "complex, bin " << k;
    }
    EXPECT_NEAR(sum, mean_square, 1e-13 * mean_square);
  }
  jqrt_dispose_context();
}

// The cross spectrum of a signal with itself is its power spectrum with zero
// imaginary parts, and real inputs give conjugate-symmetric bins, exactly.
TEST(SpectraClosedForms, CrossWithItselfAndSymmetry) {
  for (int n : {2, 7, 12, 53}) {
    SCOPED_TRACE(n);
    Lcg g{99u + static_cast<uint64_t>(n)};
    jqrt::Array<double> x(n), y(n);
    for (int i = 0; i < n; ++i) x[i] = g.next(), y[i] = g.next();
    jqrt::Array<double> power(x.values());
    jqrt::Array<cd> self, xy, cx_self;
    jqrt::Array<cd> z(n);
    for (int i = 0; i < n; ++i) z[i] = x[i];
    jqrt::Slot slot;
    ASSERT_EQ(SpectrumH_IDP(power.h(), slot.get()), 0);
    ASSERT_EQ(CrossSpectrumH_IDP(x.h(), x.h(), self.h(), slot.get()), 0);
    ASSERT_EQ(CrossSpectrumH_IDP(x.h(), y.h(), xy.h(), slot.get()), 0);
    ASSERT_EQ(CxCrossSpectrumH_IDP(z.h(), z.h(), cx_self.h(), slot.get()), 0);
    for (int k = 0; k < n; ++k) {
      EXPECT_EQ(self[k], cd(power[k], 0.0)) << k;
      EXPECT_EQ(xy[(n - k) % n], std::conj(xy[k])) << k;
      EXPECT_NEAR(cx_self[k].real(), power[k], 1e-15);
      EXPECT_EQ(cx_self[k].imag(), 0.0);
    }
    EXPECT_EQ(xy[0].imag(), 0.0);
    TransformUnreserveProc(slot.get());
  }
}

}  // namespace
