// Continuous waves: sequences bit for bit against an independent
// computation, the kept phase, and the phase left alone by failed calls.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "jqanlys.h"
#include "jqrt.hpp"
#include "generation/waves_trig.hpp"
#include "waves_reference.inc"

namespace {

bool same_bits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

struct Call {
  int32_t rc, err;
  std::vector<double> y;
};

// Runs one reference case through its export; phase is in/out.
Call run(const reference::WaveCase& c, double& phase) {
  jqrt::Array<double> y;
  int32_t n = c.n, err = 77, interp = c.interpolation;
  double a = c.a, f = c.f, extra = c.extra;
  jqrt::Array<double> table(std::vector<double>(std::begin(reference::kTable), std::end(reference::kTable)));
  int32_t rc = 0;
  switch (c.kind) {
    case reference::kSine: rc = SineWaveCIN(y.h(), &n, &a, &f, &phase, &err); break;
    case reference::kSquare: rc = SquareWaveCIN(y.h(), &n, &a, &f, &phase, &extra, &err); break;
    case reference::kTriangle: rc = TriangleWaveCIN(y.h(), &n, &a, &f, &phase, &err); break;
    case reference::kSawtooth: rc = SawtoothWaveCIN(y.h(), &n, &a, &f, &phase, &err); break;
    case reference::kArbitrary: rc = ArbitraryWaveCIN(y.h(), &n, &a, &f, &phase, table.h(), &interp, &err); break;
    case reference::kSinePattern: rc = SinePtrn(y.h(), &n, &a, &phase, &f, &err); break;
    case reference::kChirp: rc = ChirpCIN(y.h(), &n, &a, &f, &extra, &err); break;
  }
  return {rc, err, y.values()};
}

}  // namespace

TEST(WaveSequences, BitExactAgainstTheIndependentComputation) {
  double phase = 0;
  for (size_t k = 0; k < std::size(reference::kWaves); ++k) {
    const reference::WaveCase& c = reference::kWaves[k];
    SCOPED_TRACE(testing::Message() << "case " << k << " kind " << c.kind << " n " << c.n);
    // A chained case continues from the phase the previous call left.
    if (c.chained)
      EXPECT_TRUE(same_bits(phase, c.phase));
    else
      phase = c.phase;
    const Call r = run(c, phase);
    ASSERT_EQ(r.rc, 0);
    ASSERT_EQ(r.err, 0);
    ASSERT_EQ(r.y.size(), static_cast<size_t>(c.n));
    int mismatches = 0;
    for (int i = 0; i < c.n; ++i)
      if (!same_bits(r.y[i], c.y[i]) && ++mismatches <= 3)
        ADD_FAILURE() << "sample " << i << ": " << r.y[i] << " expected " << c.y[i];
    EXPECT_EQ(mismatches, 0);
    if (c.kind != reference::kChirp) {
      EXPECT_TRUE(same_bits(phase, c.phase_out)) << phase << " vs " << c.phase_out;
    }
  }
}

TEST(WaveSequences, QuarterCycleValuesAndThePhaseAfterOneCycle) {
  jqrt::Array<double> y;
  int32_t n = 4, err = 0;
  double a = 2, f = 0.25, phase = 0, duty = 50;
  ASSERT_EQ(SquareWaveCIN(y.h(), &n, &a, &f, &phase, &duty, &err), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{2, 2, -2, -2}));
  EXPECT_EQ(phase, 0.0);
  ASSERT_EQ(SineWaveCIN(y.h(), &n, &a, &f, &phase, &err), 0);
  const double want[] = {0, 2, 0, -2};
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(y[i], want[i], 1e-15);
  EXPECT_EQ(phase, 0.0);
  ASSERT_EQ(TriangleWaveCIN(y.h(), &n, &a, &f, &phase, &err), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{0, 2, 0, -2}));
  // A negative entry phase is reduced: -90 is 270 degrees.
  phase = -90;
  n = 1;
  ASSERT_EQ(SawtoothWaveCIN(y.h(), &n, &a, &f, &phase, &err), 0);
  EXPECT_EQ(y[0], -1.0);
  EXPECT_EQ(phase, 0.0);
  // One sample of sine: a sin(phase), and the phase moves on by 360 f.
  phase = 30;
  f = 0.1;
  ASSERT_EQ(SineWaveCIN(y.h(), &n, &a, &f, &phase, &err), 0);
  EXPECT_EQ(y.values(), std::vector<double>{2 * std::sin(30 * 0.017453292519943295)});
  EXPECT_DOUBLE_EQ(phase, 66.0);
}

TEST(WaveSequences, LongSineKeepsItsAmplitude) {
  jqrt::Array<double> y;
  int32_t n = 200000, err = 0;
  double a = -1.25, f = 0.0123456, phase = 17;
  ASSERT_EQ(SineWaveCIN(y.h(), &n, &a, &f, &phase, &err), 0);
  double top = 0;
  for (double v : y.values()) top = std::max(top, std::fabs(v));
  EXPECT_LE(top, 1.25);
  EXPECT_NEAR(top, 1.25, 1e-6);
  // The last sample is still where a fresh sine puts it.
  EXPECT_NEAR(y[n - 1], a * std::sin((17 + (n - 1) * 360.0 * f) * 3.141592653589793 / 180), 1e-9);
}

TEST(WaveFailures, PhaseUntouchedAndOutputEmptied) {
  using Fn = int32_t (*)(JQHandle, int32_t*, double*, double*, double*, int32_t*);
  for (Fn wave : {+[](JQHandle h, int32_t* n, double* a, double* f, double* p, int32_t* e) {
                    return SineWaveCIN(h, n, a, f, p, e);
                  },
                  +[](JQHandle h, int32_t* n, double* a, double* f, double* p, int32_t* e) {
                    double d = 50;
                    return SquareWaveCIN(h, n, a, f, p, &d, e);
                  },
                  +[](JQHandle h, int32_t* n, double* a, double* f, double* p, int32_t* e) {
                    return TriangleWaveCIN(h, n, a, f, p, e);
                  },
                  +[](JQHandle h, int32_t* n, double* a, double* f, double* p, int32_t* e) {
                    return SawtoothWaveCIN(h, n, a, f, p, e);
                  },
                  +[](JQHandle h, int32_t* n, double* a, double* f, double* p, int32_t* e) {
                    jqrt::Array<double> t{1, 2};
                    int32_t interp = 1;
                    return ArbitraryWaveCIN(h, n, a, f, p, t.h(), &interp, e);
                  }}) {
    double a = 1, f = 0.1, phase = 123.0;
    int32_t err = 0;
    for (int32_t bad : {0, -5}) {
      jqrt::Array<double> y(3);
      EXPECT_EQ(wave(y.h(), &bad, &a, &f, &phase, &err), 0);
      EXPECT_EQ(err, -20003);
      EXPECT_EQ(y.size(), 0);
      EXPECT_EQ(phase, 123.0);
    }
    jqrt::Array<double> y(3);
    int32_t n = 10, rc;
    {
      jqrt::FailResize fail(1);
      rc = wave(y.h(), &n, &a, &f, &phase, &err);
    }
    EXPECT_NE(rc, 0);
    EXPECT_EQ(err, -20001);
    EXPECT_EQ(y.size(), 0);
    EXPECT_EQ(phase, 123.0);
  }
}

TEST(ArbitraryWave, NonFiniteInputsEmptyTablesAndWrapping) {
  jqrt::Array<double> table{0, 10, 20, 30}, empty, y;
  int32_t n = 3, err = 0, interp = 1;
  double a = 1, f = 0.25, phase = std::nan("");
  ASSERT_EQ(ArbitraryWaveCIN(y.h(), &n, &a, &f, &phase, table.h(), &interp, &err), 0);
  EXPECT_EQ(err, -20068);
  EXPECT_EQ(y.size(), 0);
  EXPECT_TRUE(std::isnan(phase));
  phase = 0;
  f = HUGE_VAL;
  ASSERT_EQ(ArbitraryWaveCIN(y.h(), &n, &a, &f, &phase, table.h(), &interp, &err), 0);
  EXPECT_EQ(err, -20068);
  EXPECT_EQ(phase, 0.0);
  // An empty table: zeros, and the phase becomes 0.
  f = 0.1;
  phase = 45;
  ASSERT_EQ(ArbitraryWaveCIN(y.h(), &n, &a, &f, &phase, empty.h(), &interp, &err), 0);
  EXPECT_EQ(err, 0);
  EXPECT_EQ(y.values(), std::vector<double>(3, 0.0));
  EXPECT_EQ(phase, 0.0);
  // Half-entry steps interpolate, wrapping from the last entry to the first.
  f = 0.125;
  phase = 270;
  n = 4;
  ASSERT_EQ(ArbitraryWaveCIN(y.h(), &n, &a, &f, &phase, table.h(), &interp, &err), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{30, 15, 0, 5}));
  EXPECT_EQ(phase, 90.0);
  interp = 0;
  phase = 270;
  ASSERT_EQ(ArbitraryWaveCIN(y.h(), &n, &a, &f, &phase, table.h(), &interp, &err), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{30, 30, 0, 0}));
}

TEST(PortableTrig, CorrectlyRoundedAtHardArguments) {
  for (const reference::Trig& t : reference::kTrig) {
    EXPECT_TRUE(same_bits(jq::gen::sine(t.x), t.sin)) << t.x;
    EXPECT_TRUE(same_bits(jq::gen::cosine(t.x), t.cos)) << t.x;
  }
  EXPECT_TRUE(std::isnan(jq::gen::sine(HUGE_VAL)));
  EXPECT_TRUE(std::isnan(jq::gen::cosine(std::nan(""))));
}
