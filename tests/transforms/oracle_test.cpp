// The transform exports' values: against numpy and scipy data (tools/gen_*),
// long-double DFT sums, closed forms, and round trips of the long lengths the
// data does not cover.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "fft2d_oracle.inc"
#include "jqanlys.h"
#include "jqrt.hpp"
#include "reference.hpp"

namespace {

using cd = std::complex<double>;
using Vec = std::vector<double>;
using jqrt::Array;
using jqrt::Array2;

struct SpectraCase {
  int n;
  const double* power;
  const double* cx_power;
  const double* cross;  // interleaved re, im
  const double* cx_cross;
};
#include "dct_hilbert_oracle.inc"
#include "spectra_oracle.inc"

// The generator of tools/gen_spectra_oracle.py: exact doubles in [-1, 1).
struct Lcg {
  uint64_t s;
  double next() {
    s = s * 6364136223846793005ull + 1442695040888963407ull;
    return std::ldexp(static_cast<double>(s >> 11), -52) - 1.0;
  }
};

// Largest deviation from the reference, relative to its largest magnitude
// or to `floor` if that is larger, over all the cases one test checks.
struct Worst {
  double limit, floor, rel = 0;
  void check(const double* got, size_t got_count, const double* want, size_t count, const std::string& what) {
    ASSERT_EQ(got_count, count) << what;
    double peak = floor, err = 0;
    for (size_t i = 0; i < count; ++i) {
      peak = std::max(peak, std::abs(want[i]));
      err = std::max(err, std::abs(got[i] - want[i]));
    }
    if (peak > 0) err /= peak;
    rel = std::max(rel, err);
    EXPECT_LE(err, limit) << what;
  }
  void check(const Vec& got, const double* want, size_t count, const std::string& what) {
    check(got.data(), got.size(), want, count, what);
  }
};

template <class T>
void expect_near(const std::vector<T>& got, const std::vector<T>& want, double tol = 1e-12) {
  ASSERT_EQ(got.size(), want.size());
  for (size_t i = 0; i < got.size(); ++i) EXPECT_LE(std::abs(got[i] - want[i]), tol) << "at " << i;
}

// One call of a transform on a fresh call site. An in-place export transforms
// its input; an _IDP instance is released at once, plain ones with the context.
using Call = std::function<int32_t(JQHandle in, JQHandle out, JQSlot)>;
Vec apply(const Call& f, const Vec& x, bool idp, bool in_place = false, int rows = 0) {
  const int cols = rows ? static_cast<int>(x.size()) / rows : 0;
  Array<double> in(x), out;
  Array2<double> in2(rows, cols), out2;
  jqrt::Slot slot;
  if (rows) {
    std::copy(x.begin(), x.end(), in2.data());
    EXPECT_EQ(f(in2.h(), out2.h(), slot.get()), 0);
    EXPECT_EQ(out2.rows(), rows);
    EXPECT_EQ(out2.cols(), cols);
  } else {
    EXPECT_EQ(f(in.h(), out.h(), slot.get()), 0);
  }
  if (idp) TransformUnreserveProc(slot.get());
  return rows ? out2.values() : in_place ? in.values() : out.values();
}
Call in_place(int32_t (*f)(JQHandle, JQSlot)) {
  return [f](JQHandle x, JQHandle, JQSlot s) { return f(x, s); };
}

// The long-double DFT of a complex sequence, rounded.
std::vector<cd> dft(const std::vector<cd>& x) {
  const int32_t n = static_cast<int32_t>(x.size());
  Vec re(n), im(n);
  for (int32_t j = 0; j < n; ++j) re[j] = x[j].real(), im[j] = x[j].imag();
  const auto w = jqtest::roots(n);
  std::vector<cd> y(n);
  for (int32_t k = 0; k < n; ++k) {
    const jqtest::cld s = jqtest::dft_bin(w, re.data(), im.data(), n, k);
    y[k] = cd(static_cast<double>(s.real()), static_cast<double>(s.imag()));
  }
  return y;
}
std::vector<cd> complexify(const Vec& x) { return {x.begin(), x.end()}; }
std::vector<cd> rotated(std::vector<cd> v, size_t by) {
  std::rotate(v.begin(), v.begin() + by, v.end());
  return v;
}

}  // namespace

TEST(SpectraOracle, AllFourMatchNumpyInBothInstanceForms) {
  Worst worst{1e-14, 0};
  for (const SpectraCase& c : kSpectraCases) {
    const int n = c.n;
    Lcg g{12345u + static_cast<uint64_t>(n)};
    Array<double> x(n), y(n);
    Array<cd> cx(n), cy(n);
    for (int i = 0; i < n; ++i) x[i] = g.next();
    for (int i = 0; i < n; ++i) y[i] = g.next();
    for (Array<cd>* z : {&cx, &cy})
      for (int i = 0; i < n; ++i) {
        const double re = g.next();  // real part first, as the generator draws them
        (*z)[i] = cd(re, g.next());
      }
    for (bool idp : {false, true}) {
      const std::string what = "n = " + std::to_string(n) + (idp ? ", _IDP" : ", plain");
      jqrt::Slot s1, s2, s3, s4;
      Array<double> power(x.values()), cx_power;
      Array<cd> cross, cx_cross;
      ASSERT_EQ((idp ? SpectrumH_IDP : SpectrumH)(power.h(), s1.get()), 0);
      ASSERT_EQ((idp ? CxSpectrumH_IDP : CxSpectrumH)(cx.h(), cx_power.h(), s2.get()), 0);
      ASSERT_EQ((idp ? CrossSpectrumH_IDP : CrossSpectrumH)(x.h(), y.h(), cross.h(), s3.get()), 0);
      ASSERT_EQ((idp ? CxCrossSpectrumH_IDP : CxCrossSpectrumH)(cx.h(), cy.h(), cx_cross.h(), s4.get()), 0);
      worst.check(power.data(), power.size(), c.power, n, what);
      worst.check(cx_power.data(), cx_power.size(), c.cx_power, n, what);
      worst.check(reinterpret_cast<double*>(cross.data()), 2 * cross.size(), c.cross, 2 * n, what);
      worst.check(reinterpret_cast<double*>(cx_cross.data()), 2 * cx_cross.size(), c.cx_cross, 2 * n, what);
      if (idp)
        for (jqrt::Slot* s : {&s1, &s2, &s3, &s4}) TransformUnreserveProc(s->get());
      else
        jqrt_dispose_context();
    }
  }
  std::printf("worst deviation from numpy, relative to the peak bin: %.3g\n", worst.rel);
}

// The cross spectrum of a signal with itself is its power spectrum, exactly.
TEST(SpectraOracle, CrossSpectrumWithItselfIsThePowerSpectrum) {
  for (int n : {2, 7, 12, 53, 1000}) {
    Array<double> x(jqtest::random_values(n, n)), power(x.values());
    Array<cd> self;
    jqrt::Slot slot;
    ASSERT_EQ(SpectrumH_IDP(power.h(), slot.get()), 0);
    ASSERT_EQ(CrossSpectrumH_IDP(x.h(), x.h(), self.h(), slot.get()), 0);
    for (int k = 0; k < n; ++k) EXPECT_EQ(self[k], cd(power[k], 0.0)) << n << ", bin " << k;
    TransformUnreserveProc(slot.get());
  }
}

TEST(TransformOracle, CosineSineHilbertAndHartleyMatchScipy) {
  Worst forward{1e-14, 1}, inverse{1e-14, 1};
  for (const OracleCase& c : kOracle) {
    const std::string kind = c.kind, what = kind + " n=" + std::to_string(c.n) + " m=" + std::to_string(c.m);
    const bool two_d = kind == "dct2d" || kind == "dst2d";
    const size_t count = two_d ? size_t(c.n) * c.m : size_t(c.m);
    const Vec x(c.x, c.x + (two_d ? count : size_t(c.n))), y(c.y, c.y + count);
    if (kind == "dct" || kind == "dst") {
      const bool cosine = kind == "dct";
      const int32_t m = c.m, dflt = c.m == c.n ? 0 : c.m;  // 0 asks for the input's count
      forward.check(
          apply([&](JQHandle i, JQHandle o, JQSlot s) { return (cosine ? DCT_1DH : DST_1DH)(i, o, m, s); }, x, false),
          c.y, count, what);
      forward.check(
          apply([&](JQHandle i, JQHandle o, JQSlot s) { return (cosine ? DCT_1DH_IDP : DST_1DH_IDP)(i, o, dflt, s); },
                x, true),
          c.y, count, what);
      Vec xm(c.m, 0.0);  // the input cut or zero-extended to m
      std::copy(c.x, c.x + std::min(c.n, c.m), xm.begin());
      inverse.check(apply(cosine ? InvDCT_1DH : InvDST_1DH, y, false), xm.data(), count, what + " inverse");
    } else if (kind == "hilbert") {
      forward.check(apply(in_place(FastHilbertTransformH), x, false, true), c.y, count, what);
      Vec neg(y);
      for (double& v : neg) v = -v;
      forward.check(apply(in_place(InvFastHilbertTransformH_IDP), x, true, true), neg.data(), count, what + " inv");
    } else if (kind == "hartley") {
      forward.check(apply(in_place(FHTH_IDP), x, true, true), c.y, count, what);
      inverse.check(apply(in_place(InvFHTH), y, false, true), c.x, count, what + " inverse");
    } else {
      const bool cosine = kind == "dct2d";
      forward.check(apply(cosine ? DCT_2DH_IDP : DST_2DH_IDP, x, true, false, c.n), c.y, count, what);
      inverse.check(apply(cosine ? InvDCT_2DH_IDP : InvDST_2DH_IDP, y, true, false, c.n), c.x, count,
                    what + " inverse");
    }
  }
  std::printf("[ oracle   ] worst relative error: forward %.3g, inverse %.3g\n", forward.rel, inverse.rel);
  jqrt_dispose_context();
}

// The inverses over lengths beyond the data, both parities; a negative
// length takes the input's count; the host may pass one handle as input and
// output; the inverse Hilbert transform of one sample is -0.
TEST(TransformOracle, LongRoundTripsAndSharedHandles) {
  const struct {
    Call f, g;
  } pairs[] = {{[](JQHandle i, JQHandle o, JQSlot s) { return DCT_1DH_IDP(i, o, 0, s); }, InvDCT_1DH_IDP},
               {[](JQHandle i, JQHandle o, JQSlot s) { return DST_1DH_IDP(i, o, -3, s); }, InvDST_1DH_IDP},
               {in_place(FHTH_IDP), in_place(InvFHTH_IDP)}};
  for (const auto& p : pairs)
    for (int n : {1000, 1001}) {
      Vec x(n);
      for (int i = 0; i < n; ++i) x[i] = std::sin(0.37 * i * i + 1.0) + 0.1 * i;
      const bool hartley = &p == &pairs[2];
      expect_near(apply(p.g, apply(p.f, x, true, hartley), true, hartley), x, 1e-11);
    }

  Array<double> x{1, -2, 3, 0.5, 4}, y;
  jqrt::Slot slot;
  ASSERT_EQ(DCT_1DH(x.h(), y.h(), 8, slot.get()), 0);
  ASSERT_EQ(DCT_1DH(x.h(), x.h(), 8, slot.get()), 0);
  expect_near(x.values(), y.values(), 1e-14);
  ASSERT_EQ(InvDST_1DH(x.h(), y.h(), slot.get()), 0);
  ASSERT_EQ(InvDST_1DH(x.h(), x.h(), slot.get()), 0);
  expect_near(x.values(), y.values(), 1e-14);
  jqrt_dispose_context();

  const Vec neg_zero = apply(in_place(InvFastHilbertTransformH_IDP), Vec{3.5}, true, true);
  EXPECT_TRUE(neg_zero[0] == 0 && std::signbit(neg_zero[0])) << "the forward 0, sign flipped";
}

TEST(FftOracle, RealAndComplexFormsCutExtendShiftAndInvert) {
  const auto x = jqtest::random_values(12, 1);
  Array<double> in(x);
  Array<cd> out;
  void* slot = nullptr;
  ASSERT_EQ(ReKWFFTH(in.h(), out.h(), &slot), 0);
  expect_near(out.values(), dft(complexify(x)));
  // Start n-1 and size 4: one sample followed by three zeros.
  ASSERT_EQ(ReKWFFTH80(in.h(), out.h(), &slot, 11, 4, 0), 0);
  expect_near(out.values(), std::vector<cd>(4, cd(x[11], 0)));
  // A size shorter than what remains ignores the rest; the shift puts zero
  // frequency in the middle.
  ASSERT_EQ(ReKWFFTH80(in.h(), out.h(), &slot, 2, 5, 1), 0);
  expect_near(out.values(), rotated(dft(complexify({x.begin() + 2, x.begin() + 7})), 3));

  std::vector<cd> z(9);
  for (int i = 0; i < 9; ++i) z[i] = cd(std::cos(i * 0.7), std::sin(i * 1.3) + 0.25);
  Array<cd> cin(z), freq, back;
  void *fwd = nullptr, *inv = nullptr;
  for (uint8_t shift : {0, 1}) {
    ASSERT_EQ(CxKWFFTH80(cin.h(), freq.h(), &fwd, 0, 9, shift), 0);
    expect_near(freq.values(), shift ? rotated(dft(z), 5) : dft(z));
    ASSERT_EQ(InvCxKWFFTH80(freq.h(), back.h(), &inv, shift), 0);
    expect_near(back.values(), z);
  }
  // The complex start index is not checked: samples outside read as zeros.
  ASSERT_EQ(CxKWFFTH80(cin.h(), freq.h(), &fwd, 20, 4, 0), 0);
  expect_near(freq.values(), std::vector<cd>(4));
  ASSERT_EQ(CxKWFFTH80(cin.h(), freq.h(), &fwd, -2, 4, 0), 0);
  expect_near(freq.values(), dft({0, 0, z[0], z[1]}));
  ASSERT_EQ(CxKWFFTH(cin.h(), freq.h(), &fwd), 0);
  ASSERT_EQ(InvCxKWFFTH(freq.h(), back.h(), &inv), 0);
  expect_near(back.values(), z);

  // The real inverse reads only the non-negative frequencies.
  for (int32_t n : {8, 7}) {
    const auto r = jqtest::random_values(n, n);
    auto X = dft(complexify(r));
    for (int32_t k = n / 2 + 1; k < n; ++k) X[k] = cd(100 * k, -3.0 * k);  // not conjugate-symmetric
    Array<cd> spectrum(X), shifted(rotated(X, n - n / 2));
    Array<double> real;
    ASSERT_EQ(InvReKWFFTH(spectrum.h(), real.h(), &inv), 0);
    expect_near(real.values(), r);
    ASSERT_EQ(InvReKWFFTH80(shifted.h(), real.h(), &inv, 1), 0);
    expect_near(real.values(), r);
  }

  // Half-complex: real parts of bins 0..n/2, then the imaginary parts downward.
  const auto h = jqtest::random_values(10, 3);
  Array<double> hin(h), hc, hback;
  ASSERT_EQ(ReKWFFTHCH(hin.h(), hc.h(), &slot), 0);
  const auto H = dft(complexify(h));
  for (int k = 0; k <= 5; ++k) EXPECT_NEAR(hc[k], H[k].real(), 1e-12);
  for (int k = 1; k < 5; ++k) EXPECT_NEAR(hc[10 - k], H[k].imag(), 1e-12);
  void* idp = nullptr;
  ASSERT_EQ(InvReKWFFTHCH_IDP(hc.h(), hback.h(), &idp), 0);
  expect_near(hback.values(), h);
  TransformUnreserveProc(&idp);
  jqrt_dispose_context();
}

TEST(FftOracle, TwoDimensionalFormsMatchNumpy) {
  namespace o = fft2d_oracle;
  Array2<cd> cin(4, 5), freq;
  std::copy(std::begin(o::cx_in), std::end(o::cx_in), cin.data());
  void *r = nullptr, *c = nullptr, *idp = nullptr;
  ASSERT_EQ(CxFFT2D_H(cin.h(), 1, 2, 5, 4, 1, freq.h(), &r, &c), 0);
  ASSERT_EQ(freq.rows(), 5);
  ASSERT_EQ(freq.cols(), 4);
  expect_near(freq.values(), std::vector<cd>(std::begin(o::cx_out), std::end(o::cx_out)));
  Array2<double> rin(3, 7);
  std::copy(std::begin(o::re_in), std::end(o::re_in), rin.data());
  ASSERT_EQ(ReFFT2D_H_IDP(rin.h(), 0, 0, 2, 7, 0, freq.h(), &idp), 0);
  expect_near(freq.values(), std::vector<cd>(std::begin(o::re_out), std::end(o::re_out)));
  Array2<cd> sp(3, 4), back;
  std::copy(std::begin(o::inv_in), std::end(o::inv_in), sp.data());
  ASSERT_EQ(CxInvFFT2D_H(sp.h(), 1, back.h(), &r, &c), 0);
  expect_near(back.values(), std::vector<cd>(std::begin(o::inv_out), std::end(o::inv_out)));
  Array2<double> rback;
  ASSERT_EQ(ReInvFFT2D_H(sp.h(), 1, rback.h(), &r, &c), 0);
  for (int i = 0; i < 12; ++i) EXPECT_NEAR(rback[i], o::inv_out[i].real(), 1e-12);
  TransformUnreserveProc(&idp);
  jqrt_dispose_context();
}
