// Cosine and sine transform exports: the documented examples, round trips
// over both parities, validation order, emptied outputs and the tables kept
// per call site.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "jqanlys.h"
#include "jqrt.hpp"
#include "transforms/fft.hpp"

namespace {

using jq::fft::FFTTable;
using jq::fft::TransformInstance;
using Vec = std::vector<double>;

void expect_near(const Vec& got, const Vec& want, double tol = 1e-14) {
  ASSERT_EQ(got.size(), want.size());
  for (size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], want[i], tol) << "at " << i;
}

// References held on the shared table of length n by anyone but the caller.
int32_t holders_of(uint32_t n) {
  FFTTable* t = jq::fft::create_table(n);
  const int32_t others = t->references - 1;
  jq::fft::destroy_table(t);
  return others;
}

TEST(Dct, DocumentedExamples) {
  jqrt::Slot slot;
  jqrt::Array<double> ones{1, 1, 1, 1}, y;
  ASSERT_EQ(DCT_1DH(ones.h(), y.h(), 0, slot.get()), 0);
  expect_near(y.values(), {2, 0, 0, 0});

  jqrt::Array<double> one{1};
  ASSERT_EQ(DST_1DH(one.h(), y.h(), -3, slot.get()), 0);
  expect_near(y.values(), {1});

  // Length 0 (or negative) takes every sample; a longer length zero-extends.
  jqrt::Array<double> five{1, 2, 3, 4, 5};
  ASSERT_EQ(DCT_1DH(five.h(), y.h(), 0, slot.get()), 0);
  EXPECT_EQ(y.size(), 5);
  EXPECT_NEAR(y[0], 15 / std::sqrt(5.0), 1e-14);
  ASSERT_EQ(DCT_1DH(five.h(), y.h(), 8, slot.get()), 0);
  EXPECT_EQ(y.size(), 8);
  EXPECT_NEAR(y[0], 15 / std::sqrt(8.0), 1e-14);
  EXPECT_EQ(jqrt_dispose_context(), 1) << "one holder, rebuilt in place";
}

TEST(Dct, RoundTripsOverBothParitiesAndLongerLengths) {
  using Fwd = int32_t (*)(JQHandle, JQHandle, int32_t, JQSlot);
  using Inv = int32_t (*)(JQHandle, JQHandle, JQSlot);
  const struct {
    Fwd f;
    Inv g;
  } pairs[] = {{DCT_1DH_IDP, InvDCT_1DH_IDP}, {DST_1DH_IDP, InvDST_1DH_IDP}};
  for (auto [f, g] : pairs) {
    // The oracle covers the short lengths.
    for (int n : {6, 23, 47, 106, 1000, 1001}) {
      Vec x(n);
      for (int i = 0; i < n; ++i) x[i] = std::sin(0.37 * i * i + 1.0) + 0.1 * i;
      jqrt::Array<double> in(x), y, back;
      jqrt::Slot fs, gs;
      ASSERT_EQ(f(in.h(), y.h(), 0, fs.get()), 0);
      ASSERT_EQ(g(y.h(), back.h(), gs.get()), 0);
      expect_near(back.values(), x, 1e-12 * std::max(1, n / 10));
      TransformUnreserveProc(fs.get());
      TransformUnreserveProc(gs.get());
    }
  }
  jqrt::Array2<double> img(7, 10), coeffs, back;
  for (int i = 0; i < 70; ++i) img[i] = std::cos(1.3 * i) - 0.25 * (i % 7);
  jqrt::Slot rs, cs, is;
  ASSERT_EQ(DCT_2DH(img.h(), coeffs.h(), rs.get(), cs.get()), 0);
  ASSERT_EQ(InvDCT_2DH_IDP(coeffs.h(), back.h(), is.get()), 0);
  expect_near(back.values(), img.values(), 1e-13);
  ASSERT_EQ(DST_2DH(img.h(), coeffs.h(), rs.get(), cs.get()), 0);
  ASSERT_EQ(InvDST_2DH_IDP(coeffs.h(), back.h(), is.get()), 0);
  expect_near(back.values(), img.values(), 1e-13);
  TransformUnreserveProc(is.get());
  jqrt_dispose_context();
}

// The host may pass one handle as input and output.
TEST(Dct, OneHandleAsInputAndOutput) {
  jqrt::Array<double> x{1, -2, 3, 0.5, 4}, y;
  jqrt::Slot slot;
  ASSERT_EQ(DCT_1DH(x.h(), y.h(), 8, slot.get()), 0);
  ASSERT_EQ(DCT_1DH(x.h(), x.h(), 8, slot.get()), 0);
  expect_near(x.values(), y.values());
  ASSERT_EQ(InvDST_1DH(x.h(), y.h(), slot.get()), 0);
  ASSERT_EQ(InvDST_1DH(x.h(), x.h(), slot.get()), 0);
  expect_near(x.values(), y.values());
  jqrt_dispose_context();
}

TEST(Dct, EmptyInputsAndFailedResizesEmptyTheOutput) {
  jqrt::Slot slot;
  jqrt::Array<double> empty, negative{1, 2, 3}, x{1, 2, 3};
  negative.set_dims(-3);
  for (JQHandle in : {empty.h(), negative.h()}) {
    jqrt::Array<double> y{7, 7};
    EXPECT_EQ(DCT_1DH(in, y.h(), 4, slot.get()), -20003);
    EXPECT_EQ(y.size(), 0);
    y = jqrt::Array<double>{7, 7};
    EXPECT_EQ(InvDST_1DH_IDP(in, y.h(), slot.get()), -20003);
    EXPECT_EQ(y.size(), 0);
  }
  jqrt::Array2<double> flat(0, 4), grid(2, 2);
  jqrt::Array2<double> out(2, 2);
  EXPECT_EQ(DST_2DH(flat.h(), out.h(), slot.get(), nullptr), -20003);
  EXPECT_EQ(out.rows(), 0);
  EXPECT_EQ(out.cols(), 0);
  EXPECT_EQ(slot.value(), nullptr) << "validation comes before any table";

  // The output is sized before the table is taken: a failed resize leaves
  // the call site without state.
  {
    jqrt::FailResize fail(1);
    jqrt::Array<double> y{7, 7};
    EXPECT_EQ(DST_1DH(x.h(), y.h(), 5, slot.get()), -20001);
    EXPECT_EQ(y.size(), 0);
  }
  {
    jqrt::FailResize fail(1);
    out = jqrt::Array2<double>(2, 2);
    EXPECT_EQ(InvDCT_2DH_IDP(grid.h(), out.h(), slot.get()), -20001);
    EXPECT_EQ(out.rows(), 0);
  }
  EXPECT_EQ(slot.value(), nullptr);
  EXPECT_EQ(jqrt_cleanup_count(), 0);
}

TEST(Dct, TablesKeptPerCallSiteAndReleased) {
  jqrt::Array<double> x{1, 2, 3, 4, 5, 6}, y;
  jqrt::Slot plain;
  ASSERT_EQ(DCT_1DH(x.h(), y.h(), 0, plain.get()), 0);
  auto* holder = static_cast<jq::fft::TransformTableHolder*>(plain.value());
  FFTTable* t = holder->table;
  EXPECT_EQ(t->length, 6) << "even length: an FFT of the same length";
  ASSERT_EQ(InvDCT_1DH(y.h(), x.h(), plain.get()), 0);
  EXPECT_EQ(jq::fft::held_table(plain.value()), t) << "same length, same table";
  ASSERT_EQ(DCT_1DH(x.h(), y.h(), 7, plain.get()), 0);
  EXPECT_EQ(plain.value(), holder);
  EXPECT_EQ(holder->table->length, 14) << "odd length: twice as long";
  ASSERT_EQ(DST_1DH(x.h(), y.h(), 7, plain.get()), 0);
  EXPECT_EQ(holder->table->length, 16);
  EXPECT_EQ(jqrt_cleanup_count(), 1);
  EXPECT_EQ(jqrt_dispose_context(), 1);
  EXPECT_EQ(holders_of(16), 0);

  // _IDP 2-D: both tables in one instance, nothing registered with the host.
  jqrt::Array2<double> img(3, 4), out;
  jqrt::Slot idp;
  ASSERT_EQ(DST_2DH_IDP(img.h(), out.h(), idp.get()), 0);
  auto* inst = static_cast<TransformInstance*>(idp.value());
  EXPECT_EQ(inst->first->table->length, 10);
  EXPECT_EQ(inst->second->table->length, 8);
  ASSERT_EQ(DCT_2DH_IDP(img.h(), out.h(), idp.get()), 0);
  EXPECT_EQ(inst->first->table->length, 4);
  EXPECT_EQ(inst->second->table->length, 6);
  EXPECT_EQ(jqrt_cleanup_count(), 0);
  EXPECT_EQ(TransformUnreserveProc(idp.get()), 0);
  EXPECT_EQ(idp.value(), nullptr);
  EXPECT_EQ(holders_of(4), 0);
  EXPECT_EQ(holders_of(6), 0);
}

}  // namespace
