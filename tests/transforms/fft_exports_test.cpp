// The FFT exports as the host calls them: results, layouts, validation
// order, emptied outputs and the per-call-site tables.
#include <gtest/gtest.h>

#include "fft2d_oracle.inc"
#include "jqanlys.h"
#include "jqrt.hpp"
#include "reference.hpp"
#include "transforms/fft.hpp"

using namespace jqtest;
using cd = std::complex<double>;
using jqrt::Array;
using jqrt::Array2;

namespace {

// The long-double DFT of a complex sequence, rounded.
std::vector<cd> dft(const std::vector<cd>& x) {
  const int32_t n = static_cast<int32_t>(x.size());
  std::vector<double> re(n), im(n);
  for (int32_t j = 0; j < n; ++j) re[j] = x[j].real(), im[j] = x[j].imag();
  const auto w = roots(n);
  std::vector<cd> y(n);
  for (int32_t k = 0; k < n; ++k) {
    const cld s = dft_bin(w, re.data(), im.data(), n, k);
    y[k] = cd(static_cast<double>(s.real()), static_cast<double>(s.imag()));
  }
  return y;
}

std::vector<cd> complexify(const std::vector<double>& x) { return {x.begin(), x.end()}; }

template <class T> void expect_near(const std::vector<T>& got, const std::vector<T>& want, double tol = 1e-12) {
  ASSERT_EQ(got.size(), want.size());
  for (size_t i = 0; i < got.size(); ++i) EXPECT_LT(std::abs(got[i] - want[i]), tol) << "at " << i;
}

std::vector<cd> rotated(std::vector<cd> v, size_t by) {
  std::rotate(v.begin(), v.begin() + by, v.end());
  return v;
}

// A slot as the host keeps it; the plain exports' clean-ups are run by the
// fixture so that no test leaves registrations behind.
class FftExports : public ::testing::Test {
 protected:
  void TearDown() override { jqrt_dispose_context(); }
};

}  // namespace

TEST_F(FftExports, ForwardRealCutsExtendsAndShifts) {
  const auto x = random_values(12, 1);
  Array<double> in(x);
  Array<cd> out;
  void* slot = nullptr;
  ASSERT_EQ(ReKWFFTH(in.h(), out.h(), &slot), 0);
  expect_near(out.values(), dft(complexify(x)));

  // Start n-1 and size 4: one sample followed by three zeros.
  ASSERT_EQ(ReKWFFTH80(in.h(), out.h(), &slot, 11, 4, 0), 0);
  expect_near(out.values(), std::vector<cd>(4, cd(x[11], 0)));

  // A size shorter than what remains ignores the rest.
  ASSERT_EQ(ReKWFFTH80(in.h(), out.h(), &slot, 2, 5, 1), 0);
  const auto want = dft(complexify({x.begin() + 2, x.begin() + 7}));
  expect_near(out.values(), rotated(want, 3));
  EXPECT_LT(std::abs(out[2] - want[0]), 1e-12);  // zero frequency in the middle
}

TEST_F(FftExports, ForwardComplexAndItsInverseRoundTripInBothLayouts) {
  std::vector<cd> x(9);
  for (int i = 0; i < 9; ++i) x[i] = cd(std::cos(i * 0.7), std::sin(i * 1.3) + 0.25);
  Array<cd> in(x), freq, back;
  void *fwd = nullptr, *inv = nullptr;
  for (uint8_t shift : {0, 1}) {
    ASSERT_EQ(CxKWFFTH80(in.h(), freq.h(), &fwd, 0, 9, shift), 0);
    expect_near(freq.values(), shift ? rotated(dft(x), 5) : dft(x));
    ASSERT_EQ(InvCxKWFFTH80(freq.h(), back.h(), &inv, shift), 0);
    expect_near(back.values(), x);
  }
  // The start index is not checked: samples outside the input read as zeros.
  ASSERT_EQ(CxKWFFTH80(in.h(), freq.h(), &fwd, 20, 4, 0), 0);
  expect_near(freq.values(), std::vector<cd>(4));
  ASSERT_EQ(CxKWFFTH80(in.h(), freq.h(), &fwd, -2, 4, 0), 0);
  expect_near(freq.values(), dft({0, 0, x[0], x[1]}));
  ASSERT_EQ(CxKWFFTH(in.h(), freq.h(), &fwd), 0);
  ASSERT_EQ(InvCxKWFFTH(freq.h(), back.h(), &inv), 0);
  expect_near(back.values(), x);
}

TEST_F(FftExports, InverseRealReadsOnlyTheNonNegativeFrequencies) {
  for (int32_t n : {8, 7}) {
    const auto x = random_values(n, n);
    auto X = dft(complexify(x));
    for (int32_t k = n / 2 + 1; k < n; ++k) X[k] = cd(100 * k, -3.0 * k);  // not conjugate-symmetric
    Array<cd> freq(X), shifted(rotated(X, n - n / 2));
    Array<double> out;
    void* slot = nullptr;
    ASSERT_EQ(InvReKWFFTH(freq.h(), out.h(), &slot), 0);
    expect_near(out.values(), x);
    ASSERT_EQ(InvReKWFFTH80(shifted.h(), out.h(), &slot, 1), 0);
    expect_near(out.values(), x);
  }
}

TEST_F(FftExports, HalfComplexFormsRoundTrip) {
  const auto x = random_values(10, 3);
  Array<double> in(x), hc, back;
  void *a = nullptr, *b = nullptr;
  ASSERT_EQ(ReKWFFTHCH(in.h(), hc.h(), &a), 0);
  const auto X = dft(complexify(x));
  for (int k = 0; k <= 5; ++k) EXPECT_NEAR(hc[k], X[k].real(), 1e-12);
  for (int k = 1; k < 5; ++k) EXPECT_NEAR(hc[10 - k], X[k].imag(), 1e-12);
  ASSERT_EQ(InvReKWFFTHCH_IDP(hc.h(), back.h(), &b), 0);
  expect_near(back.values(), x);
  EXPECT_EQ(TransformUnreserveProc(&b), 0);
  EXPECT_EQ(b, nullptr);
}

TEST_F(FftExports, ValidationOrderAndEmptiedOutputs) {
  Array<double> x(std::vector<double>(6, 1.0)), empty;
  Array<cd> out(3);
  void* slot = nullptr;
  EXPECT_EQ(ReKWFFTH80(empty.h(), out.h(), &slot, -5, 0, 0), -20003);
  EXPECT_EQ(out.size(), 0);
  out = Array<cd>(3);
  EXPECT_EQ(ReKWFFTH80(x.h(), out.h(), &slot, 6, 0, 0), -20017);
  EXPECT_EQ(out.size(), 0);
  EXPECT_EQ(ReKWFFTH80(x.h(), out.h(), &slot, -1, 4, 0), -20017);
  EXPECT_EQ(ReKWFFTH80(x.h(), out.h(), &slot, 0, 0, 0), -20115);
  EXPECT_EQ(ReKWFFTH80_IDP(x.h(), out.h(), &slot, 0, -3, 0), -20115);
  EXPECT_EQ(slot, nullptr);  // nothing was created before the checks passed

  Array<cd> cx(std::vector<cd>(4, 1.0)), cempty;
  EXPECT_EQ(CxKWFFTH80(cempty.h(), out.h(), &slot, 0, 4, 0), -20003);
  EXPECT_EQ(CxKWFFTH80(cx.h(), out.h(), &slot, 0, 0, 0), -20115);
  EXPECT_EQ(InvCxKWFFTH80(cempty.h(), out.h(), &slot, 0), -20003);
  Array<double> rout(2);
  EXPECT_EQ(InvReKWFFTH80(cempty.h(), rout.h(), &slot, 0), -20003);
  EXPECT_EQ(rout.size(), 0);
  EXPECT_EQ(ReKWFFTHCH(empty.h(), rout.h(), &slot), -20003);

  // A failed resize empties the output; the instance keeps its table.
  {
    jqrt::FailResize fail(1);
    EXPECT_EQ(ReKWFFTH80(x.h(), out.h(), &slot, 0, 6, 0), -20001);
  }
  EXPECT_EQ(out.size(), 0);
  ASSERT_NE(slot, nullptr);
  EXPECT_EQ(jq::fft::held_table(slot)->length, 6);
  {
    jqrt::FailResize fail(1);
    EXPECT_EQ(ReKWFFTHCH(x.h(), rout.h(), &slot), -20001);
  }
  EXPECT_EQ(rout.size(), 0);
}

TEST_F(FftExports, CallSitesKeepAndShareTables) {
  Array<double> x(random_values(64, 4));
  Array<cd> out;
  void *a = nullptr, *b = nullptr;
  const int32_t before = jqrt_cleanup_count();
  ASSERT_EQ(ReKWFFTH(x.h(), out.h(), &a), 0);
  jq::fft::FFTTable* t = jq::fft::held_table(a);
  ASSERT_EQ(ReKWFFTH(x.h(), out.h(), &a), 0);
  EXPECT_EQ(jq::fft::held_table(a), t);  // reused
  ASSERT_EQ(ReKWFFTH(x.h(), out.h(), &b), 0);
  EXPECT_EQ(jq::fft::held_table(b), t);  // shared between call sites
  EXPECT_EQ(t->references, 2);
  EXPECT_EQ(jqrt_cleanup_count(), before + 2);

  // Another length rebuilds the table in the same holder.
  void* holder = a;
  ASSERT_EQ(ReKWFFTH80(x.h(), out.h(), &a, 0, 50, 0), 0);
  EXPECT_EQ(a, holder);
  EXPECT_EQ(jq::fft::held_table(a)->length, 50);
  EXPECT_EQ(t->references, 1);
  EXPECT_EQ(jqrt_cleanup_count(), before + 2);

  // The public table exports reach the same list.
  JQFFTTable* pub = create_kwfft_table(64);
  EXPECT_EQ(reinterpret_cast<jq::fft::FFTTable*>(pub), t);
  destroy_kwfft_table(pub);
  EXPECT_EQ(create_kwfft_table(0), nullptr);
}

TEST_F(FftExports, IdpInstancesHoldTwoTablesUntilUnreserved) {
  const int32_t before = jqrt_cleanup_count();
  Array2<cd> in = Array2<cd>::rows({{1, 2, 3}, {4, 5, 6}});
  Array2<cd> freq, back;
  void* slot = nullptr;
  ASSERT_EQ(CxFFT2D_H_IDP(in.h(), 0, 0, 2, 3, 0, freq.h(), &slot), 0);
  EXPECT_EQ(jqrt_cleanup_count(), before);
  auto* inst = static_cast<jq::fft::TransformInstance*>(slot);
  ASSERT_NE(inst->first, nullptr);
  ASSERT_NE(inst->second, nullptr);
  EXPECT_EQ(inst->first->table->length, 3);
  EXPECT_EQ(inst->second->table->length, 2);
  void* inv = nullptr;
  ASSERT_EQ(CxInvFFT2D_H_IDP(freq.h(), 0, back.h(), &inv), 0);
  expect_near(back.values(), in.values());
  EXPECT_EQ(TransformUnreserveProc(&slot), 0);
  EXPECT_EQ(TransformUnreserveProc(&inv), 0);
  EXPECT_EQ(slot, nullptr);
  EXPECT_EQ(TransformUnreserveProc(&slot), 0);
}

TEST_F(FftExports, TwoDimensionalFormsMatchNumpy) {
  namespace o = fft2d_oracle;
  Array2<cd> cin(4, 5), freq;
  std::copy(std::begin(o::cx_in), std::end(o::cx_in), cin.data());
  void *r = nullptr, *c = nullptr;
  ASSERT_EQ(CxFFT2D_H(cin.h(), 1, 2, 5, 4, 1, freq.h(), &r, &c), 0);
  ASSERT_EQ(freq.rows(), 5);
  ASSERT_EQ(freq.cols(), 4);
  expect_near(freq.values(), std::vector<cd>(std::begin(o::cx_out), std::end(o::cx_out)));

  Array2<double> rin(3, 7);
  std::copy(std::begin(o::re_in), std::end(o::re_in), rin.data());
  void* idp = nullptr;
  ASSERT_EQ(ReFFT2D_H_IDP(rin.h(), 0, 0, 2, 7, 0, freq.h(), &idp), 0);
  expect_near(freq.values(), std::vector<cd>(std::begin(o::re_out), std::end(o::re_out)));
  TransformUnreserveProc(&idp);

  Array2<cd> sp(3, 4), back;
  std::copy(std::begin(o::inv_in), std::end(o::inv_in), sp.data());
  ASSERT_EQ(CxInvFFT2D_H(sp.h(), 1, back.h(), &r, &c), 0);
  expect_near(back.values(), std::vector<cd>(std::begin(o::inv_out), std::end(o::inv_out)));
  Array2<double> rback;
  ASSERT_EQ(ReInvFFT2D_H(sp.h(), 1, rback.h(), &r, &c), 0);
  for (int i = 0; i < 12; ++i) EXPECT_NEAR(rback[i], o::inv_out[i].real(), 1e-12);

  // Validation order: empty input, offsets, output size; outputs emptied.
  Array2<cd> empty;
  EXPECT_EQ(CxFFT2D_H(empty.h(), 9, 9, 0, 0, 0, freq.h(), &r, &c), -20003);
  EXPECT_EQ(freq.size(), 0);
  EXPECT_EQ(CxFFT2D_H(cin.h(), 4, 0, 0, 0, 0, freq.h(), &r, &c), -20017);
  EXPECT_EQ(CxFFT2D_H(cin.h(), 0, 5, 0, 0, 0, freq.h(), &r, &c), -20017);
  EXPECT_EQ(ReFFT2D_H(rin.h(), 0, 0, 2, 0, 0, freq.h(), &r, &c), -20008);
  EXPECT_EQ(CxInvFFT2D_H(empty.h(), 0, back.h(), &r, &c), -20003);
  {
    jqrt::FailResize fail(1);
    EXPECT_EQ(ReInvFFT2D_H(sp.h(), 0, rback.h(), &r, &c), -20001);
  }
  EXPECT_EQ(rback.size(), 0);
}
