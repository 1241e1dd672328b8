// Spectrum exports: validation order, emptied outputs, injected resize
// failures, and the tables kept per call site in both instance forms.
#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <functional>

#include "jqanlys.h"
#include "jqrt.hpp"
#include "transforms/fft.hpp"

namespace {

using cd = std::complex<double>;
using jq::fft::FFTTable;
using jq::fft::held_table;
using jq::fft::TransformInstance;

// An export run with one output handle, plain or _IDP.
using Run = std::function<int32_t(uint8_t** out, void** slot)>;

struct Export {
  const char* name;
  bool idp;
  Run run;
};

// The table a slot holds, in either form.
FFTTable* slot_table(void* slot_value, bool idp) {
  if (!slot_value) return nullptr;
  if (idp) {
    auto* inst = static_cast<TransformInstance*>(slot_value);
    return inst->first ? inst->first->table : nullptr;
  }
  return held_table(slot_value);
}

// The host's two ways of letting go of a call site.
void release(jqrt::Slot& slot, bool idp) {
  if (idp) {
    EXPECT_EQ(TransformUnreserveProc(slot.get()), 0);
    EXPECT_EQ(slot.value(), nullptr);
  } else {
    jqrt_dispose_context();
  }
}

TEST(SpectraValidation, FirstFailingCheckDecidesAndOutputsAreEmptied) {
  jqrt::Array<double> empty, four{1, 2, 3, 4}, five{1, 2, 3, 4, 5}, negative{1, 2};
  // SpectrumH writes over its signal, so there the output handle is the signal.
  auto make_negative = [](uint8_t** h) {
    reinterpret_cast<int32_t*>(*h)[0] = -2;
    return h;
  };
  negative.set_dims(-2);
  jqrt::Array<cd> cempty, cfour(4), cfive(5), cnegative(2);
  cnegative.set_dims(-2);
  struct Case {
    const char* what;
    std::function<int32_t(uint8_t**, void**, bool)> run;
    int32_t code;
  };
  const Case cases[] = {
      {"SpectrumH, negative count", [&](uint8_t** o, void** s, bool i) {
         return (i ? SpectrumH_IDP : SpectrumH)(make_negative(o), s); }, -20003},
      {"CxSpectrumH, empty", [&](uint8_t** o, void** s, bool i) {
         return (i ? CxSpectrumH_IDP : CxSpectrumH)(cempty.h(), o, s); }, -20003},
      {"CxSpectrumH, negative count", [&](uint8_t** o, void** s, bool i) {
         return (i ? CxSpectrumH_IDP : CxSpectrumH)(cnegative.h(), o, s); }, -20003},
      {"CrossSpectrumH, empty x before the length check", [&](uint8_t** o, void** s, bool i) {
         return (i ? CrossSpectrumH_IDP : CrossSpectrumH)(empty.h(), five.h(), o, s); }, -20003},
      {"CrossSpectrumH, negative y", [&](uint8_t** o, void** s, bool i) {
         return (i ? CrossSpectrumH_IDP : CrossSpectrumH)(four.h(), negative.h(), o, s); }, -20003},
      {"CrossSpectrumH, 4 and 5 samples", [&](uint8_t** o, void** s, bool i) {
         return (i ? CrossSpectrumH_IDP : CrossSpectrumH)(four.h(), five.h(), o, s); }, -20002},
      {"CxCrossSpectrumH, empty y", [&](uint8_t** o, void** s, bool i) {
         return (i ? CxCrossSpectrumH_IDP : CxCrossSpectrumH)(cfour.h(), cempty.h(), o, s); }, -20003},
      {"CxCrossSpectrumH, 5 and 4 samples", [&](uint8_t** o, void** s, bool i) {
         return (i ? CxCrossSpectrumH_IDP : CxCrossSpectrumH)(cfive.h(), cfour.h(), o, s); }, -20002},
  };
  for (const Case& c : cases)
    for (bool idp : {false, true}) {
      SCOPED_TRACE(testing::Message() << c.what << (idp ? ", _IDP" : ""));
      jqrt::Slot slot;
      jqrt::Array<cd> out(3);
      EXPECT_EQ(c.run(out.h(), slot.get(), idp), c.code);
      EXPECT_EQ(out.size(), 0);
      EXPECT_EQ(slot.value(), nullptr) << "no table before the checks pass";
    }
  EXPECT_EQ(SpectrumH(nullptr, nullptr), -20003);
}

// A failed output resize comes after the table: the output ends empty, the
// instance keeps its table, and the next call succeeds with it.
TEST(SpectraValidation, FailedResizeEmptiesTheOutputAndKeepsTheTable) {
  jqrt::Array<double> x{1, -1, 2, 0, 3}, y{0, 1, 0, 1, 0};
  jqrt::Array<cd> cx{1, cd(0, 1), -1, 2, 0}, cy{0, 1, 0, 1, cd(0, 2)};
  const Export exports[] = {
      {"CxSpectrumH", false, [&](uint8_t** o, void** s) { return CxSpectrumH(cx.h(), o, s); }},
      {"CxSpectrumH_IDP", true, [&](uint8_t** o, void** s) { return CxSpectrumH_IDP(cx.h(), o, s); }},
      {"CrossSpectrumH", false, [&](uint8_t** o, void** s) { return CrossSpectrumH(x.h(), y.h(), o, s); }},
      {"CrossSpectrumH_IDP", true, [&](uint8_t** o, void** s) { return CrossSpectrumH_IDP(x.h(), y.h(), o, s); }},
      {"CxCrossSpectrumH", false, [&](uint8_t** o, void** s) { return CxCrossSpectrumH(cx.h(), cy.h(), o, s); }},
      {"CxCrossSpectrumH_IDP", true,
       [&](uint8_t** o, void** s) { return CxCrossSpectrumH_IDP(cx.h(), cy.h(), o, s); }},
  };
  const int64_t live = jqrt_live_blocks();
  for (const Export& e : exports) {
    SCOPED_TRACE(e.name);
    jqrt::Slot slot;
    {
      jqrt::Array<cd> out(7);
      jqrt::FailResize fail(1);
      EXPECT_EQ(e.run(out.h(), slot.get()), -20001);
      EXPECT_EQ(out.size(), 0);
      ASSERT_NE(slot_table(slot.value(), e.idp), nullptr);
      EXPECT_EQ(slot_table(slot.value(), e.idp)->length, 5);
    }
    jqrt::Array<cd> out;
    EXPECT_EQ(e.run(out.h(), slot.get()), 0);
    EXPECT_EQ(out.size(), 5);
    release(slot, e.idp);
  }
  EXPECT_EQ(jqrt_live_blocks(), live);
}

// One table per call site, shared by length across call sites, reused while
// the length stays and rebuilt in the same holder when it changes. The
// per-call reference of the spectrum routine is always given back.
TEST(SpectraTables, KeptPerCallSiteAndReleased) {
  for (bool idp : {false, true}) {
    SCOPED_TRACE(idp ? "_IDP" : "plain");
    auto spectrum = idp ? SpectrumH_IDP : SpectrumH;
    const int32_t registered = jqrt_cleanup_count();
    jqrt::Slot a, b;
    jqrt::Array<double> x(53), z(60);
    ASSERT_EQ(spectrum(x.h(), a.get()), 0);
    FFTTable* t = slot_table(a.value(), idp);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t->length, 53);
    EXPECT_EQ(t->references, 1);
    void* holder = a.value();
    ASSERT_EQ(spectrum(x.h(), a.get()), 0);
    EXPECT_EQ(slot_table(a.value(), idp), t) << "reused, not rebuilt";
    ASSERT_EQ(spectrum(x.h(), b.get()), 0);
    EXPECT_EQ(slot_table(b.value(), idp), t) << "shared between call sites";
    EXPECT_EQ(t->references, 2);
    ASSERT_EQ(spectrum(z.h(), a.get()), 0);
    EXPECT_EQ(a.value(), holder);
    EXPECT_EQ(slot_table(a.value(), idp)->length, 60);
    EXPECT_EQ(t->references, 1) << "the old length's table went back";
    EXPECT_EQ(jqrt_cleanup_count(), registered + (idp ? 0 : 2));
    if (idp) {
      EXPECT_EQ(TransformUnreserveProc(b.get()), 0);
    }
    release(a, idp);
    EXPECT_EQ(b.value() == nullptr, idp);
  }
  FFTTable* fresh = jq::fft::create_table(53);
  EXPECT_EQ(fresh->references, 1) << "no holder kept the table";
  jq::fft::destroy_table(fresh);
}

}  // namespace
