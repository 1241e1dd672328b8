// The transform exports' checks, each with its emptied output and no table
// left at the call site, and the tables kept per call site: reused while the
// length stays, shared between sites, rebuilt in the same holder, released.
#include <gtest/gtest.h>

#include <complex>
#include <functional>
#include <vector>

#include "jqanlys.h"
#include "jqrt.hpp"
#include "support/checks.hpp"
#include "transforms/fft.hpp"

namespace {

using cd = std::complex<double>;
using jq::fft::FFTTable;
using jq::fft::TransformInstance;
using jqrt::Array;
using jqrt::Array2;
using jqtest::with_count;
using Export = std::function<int32_t(JQHandle out, JQSlot)>;
using Fn2 = int32_t (*)(JQHandle, JQSlot);
using Fn3 = int32_t (*)(JQHandle, JQHandle, JQSlot);
using Fn4 = int32_t (*)(JQHandle, JQHandle, JQHandle, JQSlot);

Export with(Fn3 f, JQHandle x) {
  return [=](JQHandle o, JQSlot s) { return f(x, o, s); };
}
Export with(Fn4 f, JQHandle x, JQHandle y) {
  return [=](JQHandle o, JQSlot s) { return f(x, y, o, s); };
}

// References held on the shared table of length n by anyone but the caller.
int32_t holders_of(uint32_t n) {
  FFTTable* t = jq::fft::create_table(n);
  const int32_t others = t->references - 1;
  jq::fft::destroy_table(t);
  return others;
}

FFTTable* table_of(void* slot_value, bool idp) {
  if (!slot_value) return nullptr;
  return idp ? static_cast<TransformInstance*>(slot_value)->first->table : jq::fft::held_table(slot_value);
}

// Runs an export on a fresh call site. Only a failure after the table was
// taken (`keeps`: a failed output resize of the FFT and spectrum exports)
// leaves a table there, and that table then serves the next call.
template <class T, int Dims = 1>
std::function<int32_t(JQHandle)> site(Export f, bool idp, bool keeps = false) {
  return [=](JQHandle out) {
    void* slot = nullptr;
    const int32_t code = f(out, &slot);
    EXPECT_EQ(slot != nullptr, keeps) << "a table only once the checks have passed";
    if (slot) {
      Array<T, Dims> again;
      EXPECT_EQ(f(again.h(), &slot), 0);
      EXPECT_GT(again.size(), 0);
    }
    if (idp) TransformUnreserveProc(&slot);
    return code;
  };
}

}  // namespace

TEST(TransformFailures, ChecksInOrderEmptyTheOutputAndTakeNoTable) {
  const int32_t registered = jqrt_cleanup_count();
  Array<double> empty, neg{1, 2}, three{1, 2, 3}, four{1, 2, 3, 4}, five{1, -1, 2, 0, 3}, five2{0, 1, 0, 1, 0},
      six(std::vector<double>(6, 1.0));
  Array<cd> cempty, cneg(2), cfour(4), cfive{1, cd(0, 1), -1, 2, 0}, cfive2{0, 1, 0, 1, cd(0, 2)};
  neg.set_dims(-2);
  cneg.set_dims(-2);
  std::vector<jqtest::Rejection> real, complex;
  // The spectra: empty inputs before lengths; a failed resize after the table.
  for (bool idp : {false, true}) {
    const Fn2 spectrum = idp ? SpectrumH_IDP : SpectrumH;
    const Fn3 cx = idp ? CxSpectrumH_IDP : CxSpectrumH;
    const Fn4 cross = idp ? CrossSpectrumH_IDP : CrossSpectrumH;
    const Fn4 cx_cross = idp ? CxCrossSpectrumH_IDP : CxCrossSpectrumH;
    real.insert(real.end(), {{"SpectrumH, negative count", -20003,
                              site<double>([=](JQHandle o, JQSlot s) { return spectrum(with_count(o, -2), s); }, idp)},
                             {"CxSpectrumH, empty", -20003, site<double>(with(cx, cempty.h()), idp)},
                             {"CxSpectrumH, negative count", -20003, site<double>(with(cx, cneg.h()), idp)},
                             {"CxSpectrumH, failed resize", -20001, site<double>(with(cx, cfive.h()), idp, true), 1}});
    complex.insert(
        complex.end(),
        {{"cross, empty x", -20003, site<cd>(with(cross, empty.h(), five.h()), idp)},
         {"cross, negative y", -20003, site<cd>(with(cross, four.h(), neg.h()), idp)},
         {"cross, 4 and 5 samples", -20002, site<cd>(with(cross, four.h(), five.h()), idp)},
         {"cross, failed resize", -20001, site<cd>(with(cross, five.h(), five2.h()), idp, true), 1},
         {"complex cross, empty y", -20003, site<cd>(with(cx_cross, cfour.h(), cempty.h()), idp)},
         {"complex cross, 5 and 4", -20002, site<cd>(with(cx_cross, cfive.h(), cfour.h()), idp)},
         {"complex cross, failed resize", -20001, site<cd>(with(cx_cross, cfive.h(), cfive2.h()), idp, true), 1}});
  }
  EXPECT_EQ(SpectrumH(nullptr, nullptr), -20003);

  // The FFT exports: empty input, start, then size; a failed resize after the table.
  auto fft = [](JQHandle x, int32_t start, int32_t size, bool keeps = false) {
    return site<cd>([=](JQHandle o, JQSlot s) { return ReKWFFTH80(x, o, s, start, size, 0); }, false, keeps);
  };
  complex.insert(complex.end(),
                 {{"empty, start not yet checked", -20003, fft(empty.h(), -5, 0)},
                  {"start at n", -20017, fft(six.h(), 6, 0)},
                  {"negative start", -20017, fft(six.h(), -1, 4)},
                  {"size 0", -20115, fft(six.h(), 0, 0)},
                  {"failed resize", -20001, fft(six.h(), 0, 6, true), 1},
                  {"_IDP, negative size", -20115,
                   site<cd>([&](JQHandle o, JQSlot s) { return ReKWFFTH80_IDP(six.h(), o, s, 0, -3, 0); }, true)},
                  {"complex, empty", -20003,
                   site<cd>([&](JQHandle o, JQSlot s) { return CxKWFFTH80(cempty.h(), o, s, 0, 4, 0); }, false)},
                  {"complex, size 0", -20115,
                   site<cd>([&](JQHandle o, JQSlot s) { return CxKWFFTH80(cfour.h(), o, s, 0, 0, 0); }, false)},
                  {"inverse, empty", -20003, site<cd>(with(InvCxKWFFTH, cempty.h()), false)}});
  real.insert(real.end(),
              {{"real inverse, empty", -20003,
                site<double>([&](JQHandle o, JQSlot s) { return InvReKWFFTH80(cempty.h(), o, s, 0); }, false)},
               {"half-complex, empty", -20003, site<double>(with(ReKWFFTHCH, empty.h()), false)},
               {"half-complex, failed resize", -20001, site<double>(with(ReKWFFTHCH, six.h()), false), 1}});

  // Cosine and sine transforms size their output before taking the table.
  for (JQHandle in : {empty.h(), neg.h()})
    real.insert(real.end(), {{"DCT, empty", -20003,
                              site<double>([=](JQHandle o, JQSlot s) { return DCT_1DH(in, o, 4, s); }, false)},
                             {"inverse DST, empty", -20003, site<double>(with(InvDST_1DH_IDP, in), true)}});
  real.push_back({"DST, failed resize", -20001,
                  site<double>([&](JQHandle o, JQSlot s) { return DST_1DH(three.h(), o, 5, s); }, false), 1});
  // Hilbert and Hartley transform their signal in place.
  for (Fn2 f : {FastHilbertTransformH, FastHilbertTransformH_IDP, InvFastHilbertTransformH,
                InvFastHilbertTransformH_IDP, FHTH, FHTH_IDP, InvFHTH, InvFHTH_IDP})
    for (int32_t count : {0, -2})
      real.push_back({"Hilbert or Hartley, empty", -20003,
                      site<double>([=](JQHandle o, JQSlot s) { return f(with_count(o, count), s); }, false)});
  jqtest::expect_rejections<double>(real);
  jqtest::expect_rejections<cd>(complex);

  // Two dimensions: empty input, offsets, then the output size.
  Array2<double> flat(0, 4), grid(2, 2), rin(3, 7);
  Array2<cd> cin(4, 5), cempty2, spectrum2(3, 4);
  jqtest::expect_rejections<double, 2>({
      {"DST, empty", -20003,
       site<double, 2>([&](JQHandle o, JQSlot s) { return DST_2DH(flat.h(), o, s, nullptr); }, false)},
      {"inverse DCT, failed resize", -20001, site<double, 2>(with(InvDCT_2DH_IDP, grid.h()), true), 1},
      {"real inverse FFT, failed resize", -20001,
       [&](JQHandle o) {
         void *r = nullptr, *c = nullptr;
         return ReInvFFT2D_H(spectrum2.h(), 0, o, &r, &c);
       },
       1},
  });
  // The column instance stays with the context.
  auto fft2 = [](auto f) {
    return site<cd, 2>(
        [f](JQHandle o, JQSlot s) {
          void* c = nullptr;
          return f(o, s, &c);
        },
        false);
  };
  jqtest::expect_rejections<cd, 2>({
      {"empty", -20003,
       fft2([&](JQHandle o, JQSlot r, JQSlot c) { return CxFFT2D_H(cempty2.h(), 9, 9, 0, 0, 0, o, r, c); })},
      {"row offset", -20017,
       fft2([&](JQHandle o, JQSlot r, JQSlot c) { return CxFFT2D_H(cin.h(), 4, 0, 0, 0, 0, o, r, c); })},
      {"column offset", -20017,
       fft2([&](JQHandle o, JQSlot r, JQSlot c) { return CxFFT2D_H(cin.h(), 0, 5, 0, 0, 0, o, r, c); })},
      {"real, no columns", -20008,
       fft2([&](JQHandle o, JQSlot r, JQSlot c) { return ReFFT2D_H(rin.h(), 0, 0, 2, 0, 0, o, r, c); })},
      {"inverse, empty", -20003,
       fft2([&](JQHandle o, JQSlot r, JQSlot c) { return CxInvFFT2D_H(cempty2.h(), 0, o, r, c); })},
  });
  jqrt_dispose_context();
  EXPECT_EQ(jqrt_cleanup_count(), registered);
  for (uint32_t n : {3, 4, 5, 6}) EXPECT_EQ(holders_of(n), 0) << n;
}

// One table per call site, shared by length across call sites, reused while
// the length stays and rebuilt in the same holder when it changes. The
// per-call reference of the routine is always given back.
TEST(TransformSites, KeepShareRebuildAndReleaseTheirTables) {
  auto real = [](auto f) {
    return [f](int32_t n, JQSlot s) {
      Array<double> x(n);
      return f(x.h(), s);
    };
  };
  auto real_out = [](auto f) {
    return [f](int32_t n, JQSlot s) {
      Array<double> x(n);
      Array<cd> y;
      return f(x.h(), y.h(), s);
    };
  };
  // Cosine transforms of odd length m run on 2m points, sine ones on 2(m+1).
  auto dct = [](bool sine) {
    return [sine](int32_t m, JQSlot s) {
      Array<double> x{1, 2, 3, 4, 5, 6}, y;
      return (sine ? DST_1DH : DCT_1DH)(x.h(), y.h(), m, s);
    };
  };
  const struct {
    const char* name;
    bool idp;
    std::function<int32_t(int32_t n, JQSlot)> run;
    int32_t n1, len1, n2, len2;
  } sites[] = {{"SpectrumH", false, real(SpectrumH), 53, 53, 60, 60},
               {"SpectrumH_IDP", true, real(SpectrumH_IDP), 53, 53, 60, 60},
               {"DCT_1DH", false, dct(false), 6, 6, 7, 14},
               {"DST_1DH", false, dct(true), 7, 16, 6, 14},
               {"FastHilbertTransformH", false, real(FastHilbertTransformH), 5, 5, 7, 7},
               {"InvFastHilbertTransformH_IDP", true, real(InvFastHilbertTransformH_IDP), 7, 7, 5, 5},
               {"ReKWFFTH", false, real_out(ReKWFFTH), 64, 64, 50, 50}};
  for (const auto& c : sites) {
    SCOPED_TRACE(c.name);
    const int32_t registered = jqrt_cleanup_count();
    jqrt::Slot a, b;
    ASSERT_EQ(c.run(c.n1, a.get()), 0);
    FFTTable* t = table_of(a.value(), c.idp);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t->length, c.len1);
    EXPECT_EQ(t->references, 1);
    if (c.idp) {
      EXPECT_EQ(static_cast<TransformInstance*>(a.value())->second, nullptr) << "one table in 1-D";
    }
    void* holder = a.value();
    ASSERT_EQ(c.run(c.n1, a.get()), 0);
    EXPECT_EQ(table_of(a.value(), c.idp), t) << "reused, not rebuilt";
    ASSERT_EQ(c.run(c.n1, b.get()), 0);
    EXPECT_EQ(table_of(b.value(), c.idp), t) << "shared between call sites";
    EXPECT_EQ(t->references, 2);
    ASSERT_EQ(c.run(c.n2, a.get()), 0);
    EXPECT_EQ(a.value(), holder);
    EXPECT_EQ(table_of(a.value(), c.idp)->length, c.len2);
    EXPECT_EQ(t->references, 1) << "the old length's table went back";
    EXPECT_EQ(jqrt_cleanup_count(), registered + (c.idp ? 0 : 2));
    if (c.idp) {
      EXPECT_EQ(TransformUnreserveProc(a.get()), 0);
      EXPECT_EQ(TransformUnreserveProc(b.get()), 0);
      EXPECT_EQ(a.value(), nullptr);
    } else {
      EXPECT_EQ(jqrt_dispose_context(), 2);
    }
    EXPECT_EQ(holders_of(c.len1), 0);
    EXPECT_EQ(holders_of(c.len2), 0);
  }
  // A forward and an inverse transform of one length share a site's table.
  for (auto [f, g] :
       {std::pair<Fn3, Fn3>{[](JQHandle x, JQHandle y, JQSlot s) { return DCT_1DH(x, y, 0, s); }, InvDCT_1DH},
        {[](JQHandle x, JQHandle, JQSlot s) { return FastHilbertTransformH(x, s); },
         [](JQHandle x, JQHandle, JQSlot s) { return InvFHTH(x, s); }}}) {
    Array<double> x(6), y;
    jqrt::Slot d;
    ASSERT_EQ(f(x.h(), y.h(), d.get()), 0);
    FFTTable* t = jq::fft::held_table(d.value());
    ASSERT_EQ(g(x.h(), y.h(), d.get()), 0);
    EXPECT_EQ(jq::fft::held_table(d.value()), t);
  }
  jqrt_dispose_context();
  // The public table exports reach the same list.
  Array<double> x(64);
  Array<cd> out;
  void* a = nullptr;
  ASSERT_EQ(ReKWFFTH(x.h(), out.h(), &a), 0);
  JQFFTTable* pub = create_kwfft_table(64);
  EXPECT_EQ(reinterpret_cast<FFTTable*>(pub), jq::fft::held_table(a));
  destroy_kwfft_table(pub);
  EXPECT_EQ(create_kwfft_table(0), nullptr);
  jqrt_dispose_context();
}

// Two-dimensional forms hold a row and a column table: in one _IDP instance,
// registering nothing, or in two plain call sites.
TEST(TransformSites, TwoDimensionalFormsHoldTwoTables) {
  Array2<double> img = Array2<double>::rows({{1, 2, 3, 4}, {0, -1, 2, 5}, {3, 3, 1, 0}}), out, plain;
  jqrt::Slot idp, rows, cols;
  const int32_t registered = jqrt_cleanup_count();
  ASSERT_EQ(DST_2DH_IDP(img.h(), out.h(), idp.get()), 0);
  auto* inst = static_cast<TransformInstance*>(idp.value());
  EXPECT_EQ(inst->first->table->length, 10);
  EXPECT_EQ(inst->second->table->length, 8);
  ASSERT_EQ(DCT_2DH_IDP(img.h(), out.h(), idp.get()), 0);
  EXPECT_EQ(inst->first->table->length, 4);
  EXPECT_EQ(inst->second->table->length, 6);
  EXPECT_EQ(jqrt_cleanup_count(), registered);
  ASSERT_EQ(DCT_2DH(img.h(), plain.h(), rows.get(), cols.get()), 0);
  EXPECT_EQ(plain.values(), out.values());
  EXPECT_EQ(jq::fft::held_table(rows.value()), inst->first->table);
  EXPECT_EQ(jq::fft::held_table(cols.value()), inst->second->table);
  ASSERT_EQ(DST_2DH(img.h(), plain.h(), rows.get(), cols.get()), 0);
  ASSERT_EQ(DST_2DH_IDP(img.h(), out.h(), idp.get()), 0);
  EXPECT_EQ(plain.values(), out.values());
  EXPECT_EQ(TransformUnreserveProc(idp.get()), 0);
  EXPECT_EQ(idp.value(), nullptr);
  EXPECT_EQ(jqrt_dispose_context(), 2) << "one holder per site, rebuilt in place";
  for (uint32_t n : {4, 6, 8, 10}) EXPECT_EQ(holders_of(n), 0) << n;

  Array2<cd> in = Array2<cd>::rows({{1, 2, 3}, {4, 5, 6}}), freq, back;
  void *fwd = nullptr, *inv = nullptr;
  ASSERT_EQ(CxFFT2D_H_IDP(in.h(), 0, 0, 2, 3, 0, freq.h(), &fwd), 0);
  EXPECT_EQ(static_cast<TransformInstance*>(fwd)->first->table->length, 3);
  EXPECT_EQ(static_cast<TransformInstance*>(fwd)->second->table->length, 2);
  ASSERT_EQ(CxInvFFT2D_H_IDP(freq.h(), 0, back.h(), &inv), 0);
  for (int i = 0; i < 6; ++i) EXPECT_NEAR(std::abs(back[i] - in[i]), 0, 1e-14);
  EXPECT_EQ(TransformUnreserveProc(&fwd), 0);
  EXPECT_EQ(TransformUnreserveProc(&inv), 0);
  EXPECT_EQ(fwd, nullptr);
  EXPECT_EQ(TransformUnreserveProc(&fwd), 0) << "a released instance may be released again";
  EXPECT_EQ(jqrt_cleanup_count(), registered);
}
