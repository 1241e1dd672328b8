// Power and cross spectra against |X|^2/n^2 and conj(X) Y/n^2 from
// long-double DFTs.
#include <gtest/gtest.h>

#include "jqanlys.h"
#include "jqrt.hpp"
#include "reference.hpp"

using namespace jqtest;
using cd = std::complex<double>;
using jqrt::Array;

namespace {

std::vector<cld> dft(const std::vector<cd>& x) {
  const int32_t n = static_cast<int32_t>(x.size());
  std::vector<double> re(n), im(n);
  for (int32_t j = 0; j < n; ++j) re[j] = x[j].real(), im[j] = x[j].imag();
  const auto w = roots(n);
  std::vector<cld> y(n);
  for (int32_t k = 0; k < n; ++k) y[k] = dft_bin(w, re.data(), im.data(), n, k);
  return y;
}

std::vector<cd> mixed(int32_t n, uint32_t seed) {
  const auto a = random_values(n, seed), b = random_values(n, seed + 1);
  std::vector<cd> v(n);
  for (int32_t i = 0; i < n; ++i) v[i] = cd(a[i], b[i]);
  return v;
}

std::vector<cd> real_part(const std::vector<cd>& v) {
  std::vector<cd> r(v.size());
  for (size_t i = 0; i < v.size(); ++i) r[i] = v[i].real();
  return r;
}

class Spectra : public ::testing::Test {
 protected:
  void TearDown() override { jqrt_dispose_context(); }
};

}  // namespace

TEST_F(Spectra, PowerSpectraOfRealAndComplexSignals) {
  Array<double> ones{1, 1, 1, 1}, three{3};
  void* slot = nullptr;
  ASSERT_EQ(SpectrumH(ones.h(), &slot), 0);
  EXPECT_EQ(ones.values(), (std::vector<double>{1, 0, 0, 0}));
  ASSERT_EQ(SpectrumH(three.h(), &slot), 0);
  EXPECT_EQ(three[0], 9);
  void* idp = nullptr;

  for (int32_t n : {7, 10, 53}) {
    const auto x = mixed(n, n);
    const auto X = dft(x), R = dft(real_part(x));
    Array<double> re(n);
    Array<cd> cx(x);
    Array<double> power;
    for (int32_t i = 0; i < n; ++i) re[i] = x[i].real();
    ASSERT_EQ(SpectrumH_IDP(re.h(), &idp), 0);
    ASSERT_EQ(CxSpectrumH(cx.h(), power.h(), &slot), 0);
    ASSERT_EQ(power.size(), n);
    const long double s = 1.0L / (static_cast<long double>(n) * n);
    for (int32_t k = 0; k < n; ++k) {
      EXPECT_NEAR(re[k], static_cast<double>(std::norm(R[k]) * s), 1e-14) << n << " " << k;
      EXPECT_NEAR(power[k], static_cast<double>(std::norm(X[k]) * s), 1e-14) << n << " " << k;
    }
  }
  EXPECT_EQ(TransformUnreserveProc(&idp), 0);
}

TEST_F(Spectra, CrossSpectraOfRealAndComplexSignals) {
  void *slot = nullptr, *idp = nullptr;
  for (int32_t n : {1, 8, 9, 60}) {
    const auto x = mixed(n, 3 * n), y = mixed(n, 5 * n);
    const auto X = dft(x), Y = dft(y), XR = dft(real_part(x)), YR = dft(real_part(y));
    Array<double> xr(n), yr(n);
    for (int32_t i = 0; i < n; ++i) xr[i] = x[i].real(), yr[i] = y[i].real();
    Array<cd> xc(x), yc(y), sr, sc;
    ASSERT_EQ(CrossSpectrumH(xr.h(), yr.h(), sr.h(), &slot), 0);
    ASSERT_EQ(CxCrossSpectrumH_IDP(xc.h(), yc.h(), sc.h(), &idp), 0);
    const long double s = 1.0L / (static_cast<long double>(n) * n);
    for (int32_t k = 0; k < n; ++k) {
      const cld wr = std::conj(XR[k]) * YR[k] * s, wc = std::conj(X[k]) * Y[k] * s;
      EXPECT_LT(std::abs(cld(sr[k].real(), sr[k].imag()) - wr), 1e-14) << n << " " << k;
      EXPECT_LT(std::abs(cld(sc[k].real(), sc[k].imag()) - wc), 1e-14) << n << " " << k;
    }
    EXPECT_EQ(sr[0].imag(), 0);
  }
  EXPECT_EQ(TransformUnreserveProc(&idp), 0);

  // A signal with itself gives its power spectrum with zero imaginary parts.
  Array<double> x(random_values(12, 8)), p(random_values(12, 8));
  Array<cd> s;
  void* a = nullptr;
  ASSERT_EQ(CrossSpectrumH(x.h(), x.h(), s.h(), &a), 0);
  ASSERT_EQ(SpectrumH(p.h(), &a), 0);
  for (int k = 0; k < 12; ++k) {
    EXPECT_NEAR(s[k].real(), p[k], 1e-15);
    EXPECT_NEAR(s[k].imag(), 0, 1e-15);
  }
}

TEST_F(Spectra, ValidationAndEmptiedOutputs) {
  Array<double> four(random_values(4, 1)), five(random_values(5, 2)), empty;
  Array<cd> out(3);
  void* slot = nullptr;
  EXPECT_EQ(CrossSpectrumH(four.h(), five.h(), out.h(), &slot), -20002);
  EXPECT_EQ(out.size(), 0);
  EXPECT_EQ(CrossSpectrumH(empty.h(), five.h(), out.h(), &slot), -20003);
  EXPECT_EQ(CrossSpectrumH(five.h(), empty.h(), out.h(), &slot), -20003);
  Array<cd> c4(std::vector<cd>(4)), c5(std::vector<cd>(5)), cempty;
  EXPECT_EQ(CxCrossSpectrumH(c4.h(), c5.h(), out.h(), &slot), -20002);
  EXPECT_EQ(SpectrumH(empty.h(), &slot), -20003);
  Array<double> power(2);
  EXPECT_EQ(CxSpectrumH(cempty.h(), power.h(), &slot), -20003);
  EXPECT_EQ(power.size(), 0);
  EXPECT_EQ(slot, nullptr);
  {
    jqrt::FailResize fail(1);
    EXPECT_EQ(CxSpectrumH(c5.h(), power.h(), &slot), -20001);
  }
  EXPECT_EQ(power.size(), 0);
  {
    jqrt::FailResize fail(1);
    EXPECT_EQ(CrossSpectrumH(five.h(), five.h(), out.h(), &slot), -20001);
  }
  EXPECT_EQ(out.size(), 0);
}
