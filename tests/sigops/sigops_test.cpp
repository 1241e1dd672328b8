// Convolution, correlation and deconvolution through their exports, against
// scipy.signal, with every rejection and its emptied output.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <vector>

#include "frame/scratch.hpp"
#include "jqanlys.h"
#include "jqrt.hpp"
#include "support/checks.hpp"

namespace {

using cd = std::complex<double>;

struct Pair1 {
  int n, m;
  const double *x, *y, *conv, *corr, *unbiased, *biased, *autoc;
};
struct Deconv {
  int n, m;
  const double *y, *d, *q;
};
struct Ref2 {
  int rows, cols;
  const double* v;
};
struct Case2 {
  int complex, r1, c1, r2, c2;
  const double *a, *b;
  Ref2 ref[6];  // convolution full, same, valid; then correlation
};

#include "sigops_oracle.inc"

jqrt::Array<double> vec(const double* p, int n) { return jqrt::Array<double>(std::vector<double>(p, p + n)); }

template <class T> jqrt::Array2<T> mat(const double* p, int rows, int cols) {
  jqrt::Array2<T> a(rows, cols);
  std::copy_n(reinterpret_cast<const T*>(p), static_cast<size_t>(rows) * cols, a.data());
  return a;
}

// Agreement to rounding, relative to the largest reference value.
template <class T> void expect_close(const T* got, const double* want, int n, double tol = 1e-13) {
  const T* w = reinterpret_cast<const T*>(want);
  double scale = 1e-300;
  for (int i = 0; i < n; ++i) scale = std::max(scale, std::abs(w[i]));
  for (int i = 0; i < n; ++i) EXPECT_LE(std::abs(got[i] - w[i]), tol * scale) << "element " << i;
}

TEST(SigopsOracle, ConvolutionAndCorrelationBothMethods) {
  for (const Pair1& p : kPairs)
    for (int32_t method : {0, 1}) {
      SCOPED_TRACE(testing::Message() << p.n << " x " << p.m << " method " << method);
      auto x = vec(p.x, p.n), y = vec(p.y, p.m);
      const int total = p.n + p.m - 1;
      auto run = [&](const double* want, auto call) {
        jqrt::Array<double> out;
        int32_t error = 99;
        EXPECT_EQ(call(out.h(), &error), 0);
        EXPECT_EQ(error, 0);
        ASSERT_EQ(out.size(), total);
        expect_close(out.data(), want, total);
      };
      run(p.conv, [&](JQHandle o, int32_t* e) { return Convolution(x.h(), y.h(), o, &method, e); });
      run(p.corr, [&](JQHandle o, int32_t* e) { return Rxy(x.h(), y.h(), o, &method, e); });
      run(p.unbiased, [&](JQHandle o, int32_t* e) { return Rxy80(x.h(), y.h(), o, &method, 1, e); });
      run(p.biased, [&](JQHandle o, int32_t* e) { return Rxy80(x.h(), y.h(), o, &method, 2, e); });
    }
}

TEST(SigopsOracle, AutoCorrelationReplacesTheSignal) {
  for (const Pair1& p : kPairs)
    for (int32_t norm : {0, 1, 2}) {
      SCOPED_TRACE(testing::Message() << p.n << " normalisation " << norm);
      auto x = vec(p.x, p.n);
      int32_t error = 99;
      EXPECT_EQ(norm == 0 ? AutoCorrelation(x.h(), &error) : AutoCorrelation80(x.h(), norm, &error), 0);
      EXPECT_EQ(error, 0);
      const int total = 2 * p.n - 1;
      ASSERT_EQ(x.size(), total);
      std::vector<double> want(p.autoc, p.autoc + total);
      for (int k = 0; k < total; ++k)
        want[k] /= norm == 2 ? p.n : norm == 1 ? std::min({k + 1, p.n, total - k}) : 1;
      expect_close(x.data(), want.data(), total);
    }
}

TEST(SigopsOracle, DeconvolutionRecoversTheQuotient) {
  for (const Deconv& d : kDeconv) {
    SCOPED_TRACE(testing::Message() << d.n << " / " << d.m);
    auto y = vec(d.y, d.n), x = vec(d.d, d.m);
    int32_t error = 99;
    EXPECT_EQ(Deconvolution(y.h(), x.h(), &error), 0);
    EXPECT_EQ(error, 0);
    ASSERT_EQ(y.size(), d.n - d.m + 1);
    expect_close(y.data(), d.q, y.size(), 1e-12);
  }
}

template <class T> void check_2d(const Case2& c) {
  using Fn = int32_t (*)(JQHandle, JQHandle, JQHandle, int32_t, int32_t);
  const bool cx = std::is_same_v<T, cd>;
  const Fn fns[2] = {cx ? CxConvolve_2DH : Convolve_2DH, cx ? CxCorrelation_2DH : Correlation_2DH};
  auto a = mat<T>(c.a, c.r1, c.c1), b = mat<T>(c.b, c.r2, c.c2);
  for (int corr = 0; corr < 2; ++corr)
    for (int32_t mode = 0; mode < 3; ++mode)
      for (int32_t method : {0, 1}) {
        SCOPED_TRACE(testing::Message() << c.r1 << "x" << c.c1 << " by " << c.r2 << "x" << c.c2 << " complex "
                                        << cx << " correlation " << corr << " mode " << mode << " method "
                                        << method);
        const Ref2& r = c.ref[3 * corr + mode];
        jqrt::Array2<T> out;
        EXPECT_EQ(fns[corr](a.h(), b.h(), out.h(), mode, method), 0);
        ASSERT_EQ(out.rows(), r.rows);
        ASSERT_EQ(out.cols(), r.cols);
        expect_close(out.data(), r.v, r.rows * r.cols);
      }
}

TEST(SigopsOracle, TwoDimensionalEveryModeRealAndComplex) {
  for (const Case2& c : kCases2) c.complex ? check_2d<cd>(c) : check_2d<double>(c);
}

// The complex 1-D convolution is the single-row case of the 2-D one.
TEST(SigopsOracle, ComplexConvolutionEveryMode) {
  for (const Case2& c : kCases2) {
    if (!c.complex || c.r1 != 1 || c.r2 != 1) continue;
    jqrt::Array<cd> x(std::vector<cd>(reinterpret_cast<const cd*>(c.a), reinterpret_cast<const cd*>(c.a) + c.c1));
    jqrt::Array<cd> y(std::vector<cd>(reinterpret_cast<const cd*>(c.b), reinterpret_cast<const cd*>(c.b) + c.c2));
    for (int32_t mode = 0; mode < 3; ++mode)
      for (int32_t method : {0, 1}) {
        jqrt::Array<cd> out;
        int32_t error = 99;
        EXPECT_EQ(CxConvolution(x.h(), y.h(), out.h(), method, mode, &error), 0);
        EXPECT_EQ(error, 0);
        ASSERT_EQ(out.size(), c.ref[mode].cols);
        expect_close(out.data(), c.ref[mode].v, out.size());
      }
  }
}

// The frequency method on long inputs: one transform of the whole, blocks of
// the long input (either one) against the short, and block pairs of two long
// inputs. Sampled outputs, block edges among them, match sums taken in long
// double. (The direct sums have no length-dependent path; they are checked
// to the last bit below.)
TEST(Sigops, FrequencyMethodOnLongInputs) {
  const std::pair<int, int> sizes[] = {{5003, 1201}, {20011, 37}, {41, 30011}, {300001, 270007}};
  for (auto [n, m] : sizes) {
    SCOPED_TRACE(testing::Message() << n << " x " << m);
    std::vector<double> a(n), b(m);
    for (int i = 0; i < n; ++i) a[i] = std::sin(0.001 * i * (i % 13)) + 0.5;
    for (int j = 0; j < m; ++j) b[j] = std::cos(0.37 * j) - 0.25;
    jqrt::Array<double> x(a), y(b), conv, corr;
    int32_t method = 1, e1, e2;
    ASSERT_EQ(Convolution(x.h(), y.h(), conv.h(), &method, &e1), 0);
    ASSERT_EQ(Rxy(x.h(), y.h(), corr.h(), &method, &e2), 0);
    ASSERT_EQ(e1 + e2, 0);
    const int total = n + m - 1;
    ASSERT_EQ(conv.size(), total);
    for (int t = 0; t < total; t += total < 70000 ? 97 : t < 70000 ? 4093 : 65521) {
      long double c = 0, r = 0, scale = 0;
      for (int i = std::max(0, t - m + 1); i <= std::min(t, n - 1); ++i) {
        c += static_cast<long double>(a[i]) * b[t - i];
        r += static_cast<long double>(a[n - 1 - i]) * b[t - i];
        scale += std::fabs(a[i] * b[t - i]) + std::fabs(a[n - 1 - i] * b[t - i]);
      }
      EXPECT_NEAR(conv[t], static_cast<double>(c), 1e-13 * static_cast<double>(scale) + 1e-9) << t;
      EXPECT_NEAR(corr[t], static_cast<double>(r), 1e-13 * static_cast<double>(scale) + 1e-9) << t;
    }
  }
}

// The direct sums add their products in a fixed order (x outer for the
// convolution, y outer for the correlation), so they round exactly as the
// plain loops do, whatever the lengths.
TEST(Sigops, DirectSumsRoundAsThePlainLoops) {
  for (int n : {1, 3, 4, 7, 50})
    for (int m : {1, 2, 4, 5, 33}) {
      std::vector<double> a(n), b(m);
      for (int i = 0; i < n; ++i) a[i] = std::sin(1.3 * i + 0.2) * 1e3;
      for (int j = 0; j < m; ++j) b[j] = std::cos(0.7 * j) / 3;
      std::vector<double> conv(n + m - 1, 0.0), corr(n + m - 1, 0.0);
      for (int i = 0; i < n; ++i)
        for (int j = 0; j < m; ++j) conv[i + j] += a[i] * b[j];
      for (int j = 0; j < m; ++j)
        for (int k = 0; k < n; ++k) corr[j + k] += a[n - 1 - k] * b[j];
      jqrt::Array<double> x(a), y(b), c1, c2;
      int32_t direct = 0, e;
      ASSERT_EQ(Convolution(x.h(), y.h(), c1.h(), &direct, &e), 0);
      ASSERT_EQ(Rxy(x.h(), y.h(), c2.h(), &direct, &e), 0);
      EXPECT_EQ(c1.values(), conv) << n << " x " << m;
      EXPECT_EQ(c2.values(), corr) << n << " x " << m;
    }
}

// A long quotient by a long divisor is divided in halves whose shares pass
// on as convolutions; the quotient still comes back to rounding.
TEST(Sigops, LongDeconvolution) {
  const int k = 30001, m = 3001;
  std::vector<double> q(k), d(m, 0.0);
  for (int i = 0; i < k; ++i) q[i] = std::sin(0.1 * i) + (i % 5) * 0.25;
  d[0] = 2;
  for (int j = 1; j < m; ++j) d[j] = std::pow(-0.5, j) * ((j % 3) - 1);
  jqrt::Array<double> y(k + m - 1), x(d);
  int32_t method = 1, error = 99;
  {
    jqrt::Array<double> qa(q);
    ASSERT_EQ(Convolution(qa.h(), x.h(), y.h(), &method, &error), 0);
  }
  EXPECT_EQ(Deconvolution(y.h(), x.h(), &error), 0);
  ASSERT_EQ(y.size(), k);
  expect_close(y.data(), q.data(), k, 1e-12);
}

TEST(Sigops, UnknownConvolutionMethodSizesTheOutputWithoutError) {
  jqrt::Array<double> x{1, 2, 3}, y{4, 5}, out;
  int32_t method = 2, error = 99;
  EXPECT_EQ(Convolution(x.h(), y.h(), out.h(), &method, &error), 0);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(out.size(), 4);
}

TEST(SigopsRejections, OneDimensional) {
  using jqtest::reported;
  jqrt::Array<double> x{1, 2, 3}, y{4, 5}, empty;
  jqrt::Array<double> negative{1.0};
  negative.set_dims(-4);
  int32_t e = 0, direct = 0, freq = 1, bad = 7;
  jqtest::expect_rejections<double>({
      {"empty x", -20003, [&](JQHandle o) { return reported(Convolution(empty.h(), y.h(), o, &direct, &e), e); }},
      {"null y", -20003, [&](JQHandle o) { return reported(Convolution(x.h(), nullptr, o, &freq, &e), e); }},
      {"negative count", -20003, [&](JQHandle o) { return reported(Rxy(negative.h(), y.h(), o, &freq, &e), e); }},
      {"resize fails", -20001, [&](JQHandle o) { return reported(Convolution(x.h(), y.h(), o, &freq, &e), e); }, 1},
      {"normalisation above", -20061, [&](JQHandle o) { return reported(Rxy80(x.h(), y.h(), o, &direct, 3, &e), e); }},
      {"normalisation below", -20061, [&](JQHandle o) { return reported(Rxy80(x.h(), y.h(), o, &freq, -1, &e), e); }},
      {"correlation method", -20061, [&](JQHandle o) { return reported(Rxy(x.h(), y.h(), o, &bad, &e), e); }},
      // An internal allocation failure is reported with a result of 0.
      {"scratch fails", -20001,
       [&](JQHandle o) {
         jq::fail_scratch_allocation(1);
         const int32_t r = Convolution(x.h(), y.h(), o, &freq, &e);
         jq::fail_scratch_allocation(0);
         return r == 0 ? e : 1;
       }},
  });
  // The signal is itself the output of the auto-correlation and deconvolution.
  auto in_place = [&](auto call) {
    return [call](JQHandle o) {
      jqtest::with_count(o, 3);
      return call(o);
    };
  };
  jqrt::Array<double> big{1.0};
  big.set_dims(0x800001);
  jqtest::expect_rejections<double>({
      {"auto empty", -20003, [&](JQHandle o) { return reported(AutoCorrelation(jqtest::with_count(o, 0), &e), e); }},
      {"auto normalisation", -20061, in_place([&](JQHandle o) { return reported(AutoCorrelation80(o, 5, &e), e); })},
      {"auto resize", -20001, in_place([&](JQHandle o) { return reported(AutoCorrelation(o, &e), e); }), 1},
      {"auto scratch", -20001, in_place([&](JQHandle o) {
         jq::fail_scratch_allocation(1);
         const int32_t r = AutoCorrelation(o, &e);
         jq::fail_scratch_allocation(0);
         return r == 0 ? e : 1;
       })},
      // Deconvolution also returns its code.
      {"divisor too long", -20010, in_place([&](JQHandle o) { return Deconvolution(o, big.h(), &e) == e ? e : 1; })},
      {"divisor empty", -20003, in_place([&](JQHandle o) { return Deconvolution(o, empty.h(), &e) == e ? e : 1; })},
      {"divisor longer", -20008, in_place([&](JQHandle o) {
         jqrt::Array<double> d{1, 2, 3, 4};
         return Deconvolution(o, d.h(), &e) == e ? e : 1;
       })},
      {"deconvolution resize", -20001, in_place([&](JQHandle o) { return Deconvolution(o, y.h(), &e) == e ? e : 1; }),
       1},
  });
}

TEST(SigopsRejections, TwoDimensionalAndComplex) {
  auto a = jqrt::Array2<double>::rows({{1, 2, 3}, {4, 5, 6}});
  auto k = jqrt::Array2<double>::rows({{1, 2}, {3, 4}, {5, 6}});
  jqrt::Array2<double> empty;
  auto scratch_fails = [](int nth, auto call) {
    return [=](JQHandle o) {
      jq::fail_scratch_allocation(nth);
      const int32_t r = call(o);
      jq::fail_scratch_allocation(0);
      return r;
    };
  };
  jqtest::expect_rejections<double, 2>({
      {"empty x", -20003, [&](JQHandle o) { return Convolve_2DH(empty.h(), k.h(), o, 0, 0); }},
      {"empty y", -20003, [&](JQHandle o) { return Correlation_2DH(a.h(), empty.h(), o, 0, 0); }},
      {"mode", -20061, [&](JQHandle o) { return Convolve_2DH(a.h(), k.h(), o, 3, 0); }},
      {"valid needs x larger", -20008, [&](JQHandle o) { return Convolve_2DH(a.h(), k.h(), o, 2, 0); }},
      {"method, full", -20061, [&](JQHandle o) { return Convolve_2DH(a.h(), k.h(), o, 0, 2); }},
      {"method, same", -20061, [&](JQHandle o) { return Correlation_2DH(a.h(), k.h(), o, 1, -1); }},
      {"resize", -20001, [&](JQHandle o) { return Convolve_2DH(a.h(), k.h(), o, 1, 1); }, 1},
      {"turned kernel", -20001, scratch_fails(1, [&](JQHandle o) { return Correlation_2DH(a.h(), k.h(), o, 0, 0); })},
      {"full scratch", -20001, scratch_fails(1, [&](JQHandle o) { return Convolve_2DH(a.h(), k.h(), o, 1, 0); })},
      {"spectra", -20001, scratch_fails(1, [&](JQHandle o) { return Convolve_2DH(a.h(), k.h(), o, 0, 1); })},
      {"line", -20001, scratch_fails(2, [&](JQHandle o) { return Convolve_2DH(a.h(), k.h(), o, 0, 1); })},
  });
  jqrt::Array<cd> x{cd(1, 1), cd(2, 0)}, y{cd(0, 1), cd(1, 0), cd(3, 3)}, none;
  int32_t e = 0;
  auto cx = [&](JQHandle xx, JQHandle yy, int32_t method, int32_t mode) {
    return [=, &e](JQHandle o) { return CxConvolution(xx, yy, o, method, mode, &e) == e ? e : 1; };
  };
  jqtest::expect_rejections<cd>({
      {"empty", -20003, cx(none.h(), y.h(), 0, 0)},
      {"mode", -20061, cx(x.h(), y.h(), 0, 4)},
      {"valid", -20008, cx(x.h(), y.h(), 0, 2)},
      {"method", -20061, cx(y.h(), x.h(), 3, 0)},
      {"resize", -20001, [&](JQHandle o) { return CxConvolution(x.h(), y.h(), o, 1, 0, &e) == e ? e : 1; }, 1},
  });
}

}  // namespace
